#pragma once
// The row model of the note sheet: every moment at which something starts (a note, a tied part,
// a rest, a bar) is one row. The later stages give each row its room, its page and its y.
#include "blatt/BlattStueck.h"
#include "blatt/Wiederholungszeichen.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace lyrabo::blatt {

// Written values in sixteenths: 16, 12, 8, 6, 4, 3, 2, 1 (whole down to sixteenth, dotted between).
struct Wert {
    int basis;      // sixteenths of the undotted value: 16, 8, 4, 2, 1
    bool punktiert;
};
Wert wertVon(int sechzehntel);

// A length in ticks as written values tied together, longest first; at least one sixteenth.
std::vector<int> zerlegen(int64_t laenge, int64_t tpq);

struct NotenTeil {
    int32_t note;      // index in Stueck::noten
    int saite;         // 1..n, where it is drawn
    int richtung;      // -1 below the strings, +1 above, 0 on them
    int sechzehntel;
    int64_t bisU;      // where the next tied part starts, for the tie
    bool weiter;       // another part follows, tied
    bool anfang;       // the note itself starts here (not a tied continuation)
    bool textLinks = false; // its lyric stands left of the head: the melody line leaves to the right
};
struct PausenTeil {
    int saite;
    int sechzehntel;
};

struct Zeile {
    int64_t u = 0;          // time in quarter ticks (ticks x 4): a sixteenth is `tpq` of them
    bool taktStart = false;
    int takt = 0;           // 1-based bar number when taktStart
    bool neueTaktart = false;
    bool schluss = false;   // the end of the last bar: a double line
    int leereTakte = 0;     // empty bars that follow this empty one and are not drawn
    std::vector<NotenTeil> noten;
    std::vector<PausenTeil> pausen;
    // Set by the fitting:
    int seite = 0;          // vertical page, 0 first
    double y = 0;           // mm from the page's top edge
    double taktRaum = 0;    // room added above this row for its bar line
};

struct Zeilen {
    int64_t tpq = 480;
    int saiten = 37;
    std::vector<int64_t> taktStart;   // quarter ticks, one past the last bar at the end
    std::vector<std::pair<int, int>> taktarten; // per bar of the piece's table
    std::vector<Zeile> zeilen;        // by time
    std::vector<Taktzeichen> zeichen; // per bar and the final bar line: number and repeat signs (empty: the count)

    std::pair<int, int> taktart(int takt) const;
    // The first row at or after u.
    size_t zeileAb(int64_t u) const;
};

// The signs at the bar line above row i, or null when it starts no bar (or there are none).
inline const Taktzeichen* zeichenUeber(const Zeilen& z, size_t i) {
    const Zeile& r = z.zeilen[i];
    return r.taktStart && r.takt >= 1 && size_t(r.takt) <= z.zeichen.size() ? &z.zeichen[size_t(r.takt - 1)] : nullptr;
}

// Rows from the piece: notes split into tied written values, rests, bar lines; a run of empty bars
// is one row with a word on how many follow.
Zeilen zeilenBilden(const Stueck& stueck);

} // namespace lyrabo::blatt
