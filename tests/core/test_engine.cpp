// The conversion engine driven through MIDI files built here and read by the program's reader.
#include "support/EngineUmgebung.h"

#include "model/Zahlen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct Ton {
    int32_t start;
    int32_t laenge;
    int ton;
    int kanal = 1;
};

// Writes notes given by absolute start and length as Note On / Note Off events in time order; at
// equal times the events keep the order of the list (an ending note before the next one starts).
void schreibeNoten(MidiSpur& spur, const std::vector<Ton>& noten) {
    struct Ereignis {
        int32_t zeit;
        bool an;
        Ton t;
    };
    std::vector<Ereignis> ev;
    for (const auto& n : noten) {
        ev.push_back({n.start, true, n});
        ev.push_back({n.start + n.laenge, false, n});
    }
    std::stable_sort(ev.begin(), ev.end(), [](const Ereignis& a, const Ereignis& b) { return a.zeit < b.zeit; });
    int32_t jetzt = 0;
    for (const auto& x : ev) {
        const auto delta = static_cast<uint32_t>(x.zeit - jetzt);
        jetzt = x.zeit;
        if (x.an)
            spur.an(delta, x.t.kanal, x.t.ton);
        else
            spur.aus(delta, x.t.kanal, x.t.ton);
    }
}

MidiBauer dateiMit(const std::vector<Ton>& noten) {
    MidiBauer d(480);
    schreibeNoten(d.spur(), noten);
    return d;
}

// A program with a file of these notes loaded and bars of 4/4 (unless told otherwise).
struct Lauf : EngineUmgebung {
    explicit Lauf(const std::vector<Ton>& noten, int takte = 8, EngineTakt takt = {1920, 4, 4}) {
        laden(dateiMit(noten));
        EngineUmgebung::takte(takte, takt);
    }
    std::shared_ptr<CKlangNote> note(int32_t i) { return noten()->Item(i); }
};

using Pause = std::tuple<int32_t, int32_t, int, int>; // start, length, pitch, chord

std::vector<Pause> pausenVon(EngineUmgebung& u) {
    std::vector<Pause> v;
    for (const auto& p : *u.pausen()) v.emplace_back(p->StartZeit(), p->Laenge(), p->TonHoehe(), p->AkkordNr());
    return v;
}

} // namespace

// ---- reading the track ----

TEST(EngineLesen, NotenMitZeitTonKanalUndLaengeWieGelesen) {
    MidiBauer d(480);
    d.spur().name("Melodie").note(0, 60, 480, 1).note(240, 62, 240, 3).an(0, 2, 64).aus(480, 2, 64, false);
    EngineUmgebung u;
    u.laden(d);
    u.takte(4, {1920, 4, 4});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), 3);
    auto n2 = u.noten()->Item(2);
    EXPECT_EQ(n2->StartZeit(), 720);
    EXPECT_EQ(n2->Laenge(), 240);
    EXPECT_EQ(n2->LaengeOrig(), 240);
    EXPECT_EQ(n2->TonHoehe(), 62);
    EXPECT_EQ(n2->TaktNr(), 1);
    EXPECT_EQ(n2->ID(), 2);
    // A Note On with velocity 0 ends the note like a Note Off.
    EXPECT_EQ(u.noten()->Item(3)->Laenge(), 480);
    EXPECT_TRUE(u.form.meldungen.empty());
}

TEST(EngineLesen, NoteOffEndetDieLetzteNoteDerTonhoeheGleichWelcherKanal) {
    // Two overlapping notes of one pitch: both Note Offs end the later one; the earlier note keeps
    // length 0 until the overlap pass lets it reach the later start.
    MidiBauer d(480);
    d.spur().an(0, 1, 60).an(480, 2, 60).aus(480, 1, 60).aus(480, 3, 60).note(0, 67, 480);
    EngineUmgebung u;
    u.laden(d);
    u.takte(4, {1920, 4, 4});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), 3);
    EXPECT_EQ(u.noten()->Item(1)->Laenge(), 480);
    EXPECT_EQ(u.noten()->Item(1)->LaengeOrig(), 480);
    EXPECT_EQ(u.noten()->Item(2)->StartZeit(), 480);
    EXPECT_EQ(u.noten()->Item(2)->Laenge(), 960);
}

