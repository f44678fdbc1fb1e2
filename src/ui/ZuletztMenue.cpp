#include "ui/ZuletztMenue.h"

#include "app/core/CProgramm.h"
#include "model/Fehler.h"
#include "settings/Zuletzt.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>

namespace lyrabo {

namespace {

QString ausUtf8(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

} // namespace

ZuletztMenue::ZuletztMenue(QMainWindow& fenster, CProgramm& programm, QMenu* datei,
                           std::function<void(const QString&)> oeffnen, std::function<void(const QString&)> meldung)
    : QObject(&fenster),
      m_fenster(fenster),
      m_programm(programm),
      m_menue(datei->addMenu(QStringLiteral("&Zuletzt geöffnet"))),
      m_oeffnen(std::move(oeffnen)),
      m_meldung(std::move(meldung)),
      m_liste(zuletztLesen(programm.Orte())) {
    m_menue->setObjectName(QStringLiteral("mZuletzt"));
    menueFuellen();
    m_fenster.setWindowTitle(titel({}));
}

QString ZuletztMenue::titel(const std::string& datei) {
    if (datei.empty()) return QStringLiteral("Lyrabo");
    return QFileInfo(ausUtf8(datei)).fileName() + QStringLiteral(" – Lyrabo");
}

QString ZuletztMenue::gibtEsNichtMehr(const QString& pfad) {
    return QStringLiteral("Die Datei „%1“ gibt es nicht mehr. Sie steht nun nicht mehr unter „Zuletzt geöffnet“.")
        .arg(QDir::toNativeSeparators(pfad));
}

void ZuletztMenue::nachDemOeffnen(bool geladen) {
    const Midifile& leser = m_programm.Midifile1;
    m_fenster.setWindowTitle(titel(leser.geladen() ? leser.filename() : std::string()));
    if (geladen && leser.geladen()) liste(zuletztVorne(m_liste, leser.filename()));
}

void ZuletztMenue::auswaehlen(const QString& pfad) {
    if (QFileInfo(pfad).isFile()) {
        m_oeffnen(pfad);
        return;
    }
    liste(zuletztOhne(m_liste, pfad.toUtf8().toStdString()));
    m_meldung(gibtEsNichtMehr(pfad));
}

void ZuletztMenue::liste(std::vector<std::string> neu) {
    if (neu == m_liste) return;
    m_liste = std::move(neu);
    menueFuellen();
    try {
        zuletztSchreiben(m_liste, m_programm.Orte());
    } catch (const Fehler&) {
        // The list is a convenience: where it cannot be kept, the menu still shows this session's.
    }
}

void ZuletztMenue::menueFuellen() {
    // The chosen entry may be the one running now: its action goes when control is back.
    for (QAction* alt : m_menue->actions()) {
        m_menue->removeAction(alt);
        alt->deleteLater();
    }
    int nr = 0;
    for (const auto& eintrag : m_liste) {
        const QString pfad = ausUtf8(eintrag);
        auto* a = m_menue->addAction(QStringLiteral("&%1 %2").arg(++nr).arg(QFileInfo(pfad).fileName()));
        a->setData(pfad);
        a->setStatusTip(QDir::toNativeSeparators(pfad));
        connect(a, &QAction::triggered, this, [this, pfad] { auswaehlen(pfad); });
    }
    m_menue->setEnabled(!m_liste.empty());
}

} // namespace lyrabo
