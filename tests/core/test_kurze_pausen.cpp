// Short gaps of a detached melody closed on the sheet: which rests go, which notes grow.
#include "blatt/KurzePausen.h"

#include <gtest/gtest.h>

#include <array>

namespace lyrabo::blatt {
namespace {

TEST(KurzePausen, SchliessenNurZwischenZweiNoten) {
    struct Fall {
        const char* was;
        std::vector<std::array<int32_t, 3>> noten; // start, length, pitch
        std::vector<std::array<int32_t, 2>> pausen; // start, length
        std::vector<int32_t> laengen;               // the notes' lengths afterwards
        std::vector<int32_t> bleiben;               // starts of the rests kept
    };
    const Fall faelle[] = {
        {"Staccato-Melodie", {{0, 360, 60}, {480, 360, 62}, {960, 360, 64}}, {{360, 120}, {840, 120}},
         {480, 480, 360}, {}},
        {"Pause am Ende", {{0, 360, 60}}, {{360, 120}}, {360}, {360}},
        {"vor einer weiteren Pause", {{0, 360, 60}, {960, 480, 62}}, {{360, 120}, {480, 480}}, {360, 480}, {360, 480}},
        {"Akkord davor, andere Saite danach", {{0, 360, 60}, {0, 360, 64}, {0, 480, 67}, {480, 480, 72}}, {{360, 120}},
         {480, 480, 480, 480}, {}},
        {"Achtelpause bleibt", {{0, 240, 60}, {480, 480, 62}}, {{240, 240}}, {240, 480}, {240}},
        {"Zweiunddreißigstel", {{0, 420, 60}, {480, 480, 62}}, {{420, 60}}, {480, 480}, {}},
        {"keine Note endet am Anfang", {{0, 400, 60}, {600, 480, 62}}, {{480, 120}}, {400, 480}, {480}},
    };
    for (const auto& f : faelle) {
        Stueck s;
        s.ticksProViertel = 480;
        for (auto [start, laenge, ton] : f.noten) s.noten.push_back({start, laenge, int16_t(ton), 0, "", false});
        for (auto [start, laenge] : f.pausen) s.pausen.push_back({start, laenge, 60});
        const Stueck g = kurzePausenSchliessen(s);
        std::vector<int32_t> laengen, bleiben;
        for (const auto& n : g.noten) laengen.push_back(n.laenge);
        for (const auto& p : g.pausen) bleiben.push_back(p.start);
        EXPECT_EQ(laengen, f.laengen) << f.was;
        EXPECT_EQ(bleiben, f.bleiben) << f.was;
    }
}

} // namespace
} // namespace lyrabo::blatt
