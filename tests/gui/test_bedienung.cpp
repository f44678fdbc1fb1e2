// Opening files, the track list, the event list, the option controls and the code boxes, and how
// errors reach the user.
#include "FensterUmgebung.h"

#include "midi/EreignisListe.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

namespace lyrabo::test {
namespace {

QStringList zeilen(QListWidget* liste) {
    QStringList z;
    for (int i = 0; i < liste->count(); ++i) z << liste->item(i)->text();
    return z;
}

TEST(Oeffnen, FuelltSpurlisteUndWaehltDieZweiteZeile) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    EXPECT_TRUE(u.nachrichten.empty()) << u.nachrichten[0].text.toStdString();
    auto* spuren = u.el<QListWidget>("TrackList");
    EXPECT_EQ(zeilen(spuren), QStringList({"Tempo", "Melodie", "Bass"}));
    EXPECT_EQ(spuren->currentRow(), 1);
    EXPECT_TRUE(u.el<QSlider>("hsTranspo")->isEnabled());
    EXPECT_FALSE(u.el<QPushButton>("cmdKopieren")->isEnabled());
    EXPECT_FALSE(u.el<QPushButton>("cmdSpurenMischen")->isEnabled());
    EXPECT_EQ(u.el<QLabel>("LabelTempo")->text(), "120");
    EXPECT_EQ(u.el<QLabel>("LabelTicks")->text(), "480");
    EXPECT_EQ(u.el<QLabel>("LabelTimeSignature")->text(), "3/4");
    // The chosen folder is remembered in the user settings file at once.
    const std::string ini = dateiInhalt(u.ordner() / "data" / "LYRABO_user.ini");
    EXPECT_NE(ini.find((u.ordner() / "lieder").string()), std::string::npos) << ini;
    // One mixing switch per track.
    for (int i = 1; i <= 3; ++i) EXPECT_FALSE(u.el<QCheckBox>("chSpurMischen", i)->isChecked());
}

TEST(Oeffnen, EineDateiMitEinerSpurWaehltDieErsteZeile) {
    FensterUmgebung u;
    MidiBauer lied(96, 0);
    lied.spur().name("Alles").tempo(0, 600000).note(0, 60, 96).note(0, 62, 96);
    const auto pfad = u.lied("eine.mid", lied);
    u.starten();
    u.oeffnen(pfad);
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_EQ(u.el<QListWidget>("TrackList")->currentRow(), 0);
    EXPECT_EQ(u.el<QLabel>("LabelTempo")->text(), "100");
    EXPECT_EQ(u.el<QLabel>("LabelTicks")->text(), "96");
}

TEST(Oeffnen, AbbrechenImDialogMeldetNichtsUndLaesstDieSpurenStehen) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    u.dialogAntworten.push_back(std::nullopt);
    u.menue("FileOpen")->trigger();
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 3);
    EXPECT_FALSE(u.el<QPushButton>("cmdSpurenMischen")->isEnabled());
}

TEST(Oeffnen, KaputteDateiWirdDeutschGemeldetUndDasFensterLaeuftWeiter) {
    FensterUmgebung u;
    const auto gut = u.lied("lied.mid", liedMitDreiSpuren());
    const auto kaputt = u.datei("kaputt.mid", std::string("MThd\0\0\0\6\0\1\0\2\1\340MTrk\0\0\1\0\0\220", 24));
    u.starten();
    u.oeffnen(gut);
    u.oeffnen(kaputt);
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_TRUE(u.nachrichten[0].text.contains(QStringLiteral("kaputt.mid"))) << u.nachrichten[0].text.toStdString();
    EXPECT_TRUE(u.fenster().isVisible());
    EXPECT_FALSE(u.fenster().beendet());
    // The reader let go of the old file, so its tracks are no longer offered.
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 0);
    EXPECT_EQ(u.el<QListWidget>("MessageList")->count(), 0);
    EXPECT_FALSE(u.el<QPushButton>("cmdSpurenMischen")->isEnabled());
    // A click where the tracks were, or saving, now does nothing harmful.
    u.el<QPushButton>("cmdKopieren")->click();
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 2u);
    EXPECT_TRUE(u.nachrichten[1].text.contains(QStringLiteral("MIDI-Datei öffnen")));
    // The next good file loads as usual.
    u.oeffnen(gut);
    EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), 3);
}

