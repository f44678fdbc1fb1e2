#include "blatt/Zeilen.h"

#include "blatt/Wiederholungen.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace lyrabo::blatt {

namespace {

constexpr int kMaxTeile = 64;  // tied parts of one note: more is no music
constexpr int kWerte[8] = {16, 12, 8, 6, 4, 3, 2, 1};

} // namespace

Wert wertVon(int sechzehntel) {
    switch (sechzehntel) {
    case 12: return {8, true};
    case 6: return {4, true};
    case 3: return {2, true};
    default: return {sechzehntel, false};
    }
}

// Times are counted in quarter ticks (ticks x 4), so a sixteenth is exactly `tpq` of them whatever
// the file's resolution.
std::vector<int> zerlegen(int64_t laenge, int64_t tpq) {
    std::vector<int> teile;
    int64_t rest = std::max<int64_t>(0, laenge) * 4;
    while (rest >= tpq && int(teile.size()) < kMaxTeile) {
        for (int w : kWerte) {
            if (w * tpq <= rest) {
                teile.push_back(w);
                rest -= w * tpq;
                break;
            }
        }
    }
    // Shorter than a sixteenth, or of no length at all: still a note to play.
    if (teile.empty()) teile.push_back(1);
    return teile;
}

std::pair<int, int> Zeilen::taktart(int takt) const {
    if (takt >= 1 && takt <= int(taktarten.size())) return taktarten[size_t(takt - 1)];
    if (!taktarten.empty()) return taktarten.back();
    return {4, 4};
}

size_t Zeilen::zeileAb(int64_t u) const {
    return size_t(std::lower_bound(zeilen.begin(), zeilen.end(), u, [](const Zeile& z, int64_t w) { return z.u < w; }) - zeilen.begin());
}

Zeilen zeilenBilden(const Stueck& st) {
    Zeilen a;
    a.tpq = std::max<int64_t>(1, st.ticksProViertel);
    a.saiten = st.saiten == 25 ? 25 : 37;
    for (const auto& t : st.takte) a.taktarten.push_back({t.zaehler, t.nenner});
    const int64_t tpq = a.tpq;
    const int n = a.saiten;

    // Bars as the repeats see them, counted in quarter ticks (ticks x 4).
    for (int64_t anfang : taktAnfaenge(st)) a.taktStart.push_back(anfang * 4);

    const auto& ts = a.taktStart;
    std::map<int64_t, Zeile> z;
    for (size_t i = 0; i < st.noten.size(); ++i) {
        const Note& no = st.noten[i];
        int saite = saiteVon(no.tonHoehe, st.transpo);
        const int richtung = saite < 1 ? -1 : saite > n ? 1 : 0;
        saite = std::clamp(saite, 1, n);
        int64_t v = int64_t(no.start) * 4;
        const auto teile = zerlegen(no.laenge, tpq);
        for (size_t t = 0; t < teile.size(); ++t) {
            const int64_t bis = v + teile[t] * tpq;
            z[v].noten.push_back({int32_t(i), saite, richtung, teile[t], bis, t + 1 < teile.size(), t == 0});
            v = bis;
        }
    }
    for (const auto& p : st.pausen) {
        const int saite = std::clamp(saiteVon(p.tonHoehe, st.transpo), 1, n);
        int64_t v = int64_t(p.start) * 4;
        for (int teil : zerlegen(p.laenge, tpq)) {
            z[v].pausen.push_back({saite, teil});
            v += teil * tpq;
        }
    }
    // Of a run of bars with nothing in them only the first is drawn, with a word on how many follow:
    // hours of silence (or a stray event far behind the music) need no paper.
    size_t leerSeit = SIZE_MAX;
    for (size_t k = 0; k < ts.size(); ++k) {
        const bool schluss = k + 1 == ts.size();
        const auto inhalt = z.lower_bound(ts[k]);
        const bool leer = !schluss && (inhalt == z.end() || inhalt->first >= ts[k + 1]);
        if (leer && leerSeit != SIZE_MAX) {
            ++z[ts[leerSeit]].leereTakte;
            continue;
        }
        leerSeit = leer ? k : SIZE_MAX;
        Zeile& r = z[ts[k]];
        r.taktStart = true;
        r.takt = int(k) + 1;
        r.schluss = schluss;
        r.neueTaktart = !r.schluss && (k == 0 || a.taktart(int(k)) != a.taktart(int(k) + 1));
    }
    a.zeilen.reserve(z.size());
    // A lyric stands on the side of its head that the melody line leaves alone: left when the line
    // goes on to the right, or comes in from the right and goes straight down.
    NotenTeil* voriger = nullptr; // the last melody note
    bool vonRechts = false;       // ... and whether the line came to it from the right
    for (auto& [v, r] : z) {
        r.u = v;
        a.zeilen.push_back(std::move(r));
        for (auto& t : a.zeilen.back().noten) {
            if (!t.anfang || !st.noten[size_t(t.note)].melodie) continue;
            if (voriger) {
                voriger->textLinks = t.saite > voriger->saite || (t.saite == voriger->saite && vonRechts);
                vonRechts = voriger->saite > t.saite;
            }
            voriger = &t;
            break;
        }
    }
    if (voriger) voriger->textLinks = vonRechts;
    return a;
}

} // namespace lyrabo::blatt
