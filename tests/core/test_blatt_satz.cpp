// The note sheet's layout asked where things went: heads on their strings, the written values a
// harp player reads, rows spaced by what the eye needs, bars, pages and strips.
#include "blatt/Abstaende.h"
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
            if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note == note && e->rx > 0.5) k.push_back({s, *e});
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
        Einstellungen e = standardFuer(37);
        e.notenform = Notenform::Hals;
        const Blatt b = setzen(lied({{0, f.laenge, 67}}, f.tpq), e);
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

// The table-harp shapes: no stems or flags, the value shown by size and fill.
TEST(BlattSatz, HarfenformZeigtDenWertAnGroesseUndFuellung) {
    struct Fall {
        int32_t laenge;
        bool hohl;
        int punkte;
    } faelle[] = {{1920, true, 0}, {960, true, 0}, {480, false, 0}, {240, false, 0}, {120, false, 0}, {720, false, 1}};
    double vorige = 99;
    for (const auto& f : faelle) {
        const Blatt b = setzen(lied({{0, f.laenge, 67}}), standardFuer(37));
        const auto k = koepfe(b, 0);
        ASSERT_EQ(k.size(), 1u) << f.laenge;
        EXPECT_EQ(!k[0].e.gefuellt, f.hohl) << f.laenge;
        EXPECT_EQ(zaehlen<Linie>(b.seiten[0], 0, [](const Linie&) { return true; }), 0) << "Hals bei " << f.laenge;
        EXPECT_EQ(zaehlen<Pfad>(b.seiten[0], 0, [](const Pfad&) { return true; }), 0) << "Fahne bei " << f.laenge;
        EXPECT_EQ(zaehlen<Ellipse>(b.seiten[0], 0, [](const Ellipse& e) { return e.rx < 0.5; }), f.punkte);
        if (f.punkte == 0) {
            EXPECT_LE(k[0].e.rx * k[0].e.ry, vorige) << "kürzer, aber nicht kleiner: " << f.laenge;
            vorige = k[0].e.rx * k[0].e.ry;
        }
        EXPECT_TRUE(textDa(b.seiten[0], "Sechzehntel")); // the legend
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
    // A thin dashed line from the outer heads' edges, stopping short of the head between them.
    const double mitte = 3.0 + 9 * 11.5;
    for (auto [von, bis] : {std::pair{links, mitte}, {mitte, rechts}})
        EXPECT_EQ(zaehlen<Linie>(b.seiten[0], -1, [&](const Linie& l) {
                      return l.gestrichelt && l.staerke < 0.3 && l.a.y == y && l.b.y == y && std::abs(l.a.x - von - 1.65) < 0.2 && std::abs(l.b.x - bis + 1.65) < 0.2;
                  }), 1);
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

// Rows and the room between them, read from the heads: y of note i's first head.
double yVon(const Blatt& b, int32_t note) { return koepfe(b, note).at(0).e.mitte.y; }

// A song that cannot fit one sheet: as few sheets as needed, broken at bar lines, filled about
// evenly; every head inside the music area. A note far behind the music costs no pages.
TEST(BlattSatz, ZuLangeLiederTeilenSichGleichmaessigAmTaktstrich) {
    std::vector<std::array<int32_t, 3>> noten;
    for (int i = 0; i < 230; ++i) noten.push_back({i * 240, 240, 60 + (i % 2) * 2}); // two strings in turn
    Einstellungen ausgeschrieben = standardFuer(37);
    ausgeschrieben.wiederholungenZusammenfassen = false; // every bar is the same
    const Blatt b = setzen(lied(noten, 480, 29), ausgeschrieben);
    ASSERT_EQ(b.seiten.size(), 2u);
    double genutzt[2] = {0, 0};
    for (size_t i = 0; i < 2; ++i) {
        const Seite& s = b.seiten[i];
        ASSERT_FALSE(s.zeit.empty());
        EXPECT_EQ(s.zeit.front().tick % 1920, 0) << "Seite beginnt mitten im Takt";
        EXPECT_LE(s.zeit.front().y, 20.0) << "Seitenkopf höher als 20 mm";
        EXPECT_TRUE(textDa(s, "Seite " + std::to_string(i + 1) + " von 2"));
        for (const auto& el : s.elemente)
            if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note >= 0) EXPECT_LT(e->mitte.y + e->ry, s.hoehe - 7.8);
        genutzt[i] = s.zeit.back().y - s.zeit.front().y;
    }
    EXPECT_NEAR(genutzt[0], genutzt[1], 0.1 * genutzt[0]) << "ungleich gefüllt";
    const Blatt weit = setzen(lied({{0, 480, 60}, {1 << 26, 480, 62}}, 480, 1), standardFuer(37));
    EXPECT_EQ(weit.seiten.size(), 1u);
    EXPECT_TRUE(textDa(weit.seiten[0], ": nichts zu spielen"));
}

// Room by what the eye needs: a whole note about three times a sixteenth's room, not sixteen
// times; fitting squeezes a long song onto one sheet and never stretches a short one.
TEST(BlattSatz, RaumWaechstMitDerZeitNurLogarithmisch) {
    // A whole note, then a run of sixteenths on strings side by side.
    Stueck s = lied({{0, 1920, 60}, {1920, 120, 62}, {2040, 120, 64}, {2160, 120, 65}, {2280, 120, 67}}, 480, 2);
    const Blatt b = setzen(s, standardFuer(37));
    const double ganze = yVon(b, 1) - yVon(b, 0), sechzehntel = yVon(b, 2) - yVon(b, 1);
    EXPECT_GT(sechzehntel, 0);
    EXPECT_NEAR(ganze - kTaktZugabe, 3 * sechzehntel, 0.5) << "Ganze " << ganze << ", Sechzehntel " << sechzehntel;
    EXPECT_NEAR(sechzehntel, natuerlicherAbstand(480, 480), 1e-9) << "ein kurzes Lied wird nicht gestreckt";

    std::vector<std::array<int32_t, 3>> viertel;
    for (int i = 0; i < 40; ++i) viertel.push_back({i * 480, 480, 60 + (i % 3) * 2});
    Einstellungen natuerlich = standardFuer(25), eingepasst = standardFuer(25);
    natuerlich.einpassen = false;
    natuerlich.wiederholungenZusammenfassen = eingepasst.wiederholungenZusammenfassen = false; // bars 1-3 come again
    EXPECT_EQ(setzen(lied(viertel, 480, 10, 25), natuerlich).seiten.size(), 2u);
    EXPECT_EQ(setzen(lied(viertel, 480, 10, 25), eingepasst).seiten.size(), 1u);
}

// The same string struck again: the heads never touch, 1 mm of paper between them, in every value
// and both shapes; on strings apart the rows may pack closer.
TEST(BlattSatz, WiederholteNoteAufEinerSaite) {
    struct Fall {
        int32_t laenge;
        Notenform form;
    } faelle[] = {{120, Notenform::Harfe}, {240, Notenform::Harfe}, {1920, Notenform::Harfe}, {120, Notenform::Hals}, {480, Notenform::Hals}};
    for (const auto& f : faelle) {
        std::vector<std::array<int32_t, 3>> noten;
        for (int i = 0; i < 48; ++i) noten.push_back({i * f.laenge, f.laenge, 67});
        Einstellungen e = standardFuer(37);
        e.notenform = f.form;
        e.wiederholungenZusammenfassen = false; // every bar is the same
        const Blatt b = setzen(lied(noten, 480, 48 * f.laenge / 1920 + 1), e);
        for (int i = 1; i < 48; ++i) {
            const auto k0 = koepfe(b, i - 1), k1 = koepfe(b, i);
            if (k0[0].seite != k1[0].seite) continue;
            const double stiel = f.form == Notenform::Hals ? (f.laenge == 120 ? 3.9 : 3.2) : k0[0].e.ry;
            EXPECT_GE(k1[0].e.mitte.y - k1[0].e.ry - (k0[0].e.mitte.y + stiel), 1.0 - 1e-9) << f.laenge << ", Note " << i;
        }
    }
}

// A melody played detached: the short rests are closed (the notes drawn as their full values) or,
// with the setting off, drawn as they are.
TEST(BlattSatz, KurzePausenZwischenNotenGeschlossen) {
    for (bool schliessen : {true, false}) {
        Stueck s = lied({{0, 420, 60}, {480, 420, 62}, {960, 420, 64}, {1440, 480, 65}}, 480, 1);
        for (int32_t t : {420, 900, 1380}) s.pausen.push_back({t, 60, 60});
        Einstellungen e = standardFuer(37);
        e.kurzePausenSchliessen = schliessen;
        const Blatt b = setzen(s, e);
        const Seite& seite = b.seiten[0];
        const int pausen = zaehlen<Pfad>(seite, -1, [&](const Pfad& p) { return p.schritte.front().p.y > 16 && p.schritte.front().p.y < seite.hoehe - 8; });
        EXPECT_EQ(pausen > 0, !schliessen);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(koepfe(b, i)[0].e.rx == koepfe(b, 3)[0].e.rx, schliessen) << "Note " << i;
        EXPECT_EQ(int(seite.zeit.size()), schliessen ? 5 : 8); // notes and the closing bar line, with or without the rests
    }
}

TEST(BlattSatz, TaktartWechselAmTaktstrich) {
    Stueck s = lied({{0, 1920, 60}, {1920, 1920, 62}, {3840, 1440, 64}, {5280, 1440, 65}}, 480, 2);
    s.takte.push_back({1440, 3, 4});
    s.takte.push_back({1440, 3, 4});
    const Blatt b = setzen(s, standardFuer(37));
    const Seite& seite = b.seiten[0];
    int gefunden = 0;
    for (const auto& el : seite.elemente)
        if (auto* t = std::get_if<Text>(&el.form); t && (t->text == "3/4" || t->text == "4/4")) {
            ++gefunden;
            // Between the bar's first head and the row before it.
            if (t->text == "3/4") EXPECT_TRUE(t->ort.y < yVon(b, 2) - 0.9 && t->ort.y > yVon(b, 1) + 0.9) << t->ort.y;
        }
    EXPECT_EQ(gefunden, 2); // at the start and at the change, not at every bar
    EXPECT_TRUE(textDa(seite, "Takt 4/4"));
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