TEST(EngineLesen, NoteOffOhneNoteMeldetUndBehaeltDasGelesene) {
    MidiBauer d(480);
    d.spur().note(0, 60, 475).aus(10, 1, 61).note(0, 62, 480);
    EngineUmgebung u;
    u.laden(d);
    u.takte(4, {1920, 4, 4});
    EXPECT_FALSE(u.produce());
    ASSERT_EQ(u.form.meldungen.size(), 1u);
    EXPECT_EQ(u.form.meldungen[0], "MIDI-File ist nicht in Ordnung.");
    // The note read before stays, as read (not quantised), and nothing after it ran.
    ASSERT_EQ(u.noten()->Count(), 1);
    EXPECT_EQ(u.noten()->Item(1)->Laenge(), 475);
    EXPECT_TRUE(u.akkorde()->leer());
}

TEST(EngineLesen, MeldungGehtAnDasFensterDerEngineSonstAnDasDesProgramms) {
    MidiBauer d(480);
    d.spur().aus(0, 1, 61);
    EngineUmgebung u;
    EngineTestForm anderes;
    u.engine().Form(&anderes);
    u.laden(d);
    EXPECT_FALSE(u.produce());
    EXPECT_EQ(anderes.meldungen.size(), 1u);
    EXPECT_TRUE(u.form.meldungen.empty());
    u.engine().Form(nullptr);
    EXPECT_FALSE(u.produce());
    EXPECT_EQ(u.form.meldungen.size(), 1u);
}

TEST(EngineLesen, SpurOhneNotenGibtLeereListenUndGelingt) {
    MidiBauer d(480);
    d.spur().name("leer").lyric(100, "la");
    EngineUmgebung u;
    u.laden(d);
    u.takte(2, {1920, 4, 4});
    EXPECT_TRUE(u.produce());
    EXPECT_TRUE(u.noten()->leer());
    EXPECT_TRUE(u.akkorde()->leer());
    EXPECT_TRUE(u.pausen()->leer());
}

TEST(EngineLesen, LiedtextVorDenNotenGehtAnDieNaechsteNote) {
    MidiBauer d(480);
    d.spur().lyric(0, "ver").lyric(0, "Hal").note(0, 60, 480).note(0, 62, 480).lyric(0, "lo").note(0, 64, 480);
    EngineUmgebung u;
    u.laden(d);
    u.takte(2, {1920, 4, 4});
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.noten()->Item(1)->MsgText(), "Hal"); // a later lyric replaces the waiting one
    EXPECT_EQ(u.noten()->Item(2)->MsgText(), "");
    EXPECT_EQ(u.noten()->Item(3)->MsgText(), "lo");
}

TEST(EngineLesen, LiedtextNachDenNotenGehtAnDieLaufendeNote) {
    MidiBauer d(480);
    d.spur().an(0, 1, 60).lyric(0, "Hal").aus(480, 1, 60).lyric(0, "lo").note(0, 62, 480);
    EngineUmgebung u;
    u.laden(d);
    u.takte(2, {1920, 4, 4});
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.noten()->Item(1)->MsgText(), "lo");
    EXPECT_EQ(u.noten()->Item(2)->MsgText(), "");
}

// ---- quantisation ----

TEST(EngineQuantisierung, RundetAufDasRasterHalbeNachOben) {
    // QuantTicks 120: 59 -> 0, 60 -> 120, 181 -> 240; a length of 50 becomes 0 and stays.
    Lauf u({{59, 480, 60}, {1020, 480, 62}, {2101, 480, 64}, {2880, 50, 65}, {3840, 480, 67}});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), 5);
    EXPECT_EQ(u.note(1)->StartZeit(), 0);
    EXPECT_EQ(u.note(2)->StartZeit(), 1080);
    EXPECT_EQ(u.note(3)->StartZeit(), 2160);
    EXPECT_EQ(u.note(4)->StartZeit(), 2880);
    // The length 0 from quantising is then set to reach the next start by the overlap pass.
    EXPECT_EQ(u.note(4)->Laenge(), 960);
    EXPECT_EQ(u.note(4)->LaengeOrig(), 960);
}

