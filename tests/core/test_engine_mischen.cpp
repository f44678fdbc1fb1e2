// Merging tracks, bar tables from the reader, and the string-column display.
#include "support/EngineUmgebung.h"

#include "export/CWDBCreator.h"
#include "model/Zahlen.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

void ankreuzen(EngineUmgebung& u, std::initializer_list<int> spuren) {
    for (int s : spuren) u.e().SpurSelected()->Item(s)->Value(1);
}

struct Merk {
    int32_t start, laenge;
    int ton, spur, akkord, kanal;
    bool operator==(const Merk&) const = default;
};

std::vector<Merk> merkmale(const KlangNotenRef& noten) {
    std::vector<Merk> v;
    for (const auto& n : *noten) v.push_back({n->StartZeit(), n->Laenge(), n->TonHoehe(), n->Spur(), n->AkkordNr(), n->Kanal()});
    return v;
}

// Track 1 holds the tempo and the metre, tracks 2 to 4 notes.
MidiBauer dreiStimmen() {
    MidiBauer d(480);
    d.spur().tempo(0, 500000).taktart(0, 4, 2);
    d.spur().name("Oben").an(0, 1, 60).an(0, 1, 72).aus(480, 1, 60).aus(0, 1, 72).note(480, 64, 480);
    d.spur().name("Mitte").note(0, 67, 480).note(0, 65, 480).note(0, 69, 960);
    d.spur().name("Unten").note(0, 48, 1920);
    return d;
}

} // namespace

TEST(EngineMischen, StabilNachStartzeitFruehereSpurenZuerst) {
    EngineUmgebung u;
    u.oeffnen(dreiStimmen(), 2);
    ankreuzen(u, {2, 3});
    u.engine().spurenMischen();

    // The merged notes are the program's second note collection and now the engine's notes; at
    // equal starts track 2 comes first, and every note carries voice 1.
    ASSERT_EQ(u.engine().KlangNoten(), u.programm.KlangNotenMix);
    const std::vector<Merk> erwartet = {
        {0, 480, 60, 1, 1, 1},   {0, 480, 72, 1, 1, 3}, {0, 480, 67, 1, 1, 2}, {480, 480, 65, 1, 2, 1},
        {960, 480, 64, 1, 3, 2}, {960, 960, 69, 1, 3, 1},
    };
    EXPECT_EQ(merkmale(u.noten()), erwartet);
    // Chords of the merged notes (the places in Kanal above): the longer 69 goes in front of the
    // 64, so the rest at the end follows the 64, the last note of that chord.
    ASSERT_EQ(u.pausen()->Count(), 1);
    EXPECT_EQ(u.pausen()->Item(1)->StartZeit(), 1440);
    EXPECT_EQ(u.pausen()->Item(1)->Laenge(), 480);
    EXPECT_EQ(u.pausen()->Item(1)->TonHoehe(), 64);
    EXPECT_EQ(u.pausen()->Item(1)->AkkordNr(), 3);

    // The writer got the merged collections and the text went to the clipboard.
    EXPECT_EQ(u.programm.WDBCreator().KlangNoten(), u.programm.KlangNotenMix);
    EXPECT_EQ(u.form.zwischenablageGesetzt, 1);
    EXPECT_EQ(u.form.zwischenablage, u.engine().getHarfeEventString());

    // Monophony is what the last track left: track 3 is one voice, although track 2 was not.
    EXPECT_TRUE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 1);
    EXPECT_EQ(u.e().TrackNr(), 3);
    EXPECT_EQ(u.e().SpurNr(), 1);
}

TEST(EngineMischen, GleicheNotenZweierSpurenBleibenBeideUndEineSpurAllein) {
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 60, 480).note(0, 62, 480);
    d.spur().note(0, 60, 480).note(480, 64, 480);
    EngineUmgebung u;
    u.oeffnen(d, 2);
    ankreuzen(u, {2, 3});
    u.engine().spurenMischen();
    std::vector<int> toene;
    for (const auto& n : *u.noten()) toene.push_back(n->TonHoehe());
    EXPECT_EQ(toene, (std::vector<int>{60, 60, 62, 64}));

    // A single ticked track (the automatic run) gives that track's notes, stamped voice 1.
    EngineUmgebung v;
    v.oeffnen(d, 2);
    ASSERT_TRUE(v.produce());
    EXPECT_EQ(v.noten()->Item(1)->Spur(), 0);
    ankreuzen(v, {2});
    v.engine().spurenMischen();
    ASSERT_EQ(v.noten()->Count(), 2);
    EXPECT_EQ(v.noten()->Item(1)->Spur(), 1);
    EXPECT_EQ(v.noten()->Item(2)->StartZeit(), 480);
}

TEST(EngineMischen, UeberlaufBeendetDasMischenOhneZwischenablage) {
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 60, 100).note(900, 62, 480);
    EngineUmgebung u;
    u.oeffnen(d, 2);
    ankreuzen(u, {2});
    u.e().QuantNotenwert(5);
    u.e().Legato(true);
    EXPECT_THROW(u.engine().spurenMischen(), UeberlaufFehler);
    EXPECT_EQ(u.form.zwischenablageGesetzt, 0);
    // The program goes on: without legato the same mix runs through.
    u.e().Legato(false);
    u.engine().spurenMischen();
    EXPECT_EQ(u.form.zwischenablageGesetzt, 1);
    EXPECT_EQ(u.noten()->Count(), 2);
}

