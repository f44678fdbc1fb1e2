#pragma once
// Spacing by what the eye needs: the room after a row grows with the time to the next row, each
// doubling of the time by the same step (a whole note gets about three times a sixteenth's room).
// Below the natural room lies the collision minimum: heads on one string at least 1 mm of paper
// apart, every row below the one before, lyrics clear of heads and of each other.
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattStueck.h"
#include "blatt/Zeilen.h"

#include <vector>

namespace lyrabo::blatt {

inline constexpr double kSechzehntelRaum = 3.4; // natural room after a sixteenth, mm
inline constexpr double kTaktZugabe = 1.0;      // what a bar line adds at least
inline constexpr double kKopfLuft = 1.0;        // paper between two heads on one string

// `mmProViertel` scales it: at the default of 6 mm a quarter note gets 6.8 mm, a sixteenth 3.4 mm.
double natuerlicherAbstand(int64_t dauerU, int64_t tpq, double mmProViertel = 6.0);

struct Abstaende {
    // Per row: how far its signs reach above and below its y.
    std::vector<double> oben, unten;
    // Per gap (row i to row i + 1): the time, the natural room and the least room.
    std::vector<int64_t> dauer;
    std::vector<double> natuerlich, mindest;
};

Abstaende abstaendeBestimmen(const Zeilen& zeilen, const Stueck& stueck, const Einstellungen& e);

// Where a lyric stands beside its head: right of the head (and of its dot), baseline a little below.
inline constexpr double kLiedTextGrundlinie = 0.9, kLiedTextGroesse = 6;
double liedTextVersatz(int sechzehntel, Notenform form);

} // namespace lyrabo::blatt
