// Accompaniment tracks on the sheet: converted as a track is, added to the piece without touching
// what the program holds for the track shown.
#include "app/core/Begleitung.h"
#include "app/core/BlattQuelle.h"
#include "support/EngineUmgebung.h"

#include <gtest/gtest.h>

namespace lyrabo::test {
namespace {

TEST(Begleitung, AlsSpurUmgerechnetOhneDieAngezeigteZuStoeren) {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    auto& melodie = lied.spur().name("Melodie");
    for (int ton : {67, 69, 71, 72}) melodie.note(0, ton, 480);  // one bar
    auto& bass = lied.spur().name("Bass");
    bass.note(0, 43, 960).note(0, 71, 480).note(0, 50, 480).note(0, 48, 1920);  // the 71 meets the melody's
    EngineUmgebung u;
    u.form.zeile = 1;
    u.oeffnen(lied, 2);
    u.programm.neuBerechnen();
    const std::string klangNoten = u.engine().getKlangNotenString(), harfe = u.engine().getHarfeEventString();
    const blatt::Stueck vorher = blattStueck(u.programm, u.programm.KlangNoten, "Lied");
    ASSERT_EQ(vorher.takte.size(), 1u);

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

} // namespace
} // namespace lyrabo::test
