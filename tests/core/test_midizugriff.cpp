// Opening a MIDI file in the program: track labels, tempo, time signatures and the per-bar tables.
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "model/Datei.h"
#include "settings/UserDaten.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>

using namespace lyrabo;
using lyrabo::test::MidiBauer;
using lyrabo::test::TestOrdner;

namespace {

class ProtokollForm : public IForm {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return 1; }
    void anzeigeAktuallisieren() override { ablauf.push_back("anzeige"); }
    void setLabelTempo(const std::string& t) override { labelTempo = t; }
    void setLabelTicks(const std::string& t) override { labelTicks = t; }
    void setLabelTimeSignature(const std::string& t) override { labelTakt = t; }
    void trackListeFuellen(const std::vector<std::string>& l) override {
        labels = l;
        ablauf.push_back("spuren");
    }
    void nachDateiGeladen() override { ablauf.push_back("geladen"); }
    void spurenMischenSperren() override { ablauf.push_back("sperren"); }

    std::vector<std::string> meldungen, labels, ablauf;
    std::string labelTempo = "-", labelTicks = "-", labelTakt = "-";
};

class FesterDialog : public IDialog {
public:
    explicit FesterDialog(std::optional<std::string> w) : wahl(std::move(w)) {}
    std::optional<std::string> oeffnen(const std::string& initDir, const std::string& filter) override {
        gefragtIn = initDir;
        gefragtFilter = filter;
        return wahl;
    }
    std::optional<std::string> speichern(const std::string&, int) override { return std::nullopt; }
    std::optional<std::string> wahl;
    std::string gefragtIn, gefragtFilter;
};

// A program with its folder (data/ beside it) and globals in place.
struct Aufbau {
    explicit Aufbau(IDialog* dialog = nullptr) : programm(ordner.pfad(), form, dialog) {
        std::filesystem::create_directories(ordner / "data");
        programm.initGlobals();
        form.ablauf.clear();
    }
    // Writes the file and opens it without a dialog.
    bool oeffnen(const MidiBauer& b, const std::string& name = "lied.mid") {
        programm.Einstellungen().MIDIFilePath(b.schreiben(ordner / name).string());
        return programm.openMIDIFile(2);
    }
    std::vector<int16_t> werte(const SammlungRef<CInteger>& t) {
        std::vector<int16_t> v;
        for (const auto& i : *t) v.push_back(i->Value());
        return v;
    }
    TestOrdner ordner;
    ProtokollForm form;
    CProgramm programm;
};

} // namespace

TEST(MidiOeffnen, SpurenTempoUndTaktartAusSpurEins) {
    Aufbau a;
    MidiBauer b(240);
    b.spur().name("Melodie").tempo(0, 500000).taktart(0, 3, 2).tempo(960, 250000).ende();
    b.spur().note(0, 60, 240).ende();
    b.spur().name("").note(0, 62, 240).ende();
    a.programm.Einstellungen().Transpo(5);
    ASSERT_TRUE(a.oeffnen(b));

    EXPECT_EQ(a.form.ablauf, (std::vector<std::string>{"anzeige", "spuren", "geladen", "sperren"}));
    EXPECT_EQ(a.form.labels, (std::vector<std::string>{"Melodie", "Track 2", "Track 3 (null)"}));
    // The first tempo decides, later ones only enter the table.
    EXPECT_EQ(a.form.labelTempo, "120");
    EXPECT_EQ(a.programm.Einstellungen().Tempo(), 120);
    EXPECT_EQ(a.form.labelTicks, "240");
    EXPECT_EQ(a.programm.Einstellungen().TicksPerQuarterNote(), 240);
    EXPECT_EQ(a.form.labelTakt, "3/4");
    EXPECT_EQ(a.programm.Einstellungen().Numerator(), 3);
    EXPECT_EQ(a.programm.Einstellungen().Denominator(), 2); // the exponent, on purpose
    EXPECT_EQ(a.programm.Einstellungen().TaktLaenge(), 720);
    EXPECT_EQ(a.programm.Einstellungen().Transpo(), 5); // mode 2 keeps the globals

    const auto& spuren = a.programm.Einstellungen().SpurSelected();
    ASSERT_EQ(spuren->Count(), 3);
    EXPECT_EQ(spuren->Item(3)->ID(), 3);
    EXPECT_EQ(spuren->Item(3)->Value(), 0);

    // The engine reads through the very same reader.
    EXPECT_EQ(a.programm.KLNCreator().MIDIFile(), &a.programm.Midifile1);
    EXPECT_EQ(a.programm.KLNCreator().KlangNoten(), a.programm.KlangNoten);
}

