#include "blatt/BlattSatz.h"

#include "blatt/Saiten.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <optional>

namespace lyrabo::blatt {

namespace {

// ---- sizes in millimetres ----
constexpr double kKopfRx = 1.35, kKopfRy = 0.95, kKopfWinkel = 20; // note head
constexpr double kHals = 3.2;           // stem, downwards: time runs down the page
constexpr double kZeileMin = 5.5;       // rows closer than this would let stems reach the next heads
constexpr double kTaktMin = 7.0;        // a row that opens a bar leaves room for the bar line
constexpr double kTaktartMin = 9.0;     // ... and for the new time signature above it
constexpr double kLueckeMax = 60.0;     // a long stretch with nothing to play needs no more paper
constexpr double kTaktUeberKopf = 2.3;  // bar line above the heads of the bar's first row
constexpr double kRandSeite = 3.0;      // paper edge to the outermost string, where nothing is in the way
constexpr double kUeberSaite = 3.2;     // what reaches beyond the outermost string: its name, a head, an arrow
constexpr double kRandStreifen = 8.0;   // left edge of a strip: room for the cut line
constexpr double kMusikOben = 31.0;     // first bar line's text may start here
constexpr double kMusikUntenAbstand = 17.0;
constexpr double kKopfText = 1.0;       // bar number above the bar line

constexpr int kMaxTeile = 64;           // tied parts of one note: more is no music
constexpr int kMaxTakte = 32767;
// A sheet longer than this is no sheet to play from: a stray event far behind the music, or hours
// of rests. It becomes one page that says so, decided before any page is drawn, since drawing
// thousands of them takes long.
constexpr int kMaxSeiten = 2000;

const Farbe kSaitenLinie{225, 225, 225};
const Farbe kOktavLinie{190, 205, 240};
const Farbe kTaktLinie{95, 95, 95};
const Farbe kMelodie{150, 150, 150};
const Farbe kLiedText{60, 60, 140};

// Written values in sixteenths, longest first: whole, dotted half, half, dotted quarter,
// quarter, dotted eighth, eighth, sixteenth.
constexpr int kWerte[8] = {16, 12, 8, 6, 4, 3, 2, 1};

struct Wert {
    int basis;      // sixteenths of the undotted value: 16, 8, 4, 2, 1
    bool punktiert;
};
Wert wertVon(int sechzehntel) {
    switch (sechzehntel) {
    case 12: return {8, true};
    case 6: return {4, true};
    case 3: return {2, true};
    default: return {sechzehntel, false};
    }
}

// A length as written values tied together. Times are counted in quarter ticks (ticks x 4), so a
// sixteenth is exactly `tpq` of them whatever the file's resolution.
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

struct NotenTeil {
    int32_t note;      // index in Stueck::noten
    int saite;         // 1..n, where it is drawn
    int richtung;      // -1 below the strings, +1 above, 0 on them
    int sechzehntel;
    int64_t bisU;      // where the next tied part starts, for the tie
    bool weiter;       // another part follows, tied
};
struct PausenTeil {
    int saite;
    int sechzehntel;
};
struct Zeile {
    double y = 0;
    bool taktStart = false;
    int takt = 0;           // 1-based bar number when taktStart
    bool neueTaktart = false;
    bool schluss = false;   // the end of the last bar: a double line
    int leereTakte = 0;     // empty bars that follow this empty one and are not drawn
    std::vector<NotenTeil> noten;
    std::vector<PausenTeil> pausen;
};

std::string zahl(double v, int stellen) {
    char puffer[32];
    std::snprintf(puffer, sizeof puffer, "%.*f", stellen, v);
    std::string s = puffer;
    for (char& c : s)
        if (c == '.') c = ',';
    return s;
}

std::string vorzeichen(int v) { return v > 0 ? "+" + std::to_string(v) : v < 0 ? "\u2212" + std::to_string(-v) : "0"; }

// ---- shapes ----

void kopf(std::vector<Element>& el, Punkt m, bool hohl, Farbe f, int32_t note) {
    Ellipse e;
    e.mitte = m;
    e.rx = hohl ? kKopfRx - 0.1 : kKopfRx;
    e.ry = hohl ? kKopfRy - 0.1 : kKopfRy;
    e.winkel = kKopfWinkel;
    e.gefuellt = !hohl;
    e.staerke = 0.3;
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

void notenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel, Farbe f, int32_t note) {
    const Wert w = wertVon(sechzehntel);
    kopf(el, m, w.basis >= 8, f, note);
    if (w.basis < 16) {
        const double hx = m.x - kKopfRx + 0.15;
        // A sixteenth's stem is longer, so that its second flag stays clear of the head.
        const double laenge = w.basis == 1 ? kHals + 0.7 : kHals;
        el.push_back({Linie{{hx, m.y + 0.25}, {hx, m.y + laenge}, 0.22, f}, note});
        if (w.basis <= 2) fahne(el, {hx, m.y + laenge}, f, note);
        if (w.basis == 1) fahne(el, {hx, m.y + laenge - 0.85}, f, note);
    }
    if (w.punktiert) el.push_back({Ellipse{{m.x + kKopfRx + 0.75, m.y}, 0.38, 0.38, 0, true, 0, f}, note});
}

void pausenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel) {
    const Wert w = wertVon(sechzehntel);
    const Farbe f = kSchwarz;
    const double x = m.x, y = m.y;
    auto strich = [&](Pfad p) {
        p.gefuellt = false;
        p.staerke = 0.42;
        p.farbe = f;
        el.push_back({p});
    };
    auto punkt = [&](double px, double py) { el.push_back({Ellipse{{px, py}, 0.42, 0.42, 0, true, 0, f}}); };
    switch (w.basis) {
    case 16: // whole rest: a block hanging from a line
        el.push_back({Linie{{x - 1.7, y - 0.6}, {x + 1.7, y - 0.6}, 0.22, f}});
        el.push_back({Pfad{{}, true, 0, f}.start({x - 1.1, y - 0.6}).linie({x + 1.1, y - 0.6}).linie({x + 1.1, y + 0.4}).linie({x - 1.1, y + 0.4}).schliessen()});
        break;
    case 8: // half rest: a block sitting on a line
        el.push_back({Linie{{x - 1.7, y + 0.6}, {x + 1.7, y + 0.6}, 0.22, f}});
        el.push_back({Pfad{{}, true, 0, f}.start({x - 1.1, y + 0.6}).linie({x + 1.1, y + 0.6}).linie({x + 1.1, y - 0.4}).linie({x - 1.1, y - 0.4}).schliessen()});
        break;
    case 4: // quarter rest: the zigzag with its hook
        strich(Pfad{}.start({x - 0.45, y - 1.9}).linie({x + 0.5, y - 0.8}).linie({x - 0.4, y + 0.1}).linie({x + 0.5, y + 1.0})
                   .kurve({x - 0.6, y + 0.6}, {x - 0.7, y + 1.5}, {x + 0.1, y + 1.9}));
        break;
    case 2: // eighth rest
        punkt(x - 0.45, y - 0.6);
        strich(Pfad{}.start({x - 0.5, y - 0.25}).kurve({x - 0.1, y - 0.1}, {x + 0.4, y - 0.4}, {x + 0.65, y - 0.9}).linie({x - 0.2, y + 1.4}));
        break;
    default: // sixteenth rest
        punkt(x - 0.2, y - 0.85);
        punkt(x - 0.6, y + 0.25);
        strich(Pfad{}.start({x - 0.25, y - 0.5}).kurve({x + 0.2, y - 0.45}, {x + 0.6, y - 0.75}, {x + 0.85, y - 1.25}).linie({x - 0.2, y + 1.5}));
        strich(Pfad{}.start({x - 0.65, y + 0.6}).kurve({x - 0.2, y + 0.65}, {x + 0.2, y + 0.35}, {x + 0.4, y - 0.05}));
        break;
    }
    if (w.punktiert) punkt(x + 1.7, y);
}

// The tie: a flat bow right of the heads, from one part to the next.
void bogen(std::vector<Element>& el, double x, double y1, double y2, Farbe f, int32_t note) {
    const double bx = x + kKopfRx + 0.2;
    const double wolbung = std::min(2.2, 0.6 + (y2 - y1) * 0.08);
    Pfad p;
    p.farbe = f;
    p.start({bx, y1 + 0.4})
        .kurve({bx + wolbung, y1 + 1.5}, {bx + wolbung, y2 - 1.5}, {bx, y2 - 0.4})
        .kurve({bx + wolbung - 0.35, y2 - 1.5}, {bx + wolbung - 0.35, y1 + 1.5}, {bx, y1 + 0.4})
        .schliessen();
    el.push_back({p, note});
}

void pfeil(std::vector<Element>& el, Punkt m, int richtung, int32_t note) {
    const double basis = m.x + richtung * (kKopfRx + 0.25), spitze = m.x + richtung * (kKopfRx + 1.2);
    el.push_back({Pfad{{}, true, 0, kRot}.start({basis, m.y - 0.7}).linie({spitze, m.y}).linie({basis, m.y + 0.7}).schliessen(), note});
}

// Cuts a line to the stretch lo <= x <= hi; false when nothing of it is left.
bool zuschneiden(Linie& l, double lo, double hi) {
    if (l.a.x > l.b.x) std::swap(l.a, l.b);
    if (l.b.x < lo || l.a.x > hi) return false;
    auto y = [&](double x) { return l.a.x == l.b.x ? l.a.y : l.a.y + (l.b.y - l.a.y) * (x - l.a.x) / (l.b.x - l.a.x); };
    if (l.a.x < lo) l.a = {lo, y(lo)};
    if (l.b.x > hi) l.b = {hi, y(hi)};
    return true;
}

// ---- the piece on one long strip of paper ----

struct Zeitachse {
    std::map<int64_t, Zeile> zeilen; // by quarter ticks
    double ende = 0;                 // y below the last row
};

struct Satz {
    const Stueck& st;
    int64_t tpq;
    int n;
    std::vector<int64_t> taktStart; // quarter ticks, one past the last bar at the end

