// Accompaniment tracks: converted as a track is without touching what the program holds for the
// track shown, and laid out as a player reads them (asked of the sheet's elements).
#include "app/core/Begleitung.h"
#include "app/core/BlattQuelle.h"
#include "blatt/BlattSatz.h"
#include "support/EngineUmgebung.h"

#include <gtest/gtest.h>

#include <functional>

namespace lyrabo::test {
namespace {

TEST(Begleitung, AlsSpurUmgerechnetOhneDieAngezeigteZuStoeren) {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    auto& melodie = lied.spur().name("Melodie");
    for (int ton : {67, 69, 71, 72}) melodie.note(0, ton, 480);  // one bar
    lied.spur().name("Bass").note(0, 43, 960).note(0, 71, 480).note(0, 50, 480).note(0, 48, 1920);  // the 71 meets the melody's
    EngineUmgebung u;
    u.form.zeile = 1;
    u.oeffnen(lied, 2);
    u.programm.neuBerechnen();
    const std::string klangNoten = u.engine().getKlangNotenString(), harfe = u.engine().getHarfeEventString();
    const blatt::Stueck vorher = blattStueck(u.programm, u.programm.KlangNoten, "Lied");

    const blatt::Stueck mit = blattStueckMitBegleitung(u.programm, vorher, {2, 3}, 2);
    EXPECT_EQ(u.engine().getKlangNotenString(), klangNoten);
    EXPECT_EQ(u.engine().getHarfeEventString(), harfe);
    EXPECT_EQ(u.e().TrackNr(), 2);
    EXPECT_EQ(u.e().MFITaktLaengen()->Count(), 1);
    EXPECT_EQ(blattStueck(u.programm, u.programm.KlangNoten, "Lied").pausen.size(), vorher.pausen.size());
    std::vector<std::pair<int, bool>> noten;  // pitch, accompaniment, in time order
    for (const auto& n : mit.noten) noten.push_back({n.tonHoehe, n.begleitung});
    EXPECT_EQ(noten, (std::vector<std::pair<int, bool>>{{67, false}, {43, true}, {69, false}, {71, false}, {72, false}, {50, true}, {48, true}}));
    EXPECT_EQ(mit.pausen.size(), vorher.pausen.size());  // its rests are not drawn
    EXPECT_EQ(mit.takte.size(), 2u);                      // the bass plays a bar on
}

using Noten = std::vector<std::array<int32_t, 3>>;  // start, length, pitch
struct Satz {
    blatt::Stueck st;
    blatt::Blatt b;
    int32_t note(int32_t start, int ton, bool begleitung) const {  // index in the piece, -1 if left out
        for (size_t i = 0; i < st.noten.size(); ++i)
            if (st.noten[i].start == start && st.noten[i].tonHoehe == ton && st.noten[i].begleitung == begleitung) return int32_t(i);
        return -1;
    }
    std::vector<blatt::Ellipse> koepfe(int32_t note) const {
        std::vector<blatt::Ellipse> k;
        for (const auto& el : b.seiten.at(0).elemente)
            if (auto* e = std::get_if<blatt::Ellipse>(&el.form); e && el.note == note && e->rx > 0.5) k.push_back(*e);
        return k;
    }
    double y(int32_t start, int ton, bool mit) const { return koepfe(note(start, ton, mit)).at(0).mitte.y; }
    int linien(double staerke) const {  // dashed lines of this width: 0.15 joins accompaniment
        int n = 0;
        for (const auto& el : b.seiten.at(0).elemente)
            if (auto* l = std::get_if<blatt::Linie>(&el.form); l && l->gestrichelt == (staerke < 0.3) && l->staerke == staerke) ++n;
        return n;
    }
};

Satz setzenMit(const Noten& begleitung) {
    blatt::Stueck s;
    s.takte = {{1920, 4, 4}, {1920, 4, 4}};
    for (int32_t i = 0; i < 4; ++i) s.noten.push_back({i * 480, 480, int16_t(67 + 2 * i), 0, "", true});
    std::vector<blatt::Note> b;
    for (auto [start, laenge, ton] : begleitung) b.push_back({start, laenge, int16_t(ton), 0, "", false, true});
    begleitungHinzufuegen(s, b);
    return {s, blatt::setzen(s, blatt::standardFuer(37))};
}

TEST(Begleitung, AufDemBlattWieEinSpielerSieLiest) {
    const Satz ohne = setzenMit({});
    const std::pair<Noten, std::function<void(const Satz&)>> faelle[] = {
        {{{0, 960, 55}, {960, 960, 62}}, [&](const Satz& s) {  // melody with a bass
             const auto m = s.koepfe(s.note(0, 67, false)).at(0), b = s.koepfe(s.note(0, 55, true)).at(0);
             EXPECT_LT(b.rx, m.rx * 0.8);  // a half drawn smaller than the melody's quarter
             EXPECT_NE(b.farbe, m.farbe);
             EXPECT_DOUBLE_EQ(b.mitte.y, m.mitte.y);
             EXPECT_EQ(s.linien(0.35), ohne.linien(0.35));  // the melody line joins the melody only
             EXPECT_EQ(s.linien(0.15), 2);                  // each bass note joined to its melody note
         }},
        {{{0, 240, 60}, {0, 240, 64}, {240, 240, 60}, {240, 240, 64}}, [](const Satz& s) {  // chords with and between
             EXPECT_EQ(s.linien(0.15), 3);  // the line to the melody stops short of the head it passes
             EXPECT_GT(s.y(240, 60, true), s.y(0, 67, false) + 1.5);  // a row of its own between the melody's
             EXPECT_LT(s.y(240, 60, true), s.y(480, 69, false) - 1.5);
         }},
        {{{480, 480, 69}, {480, 480, 62}}, [](const Satz& s) {  // on the melody's string at the same moment
             EXPECT_EQ(s.note(480, 69, true), -1);
             EXPECT_EQ(s.koepfe(s.note(480, 69, false)).size(), 1u);
         }},
        {{{0, 240, 55}, {960, 240, 55}}, [&](const Satz& s) {  // rests of the accompaniment: none drawn
             EXPECT_EQ(s.b.seiten.at(0).elemente.size(), ohne.b.seiten.at(0).elemente.size() + 4);  // two heads, two lines
         }},
        {{{0, 1920, 55}, {1920, 1920, 55}, {3840, 960, 59}}, [&](const Satz& s) {  // longer than the melody
             EXPECT_EQ(s.st.takte.size(), 3u);
             EXPECT_GT(s.y(3840, 59, true), ohne.y(1440, 73, false));
         }},
    };
    for (const auto& [begleitung, pruefen] : faelle) pruefen(setzenMit(begleitung));
}

} // namespace
} // namespace lyrabo::test
