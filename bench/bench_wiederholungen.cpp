// How long finding the repeats takes on 20,000 notes: a piece without repeats, a tune of eight-bar
// parts whose parts come again and again, and one bar over and over (every run length matches
// everywhere). Bars before and after are printed beside the time. Aim: well under 100 ms each.
#include "blatt/Wiederholungen.h"

#include <benchmark/benchmark.h>

using namespace lyrabo::blatt;

namespace {

// `anzahl` notes of eighths in 4/4, pitch from `ton(i)` for the i-th note.
template <typename Ton>
Stueck lied(int anzahl, Ton ton) {
    Stueck s;
    for (int i = 0; i < anzahl; ++i) s.noten.push_back({i * 240, 240, int16_t(ton(i)), int16_t(i), "", true});
    for (int32_t u = 0; u < anzahl * 240; u += 1920) s.takte.push_back({1920, 4, 4});
    return s;
}

void messen(benchmark::State& state, const Stueck& s) {
    size_t geschrieben = 0, takte = 0;
    for (auto _ : state) {
        const Faltung f = wiederholungenFinden(s, true);
        geschrieben = f.takte.size();
        takte = f.gespieltVon.size();
    }
    state.counters["Takte"] = double(takte);
    state.counters["geschrieben"] = double(geschrieben);
}

void BM_OhneWiederholung20000(benchmark::State& state) {
    uint32_t z = 12345;
    messen(state, lied(20000, [&](int) { return 55 + int((z = z * 1664525u + 1013904223u) >> 8) % 30; }));
}
BENCHMARK(BM_OhneWiederholung20000)->Unit(benchmark::kMillisecond);

// Parts A B C D of eight bars, played AABB CCDD AABB ... with a little change every 40 bars.
void BM_Tanzsaetze20000(benchmark::State& state) {
    messen(state, lied(20000, [](int i) {
        const int takt = i / 8, teil = (takt / 16) % 2 * 2 + (takt % 16) / 8 % 2;
        return 55 + (i * 7 + teil * 5 + (takt / 40) % 3) % 24;
    }));
}
BENCHMARK(BM_Tanzsaetze20000)->Unit(benchmark::kMillisecond);

void BM_EinTaktImmerWieder20000(benchmark::State& state) {
    messen(state, lied(20000, [](int i) { return 60 + i % 8; }));
}
BENCHMARK(BM_EinTaktImmerWieder20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
