#pragma once
// What the note sheet is laid out from: the converted piece as plain values, copied out of the
// program's collections so that the layout never touches (or changes) the conversion's records.
#include <cstdint>
#include <string>
#include <vector>

namespace lyrabo::blatt {

struct Note {
    int32_t start = 0;   // ticks from the start of the piece
    int32_t laenge = 0;  // ticks, as the conversion wrote them (may have no written value)
    int16_t tonHoehe = 0; // MIDI note number before transposition
    int16_t akkordNr = 0; // notes with the same number start together
    std::string text;     // lyric carried by the note (UTF-8), may be empty
    bool melodie = false; // the chord's melody note, joined to the next one by the melody line
};

struct Pause {
    int32_t start = 0;
    int32_t laenge = 0;
    int16_t tonHoehe = 0; // the pitch the conversion stored with the rest: its column
};

struct Takt {
    int32_t laenge = 0; // ticks
    int16_t zaehler = 4;
    int16_t nenner = 4;
};

struct Stueck {
    std::string titel;             // the name of the piece (blattTitel), UTF-8
    int32_t ticksProViertel = 480;
    int32_t tempo = 500000;        // microseconds per quarter note at the start
    int16_t transpo = 0;           // semitones added to every pitch
    int16_t saiten = 37;           // 25 or 37
    std::vector<Takt> takte;       // bar 1 first
    std::vector<Note> noten;       // by start time
    std::vector<Pause> pausen;     // by start time
};

// Column of a sounding pitch on the harp: MIDI note 55 is string 1.
inline int saiteVon(int tonHoehe, int transpo) { return tonHoehe + transpo - 54; }

} // namespace lyrabo::blatt