TEST(MidiOeffnen, TempoTabelle) {
    Aufbau a;
    MidiBauer b(480);
    b.spur().tempo(0, 500000).tempo(960, 250000).tempo(480, 1000000).ende();
    ASSERT_TRUE(a.oeffnen(b));
    ASSERT_EQ(a.programm.TempoAnzahl, 3);
    const auto& t = a.programm.TempoTabelle;
    EXPECT_EQ(t[1].tempo, 500000);
    EXPECT_EQ(t[1].msProTick, 1);      // 1.04
    EXPECT_EQ(t[1].ticksProMs1000, 1); // 0.96
    EXPECT_EQ(t[1].positionMs, 0);
    EXPECT_EQ(t[2].msProTick, 1);      // 0.52
    EXPECT_EQ(t[2].ticksProMs1000, 2); // 1.92
    EXPECT_EQ(t[2].positionMs, 960);   // its own delta at the previous entry's rate
    EXPECT_EQ(t[3].msProTick, 2);      // 2.08
    EXPECT_EQ(t[3].ticksProMs1000, 0); // 0.48
    EXPECT_EQ(t[3].positionMs, 1440);

    // The next file starts with an empty table.
    MidiBauer zwei(480);
    zwei.spur().tempo(0, 600000).ende();
    ASSERT_TRUE(a.oeffnen(zwei, "zwei.mid"));
    EXPECT_EQ(a.programm.TempoAnzahl, 1);
    EXPECT_EQ(a.programm.TempoTabelle[2].tempo, 0);
    EXPECT_EQ(a.programm.Einstellungen().Tempo(), 100);

    MidiBauer zuViele(480);
    auto& s = zuViele.spur();
    for (int i = 0; i < 151; ++i) s.tempo(10, 500000);
    s.ende();
    try {
        a.oeffnen(zuViele, "viele.mid");
        FAIL();
    } catch (const IndexFehler& f) {
        EXPECT_NE(std::string(f.what()).find("mehr als 150 Tempowechsel"), std::string::npos);
    }
    EXPECT_EQ(a.programm.TempoAnzahl, 150);
}

TEST(MidiOeffnen, OhneTempoUndTaktartBleibtAllesWieEsWar) {
    Aufbau a;
    MidiBauer b(96);
    b.spur().note(0, 60, 96).ende();
    ASSERT_TRUE(a.oeffnen(b));
    EXPECT_EQ(a.form.labelTempo, "-");
    EXPECT_EQ(a.form.labelTicks, "-");
    EXPECT_EQ(a.form.labelTakt, "-");
    EXPECT_EQ(a.programm.Einstellungen().Tempo(), 0);
    EXPECT_EQ(a.programm.Einstellungen().TicksPerQuarterNote(), 480);
    EXPECT_EQ(a.programm.Einstellungen().Numerator(), 0);
    EXPECT_EQ(a.form.labels, (std::vector<std::string>{"Track 1"}));

    const auto& ts = a.programm.TimeSignatures();
    ASSERT_EQ(ts->Count(), 1);
    EXPECT_EQ(ts->Item(1)->ID(), 1);
    EXPECT_EQ(ts->Item(1)->Numerator(), 4);
    EXPECT_EQ(ts->Item(1)->Denominator(), 4);
    EXPECT_EQ(ts->Item(1)->ABSTime(), 0);
}

TEST(MidiOeffnen, DialogAbbruchUndFehlenderDialog) {
    FesterDialog abbruch(std::nullopt);
    Aufbau a(&abbruch);
    a.programm.Einstellungen().Transpo(7);
    EXPECT_FALSE(a.programm.openMIDIFile(1));
    EXPECT_EQ(abbruch.gefragtFilter, "MIDI-Datei(*.mid)|*.mid");
    // Mode 1 starts every global over, even when the dialog is cancelled.
    EXPECT_EQ(a.programm.Einstellungen().Transpo(), 0);
    EXPECT_EQ(a.form.ablauf, (std::vector<std::string>{"anzeige", "sperren"}));

    FesterDialog leer(std::string{});
    Aufbau b(&leer);
    EXPECT_FALSE(b.programm.openMIDIFile(1));

    Aufbau ohne;
    EXPECT_FALSE(ohne.programm.openMIDIFile(1));
    EXPECT_EQ(ohne.form.ablauf.back(), "sperren");
}

