#include "app/core/MelodieSpur.h"

#include <algorithm>

namespace lyrabo {

const char* const kMelodieRegel =
    "Lyrabo vermutet die Melodie in der Spur, die meist nur einen Ton zugleich spielt (mindestens drei von "
    "vier Noten allein), deren Noten zum größten Teil auf den Saiten liegen (bei der eingestellten "
    "Transposition) und deren Töne im Mittel am höchsten liegen (weniger als zwei Halbtöne Unterschied gelten "
    "als gleich hoch, dann zählt die Spur mit mehr Noten); erfüllt keine Spur beides, geht das Einstimmige vor "
    "dem Passen und dieses vor der Höhe. Schlagzeug (MIDI-Kanal 10) zählt nicht.";

std::vector<SpurMerkmale> spurMerkmale(const MidiDateiInhalt& inhalt, int transpo, int saiten) {
    // Notes of a chord played by hand rarely start on the same tick: within a 128th of a
    // quarter they count as together. A file timed in SMPTE frames has no quarter: same tick only.
    const int32_t toleranz = (inhalt.division & 0x8000) ? 0 : inhalt.division / 32;
    std::vector<SpurMerkmale> ergebnis;
    for (size_t s = 0; s < inhalt.spuren.size(); ++s) {
        std::vector<int64_t> starts;
        SpurMerkmale m;
        m.spur = int16_t(s + 1);
        int64_t zeit = 0, summe = 0;
        for (const auto& ev : inhalt.spuren[s].ereignisse) {
            zeit += ev.delta;
            const bool noteAn = (ev.status & 0xF0) == 0x90 && ev.daten.size() >= 2 && ev.daten[1] > 0;
            if (!noteAn || (ev.status & 0x0F) == 9) continue;
            const int hoehe = ev.daten[0];
            ++m.noten;
            summe += hoehe;
            const int saite = hoehe + transpo - 54;
            if (saite >= 1 && saite <= saiten) ++m.aufSaiten;
            starts.push_back(zeit);
        }
        if (m.noten == 0) continue;
        m.mittlereHoehe = double(summe) / m.noten;
        // The events of a track run in time order, so a neighbour is the only candidate.
        for (size_t i = 0; i < starts.size(); ++i) {
            const bool vorn = i > 0 && starts[i] - starts[i - 1] <= toleranz;
            const bool hinten = i + 1 < starts.size() && starts[i + 1] - starts[i] <= toleranz;
            if (!vorn && !hinten) ++m.allein;
        }
        ergebnis.push_back(m);
    }
    return ergebnis;
}

int16_t melodieSpur(const std::vector<SpurMerkmale>& merkmale) {
    if (merkmale.empty()) return 0;
    auto stufe = [](const SpurMerkmale& m) { return std::make_pair(m.meistEinzeln(), m.meistAufSaiten()); };
    auto beste = stufe(merkmale.front());
    for (const auto& m : merkmale) beste = std::max(beste, stufe(m));
    double hoechste = -1;
    for (const auto& m : merkmale)
        if (stufe(m) == beste) hoechste = std::max(hoechste, m.mittlereHoehe);
    // Less than two semitones apart is the same height: then the track that plays more of the piece
    // (the first voice of a round, not the one that enters later and stops early).
    const SpurMerkmale* wahl = nullptr;
    for (const auto& m : merkmale)
        if (stufe(m) == beste && m.mittlereHoehe > hoechste - kGleicheHoehe && (!wahl || m.noten > wahl->noten)) wahl = &m;
    return wahl->spur;
}

int16_t melodieSpur(const MidiDateiInhalt& inhalt, int transpo, int saiten) {
    return melodieSpur(spurMerkmale(inhalt, transpo, saiten));
}

} // namespace lyrabo
