// How long the note sheet takes: the whole layout (rows, spacing, fitting onto as few sheets as need be,
// drawing elements) of 500 and of 20,000 notes, and writing 500 notes as a PDF (the file's size beside it).
// Aims: under 5 ms, 200 ms and 100 ms.
#include "blatt/BlattSatz.h"
#include "blattmaler/BlattMaler.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

#include <algorithm>
#include <filesystem>

using namespace lyrabo::blatt;

namespace {

// A song of `anzahl` notes at 480 ticks per quarter: a melody over three octaves and a bit beyond
// the strings, every fifth step a triad, rests, a lyric on every fourth note, lengths that need
// ties, and the metre changing between 4/4, 3/4 and 6/8 every eight bars.
Stueck lied(int anzahl) {
    static const int32_t dauern[] = {480, 240, 240, 720, 960, 480, 1440, 120, 600, 1920, 360, 480};
    Stueck s;
    s.titel = "Probe";
    uint32_t z = 12345;
    auto zufall = [&] { return (z = z * 1664525u + 1013904223u) >> 8; };
    int32_t t = 0;
    int16_t ton = 72, akkord = 0;
    for (int schritt = 0; int(s.noten.size()) < anzahl; ++schritt) {
        const int32_t dauer = dauern[zufall() % 12];
        if (schritt % 7 == 6) {
            s.pausen.push_back({t, 480, ton});
            t += 480;
        }
        ton = int16_t(std::clamp<int>(ton + int(zufall() % 9) - 4, 52, 94));
        ++akkord;
        const int stimmen = schritt % 5 == 4 ? 3 : 1;
        for (int k = 0; k < stimmen && int(s.noten.size()) < anzahl; ++k) {
            Note n;
            n.start = t;
            n.laenge = dauer;
            n.tonHoehe = int16_t(ton - 4 * k);
            n.akkordNr = akkord;
            n.melodie = k == 0;
            if (s.noten.size() % 4 == 0) n.text = "la";
            s.noten.push_back(n);
        }
        t += dauer;
    }
    static const Takt arten[3] = {{1920, 4, 4}, {1440, 3, 4}, {1440, 6, 8}};
    for (int32_t u = 0, k = 0; u < t; ++k) {
        s.takte.push_back(arten[(k / 8) % 3]);
        u += s.takte.back().laenge;
    }
    return s;
}

void BM_Setzen500(benchmark::State& state) {
    const Stueck s = lied(500);
    for (auto _ : state) benchmark::DoNotOptimize(setzen(s, standardFuer(37)));
}
BENCHMARK(BM_Setzen500)->Unit(benchmark::kMillisecond);

void BM_Setzen20000(benchmark::State& state) {
    const Stueck s = lied(20000);
    size_t seiten = 0;
    for (auto _ : state) seiten = setzen(s, standardFuer(37)).seiten.size();
    state.counters["Seiten"] = double(seiten);
}
BENCHMARK(BM_Setzen20000)->Unit(benchmark::kMillisecond);

void BM_PdfSchreiben500(benchmark::State& state) {
    const Blatt blatt = setzen(lied(500), standardFuer(37));
    const auto ziel = std::filesystem::temp_directory_path() / "lyrabo_bench_blatt.pdf";
    for (auto _ : state) {
        if (!alsPdf(blatt, ziel, "Probe", 0).empty()) state.SkipWithError("PDF nicht geschrieben");
    }
    state.counters["Seiten"] = double(blatt.seiten.size());
    state.counters["KB"] = double(std::filesystem::file_size(ziel)) / 1024;
    std::filesystem::remove(ziel);
}
BENCHMARK(BM_PdfSchreiben500)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    // The PDF writer needs Qt's graphics, a window system it does not need.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    QGuiApplication qt(qtArgc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
