// The sheet's title: the name of the piece, not a name a sequencer gave a track by itself.
#include "app/core/BlattQuelle.h"

#include <gtest/gtest.h>

namespace lyrabo {
namespace {

TEST(BlattTitel, NameDesStuecks) {
    struct Fall {
        const char *eins, *gewaehlt, *titel;
    };
    const Fall faelle[] = {
        {"Amazing Grace", ":soprano", "Amazing Grace"},
        {"  Amazing Grace ", "", "Amazing Grace"},
        {"", "Mille regrets", "Mille regrets"},
        {"Track 1", "Mille regrets", "Mille regrets"},
        {"track 2 (null)", "Greensleeves", "Greensleeves"},
        {"(null)", "Greensleeves", "Greensleeves"},
        {":1", "Spur 3", "lied"},
        {":soprano", "", "lied"},
        {"Untitled", "Track-02", "lied"},
        {"Unbenannt 4", "   ", "lied"},
        {"12", "Piano", "lied"},
        {"Freude, schöner Götterfunken", "Melodie", "Freude, schöner Götterfunken"},
        {"Tracks of my Tears", "", "Tracks of my Tears"},
        {"Stille Nacht: 1. Strophe", "", "Stille Nacht: 1. Strophe"},
    };
    for (const auto& f : faelle) EXPECT_EQ(stueckTitel(f.eins, f.gewaehlt, "lied"), f.titel) << f.eins << " / " << f.gewaehlt;
}

} // namespace
} // namespace lyrabo
