// The note sheet's layout asked where things went: heads on their strings, the written values a
// harp player reads, bars, pages and strips.
#include "blatt/BlattSatz.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace lyrabo::blatt {
namespace {

// A piece of notes (start, length, pitch) in 4/4 bars at the given resolution.
Stueck lied(std::vector<std::array<int32_t, 3>> noten, int32_t tpq = 480, int takte = 4, int16_t saiten = 37) {
    Stueck s;
    s.titel = "Probe";
    s.ticksProViertel = tpq;
    s.saiten = saiten;
    for (int i = 0; i < takte; ++i) s.takte.push_back({tpq * 4, 4, 4});
    for (auto [start, laenge, ton] : noten) s.noten.push_back({start, laenge, int16_t(ton), 0, "", false});
    return s;
}

struct Kopf {
    size_t seite;
    Ellipse e;
};
std::vector<Kopf> koepfe(const Blatt& b, int32_t note) {
    std::vector<Kopf> k;
    for (size_t s = 0; s < b.seiten.size(); ++s)
        for (const auto& el : b.seiten[s].elemente)
            if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note == note && e->rx > 1) k.push_back({s, *e});
    return k;
}
template <typename T>
int zaehlen(const Seite& s, int32_t note, auto&& passt) {
    return int(std::count_if(s.elemente.begin(), s.elemente.end(), [&](const Element& el) {
        auto* f = std::get_if<T>(&el.form);
        return f && el.note == note && passt(*f);
    }));
}
double hoehe(const Pfad& p) {
    double lo = 1e9, hi = -1e9;
    for (const auto& s : p.schritte)
        if (s.art != Pfad::Art::Schliessen) lo = std::min(lo, s.p.y), hi = std::max(hi, s.p.y);
    return hi - lo;
}
bool textDa(const Seite& s, const std::string& t) {
    return std::any_of(s.elemente.begin(), s.elemente.end(), [&](const Element& el) {
        auto* x = std::get_if<Text>(&el.form);
        return x && x->text.find(t) != std::string::npos;
    });
}

// Lengths as a musician writes them, at 480 and at resolutions that are no multiple of 48.
TEST(BlattSatz, NotenwerteWerdenGeschriebenWieGelesen) {
    struct Fall {
        int32_t tpq, laenge;
        int koepfe;
        bool hohl;
        int haelse, fahnen, punkte, boegen;
    } faelle[] = {
        {480, 1920, 1, true, 0, 0, 0, 0},  // whole
        {480, 1440, 1, true, 1, 0, 1, 0},  // dotted half
        {480, 960, 1, true, 1, 0, 0, 0},   // half
        {480, 480, 1, false, 1, 0, 0, 0},  // quarter
        {480, 360, 1, false, 1, 1, 1, 0},  // dotted eighth
        {480, 120, 1, false, 1, 2, 0, 0},  // sixteenth
        {480, 1200, 2, true, 2, 1, 0, 1},  // no glyph: half tied to an eighth
        {480, 2400, 2, true, 1, 0, 0, 1},  // longer than a bar's whole: whole tied to a quarter
        {480, 60, 1, false, 1, 2, 0, 0},   // shorter than a sixteenth: a sixteenth
        {480, 0, 1, false, 1, 2, 0, 0},    // no length: a sixteenth
        {90, 45, 1, false, 1, 1, 0, 0},    // eighth at 90 per quarter
        {90, 135, 1, false, 1, 0, 1, 0},   // dotted quarter at 90
        {100, 75, 1, false, 1, 1, 1, 0},   // dotted eighth at 100: 18.75 ticks a sixteenth
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE("tpq " + std::to_string(f.tpq) + ", Länge " + std::to_string(f.laenge));
        const Blatt b = setzen(lied({{0, f.laenge, 67}}, f.tpq), standardFuer(37));
        const auto k = koepfe(b, 0);
        ASSERT_EQ(int(k.size()), f.koepfe);
        EXPECT_EQ(!k[0].e.gefuellt, f.hohl);
        const Seite& s = b.seiten[0];
        EXPECT_EQ(zaehlen<Linie>(s, 0, [](const Linie& l) { return l.a.x == l.b.x; }), f.haelse);
        EXPECT_EQ(zaehlen<Pfad>(s, 0, [](const Pfad& p) { return hoehe(p) < 3; }), f.fahnen);
        EXPECT_EQ(zaehlen<Pfad>(s, 0, [](const Pfad& p) { return hoehe(p) >= 3; }), f.boegen);
        EXPECT_EQ(zaehlen<Ellipse>(s, 0, [&](const Ellipse& e) { return e.rx < 1 && e.mitte.x > k[0].e.mitte.x; }), f.punkte);
    }
}

