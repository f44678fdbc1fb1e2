// Quantising start times and lengths to the grid, and numbering the bars.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "engine/Rechnen.h"
#include "engine/TaktRaster.h"
#include "model/Zahlen.h"

namespace lyrabo {

namespace {
// To the nearest grid line; a remainder of exactly half the grid rounds up.
int32_t aufRaster(int32_t wert, int16_t raster, int16_t haelfte) {
    const int32_t rest = restVon(wert, raster);
    if (rest == 0) return wert;
    return rest >= haelfte ? add32(sub32(wert, rest), raster) : sub32(wert, rest);
}
} // namespace

void CKLNCreator::quantisieren() {
    const int16_t raster = einstellungen().QuantTicks();
    const int16_t haelfte = cint16(raster / 2.0);
    for (const auto& note : *KlangNoten()) {
        note->StartZeit(aufRaster(note->StartZeit(), raster, haelfte));
        // A length shorter than half the grid becomes 0; the note stays.
        note->Laenge(aufRaster(note->Laenge(), raster, haelfte));
    }
}

void CKLNCreator::taktNrSetzen() {
    const CTaktRaster raster(einstellungen());
    for (const auto& note : *KlangNoten()) note->TaktNr(raster.taktNr(note->StartZeit()));
}

} // namespace lyrabo
