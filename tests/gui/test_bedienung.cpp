// Operating the window: opening and saving, how errors reach the user, the event list, the option
// controls, the note-font boxes, and ending the program.
#include "FensterUmgebung.h"

#include "midi/EreignisListe.h"
#include "ui/BlattAnsicht.h"
#include "ui/BlattBereich.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QProcess>

namespace lyrabo::test {
namespace {

// Each failure is reported as a message box naming what went wrong, and the window goes on.
TEST(Fehler, MeldungenLassenDasFensterLaufen) {
    FensterUmgebung u;
    u.startenMit(liedMitDreiSpuren());
    auto gemeldet = [&](const char* teil) {
        ASSERT_FALSE(u.nachrichten.empty()) << teil;
        EXPECT_TRUE(u.nachrichten.back().text.contains(QString::fromUtf8(teil))) << u.nachrichten.back().text.toStdString();
        EXPECT_TRUE(u.fenster().isVisible());
        EXPECT_FALSE(u.fenster().beendet());
    };
    const auto ziel = u.ordner() / "lieder" / "lied.wdb";
    u.dialogAntworten = {QString::fromStdString(ziel.string()),
                         QString::fromStdString((u.ordner() / "fehlt" / "lied.wdb").string())};
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text, "Daten gespeichert!");
    EXPECT_EQ(std::filesystem::file_size(ziel), 80896u);
    u.menue("mSpeichernAlsWDB")->trigger();
    gemeldet("lied.wdb");

    // The template the section files are cut from follows the harp size.
    std::filesystem::remove_all(u.ordner() / "ini");
    u.menue("mCreateAbschnittsINIs")->trigger();
    gemeldet("wdb_37.ini");
    u.menue("m37SaitenHarfe")->trigger();
    u.menue("mCreateAbschnittsINIs")->trigger();
    gemeldet("wdb_25.ini");

    // A RIFF file whose odd chunk runs up to the end without its pad byte.
    const auto kaputt = u.ordner() / "lieder" / "kaputt.mid";
    dateiErsetzen(kaputt, std::string("RIFFM\\hdRMIDA\x81\x41\0\0\0\0\0\0\0\0\xEA\x03\0\0\0\0\0\0", 31));
    u.oeffnen(kaputt);
    gemeldet("kaputt.mid\" ist keine gültige MIDI-Datei: Byte 20: Dem RIFF-Block \"????\" fehlt das Füllbyte am Ende.");
    // The reader let go of the old file, so its tracks are no longer offered.
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 0);
    EXPECT_EQ(u.el<QListWidget>("MessageList")->count(), 0);
    // A click where the tracks were does nothing; saving asks for a file first.
    u.el<QPushButton>("cmdKopieren")->click();
    u.menue("mSpeichernAlsWDB")->trigger();
    gemeldet("MIDI-Datei öffnen");
    EXPECT_EQ(u.nachrichten.size(), 6u);
    // The next file loads as usual; with a single track its row is the one chosen.
    MidiBauer eineSpur(96, 0);
    eineSpur.spur().name("Alles").tempo(0, 600000).note(0, 60, 96).note(0, 62, 96);
    u.oeffnen(eineSpur.schreiben(u.ordner() / "lieder" / "eine.mid"));
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 1);
    EXPECT_EQ(u.el<QListWidget>("TrackList")->currentRow(), 0);
}

TEST(Ereignisliste, ZeigtDieEreignisseDerSpurDezimalOderHexadezimal) {
    FensterUmgebung u;
    const auto lied = liedMitDreiSpuren();
    u.startenMit(lied);

    // The second row is preselected, so the list shows track 2.
    Midifile vergleich;
    vergleich.ladenAusBytes(lied.bytes(), "lied.mid");
    QStringList erwartet;
    for (const auto& z : DisplayTrackZeilen(vergleich, 2)) erwartet << QString::fromStdString(z);
    auto* liste = u.el<QListWidget>("MessageList");
    QStringList angezeigt;
    for (int i = 0; i < liste->count(); ++i) angezeigt << liste->item(i)->text();
    EXPECT_EQ(angezeigt, erwartet);

    // Event 3 is the note-off 480 ticks after the first note-on.
    liste->setCurrentRow(2);
    EXPECT_EQ(u.el<QLineEdit>("TimeEdit")->text(), "480");
    EXPECT_EQ(u.el<QLineEdit>("MessageEdit")->text(), "128");
    EXPECT_EQ(u.el<QLineEdit>("Data1Edit")->text(), "67");
    const int piepenVorher = u.fenster().piepAnzahl();
    u.el<QCheckBox>("HexCheck")->click();
    EXPECT_EQ(u.el<QLineEdit>("TimeEdit")->text(), "1E0");
    EXPECT_EQ(u.el<QLineEdit>("MessageEdit")->text(), "80");
    EXPECT_EQ(u.el<QLineEdit>("Data1Edit")->text(), "43");
    EXPECT_EQ(u.fenster().piepAnzahl(), piepenVorher + 1); // 480 is above 256
    liste->setCurrentRow(0);
    EXPECT_EQ(u.el<QLineEdit>("MsgTextEdit")->text(), "Melodie");

    u.el<QListWidget>("TrackList")->setCurrentRow(0);
    EXPECT_EQ(liste->item(0)->text(), "Track Name 3 : Tempo");
}