// Every head sits on the string that sounds it: x = left edge + (string - 1) x spacing.
TEST(BlattSatz, KoepfeSitzenAufIhrenSaiten) {
    struct Fall {
        const char* was;
        int16_t saiten, transpo;
        double abstand;
        int ton;
        double x;       // expected head centre
        bool rot;
    } faelle[] = {
        {"37 Saiten auf A3 quer, g", 37, 0, 11.5, 55, 3.0, false},
        {"37 Saiten, g'''", 37, 0, 11.5, 91, 417.0, false},
        {"transponiert um +2", 37, 2, 11.5, 60, 3.0 + 7 * 11.5, false},
        {"25 Saiten auf A4 quer", 25, 0, 11.5, 67, 10.5 + 12 * 11.5, false},
        {"25 Saiten, 12 mm Abstand", 25, 0, 12.0, 79, 4.5 + 24 * 12.0, false},
        {"unter der tiefsten Saite", 37, 0, 11.5, 50, 3.0, true},
        {"über der höchsten von 25", 25, 0, 11.5, 80, 10.5 + 24 * 11.5, true},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.was);
        Stueck s = lied({{0, 480, f.ton}}, 480, 1, f.saiten);
        s.transpo = f.transpo;
        Einstellungen e = standardFuer(f.saiten);
        e.saitenAbstand = f.abstand;
        const Blatt b = setzen(s, e);
        const auto k = koepfe(b, 0);
        ASSERT_EQ(k.size(), 1u);
        EXPECT_NEAR(k[0].e.mitte.x, f.x, 1e-9);
        EXPECT_EQ(k[0].e.farbe == kRot, f.rot);
        EXPECT_EQ(b.ausserhalb, f.rot ? 1 : 0);
        // The arrow that points off the strings.
        EXPECT_EQ(zaehlen<Pfad>(b.seiten[0], 0, [](const Pfad& p) { return p.farbe == kRot && p.schritte.size() == 4 && hoehe(p) < 2; }) > 0, f.rot);
    }
}

TEST(BlattSatz, AkkordAufEinerZeileMitVerbindungslinie) {
    const Blatt b = setzen(lied({{0, 480, 60}, {0, 480, 64}, {0, 480, 67}, {480, 480, 72}}), standardFuer(37));
    const double y = koepfe(b, 0)[0].e.mitte.y;
    for (int i : {1, 2}) EXPECT_EQ(koepfe(b, i)[0].e.mitte.y, y);
    EXPECT_GT(koepfe(b, 3)[0].e.mitte.y, y + 4);
    const double links = 3.0 + 5 * 11.5, rechts = 3.0 + 12 * 11.5;
    EXPECT_EQ(zaehlen<Linie>(b.seiten[0], -1, [&](const Linie& l) { return l.a.y == y && l.b.y == y && l.a.x == links && l.b.x == rechts; }), 1);
}

TEST(BlattSatz, TransposeVorschlagBringtAlleAufDieSaiten) {
    struct Fall {
        int tief, hoch;
        int16_t transpo;
        bool vorschlag;
        int16_t wert;
    } faelle[] = {
        {50, 70, 0, true, 5},    // five semitones too low
        {60, 95, 0, true, -4},   // four too high
        {60, 95, 3, true, -4},   // the suggestion is the whole transposition, not the step
        {40, 90, 0, false, 0},   // wider than the harp
    };
    for (const auto& f : faelle) {
        Stueck s = lied({{0, 480, f.tief}, {480, 480, f.hoch}});
        s.transpo = f.transpo;
        const Blatt b = setzen(s, standardFuer(37));
        EXPECT_EQ(b.transpoVorschlag, f.vorschlag) << f.tief << ".." << f.hoch;
        if (f.vorschlag) EXPECT_EQ(b.vorschlag, f.wert);
        EXPECT_TRUE(textDa(b.seiten[0], f.vorschlag ? "Mit Transposition" : "Keine Transposition"));
    }
}

// A long song: pages break at bar lines only, and every head stays inside the music area.
TEST(BlattSatz, SeitenBrechenAmTaktstrich) {
    std::vector<std::array<int32_t, 3>> noten;
    for (int i = 0; i < 400; ++i) noten.push_back({i * 240, 240, 60 + i % 12});
    const Blatt b = setzen(lied(noten, 480, 50), standardFuer(37));
    ASSERT_GT(b.seiten.size(), 2u);
    for (const auto& s : b.seiten) {
        ASSERT_FALSE(s.zeit.empty());
        EXPECT_EQ(s.zeit.front().tick % 1920, 0) << "Seite beginnt mitten im Takt";
        const double yTakt = s.zeit.front().y - 2.3;
        EXPECT_EQ(zaehlen<Linie>(s, -1, [&](const Linie& l) { return std::abs(l.a.y - yTakt) < 1e-9 && l.a.y == l.b.y; }), 1);
        for (const auto& el : s.elemente)
            if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note >= 0) {
                EXPECT_GT(e->mitte.y, 31.0);
                EXPECT_LT(e->mitte.y + 4, s.hoehe - 12.0);
            }
    }
    EXPECT_TRUE(textDa(b.seiten.back(), "Seite " + std::to_string(b.seiten.size()) + " von " + std::to_string(b.seiten.size())));
    // A note far behind the music: the empty bars before it are one line, not thousands of pages.
    const Blatt weit = setzen(lied({{0, 480, 60}, {1 << 26, 480, 62}}, 480, 1), standardFuer(37));
    EXPECT_EQ(weit.seiten.size(), 1u);
    EXPECT_TRUE(textDa(weit.seiten[0], ": nichts zu spielen"));
    // "auf eine Seite" squeezes a short song onto one page, never below 4 mm a quarter.
    Einstellungen eng = standardFuer(37);
    eng.aufEineSeite = true;
    std::vector<std::array<int32_t, 3>> viertel;
    for (int i = 0; i < 40; ++i) viertel.push_back({i * 480, 480, 60});
    EXPECT_EQ(setzen(lied(viertel, 480, 10), standardFuer(37)).seiten.size(), 2u);
    EXPECT_EQ(setzen(lied(viertel, 480, 10), eng).seiten.size(), 1u);
}