TEST(EngineQuantisierung, HalbesRasterWirdGeradeGerundet) {
    // 48 ticks per quarter and a grid of 5: half the grid is 2 (2.5 to even), so a remainder of 2
    // rounds up.
    MidiBauer d(48);
    d.spur().note(7, 60, 12).note(12, 62, 12).note(100, 64, 12);
    EngineUmgebung u;
    u.laden(d);
    u.e().QuantNotenwert(5);
    ASSERT_EQ(u.e().QuantTicks(), 5);
    u.takte(4, {192, 4, 4});
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.noten()->Item(1)->StartZeit(), 10); // 7: remainder 2 -> up
    EXPECT_EQ(u.noten()->Item(2)->StartZeit(), 30); // 31: remainder 1 -> down
    EXPECT_EQ(u.noten()->Item(1)->Laenge(), 15);    // 12: remainder 2 -> up
    EXPECT_EQ(u.noten()->Item(1)->LaengeOrig(), 12);
}

// ---- duplicates ----

TEST(EngineDoppelte, NachbarGehtDieSpaetereBleibt) {
    Lauf u({{0, 480, 60}, {0, 480, 60}, {480, 480, 62}});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), 2);
    EXPECT_EQ(u.note(1)->ID(), 2);
}

TEST(EngineDoppelte, MitNotenDazwischenGehtDieNoteVorDemDoppel) {
    // 60, 64, 60 at one start: the second 60 is found at j = 3 and item 2 (the 64) goes.
    Lauf u({{0, 480, 60}, {0, 480, 64}, {0, 480, 60}, {480, 480, 62}});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), 3);
    EXPECT_EQ(u.note(1)->ID(), 1);
    EXPECT_EQ(u.note(2)->ID(), 3);
    EXPECT_EQ(u.note(2)->TonHoehe(), 60);

    // After a removal the note moving into place j is skipped: 60 64 60 60 60 -> the 64 goes,
    // the 60 moving into place 3 is skipped, the next 60 is found and the skipped one goes; then
    // the second note's duplicate is its neighbour, so the second note itself goes.
    Lauf v({{0, 480, 60}, {0, 480, 64}, {0, 480, 60}, {0, 480, 60}, {0, 480, 60}, {480, 480, 62}});
    ASSERT_TRUE(v.produce());
    std::vector<int32_t> ids;
    for (const auto& n : *v.noten()) ids.push_back(n->ID());
    EXPECT_EQ(ids, (std::vector<int32_t>{1, 5, 6}));
}

TEST(EngineDoppelte, DieBleibendeNoteErhaeltDieGroessereSpur) {
    Lauf u({{0, 480, 60}, {0, 480, 60}, {480, 480, 62}});
    ASSERT_TRUE(u.produce());
    // Stamp track numbers as merged notes carry them and run the stages again on the same notes.
    auto noten = u.noten()->alsVektor();
    auto a = std::make_shared<CKlangNote>(*noten[0]);
    a->Spur(5);
    auto b = std::make_shared<CKlangNote>(*noten[0]);
    b->Spur(3);
    b->ID(9);
    u.noten()->ersetzeDurch({a, b, noten[1]});
    ASSERT_TRUE(u.produce(false));
    ASSERT_EQ(u.noten()->Count(), 2);
    EXPECT_EQ(u.note(1)->ID(), 9);
    EXPECT_EQ(u.note(1)->Spur(), 5);
}

// ---- length correction ----

TEST(EngineLaengen, UeberlappungImAkkordUndDieLetzteNote) {
    // A chord followed only by the last note: the search for the next start steps over the
    // chord's second note, reaches the count and gives up, so the first chord note keeps its
    // length; the second finds the last note directly and is trimmed.
    Lauf u({{0, 1440, 60}, {0, 1440, 64}, {480, 480, 67}});
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.note(1)->Laenge(), 1440);
    EXPECT_EQ(u.note(1)->LaengeOrig(), 1440);
    EXPECT_EQ(u.note(2)->Laenge(), 480);
    EXPECT_EQ(u.note(2)->LaengeOrig(), 480);

    // One more note behind it: now both chord notes reach the next start.
    Lauf v({{0, 1440, 60}, {0, 1440, 64}, {480, 480, 67}, {960, 480, 69}});
    ASSERT_TRUE(v.produce());
    EXPECT_EQ(v.note(1)->Laenge(), 480);
    EXPECT_EQ(v.note(2)->Laenge(), 480);
}

