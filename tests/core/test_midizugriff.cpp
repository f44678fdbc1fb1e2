// Opening a MIDI file in the program: track labels, tempo, time signatures and the per-bar tables.
#include "support/EngineUmgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Opens the file as start-up does, without a dialog.
void oeffnen(EngineUmgebung& u, const MidiBauer& b) {
    u.e().MIDIFilePath(b.schreiben(u.ordner / "lied.mid").string());
    ASSERT_TRUE(u.programm.openMIDIFile(2));
}

// Computes the bar tables for the track: lengths, numerators, denominators.
std::array<std::vector<int16_t>, 3> takte(EngineUmgebung& u, int16_t spur) {
    u.programm.MIDIFileSetsESVarsFrmIntern(spur);
    std::array<std::vector<int16_t>, 3> t;
    for (auto [k, liste] : {std::pair{0, u.e().MFITaktLaengen()}, {1, u.e().Numeratoren()}, {2, u.e().Denominatoren()}})
        for (const auto& i : *liste) t[k].push_back(i->Value());
    return t;
}

// Track 1 with the given time signatures (tick, numerator, exponent) and an end at `ende`.
MidiBauer mitTaktarten(uint16_t division, const std::vector<std::array<int, 3>>& arten, uint32_t ende) {
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

// Answers the open dialog with a fixed choice.
struct FesterDialog : IDialog {
    std::optional<std::string> oeffnen(const std::string&, const std::string&) override { return wahl; }
    std::optional<std::string> speichern(const std::string&, int) override { return std::nullopt; }
    std::optional<std::string> wahl;
};

} // namespace

TEST(MidiOeffnen, SpurnamenTempoTaktartUndTempoTabelle) {
    EngineUmgebung u;
    MidiBauer b(240);
    b.spur().name("Melodie").tempo(0, 500000).taktart(0, 3, 2).tempo(960, 250000).ende();
    b.spur().note(0, 60, 240).ende();
    b.spur().name("").note(0, 62, 240).ende();
    u.e().Transpo(5);
    oeffnen(u, b);
    EXPECT_EQ((std::vector{u.programm.spurBezeichnung(1), u.programm.spurBezeichnung(2), u.programm.spurBezeichnung(3)}),
              (std::vector<std::string>{"Melodie", "Track 2", "Track 3 (null)"}));
    // The first tempo decides; the denominator stays the exponent, on purpose; mode 2 keeps the globals.
    auto& e = u.e();
    EXPECT_EQ((std::array<int, 6>{e.Tempo(), e.TicksPerQuarterNote(), e.Numerator(), e.Denominator(), e.TaktLaenge(), e.Transpo()}),
              (std::array<int, 6>{120, 240, 3, 2, 720, 5}));
    // Every tempo enters the table: ticks per ms x 1000 are 0.48 and 0.96, rounded. The playback
    // tests time their queue by the other columns.
    const auto& t = u.programm.TempoTabelle;
    ASSERT_EQ(u.programm.TempoAnzahl, 2);
    EXPECT_EQ((std::array{t[1].ticksProMs1000, t[2].ticksProMs1000}), (std::array{0, 1}));

    // The next file starts with an empty table; 1,832 µs is the fastest tempo that fits 16 bits.
    MidiBauer zwei(480);
    zwei.spur().tempo(0, 1832).ende();
    oeffnen(u, zwei);
    EXPECT_EQ(u.programm.TempoAnzahl, 1);
    EXPECT_EQ(u.programm.TempoTabelle[2].tempo, 0);
    EXPECT_EQ(u.e().Tempo(), 32751);

    MidiBauer zuViele(480);
    auto& s = zuViele.spur();
    for (int i = 0; i < 151; ++i) s.tempo(10, 500000);
    try {
        oeffnen(u, zuViele);
        FAIL();
    } catch (const IndexFehler& f) {
        EXPECT_NE(std::string(f.what()).find("mehr als 150 Tempowechsel"), std::string::npos);
    }
    EXPECT_EQ(u.programm.TempoAnzahl, 150);
}

TEST(MidiOeffnen, DialogAbbruchWindowsPfadUndSpeicherfehler) {
    TestOrdner ordner; // without a data folder, so the chosen folder can never be saved
    EngineTestForm form;
    FesterDialog dialog;
    CProgramm p(ordner.pfad(), form, &dialog);
    p.initGlobals();
    p.Einstellungen().Transpo(7);
    EXPECT_FALSE(p.openMIDIFile(1));
    EXPECT_EQ(p.Einstellungen().Transpo(), 0); // mode 1 starts every global over, even when cancelled
    // A Windows path keeps its folder with the trailing backslash, whether or not the file loads.
    dialog.wahl = "C:\\Lieder\\x.mid";
    EXPECT_THROW(p.openMIDIFile(1), MidiDateiFehler);
    EXPECT_EQ(p.Einstellungen().InitDir(), "C:\\Lieder\\");
    // The failed save is said each time, and the file loads all the same.
    MidiBauer b;
    b.spur().note(0, 60, 480).ende();
    dialog.wahl = b.schreiben(ordner / "x.mid").string();
    ASSERT_TRUE(p.openMIDIFile(1));
    EXPECT_EQ(p.AktuellesInitDir, ordner.pfad().string() + "/");
    ASSERT_EQ(form.meldungen.size(), 2u);
    for (const auto& m : form.meldungen) EXPECT_EQ(m.rfind("User-Daten konnten nicht gespeichert werden.", 0), 0u);
}

