// Start-up, the automatic run from the clipboard, the end of the program, help and about.
#include "FensterUmgebung.h"

#include "engine/CKLNCreator.h"
#include "settings/UserDaten.h"
#include "ui/Hilfe.h"

#include <QClipboard>
#include <QComboBox>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QTextBrowser>
#include <QCheckBox>

namespace lyrabo::test {
namespace {

QColor hintergrund(QLabel* l) { return l->palette().color(QPalette::Window); }

TEST(Start, LegtDieSaitenspaltenWieHarfensaitenNebeneinander) {
    FensterUmgebung u;
    u.starten();
    EXPECT_TRUE(u.fenster().isVisible());
    int vorherRechts = -1;
    for (int i = 0; i <= 36; ++i) {
        QLabel* feld = u.el<QLabel>("labSpalte", i);
        ASSERT_NE(feld, nullptr);
        EXPECT_TRUE(feld->isVisibleTo(&u.fenster()));
        if (vorherRechts >= 0) {
            EXPECT_EQ(feld->x(), vorherRechts + 3) << "Feld " << i;
        }
        vorherRechts = feld->x() + feld->width();
        const bool oktave = i % 12 == 0;
        EXPECT_EQ(hintergrund(feld) == QColor(150, 150, 255), oktave) << "Feld " << i;
    }
    EXPECT_LT(u.el<QLabel>("labSpalteBorder", 0)->x(), u.el<QLabel>("labSpalte", 0)->x());
    EXPECT_GT(u.el<QLabel>("labSpalteBorder", 1)->x(), u.el<QLabel>("labSpalte", 36)->x());
}

TEST(Start, FuelltDieSchriftlisteOhneDieErsteSchriftUndZeigtDieZeichentabellen) {
    FensterUmgebung u;
    u.starten();
    const QStringList schriften = QFontDatabase::families();
    auto* combo = u.el<QComboBox>("comboFontname");
    ASSERT_EQ(combo->count(), std::max<qsizetype>(0, schriften.size() - 1));
    if (schriften.size() >= 2) {
        EXPECT_EQ(combo->itemText(0), schriften[1]);
        EXPECT_EQ(combo->currentIndex(), 0);
        EXPECT_EQ(u.einstellungen().Fontname(), schriften[1].toStdString());
        EXPECT_EQ(u.el<QLabel>("labZeichen01", 0)->font().family(), u.el<QLabel>("labPZeichen02", 7)->font().family());
    }
    // Note table: whole = c (99), dotted half = v (118) with the comma (44) as dot.
    EXPECT_EQ(u.el<QLineEdit>("txtZeichen01", 0)->text(), "99");
    EXPECT_EQ(u.el<QLabel>("labZeichen01", 0)->text(), "c");
    EXPECT_EQ(u.el<QLineEdit>("txtZeichen02", 1)->text(), "44");
    EXPECT_EQ(u.el<QLabel>("labZeichen02", 1)->text(), ",");
    EXPECT_EQ(u.el<QLineEdit>("txtZeichen02", 0)->text(), "");
    EXPECT_EQ(u.el<QLabel>("labZeichen02", 2)->text(), "");
    EXPECT_EQ(u.el<QLineEdit>("txtPZeichen01", 7)->text(), "107");
    EXPECT_EQ(u.el<QLabel>("labPZeichen01", 7)->text(), "k");
    // The codes shown are the tables' own: nothing was stored back while they were filled.
    EXPECT_EQ(u.programm().FontNoten->Item(1)->Zeichen1(), 99);
    EXPECT_EQ(u.programm().FontNoten->Item(2)->Zeichen2(), 44);
}

TEST(Start, OhneUserDatenMitDenVorgabenUndOhneMeldung) {
    FensterUmgebung u;
    u.starten();
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_FALSE(u.el<QSlider>("hsTranspo")->isEnabled());
    EXPECT_EQ(u.el<QSlider>("hsQuantisierung")->value(), 8);
    EXPECT_EQ(u.el<QLineEdit>("txtQuantisierung")->text(), "1/16");
    EXPECT_TRUE(u.el<QCheckBox>("chPausenLetzerTakt")->isChecked());
    EXPECT_FALSE(u.el<QCheckBox>("chLegato")->isChecked());
    EXPECT_TRUE(u.el<QCheckBox>("chClipExport", 1)->isChecked());
    EXPECT_FALSE(u.el<QCheckBox>("chClipExport", 5)->isChecked());
    EXPECT_TRUE(u.menue("m37SaitenHarfe")->isChecked());
    EXPECT_TRUE(u.programm().AktuellesInitDir.empty());
}

TEST(Start, LiestDieUserDatenUndZeigtSie) {
    FensterUmgebung u;
    const std::string ordner = (u.ordner() / "lieder").string() + "/";
    std::ofstream(u.ordner() / "data" / "LYRABO_user.ini", std::ios::binary)
        << "\"Default-Ordner = \",\"" << ordner << "\"\r\n"
        << "\"HoechsterTonMelodie = \",#TRUE#\r\n\"Legato = \",#TRUE#\r\n"
        << "\"PausenLetzterTakt = \",#FALSE#\r\n\"PunktiertePausen = \",#TRUE#\r\n";
    u.starten();
    EXPECT_EQ(u.programm().AktuellesInitDir, ordner);
    EXPECT_TRUE(u.el<QCheckBox>("chHoechsterTonMelodie")->isChecked());
    EXPECT_TRUE(u.el<QCheckBox>("chLegato")->isChecked());
    EXPECT_FALSE(u.el<QCheckBox>("chPausenLetzerTakt")->isChecked());
    EXPECT_TRUE(u.el<QCheckBox>("chPunktPausen")->isChecked());
    // The open dialog starts in that folder.
    u.dialogAntworten.push_back(std::nullopt);
    u.menue("FileOpen")->trigger();
    ASSERT_EQ(u.dialogAufrufe.size(), 1u);
    EXPECT_EQ(u.dialogAufrufe[0].startOrdner.toStdString(), ordner);
    EXPECT_EQ(u.dialogAufrufe[0].filter, "MIDI-Datei(*.mid)");
}

TEST(Automatik, BefehlInDerZwischenablageRechnetSpur1UmUndEndetOhneFrage) {
    FensterUmgebung u;
    const auto pfad = u.lied("auto.mid", liedMitDreiSpuren());
    u.starten();
    const QString befehl = QStringLiteral("Create Harfe-Spur ") + QString::fromStdString(pfad.string());
    QGuiApplication::clipboard()->setText(befehl);
    EXPECT_TRUE(u.start().automatischerLauf(QGuiApplication::clipboard()->text().toStdString()));
    EXPECT_TRUE(u.nachrichten.empty()) << u.nachrichten[0].text.toStdString();
    EXPECT_TRUE(u.fenster().beendet());
    EXPECT_FALSE(u.fenster().isVisible());
    EXPECT_FALSE(std::filesystem::exists(u.ordner() / "data" / "LYRABO_user.ini"));
    EXPECT_EQ(u.einstellungen().MIDIFilePath(), pfad.string());
    EXPECT_TRUE(u.einstellungen().AutoRun());
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 3);
    EXPECT_EQ(u.einstellungen().SpurSelected()->Item(1)->Value(), 1);
    EXPECT_EQ(u.einstellungen().SpurSelected()->Item(2)->Value(), 0);
}

TEST(Automatik, AndererTextStartetNichts) {
    FensterUmgebung u;
    const auto pfad = u.lied("auto.mid", liedMitDreiSpuren()).string();
    u.starten();
    for (const std::string& text : {"create harfe-spur " + pfad, "Create Harfe-Spur " + pfad.substr(0, pfad.size() - 4) + ".MID",
                                    std::string(), std::string("Hallo")}) {
        EXPECT_FALSE(u.start().automatischerLauf(text)) << text;
    }
    EXPECT_FALSE(u.fenster().beendet());
    EXPECT_TRUE(u.fenster().isVisible());
    EXPECT_FALSE(u.einstellungen().AutoRun());
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 0);
}

