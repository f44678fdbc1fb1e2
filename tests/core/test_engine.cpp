// The conversion engine: tracks read from MIDI files built here, and notes set directly and run
// through the stages after reading.
#include "support/EngineUmgebung.h"

#include "engine/TaktRaster.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct Ton {
    int32_t start, laenge;
    int ton, spur = 0;
};
using Liste = std::vector<int32_t>;
using Pause = std::tuple<int32_t, int32_t, int, int>; // start, length, pitch, chord

// How a run is set up: bars, the switches the stages read, the grid and the ticks per quarter.
struct Optionen {
    int takte = 8;
    EngineTakt takt = {1920, 4, 4};
    bool legato = false, letzterTakt = false, punktiert = false;
    int16_t quant = 0, tpqn = 480; // quant: QuantNotenwert, 0 keeps the program's
};

// These notes as KlangNoten (ID = place in the list), run through the stages after reading.
struct Lauf : EngineUmgebung {
    explicit Lauf(const std::vector<Ton>& toene, Optionen o = {}) {
        e().TicksPerQuarterNote(o.tpqn);
        if (o.quant) e().QuantNotenwert(o.quant);
        e().Legato(o.legato);
        e().PausenLetzterTakt(o.letzterTakt);
        e().PunktiertePausen(o.punktiert);
        takte(o.takte, o.takt);
        std::vector<std::shared_ptr<CKlangNote>> v;
        for (const auto& t : toene) {
            auto& n = v.emplace_back(std::make_shared<CKlangNote>());
            n->StartZeit(t.start);
            n->Laenge(t.laenge);
            n->LaengeOrig(t.laenge);
            n->TonHoehe(static_cast<int16_t>(t.ton));
            n->Spur(static_cast<int16_t>(t.spur));
            n->ID(static_cast<int32_t>(v.size()));
        }
        noten()->ersetzeDurch(v);
        EXPECT_TRUE(produce(false));
    }
};

// One field of every note, in collection order.
Liste je(EngineUmgebung& u, int32_t (CKlangNote::*feld)() const) {
    Liste v;
    for (const auto& n : *u.noten()) v.push_back(((*n).*feld)());
    return v;
}

std::vector<Pause> pausenVon(EngineUmgebung& u) {
    std::vector<Pause> v;
    for (const auto& p : *u.pausen()) v.emplace_back(p->StartZeit(), p->Laenge(), p->TonHoehe(), p->AkkordNr());
    return v;
}

// The file loaded over bars of 4/4 and its first track converted.
struct Gelesen : EngineUmgebung {
    explicit Gelesen(const MidiBauer& d) {
        laden(d);
        takte(4, {1920, 4, 4});
        ok = produce();
    }
    bool ok;
};

} // namespace

// ---- reading the track ----

TEST(EngineLesen, NotenWieGelesenUndNoteOffNachTonhoehe) {
    MidiBauer d(480);
    d.spur().name("Melodie").note(0, 60, 480, 1).note(240, 62, 240, 3).an(0, 2, 64).aus(480, 2, 64, false);
    Gelesen u(d);
    ASSERT_TRUE(u.ok);
    const auto& n = *u.noten()->Item(2);
    EXPECT_EQ(std::tuple(n.StartZeit(), n.Laenge(), n.LaengeOrig(), n.TonHoehe(), n.TaktNr(), n.ID()),
              std::tuple(720, 240, 240, 62, 1, 2));
    // A Note On with velocity 0 ends the note like a Note Off.
    EXPECT_EQ(je(u, &CKlangNote::Laenge), (Liste{480, 240, 480}));
    EXPECT_TRUE(u.form.meldungen.empty());

    // Two overlapping notes of one pitch: both Note Offs, whatever the channel, end the later one;
    // the earlier keeps length 0 until the overlap pass lets it reach the later start.
    MidiBauer z(480);
    z.spur().an(0, 1, 60).an(480, 2, 60).aus(480, 1, 60).aus(480, 3, 60).note(0, 67, 480);
    Gelesen v(z);
    ASSERT_TRUE(v.ok);
    EXPECT_EQ(je(v, &CKlangNote::StartZeit), (Liste{0, 480, 1440}));
    EXPECT_EQ(je(v, &CKlangNote::Laenge), (Liste{480, 960, 480}));
    EXPECT_EQ(v.noten()->Item(1)->LaengeOrig(), 480);
}

