// Accompaniment on the sheet, asked of the laid-out elements: smaller, lighter heads off the melody
// line, a light dashed line to the melody note they start with, no rests, one head per string and
// moment, and room made for them like for any note.
#include "app/core/Begleitung.h"
#include "blatt/BlattSatz.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace lyrabo::blatt {
namespace {

using Noten = std::vector<std::array<int32_t, 3>>;  // start, length, pitch

struct Satz {
    Stueck stueck;
    Blatt blatt;
    std::vector<Ellipse> koepfe(int32_t note) const {
        std::vector<Ellipse> k;
        for (const auto& s : blatt.seiten)
            for (const auto& el : s.elemente)
                if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note == note && e->rx > 0.5) k.push_back(*e);
        return k;
    }
    // Index in the piece of the first note with this start and pitch, -1 if none.
    int32_t note(int32_t start, int ton, bool begleitung) const {
        for (size_t i = 0; i < stueck.noten.size(); ++i)
            if (stueck.noten[i].start == start && stueck.noten[i].tonHoehe == ton && stueck.noten[i].begleitung == begleitung)
                return int32_t(i);
        return -1;
    }
    int linien(const std::function<bool(const Linie&)>& passt) const {
        int n = 0;
        for (const auto& s : blatt.seiten)
            for (const auto& el : s.elemente)
                if (auto* l = std::get_if<Linie>(&el.form); l && passt(*l)) ++n;
        return n;
    }
    size_t elemente() const { return blatt.seiten.at(0).elemente.size(); }
};

Satz setzenMit(const Noten& melodie, const Noten& begleitung, int takte = 2) {
    Stueck s;
    s.titel = "Probe";
    s.ticksProViertel = 480;
    for (int i = 0; i < takte; ++i) s.takte.push_back({1920, 4, 4});
    for (auto [start, laenge, ton] : melodie) s.noten.push_back({start, laenge, int16_t(ton), 0, "", true});
    std::vector<Note> b;
    for (auto [start, laenge, ton] : begleitung) b.push_back({start, laenge, int16_t(ton), 0, "", false, true});
    begleitungHinzufuegen(s, b);
    return {s, setzen(s, standardFuer(37))};
}

bool hell(const Linie& l) { return l.gestrichelt && l.staerke < 0.2; }

TEST(BegleitungSatz, WieEinSpielerSieLiest) {
    const Noten melodie = {{0, 480, 67}, {480, 480, 69}, {960, 480, 71}, {1440, 480, 72}};
    struct Fall {
        const char* was;
        Noten begleitung;
        std::function<void(const Satz&, const Satz& ohne)> pruefen;
    } faelle[] = {
        {"Melodie mit Bass", {{0, 960, 55}, {960, 960, 62}},
         [](const Satz& s, const Satz& ohne) {
             const Ellipse m = s.koepfe(s.note(0, 67, false)).at(0), b = s.koepfe(s.note(0, 55, true)).at(0);
             EXPECT_LT(b.rx, m.rx * 0.8);  // a half's head drawn smaller than the melody's quarter
             EXPECT_NE(b.farbe, m.farbe);
             EXPECT_DOUBLE_EQ(b.mitte.y, m.mitte.y);  // the same moment, the same row
             // The melody line still joins the four melody heads only; each bass note is joined lightly.
             auto melodieLinie = [](const Linie& l) { return l.staerke == 0.35; };
             EXPECT_EQ(s.linien(melodieLinie), ohne.linien(melodieLinie));
             EXPECT_EQ(s.linien(hell), 2);
         }},
        {"Akkordstimme mit und zwischen Melodienoten", {{0, 240, 60}, {0, 240, 64}, {240, 240, 60}, {240, 240, 64}},
         [](const Satz& s, const Satz&) {
             // With the melody: one light line from the outer chord head to the melody head; between
             // the melody notes the chord has its own row, joined by a light line, below the first.
             EXPECT_EQ(s.linien(hell), 2);
             const double y0 = s.koepfe(s.note(0, 67, false)).at(0).mitte.y, y1 = s.koepfe(s.note(480, 69, false)).at(0).mitte.y;
             const double yz = s.koepfe(s.note(240, 60, true)).at(0).mitte.y;
             EXPECT_GT(yz, y0 + 1.5);
             EXPECT_LT(yz, y1 - 1.5);
         }},
        {"Begleitnote auf der Saite der Melodie im selben Moment", {{480, 480, 69}, {480, 480, 62}},
         [](const Satz& s, const Satz&) {
             EXPECT_EQ(s.note(480, 69, true), -1);
             EXPECT_EQ(s.koepfe(s.note(480, 69, false)).size(), 1u);
             EXPECT_EQ(s.koepfe(s.note(480, 62, true)).size(), 1u);
         }},
        {"Pausen der Begleitung", {{0, 240, 55}, {960, 240, 55}},
         [](const Satz& s, const Satz& ohne) {
             EXPECT_EQ(s.stueck.pausen.size(), ohne.stueck.pausen.size());
             // Two heads and two light lines more, nothing else: no rest signs.
             EXPECT_EQ(s.elemente(), ohne.elemente() + 4);
         }},
        {"Begleitung laenger als die Melodie", {{0, 1920, 55}, {1920, 1920, 55}, {3840, 960, 59}},
         [](const Satz& s, const Satz& ohne) {
             EXPECT_EQ(s.stueck.takte.size(), 3u);
             const auto k = s.koepfe(s.note(3840, 59, true));
             ASSERT_EQ(k.size(), 1u);
             EXPECT_GT(k[0].mitte.y, ohne.koepfe(ohne.note(1440, 72, false)).at(0).mitte.y);
         }},
    };
    const Satz ohne = setzenMit(melodie, {});
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.was);
        f.pruefen(setzenMit(melodie, f.begleitung), ohne);
    }
}

} // namespace
} // namespace lyrabo::blatt
