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
        // A time signature 2^28 ticks in leaves a single bar, and the note sheet drew empty bars
        // towards the notes there, up to its limit of 32767: thousands of pages, laid out for
        // longer than the fuzzer waits. Now the empty bars are one line; the engine's own word stays.
        {"4D 54 68 64 00 00 00 06 00 00 00 01 00 60 4D 54 72 6B 00 00 00 72 00 FF 03 0B 46 6F 72 6D 61 74 "
         "20 6E 75 6C 6C 00 FF 48 04 06 03 24 08 00 FF 51 03 09 27 C0 00 90 43 64 00 47 64 81 10 43 00 FF "
         "FF FF 7F FF 05 04 4D 54 68 64 74 20 6E 75 6C 6C 00 FF 58 04 06 03 24 08 00 FF 51 03 09 27 C0 00 "
         "90 43 64 00 47 64 81 10 43 00 00 47 00 00 FF 05 04 48 FF 2F 00 65 69 2D 00 90 45 64 00 00 00 00 "
         "FF 2F 00 00 00 81 10 43 00 00 47 00 00 FF 05 04 48 65 69 2D 00 90 45 64 30 45 00 00 FF 05 02 6A "
         "61 00 90 43 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF 2F 00",
         "MIDI-File ist nicht in Ordnung."},
        // 6323 bars, and the harp-event text walked the bar table from bar 1 for every event: longer
        // than the fuzzer waits.
        {"4D 54 68 64 00 00 00 06 00 00 00 01 00 60 4D 54 72 6B 00 00 00 72 00 FF 03 0B 46 6F 52 4D 49 44 "
         "20 6E 75 6C 6C 00 FF 58 04 06 03 24 08 00 FF 51 03 9F 27 C0 00 90 43 64 00 47 64 EF 84 4B 43 4B "
         "4B 4B 4B 4B 4B 30 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B "
         "4B 4B 7E 4B 4B 4B 4B 4B 4B 4B 4B 5B 4B 4B 4B 4B 4B 4B 4B 00 00 00 00 00 00 00 00 4B 4B 4B 4B 4B "
         "4B 4B 4B 4B 4B 4B 4B 4B 01 11 6E 69 74 65 73 2F 6C 79 6F 80 41 00 01 6D 01 F7 65 03 6E 00 90 43 "
         "50 81 6F 80 43 00 01 FF 01 04 20 61 75 66 00 90 45 50 81 6F 80 45 00 01 FF 01 04 20 64 65 6D 00 "
         "90 46 50 81 6F 80 68 65 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 4B 00 90 43 64 60 "
         "D7 D7 D7 4D 54 68 64 00 00 00 06 00 01 00 02 01 E0 4D 54 72 6B 00 00 00 63 01 FF 01 13 40 4B 4D "
         "49 44 49 20 4B 41 52 41 4F 4B 45 20 46 49 00 90 41 64 82 20 6F 80 45",
         "MIDI-File ist nicht in Ordnung."},
    };
    test::TestOrdner o;
    std::filesystem::copy(std::filesystem::path(LYRABO_SOURCE_DIR) / "ini", o / "ini");
    for (const auto& [hex, meldung] : funde) {
        const auto gesagt = fuzz::ganzerWeg(test::ausHex(hex), o.pfad());
        EXPECT_TRUE(std::any_of(gesagt.begin(), gesagt.end(), [&](const std::string& t) { return t.find(meldung) != std::string::npos; }))
            << meldung << " / " << ::testing::PrintToString(gesagt);
    }
}
