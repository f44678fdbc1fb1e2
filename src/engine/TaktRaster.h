#pragma once
// The bar table of the settings prepared for many lookups in one stage: the start of every bar
// summed once, so finding the bar of a tick is a binary search instead of a walk from bar 1.
// Results and errors are those of getTaktNrFromABSStartZeit and TaktStartVon.
#include "settings/CEinstellungen.h"

#include <cstdint>
#include <vector>

namespace lyrabo {

class CTaktRaster {
public:
    explicit CTaktRaster(CEinstellungen& einstellungen);

    // The 1-based bar in which tick t lies; 0 before tick 0 and at or past the end of the last bar.
    int16_t taktNr(int32_t t) const;
    // Start tick of bar k (0 for k <= 1); a bar past the end is an IndexFehler.
    int32_t taktStart(int16_t k) const;
    // Length of bar k; a bar that does not exist (also 0) is an IndexFehler.
    int32_t taktLaenge(int16_t k) const;
    // Tick at which bar k ends: its start plus its length.
    int32_t taktEnde(int16_t k) const;

private:
    CEinstellungen& m_einstellungen;
    // Sums of the bar lengths: m_starts[k] is the start of bar k + 1. Empty when the table holds a
    // bar of length 0 or less or too many bars for a 16-bit number: then every lookup walks the
    // table as the plain functions do.
    std::vector<int32_t> m_starts;
    std::vector<int32_t> m_laengen;
    bool m_schnell = false;
};

} // namespace lyrabo
