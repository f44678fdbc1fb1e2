#pragma once
// Bar arithmetic over the settings' list of bar lengths (MFITaktLaengen, bar k at position k).
#include "settings/CEinstellungen.h"

#include <cstdint>

namespace lyrabo {

// The 1-based bar in which tick t lies; 0 for a negative t or one at or past the end of the last bar.
int16_t getTaktNrFromABSStartZeit(CEinstellungen& e, int32_t t);

// Start tick of bar k: the sum of the lengths of bars 1 to k-1 (0 for k <= 1).
// A bar past the end is an IndexFehler of the lookup.
int32_t TaktStartVon(CEinstellungen& e, int16_t k);

// "Create Harfe-Spur", one separator, a path ending in ".mid": the trimmed path, else "".
std::string KommandoAusZwischenablage(const std::string& zwischenablage);

} // namespace lyrabo
