// How long the window's note sheet takes to show an option change for a 500-note song: lay the
// piece out anew, then paint what the view shows (page width, the top of page 1) into an image,
// as the view's paint event does. Once for each harp size on its default paper.
#include "blatt/BlattSatz.h"
#include "ui/BlattAnsicht.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>

using namespace lyrabo;

namespace {

// A melody of 500 notes in 4/4 with chords, rests, dotted and odd lengths and a lyric per note.
blatt::Stueck lied500(int saiten) {
    blatt::Stueck s;
    s.titel = "Lied mit 500 Noten";
    s.saiten = static_cast<int16_t>(saiten);
    static const int32_t dauern[] = {480, 240, 240, 720, 240, 960, 480, 120, 120, 240, 1440, 480};
    uint32_t z = 7;
    auto zufall = [&] { return (z = z * 1664525u + 1013904223u) >> 8; };
    int32_t t = 0;
    int16_t akkord = 0;
    static const char* const silben[] = {"Frö", "hli", "che", "Weih", "nacht", "ü", "ber", "all"};
    while (s.noten.size() < 500) {
        const int32_t d = dauern[zufall() % 12];
        const int16_t ton = static_cast<int16_t>(56 + zufall() % (saiten - 2));
        ++akkord;
        s.noten.push_back({t, d, ton, akkord, silben[s.noten.size() % 8], true});
        if (zufall() % 5 == 0 && ton > 62) s.noten.push_back({t, d, static_cast<int16_t>(ton - 5), akkord, "", false});
        t += d;
        if (zufall() % 7 == 0) {
            s.pausen.push_back({t, 480, 60});
            t += 480;
        }
    }
    for (int32_t takt = 0; takt * 1920 <= t; ++takt) s.takte.push_back({1920, 4, 4});
    return s;
}

void neuZeichnen(benchmark::State& state) {
    const int saiten = static_cast<int>(state.range(0));
    const blatt::Stueck stueck = lied500(saiten);
    blatt::Einstellungen e = blatt::standardFuer(saiten);
    // The visible part of the view in a window of 1366 × 768.
    QImage bild(1080, 420, QImage::Format_ARGB32_Premultiplied);
    size_t seiten = 0;
    int runde = 0;
    for (auto _ : state) {
        // Each round is an option change: the spacing alternates, so nothing can be reused.
        e.saitenAbstand = runde++ % 2 ? 11.5 : 11.6;
        const blatt::Blatt blatt = blatt::setzen(stueck, e);
        const double breitest = blatt.seiten.front().breite;
        const double pxProMm = (bild.width() - 24) / breitest;
        const SeitenLage lage = seitenLage(blatt, pxProMm);
        QPainter maler(&bild);
        maler.fillRect(bild.rect(), Qt::gray);
        blattSichtMalen(maler, blatt, lage, pxProMm, QRectF(0, 0, bild.width(), bild.height()));
        maler.end();
        seiten = blatt.seiten.size();
        benchmark::DoNotOptimize(bild.constBits());
    }
    state.counters["Noten"] = static_cast<double>(stueck.noten.size());
    state.counters["Seiten"] = static_cast<double>(seiten);
}
BENCHMARK(neuZeichnen)->Name("BlattNachOptionsaenderung/Saiten")->Arg(25)->Arg(37)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
