#include "blatt/Seitenrahmen.h"

#include "blatt/Notenzeichen.h"
#include "blatt/Saiten.h"
#include "blatt/Wiederholungszeichen.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace lyrabo::blatt {

namespace {

constexpr double kRandSeite = 3.0;     // paper edge to the outermost string, where nothing is in the way
constexpr double kUeberSaite = 3.2;    // what reaches beyond the outermost string: its name, a head, an arrow
constexpr double kRandStreifen = 8.0;  // left edge of a strip: room for the cut line
constexpr double kMarkeVon = 0.8, kMarkeBis = 2.8; // edge marks, from the paper's edge
constexpr double kTitelLinie = 7.0, kAngabenLinie = 11.0, kNamenLinie = 15.0, kMusikOben = 16.0;
constexpr double kFussVonUnten = 4.8, kMusikUeberFuss = 3.0;

const Farbe kSaitenLinie{225, 225, 225};
const Farbe kOktavLinie{190, 205, 240};

std::string zahl(double v, int stellen) {
    char puffer[32];
    std::snprintf(puffer, sizeof puffer, "%.*f", stellen, v);
    std::string s = puffer;
    for (char& c : s)
        if (c == '.') c = ',';
    return s;
}

} // namespace

std::string vorzeichenText(int v) { return v > 0 ? "+" + std::to_string(v) : v < 0 ? "\u2212" + std::to_string(-v) : "0"; }

Seitenmass seitenMass(const Einstellungen& e) {
    Seitenmass m;
    m.format = papierFormat(e);
    m.seitenRand = e.druckRand > 0 ? std::max(kRandSeite, e.druckRand + kUeberSaite) : kRandSeite;
    m.streifenLinks = std::max(kRandStreifen, e.druckRand + e.saitenAbstand / 2 + 0.5);
    m.dy = std::max(0.0, e.druckRand - kMarkeVon);
    m.musikOben = kMusikOben + m.dy;
    m.fussLinie = m.format.hoehe - kFussVonUnten - m.dy;
    m.musikUnten = m.fussLinie - kMusikUeberFuss;
    return m;
}

std::vector<std::pair<int, int>> streifenTeilen(int n, double abstand, double breite, double seite, double streifenLinks) {
    if ((n - 1) * abstand + 2 * seite <= breite + 1e-9) return {{1, n}};
    const int proStreifen = std::max(1, int(std::floor((breite - streifenLinks - seite) / abstand + 1e-9)));
    const int anzahl = (n - 1 + proStreifen - 1) / proStreifen;
    std::vector<std::pair<int, int>> s;
    int von = 1;
    for (int i = 0; i < anzahl; ++i) {
        const int schritte = (n - 1) / anzahl + (i < (n - 1) % anzahl ? 1 : 0);
        s.push_back({von, von + schritte});
        von += schritte;
    }
    return s;
}

