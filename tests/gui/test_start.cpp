// Starting the program as the desktop does: a file named on the command line, the list of recent
// files, and an installation whose folder cannot take the user's files.
#include "FensterUmgebung.h"

#include "orte/OrteQt.h"
#include "settings/Zuletzt.h"
#include "ui/MidiAblage.h"
#include "ui/ZuletztMenue.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

namespace lyrabo::test {
namespace {

QString q(const std::filesystem::path& p) { return QString::fromStdString(p.string()); }

// The paths the recent-files menu offers, top to bottom.
QStringList zuletztImMenue(FensterUmgebung& u) {
    QStringList pfade;
    for (QAction* a : u.fenster().findChild<QMenu*>(QStringLiteral("mZuletzt"))->actions()) pfade << a->data().toString();
    return pfade;
}

TEST(Start, MitDateiAlsArgument) {
    FensterUmgebung u;
    const auto lied = liedMitDreiSpuren().schreiben(u.ordner() / "lieder" / "lied.mid");
    const auto kaputt = u.ordner() / "lieder" / "kaputt.mid";
    dateiErsetzen(kaputt, "MThd kaputt");
    dateiErsetzen(u.ordner() / "notiz.txt", "keine Noten");
    const struct {
        QStringList argumente;
        std::string zwischenablage;
        int spuren;
        QString titel, meldung;
        bool beendet;
    } faelle[] = {
        {{}, "", 0, "Lyrabo", "", false},
        {{"--neu", q(lied)}, "", 3, "lied.mid – Lyrabo", "", false},
        {{"file://" + q(lied)}, "", 3, "lied.mid – Lyrabo", "", false},
        {{q(kaputt)}, "", 0, "Lyrabo", "kaputt.mid\" ist keine gültige MIDI-Datei", false},
        {{q(u.ordner() / "notiz.txt")}, "", 0, "Lyrabo", MidiAblage::keineMidiDatei("notiz.txt"), false},
        // The clipboard's command comes first: it converts track 1 and ends the program.
        {{q(kaputt)}, "Create Harfe-Spur " + lied.string(), 3, "Lyrabo", "", true},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.argumente.join(' ').toStdString());
        u.nachrichten.clear();
        u.starten();
        EXPECT_EQ(u.start().aufrufAusfuehren(f.argumente, f.zwischenablage), f.beendet);
        EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), f.spuren);
        EXPECT_EQ(u.fenster().windowTitle(), f.titel);
        EXPECT_EQ(u.fenster().isVisible(), !f.beendet);
        if (f.meldung.isEmpty()) {
            EXPECT_TRUE(u.nachrichten.empty()) << u.nachrichten.front().text.toStdString();
        } else {
            ASSERT_EQ(u.nachrichten.size(), 1u);
            EXPECT_TRUE(u.nachrichten[0].text.contains(f.meldung)) << u.nachrichten[0].text.toStdString();
        }
    }
}

TEST(Start, ZuletztGeoeffnetNeuesteZuerstOhneVerschwundene) {
    FensterUmgebung u;
    u.starten();
    QStringList pfade;
    for (const char* name : {"a.mid", "b.mid", "c.mid"}) {
        pfade.prepend(q(liedMitDreiSpuren().schreiben(u.ordner() / "lieder" / name)));
        u.oeffnen(pfade.front().toStdString());
    }
    EXPECT_EQ(zuletztImMenue(u), pfade);

    // A file that is gone leaves the list with a message; the open file stays open.
    std::filesystem::remove(pfade[1].toStdString());
    u.fenster().findChild<QMenu*>(QStringLiteral("mZuletzt"))->actions()[1]->trigger();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text, ZuletztMenue::gibtEsNichtMehr(pfade[1]));
    EXPECT_EQ(u.fenster().windowTitle(), "c.mid – Lyrabo");
    // Choosing one opens it, and it moves to the top; the list is kept for the next start.
    u.fenster().findChild<QMenu*>(QStringLiteral("mZuletzt"))->actions()[1]->trigger();
    EXPECT_EQ(u.fenster().windowTitle(), "a.mid – Lyrabo");
    const QStringList erwartet{pfade[2], pfade[0]};
    EXPECT_EQ(zuletztImMenue(u), erwartet);
    EXPECT_EQ(dateiLesen(u.ordner() / "data" / "LYRABO_zuletzt.txt"), (erwartet.join('\n') + '\n').toStdString());
    u.starten();
    EXPECT_EQ(zuletztImMenue(u), erwartet);
}

// A portable copy whose data folder cannot be made (a file is in its way; permissions would not
// stop root) keeps the user's files in the configuration folder, in their usual form.
TEST(Start, OhneSchreibbarenProgrammordnerImKonfigurationsordner) {
    FensterUmgebung u;
    TestOrdner konfiguration;
    const QByteArray vorher = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(konfiguration.pfad().string()));
    std::filesystem::remove_all(u.ordner() / "data");
    dateiErsetzen(u.ordner() / "data", "");
    const ProgrammOrte orte = orteDesProgramms(u.ordner());
    qputenv("XDG_CONFIG_HOME", vorher);
    ASSERT_EQ(orte.benutzer, konfiguration.pfad() / "lyrabo");

    u.starten(orte);
    const auto lied = liedMitDreiSpuren().schreiben(u.ordner() / "lieder" / "lied.mid");
    u.oeffnen(lied);
    EXPECT_TRUE(u.nachrichten.empty());
    const std::string ordner = (u.ordner() / "lieder").string() + "/";
    EXPECT_EQ(dateiLesen(orte.benutzer / "LYRABO_user.ini"),
              "\"Default-Ordner = \",\"" + ordner + "\"\r\n\"HoechsterTonMelodie = \",#FALSE#\r\n"
              "\"Legato = \",#FALSE#\r\n\"PausenLetzterTakt = \",#TRUE#\r\n\"PunktiertePausen = \",#FALSE#\r\n");
    EXPECT_EQ(dateiLesen(orte.benutzer / "LYRABO_zuletzt.txt"), lied.string() + "\n");
}

} // namespace
} // namespace lyrabo::test