    explicit Satz(const Stueck& s) : st(s), tpq(std::max<int64_t>(1, s.ticksProViertel)), n(s.saiten == 25 ? 25 : 37) {}

    void takteBilden() {
        int64_t u = 0, letzte = 0;
        for (const auto& n : st.noten) letzte = std::max(letzte, (int64_t(n.start) + std::max<int32_t>(0, n.laenge)) * 4);
        for (const auto& p : st.pausen) letzte = std::max(letzte, (int64_t(p.start) + std::max<int32_t>(0, p.laenge)) * 4);
        int64_t laenge = 16 * tpq;
        taktStart.push_back(0);
        for (const auto& t : st.takte) {
            if (int(taktStart.size()) > kMaxTakte) break;
            if (t.laenge > 0) laenge = int64_t(t.laenge) * 4;
            u += laenge;
            taktStart.push_back(u);
        }
        // Notes past the bar table (a mix longer than the track that gave the bars) get more bars.
        while (u < letzte && int(taktStart.size()) <= kMaxTakte) {
            u += laenge;
            taktStart.push_back(u);
        }
        // Bars after the last note or rest are silence the player need not see; the piece ends
        // with the bar that holds its last sound.
        while (taktStart.size() > 2 && taktStart[taktStart.size() - 2] >= letzte) taktStart.pop_back();
    }