TEST(EngineLesen, NoteOffOhneNoteMeldetUndBehaeltDasGelesene) {
    MidiBauer d(480);
    d.spur().note(0, 60, 475).aus(10, 1, 61).note(0, 62, 480);
    Gelesen u(d);
    EXPECT_FALSE(u.ok);
    EXPECT_EQ(u.form.meldungen, std::vector<std::string>{"MIDI-File ist nicht in Ordnung."});
    // The note read before stays, as read (not quantised), and nothing after it ran.
    EXPECT_EQ(je(u, &CKlangNote::Laenge), Liste{475});
    EXPECT_TRUE(u.akkorde()->leer());
}

TEST(EngineLesen, LiedtextVorOderNachDenNotenUndSpurOhneNoten) {
    using Texte = std::vector<std::string>;
    auto texte = [](const MidiBauer& d) {
        Gelesen u(d);
        EXPECT_TRUE(u.ok);
        Texte v;
        for (const auto& n : *u.noten()) v.push_back(n->MsgText());
        return v;
    };
    MidiBauer vor(480), nach(480), leer(480);
    vor.spur().lyric(0, "ver").lyric(0, "Hal").note(0, 60, 480).note(0, 62, 480).lyric(0, "lo").note(0, 64, 480);
    nach.spur().an(0, 1, 60).lyric(0, "Hal").aus(480, 1, 60).lyric(0, "lo").note(0, 62, 480);
    leer.spur().name("leer").lyric(100, "la");
    // Before the notes a later lyric replaces the waiting one; after them it goes to the last note.
    EXPECT_EQ(texte(vor), (Texte{"Hal", "", "lo"}));
    EXPECT_EQ(texte(nach), (Texte{"lo", ""}));
    EXPECT_EQ(texte(leer), Texte{});
}

// ---- quantisation, duplicates, lengths ----

TEST(EngineQuantisierung, RundetAufDasRasterHalbeNachObenUndHalbesRasterGerade) {
    // QuantTicks 120: 59 -> 0, 60 -> 120, 181 -> 240; a length of 50 becomes 0, which the overlap
    // pass then sets to reach the next start.
    Lauf u({{59, 480, 60}, {1020, 480, 62}, {2101, 480, 64}, {2880, 50, 65}, {3840, 480, 67}});
    EXPECT_EQ(je(u, &CKlangNote::StartZeit), (Liste{0, 1080, 2160, 2880, 3840}));
    EXPECT_EQ(u.noten()->Item(4)->Laenge(), 960);
    EXPECT_EQ(u.noten()->Item(4)->LaengeOrig(), 960);

    // 48 ticks per quarter and a grid of 5: half the grid is 2 (2.5 to even), so a remainder of 2
    // rounds up: starts 7 -> 10, 31 -> 30, lengths 12 -> 15.
    Lauf v({{7, 12, 60}, {31, 12, 62}, {143, 12, 64}}, {.takte = 4, .takt = {192, 4, 4}, .quant = 5, .tpqn = 48});
    EXPECT_EQ(je(v, &CKlangNote::StartZeit), (Liste{10, 30, 145}));
    EXPECT_EQ(je(v, &CKlangNote::Laenge), (Liste{15, 15, 15}));
}

TEST(EngineDoppelte, IndexregelMitUndOhneNotenDazwischen) {
    // Neighbours: the earlier goes, the later stays with the larger track number.
    Lauf u({{0, 480, 60, 5}, {0, 480, 60, 3}, {480, 480, 62}});
    EXPECT_EQ(je(u, &CKlangNote::ID), (Liste{2, 3}));
    EXPECT_EQ(u.noten()->Item(1)->Spur(), 5);
    // After that removal the note moving into place 2 is not compared: 60 60 60 keeps two.
    Lauf x({{0, 480, 60}, {0, 480, 60}, {0, 480, 60}, {480, 480, 62}});
    EXPECT_EQ(je(x, &CKlangNote::ID), (Liste{2, 3, 4}));
    // 60, 64, 60 at one start: the second 60 is found at j = 3 and item 2 (the 64) goes; the found
    // 60 still takes the larger track number.
    Lauf v({{0, 480, 60, 5}, {0, 480, 64}, {0, 480, 60, 3}, {480, 480, 62}});
    EXPECT_EQ(je(v, &CKlangNote::ID), (Liste{1, 3, 4}));
    EXPECT_EQ(v.noten()->Item(2)->Spur(), 5);
    // After a removal the note moving into place j is skipped: 60 64 60 60 60 -> the 64 goes,
    // the 60 moving into place 3 is skipped, the next 60 is found and the skipped one goes; then
    // the second note's duplicate is its neighbour, so the second note itself goes.
    Lauf w({{0, 480, 60}, {0, 480, 64}, {0, 480, 60}, {0, 480, 60}, {0, 480, 60}, {480, 480, 62}});
    EXPECT_EQ(je(w, &CKlangNote::ID), (Liste{1, 5, 6}));
}