TEST(MidiOeffnen, GewaehlterOrdnerWirdSofortGespeichert) {
    TestOrdner lieder;
    MidiBauer b;
    b.spur().note(0, 60, 480).ende();
    auto datei = b.schreiben(lieder / "x.mid");
    FesterDialog dialog(datei.string());
    Aufbau a(&dialog);
    a.programm.AktuellesInitDir = "/vorher/";
    ASSERT_TRUE(a.programm.openMIDIFile(1));
    EXPECT_EQ(dialog.gefragtIn, "/vorher/");
    std::string ordner = lieder.pfad().string() + "/";
    EXPECT_EQ(a.programm.Einstellungen().InitDir(), ordner);
    EXPECT_EQ(a.programm.AktuellesInitDir, ordner);
    std::string ini = dateiLesen(userDatenPfad(a.ordner.pfad()));
    EXPECT_EQ(ini.substr(0, ini.find("\r\n")), "\"Default-Ordner = \",\"" + ordner + "\"");
    EXPECT_EQ(a.programm.Midifile1.TrackCount(), 1);
    EXPECT_TRUE(a.form.meldungen.empty());

    // A Windows path keeps its folder with the trailing backslash, whether or not the file loads.
    FesterDialog win(std::string("C:\\Lieder\\x.mid"));
    Aufbau w(&win);
    EXPECT_THROW(w.programm.openMIDIFile(1), MidiDateiFehler);
    EXPECT_EQ(w.programm.Einstellungen().InitDir(), "C:\\Lieder\\");
    EXPECT_EQ(w.form.ablauf.back(), "sperren");
}

TEST(MidiOeffnen, SpeicherfehlerWirdGemeldetUndDieDateiTrotzdemGeladen) {
    TestOrdner lieder;
    MidiBauer b;
    b.spur().note(0, 60, 480).ende();
    FesterDialog dialog(b.schreiben(lieder / "x.mid").string());
    Aufbau a(&dialog);
    std::filesystem::remove_all(a.ordner / "data"); // the data folder is never created
    ASSERT_TRUE(a.programm.openMIDIFile(1));
    ASSERT_EQ(a.form.meldungen.size(), 1u);
    EXPECT_EQ(a.form.meldungen[0].rfind("User-Daten konnten nicht gespeichert werden.", 0), 0u);
    EXPECT_EQ(a.programm.Midifile1.TrackCount(), 1);
}

TEST(MidiOeffnen, KaputteDateiGehtAnDenAufruferUndLaesstDenLeserLeer) {
    Aufbau a;
    MidiBauer gut;
    gut.spur().note(0, 60, 480).ende();
    ASSERT_TRUE(a.oeffnen(gut));
    a.form.ablauf.clear();

    auto kaputt = a.ordner / "kaputt.mid";
    dateiErsetzen(kaputt, gut.bytes().substr(0, 25));
    a.programm.Einstellungen().MIDIFilePath(kaputt.string());
    try {
        a.programm.openMIDIFile(2);
        FAIL();
    } catch (const MidiDateiFehler& f) {
        EXPECT_EQ(std::string(f.what()).rfind("Die Datei \"" + kaputt.string() + "\" ist keine gültige MIDI-Datei: ", 0), 0u);
    }
    EXPECT_FALSE(a.programm.Midifile1.geladen());
    EXPECT_EQ(a.form.ablauf, (std::vector<std::string>{"anzeige", "sperren"}));
}

TEST(MidiOeffnen, SpurnameUeberDenSechzehnBitCursorHinaus) {
    Aufbau a;
    MidiBauer b;
    b.spur().ende();
    auto& s = b.spur().an(0, 1, 60);
    for (int i = 0; i < 33000; ++i) s.ev(1, {61, 1});
    s.ende();
    // Track 2 has no name, so its label walks past event 32767: the overflow of the cursor.
    EXPECT_THROW(a.oeffnen(b), UeberlaufFehler);
    EXPECT_EQ(a.programm.Midifile1.TrackCount(), 2);
}

// ---- bar tables ----

namespace {
// Track 1 with the given time signatures (tick, numerator, exponent) and an end at `ende`.
MidiBauer mitTaktarten(uint16_t division, std::vector<std::array<int, 3>> arten, uint32_t ende) {
    MidiBauer b(division);
    auto& s = b.spur();
    uint32_t zeit = 0;
    for (auto [tick, z, n] : arten) {
        s.taktart(static_cast<uint32_t>(tick) - zeit, z, n);
        zeit = static_cast<uint32_t>(tick);
    }
    s.ende(ende - zeit);
    return b;
}
} // namespace

