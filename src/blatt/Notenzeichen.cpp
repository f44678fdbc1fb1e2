#include "blatt/Notenzeichen.h"

#include "blatt/Zeilen.h"

#include <algorithm>

namespace lyrabo::blatt {

namespace {

constexpr double kHals = 3.2;  // stem, downwards

// Head sizes of the table-harp shapes by undotted value: the longer, the larger; whole and half open.
struct Kopf {
    double rx, ry;
    bool hohl;
};
Kopf harfenKopf(int basis) {
    switch (basis) {
    case 16: return {1.75, 1.25, true};
    case 8: return {1.4, 1.0, true};
    case 4: return {1.35, 0.95, false};
    case 2: return {1.12, 0.8, false};
    default: return {0.92, 0.66, false};
    }
}
Kopf halsKopf(int basis) { return basis >= 8 ? Kopf{1.25, 0.85, true} : Kopf{1.35, 0.95, false}; }

void kopf(std::vector<Element>& el, Punkt m, const Kopf& k, Farbe f, int32_t note) {
    Ellipse e;
    e.mitte = m;
    e.rx = k.rx;
    e.ry = k.ry;
    e.winkel = kKopfWinkel;
    e.gefuellt = !k.hohl;
    e.staerke = k.rx > 1.5 ? 0.38 : 0.3;
    e.farbe = f;
    el.push_back({e, note});
}

// A flag at the lower end of a stem, curving up and to the right, 1.7 mm high.
void fahne(std::vector<Element>& el, Punkt s, Farbe f, int32_t note) {
    Pfad p;
    p.farbe = f;
    p.start(s)
        .kurve({s.x + 0.2, s.y - 0.55}, {s.x + 1.9, s.y - 0.75}, {s.x + 1.6, s.y - 1.7})
        .kurve({s.x + 1.5, s.y - 1.05}, {s.x + 0.5, s.y - 0.9}, {s.x, s.y - 0.6})
        .schliessen();
    el.push_back({p, note});
}

double halsLaenge(int basis) { return basis == 1 ? kHals + 0.7 : kHals; }

} // namespace

Zeichenmass notenMass(int sechzehntel, Notenform form) {
    const Wert w = wertVon(sechzehntel);
    const Kopf k = form == Notenform::Harfe ? harfenKopf(w.basis) : halsKopf(w.basis);
    // A leaning ellipse reaches a little further up and down than its short half axis.
    const double ry = k.ry + 0.08;
    Zeichenmass m{k.rx, k.ry, ry, ry};
    if (form == Notenform::Hals && w.basis < 16) m.unten = halsLaenge(w.basis) + 0.15;
    return m;
}

double pausenHalbeHoehe(int sechzehntel) {
    switch (wertVon(sechzehntel).basis) {
    case 16:
    case 8: return 0.7;
    case 4: return 1.35;
    default: return 1.1;
    }
}

void notenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel, Notenform form, Farbe f, int32_t note) {
    const Wert w = wertVon(sechzehntel);
    const Kopf k = form == Notenform::Harfe ? harfenKopf(w.basis) : halsKopf(w.basis);
    kopf(el, m, k, f, note);
    if (form == Notenform::Hals && w.basis < 16) {
        const double hx = m.x - 1.35 + 0.15;
        // A sixteenth's stem is longer, so that its second flag stays clear of the head.
        const double laenge = halsLaenge(w.basis);
        el.push_back({Linie{{hx, m.y + 0.25}, {hx, m.y + laenge}, 0.22, f}, note});
        if (w.basis <= 2) fahne(el, {hx, m.y + laenge}, f, note);
        if (w.basis == 1) fahne(el, {hx, m.y + laenge - 0.85}, f, note);
    }
    if (w.punktiert) el.push_back({Ellipse{{m.x + k.rx + 0.7, m.y}, 0.36, 0.36, 0, true, 0, f}, note});
}