TEST(EngineLaengen, UeberlappungImAkkordLetzteNoteUndTaktschnitt) {
    // A chord followed only by the last note: the search for the next start steps over the
    // chord's second note, reaches the count and gives up, so the first chord note keeps its
    // length; the second finds the last note directly and is trimmed.
    Lauf u({{0, 1440, 60}, {0, 1440, 64}, {480, 480, 67}});
    EXPECT_EQ(je(u, &CKlangNote::Laenge), (Liste{1440, 480, 480}));
    EXPECT_EQ(je(u, &CKlangNote::LaengeOrig), (Liste{1440, 480, 480}));
    // One more note behind it: now both chord notes reach the next start.
    Lauf v({{0, 1440, 60}, {0, 1440, 64}, {480, 480, 67}, {960, 480, 69}});
    EXPECT_EQ(je(v, &CKlangNote::Laenge), (Liste{480, 480, 480, 480}));
    // At most a whole note (4 x 480), LaengeOrig too; the last note keeps length 0.
    Lauf w({{0, 2400, 60}, {1920, 0, 62}});
    EXPECT_EQ(je(w, &CKlangNote::Laenge), (Liste{1920, 0}));
    EXPECT_EQ(je(w, &CKlangNote::LaengeOrig), (Liste{1920, 0}));
    // Bars of 2/4: a note from 720 over 1,500 ticks ends in bar 3 and is cut at that bar's start
    // (1920), keeping the first two bars; LaengeOrig stays.
    Lauf x({{720, 1500, 60}}, {.takte = 4, .takt = {960, 2, 4}});
    EXPECT_EQ(je(x, &CKlangNote::Laenge), Liste{1200});
    EXPECT_EQ(je(x, &CKlangNote::LaengeOrig), Liste{1500});
    EXPECT_EQ(x.noten()->Item(1)->TaktNr(), 1);
}

TEST(EngineLaengen, LegatoNurDieLetzteAkkordnoteUndNurBeiLuecke) {
    // Bars of 8/4. Chord 1 (ordered 60, 64) ends at 240 with the next chord at 960: only its last
    // note, the 64, reaches 960 (an allowed length); chord 2 ends at 1440 with a gap to 2520: 1560
    // is not allowed, 1440 is. Chord 3 touches chord 4 and stays.
    Lauf u({{0, 240, 64}, {0, 240, 60}, {960, 480, 62}, {2520, 360, 64}, {2880, 480, 65}},
           {.takte = 2, .takt = {3840, 8, 4}, .legato = true});
    EXPECT_EQ(je(u, &CKlangNote::Laenge), (Liste{960, 240, 1440, 360, 480}));
    EXPECT_EQ(u.noten()->Item(1)->LaengeOrig(), 240);
    // Stepping down to an allowed length can leave a short gap, which becomes a rest.
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{2400, 120, 62, 2}}));
    // Without legato the gap stays a rest.
    Lauf v({{0, 240, 64}, {0, 240, 60}, {960, 480, 62}});
    EXPECT_EQ(je(v, &CKlangNote::Laenge), (Liste{240, 240, 480}));
}

TEST(EngineTakte, TaktRasterAnDenRaendern) {
    // Bar k runs from the sum of the first k - 1 lengths up to, not including, the sum of k; there
    // is no bar (0) before tick 0 or from the end of the table on.
    EngineUmgebung u;
    u.takte(3, {1920, 4, 4});
    const CTaktRaster r(u.e());
    const std::pair<int32_t, int> faelle[] = {{-1, 0}, {0, 1}, {1919, 1}, {1920, 2}, {5759, 3}, {5760, 0}};
    for (auto [t, nr] : faelle) EXPECT_EQ(r.taktNr(t), nr) << t;
    EXPECT_EQ(std::tuple(r.taktStart(0), r.taktStart(3), r.taktStart(4), r.taktEnde(3)), std::tuple(0, 3840, 5760, 5760));
    EXPECT_THROW(r.taktStart(5), IndexFehler);
    EXPECT_THROW(r.taktLaenge(0), IndexFehler);
    EXPECT_THROW(r.taktLaenge(4), IndexFehler);
}