TEST(Optionen, ProgrammgesteuerteBewegungenSchreibenKeineEinstellung) {
    FensterUmgebung u;
    u.starten();
    u.fenster().setKlangNotenText("unverändert");
    u.fenster().Unterdrueckung(true);
    u.el<QSlider>("hsQuantisierung")->setValue(3);
    u.el<QSlider>("hsTranspo")->setValue(5);
    u.el<QRadioButton>("opKanal", 2)->click();
    u.fenster().Unterdrueckung(false);
    EXPECT_EQ(u.el<QLineEdit>("txtQuantisierung")->text(), "1/2");
    EXPECT_EQ(u.el<QLabel>("labTranspo")->text(), "5");
    EXPECT_EQ(u.einstellungen().QuantNotenwert(), 12);
    EXPECT_EQ(u.einstellungen().Transpo(), 0);
    EXPECT_EQ(u.einstellungen().KanalBelegung(), 0);
    EXPECT_EQ(u.fenster().klangNotenText(), "unverändert");

    // Refreshing the display follows the settings without writing them.
    u.einstellungen().QuantNotenwert(48);
    u.einstellungen().KanalBelegung(1);
    u.einstellungen().Legato(true);
    u.fenster().anzeigeAktuallisieren();
    EXPECT_EQ(u.el<QSlider>("hsQuantisierung")->value(), 5);
    EXPECT_EQ(u.el<QLineEdit>("txtQuantisierung")->text(), "1/4");
    EXPECT_TRUE(u.el<QRadioButton>("opKanal", 1)->isChecked());
    EXPECT_TRUE(u.el<QCheckBox>("chLegato")->isChecked());
    EXPECT_EQ(u.fenster().klangNotenText(), "unverändert");

    // A value that is no allowed length leaves the slider at 8.
    u.einstellungen().QuantNotenwert(13);
    u.fenster().anzeigeAktuallisieren();
    EXPECT_EQ(u.el<QSlider>("hsQuantisierung")->value(), 8);
    EXPECT_EQ(u.einstellungen().QuantNotenwert(), 13);
}

TEST(Notenschrift, SchriftlisteOhneDieErsteSchriftUndGepruefteCodes) {
    FensterUmgebung u;
    u.starten();
    // The program's note font leads the list and is the one chosen at start-up; of the system's
    // fonts every one but the first is offered, the first is left out on purpose.
    QStringList system = QFontDatabase::families();
    system.removeAll("Lyrabo Noten");
    ASSERT_FALSE(system.isEmpty());
    auto* liste = u.el<QComboBox>("comboFontname");
    ASSERT_EQ(liste->count(), system.size());
    EXPECT_EQ(liste->itemText(0), "Lyrabo Noten");
    EXPECT_EQ(liste->findText(system[0]), -1);
    EXPECT_EQ(u.einstellungen().Fontname(), "Lyrabo Noten");
    EXPECT_EQ(u.el<QLabel>("labPZeichen02", 3)->font().family(), "Lyrabo Noten");

    auto* feld = u.el<QLineEdit>("txtZeichen01", 2);
    feld->setText("104");
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 104);
    EXPECT_EQ(u.el<QLabel>("labZeichen01", 2)->text(), "h");
    // A code past 255 is reported and the stored code stays; a non-digit empties the box.
    feld->setText("300");
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 104);
    feld->setText("1x");
    EXPECT_EQ(feld->text(), "");
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 0);
}