void seitenRahmen(Seite& seite, const Seitenmass& m, const Einstellungen& e, int a, int b, int n, double x0, const Kopfzeile& k) {
    auto& el = seite.elemente;
    auto xVon = [&](int saite) { return x0 + (saite - a) * e.saitenAbstand; };
    const double xl = xVon(a), xr = xVon(b), dy = m.dy, h = m.format.hoehe;

    // Cut and glue marks between strips, their words on the title line.
    double titelX = xl;
    if (a > 1) {
        const double xs = xl - e.saitenAbstand / 2;
        el.push_back({Linie{{xs, kMarkeVon + dy}, {xs, h - kMarkeVon - dy}, 0.2, kGrau, true}});
        el.push_back({Text{{xs + 0.8, kTitelLinie + dy}, "\u2702 hier schneiden", 6, Ausrichtung::Links, false, kGrau}});
        titelX = xs + 0.8 + textBreite("\u2702 hier schneiden", 6) + 3;
    }
    if (b < n) {
        const double xk = xr - e.saitenAbstand / 2;
        el.push_back({Linie{{xk, m.musikOben}, {xk, m.musikUnten}, 0.2, kBlau, true}});
        el.push_back({Text{{xk - 0.8, kTitelLinie + dy}, "Streifen " + std::to_string(k.streifen + 1) + " bis hier auflegen \u2192", 6,
                           Ausrichtung::Rechts, false, kBlau}});
    }

    // The head: title, one line of facts, the page; notes beside the strings in red.
    el.push_back({Text{{titelX, kTitelLinie + dy}, k.titel, 12, Ausrichtung::Links, true}});
    if (!k.warnung.empty() && b == n && a == 1)
        el.push_back({Text{{xr, kTitelLinie + dy}, k.warnung, 7, Ausrichtung::Rechts, true, kRot}});
    std::string angaben = "Tempo \u2669 = " + std::to_string(k.tempo) + "   Takt " + std::to_string(k.taktart.first) + "/" +
                          std::to_string(k.taktart.second) + "   " + std::to_string(n) + " Saiten, Abstand " + zahl(e.saitenAbstand, 1) + " mm";
    if (k.transpo != 0) angaben += "   Transposition " + vorzeichenText(k.transpo);
    el.push_back({Text{{xl, kAngabenLinie + dy}, angaben, 7.5}});
    std::string seitenText = "Seite " + std::to_string(k.seite) + " von " + std::to_string(k.seiten);
    if (k.streifenAnzahl > 1) seitenText += " \u00b7 Streifen " + std::to_string(k.streifen) + " von " + std::to_string(k.streifenAnzahl);
    el.push_back({Text{{xr, kAngabenLinie + dy}, seitenText, 7.5, Ausrichtung::Rechts}});
    if (!k.warnung.empty() && !(b == n && a == 1))
        el.push_back({Text{{xr, kAngabenLinie + dy - 3.6}, k.warnung, 7, Ausrichtung::Rechts, true, kRot}});

    // Strings: faint guide lines, the names above the music, short marks at the paper's edges.
    for (int s = a; s <= b; ++s) {
        const double x = xVon(s);
        const bool oktave = (s - 1) % 12 == 0;
        el.push_back({Linie{{x, m.musikOben}, {x, m.musikUnten}, oktave ? 0.25 : 0.15, oktave ? kOktavLinie : kSaitenLinie}});
        el.push_back({Text{{x, kNamenLinie + dy}, saitenName(54 + s), oktave ? 7.0 : 6.5, Ausrichtung::Mitte, oktave}});
        el.push_back({Linie{{x, kMarkeVon + dy}, {x, kMarkeBis + dy}, oktave ? 0.4 : 0.25, kSchwarz}});
        el.push_back({Linie{{x, h - kMarkeBis - dy}, {x, h - kMarkeVon - dy}, oktave ? 0.4 : 0.25, kSchwarz}});
    }

    // The foot: a 100 mm bar to check that the printer did not scale, and the legend of the shapes.
    const double yf = m.fussLinie, yMass = yf - 0.3;
    el.push_back({Linie{{xl, yMass}, {xl + 100, yMass}, 0.3, kSchwarz}});
    for (int mm = 0; mm <= 100; mm += 10) el.push_back({Linie{{xl + mm, yMass - (mm % 50 ? 0.8 : 1.5)}, {xl + mm, yMass}, 0.2, kSchwarz}});
    // The repeat signs in words, left of the shapes.
    const double wiederholungB = k.wiederholungen ? textBreite(kWiederholungLegende, 6.5) + 5 : 0;
    const double legendeB = legendenBreite(e.notenform) + wiederholungB;
    const std::string lang = "100 mm: so lang muss diese Linie gedruckt sein";
    const bool platz = xl + 102 + textBreite(lang, 6) + 6 + legendeB <= xr;
    const std::string masstext = platz ? lang : "100 mm";
    el.push_back({Text{{xl + 102, yf}, masstext, 6}});
    // On a strip the next one is laid over the right edge: a legend that would reach under it goes
    // on the last strip only.
    const double xLegende = std::max(xl + 102 + textBreite(masstext, 6) + 6, xr - legendeB);
    if (b == n || xLegende + legendeB <= xr + 2) {
        if (k.wiederholungen) el.push_back({Text{{xLegende, yf}, kWiederholungLegende, 6.5, Ausrichtung::Links, true}});
        legende(el, xLegende + wiederholungB, yf, e.notenform);
    }
}

} // namespace lyrabo::blatt