// ---- monophony ----

TEST(EngineAkkorde, EinstimmigkeitBleibtFalschBisDasFensterSieZuruecksetzt) {
    // Track 1 plays one voice, track 2 a chord.
    MidiBauer d(480);
    d.spur().note(0, 60, 480).note(0, 62, 480);
    d.spur().an(0, 1, 60).an(0, 1, 64).aus(480, 1, 60).aus(0, 1, 64).note(0, 62, 480);
    Gelesen u(d);
    // Converts a track; gives IsMonoton and item 8 of ClipExportFlags.
    auto lauf = [&](int16_t spur) {
        u.e().TrackNr(spur);
        EXPECT_TRUE(u.produce());
        return std::pair<bool, int>(u.engine().IsMonoton(), u.e().ClipExportFlags()->Item(8)->Value());
    };
    EXPECT_EQ(lauf(1), std::pair(true, 1));
    EXPECT_EQ(lauf(2), std::pair(false, 0));
    // A one-voice track afterwards does not turn it back ...
    EXPECT_EQ(lauf(1), std::pair(false, 0));
    // ... until the window sets it true before converting.
    u.engine().IsMonoton(true);
    EXPECT_EQ(lauf(1), std::pair(true, 1));
}

// ---- writable lengths from the position in the beat ----

TEST(EngineNotenInTakt, JedeZeileDerTabelleUndDieRaender) {
    // pos (units after the beat), length in units, expected length in units
    const int faelle[][3] = {
        {0, 5, 4},  {0, 7, 6},  {0, 9, 8},   {0, 10, 8},  {0, 11, 8},  {0, 13, 12}, {0, 14, 12}, {0, 15, 12},
        {0, 6, 6},  {0, 12, 12}, {0, 4, 4},  {1, 4, 3},   {1, 5, 3},   {1, 6, 3},   {1, 7, 3},   {1, 9, 8},
        {1, 10, 8}, {1, 11, 8}, {1, 13, 12}, {1, 14, 14}, {1, 15, 15}, {1, 8, 8},   {2, 5, 4},   {2, 7, 6},
        {2, 6, 6},  {2, 9, 9},  {2, 13, 13}, {3, 4, 3},   {3, 7, 3},   {3, 11, 8},  {3, 13, 12}, {3, 14, 14},
    };
    // Each note alone in a bar of 8/4, so nothing else shortens it.
    std::vector<Ton> noten;
    Liste erwartet, orig;
    for (const auto& [pos, einheiten, neu] : faelle) {
        noten.push_back({static_cast<int32_t>(noten.size()) * 3840 + pos * 120, einheiten * 120, 60});
        erwartet.push_back(neu * 120);
        orig.push_back(einheiten * 120);
    }
    Lauf u(noten, {.takte = static_cast<int>(noten.size()) + 1, .takt = {3840, 8, 4}});
    EXPECT_EQ(je(u, &CKlangNote::Laenge), erwartet);
    EXPECT_EQ(je(u, &CKlangNote::LaengeOrig), orig);
    // A grid of 10 ticks keeps 450 (3.75 units after the beat: position 4) and a length of 610.
    Lauf x({{450, 600, 60}, {3840, 610, 62}, {7680, 600, 64}}, {.takte = 4, .takt = {3840, 8, 4}, .quant = 1});
    EXPECT_EQ(je(x, &CKlangNote::Laenge), (Liste{600, 610, 480}));
    // The beat is a dotted quarter only where 2 to the stored denominator is 8, i.e. a stored 3;
    // with the real denominator 8 the beat stays a quarter.
    Lauf v({{360, 600, 60}}, {.takte = 2, .takt = {1440, 3, 3}});
    EXPECT_EQ(je(v, &CKlangNote::Laenge), Liste{480}); // on the beat of 360: 5 -> 4
    Lauf w({{360, 600, 60}}, {.takte = 2, .takt = {1440, 3, 8}});
    EXPECT_EQ(je(w, &CKlangNote::Laenge), Liste{360}); // 3 units after the quarter: 5 -> 3
}