TEST(Taktlaengen, AbschnitteLetzterTaktAufgerundetUndRundung) {
    struct Fall {
        uint16_t division;
        std::vector<std::array<int, 3>> arten;
        uint32_t ende;
        std::array<std::vector<int16_t>, 3> takte;
    };
    const Fall faelle[] = {
        // 3/4 for two bars, then 6/8; the track ends 1,000 ticks into its third 6/8 bar.
        {480, {{0, 3, 2}, {2880, 6, 3}}, 2880 + 2 * 1440 + 1000, {{{1440, 1440, 1440, 1440, 1440}, {3, 3, 6, 6, 6}, {4, 4, 8, 8, 8}}}},
        // No time signature is 4/4; a last section of 1,000 ticks counts as one whole bar of 1,920.
        {480, {}, 1000, {{{1920}, {4}, {4}}}},
        // Two time signatures at the same tick: the first section has no bars.
        {480, {{0, 2, 2}, {0, 3, 2}}, 2880, {{{1440, 1440}, {3, 3}, {4, 4}}}},
        // A track ending exactly on a bar line gets no extra bar.
        {480, {{0, 4, 2}}, 3840, {{{1920, 1920}, {4, 4}, {4, 4}}}},
        // The ticks are the file's, not the setting's 480.
        {96, {{0, 4, 2}}, 768, {{{384, 384}, {4, 4}, {4, 4}}}},
        // One tick per quarter: 3/8 is 1.5 ticks and 5/8 is 2.5, both rounded to 2 (halves to even).
        {1, {{0, 3, 3}, {2, 5, 3}}, 4, {{{2, 2}, {3, 5}, {8, 8}}}},
    };
    for (const auto& f : faelle) {
        EngineUmgebung u;
        oeffnen(u, mitTaktarten(f.division, f.arten, f.ende));
        // No tempo event, so the settings keep their ticks; no name gives the bare label.
        EXPECT_EQ((std::array<int, 2>{u.e().Tempo(), u.e().TicksPerQuarterNote()}), (std::array<int, 2>{0, 480}));
        EXPECT_EQ(u.programm.spurBezeichnung(1), "Track 1");
        const auto arten = f.arten.empty() ? std::vector<std::array<int, 3>>{{0, 4, 2}} : f.arten;
        const auto& ts = u.programm.TimeSignatures();
        ASSERT_EQ(ts->Count(), static_cast<int>(arten.size()));
        for (int16_t k = 1; k <= ts->Count(); ++k) {
            const auto& s = ts->Item(k);
            const auto& a = arten[static_cast<size_t>(k - 1)];
            EXPECT_EQ((std::array<int, 4>{s->ID(), s->Numerator(), s->Denominator(), s->ABSTime()}),
                      (std::array<int, 4>{k, a[1], 1 << a[2], a[0]}));
        }
        takte(u, 1);
        // Computing again starts all three tables over; a one-track file answers for any track.
        EXPECT_EQ(takte(u, 5), f.takte) << f.ende;
    }
}

TEST(Taktlaengen, GewaehlteSpurTaktOhneTickUndUeberlauf) {
    EngineUmgebung u;
    MidiBauer zwei = mitTaktarten(480, {{0, 4, 2}}, 1920);
    zwei.spur().note(0, 60, 1920 * 4).ende();
    oeffnen(u, zwei);
    EXPECT_EQ(takte(u, 2)[0].size(), 4u);
    EXPECT_EQ(takte(u, 1)[0].size(), 1u);
    EXPECT_THROW(takte(u, 3), IndexFehler);

    // A bar that rounds to no tick at all cannot make bars.
    oeffnen(u, mitTaktarten(1, {{0, 1, 3}}, 4));
    try {
        takte(u, 1);
        FAIL();
    } catch (const Fehler& f) {
        EXPECT_EQ(std::string(f.what()),
                  "Die Taktart 1/8 ergibt bei 1 Ticks pro Viertelnote einen Takt von 0 Ticks; so lassen sich keine Takte bilden.");
    }
    // A bar longer than 32767 ticks, more than 32767 bars, and 32768 quarters a minute are overflows.
    MidiBauer schnell(480);
    schnell.spur().tempo(0, 1831).ende();
    EXPECT_THROW(oeffnen(u, schnell), UeberlaufFehler);
    oeffnen(u, mitTaktarten(960, {{0, 9, 0}}, 100));
    EXPECT_THROW(takte(u, 1), UeberlaufFehler);
    oeffnen(u, mitTaktarten(1, {{0, 1, 2}}, 40000));
    EXPECT_THROW(takte(u, 1), UeberlaufFehler);
}