    std::pair<int, int> taktart(int takt) const {
        if (takt >= 1 && takt <= int(st.takte.size())) return {st.takte[size_t(takt - 1)].zaehler, st.takte[size_t(takt - 1)].nenner};
        if (!st.takte.empty()) return {st.takte.back().zaehler, st.takte.back().nenner};
        return {4, 4};
    }

    Zeitachse achse(double mmProViertel) const {
        Zeitachse a;
        auto& z = a.zeilen;
        for (size_t i = 0; i < st.noten.size(); ++i) {
            const Note& no = st.noten[i];
            int saite = saiteVon(no.tonHoehe, st.transpo);
            int richtung = saite < 1 ? -1 : saite > n ? 1 : 0;
            saite = std::clamp(saite, 1, n);
            int64_t u = int64_t(no.start) * 4;
            const auto teile = zerlegen(no.laenge, tpq);
            for (size_t t = 0; t < teile.size(); ++t) {
                const int64_t bis = u + teile[t] * tpq;
                z[u].noten.push_back({int32_t(i), saite, richtung, teile[t], bis, t + 1 < teile.size()});
                u = bis;
            }
        }
        for (const auto& p : st.pausen) {
            const int saite = std::clamp(saiteVon(p.tonHoehe, st.transpo), 1, n);
            int64_t u = int64_t(p.start) * 4;
            for (int teil : zerlegen(p.laenge, tpq)) {
                z[u].pausen.push_back({saite, teil});
                u += teil * tpq;
            }
        }
        // Bar lines; of a run of bars with nothing in them only the first is drawn, with a word on
        // how many follow: hours of silence (or a stray event far behind the music) need no paper.
        size_t leerSeit = SIZE_MAX;
        for (size_t k = 0; k < taktStart.size(); ++k) {
            const bool schluss = k + 1 == taktStart.size();
            const auto inhalt = z.lower_bound(taktStart[k]);
            const bool leer = !schluss && (inhalt == z.end() || inhalt->first >= taktStart[k + 1]);
            if (leer && leerSeit != SIZE_MAX) {
                ++z[taktStart[leerSeit]].leereTakte;
                continue;
            }
            leerSeit = leer ? k : SIZE_MAX;
            Zeile& r = z[taktStart[k]];
            r.taktStart = true;
            r.takt = int(k) + 1;
            r.schluss = schluss;
            r.neueTaktart = !r.schluss && (k == 0 || taktart(int(k)) != taktart(int(k) + 1));
        }
        const double mmProU = mmProViertel / double(4 * tpq);
        double y = 0;
        int64_t vorher = 0;
        bool erste = true;
        for (auto& [u, r] : z) {
            const bool belegt = !r.noten.empty() || !r.pausen.empty();
            double mindest = belegt ? kZeileMin : 3.5;
            if (r.taktStart) mindest = r.neueTaktart ? kTaktartMin : kTaktMin;
            if (erste) y = mindest;
            else y += std::max(std::min(double(u - vorher) * mmProU, kLueckeMax), mindest);
            r.y = y;
            vorher = u;
            erste = false;
        }
        a.ende = y + kHals + 0.7 + 2.0;
        return a;
    }
};

// Where a page of the long strip begins: a bar line, or a row when one bar is taller than a page.
struct Seitenanfang {
    int64_t u;
    double oben; // y on the long strip of the first thing drawn
};

std::vector<Seitenanfang> seitenTeilen(const Zeitachse& a, double hoehe) {
    std::vector<Seitenanfang> stellen, zeilen;
    for (const auto& [u, r] : a.zeilen) {
        const double oben = r.y - (r.taktStart ? kTaktUeberKopf + kKopfText + 2.4 : kKopfRy + 1.0);
        if (r.taktStart) stellen.push_back({u, oben});
        zeilen.push_back({u, oben});
    }
    std::vector<Seitenanfang> seiten;
    if (zeilen.empty()) return seiten;
    Seitenanfang anfang = zeilen.front();
    seiten.push_back(anfang);
    size_t iTakt = 0, iZeile = 0;
    while (true) {
        if (a.ende - anfang.oben <= hoehe) break;
        // The last bar line that still fits; failing that, the last row.
        std::optional<Seitenanfang> naechste;
        while (iTakt < stellen.size() && stellen[iTakt].oben - anfang.oben <= hoehe) {
            if (stellen[iTakt].u > anfang.u) naechste = stellen[iTakt];
            ++iTakt;
        }
        if (!naechste) {
            while (iZeile < zeilen.size() && zeilen[iZeile].oben - anfang.oben <= hoehe) {
                if (zeilen[iZeile].u > anfang.u) naechste = zeilen[iZeile];
                ++iZeile;
            }
        }
        if (!naechste) {
            auto it = std::upper_bound(zeilen.begin(), zeilen.end(), anfang.u, [](int64_t u, const Seitenanfang& s) { return u < s.u; });
            if (it == zeilen.end()) break;
            naechste = *it;
        }
        anfang = *naechste;
        seiten.push_back(anfang);
        while (iTakt < stellen.size() && stellen[iTakt].u <= anfang.u) ++iTakt;
        while (iZeile < zeilen.size() && zeilen[iZeile].u <= anfang.u) ++iZeile;
    }
    return seiten;
}

// The strings of each strip: all on one page when the paper is wide enough, else balanced strips
// that share their border string.
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

double hoeheNoetig(const Satz& satz, double mmProViertel) {
    const Zeitachse a = satz.achse(mmProViertel);
    return a.zeilen.empty() ? 0 : a.ende - (a.zeilen.begin()->second.y - kTaktUeberKopf - kKopfText - 2.4);
}

} // namespace