TEST(Taktlaengen, AbschnitteUndLetzterTaktAufgerundet) {
    Aufbau a;
    // 3/4 for two bars, then 6/8; the track ends 1,000 ticks into its third 6/8 bar.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(480, {{0, 3, 2}, {2880, 6, 3}}, 2880 + 2 * 1440 + 1000)));
    auto& e = a.programm.Einstellungen();
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.werte(e.MFITaktLaengen()), (std::vector<int16_t>{1440, 1440, 1440, 1440, 1440}));
    EXPECT_EQ(a.werte(e.Numeratoren()), (std::vector<int16_t>{3, 3, 6, 6, 6}));
    EXPECT_EQ(a.werte(e.Denominatoren()), (std::vector<int16_t>{4, 4, 8, 8, 8}));
    EXPECT_EQ(e.MFITaktLaengen()->Item(5)->ID(), 5);

    // Converting again starts all three tables over.
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(e.MFITaktLaengen()->Count(), 5);
    EXPECT_EQ(e.Numeratoren()->Count(), 5);
    EXPECT_EQ(e.Denominatoren()->Count(), 5);
}

TEST(Taktlaengen, RandfaelleDerAbschnitte) {
    Aufbau a;
    // A last section of 1,000 ticks in 4/4 counts as one whole bar of 1,920.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(480, {}, 1000)));
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.werte(a.programm.Einstellungen().MFITaktLaengen()), (std::vector<int16_t>{1920}));

    // Two time signatures at the same tick: the first section has no bars.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(480, {{0, 2, 2}, {0, 3, 2}}, 2880)));
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.werte(a.programm.Einstellungen().Numeratoren()), (std::vector<int16_t>{3, 3}));
    ASSERT_EQ(a.programm.TimeSignatures()->Count(), 2);
    EXPECT_EQ(a.programm.TimeSignatures()->Item(2)->ID(), 2);

    // A track ending exactly on a bar line gets no extra bar.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(480, {{0, 4, 2}}, 3840)));
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.programm.Einstellungen().MFITaktLaengen()->Count(), 2);
}

TEST(Taktlaengen, EineSpurGiltFuerJedeSpurnummerSonstDieGewaehlte) {
    Aufbau a;
    ASSERT_TRUE(a.oeffnen(mitTaktarten(480, {{0, 4, 2}}, 1920 * 3)));
    a.programm.MIDIFileSetsESVarsFrmIntern(5);
    EXPECT_EQ(a.programm.Einstellungen().MFITaktLaengen()->Count(), 3);

    MidiBauer zwei = mitTaktarten(480, {{0, 4, 2}}, 1920);
    zwei.spur().note(0, 60, 1920 * 4).ende();
    ASSERT_TRUE(a.oeffnen(zwei, "zwei.mid"));
    a.programm.MIDIFileSetsESVarsFrmIntern(2);
    EXPECT_EQ(a.programm.Einstellungen().MFITaktLaengen()->Count(), 4);
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.programm.Einstellungen().MFITaktLaengen()->Count(), 1);
    EXPECT_THROW(a.programm.MIDIFileSetsESVarsFrmIntern(3), IndexFehler);
}

TEST(Taktlaengen, TicksKommenVomLeserNichtAusDenEinstellungen) {
    Aufbau a;
    // No tempo event: the setting keeps 480, the bars follow the file's 96.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(96, {{0, 4, 2}}, 384 * 2)));
    EXPECT_EQ(a.programm.Einstellungen().TicksPerQuarterNote(), 480);
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.werte(a.programm.Einstellungen().MFITaktLaengen()), (std::vector<int16_t>{384, 384}));
}

TEST(Taktlaengen, RundungUndUeberlauf) {
    Aufbau a;
    // One tick per quarter: 3/8 is 1.5 ticks and 5/8 is 2.5, both rounded to 2 (halves to even).
    ASSERT_TRUE(a.oeffnen(mitTaktarten(1, {{0, 3, 3}, {2, 5, 3}}, 4)));
    a.programm.MIDIFileSetsESVarsFrmIntern(1);
    EXPECT_EQ(a.werte(a.programm.Einstellungen().MFITaktLaengen()), (std::vector<int16_t>{2, 2}));

    // A bar that rounds to no tick at all cannot make bars.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(1, {{0, 1, 3}}, 4)));
    try {
        a.programm.MIDIFileSetsESVarsFrmIntern(1);
        FAIL();
    } catch (const Fehler& f) {
        EXPECT_EQ(std::string(f.what()),
                  "Die Taktart 1/8 ergibt bei 1 Ticks pro Viertelnote einen Takt von 0 Ticks; so lassen sich keine Takte bilden.");
    }

    // A bar longer than 32767 ticks, and more than 32767 bars, are overflows.
    ASSERT_TRUE(a.oeffnen(mitTaktarten(960, {{0, 9, 0}}, 100)));
    EXPECT_THROW(a.programm.MIDIFileSetsESVarsFrmIntern(1), UeberlaufFehler);
    ASSERT_TRUE(a.oeffnen(mitTaktarten(1, {{0, 1, 2}}, 40000)));
    EXPECT_THROW(a.programm.MIDIFileSetsESVarsFrmIntern(1), UeberlaufFehler);
}