TEST(Automatik, FehlendeDateiWirdGemeldetUndDasProgrammEndetTrotzdem) {
    FensterUmgebung u;
    u.starten();
    const auto pfad = (u.ordner() / "lieder" / "fehlt.mid").string();
    EXPECT_TRUE(u.start().automatischerLauf("Create Harfe-Spur " + pfad));
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_TRUE(u.nachrichten[0].text.contains(QStringLiteral("fehlt.mid")));
    EXPECT_TRUE(u.fenster().beendet());
}

TEST(Beenden, AbbrechenLaesstDasProgrammOhneSpeichernLaufen) {
    FensterUmgebung u;
    u.starten();
    u.frageAntwort = QMessageBox::Cancel;
    u.menue("FileExit")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text, "Wollen Sie Ihre User-Daten speichern?");
    EXPECT_EQ(u.nachrichten[0].icon, QMessageBox::Question);
    EXPECT_EQ(u.nachrichten[0].knoepfe, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    EXPECT_FALSE(u.fenster().beendet());
    EXPECT_TRUE(u.fenster().isVisible());
    EXPECT_FALSE(std::filesystem::exists(u.ordner() / "data" / "LYRABO_user.ini"));
}

TEST(Beenden, JaSpeichertDieUserDatenNeinNicht) {
    {
        FensterUmgebung u;
        u.starten();
        u.el<QCheckBox>("chLegato")->click();
        u.frageAntwort = QMessageBox::Yes;
        u.menue("FileExit")->trigger();
        EXPECT_TRUE(u.fenster().beendet());
        EXPECT_FALSE(u.fenster().isVisible());
        const std::string inhalt = dateiInhalt(u.ordner() / "data" / "LYRABO_user.ini");
        EXPECT_NE(inhalt.find("\"Legato = \",#TRUE#\r\n"), std::string::npos) << inhalt;
    }
    {
        FensterUmgebung u;
        u.starten();
        u.frageAntwort = QMessageBox::No;
        u.menue("FileExit")->trigger();
        EXPECT_TRUE(u.fenster().beendet());
        EXPECT_FALSE(std::filesystem::exists(u.ordner() / "data" / "LYRABO_user.ini"));
    }
}