// ---- rests ----

TEST(EnginePausen, LueckenWerdenAnSchlagUndTaktGeteiltLangVorKurz) {
    Lauf u({{0, 480, 60}, {1080, 240, 62}, {1920, 480, 64}, {3720, 120, 65}, {3840, 120, 66}, {4680, 480, 67},
            {5160, 240, 68}, {5760, 240, 69}, {6360, 240, 70}, {6960, 240, 71}},
           {.punktiert = true});
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{
                                {480, 480, 60, 1}, {960, 120, 60, 1},   // 5 units: 4 + 1
                                {1320, 120, 62, 2}, {1440, 480, 62, 2}, // off the beat: to it, then 4
                                {2400, 960, 64, 3}, {3360, 360, 64, 3}, // 11 units: 8 + 3
                                {3960, 360, 66, 5}, {4320, 360, 66, 5}, // 6 units after a beat: 3 + 3
                                // Under 4 units off the beat a gap stays whole: 1 unit 2 after the
                                // beat, 3 units 1, 2 and 3 after it.
                                {5040, 120, 67, 6}, {5400, 360, 68, 7}, {6000, 360, 69, 8}, {6600, 360, 70, 9},
                            }));
    for (const auto& p : *u.pausen()) EXPECT_EQ(p->TaktNr(), 0);
    // Without dotted rests each of them is an eighth and a sixteenth after it.
    u.e().PunktiertePausen(false);
    ASSERT_TRUE(u.produce(false));
    const auto ohne = pausenVon(u);
    EXPECT_EQ(std::vector<Pause>(ohne.end() - 6, ohne.end()),
              (std::vector<Pause>{{5400, 240, 68, 7}, {5640, 120, 68, 7}, {6000, 240, 69, 8}, {6240, 120, 69, 8},
                                  {6600, 240, 70, 9}, {6840, 120, 70, 9}}));
    // Touching chords leave no rest; the leading rest carries the pitch of the first chord's last
    // note and chord number 0.
    Lauf v({{480, 480, 64}, {480, 480, 60}, {960, 960, 62}});
    EXPECT_EQ(pausenVon(v), (std::vector<Pause>{{0, 480, 64, 0}}));
    // Bar 1 made 8/4: the gap from 480 runs past its end and goes in pieces of at most a whole
    // note up to the bar line; in bar 2 (4/4) the rest is one piece.
    Lauf y({{0, 480, 60}, {4320, 480, 62}}, {.takte = 3, .punktiert = true});
    y.e().MFITaktLaengen()->Item(1)->Value(3840);
    y.e().Numeratoren()->Item(1)->Value(8);
    ASSERT_TRUE(y.produce(false));
    EXPECT_EQ(pausenVon(y), (std::vector<Pause>{{480, 1920, 60, 1}, {2400, 1440, 60, 1}, {3840, 480, 60, 1}}));
    // A gap of 18 units inside the long bar is one piece: no rest at all.
    Lauf z({{0, 480, 60}, {2640, 480, 62}}, {.takte = 2, .takt = {3840, 8, 4}});
    EXPECT_TRUE(z.pausen()->leer());
}

TEST(EnginePausen, LetzterTaktMitUndOhneFuellungUndPunktiertePausen) {
    Lauf u({{0, 480, 60}, {1920, 480, 62}}, {.letzterTakt = true});
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{
                                {480, 960, 60, 1}, {1440, 480, 60, 1}, // 12 units: dotted half split
                                {2400, 960, 62, 2}, {3360, 480, 62, 2},
                            }));
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce(false));
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{480, 960, 60, 1}, {1440, 480, 60, 1}}));
    // A note ending right at the bar line leaves nothing to fill.
    Lauf v({{0, 1920, 60}}, {.letzterTakt = true});
    EXPECT_TRUE(v.pausen()->leer());

    // 6 units on the beat: a dotted quarter, or 4 + 2 at the same place.
    Lauf w({{0, 480, 60}, {1200, 480, 62}});
    EXPECT_EQ(pausenVon(w), (std::vector<Pause>{{480, 480, 60, 1}, {960, 240, 60, 1}}));
    w.e().PunktiertePausen(true);
    ASSERT_TRUE(w.produce(false));
    EXPECT_EQ(pausenVon(w), (std::vector<Pause>{{480, 720, 60, 1}}));
}
