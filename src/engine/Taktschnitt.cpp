// Shortening notes whose length cannot be written as one plain or dotted value from where they
// start in the beat.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "engine/Rechnen.h"
#include "model/Zahlen.h"

#include <cmath>

namespace lyrabo {

namespace {
// New length in sixteenths for a note of `q` sixteenths starting `pos` sixteenths after the beat,
// or 0 to leave it. The rows differ on purpose: 14 and 15 are cut only on the beat.
int16_t geschnitteneEinheiten(int16_t pos, int64_t q) {
    switch (pos) {
    case 0:
        if (q == 5) return 4;
        if (q == 7) return 6;
        if (q >= 9 && q <= 11) return 8;
        if (q >= 13 && q <= 15) return 12;
        return 0;
    case 1:
    case 3:
        if (q >= 4 && q <= 7) return 3;
        if (q >= 9 && q <= 11) return 8;
        if (q == 13) return 12;
        return 0;
    case 2:
        if (q == 5) return 4;
        if (q == 7) return 6;
        return 0;
    default:
        return 0;
    }
}
} // namespace

void CKLNCreator::notenInTaktCut() {
    auto& e = einstellungen();
    const int16_t w = m_arbeitsLaenge;
    const auto& numeratoren = e.Numeratoren();
    const auto& denominatoren = e.Denominatoren();
    const int16_t tpqn = e.TicksPerQuarterNote();
    for (const auto& note : *KlangNoten()) {
        const int16_t n = CEinstellungen::wert(numeratoren, note->TaktNr());
        const int16_t d = CEinstellungen::wert(denominatoren, note->TaktNr());
        // The 3/8 test compares 2 to the power of the stored value with 8, as it always has.
        const int32_t schlag = (n == 3 && std::pow(2.0, d) == 8.0) ? clng32(tpqn / 4.0 * 3.0) : int32_t{tpqn};
        const int16_t pos = cint16(static_cast<double>(restVon(note->StartZeit(), schlag)) / w);
        if (pos > 3) continue;
        const double q = static_cast<double>(note->Laenge()) / w;
        if (q != std::floor(q) || std::abs(q) > 1e9) continue;
        const int16_t neu = geschnitteneEinheiten(pos, static_cast<int64_t>(q));
        if (neu != 0) note->Laenge(mul16(neu, w));
    }
}

} // namespace lyrabo
