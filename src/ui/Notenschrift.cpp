#include "ui/Notenschrift.h"

#include "model/Fehler.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHash>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#ifdef Q_OS_WIN
#include <QSettings>
#endif

namespace lyrabo {

namespace {

QString alsQString(const std::filesystem::path& pfad) {
#ifdef _WIN32
    return QString::fromStdWString(pfad.wstring());
#else
    return QFile::decodeName(QByteArray::fromStdString(pfad.string()));
#endif
}

std::string nachUtf8(const QString& s) { return s.toUtf8().toStdString(); }

QString schriftenOrdner(const std::filesystem::path& programmOrdner) {
    return alsQString(programmOrdner / "data" / "schriften");
}

QStringList schriftDateien(const QString& ordner) {
    QStringList dateien;
    const QDir dir(ordner);
    for (const QString& name : dir.entryList({QStringLiteral("*.otf"), QStringLiteral("*.ttf")}, QDir::Files, QDir::Name))
        dateien << dir.absoluteFilePath(name);
    return dateien;
}

// Registers the font held in the bytes (once per content, so the copies of test folders or a
// second start-up add nothing) and returns its families. The bytes stay in memory, so the file
// may go away afterwards.
QStringList registrieren(const QByteArray& daten) {
    static QHash<QByteArray, QStringList> registriert;
    const QByteArray schluessel = QCryptographicHash::hash(daten, QCryptographicHash::Sha256);
    auto it = registriert.constFind(schluessel);
    if (it == registriert.constEnd()) {
        const int id = QFontDatabase::addApplicationFontFromData(daten);
        it = registriert.insert(schluessel, id < 0 ? QStringList() : QFontDatabase::applicationFontFamilies(id));
    }
    return *it;
}

QByteArray lesen(const QString& datei) {
    QFile f(datei);
    if (!f.open(QIODevice::ReadOnly))
        throw DateiFehler(nachUtf8(QStringLiteral("Die Schriftdatei %1 kann nicht gelesen werden.")
                                       .arg(QDir::toNativeSeparators(datei))));
    return f.readAll();
}

} // namespace

QStringList eigeneSchriftenRegistrieren(const std::filesystem::path& programmOrdner) {
    QStringList familien;
    for (const QString& datei : schriftDateien(schriftenOrdner(programmOrdner))) {
        QFile f(datei);
        if (f.open(QIODevice::ReadOnly)) familien << registrieren(f.readAll());
    }
    familien.removeDuplicates();
    familien.sort();
    return familien;
}

QStringList schriftenListe(const QStringList& eigene, const QStringList& system) {
    QStringList liste = eigene;
    qsizetype stelle = 0;
    for (const QString& schrift : system) {
        if (eigene.contains(schrift)) continue;
        if (stelle++ > 0) liste << schrift;  // the system's first font is left out on purpose
    }
    return liste;
}

QString benutzerSchriftenOrdner() {
#if defined(Q_OS_WIN)
    // %LOCALAPPDATA%\Microsoft\Windows\Fonts: fonts installed for this user only, no admin rights needed.
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Microsoft/Windows/Fonts");
#elif defined(Q_OS_MACOS)
    return QDir::homePath() + QStringLiteral("/Library/Fonts");
#else
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/fonts");
#endif
}

SchriftKopie notenschriftKopieren(const std::filesystem::path& programmOrdner, const QString& zielOrdner) {
    const QString quelle = schriftenOrdner(programmOrdner);
    const QStringList dateien = schriftDateien(quelle);
    if (dateien.isEmpty())
        throw DateiFehler(nachUtf8(QStringLiteral("Die Notenschrift fehlt: In %1 liegt keine Schriftdatei.")
                                       .arg(QDir::toNativeSeparators(quelle))));
    if (!QDir().mkpath(zielOrdner))
        throw DateiFehler(nachUtf8(QStringLiteral("Der Schriftenordner %1 kann nicht angelegt werden.")
                                       .arg(QDir::toNativeSeparators(zielOrdner))));
    SchriftKopie kopie;
    for (const QString& datei : dateien) {
        const QByteArray daten = lesen(datei);
        const QString ziel = QDir(zielOrdner).filePath(QFileInfo(datei).fileName());
        QFile vorhanden(ziel);
        if (vorhanden.open(QIODevice::ReadOnly) && vorhanden.readAll() == daten) {
            kopie.schonDa << ziel;
            continue;
        }
        vorhanden.close();
        QSaveFile ausgabe(ziel);
        if (!ausgabe.open(QIODevice::WriteOnly) || ausgabe.write(daten) != daten.size() || !ausgabe.commit())
            throw DateiFehler(nachUtf8(QStringLiteral("Die Schriftdatei %1 kann nicht geschrieben werden.")
                                           .arg(QDir::toNativeSeparators(ziel))));
        kopie.neu << ziel;
    }
    return kopie;
}

QString notenschriftInstallieren(const std::filesystem::path& programmOrdner) {
    const QString ordner = benutzerSchriftenOrdner();
    const SchriftKopie kopie = notenschriftKopieren(programmOrdner, ordner);
    QStringList familien;
    for (const QString& datei : kopie.neu + kopie.schonDa) {
        const QStringList von = registrieren(lesen(datei));
        familien << von;
#ifdef Q_OS_WIN
        // Windows finds a per-user font only through its entry under the user's Fonts key.
        QSettings eintraege(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Fonts"),
                            QSettings::NativeFormat);
        const QString art = datei.endsWith(QStringLiteral(".ttf"), Qt::CaseInsensitive) ? QStringLiteral("TrueType")
                                                                                         : QStringLiteral("OpenType");
        const QString name = von.isEmpty() ? QFileInfo(datei).completeBaseName() : von.constFirst();
        eintraege.setValue(QStringLiteral("%1 (%2)").arg(name, art), QDir::toNativeSeparators(datei));
#endif
    }
#ifndef Q_OS_WIN
    // Fontconfig would find the files on its next scan anyway; this makes them known at once.
    if (!kopie.neu.isEmpty()) QProcess::execute(QStringLiteral("fc-cache"), {QStringLiteral("-f"), ordner});
#endif
    familien.removeDuplicates();
    const QString name = QStringLiteral("„%1“").arg(familien.join(QStringLiteral("“, „")));
    const QString wo = QDir::toNativeSeparators(ordner);
    if (kopie.neu.isEmpty())
        return QStringLiteral("Die Notenschrift %1 war schon installiert, im Ordner\n%2\nEs wurde nichts geändert.")
            .arg(name, wo);
    return QStringLiteral("Die Notenschrift %1 ist jetzt für andere Programme installiert, im Ordner\n%2\n"
                          "Programme, die schon laufen, kennen sie erst nach einem Neustart.")
        .arg(name, wo);
}

} // namespace lyrabo