TEST(Ereignisliste, ZeigtDieEreignisseDerSpurUndIhreWerte) {
    FensterUmgebung u;
    const auto lied = liedMitDreiSpuren();
    const auto pfad = u.lied("lied.mid", lied);
    u.starten();
    u.oeffnen(pfad);

    u.menue("mShowMIDIEvents")->trigger();
    EXPECT_TRUE(u.el<QFrame>("frameMessage")->isVisible());
    EXPECT_FALSE(u.el<QFrame>("frameKlangnoten")->isVisible());

    Midifile vergleich;
    vergleich.ladenAusBytes(lied.bytes(), "lied.mid");
    QStringList erwartet;
    for (const auto& z : DisplayTrackZeilen(vergleich, 2)) erwartet << QString::fromStdString(z);
    auto* liste = u.el<QListWidget>("MessageList");
    EXPECT_EQ(zeilen(liste), erwartet);
    ASSERT_GE(liste->count(), 3);
    EXPECT_EQ(liste->item(1)->text(), "Note On 90");

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
    EXPECT_EQ(u.fenster().piepAnzahl(), piepenVorher + 1);  // 480 is above 256
    // The track name event shows its text.
    liste->setCurrentRow(0);
    EXPECT_EQ(u.el<QLineEdit>("MsgTextEdit")->text(), "Melodie");

    // Another track refills the list.
    u.el<QListWidget>("TrackList")->setCurrentRow(0);
    EXPECT_EQ(liste->item(0)->text(), "Track Name 3 : Tempo");

    u.el<QPushButton>("cmdToKlangnoten")->click();
    EXPECT_TRUE(u.el<QFrame>("frameKlangnoten")->isVisible());
    EXPECT_FALSE(u.el<QFrame>("frameMessage")->isVisible());
    EXPECT_FALSE(u.menue("mShowMIDIEvents")->isChecked());
    u.el<QPushButton>("cmdToMIDIEvents")->click();
    EXPECT_TRUE(u.el<QFrame>("frameMessage")->isVisible());
}

TEST(Ereignisliste, ZeigtHoechstens500Ereignisse) {
    FensterUmgebung u;
    MidiBauer lied(480);
    lied.spur().tempo(0, 500000);
    auto& viele = lied.spur();
    for (int i = 0; i < 600; ++i) viele.note(0, 60 + i % 12, 10);
    const auto pfad = u.lied("viele.mid", lied);
    u.starten();
    u.oeffnen(pfad);
    EXPECT_EQ(u.el<QListWidget>("MessageList")->count(), 500);
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
    EXPECT_EQ(u.einstellungen().QuantNotenwert(), 48);
    EXPECT_EQ(u.fenster().klangNotenText(), "unverändert");

    // A value that is no allowed length leaves the slider at 8.
    u.einstellungen().QuantNotenwert(13);
    u.fenster().anzeigeAktuallisieren();
    EXPECT_EQ(u.el<QSlider>("hsQuantisierung")->value(), 8);
    EXPECT_EQ(u.einstellungen().QuantNotenwert(), 13);
}

TEST(Optionen, JedeBedienungSchreibtIhreEinstellung) {
    FensterUmgebung u;
    u.starten();
    u.el<QSlider>("hsQuantisierung")->setValue(5);
    EXPECT_EQ(u.einstellungen().QuantNotenwert(), 48);
    EXPECT_EQ(u.einstellungen().QuantTicks(), 480);
    u.el<QSlider>("hsTranspo")->setValue(-7);
    EXPECT_EQ(u.einstellungen().Transpo(), -7);
    EXPECT_EQ(u.el<QLabel>("labTranspo")->text(), "-7");
    u.el<QRadioButton>("opKanal", 2)->click();
    EXPECT_EQ(u.einstellungen().KanalBelegung(), 2);
    u.el<QCheckBox>("chLegato")->click();
    u.el<QCheckBox>("chHoechsterTonMelodie")->click();
    u.el<QCheckBox>("chPunktPausen")->click();
    u.el<QCheckBox>("chPausenLetzerTakt")->click();
    EXPECT_TRUE(u.einstellungen().Legato());
    EXPECT_TRUE(u.einstellungen().HoechsterTonMelodie());
    EXPECT_TRUE(u.einstellungen().PunktiertePausen());
    EXPECT_FALSE(u.einstellungen().PausenLetzterTakt());
    u.el<QCheckBox>("chClipExport", 5)->click();
    u.el<QCheckBox>("chClipExport", 2)->click();
    EXPECT_EQ(u.einstellungen().ClipExportFlags()->Item(5)->Value(), 1);
    EXPECT_EQ(u.einstellungen().ClipExportFlags()->Item(2)->Value(), 0);
    u.menue("m37SaitenHarfe")->trigger();
    EXPECT_EQ(u.einstellungen().WDBSpaltenAnzahl(), 25);
    EXPECT_FALSE(u.menue("m37SaitenHarfe")->isChecked());
    u.menue("m37SaitenHarfe")->trigger();
    EXPECT_EQ(u.einstellungen().WDBSpaltenAnzahl(), 37);
    for (int i = 1; i <= 6; ++i) {
        u.el<QPushButton>("cmdEbene", i)->click();
        for (int k = 1; k <= 6; ++k) EXPECT_EQ(u.el<QFrame>("frameBereich", k)->isVisibleTo(&u.fenster()), k == i);
    }
    EXPECT_TRUE(u.nachrichten.empty());
}