Blatt setzen(const Stueck& stueck, const Einstellungen& einstellungen) {
    const Einstellungen e = begrenzt(einstellungen);
    const Format format = papierFormat(e);
    Satz satz(stueck);
    satz.takteBilden();
    const int n = satz.n;
    // What a printer cannot reach moves everything inwards: the strings and the top and bottom.
    const double seitenRand = e.druckRand > 0 ? std::max(kRandSeite, e.druckRand + kUeberSaite) : kRandSeite;
    const double streifenLinks = std::max(kRandStreifen, e.druckRand + e.saitenAbstand / 2 + 0.5);
    const double dy = std::max(0.0, e.druckRand - 2.0);
    const double musikOben = kMusikOben + dy, musikUnten = format.hoehe - kMusikUntenAbstand - dy;
    const double musikHoehe = musikUnten - musikOben;

    double mmProViertel = e.mmProViertel;
    if (e.aufEineSeite && hoeheNoetig(satz, mmProViertel) > musikHoehe && hoeheNoetig(satz, Einstellungen::kMinProViertel) <= musikHoehe) {
        double unten = Einstellungen::kMinProViertel, oben = mmProViertel;
        for (int i = 0; i < 24; ++i) {
            const double mitte = (unten + oben) / 2;
            (hoeheNoetig(satz, mitte) <= musikHoehe ? unten : oben) = mitte;
        }
        mmProViertel = unten;
    }
    const Zeitachse achse = satz.achse(mmProViertel);
    const auto seitenAnfaenge = seitenTeilen(achse, musikHoehe);
    const auto streifen = streifenTeilen(n, e.saitenAbstand, format.breite, seitenRand, streifenLinks);

    Blatt blatt;
    // Notes beside the strings, and the smallest shift that would bring them all onto them.
    int tief = 1000, hoch = -1000;
    for (const auto& no : stueck.noten) {
        const int s = saiteVon(no.tonHoehe, stueck.transpo);
        tief = std::min(tief, s);
        hoch = std::max(hoch, s);
        if (s < 1 || s > n) ++blatt.ausserhalb;
    }
    if (blatt.ausserhalb > 0 && hoch - tief <= n - 1) {
        const int vonS = 1 - tief, bisS = n - hoch;
        const int schritt = vonS > 0 ? vonS : bisS;
        blatt.transpoVorschlag = true;
        blatt.vorschlag = int16_t(stueck.transpo + schritt);
    }

    const int seitenGesamt = int(std::max<size_t>(1, seitenAnfaenge.size()) * streifen.size());
    if (seitenGesamt > kMaxSeiten) {
        Blatt zuLang;
        zuLang.hinweis = "Das Notenblatt hätte " + std::to_string(seitenGesamt) + " Seiten; mehr als " +
                         std::to_string(kMaxSeiten) + " Seiten legt Lyrabo nicht an.";
        Seite seite;
        seite.breite = format.breite;
        seite.hoehe = format.hoehe;
        const double x = seitenRand + 10;
        seite.elemente.push_back({Text{{x, musikOben}, stueck.titel, 14, Ausrichtung::Links, true}});
        seite.elemente.push_back({Text{{x, musikOben + 12}, zuLang.hinweis, 12}});
        seite.elemente.push_back({Text{{x, musikOben + 19}, "Liegt ein Ereignis der MIDI-Datei weit hinter der Musik?", 12}});
        zuLang.seiten.push_back(std::move(seite));
        return zuLang;
    }
    const int tempo = stueck.tempo > 0 ? int(std::lround(60000000.0 / stueck.tempo)) : 120;
    int seitenNr = 0;
    const size_t vertikal = std::max<size_t>(1, seitenAnfaenge.size());
    for (size_t v = 0; v < vertikal; ++v) {
        const int64_t vonU = seitenAnfaenge.empty() ? 0 : seitenAnfaenge[v].u;
        const int64_t bisU = v + 1 < seitenAnfaenge.size() ? seitenAnfaenge[v + 1].u : INT64_MAX;
        const double versatz = (seitenAnfaenge.empty() ? 0 : seitenAnfaenge[v].oben) - musikOben;
        auto zeilenVon = achse.zeilen.lower_bound(vonU);
        auto zeilenBis = achse.zeilen.lower_bound(bisU);
        const int ersterTakt = int(std::upper_bound(satz.taktStart.begin(), satz.taktStart.end(), vonU) - satz.taktStart.begin());

        for (size_t si = 0; si < streifen.size(); ++si) {
            // Plain names, not a structured binding: clang before 16 cannot capture those in lambdas.
            const int a = streifen[si].first, b = streifen[si].second;
            ++seitenNr;
            Seite seite;
            seite.breite = format.breite;
            seite.hoehe = format.hoehe;
            seite.streifen = int(si) + 1;
            seite.vonTick = int32_t(std::min<int64_t>(vonU / 4, INT32_MAX));
            seite.bisTick = int32_t(std::min<int64_t>(bisU == INT64_MAX ? (satz.taktStart.back() / 4) : bisU / 4, INT32_MAX));
            const double x0 = streifen.size() == 1 ? (format.breite - (n - 1) * e.saitenAbstand) / 2 : streifenLinks;
            auto xVon = [&](int saite) { return x0 + (saite - a) * e.saitenAbstand; };
            auto& el = seite.elemente;
            const double xl = xVon(a), xr = xVon(b);

            // Header: title, tempo, time signature, transposition, page, and what lies off the strings.
            el.push_back({Text{{xl, 13 + dy}, stueck.titel, 12, Ausrichtung::Links, true}});
            std::string seitenText = "Seite " + std::to_string(seitenNr) + " von " + std::to_string(seitenGesamt);
            if (streifen.size() > 1) seitenText += " \u00b7 Streifen " + std::to_string(si + 1) + " von " + std::to_string(streifen.size());
            el.push_back({Text{{xr, 13 + dy}, seitenText, 9, Ausrichtung::Rechts}});
            const auto [zaehler, nenner] = satz.taktart(ersterTakt);
            std::string info = "Tempo \u2669 = " + std::to_string(tempo) + "   Taktart " + std::to_string(zaehler) + "/" +
                               std::to_string(nenner) + "   " + std::to_string(n) + " Saiten, Abstand " + zahl(e.saitenAbstand, 1) + " mm";
            if (stueck.transpo != 0) info += "   Transposition " + vorzeichen(stueck.transpo);
            el.push_back({Text{{xl, 18.5 + dy}, info, 8}});
            if (blatt.ausserhalb > 0) {
                std::string warnung = std::to_string(blatt.ausserhalb) +
                                      (blatt.ausserhalb == 1 ? " Note liegt" : " Noten liegen") + " neben den Saiten (rot, Pfeil nach außen). ";
                warnung += blatt.transpoVorschlag ? "Mit Transposition " + vorzeichen(blatt.vorschlag) + " passen alle."
                                                  : "Keine Transposition bringt alle auf die Saiten.";
                el.push_back({Text{{xl, 23 + dy}, warnung, 8, Ausrichtung::Links, true, kRot}});
            }

            // Strings: faint guide lines, the names above the music, marks at the paper's edges.
            for (int k = a; k <= b; ++k) {
                const double x = xVon(k);
                const bool oktave = (k - 1) % 12 == 0;
                el.push_back({Linie{{x, musikOben}, {x, musikUnten}, oktave ? 0.25 : 0.15, oktave ? kOktavLinie : kSaitenLinie}});
                el.push_back({Text{{x, 28 + dy}, saitenName(54 + k), oktave ? 7.0 : 6.5, Ausrichtung::Mitte, oktave}});
                el.push_back({Linie{{x, 2.5 + dy}, {x, 7.0 + dy}, oktave ? 0.4 : 0.25, kSchwarz}});
                el.push_back({Linie{{x, format.hoehe - 7.0 - dy}, {x, format.hoehe - 2.5 - dy}, oktave ? 0.4 : 0.25, kSchwarz}});
            }
            // Cut and glue marks between strips.
            if (a > 1) {
                const double xs = xl - e.saitenAbstand / 2;
                el.push_back({Linie{{xs, 2.5 + dy}, {xs, format.hoehe - 2.5 - dy}, 0.2, kGrau, true}});
                el.push_back({Text{{xs + 0.8, musikUnten + 3.5}, "\u2702 hier schneiden", 6, Ausrichtung::Links, false, kGrau}});
            }
            if (b < n) {
                const double xk = xr - e.saitenAbstand / 2;
                el.push_back({Linie{{xk, musikOben}, {xk, musikUnten}, 0.2, kBlau, true}});
                el.push_back({Text{{xk - 0.8, musikUnten + 3.5}, "Streifen " + std::to_string(si + 2) + " bis hier auflegen \u2192", 6,
                                   Ausrichtung::Rechts, false, kBlau}});
            }
            // A 100 mm bar to check that the printer did not scale.
            const double yMass = format.hoehe - 10.5 - dy;
            el.push_back({Linie{{xl, yMass}, {xl + 100, yMass}, 0.3, kSchwarz}});
            for (int mm = 0; mm <= 100; mm += 10) el.push_back({Linie{{xl + mm, yMass - (mm % 50 ? 0.8 : 1.5)}, {xl + mm, yMass}, 0.2, kSchwarz}});
            el.push_back({Text{{xl + 102, yMass + 0.8}, "100 mm: so lang muss diese Linie gedruckt sein (Druck auf 100 %)", 6.5}});

            auto yVon = [&](double y) { return y - versatz; };
            auto sichtbar = [&](int saite) { return saite >= a && saite <= b; };

            // Melody line, behind everything.
            if (e.melodieLinie) {
                std::optional<Punkt> vorige;
                for (auto it = zeilenVon; it != zeilenBis; ++it) {
                    for (const auto& t : it->second.noten) {
                        if (!stueck.noten[size_t(t.note)].melodie || int64_t(stueck.noten[size_t(t.note)].start) * 4 != it->first) continue;
                        const Punkt p{xVon(t.saite), yVon(it->second.y)};
                        // On a strip the line ends at the strip's edge and goes on on its neighbour.
                        if (vorige) {
                            // From below the head's right half, clear of the stem and its flags.
                            Linie l{{vorige->x + 0.6, vorige->y + kKopfRy}, {p.x, p.y - kKopfRy - 0.3}, 0.2, kMelodie};
                            if (zuschneiden(l, a > 1 ? xl - e.saitenAbstand / 2 : 0, b < n ? xr + e.saitenAbstand / 2 : format.breite))
                                el.push_back({l});
                        }
                        vorige = p;
                        break;
                    }
                }
            }

            for (auto it = zeilenVon; it != zeilenBis; ++it) {
                const Zeile& r = it->second;
                const double y = yVon(r.y);
                seite.zeit.push_back({int32_t(std::min<int64_t>(it->first / 4, INT32_MAX)), y});
                if (r.taktStart) {
                    const double yt = y - kTaktUeberKopf;
                    el.push_back({Linie{{xl - 1.8, yt}, {xr + 1.8, yt}, 0.25, kTaktLinie}});
                    if (r.schluss) el.push_back({Linie{{xl - 1.8, yt + 0.8}, {xr + 1.8, yt + 0.8}, 0.7, kSchwarz}});
                    // The bar number stands in the margin where there is one, else just inside.
                    const bool imRand = xl - 2.8 >= e.druckRand + 1.0;
                    if (si == 0 && !r.schluss)
                        el.push_back({Text{{imRand ? xl - 2.6 : xl + 0.7, yt - kKopfText}, std::to_string(r.takt), 5.5, Ausrichtung::Links, false, kGrau}});
                    if (r.leereTakte > 0 && si == 0)
                        el.push_back({Text{{xl + 12, yt + 4.0}, "Takt " + std::to_string(r.takt) + " bis " + std::to_string(r.takt + r.leereTakte) +
                                               ": nichts zu spielen", 7, Ausrichtung::Links, false, kGrau}});
                    if (r.neueTaktart) {
                        const auto [z, nn] = satz.taktart(r.takt);
                        el.push_back({Text{{imRand ? xl + 2.2 : xl + 4.4, yt - kKopfText}, std::to_string(z) + "/" + std::to_string(nn), 8, Ausrichtung::Links, true}});
                    }
                }
                // Chord line: the notes that start here, joined across their strings.
                int links = 1000, rechts = -1000;
                for (const auto& t : r.noten) {
                    if (int64_t(stueck.noten[size_t(t.note)].start) * 4 != it->first) continue;
                    links = std::min(links, t.saite);
                    rechts = std::max(rechts, t.saite);
                }
                const int cl = std::max(links, a), cr = std::min(rechts, b);
                if (rechts > links && cr > cl) el.push_back({Linie{{xVon(cl), y}, {xVon(cr), y}, 0.3, kSchwarz}});

                for (const auto& t : r.noten) {
                    if (!sichtbar(t.saite)) continue;
                    const Farbe f = t.richtung != 0 ? kRot : kSchwarz;
                    const Punkt m{xVon(t.saite), y};
                    notenZeichen(el, m, t.sechzehntel, f, t.note);
                    if (t.richtung != 0) pfeil(el, m, t.richtung, t.note);
                    const Note& no = stueck.noten[size_t(t.note)];
                    if (e.notenTexte && !no.text.empty() && int64_t(no.start) * 4 == it->first)
                        el.push_back({Text{{m.x + kKopfRx + 2.0, y + 1.0}, no.text, 6, Ausrichtung::Links, false, kLiedText}});
                    if (t.weiter) {
                        auto ziel = achse.zeilen.find(t.bisU);
                        const double y2 = ziel == achse.zeilen.end() || t.bisU >= bisU ? musikUnten + 2 : yVon(ziel->second.y);
                        bogen(el, m.x, y, y2, f, t.note);
                    }
                }
                for (const auto& p : r.pausen)
                    if (sichtbar(p.saite)) pausenZeichen(el, {xVon(p.saite), y}, p.sechzehntel);
            }
            // Ties that come in from the page before: a tied part is at most a whole note long.
            for (auto it = zeilenVon; it != achse.zeilen.begin();) {
                --it;
                if (it->first < vonU - 16 * satz.tpq) break;
                for (const auto& t : it->second.noten) {
                    if (!t.weiter || t.bisU < vonU || t.bisU >= bisU || !sichtbar(t.saite)) continue;
                    auto ziel = achse.zeilen.find(t.bisU);
                    if (ziel != achse.zeilen.end()) bogen(el, xVon(t.saite), musikOben - 2, yVon(ziel->second.y), t.richtung ? kRot : kSchwarz, t.note);
                }
            }
            blatt.seiten.push_back(std::move(seite));
        }
    }
    return blatt;
}

} // namespace lyrabo::blatt