TEST(Beenden, MisslungenesSpeichernWirdGemeldetUndDasProgrammBleibt) {
    FensterUmgebung u;
    u.starten();
    std::filesystem::remove_all(u.ordner() / "data");
    u.frageAntwort = QMessageBox::Yes;
    u.menue("FileExit")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 2u);
    EXPECT_TRUE(u.nachrichten[1].text.contains(QStringLiteral("User-Daten konnten nicht gespeichert werden.")))
        << u.nachrichten[1].text.toStdString();
    EXPECT_FALSE(u.fenster().beendet());
    EXPECT_TRUE(u.fenster().isVisible());
}

TEST(Beenden, DieTitelleisteFragtNichtsUndSpeichertNichts) {
    FensterUmgebung u;
    u.starten();
    u.fenster().close();
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_FALSE(u.fenster().isVisible());
    EXPECT_FALSE(std::filesystem::exists(u.ordner() / "data" / "LYRABO_user.ini"));
}

TEST(Hilfe, HilfeknopfZeigtDieAnleitungZumNotenblatt) {
    FensterUmgebung u;
    u.starten();
    u.el<QPushButton>("cmdHelp")->click();
    auto* hilfe = u.fenster().findChild<frmHilfe*>(QStringLiteral("frmHilfe"));
    ASSERT_NE(hilfe, nullptr);
    EXPECT_TRUE(hilfe->isVisible());
    EXPECT_EQ(hilfe->thema(), "weg");
    const QString text = hilfe->browser()->toPlainText();
    for (const char* teil : {"Der Weg zum Notenblatt", "MIDI-Datei öffnen", "Transponieren", "Works-Datenbank speichern",
                             "Drucken"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(teil))) << teil;
    hilfe->close();
    u.menue("mInhalt")->trigger();
    EXPECT_TRUE(hilfe->isVisible());
    EXPECT_TRUE(u.nachrichten.empty());
}

TEST(Hilfe, InfoNenntProgrammUndVersion) {
    FensterUmgebung u;
    u.starten();
    u.menue("mInfo")->trigger();
    auto* info = u.fenster().findChild<frmInfo*>(QStringLiteral("frmInfo"));
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->isVisible());
    const QString text = info->findChild<QLabel*>(QStringLiteral("labInfo"))->text();
    EXPECT_TRUE(text.contains(QStringLiteral("Lyrabo")));
    EXPECT_TRUE(text.contains(QStringLiteral(LYRABO_VERSION)));
    // Closing the main window takes the help windows with it.
    u.fenster().close();
    EXPECT_FALSE(info->isVisible());
}

} // namespace
} // namespace lyrabo::test
