#include "ui/DialogFilter.h"

#include <QStringList>

namespace lyrabo {

namespace {

QString ausUtf8(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

} // namespace

QString dialogFilterFuerQt(const std::string& filter) {
    const QStringList teile = ausUtf8(filter).split(QLatin1Char('|'));
    QStringList eintraege;
    for (qsizetype i = 0; i + 1 < teile.size(); i += 2) {
        const QString& text = teile[i];
        QString muster = teile[i + 1];
        muster.replace(QLatin1Char(';'), QLatin1Char(' '));
        if (text.endsWith(QLatin1Char('(') + teile[i + 1] + QLatin1Char(')')) && !teile[i + 1].contains(QLatin1Char(';')))
            eintraege << text;
        else
            eintraege << text.trimmed() + QStringLiteral(" (") + muster + QLatin1Char(')');
    }
    if (eintraege.isEmpty() && !filter.empty()) eintraege << ausUtf8(filter);
    return eintraege.join(QStringLiteral(";;"));
}

} // namespace lyrabo
