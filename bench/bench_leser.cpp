// Load time and peak memory of the MIDI reader on a generated file of about 1 MB and 100,000
// events (four tracks of notes with a lyric on every other event), and one walk through all of
// its events by the cursor, as the conversion reads them.
#include "midi/Midifile.h"
#include "support/MidiBauer.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/resource.h>
#endif

namespace {

// Heap bytes in use and their peak, counted by the global allocation functions below.
std::atomic<long long> g_inGebrauch{0};
std::atomic<long long> g_spitze{0};

constexpr size_t kKopf = alignof(std::max_align_t);

void* holen(size_t n) {
    void* p = std::malloc(n + kKopf);
    if (!p) throw std::bad_alloc();
    *static_cast<size_t*>(p) = n;
    long long jetzt = g_inGebrauch += static_cast<long long>(n);
    long long alt = g_spitze.load();
    while (jetzt > alt && !g_spitze.compare_exchange_weak(alt, jetzt)) {
    }
    return static_cast<char*>(p) + kKopf;
}

void freigeben(void* p) {
    if (!p) return;
    void* block = static_cast<char*>(p) - kKopf;
    g_inGebrauch -= static_cast<long long>(*static_cast<size_t*>(block));
    std::free(block);
}

const std::filesystem::path& testDatei() {
    static const std::filesystem::path pfad = [] {
        lyrabo::test::MidiBauer b(480);
        for (int spur = 0; spur < 4; ++spur) {
            auto& s = b.spur();
            s.name("Stimme " + std::to_string(spur + 1));
            for (int i = 0; i < 6250; ++i) {
                s.lyric(0, "Strophe " + std::to_string(i % 1000) + ", Silbe la-la-la");
                s.note(0, 55 + (i % 37), 120);
                s.lyric(120, "");
            }
            s.ende();
        }
        auto p = std::filesystem::temp_directory_path() / "lyrabo_bench_leser.mid";
        b.schreiben(p);
        return p;
    }();
    return pfad;
}

int64_t ereignisseGesamt(lyrabo::Midifile& m) {
    int64_t n = 0;
    for (int16_t t = 1; t <= m.TrackCount(); ++t) {
        m.Track(t);
        n += m.EventCount();
    }
    return n;
}

void BM_DateiLaden(benchmark::State& state) {
    const auto& pfad = testDatei();
    int64_t ereignisse = 0;
    long long spitze = 0;
    for (auto _ : state) {
        long long vorher = g_inGebrauch.load();
        g_spitze = vorher;
        lyrabo::Midifile m;
        m.filename(pfad.string());
        m.Action(5);
        m.Action(2);
        m.Action(1);
        spitze = g_spitze.load() - vorher;
        ereignisse = ereignisseGesamt(m);
        benchmark::DoNotOptimize(m.TrackCount());
    }
    state.counters["Dateigroesse_Bytes"] = static_cast<double>(std::filesystem::file_size(pfad));
    state.counters["Ereignisse"] = static_cast<double>(ereignisse);
    state.counters["Spitze_Heap_MB"] = static_cast<double>(spitze) / (1024.0 * 1024.0);
    state.counters["Ereignisse_pro_s"] =
        benchmark::Counter(static_cast<double>(ereignisse), benchmark::Counter::kIsIterationInvariantRate);
#if defined(__unix__) || defined(__APPLE__)
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    state.counters["Prozess_MaxRSS_MB"] = static_cast<double>(r.ru_maxrss) / 1024.0;
#endif
}
BENCHMARK(BM_DateiLaden)->Unit(benchmark::kMillisecond);

void BM_CursorDurchlauf(benchmark::State& state) {
    lyrabo::Midifile m;
    m.filename(testDatei().string());
    m.Action(1);
    for (auto _ : state) {
        int64_t summe = 0;
        for (int16_t t = 1; t <= m.TrackCount(); ++t) {
            m.Track(t);
            const int32_t n = m.EventCount();
            for (int32_t i = 1; i <= n; ++i) {
                m.Event(i);
                summe += m.Time() + m.Message() + m.Data1() + m.Data2();
                if (m.Message() == 255 && m.Data1() == 5) summe += static_cast<int64_t>(m.Text().size());
            }
        }
        benchmark::DoNotOptimize(summe);
    }
}
BENCHMARK(BM_CursorDurchlauf)->Unit(benchmark::kMillisecond);

} // namespace

void* operator new(size_t n) { return holen(n); }
void* operator new[](size_t n) { return holen(n); }
void operator delete(void* p) noexcept { freigeben(p); }
void operator delete[](void* p) noexcept { freigeben(p); }
void operator delete(void* p, size_t) noexcept { freigeben(p); }
void operator delete[](void* p, size_t) noexcept { freigeben(p); }

BENCHMARK_MAIN();