TEST(Dialogfilter, WerdenInQtsFormUebersetzt) {
    EXPECT_EQ(dialogFilterFuerQt("MIDI-Datei(*.mid)|*.mid"), "MIDI-Datei(*.mid)");
    EXPECT_EQ(dialogFilterFuerQt("MS-Works-Datenbank  (*.wdb)|*.wdb"), "MS-Works-Datenbank  (*.wdb)");
    EXPECT_EQ(dialogFilterFuerQt("Texte|*.txt;*.csv|Alle Dateien|*.*"), "Texte (*.txt *.csv);;Alle Dateien (*.*)");
}

TEST(Beenden, DieAntwortEntscheidetUeberSpeichernUndEnde) {
    const struct {
        QMessageBox::StandardButton antwort;
        bool ohneDatenordner, beendet, gespeichert;
    } faelle[] = {{QMessageBox::Cancel, false, false, false},
                  {QMessageBox::Yes, false, true, true},
                  {QMessageBox::No, false, true, false},
                  {QMessageBox::Yes, true, false, false}};
    for (const auto& f : faelle) {
        SCOPED_TRACE(testing::Message() << f.antwort << (f.ohneDatenordner ? " ohne Ordner" : ""));
        FensterUmgebung u;
        u.starten();
        u.el<QCheckBox>("chLegato")->click();
        u.el<QCheckBox>("chPausenLetzerTakt")->click();
        if (f.ohneDatenordner) std::filesystem::remove_all(u.ordner() / "data");
        u.frageAntwort = f.antwort;
        u.menue("FileExit")->trigger();
        ASSERT_EQ(u.nachrichten.size(), f.ohneDatenordner ? 2u : 1u);
        EXPECT_EQ(u.nachrichten[0].text, "Wollen Sie Ihre User-Daten speichern?");
        EXPECT_EQ(u.nachrichten[0].icon, QMessageBox::Question);
        EXPECT_EQ(u.nachrichten[0].knoepfe, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        EXPECT_EQ(u.nachrichten.back().text.contains(QStringLiteral("User-Daten konnten nicht gespeichert werden.")),
                  f.ohneDatenordner);
        EXPECT_EQ(u.fenster().beendet(), f.beendet);
        EXPECT_EQ(u.fenster().isVisible(), !f.beendet);
        EXPECT_EQ(std::filesystem::exists(u.userDaten()), f.gespeichert);
        if (!f.gespeichert) continue;
        EXPECT_NE(dateiLesen(u.userDaten()).find("\"Legato = \",#TRUE#\r\n"), std::string::npos);
        // Started again, the window shows what was saved.
        u.starten();
        EXPECT_TRUE(u.el<QCheckBox>("chLegato")->isChecked());
        EXPECT_FALSE(u.el<QCheckBox>("chPausenLetzerTakt")->isChecked());
    }
}

TEST(Beenden, DieTitelleisteFragtNichtsUndSpeichertNichts) {
    FensterUmgebung u;
    u.starten();
    u.fenster().close();
    EXPECT_FALSE(u.fenster().isVisible());
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_FALSE(std::filesystem::exists(u.userDaten()));
}

// The melody mark sits on the melody, not on the preselected row, and leaves the labels alone; the
// menu entry selects it. Ticking the bass as accompaniment puts it on the sheet (lit in playback)
// and lightens the strings only it uses; "Passend transponieren" fits both voices, the menu's PDF
// is lyrabo-cli's with --begleitung, and a track wider than the harp gets the reason instead.
TEST(Melodie, MarkeBegleitungUndPassendTransponieren) {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    auto& bass = lied.spur().name("Bass");
    for (int ton : {43, 50, 55, 47}) bass.note(0, ton, 480);
    auto& melodie = lied.spur().name("Melodie");
    for (int ton : {67, 69, 71, 72}) melodie.note(0, ton, 480);
    lied.spur().name("Weit").note(0, 30, 960).note(0, 90, 960);
    FensterUmgebung u;
    const auto pfad = u.startenMit(lied);
    auto* spuren = u.el<QListWidget>("TrackList");
    EXPECT_EQ(spuren->currentRow(), 1);
    for (int zeile = 0; zeile < spuren->count(); ++zeile) {
        EXPECT_EQ(spuren->item(zeile)->toolTip().isEmpty(), zeile != 2) << zeile;  // only the mark explains itself
        EXPECT_FALSE(spuren->item(zeile)->text().contains(QStringLiteral("Melodie?")));
    }
    EXPECT_EQ(u.el<QCheckBox>("chSpurMischen", 3)->text(), QStringLiteral("3: Melodie"));
    u.menue("mMelodieSpur")->trigger();
    EXPECT_EQ(spuren->currentRow(), 2);

    auto* begleitung = u.el<QListWidget>("listBegleitung");
    ASSERT_EQ(begleitung->count(), 3);  // the tempo track has no notes
    begleitung->item(0)->setCheckState(Qt::Checked);
    const auto& stueck = u.fenster().blattBereich().stueck();
    EXPECT_EQ(std::count_if(stueck->noten.begin(), stueck->noten.end(), [](const auto& n) { return n.begleitung; }), 4);
    EXPECT_EQ(u.el<QLabel>("labSpalte", 0)->palette().color(QPalette::Window), QColor(165, 215, 235));  // the bass's 55
    u.fenster().blattBereich().wiedergabePosition(0);
    const auto& an = u.fenster().blattBereich().ansicht().hervorgehoben();
    for (size_t i = 0; i < stueck->noten.size(); ++i) EXPECT_EQ(an.at(i), stueck->noten[i].start == 0) << i;

    auto& blatt = u.fenster().blattBereich().ansicht();
    ASSERT_TRUE(blatt.blatt().transpoVorschlag);
    EXPECT_EQ(blatt.blatt().vorschlag, 12);  // 43 to 72 onto the strings
    u.el<QPushButton>("cmdPassendTransponieren")->click();
    EXPECT_EQ(u.el<QSlider>("hsTranspo")->value(), 12);
    EXPECT_EQ(blatt.blatt().ausserhalb, 0);
#ifdef LYRABO_CLI
    const auto fenster = u.ordner() / "fenster.pdf", cli = u.ordner() / "cli.pdf";
    u.dialogAntworten.push_back(QString::fromStdString(fenster.string()));
    u.menue("mBlattAlsPdf")->trigger();
    QProcess p;
    p.start(QStringLiteral(LYRABO_CLI), {"convert", QString::fromStdString(pfad.string()), "--spur", "melodie", "--begleitung",
                                         "2", "--transpo", "passend", "--pdf", QString::fromStdString(cli.string())});
    ASSERT_TRUE(p.waitForFinished(60000));
    EXPECT_TRUE(dateiLesen(fenster) == dateiLesen(cli));
#endif
    spuren->setCurrentRow(3);
    u.el<QPushButton>("cmdPassendTransponieren")->click();
    ASSERT_FALSE(u.nachrichten.empty());
    EXPECT_TRUE(u.nachrichten.back().text.contains(QStringLiteral("mehr Töne, als die Harfe Saiten hat")));
    EXPECT_EQ(u.el<QSlider>("hsTranspo")->value(), 12);
}

// The mark counts the notes on the strings: it follows the harp size and the transposition, and the
// selection stays where the user put it.
TEST(Melodie, MarkeFolgtHarfeUndTransposition) {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    auto& mittel = lied.spur().name("Mittel");
    for (int ton : {60, 62, 64, 65}) mittel.note(0, ton, 480);
    auto& hoch = lied.spur().name("Hoch");  // above the 25 strings, on the 37
    for (int ton : {84, 86, 88, 89}) hoch.note(0, ton, 480);
    FensterUmgebung u;
    u.startenMit(lied);
    auto* spuren = u.el<QListWidget>("TrackList");
    auto* harfe37 = u.menue("m37SaitenHarfe");
    const struct {
        bool saiten37;
        int transpo, markiert;
    } faelle[] = {{true, 0, 2}, {false, 0, 1}, {false, -12, 2}, {false, 0, 1}, {true, 0, 2}};
    for (const auto& f : faelle) {
        if (harfe37->isChecked() != f.saiten37) harfe37->trigger();
        u.el<QSlider>("hsTranspo")->setValue(f.transpo);
        for (int zeile = 0; zeile < spuren->count(); ++zeile)
            EXPECT_EQ(spuren->item(zeile)->toolTip().isEmpty(), zeile != f.markiert) << f.saiten37 << " " << f.transpo << " " << zeile;
        EXPECT_EQ(spuren->currentRow(), 1);
    }
}

} // namespace
} // namespace lyrabo::test