// Rests in their usual signs, at 70 % of a staff's size: the harp player only needs to see the pause.
void pausenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel) {
    const Wert w = wertVon(sechzehntel);
    constexpr double s = 0.7;
    const Farbe f = kSchwarz;
    auto P = [&](double dx, double dy) { return Punkt{m.x + s * dx, m.y + s * dy}; };
    auto strich = [&](Pfad p) {
        p.gefuellt = false;
        p.staerke = 0.32;
        p.farbe = f;
        el.push_back({p});
    };
    auto punkt = [&](double dx, double dy) { el.push_back({Ellipse{P(dx, dy), 0.32, 0.32, 0, true, 0, f}}); };
    switch (w.basis) {
    case 16: // whole rest: a block hanging from a line
        el.push_back({Linie{P(-1.7, -0.6), P(1.7, -0.6), 0.2, f}});
        el.push_back({Pfad{{}, true, 0, f}.start(P(-1.1, -0.6)).linie(P(1.1, -0.6)).linie(P(1.1, 0.4)).linie(P(-1.1, 0.4)).schliessen()});
        break;
    case 8: // half rest: a block sitting on a line
        el.push_back({Linie{P(-1.7, 0.6), P(1.7, 0.6), 0.2, f}});
        el.push_back({Pfad{{}, true, 0, f}.start(P(-1.1, 0.6)).linie(P(1.1, 0.6)).linie(P(1.1, -0.4)).linie(P(-1.1, -0.4)).schliessen()});
        break;
    case 4: // quarter rest: the zigzag with its hook
        strich(Pfad{}.start(P(-0.45, -1.9)).linie(P(0.5, -0.8)).linie(P(-0.4, 0.1)).linie(P(0.5, 1.0)).kurve(P(-0.6, 0.6), P(-0.7, 1.5), P(0.1, 1.9)));
        break;
    case 2: // eighth rest
        punkt(-0.45, -0.6);
        strich(Pfad{}.start(P(-0.5, -0.25)).kurve(P(-0.1, -0.1), P(0.4, -0.4), P(0.65, -0.9)).linie(P(-0.2, 1.4)));
        break;
    default: // sixteenth rest
        punkt(-0.2, -0.85);
        punkt(-0.6, 0.25);
        strich(Pfad{}.start(P(-0.25, -0.5)).kurve(P(0.2, -0.45), P(0.6, -0.75), P(0.85, -1.25)).linie(P(-0.2, 1.5)));
        strich(Pfad{}.start(P(-0.65, 0.6)).kurve(P(-0.2, 0.65), P(0.2, 0.35), P(0.4, -0.05)));
        break;
    }
    if (w.punktiert) punkt(1.7, 0);
}

void bogen(std::vector<Element>& el, double x, double y1, double y2, double rx, Farbe f, int32_t note) {
    const double bx = x + rx + 0.2;
    const double wolbung = std::min(2.2, 0.6 + (y2 - y1) * 0.08);
    const double ende = std::min(1.5, (y2 - y1) / 3);
    Pfad p;
    p.farbe = f;
    p.start({bx, y1 + 0.4})
        .kurve({bx + wolbung, y1 + ende}, {bx + wolbung, y2 - ende}, {bx, y2 - 0.4})
        .kurve({bx + wolbung - 0.35, y2 - ende}, {bx + wolbung - 0.35, y1 + ende}, {bx, y1 + 0.4})
        .schliessen();
    el.push_back({p, note});
}

void pfeil(std::vector<Element>& el, Punkt m, double rx, int richtung, int32_t note) {
    const double basis = m.x + richtung * (rx + 0.25), spitze = m.x + richtung * (rx + 1.2);
    el.push_back({Pfad{{}, true, 0, kRot}.start({basis, m.y - 0.7}).linie({spitze, m.y}).linie({basis, m.y + 0.7}).schliessen(), note});
}

double textBreite(const std::string& text, double groesse) {
    // Characters, not bytes; a sans face's letters are about 0.62 of the size wide on average.
    size_t zeichen = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++zeichen;
    return double(zeichen) * 0.62 * groesse * 25.4 / 72;
}

namespace {
constexpr struct {
    int sechzehntel;
    const char* name;
} kLegende[] = {{16, "Ganze"}, {8, "Halbe"}, {4, "Viertel"}, {2, "Achtel"}, {1, "Sechzehntel"}};
constexpr double kLegendeSchrift = 6.5;
} // namespace

double legende(std::vector<Element>& el, double x, double y, Notenform form) {
    const double x0 = x;
    for (const auto& l : kLegende) {
        const Zeichenmass m = notenMass(l.sechzehntel, form);
        notenZeichen(el, {x + m.rx, y - 0.8}, l.sechzehntel, form, kSchwarz, -1);
        x += 2 * m.rx + (form == Notenform::Hals ? 1.6 : 1.0);
        el.push_back({Text{{x, y}, l.name, kLegendeSchrift}});
        x += textBreite(l.name, kLegendeSchrift) + 3.0;
    }
    return x - x0;
}

double legendenBreite(Notenform form) {
    double b = 0;
    for (const auto& l : kLegende)
        b += 2 * notenMass(l.sechzehntel, form).rx + (form == Notenform::Hals ? 1.6 : 1.0) + textBreite(l.name, kLegendeSchrift) + 3.0;
    return b;
}

} // namespace lyrabo::blatt
