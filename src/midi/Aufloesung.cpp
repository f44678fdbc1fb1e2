#include "midi/Aufloesung.h"

#include "model/Fehler.h"

#include <limits>

namespace lyrabo {

int64_t tickAufAufloesung(int64_t tick, uint16_t vonTicks, uint16_t aufTicks) {
    if (vonTicks == 0 || vonTicks == aufTicks) return tick;
    // Integer arithmetic: the same file gives the same ticks on every machine.
    return (2 * tick * aufTicks + vonTicks) / (2 * int64_t{vonTicks});
}

MidiDateiInhalt aufAufloesung(const MidiDateiInhalt& inhalt, uint16_t ticksProViertel) {
    MidiDateiInhalt neu = inhalt;
    neu.division = ticksProViertel;
    for (auto& spur : neu.spuren) {
        // A file holds at most 64 MiB of four-byte delta times: the sums stay far inside 64 bits.
        int64_t alt = 0, vorher = 0;
        for (auto& ereignis : spur.ereignisse) {
            alt += ereignis.delta;
            const int64_t jetzt = tickAufAufloesung(alt, inhalt.division, ticksProViertel);
            if (jetzt > std::numeric_limits<int32_t>::max()) throw UeberlaufFehler();
            ereignis.delta = static_cast<uint32_t>(jetzt - vorher);
            vorher = jetzt;
        }
    }
    return neu;
}

} // namespace lyrabo