TEST(EngineTakte, PausenAnTaktgrenzenDerTaktartenAusDerDatei) {
    // 4/4 then 3/4 from tick 1920: the gap from 480 to 2880 is cut at the bar line.
    MidiBauer d(480);
    d.spur().tempo(0, 500000).taktart(0, 4, 2).taktart(1920, 3, 2);
    d.spur().note(0, 60, 480).note(2400, 62, 480);
    EngineUmgebung u;
    u.oeffnen(d, 2);
    ASSERT_EQ(u.e().MFITaktLaengen()->Count(), 2);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.noten()->Item(2)->TaktNr(), 2);
    std::vector<std::pair<int32_t, int32_t>> p;
    for (const auto& x : *u.pausen()) p.emplace_back(x->StartZeit(), x->Laenge());
    // Bar 1: 12 units, a dotted half written as half + quarter; bar 2: a half. The note ends
    // with bar 2, so the last bar needs nothing.
    EXPECT_EQ(p, (std::vector<std::pair<int32_t, int32_t>>{{480, 960}, {1440, 480}, {1920, 960}}));
}

TEST(EngineTakte, DreiAchtelAusDerDateiZaehltInVierteln) {
    // The reader stores the real denominator 8, so the beat of three sixteenths is never taken:
    // a note from 960 (bar 2 of 720 ticks) is cut at bar 4 to 10 units and, being on a quarter's
    // start, shortened to 8; counted in dotted quarters it would sit on the half beat and stay.
    MidiBauer d(480);
    d.spur().tempo(0, 500000).taktart(0, 3, 3);
    d.spur().note(960, 60, 1920);
    EngineUmgebung u;
    u.oeffnen(d, 2);
    ASSERT_EQ(u.e().Denominatoren()->Item(1)->Value(), 8);
    ASSERT_EQ(u.e().MFITaktLaengen()->Item(1)->Value(), 720);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.noten()->Item(1)->TaktNr(), 2);
    EXPECT_EQ(u.noten()->Item(1)->Laenge(), 960);
    EXPECT_EQ(u.noten()->Item(1)->LaengeOrig(), 1920);
}

// ---- string columns ----

TEST(EngineSaiten, UmfangFaerbtFelderUndRaender) {
    MidiBauer d(480);
    d.spur().tempo(0, 500000);
    d.spur().note(0, 55, 480).ev(0, {0x90, 91, 0}).note(0, 70, 480);
    d.spur().name("ohne Noten");
    EngineUmgebung u;
    u.oeffnen(d, 2);
    u.form.zeile = 1; // the second row: track 2
    u.engine().findMinMax();
    EXPECT_EQ(u.e().TonMin(), 55);
    EXPECT_EQ(u.e().TonMax(), 91); // a velocity-0 Note On counts
    u.engine().colorSpaltenLabels();
    const Farbe gruen{0, 255, 0}, hellgruen{190, 255, 190}, grau{191, 191, 191}, rot{255, 50, 50};
    for (int i = 0; i < 37; ++i) EXPECT_EQ(u.form.felder[static_cast<size_t>(i)], i % 12 == 0 ? hellgruen : gruen) << i;
    EXPECT_EQ(u.form.links, grau);
    EXPECT_EQ(u.form.rechts, grau);

    u.e().Transpo(1);
    u.engine().colorSpaltenLabels();
    EXPECT_EQ(u.form.rechts, rot);
    EXPECT_EQ(u.form.links, grau);
    EXPECT_EQ(u.form.felder[0], (Farbe{100, 100, 255})); // note 54 is below the harp
    u.e().Transpo(-1);
    u.engine().colorSpaltenLabels();
    EXPECT_EQ(u.form.links, rot);
    EXPECT_EQ(u.form.rechts, grau);
    EXPECT_EQ(u.form.felder[36], (Farbe{100, 100, 255}));
    EXPECT_EQ(u.form.felder[35], gruen);

    // A track without notes: nothing in range, both borders grey.
    u.form.zeile = 2;
    u.e().Transpo(0);
    u.engine().findMinMax();
    EXPECT_EQ(u.e().TonMin(), 128);
    EXPECT_EQ(u.e().TonMax(), 0);
    u.engine().colorSpaltenLabels();
    EXPECT_EQ(u.form.felder[12], (Farbe{100, 100, 255}));
    EXPECT_EQ(u.form.felder[13], (Farbe{255, 255, 255}));
    EXPECT_EQ(u.form.links, grau);
    EXPECT_EQ(u.form.rechts, grau);
}

TEST(EngineSaiten, OhneDateiOderOhneGewaehlteSpurBleibtAllesStehen) {
    EngineUmgebung u;
    u.e().TonMin(60);
    u.engine().findMinMax();
    EXPECT_EQ(u.e().TonMin(), 60);
    MidiBauer d(480);
    d.spur().note(0, 70, 480);
    u.laden(d);
    u.form.zeile = -1;
    u.engine().findMinMax();
    EXPECT_EQ(u.e().TonMin(), 60);
    u.form.zeile = 0;
    u.engine().findMinMax();
    EXPECT_EQ(u.e().TonMin(), 70);
}
