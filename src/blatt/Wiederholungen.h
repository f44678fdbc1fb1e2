#pragma once
// Repeats: a MIDI file plays every repeat out, the sheet writes it once. Finds runs of whole bars
// that are played again note for note, and says which bars are written, where the repeat signs and
// the first and second endings go, and which written bar plays each bar of the piece.
#include "blatt/BlattStueck.h"

#include <cstdint>
#include <vector>

namespace lyrabo::blatt {

// One repeat, in written bars: from `anfang` up to (not including) `ende`, played `mal` times.
// With endings the run is X, the first ending (`ersteKlammer` bars), the second ending
// (`zweiteKlammer` bars): X and the first ending are played, then X again and the second ending.
// The end sign stands after the first ending. A second ending of no bars: the piece ends after X.
struct Wiederholung {
    int anfang = 0;
    int ende = 0;
    int mal = 2;
    int ersteKlammer = 0; // 0: no endings; else 1 or 2 bars (then mal is 2)
    int zweiteKlammer = 0;

    int endeZeichen() const { return ende - zweiteKlammer; } // the end sign follows the bar before this one
};

struct Faltung {
    std::vector<int> takte;                   // the written bars: the bar of the piece (0-based) each shows, as first played
    std::vector<Wiederholung> wiederholungen; // by `anfang`, none inside another
    std::vector<int> gespieltVon;             // per bar of the piece: the written bar that plays it
    std::vector<int64_t> taktAnfang;          // ticks where the piece's bars start, one past the last bar at the end
    std::vector<int64_t> geschriebenAnfang;   // the same for the written bars

    bool gefaltet() const { return !wiederholungen.empty(); }
    // Every bar of the piece that written bar `w` plays, in playing order: first pass, second, ...
    std::vector<int> gespielteTakte(int w) const;
};

// The bars of the piece as the sheet counts them: the bar table's lengths (a bar without a length
// has the one before it), more bars of the last length while notes go on, none after the last sound.
std::vector<int64_t> taktAnfaenge(const Stueck& stueck);

// Finds the repeats. With `mitTexten` a note's lyric belongs to what must be equal (verses sung to
// the same tune stay written out); without it only notes and rests count.
Faltung wiederholungenFinden(const Stueck& stueck, bool mitTexten);

// The written bars in playing order, read from the repeat signs alone: each run as many times as
// marked, with its endings. Entry i is the written bar that plays bar i of the piece.
std::vector<int> spielfolge(const Faltung& faltung);

// The piece as written: only the written bars, one after the other, with their notes and rests.
// Without repeats it is the piece itself.
Stueck geschrieben(const Stueck& stueck, const Faltung& faltung);

// The written piece played through by its repeat signs: the bars of the piece again.
Stueck ausgeklappt(const Stueck& geschrieben, const Faltung& faltung);

// Where a tick of the played piece is on the written sheet.
int64_t geschriebenerTick(const Faltung& faltung, int64_t tick);

} // namespace lyrabo::blatt
