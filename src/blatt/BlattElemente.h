#pragma once
// The drawing elements a laid-out sheet is made of, in millimetres from the top left corner of
// the page. A painter only draws these; every position is decided by the layout.
#include "blatt/Wiederholungen.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace lyrabo::blatt {

struct Punkt {
    double x = 0, y = 0;
};

struct Farbe {
    uint8_t r = 0, g = 0, b = 0;
    bool operator==(const Farbe&) const = default;
};
inline constexpr Farbe kSchwarz{0, 0, 0};
inline constexpr Farbe kGrau{120, 120, 120};
inline constexpr Farbe kHellgrau{185, 185, 185};
inline constexpr Farbe kRot{210, 0, 0};
inline constexpr Farbe kBlau{40, 70, 200};

struct Linie {
    Punkt a, b;
    double staerke = 0.2; // mm
    Farbe farbe = kSchwarz;
    bool gestrichelt = false;
};

// An ellipse, e.g. a note head, turned by `winkel` degrees (counter-clockwise on the page).
struct Ellipse {
    Punkt mitte;
    double rx = 1, ry = 1;
    double winkel = 0;
    bool gefuellt = true;
    double staerke = 0.2; // outline when not filled
    Farbe farbe = kSchwarz;
};

// A closed or open outline of straight and cubic pieces: flags, rests, ties, arrows.
struct Pfad {
    enum class Art : uint8_t { Start, Linie, Kurve, Schliessen };
    struct Schritt {
        Art art = Art::Start;
        Punkt p, c1, c2; // Kurve: control points c1, c2 and end point p
    };
    std::vector<Schritt> schritte;
    bool gefuellt = true;
    double staerke = 0.2;
    Farbe farbe = kSchwarz;

    Pfad& start(Punkt p) { schritte.push_back({Art::Start, p, {}, {}}); return *this; }
    Pfad& linie(Punkt p) { schritte.push_back({Art::Linie, p, {}, {}}); return *this; }
    Pfad& kurve(Punkt c1, Punkt c2, Punkt p) { schritte.push_back({Art::Kurve, p, c1, c2}); return *this; }
    Pfad& schliessen() { schritte.push_back({Art::Schliessen, {}, {}, {}}); return *this; }
};

enum class Ausrichtung : uint8_t { Links, Mitte, Rechts };

// Text set on its baseline at `ort`; `groesse` in points.
struct Text {
    Punkt ort;
    std::string text; // UTF-8
    double groesse = 8;
    Ausrichtung ausrichtung = Ausrichtung::Links;
    bool fett = false;
    Farbe farbe = kSchwarz;
};

struct Element {
    std::variant<Linie, Ellipse, Pfad, Text> form;
    // Index of the note in Stueck::noten this element draws (head, stem, flag, dot, tie), else -1:
    // lets a view light up the notes that sound.
    int32_t note = -1;
};

// Where time runs on a page: the tick at the top of a stretch and the y it sits at.
struct Zeitmarke {
    int32_t tick = 0;
    double y = 0;
    double taktRaum = 0; // room above this row that its bar line adds (0 within a bar)
};

struct Seite {
    double breite = 0, hoehe = 0;  // mm, as the page lies
    int streifen = 1;              // vertical strip (1 = leftmost) when the strings are cut apart
    int32_t vonTick = 0, bisTick = 0;
    std::vector<Zeitmarke> zeit;   // increasing in tick and y
    std::vector<Element> elemente;
};

struct Blatt {
    std::vector<Seite> seiten;
    int ausserhalb = 0;           // notes that lie beside the strings
    bool transpoVorschlag = false;
    int16_t vorschlag = 0;        // transposition that would bring every note onto the strings
    std::string hinweis;          // why the sheet holds no music (German), empty when it does
    Faltung faltung;              // the repeats written once: the drawn notes and ticks are those of the written piece
};

} // namespace lyrabo::blatt