TEST(BlattSatz, TaktartWechselAmTaktstrich) {
    Stueck s = lied({{0, 1920, 60}, {1920, 1920, 62}, {3840, 1440, 64}, {5280, 1440, 65}}, 480, 2);
    s.takte.push_back({1440, 3, 4});
    s.takte.push_back({1440, 3, 4});
    const Blatt b = setzen(s, standardFuer(37));
    const Seite& seite = b.seiten[0];
    const double yDritter = koepfe(b, 2)[0].e.mitte.y;
    int gefunden = 0;
    for (const auto& el : seite.elemente)
        if (auto* t = std::get_if<Text>(&el.form); t && (t->text == "3/4" || t->text == "4/4")) {
            ++gefunden;
            if (t->text == "3/4") EXPECT_NEAR(t->ort.y, yDritter - 2.3 - 1.0, 1e-9);
        }
    EXPECT_EQ(gefunden, 2); // at the start and at the change, not at every bar
}

// 37 strings on A4 portrait: strips that share their border string, each with the same rows.
TEST(BlattSatz, StreifenFuer37SaitenAufA4Hoch) {
    Einstellungen e = standardFuer(37);
    e.papier = Papier::A4;
    e.quer = false;
    const Blatt b = setzen(lied({{0, 480, 55}, {480, 480, 67}, {960, 480, 79}, {1440, 480, 91}}), e);
    ASSERT_EQ(b.seiten.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        const Seite& s = b.seiten[i];
        EXPECT_EQ(s.streifen, int(i) + 1);
        EXPECT_EQ(s.zeit.size(), b.seiten[0].zeit.size());
        EXPECT_TRUE(textDa(s, "Streifen " + std::to_string(i + 1) + " von 3"));
        EXPECT_EQ(i > 0, textDa(s, "hier schneiden"));
    }
    // A note on a border string is on both strips: at the right of one, the left of the next.
    struct Fall {
        int32_t note;
        std::vector<std::pair<size_t, double>> wo;
    } faelle[] = {
        {0, {{0, 8.0}}},
        {1, {{0, 146.0}, {1, 8.0}}},
        {2, {{1, 146.0}, {2, 8.0}}},
        {3, {{2, 146.0}}},
    };
    for (const auto& f : faelle) {
        const auto k = koepfe(b, f.note);
        ASSERT_EQ(k.size(), f.wo.size()) << "Note " << f.note;
        for (size_t i = 0; i < k.size(); ++i) {
            EXPECT_EQ(k[i].seite, f.wo[i].first);
            EXPECT_NEAR(k[i].e.mitte.x, f.wo[i].second, 1e-9);
        }
    }
}

} // namespace
} // namespace lyrabo::blatt

namespace lyrabo::blatt {
namespace {

// Laid out for a printer that cannot reach the paper's edges: strips where the strings no longer
// fit, and no line or head in the unprintable margin.
TEST(BlattSatz, DruckrandHaeltDieRaenderFrei) {
    struct Fall {
        int16_t saiten;
        double druckRand;
        size_t streifen;
    } faelle[] = {{37, 0, 1}, {37, 4.2, 2}, {25, 4.2, 1}, {25, 9, 2}};
    for (const auto& f : faelle) {
        Einstellungen e = standardFuer(f.saiten);
        e.druckRand = f.druckRand;
        const Blatt b = setzen(lied({{0, 480, 55}, {480, 480, 54 + f.saiten}}, 480, 4, f.saiten), e);
        ASSERT_EQ(b.seiten.size(), f.streifen) << f.saiten << " Saiten, Rand " << f.druckRand;
        for (const auto& s : b.seiten)
            for (const auto& el : s.elemente) {
                double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
                if (auto* l = std::get_if<Linie>(&el.form)) x0 = std::min(l->a.x, l->b.x), x1 = std::max(l->a.x, l->b.x), y0 = std::min(l->a.y, l->b.y), y1 = std::max(l->a.y, l->b.y);
                else if (auto* k = std::get_if<Ellipse>(&el.form)) x0 = k->mitte.x - k->rx, x1 = k->mitte.x + k->rx, y0 = k->mitte.y - k->ry, y1 = k->mitte.y + k->ry;
                else continue;
                EXPECT_GE(std::min(x0, y0), f.druckRand);
                EXPECT_LE(x1, s.breite - f.druckRand);
                EXPECT_LE(y1, s.hoehe - f.druckRand);
            }
    }
}

} // namespace
} // namespace lyrabo::blatt
