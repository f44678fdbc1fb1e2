// Merging the ticked tracks of a file, and the note range of a track for the string columns.
#include "support/EngineUmgebung.h"

#include "export/CWDBCreator.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Opens the file and ticks these tracks for mixing; mixes them unless told otherwise.
void mischen(EngineUmgebung& u, const MidiBauer& d, std::initializer_list<int> spuren, bool los = true) {
    u.oeffnen(d, 2);
    for (int s : spuren) u.e().SpurSelected()->Item(s)->Value(1);
    if (los) u.engine().spurenMischen();
}

} // namespace

TEST(EngineMischen, StabilNachStartzeitFruehereSpurenZuerst) {
    // Track 1 holds the tempo and the metre, tracks 2 to 4 notes.
    MidiBauer d(480);
    d.spur().tempo(0, 500000).taktart(0, 4, 2);
    d.spur().name("Oben").an(0, 1, 60).an(0, 1, 72).aus(480, 1, 60).aus(0, 1, 72).note(480, 64, 480);
    d.spur().name("Mitte").note(0, 67, 480).note(0, 65, 480).note(0, 69, 960);
    d.spur().name("Unten").note(0, 48, 1920);
    EngineUmgebung u;
    mischen(u, d, {2, 3});

    // The merged notes are the program's second note collection and now the engine's notes; at
    // equal starts track 2 comes first, and every note carries voice 1.
    ASSERT_EQ(u.engine().KlangNoten(), u.programm.KlangNotenMix);
    using Merk = std::tuple<int32_t, int32_t, int, int, int, int>; // start, length, pitch, voice, chord, place
    std::vector<Merk> noten;
    for (const auto& n : *u.noten())
        noten.emplace_back(n->StartZeit(), n->Laenge(), n->TonHoehe(), n->Spur(), n->AkkordNr(), n->Kanal());
    EXPECT_EQ(noten, (std::vector<Merk>{
                         {0, 480, 60, 1, 1, 1}, {0, 480, 72, 1, 1, 3}, {0, 480, 67, 1, 1, 2},
                         {480, 480, 65, 1, 2, 1}, {960, 480, 64, 1, 3, 2}, {960, 960, 69, 1, 3, 1},
                     }));
    // Chords of the merged notes (the places above): the longer 69 goes in front of the 64, so the
    // rest at the end follows the 64, the last note of that chord.
    ASSERT_EQ(u.pausen()->Count(), 1);
    const auto& p = *u.pausen()->Item(1);
    EXPECT_EQ(std::tuple(p.StartZeit(), p.Laenge(), p.TonHoehe(), p.AkkordNr()), std::tuple(1440, 480, 64, 3));

    // The writer got the merged collections and the text went to the clipboard.
    EXPECT_EQ(u.programm.WDBCreator().KlangNoten(), u.programm.KlangNotenMix);
    EXPECT_EQ(u.form.zwischenablage, std::vector<std::string>{u.engine().getHarfeEventString()});
    // Monophony is what the last track left: track 3 is one voice, although track 2 was not.
    EXPECT_TRUE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 1);
    EXPECT_EQ(u.e().TrackNr(), 3);
}

TEST(EngineMischen, GleicheNotenZweierSpurenBleibenBeide) {
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 60, 480).note(0, 62, 480);
    d.spur().note(0, 60, 480).note(480, 64, 480);
    EngineUmgebung u;
    mischen(u, d, {2, 3});
    std::vector<int> toene;
    for (const auto& n : *u.noten()) toene.push_back(n->TonHoehe());
    EXPECT_EQ(toene, (std::vector<int>{60, 60, 62, 64}));
}

TEST(EngineMischen, UeberlaufBeendetDasMischenOhneZwischenablage) {
    // A grid of 50 ticks never steps legato from 900 onto an allowed length: the 16-bit steps run
    // out and the error reaches the caller.
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 60, 100).note(900, 62, 480);
    EngineUmgebung u;
    mischen(u, d, {2}, false);
    u.e().QuantNotenwert(5);
    u.e().Legato(true);
    EXPECT_THROW(u.engine().spurenMischen(), UeberlaufFehler);
    EXPECT_TRUE(u.form.zwischenablage.empty());
    // The program goes on: without legato the same mix runs through.
    u.e().Legato(false);
    u.engine().spurenMischen();
    EXPECT_EQ(u.form.zwischenablage.size(), 1u);
    EXPECT_EQ(u.noten()->Count(), 2);
}

TEST(EngineSaiten, TonumfangDerGewaehltenSpur) {
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 55, 480).ev(0, {0x90, 91, 0}).note(0, 70, 480);
    d.spur().name("ohne Noten");
    EngineUmgebung u;
    auto umfang = [&](int16_t zeile) {
        u.form.zeile = zeile;
        u.engine().findMinMax();
        return std::pair<int, int>(u.e().TonMin(), u.e().TonMax());
    };
    // Without a file, or with no row selected, the range stays.
    u.e().TonMin(60);
    u.e().TonMax(60);
    EXPECT_EQ(umfang(0), std::pair(60, 60));
    u.laden(d);
    EXPECT_EQ(umfang(-1), std::pair(60, 60));
    // Colours the columns with this transposition; tells which borders are red.
    auto rot = [&](int16_t transpo) {
        u.e().Transpo(transpo);
        u.engine().colorSpaltenLabels();
        return std::pair(u.form.links == Farbe{255, 50, 50}, u.form.rechts == Farbe{255, 50, 50});
    };
    // The second row is track 2, and a velocity-0 Note On counts: 55 to 91 uses every string, one
    // semitone more either way runs past a border. A track without notes gives 128 and 0.
    EXPECT_EQ(umfang(1), std::pair(55, 91));
    EXPECT_EQ(rot(0), std::pair(false, false));
    EXPECT_EQ(rot(1), std::pair(false, true));
    EXPECT_EQ(rot(-1), std::pair(true, false));
    EXPECT_EQ(umfang(2), std::pair(128, 0));
    EXPECT_EQ(rot(0), std::pair(false, false));
}
