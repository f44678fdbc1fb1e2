// Length correction, legato and the cut at the bar in which a note ends.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "engine/TaktRaster.h"
#include "model/Zahlen.h"

#include <array>
#include <optional>
#include <vector>

namespace lyrabo {

void CKLNCreator::laengenKorrigieren() {
    const auto noten = KlangNoten()->alsVektor();
    const int32_t maximum = mul16(4, einstellungen().TicksPerQuarterNote());
    for (const auto& note : noten) {
        if (note->Laenge() > maximum) {
            note->Laenge(maximum);
            note->LaengeOrig(maximum);
        }
    }

    // A note reaches at most to the next later start. The search for that start gives up as soon
    // as it reaches the last position after stepping over notes of the same start, so the last
    // note is then never taken as the next one: kept as it always was. The search is done once
    // per group of equal starts: every note of a group but its last steps to the group's end.
    const int64_t anzahl = static_cast<int64_t>(noten.size());
    int64_t gruppenEnde = 0; // 1-based position of the last note with the same start as note i
    for (int64_t i = 1; i <= anzahl - 1; ++i) {
        const auto& a = noten[static_cast<size_t>(i - 1)];
        if (gruppenEnde < i) {
            gruppenEnde = i;
            while (gruppenEnde < anzahl && noten[static_cast<size_t>(gruppenEnde)]->StartZeit() == a->StartZeit()) ++gruppenEnde;
        }
        const int64_t j = gruppenEnde + 1;
        // Stepping over notes of the same start gives up on reaching the count.
        if (j > anzahl || (gruppenEnde > i && j >= anzahl)) continue;
        const auto& b = noten[static_cast<size_t>(j - 1)];
        const int32_t abstand = sub32(b->StartZeit(), a->StartZeit());
        if (a->Laenge() == 0 || abstand < a->Laenge()) {
            a->Laenge(abstand);
            a->LaengeOrig(abstand);
        }
    }
}

namespace {
// The first value of d, d - q, d - 2q, ... that is an allowed length, found without stepping;
// none means the steps run out of the 16-bit range, which is the overflow error.
int16_t erlaubteLaengeAbwaerts(int16_t d, int16_t q, const std::array<int16_t, 8>& erlaubt) {
    for (int16_t l : erlaubt)
        if (l == d) return d;
    if (q == 0) throw UeberlaufFehler(); // the steps would never move
    std::optional<int16_t> treffer;
    for (int16_t l : erlaubt) {
        const int32_t abstand = int32_t{d} - l; // steps of q from d reach l
        if (q > 0 ? abstand < 0 : abstand > 0) continue;
        if (abstand % q != 0) continue;
        // The first one met is the nearest to d.
        if (!treffer || (q > 0 ? l > *treffer : l < *treffer)) treffer = l;
    }
    if (!treffer) throw UeberlaufFehler();
    return *treffer;
}
} // namespace

// A gap before the next chord is closed by lengthening the last note of the chord to the longest
// allowed length that the grid reaches; the other notes of the chord keep their lengths.
void CKLNCreator::legatoSetzen() {
    auto& e = einstellungen();
    std::array<int16_t, 8> erlaubt{};
    for (int32_t k = 1; k <= 8; ++k)
        erlaubt[static_cast<size_t>(k - 1)] = mul16(CEinstellungen::wert(e.ABSErlaubteLaengen(), k), e.TPQN_Faktor());
    const int16_t q = e.QuantTicks();
    const auto akkorde = Akkorde()->alsVektor();
    for (size_t i = 0; i + 1 < akkorde.size(); ++i) {
        const auto& a = akkorde[i]->Last();
        const auto& b = akkorde[i + 1]->Last();
        if (add32(a->StartZeit(), a->Laenge()) < b->StartZeit()) {
            const int16_t d = sub16(b->StartZeit(), a->StartZeit());
            a->Laenge(erlaubteLaengeAbwaerts(d, q, erlaubt));
        }
    }
}

// Cut at the start of the bar in which the note ends, not at the first bar line it crosses: a
// note over three bars keeps the first two, and notenInTaktCut deals with the rest.
void CKLNCreator::taktGrenzeSchneiden() {
    const CTaktRaster raster(einstellungen());
    for (const auto& note : *KlangNoten()) {
        const int16_t a = raster.taktNr(note->StartZeit());
        const int16_t b = raster.taktNr(sub32(add32(note->StartZeit(), note->Laenge()), 1));
        if (a < b) note->Laenge(sub32(raster.taktStart(b), note->StartZeit()));
    }
}

} // namespace lyrabo
