#include "blatt/Wiederholungszeichen.h"

#include <cmath>

namespace lyrabo::blatt {

namespace {

constexpr double kDickeLinie = 0.7, kLinienAbstand = 0.8; // the thick line of a double bar, and its gap
constexpr double kPunktAbstand = 1.4, kPunktR = 0.5;      // dots off the nearest line, and their size
constexpr double kPunktPaar = 1.1;                        // each dot from the middle of its gap

Linie quer(double xl, double xr, double y, double staerke) { return Linie{{xl - 1.8, y}, {xr + 1.8, y}, staerke, kSchwarz}; }

// Two dots in the middle of every eighth gap between strings (counted from the middle gap), but not
// in the first two gaps, which hold the bar number and the time signature, nor in the last.
void punkte(std::vector<Element>& el, double xl, double xr, double abstand, double y) {
    const int luecken = int(std::lround((xr - xl) / abstand));
    const int mitte = (luecken - 1) / 2;
    for (int j = mitte % 8; j < luecken; j += 8) {
        if (j < 2 || j == luecken - 1) continue;
        const double x = xl + (j + 0.5) * abstand;
        for (double dx : {-kPunktPaar, kPunktPaar}) el.push_back({Ellipse{{x + dx, y}, kPunktR, kPunktR, 0, true, 0.2, kSchwarz}});
    }
}

} // namespace

std::vector<Taktzeichen> taktzeichen(const Faltung& f, int takte) {
    std::vector<Taktzeichen> z(size_t(std::max(0, takte)) + 1);
    for (int w = 0; w <= takte; ++w) {
        z[size_t(w)].takt = w + 1;
        z[size_t(w)].nummer = std::to_string(w + 1);
    }
    if (!f.gefaltet() || takte != int(f.takte.size())) return z;
    for (int w = 0; w < takte; ++w) {
        const auto gespielt = f.gespielteTakte(w);
        std::string s = std::to_string(gespielt[0] + 1);
        for (size_t i = 1; i < gespielt.size(); ++i) s += (i == 1 ? " (" : ", ") + std::to_string(gespielt[i] + 1);
        z[size_t(w)].nummer = gespielt.size() > 1 ? s + ")" : s;
        z[size_t(w)].takt = gespielt[0] + 1;
    }
    z[size_t(takte)].takt = int(f.gespieltVon.size()) + 1;
    z[size_t(takte)].nummer = std::to_string(z[size_t(takte)].takt);
    for (const auto& wh : f.wiederholungen) {
        z[size_t(wh.anfang)].anfang = wh.anfang > 0;
        z[size_t(wh.endeZeichen())].ende = wh.mal;
        if (wh.ersteKlammer) {
            Taktzeichen& eins = z[size_t(wh.endeZeichen() - wh.ersteKlammer)];
            eins.klammer = 1;
            eins.klammerBis = wh.endeZeichen();
        }
        if (wh.zweiteKlammer) {
            Taktzeichen& zwei = z[size_t(wh.endeZeichen())];
            zwei.klammer = 2;
            zwei.klammerBis = wh.ende;
            zwei.linieBricht = true; // the first ending goes back to the start, never on into the second
        }
    }
    return z;
}

double zeichenRaum(const Taktzeichen& z) {
    if (z.anfang && z.ende) return 2 * kLinienAbstand + 0.5;
    return z.anfang || z.ende ? kLinienAbstand + 0.6 : 0;
}

Taktzeichen nurEnde(const Taktzeichen& z) {
    Taktzeichen t;
    t.ende = z.ende;
    return t;
}

Taktzeichen ohneEnde(const Taktzeichen& z) {
    Taktzeichen t = z;
    t.ende = 0;
    return t;
}

void wiederholungZeichnen(std::vector<Element>& el, const Taktzeichen& z, double xl, double xr, double abstand, double y) {
    // The bar line at y is the thin line of an end sign, and the thick one of a start sign; the
    // other lines go below it, into the room the spacing left for them. The dots face into the run.
    if (z.ende) {
        punkte(el, xl, xr, abstand, y - kPunktAbstand);
        el.push_back({quer(xl, xr, y + kLinienAbstand, kDickeLinie)});
        if (z.ende > 2)
            el.push_back({Text{{xr - abstand / 2, y - 1.3}, std::to_string(z.ende) + "\u00d7", 9, Ausrichtung::Mitte, true}});
    }
    if (z.anfang) {
        const double dick = z.ende ? y + kLinienAbstand : y;
        if (!z.ende) el.push_back({quer(xl, xr, dick, kDickeLinie)});
        el.push_back({quer(xl, xr, dick + kLinienAbstand, 0.25)});
        punkte(el, xl, xr, abstand, dick + kLinienAbstand + kPunktAbstand);
    }
}

void klammerZeichnen(std::vector<Element>& el, int nummer, double xr, double abstand, double y1, double y2, bool anfang, bool offen) {
    const double x = xr - abstand / 2 + 2.0, haken = 2.4;
    Pfad p;
    p.gefuellt = false;
    p.staerke = 0.3;
    if (anfang) p.start({x - haken, y1 + 0.6}).linie({x, y1 + 0.6});
    else p.start({x, y1});
    p.linie({x, y2 - 0.6});
    if (!offen && nummer == 1) p.linie({x - haken, y2 - 0.6});
    el.push_back({p});
    if (anfang) el.push_back({Text{{x - 0.8, y1 + 3.6}, std::to_string(nummer) + ".", 8, Ausrichtung::Rechts, true}});
}

} // namespace lyrabo::blatt
