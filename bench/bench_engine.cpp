// How long a conversion takes, and how much memory it needs at its peak, on generated pieces:
// one track of 20,000 notes, eight tracks of 5,000 merged, and a song of 500 notes.
#include "support/EngineUmgebung.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>

// ---- heap accounting: every allocation carries its size in front ----
namespace {
std::atomic<int64_t> g_aktuell{0};
std::atomic<int64_t> g_spitze{0};
constexpr size_t kKopf = alignof(std::max_align_t);

void* belegen(size_t n) {
    auto* p = static_cast<char*>(std::malloc(n + kKopf));
    if (!p) throw std::bad_alloc();
    *reinterpret_cast<size_t*>(p) = n;
    const int64_t jetzt = g_aktuell.fetch_add(static_cast<int64_t>(n)) + static_cast<int64_t>(n);
    int64_t alt = g_spitze.load();
    while (jetzt > alt && !g_spitze.compare_exchange_weak(alt, jetzt)) {
    }
    return p + kKopf;
}
void freigeben(void* q) {
    if (!q) return;
    auto* p = static_cast<char*>(q) - kKopf;
    g_aktuell.fetch_sub(static_cast<int64_t>(*reinterpret_cast<size_t*>(p)));
    std::free(p);
}
} // namespace

void* operator new(size_t n) { return belegen(n); }
void* operator new[](size_t n) { return belegen(n); }
void* operator new(size_t n, const std::nothrow_t&) noexcept {
    try {
        return belegen(n);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](size_t n, const std::nothrow_t&) noexcept {
    try {
        return belegen(n);
    } catch (...) {
        return nullptr;
    }
}
void operator delete(void* p) noexcept { freigeben(p); }
void operator delete[](void* p) noexcept { freigeben(p); }
void operator delete(void* p, size_t) noexcept { freigeben(p); }
void operator delete[](void* p, size_t) noexcept { freigeben(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { freigeben(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { freigeben(p); }

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Sections of 28,800 ticks (a whole number of bars in each metre) switching between 4/4, 3/4,
// 5/4 (a bar longer than a whole note) and 6/8.
void metrum(MidiSpur& spur, int32_t laenge) {
    static const int arten[4][2] = {{4, 2}, {3, 2}, {5, 2}, {6, 3}};
    spur.tempo(0, 500000);
    int k = 0;
    for (int32_t t = 0; t < laenge; t += 28800, ++k) spur.taktart(t == 0 ? 0 : 28800, arten[k % 4][0], arten[k % 4][1]);
}

// A melody with rests and chords. Every `akkordAlle`-th step is a triad whose two lower notes
// have no Note Off (their length then comes from the next start), so a track of 20,000 notes
// stays within the 32,767 events the reader's cursor can select.
int32_t melodie(MidiSpur& spur, int noten, unsigned saat, int akkordAlle, bool begleitungOhneEnde) {
    static const int32_t dauern[] = {120, 240, 240, 360, 480, 480, 480, 720, 960, 240, 120, 600};
    uint32_t z = saat;
    auto zufall = [&] {
        z = z * 1664525u + 1013904223u;
        return z >> 8;
    };
    int32_t zeit = 0, gesetzt = 0;
    uint32_t delta = 0;
    int schritt = 0;
    while (gesetzt < noten) {
        const int32_t dauer = dauern[zufall() % 12];
        const int ton = 60 + static_cast<int>(zufall() % 25);
        const bool akkord = akkordAlle > 0 && schritt % akkordAlle == akkordAlle - 1 && gesetzt + 3 <= noten;
        if (akkord) {
            const int tief = 36 + static_cast<int>(zufall() % 12);
            spur.an(delta, 1, tief);
            spur.an(0, 1, tief + 4);
            if (begleitungOhneEnde) {
                spur.an(0, 1, ton).aus(static_cast<uint32_t>(dauer), 1, ton);
            } else {
                spur.an(0, 1, ton).aus(static_cast<uint32_t>(dauer), 1, ton).aus(0, 1, tief).aus(0, 1, tief + 4);
            }
            gesetzt += 3;
        } else {
            spur.note(delta, ton, static_cast<uint32_t>(dauer));
            gesetzt += 1;
        }
        zeit += dauer;
        // Now and then a rest, sometimes off the beat.
        delta = zufall() % 5 == 0 ? static_cast<uint32_t>(120 * (1 + zufall() % 6)) : 0;
        zeit += static_cast<int32_t>(delta);
        ++schritt;
    }
    return zeit;
}

struct Stueck {
    EngineUmgebung u;
    Stueck(int spuren, int notenJeSpur, int akkordAlle, bool begleitungOhneEnde) {
        MidiBauer d(480);
        d.spur(); // track 1: tempo and metre, written once the length is known
        int32_t laenge = 0;
        for (int s = 0; s < spuren; ++s) {
            auto& spur = d.spur();
            laenge = std::max(laenge, melodie(spur, notenJeSpur, 17u + static_cast<unsigned>(s), akkordAlle, begleitungOhneEnde));
        }
        metrum(d.spur(0), laenge + 28800);
        u.oeffnen(d, 2);
        for (int s = 2; s <= spuren + 1; ++s) u.e().SpurSelected()->Item(s)->Value(1);
    }
};

// Times `lauf` and reports the peak heap of one run above what was allocated before it.
template <typename Lauf>
void messen(benchmark::State& state, Lauf lauf) {
    int64_t basis = 0;
    for (auto _ : state) {
        basis = g_aktuell.load();
        g_spitze.store(basis);
        lauf();
    }
    state.counters["Spitze_KiB"] = benchmark::Counter(static_cast<double>(g_spitze.load() - basis) / 1024.0);
}

void BM_ProduceEinzelspur20000(benchmark::State& state) {
    Stueck st(1, 20000, 3, true);
    if (!st.u.produce()) state.SkipWithError("produce schlug fehl");
    state.counters["Noten"] = static_cast<double>(st.u.noten()->Count());
    state.counters["Pausen"] = static_cast<double>(st.u.pausen()->Count());
    state.counters["Akkorde"] = static_cast<double>(st.u.akkorde()->Count());
    state.counters["Takte"] = static_cast<double>(st.u.e().MFITaktLaengen()->Count());
    messen(state, [&] { benchmark::DoNotOptimize(st.u.produce(true)); });
}
BENCHMARK(BM_ProduceEinzelspur20000)->Unit(benchmark::kMillisecond);

void BM_ProduceNeuBerechnen20000(benchmark::State& state) {
    Stueck st(1, 20000, 3, true);
    st.u.produce();
    messen(state, [&] { benchmark::DoNotOptimize(st.u.produce(false)); });
}
BENCHMARK(BM_ProduceNeuBerechnen20000)->Unit(benchmark::kMillisecond);

void BM_SpurenMischen8x5000(benchmark::State& state) {
    Stueck st(8, 5000, 4, false);
    st.u.engine().spurenMischen();
    state.counters["Noten"] = static_cast<double>(st.u.noten()->Count());
    messen(state, [&] { st.u.engine().spurenMischen(); });
}
BENCHMARK(BM_SpurenMischen8x5000)->Unit(benchmark::kMillisecond);

void BM_ProduceLied500(benchmark::State& state) {
    Stueck st(1, 500, 5, false);
    st.u.produce();
    state.counters["Noten"] = static_cast<double>(st.u.noten()->Count());
    messen(state, [&] { benchmark::DoNotOptimize(st.u.produce(true)); });
}
BENCHMARK(BM_ProduceLied500)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