TEST(EngineLaengen, LetzteNoteBehaeltLaengeNullUndGanzeNoteIstGrenze) {
    Lauf u({{0, 2400, 60}, {1920, 0, 62}});
    ASSERT_TRUE(u.produce());
    // Limited to a whole note (4 x 480), together with LaengeOrig.
    EXPECT_EQ(u.note(1)->Laenge(), 1920);
    EXPECT_EQ(u.note(1)->LaengeOrig(), 1920);
    EXPECT_EQ(u.note(2)->Laenge(), 0);
}

TEST(EngineLaengen, TaktschnittUeberDreiTakte) {
    // Bars of 2/4: a note from 720 over 1,500 ticks ends in bar 3 and is cut at that bar's start
    // (1920), keeping the first two bars; LaengeOrig stays.
    Lauf u({{720, 1500, 60}}, 4, {960, 2, 4});
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.note(1)->Laenge(), 1200);
    EXPECT_EQ(u.note(1)->LaengeOrig(), 1500);
    EXPECT_EQ(u.note(1)->TaktNr(), 1);
}

TEST(EngineLaengen, LegatoNurDieLetzteAkkordnoteUndNurBeiLuecke) {
    // Bars of 8/4. Chord 1 ends at 240 with the next chord at 960: its last note reaches 960 (an
    // allowed length); chord 2 ends at 1440 with a gap to 2520: 1560 is not allowed, 1440 is.
    // Chord 3 touches chord 4 and stays.
    Lauf u({{0, 240, 64}, {0, 240, 60}, {960, 480, 62}, {2520, 360, 64}, {2880, 480, 65}}, 2, {3840, 8, 4});
    u.e().Legato(true);
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    // Chord 1 is ordered 60, 64: the 64 is its last note.
    EXPECT_EQ(u.akkorde()->Item(1)->Item(1)->TonHoehe(), 60);
    EXPECT_EQ(u.akkorde()->Item(1)->Item(1)->Laenge(), 240);
    EXPECT_EQ(u.akkorde()->Item(1)->Item(2)->Laenge(), 960);
    EXPECT_EQ(u.akkorde()->Item(1)->Item(2)->LaengeOrig(), 240);
    EXPECT_EQ(u.akkorde()->Item(2)->Item(1)->Laenge(), 1440);
    EXPECT_EQ(u.akkorde()->Item(3)->Item(1)->Laenge(), 360);
    // Without legato the gap stays a rest.
    Lauf v({{0, 240, 64}, {0, 240, 60}, {960, 480, 62}});
    v.e().PausenLetzterTakt(false);
    ASSERT_TRUE(v.produce());
    EXPECT_EQ(v.akkorde()->Item(1)->Item(2)->Laenge(), 240);
    EXPECT_EQ(pausenVon(v), (std::vector<Pause>{{240, 240, 64, 1}, {480, 480, 64, 1}}));
    // Stepping down to an allowed length can leave a short gap, which becomes a rest.
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{2400, 120, 62, 2}}));
}

TEST(EngineLaengen, LegatoOhneErreichbareLaengeLaeuftUeberUndDasProgrammGehtWeiter) {
    // A grid of 50 ticks never steps from 1000 onto an allowed length: the 16-bit steps run out.
    Lauf u({{0, 100, 60}, {1000, 480, 62}});
    u.e().QuantNotenwert(5);
    u.e().Legato(true);
    EXPECT_THROW(u.produce(), UeberlaufFehler);
    u.e().Legato(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.note(1)->Laenge(), 100);
}

// ---- chords and monophony ----

TEST(EngineAkkorde, TonhoeheAufsteigendLaengereNachVorn) {
    Lauf u({{0, 480, 64}, {0, 480, 60}, {0, 480, 67}, {480, 480, 64}, {480, 480, 60}, {480, 960, 67}, {1440, 480, 60}});
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.akkorde()->Count(), 3);
    auto tonfolge = [&](int k) {
        std::vector<std::pair<int, int>> v;
        for (const auto& n : *u.akkorde()->Item(k)) v.emplace_back(n->TonHoehe(), n->Kanal());
        return v;
    };
    EXPECT_EQ(tonfolge(1), (std::vector<std::pair<int, int>>{{60, 1}, {64, 2}, {67, 3}}));
    EXPECT_EQ(tonfolge(2), (std::vector<std::pair<int, int>>{{67, 1}, {60, 2}, {64, 3}}));
    for (const auto& n : *u.akkorde()->Item(2)) EXPECT_EQ(n->AkkordNr(), 2);
    // The chords hold the very notes of KlangNoten.
    EXPECT_EQ(u.akkorde()->Item(3)->Item(1).get(), u.note(7).get());
}

