#pragma once
// A copy of a loaded file at another resolution (ticks per quarter note), for a conversion that
// counts note values at one fixed resolution whatever the file was written at.
#include "midi/Midifile.h"

#include <cstdint>

namespace lyrabo {

// The resolution the conversion counts in when it reads a file exactly.
inline constexpr uint16_t kUmrechnungsTicks = 480;

// Every event keeps its place in its track; its absolute time becomes the nearest tick of the new
// resolution (halves round up) and the delta times are taken again from those, so rounding never
// adds up along a track. Throws UeberlaufFehler when a time no longer fits the reader's 32 bits.
MidiDateiInhalt aufAufloesung(const MidiDateiInhalt& inhalt, uint16_t ticksProViertel);

// The same for a single tick of the file, as the rescaled copy has it.
int64_t tickAufAufloesung(int64_t tick, uint16_t vonTicks, uint16_t aufTicks);

} // namespace lyrabo