TEST(Optionen, MischkaestchenGebenDenMischknopfFrei) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    auto* mischen = u.el<QPushButton>("cmdSpurenMischen");
    u.el<QCheckBox>("chSpurMischen", 2)->click();
    EXPECT_TRUE(mischen->isEnabled());
    EXPECT_EQ(u.einstellungen().SpurSelected()->Item(2)->Value(), 1);
    u.el<QCheckBox>("chSpurMischen", 3)->click();
    u.el<QCheckBox>("chSpurMischen", 2)->click();
    EXPECT_TRUE(mischen->isEnabled());
    u.el<QCheckBox>("chSpurMischen", 3)->click();
    EXPECT_FALSE(mischen->isEnabled());
    EXPECT_EQ(u.einstellungen().SpurSelected()->Item(3)->Value(), 0);
}

TEST(Notenschrift, CodefelderPruefenUndSpeichernIhrenWert) {
    FensterUmgebung u;
    u.starten();
    auto* feld = u.el<QLineEdit>("txtZeichen01", 2);
    auto* vorschau = u.el<QLabel>("labZeichen01", 2);
    feld->setText("104");
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 104);
    EXPECT_EQ(vorschau->text(), "h");
    feld->setText("300");
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 104);
    feld->setText("1x");
    EXPECT_EQ(feld->text(), "");
    EXPECT_EQ(u.programm().FontNoten->Item(3)->Zeichen1(), 0);
    EXPECT_EQ(vorschau->text(), "");
    // The dot box of a rest goes to the rest table's second code.
    u.el<QLineEdit>("txtPZeichen02", 6)->setText("46");
    EXPECT_EQ(u.programm().FontPausen->Item(7)->Zeichen2(), 46);
    EXPECT_EQ(u.el<QLabel>("labPZeichen02", 6)->text(), ".");
    // While the program fills the boxes nothing is stored back.
    u.fenster().Unterdrueckung(true);
    u.el<QLineEdit>("txtPZeichen01", 0)->setText("55");
    u.fenster().Unterdrueckung(false);
    EXPECT_EQ(u.programm().FontPausen->Item(1)->Zeichen1(), 102);
}

TEST(Fehler, FehlendeVorlageWirdGemeldet) {
    FensterUmgebung u(false);
    u.starten();
    u.menue("mCreateAbschnittsINIs")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_TRUE(u.nachrichten[0].text.contains(QStringLiteral("wdb_37.ini"))) << u.nachrichten[0].text.toStdString();
    EXPECT_TRUE(u.fenster().isVisible());
}

TEST(Dialogfilter, WerdenInQtsFormUebersetzt) {
    EXPECT_EQ(dialogFilterFuerQt("MIDI-Datei(*.mid)|*.mid"), "MIDI-Datei(*.mid)");
    EXPECT_EQ(dialogFilterFuerQt("MS-Works-Datenbank  (*.wdb)|*.wdb"), "MS-Works-Datenbank  (*.wdb)");
    EXPECT_EQ(dialogFilterFuerQt("Texte|*.txt;*.csv|Alle Dateien|*.*"), "Texte (*.txt *.csv);;Alle Dateien (*.*)");
}

} // namespace
} // namespace lyrabo::test
