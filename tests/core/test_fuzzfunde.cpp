// Inputs scripts/fuzz.sh found, byte for byte (the script seeds its runs with them), each sent the
// whole road the fuzz target takes them, and what the program must tell the user on the way.
#include "../../fuzz/GanzerWeg.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace lyrabo;

TEST(FuzzFunde, SagenWasSieStoertUndSonstNichts) {
    const std::pair<std::string, std::string> funde[] = {
        // The RIFF walk stepped past the end over the missing pad byte of an odd-length chunk.
        {"52 49 46 46 4D 5C 68 64 52 4D 49 44 41 81 41 00 00 00 00 00 00 00 00 EA 03 00 00 00 00 00 00",
         "Byte 20: Dem RIFF-Block \"????\" fehlt das Füllbyte am Ende."},
    };
    test::TestOrdner o;
    std::filesystem::copy(std::filesystem::path(LYRABO_SOURCE_DIR) / "ini", o / "ini");
    for (const auto& [hex, meldung] : funde) {
        const auto gesagt = fuzz::ganzerWeg(test::ausHex(hex), o.pfad());
        EXPECT_TRUE(std::any_of(gesagt.begin(), gesagt.end(), [&](const std::string& t) { return t.find(meldung) != std::string::npos; }))
            << meldung << " / " << ::testing::PrintToString(gesagt);
    }
}
