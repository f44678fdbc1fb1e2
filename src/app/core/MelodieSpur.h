#pragma once
// Which track most likely carries the melody. The guess reads the loaded file's tracks as plain
// data (not through the reader's cursor), so that it changes nothing the program is looking at.
#include "midi/Midifile.h"

#include <cstdint>
#include <vector>

namespace lyrabo {

// What the guess looks at in one track. Drum notes (channel 10) are no notes here.
struct SpurMerkmale {
    int16_t spur = 0;       // 1-based
    int32_t noten = 0;      // Note On with a velocity
    int32_t allein = 0;     // notes that start without another note of the track
    int32_t aufSaiten = 0;  // notes on the harp's strings at the given transposition
    double mittlereHoehe = 0;

    bool meistEinzeln() const { return allein * 4 >= noten * 3; }  // three of four notes alone
    bool meistAufSaiten() const { return aufSaiten * 2 > noten; }   // more than half
};

// The tracks that hold notes, in file order.
std::vector<SpurMerkmale> spurMerkmale(const MidiDateiInhalt& inhalt, int transpo, int saiten);

// The melody track: first the tracks that play mostly one note at a time, then those with most
// of their notes on the strings, then the highest mean pitch, where less than kGleicheHoehe apart
// counts as equal and the track with more notes wins; the lower number when all is equal.
// 0 when no track has notes.
inline constexpr double kGleicheHoehe = 2.0;
int16_t melodieSpur(const std::vector<SpurMerkmale>& merkmale);
int16_t melodieSpur(const MidiDateiInhalt& inhalt, int transpo, int saiten);

// The rule in one sentence, for the help and the tool tip.
extern const char* const kMelodieRegel;

} // namespace lyrabo
