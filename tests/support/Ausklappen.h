#pragma once
// The check every fold must pass: the written sheet, played through by its repeat signs, gives
// back the piece's bars, notes and rests (their lyrics too when they counted).
#include "blatt/Wiederholungen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace lyrabo::test {

inline void ausklappenPruefen(const blatt::Stueck& st, const blatt::Faltung& f, bool mitTexten) {
    const blatt::Stueck g = blatt::geschrieben(st, f);
    const blatt::Stueck zurueck = blatt::ausgeklappt(g, f);
    EXPECT_EQ(blatt::taktAnfaenge(zurueck), blatt::taktAnfaenge(st));
    EXPECT_EQ(blatt::spielfolge(f), f.gespieltVon);
    auto noten = [&](const blatt::Stueck& s) {
        std::vector<std::tuple<int32_t, int16_t, int32_t, std::string>> v;
        for (const auto& n : s.noten) v.emplace_back(n.start, n.tonHoehe, n.laenge, mitTexten ? n.text : "");
        std::sort(v.begin(), v.end());
        return v;
    };
    auto pausen = [](const blatt::Stueck& s) {
        std::vector<std::tuple<int32_t, int16_t, int32_t>> v;
        for (const auto& p : s.pausen) v.emplace_back(p.start, p.tonHoehe, p.laenge);
        std::sort(v.begin(), v.end());
        return v;
    };
    EXPECT_EQ(noten(zurueck), noten(st));
    EXPECT_EQ(pausen(zurueck), pausen(st));
    // Each bar of the piece is played by exactly one written bar, which names it among its passes.
    std::vector<int> gezaehlt(f.gespieltVon.size(), 0);
    for (int w = 0; w < int(f.takte.size()); ++w)
        for (int t : f.gespielteTakte(w)) {
            ASSERT_LT(size_t(t), f.gespieltVon.size());
            EXPECT_EQ(f.gespieltVon[size_t(t)], w);
            ++gezaehlt[size_t(t)];
        }
    EXPECT_TRUE(std::all_of(gezaehlt.begin(), gezaehlt.end(), [](int n) { return n == 1; }));
}

} // namespace lyrabo::test
