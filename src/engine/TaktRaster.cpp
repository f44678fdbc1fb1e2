#include "engine/TaktRaster.h"

#include "model/Zahlen.h"
#include "settings/Takte.h"

#include <algorithm>

namespace lyrabo {

CTaktRaster::CTaktRaster(CEinstellungen& einstellungen) : m_einstellungen(einstellungen) {
    const auto& laengen = einstellungen.MFITaktLaengen();
    if (laengen->Count() > INT16_MAX) return;
    m_laengen.reserve(static_cast<size_t>(laengen->Count()));
    m_starts.reserve(static_cast<size_t>(laengen->Count()) + 1);
    int64_t summe = 0;
    m_starts.push_back(0);
    for (const auto& l : *laengen) {
        // Lengths that do not grow the sum would break the binary search.
        if (l->Value() <= 0) {
            m_starts.clear();
            m_laengen.clear();
            return;
        }
        summe += l->Value(); // at most 32767 bars of 32767 ticks: no 32-bit overflow
        m_laengen.push_back(l->Value());
        m_starts.push_back(static_cast<int32_t>(summe));
    }
    m_schnell = true;
}

int16_t CTaktRaster::taktNr(int32_t t) const {
    if (!m_schnell) return getTaktNrFromABSStartZeit(m_einstellungen, t);
    if (t < 0 || t >= m_starts.back()) return 0;
    // First bar whose end lies after t.
    auto it = std::upper_bound(m_starts.begin() + 1, m_starts.end(), t);
    return static_cast<int16_t>(it - m_starts.begin());
}

int32_t CTaktRaster::taktStart(int16_t k) const {
    if (!m_schnell) return TaktStartVon(m_einstellungen, k);
    if (k <= 1) return 0;
    if (k - 1 > static_cast<int32_t>(m_laengen.size())) throw IndexFehler();
    return m_starts[static_cast<size_t>(k - 1)];
}

int32_t CTaktRaster::taktLaenge(int16_t k) const {
    if (!m_schnell) return CEinstellungen::wert(m_einstellungen.MFITaktLaengen(), k);
    if (k < 1 || k > static_cast<int32_t>(m_laengen.size())) throw IndexFehler();
    return m_laengen[static_cast<size_t>(k - 1)];
}

int32_t CTaktRaster::taktEnde(int16_t k) const { return add32(taktStart(k), taktLaenge(k)); }

} // namespace lyrabo