TEST(EngineAkkorde, EinstimmigkeitBleibtFalschBisDasFensterSieZuruecksetzt) {
    MidiBauer d(480);
    schreibeNoten(d.spur(), {{0, 480, 60}, {0, 480, 64}, {480, 480, 62}});
    schreibeNoten(d.spur(), {{0, 480, 60}, {480, 480, 62}});
    EngineUmgebung u;
    u.laden(d, 2);
    u.takte(2, {1920, 4, 4});
    ASSERT_TRUE(u.produce());
    EXPECT_TRUE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 1);

    u.e().TrackNr(1);
    ASSERT_TRUE(u.produce());
    EXPECT_FALSE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 0);

    // A one-voice track afterwards does not turn it back ...
    u.e().TrackNr(2);
    ASSERT_TRUE(u.produce());
    EXPECT_FALSE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 0);
    // ... until the window sets it true before converting.
    u.engine().IsMonoton(true);
    ASSERT_TRUE(u.produce());
    EXPECT_TRUE(u.engine().IsMonoton());
    EXPECT_EQ(u.e().ClipExportFlags()->Item(8)->Value(), 1);
}

// ---- writable lengths from the position in the beat ----

TEST(EngineNotenInTakt, JedeZeileDerTabelle) {
    struct Fall {
        int pos, einheiten, erwartet;
    };
    const std::vector<Fall> faelle = {
        {0, 5, 4},  {0, 7, 6},  {0, 9, 8},   {0, 10, 8},  {0, 11, 8},  {0, 13, 12}, {0, 14, 12}, {0, 15, 12},
        {0, 6, 6},  {0, 12, 12}, {0, 4, 4},  {1, 4, 3},   {1, 5, 3},   {1, 6, 3},   {1, 7, 3},   {1, 9, 8},
        {1, 10, 8}, {1, 11, 8}, {1, 13, 12}, {1, 14, 14}, {1, 15, 15}, {1, 8, 8},   {2, 5, 4},   {2, 7, 6},
        {2, 6, 6},  {2, 9, 9},  {2, 13, 13}, {3, 4, 3},   {3, 7, 3},   {3, 11, 8},  {3, 13, 12}, {3, 14, 14},
    };
    // Each note alone in a bar of 8/4, so nothing else shortens it.
    std::vector<Ton> noten;
    for (size_t k = 0; k < faelle.size(); ++k)
        noten.push_back({static_cast<int32_t>(k) * 3840 + faelle[k].pos * 120, faelle[k].einheiten * 120, 60});
    Lauf u(noten, static_cast<int>(faelle.size()) + 1, {3840, 8, 4});
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    ASSERT_EQ(u.noten()->Count(), static_cast<int32_t>(faelle.size()));
    for (size_t k = 0; k < faelle.size(); ++k) {
        const auto& n = u.note(static_cast<int32_t>(k) + 1);
        EXPECT_EQ(n->Laenge(), faelle[k].erwartet * 120) << "pos " << faelle[k].pos << ", " << faelle[k].einheiten << " units";
        EXPECT_EQ(n->LaengeOrig(), faelle[k].einheiten * 120);
    }
}

TEST(EngineNotenInTakt, MehrAlsDreiEinheitenNachDemSchlagUndKrummeLaengen) {
    // A grid of 10 ticks keeps 450 (3.75 units after the beat: position 4) and a length of 610.
    Lauf u({{450, 600, 60}, {3840, 610, 62}, {7680, 600, 64}}, 4, {3840, 8, 4});
    u.e().QuantNotenwert(1);
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.note(1)->Laenge(), 600);
    EXPECT_EQ(u.note(2)->Laenge(), 610);
    EXPECT_EQ(u.note(3)->Laenge(), 480);
}

