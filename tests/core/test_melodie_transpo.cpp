// The transposition that fits the harp (shared by the sheet's header, the window's button and
// lyrabo-cli) and the order in which the melody guess weighs a track's traits.
#include "app/core/MelodieSpur.h"
#include "blatt/Transposition.h"

#include <gtest/gtest.h>

namespace lyrabo {
namespace {

struct PassFall {
    int tief, hoch, saiten;
    std::optional<int> erwartet;
    const char* meldungEnthaelt;  // when nothing fits
};

TEST(PassendeTransposition, NaechsteAnNullOderBegruendung) {
    const PassFall faelle[] = {
        {60, 72, 37, 0, ""},                // fits as written: stays
        {55, 91, 37, 0, ""},                // exactly the 37 strings
        {54, 90, 37, 1, ""},                // one below: up by one
        {56, 92, 37, -1, ""},               // one above: down by one
        {40, 60, 37, 15, ""},               // the lowest note onto string 1, not further
        {80, 100, 37, -9, ""},              // the highest onto string 37
        {40, 64, 25, 15, ""},               // 25 strings: exactly 25 semitones
        {40, 65, 25, std::nullopt, "26 Töne, die Harfe hat 25 Saiten"},
        {55, 92, 37, std::nullopt, "mehr Töne, als die Harfe Saiten hat"},
        {10, 20, 37, std::nullopt, "um 45 Halbtöne höher"},  // beyond the slider's 36
        {0, -1, 37, 0, ""},                 // no notes
    };
    for (const auto& f : faelle) {
        const blatt::Tonumfang u{f.tief, f.hoch};
        EXPECT_EQ(blatt::passendeTransposition(u, f.saiten), f.erwartet) << f.tief << ".." << f.hoch;
        if (!f.erwartet) {
            EXPECT_NE(blatt::passtNichtText(u, f.saiten).find(f.meldungEnthaelt), std::string::npos);
        }
    }
}

TEST(MelodieSpur, EinstimmigVorPassendVorHoehe) {
    // spur, notes, alone, on the strings, mean pitch
    auto m = [](int16_t spur, int32_t allein, int32_t auf, double hoehe) {
        return SpurMerkmale{spur, 100, allein, auf, hoehe};
    };
    struct Fall {
        std::vector<SpurMerkmale> spuren;
        int16_t erwartet;
    } faelle[] = {
        {{m(2, 100, 100, 67), m(3, 30, 100, 72)}, 2},   // higher chords lose to the single line
        {{m(2, 100, 100, 67), m(3, 100, 40, 88)}, 2},   // higher but mostly above the strings
        {{m(2, 74, 100, 70), m(3, 75, 100, 60)}, 3},    // three of four alone is the threshold
        {{m(2, 20, 10, 70), m(3, 60, 90, 50)}, 3},      // none qualifies: the more single one
        {{m(2, 100, 100, 67), m(3, 100, 100, 68.5)}, 2}, // less than two semitones: equal, first
        {{}, 0},
    };
    for (const auto& f : faelle) EXPECT_EQ(melodieSpur(f.spuren), f.erwartet);
}

} // namespace
} // namespace lyrabo
