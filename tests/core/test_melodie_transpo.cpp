// The transposition that fits the harp, shared by the sheet's header, the window's button and
// lyrabo-cli: nearest the written pitch, or the reason why none fits.
#include "blatt/Transposition.h"

#include <gtest/gtest.h>

namespace lyrabo::blatt {
namespace {

TEST(PassendeTransposition, NaechsteAnNullOderBegruendung) {
    const struct {
        int tief, hoch, saiten;
        std::optional<int> erwartet;
        const char* meldung;
    } faelle[] = {
        {60, 72, 37, 0, ""},    {55, 91, 37, 0, ""},  // fits as written, to the last string
        {54, 90, 37, 1, ""},    {56, 92, 37, -1, ""}, // one beside: one step
        {40, 60, 37, 15, ""},   {80, 100, 37, -9, ""}, // the outer note onto the outer string, no further
        {40, 64, 25, 15, ""},   {0, -1, 37, 0, ""},   // 25 strings exactly filled; no notes
        {40, 65, 25, std::nullopt, "26 Töne, die Harfe hat 25 Saiten"},
        {10, 20, 37, std::nullopt, "um 45 Halbtöne höher"},  // beyond the slider's 36
    };
    for (const auto& f : faelle) {
        EXPECT_EQ(passendeTransposition({f.tief, f.hoch}, f.saiten), f.erwartet) << f.tief << ".." << f.hoch;
        if (!f.erwartet) {
            EXPECT_NE(passtNichtText({f.tief, f.hoch}, f.saiten).find(f.meldung), std::string::npos);
        }
    }
}

} // namespace
} // namespace lyrabo::blatt
