#include "blatt/Musik.h"

#include "blatt/Einpassen.h"
#include "blatt/Notenzeichen.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace lyrabo::blatt {

namespace {

const Farbe kTaktLinie{95, 95, 95};
const Farbe kMelodie{140, 155, 200};   // lighter than the heads, still a line the eye follows
const Farbe kAkkord{80, 80, 80};
const Farbe kLiedText{60, 60, 140};
// Accompaniment: smaller, lighter heads, and a thinner, lighter dashed line to the melody.
constexpr double kBegleitSkala = 0.75;
const Farbe kBegleitung{120, 120, 120};
const Farbe kBegleitRot{235, 120, 120};
const Farbe kBegleitLinie{165, 165, 165};

// The outer heads of a set of notes that start in one row: strings and half widths.
struct Spanne {
    int links = 1000, rechts = -1000;
    double rxL = 0, rxR = 0;
    bool leer() const { return rechts < links; }
    void dazu(int saite, double rx) {
        if (saite < links) links = saite, rxL = rx;
        if (saite > rechts) rechts = saite, rxR = rx;
    }
};

// Cuts a line to the stretch lo <= x <= hi; false when nothing of it is left.
bool zuschneiden(Linie& l, double lo, double hi) {
    if (l.a.x > l.b.x) std::swap(l.a, l.b);
    if (l.b.x < lo || l.a.x > hi) return false;
    auto y = [&](double x) { return l.a.x == l.b.x ? l.a.y : l.a.y + (l.b.y - l.a.y) * (x - l.a.x) / (l.b.x - l.a.x); };
    if (l.a.x < lo) l.a = {lo, y(lo)};
    if (l.b.x > hi) l.b = {hi, y(hi)};
    return true;
}

// A sign's box that a thin line leaves a gap around.
struct Kasten {
    double x0, y0, x1, y1;
};

// What is left of a line outside the boxes: a bar number or a dot stays readable.
std::vector<Linie> aussparen(const Linie& l, const std::vector<Kasten>& kaesten) {
    std::vector<std::pair<double, double>> weg; // stretches of the line's parameter 0..1 inside a box
    const double dx = l.b.x - l.a.x, dy = l.b.y - l.a.y;
    for (const Kasten& k : kaesten) {
        double t0 = 0, t1 = 1;
        auto platte = [&](double d, double von, double lo, double hi) {
            if (d == 0) return von > lo && von < hi;
            double u0 = (lo - von) / d, u1 = (hi - von) / d;
            if (u0 > u1) std::swap(u0, u1);
            t0 = std::max(t0, u0), t1 = std::min(t1, u1);
            return t0 < t1;
        };
        if (platte(dx, l.a.x, k.x0, k.x1) && platte(dy, l.a.y, k.y0, k.y1)) weg.push_back({t0, t1});
    }
    std::sort(weg.begin(), weg.end());
    std::vector<Linie> teile;
    const double laenge = std::hypot(dx, dy);
    double t = 0;
    auto teil = [&](double t0, double t1) {
        if ((t1 - t0) * laenge < 0.4) return;
        Linie s = l;
        s.a = {l.a.x + dx * t0, l.a.y + dy * t0};
        s.b = {l.a.x + dx * t1, l.a.y + dy * t1};
        teile.push_back(s);
    };
    for (const auto& [w0, w1] : weg) {
        if (w0 > t) teil(t, w0);
        t = std::max(t, w1);
    }
    if (t < 1) teil(t, 1);
    return teile;
}

Kasten textKasten(double x, double y, const std::string& text, double groesse) {
    const double pt = 25.4 / 72 * groesse;
    return {x - 0.2, y - 0.72 * pt - 0.1, x + textBreite(text, groesse) + 0.2, y + 0.22 * pt + 0.1};
}

// How far a head reaches from its centre in the direction (dx, dy).
double kopfReichweite(const Zeichenmass& m, double dx, double dy) {
    const double l = std::hypot(dx, dy);
    if (l == 0) return m.rx;
    const double c = dx / l, s = dy / l;
    return 1 / std::sqrt((c / m.rx) * (c / m.rx) + (s / m.ry) * (s / m.ry));
}

} // namespace