TEST(EngineNotenInTakt, DreiAchtelTestWieGeschrieben) {
    // The beat is a dotted quarter only where 2 to the stored denominator is 8, i.e. a stored 3;
    // with the real denominator 8 the beat stays a quarter.
    Lauf u({{360, 600, 60}}, 2, {1440, 3, 3});
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(u.note(1)->Laenge(), 480); // on the beat of 360: 5 -> 4

    Lauf v({{360, 600, 60}}, 2, {1440, 3, 8});
    v.e().PausenLetzterTakt(false);
    ASSERT_TRUE(v.produce());
    EXPECT_EQ(v.note(1)->Laenge(), 360); // 3 units after the quarter: 5 -> 3
}

// ---- rests ----

TEST(EnginePausen, LueckeAufDemSchlagWirdLangUndKurzGeteilt) {
    Lauf u({{0, 480, 60}, {1080, 240, 62}, {1920, 480, 64}, {3720, 120, 65}});
    u.e().PausenLetzterTakt(false);
    u.e().PunktiertePausen(true);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{
                                {480, 480, 60, 1}, {960, 120, 60, 1},   // 5 units: 4 + 1
                                {1320, 120, 62, 2}, {1440, 480, 62, 2},   // off the beat: to it, then 4
                                {2400, 960, 64, 3}, {3360, 360, 64, 3},   // 11 units: 8 + 3
                            }));
    for (const auto& p : *u.pausen()) EXPECT_EQ(p->TaktNr(), 0);
}

TEST(EnginePausen, LueckeNebenDemSchlagWirdErstBisZumSchlagGefuellt) {
    // 6 units starting one unit after a beat: 3 up to the beat, then 3.
    Lauf u({{0, 120, 60}, {840, 480, 62}});
    u.e().PausenLetzterTakt(false);
    u.e().PunktiertePausen(true);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{120, 360, 60, 1}, {480, 360, 60, 1}}));
}

TEST(EnginePausen, BeruehrendeAkkordeKeinePauseUndFuehrendePause) {
    // The leading rest carries the pitch of the first chord's last note and chord number 0.
    Lauf u({{480, 480, 64}, {480, 480, 60}, {960, 960, 62}});
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{0, 480, 64, 0}}));
}

TEST(EnginePausen, LetzterTaktMitUndOhneFuellung) {
    Lauf u({{0, 480, 60}, {1920, 480, 62}});
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{
                                {480, 960, 60, 1}, {1440, 480, 60, 1}, // 12 units: dotted half split
                                {2400, 960, 62, 2}, {3360, 480, 62, 2},
                            }));
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce(false));
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{480, 960, 60, 1}, {1440, 480, 60, 1}}));
    // A note ending right at the bar line leaves nothing to fill.
    Lauf v({{0, 1920, 60}});
    ASSERT_TRUE(v.produce());
    EXPECT_TRUE(v.pausen()->leer());
}

TEST(EnginePausen, PunktiertePausenNurWennErlaubt) {
    // 6 units on the beat: a dotted quarter, or 4 + 2 at the same place.
    Lauf u({{0, 480, 60}, {1200, 480, 62}});
    u.e().PausenLetzterTakt(false);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{480, 480, 60, 1}, {960, 240, 60, 1}}));
    u.e().PunktiertePausen(true);
    ASSERT_TRUE(u.produce(false));
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{480, 720, 60, 1}}));
}

TEST(EnginePausen, LangeTakteInGanzenNotenUndZuLangeLueckenOhnePause) {
    // Bar 1 of 8/4: the gap from 480 runs past its end and goes in pieces of at most a whole
    // note up to the bar line; in bar 2 (4/4) the rest is one piece.
    Lauf u({{0, 480, 60}, {4320, 480, 62}}, 3, {1920, 4, 4});
    u.takte({{3840, 8, 4}, {1920, 4, 4}, {1920, 4, 4}});
    u.e().PausenLetzterTakt(false);
    u.e().PunktiertePausen(true);
    ASSERT_TRUE(u.produce());
    EXPECT_EQ(pausenVon(u), (std::vector<Pause>{{480, 1920, 60, 1}, {2400, 1440, 60, 1}, {3840, 480, 60, 1}}));

    // A gap of 18 units inside the long bar is one piece: no rest at all.
    Lauf v({{0, 480, 60}, {2640, 480, 62}}, 2, {3840, 8, 4});
    v.e().PausenLetzterTakt(false);
    ASSERT_TRUE(v.produce());
    EXPECT_TRUE(v.pausen()->leer());
}
