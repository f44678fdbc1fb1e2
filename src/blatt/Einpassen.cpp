#include "blatt/Einpassen.h"

#include <algorithm>
#include <numeric>

namespace lyrabo::blatt {

namespace {

struct Raum {
    const Zeilen& z;
    const Abstaende& a;
    std::vector<double> grenze; // per gap: the least room any gap of this time or longer may get

    Raum(const Zeilen& zeilen, const Abstaende& ab) : z(zeilen), a(ab), grenze(ab.mindest) {
        // Within a sheet a longer time never gets less room than a shorter one: each gap gets at
        // least the largest minimum of all shorter times (equal times may differ: a repeated note
        // needs more room than a step to another string).
        std::vector<size_t> folge(grenze.size());
        std::iota(folge.begin(), folge.end(), size_t(0));
        std::stable_sort(folge.begin(), folge.end(), [&](size_t x, size_t y) { return a.dauer[x] < a.dauer[y]; });
        double kuerzere = 0;
        for (size_t k = 0; k < folge.size();) {
            size_t ende = k;
            while (ende < folge.size() && a.dauer[folge[ende]] == a.dauer[folge[k]]) ++ende;
            double gruppe = kuerzere;
            for (; k < ende; ++k) {
                grenze[folge[k]] = std::max(a.mindest[folge[k]], kuerzere);
                gruppe = std::max(gruppe, grenze[folge[k]]);
            }
            kuerzere = gruppe;
        }
    }
    double luecke(size_t i, double f) const { return std::max(f * a.natuerlich[i], grenze[i]); }
    // Room for the bar line above row i + 1: a little, or what keeps it clear of both rows' signs.
    double takt(size_t i, double f) const {
        if (!z.zeilen[i + 1].taktStart) return 0;
        return std::max(kTaktZugabe, a.unten[i] + a.oben[i + 1] + 2 * kTaktLinieLuft - luecke(i, f));
    }
    double schritt(size_t i, double f) const { return luecke(i, f) + takt(i, f); }
    double kopf(size_t i) const { return a.oben[i] + (z.zeilen[i].taktStart ? kTaktLinieLuft + kTaktNummerHoehe : 0.2); }
    // Below a page's last row: room for the end sign of a run when a page may break after it.
    double fuss(size_t i) const {
        const Taktzeichen* t = i + 1 < z.zeilen.size() ? zeichenUeber(z, i + 1) : nullptr;
        return a.unten[i] + 0.5 + (t && t->ende ? 2 * kTaktLinieLuft + zeichenRaum(nurEnde(*t)) : 0);
    }

    // Pages of at most `hoehe`, each as long as it goes, broken at the last bar line that fits
    // (at a row when one bar is taller than a page).
    std::vector<size_t> teilen(double f, double hoehe) const {
        std::vector<size_t> anfaenge{0};
        const size_t n = z.zeilen.size();
        size_t s = 0, takt = 0;
        double h = kopf(0); // from the page's top to row i
        for (size_t i = 1; i < n; ++i) {
            if (z.zeilen[i].taktStart) takt = i;
            h += schritt(i - 1, f);
            while (s < i && h + fuss(i) > hoehe) {
                const size_t b = takt > s ? takt : i;
                anfaenge.push_back(b);
                s = b;
                h = kopf(b);
                for (size_t k = b; k < i; ++k) h += schritt(k, f);
            }
        }
        return anfaenge;
    }
};

} // namespace

size_t seitenNoetig(const Zeilen& zeilen, const Abstaende& a, double hoehe) {
    if (zeilen.zeilen.empty()) return 1;
    return Raum(zeilen, a).teilen(0, hoehe).size();
}

Einpassung einpassen(Zeilen& zeilen, const Abstaende& a, double oben, double hoehe, bool einpassen) {
    Einpassung ep;
    if (zeilen.zeilen.empty()) return ep;
    const Raum r(zeilen, a);
    ep.anfaenge = r.teilen(1, hoehe);
    if (einpassen && ep.anfaenge.size() > 1) {
        // As few pages as the minimum allows, then the largest factor that keeps to them.
        const size_t seiten = r.teilen(0, hoehe).size();
        double lo = 0, hi = 1;
        for (int k = 0; k < 24; ++k) {
            const double mitte = (lo + hi) / 2;
            (r.teilen(mitte, hoehe).size() <= seiten ? lo : hi) = mitte;
        }
        ep.faktor = lo;
    }
    const size_t seiten = r.teilen(ep.faktor, hoehe).size();
    if (seiten > 1) {
        // Filled about evenly: the lowest page height that still needs no more pages.
        double lo = 0, hi = hoehe;
        for (int k = 0; k < 24; ++k) {
            const double mitte = (lo + hi) / 2;
            (r.teilen(ep.faktor, mitte).size() <= seiten ? hi : lo) = mitte;
        }
        ep.anfaenge = r.teilen(ep.faktor, hi);
    } else {
        ep.anfaenge = {0};
    }
    auto& z = zeilen.zeilen;
    size_t seite = 0;
    for (size_t i = 0; i < z.size(); ++i) {
        if (seite + 1 < ep.anfaenge.size() && ep.anfaenge[seite + 1] == i) ++seite;
        z[i].seite = int(seite);
        z[i].taktRaum = 0;
        if (ep.anfaenge[seite] == i) {
            z[i].y = oben + r.kopf(i);
        } else {
            z[i].taktRaum = r.takt(i - 1, ep.faktor);
            z[i].y = z[i - 1].y + r.luecke(i - 1, ep.faktor) + z[i].taktRaum;
        }
    }
    return ep;
}

} // namespace lyrabo::blatt