void musikZeichnen(Seite& seite, const Zeilen& zeilen, const Abstaende& ab, size_t von, size_t bis, const Stueck& st,
                   const Einstellungen& e, const Streifenlage& lage) {
    auto& el = seite.elemente;
    const auto& z = zeilen.zeilen;
    const int a = lage.a, b = lage.b;
    auto xVon = [&](int saite) { return lage.x0 + (saite - a) * e.saitenAbstand; };
    auto sichtbar = [&](int saite) { return saite >= a && saite <= b; };
    const double xl = xVon(a), xr = xVon(b);
    const Notenform form = e.notenform;

    // The bar numbers in the gaps between the first strings; lines leave them free.
    const double xNummer = xl + 2.2;
    auto nummerVon = [&](const Zeile& r) {
        const Taktzeichen* zeichen = r.takt >= 1 && size_t(r.takt) <= zeilen.zeichen.size() ? &zeilen.zeichen[size_t(r.takt - 1)] : nullptr;
        return zeichen ? zeichen->nummer : std::to_string(r.takt);
    };
    std::vector<Kasten> nummern;
    for (size_t i = von; i < bis; ++i)
        if (z[i].taktStart && !z[i].schluss) {
            const double yt = z[i].y - ab.oben[i] - kTaktLinieLuft;
            nummern.push_back(textKasten(xNummer, yt - 0.35, nummerVon(z[i]), 5.5));
            const Taktzeichen* t = zeichenUeber(zeilen, i);
            if (t && t->ende > 2 && !(i == von && von > 0)) {
                const std::string mal = std::to_string(t->ende) + "\u00d7";
                nummern.push_back(textKasten(xr - e.saitenAbstand / 2 - textBreite(mal, 9) / 2, yt - 1.3, mal, 9));
            }
        }

    // The melody line, behind everything: from the edge of one melody head to the edge of the next.
    if (e.melodieLinie) {
        std::optional<std::pair<Punkt, Zeichenmass>> vorige;
        for (size_t i = von; i < bis; ++i) {
            if (z[i].taktStart && z[i].takt >= 1 && zeilen.zeichen.size() >= size_t(z[i].takt) && zeilen.zeichen[size_t(z[i].takt - 1)].linieBricht)
                vorige.reset();
            for (const auto& t : z[i].noten) {
                if (!t.anfang || !st.noten[size_t(t.note)].melodie) continue;
                const Punkt p{xVon(t.saite), z[i].y};
                const Zeichenmass m = notenMass(t.sechzehntel, form);
                if (vorige) {
                    const Punkt q = vorige->first;
                    const double dx = p.x - q.x, dy = p.y - q.y, l = std::hypot(dx, dy);
                    const double r1 = kopfReichweite(vorige->second, dx, dy) + 0.35, r2 = kopfReichweite(m, dx, dy) + 0.35;
                    Linie linie{{q.x + dx * r1 / l, q.y + dy * r1 / l}, {p.x - dx * r2 / l, p.y - dy * r2 / l}, 0.35, kMelodie};
                    if (l > r1 + r2 + 0.3 && zuschneiden(linie, lage.links, lage.rechts))
                        for (const Linie& teil : aussparen(linie, nummern)) el.push_back({teil});
                }
                vorige = {{p, m}};
                break;
            }
        }
    }

    // A run that ends where the page breaks: its end sign closes this page, below its last row.
    const Taktzeichen* endeUnten = bis > von && bis < z.size() ? zeichenUeber(zeilen, bis) : nullptr;
    if (endeUnten && !endeUnten->ende) endeUnten = nullptr;
    const double yUnten = endeUnten ? z[bis - 1].y + ab.unten[bis - 1] + 2 * kTaktLinieLuft : 0;

    // An ending's bracket from its bar line down to the bar line where it ends, or to the page's foot.
    auto klammerBis = [&](int nummer, int bisTakt, double y1, bool anfang) {
        const size_t ende = size_t(bisTakt) < zeilen.taktStart.size() ? zeilen.zeileAb(zeilen.taktStart[size_t(bisTakt)]) : z.size();
        const bool offen = ende > bis || (ende == bis && !endeUnten);
        const double y2 = offen ? lage.musikUnten : ende == bis ? yUnten : z[ende].y - ab.oben[ende] - kTaktLinieLuft;
        klammerZeichnen(el, nummer, xr, e.saitenAbstand, y1, y2, anfang, offen);
    };
    if (von < bis && von > 0 && !zeilen.zeichen.empty()) {
        // An ending that began on the page before goes on at the top of this one.
        const int w = int(std::upper_bound(zeilen.taktStart.begin(), zeilen.taktStart.end(), z[von].u) - zeilen.taktStart.begin()) - 1;
        for (int k = std::max(0, w - 2); k <= w && size_t(k) < zeilen.zeichen.size(); ++k) {
            const Taktzeichen& t = zeilen.zeichen[size_t(k)];
            const bool begonnen = k < w || !z[von].taktStart;
            if (t.klammer && t.klammerBis > w && begonnen) klammerBis(t.klammer, t.klammerBis, lage.musikOben, false);
        }
    }

    for (size_t i = von; i < bis; ++i) {
        const Zeile& r = z[i];
        const double y = r.y;
        seite.zeit.push_back({int32_t(std::min<int64_t>(r.u / 4, INT32_MAX)), y, r.taktRaum});
        if (r.taktStart) {
            // The bar line in the room above the row; its number (and a new time signature) in the
            // gaps between the first strings, where no head can be.
            const double yt = y - ab.oben[i] - kTaktLinieLuft;
            el.push_back({Linie{{xl - 1.8, yt}, {xr + 1.8, yt}, 0.25, kTaktLinie}});
            if (r.schluss) el.push_back({Linie{{xl - 1.8, yt + 0.7}, {xr + 1.8, yt + 0.7}, 0.6, kSchwarz}});
            const Taktzeichen* zeichen = r.takt >= 1 && size_t(r.takt) <= zeilen.zeichen.size() ? &zeilen.zeichen[size_t(r.takt - 1)] : nullptr;
            const std::string nummer = nummerVon(r);
            const int takt = zeichen ? zeichen->takt : r.takt;
            if (zeichen) {
                wiederholungZeichnen(el, i == von && von > 0 ? ohneEnde(*zeichen) : *zeichen, xl, xr, e.saitenAbstand, yt);
                if (zeichen->klammer) klammerBis(zeichen->klammer, zeichen->klammerBis, yt, true);
            }
            if (!r.schluss) el.push_back({Text{{xNummer, yt - 0.35}, nummer, 5.5, Ausrichtung::Links, false, kGrau}});
            if (r.leereTakte > 0)
                el.push_back({Text{{xNummer, yt + 2.6}, "Takt " + std::to_string(takt) + " bis " + std::to_string(takt + r.leereTakte) +
                                                   ": nichts zu spielen", 7, Ausrichtung::Links, false, kGrau}});
            if (r.neueTaktart) {
                const auto [zz, nn] = zeilen.taktart(r.takt);
                const double x = b - a >= 2 ? xVon(a + 1) + 2.2 : xNummer + textBreite(nummer, 5.5) + 1.0;
                el.push_back({Text{{x, yt - 0.35}, std::to_string(zz) + "/" + std::to_string(nn), 7, Ausrichtung::Links, true}});
            }
        }
        // A chord: the notes that start here, joined by a thin dashed line between their outer heads.
        // Accompaniment that starts with them is joined to the nearest of them by a lighter line.
        Spanne melodie, begleitung;
        for (const auto& t : r.noten) {
            if (!t.anfang) continue;
            const bool begleitend = st.noten[size_t(t.note)].begleitung;
            const double rx = notenMass(t.sechzehntel, form).rx * (begleitend ? kBegleitSkala : 1.0);
            (begleitend ? begleitung : melodie).dazu(t.saite, rx);
        }
        // The line stops short of every head on its way (a hollow one stays hollow) and leaves the
        // dots, rests and lyrics free.
        std::vector<Kasten> frei;
        for (const auto& t : r.noten) {
            const Note& no = st.noten[size_t(t.note)];
            const double skala = no.begleitung ? kBegleitSkala : 1.0;
            const Zeichenmass m = notenMass(t.sechzehntel, form);
            const double x = xVon(t.saite), rx = m.rx * skala;
            frei.push_back({x - rx - 0.3, y - m.ry * skala, x + rx + 0.3, y + m.ry * skala});
            if (wertVon(t.sechzehntel).punktiert) frei.push_back({x + rx + (0.7 - 0.36) * skala - 0.3, y - 1, x + rx + (0.7 + 0.36) * skala + 0.3, y + 1});
            if (e.notenTexte && !no.text.empty() && t.anfang) {
                const double v = liedTextVersatz(t.sechzehntel, form), b = textBreite(no.text, kLiedTextGroesse);
                const double x0 = t.textLinks ? x - v - b : x + v;
                frei.push_back(textKasten(x0, y + kLiedTextGrundlinie, no.text, kLiedTextGroesse));
            }
        }
        for (const auto& p : r.pausen) frei.push_back({xVon(p.saite) - 1.6, y - 1, xVon(p.saite) + 1.6, y + 1});
        auto strich = [&](int s1, double rx1, int s2, double rx2, double staerke, Farbe f) {
            Linie l{{xVon(s1) + rx1 + 0.3, y}, {xVon(s2) - rx2 - 0.3, y}, staerke, f, true};
            if (l.b.x > l.a.x && zuschneiden(l, lage.links, lage.rechts))
                for (const Linie& teil : aussparen(l, frei)) el.push_back({teil});
        };
        if (melodie.rechts > melodie.links) strich(melodie.links, melodie.rxL, melodie.rechts, melodie.rxR, 0.2, kAkkord);
        if (!begleitung.leer() && !melodie.leer()) {
            if (begleitung.links < melodie.links) strich(begleitung.links, begleitung.rxL, melodie.links, melodie.rxL, 0.15, kBegleitLinie);
            if (begleitung.rechts > melodie.rechts)
                strich(melodie.rechts, melodie.rxR, begleitung.rechts, begleitung.rxR, 0.15, kBegleitLinie);
        } else if (begleitung.rechts > begleitung.links) {
            strich(begleitung.links, begleitung.rxL, begleitung.rechts, begleitung.rxR, 0.15, kBegleitLinie);
        }

        for (const auto& t : r.noten) {
            if (!sichtbar(t.saite)) continue;
            const Note& no = st.noten[size_t(t.note)];
            const double skala = no.begleitung ? kBegleitSkala : 1.0;
            const Farbe f = t.richtung != 0 ? (no.begleitung ? kBegleitRot : kRot) : (no.begleitung ? kBegleitung : kSchwarz);
            const Punkt m{xVon(t.saite), y};
            Zeichenmass mass = notenMass(t.sechzehntel, form);
            mass.rx *= skala;
            notenZeichen(el, m, t.sechzehntel, form, f, t.note, skala);
            if (t.richtung != 0) pfeil(el, m, mass.rx, t.richtung, t.note);
            if (e.notenTexte && !no.text.empty() && t.anfang)
                el.push_back({Text{{m.x + (t.textLinks ? -1 : 1) * liedTextVersatz(t.sechzehntel, form), y + kLiedTextGrundlinie}, no.text,
                                   kLiedTextGroesse, t.textLinks ? Ausrichtung::Rechts : Ausrichtung::Links, false, kLiedText}});
            if (t.weiter) {
                const size_t ziel = zeilen.zeileAb(t.bisU);
                const double y2 = ziel >= bis || ziel >= z.size() ? lage.musikUnten + 1 : z[ziel].y;
                bogen(el, m.x, y, y2, mass.rx, f, t.note);
            }
        }
        for (const auto& p : r.pausen)
            if (sichtbar(p.saite)) pausenZeichen(el, {xVon(p.saite), y}, p.sechzehntel);
    }
    if (endeUnten) {
        el.push_back({Linie{{xl - 1.8, yUnten}, {xr + 1.8, yUnten}, 0.25, kTaktLinie}});
        wiederholungZeichnen(el, nurEnde(*endeUnten), xl, xr, e.saitenAbstand, yUnten);
    }
    // Ties that come in from the page before: a tied part is at most a whole note long.
    if (von < bis && von > 0) {
        const int64_t vonU = z[von].u;
        for (size_t i = von; i-- > 0;) {
            if (z[i].u < vonU - 16 * zeilen.tpq) break;
            for (const auto& t : z[i].noten) {
                if (!t.weiter || t.bisU < vonU || !sichtbar(t.saite)) continue;
                const size_t ziel = zeilen.zeileAb(t.bisU);
                const bool begleitend = st.noten[size_t(t.note)].begleitung;
                const double rx = notenMass(t.sechzehntel, form).rx * (begleitend ? kBegleitSkala : 1.0);
                const Farbe f = t.richtung ? (begleitend ? kBegleitRot : kRot) : (begleitend ? kBegleitung : kSchwarz);
                if (ziel < bis && z[ziel].u == t.bisU) bogen(el, xVon(t.saite), lage.musikOben - 1, z[ziel].y, rx, f, t.note);
            }
        }
    }
}

} // namespace lyrabo::blatt
