// The lowest and highest note of the selected track, and the string columns coloured from them.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "model/Zahlen.h"

namespace lyrabo {

void CKLNCreator::findMinMax() {
    auto& midi = leser();
    if (!midi.geladen()) return;
    // With no row selected there is no track to look at: the display stays as it is.
    const int16_t spur = add16(meldeForm().ausgewaehlteSpurZeile(), 1);
    if (spur < 1 || spur > midi.TrackCount()) return;
    auto& e = einstellungen();
    e.TonMax(0);
    e.TonMin(128);
    midi.Track(spur);
    const int32_t anzahl = midi.EventCount();
    for (int32_t i = 1; i <= anzahl; ++i) {
        midi.Event(i);
        const int16_t status = midi.Message();
        // Velocity 0 counts too: the range is about which strings are touched.
        if (status < 144 || status > 159) continue;
        const int16_t ton = midi.Data1();
        if (ton > e.TonMax()) e.TonMax(ton);
        if (ton < e.TonMin()) e.TonMin(ton);
    }
}

// Field i stands for note 55 + i. The right border always tests against 37 strings, also for the
// 25-string harp.
void CKLNCreator::colorSpaltenLabels() {
    auto& e = einstellungen();
    const int16_t lo = add16(sub16(e.TonMin(), 55), e.Transpo());
    const int16_t hi = add16(sub16(e.TonMax(), 54), e.Transpo());
    constexpr Farbe kOktaveDrin{190, 255, 190}, kOktaveDraussen{100, 100, 255};
    constexpr Farbe kDrin{0, 255, 0}, kDraussen{255, 255, 255};
    constexpr Farbe kRot{255, 50, 50}, kGrau{191, 191, 191};
    std::array<Farbe, 37> felder{};
    for (int16_t i = 0; i < 37; ++i) {
        const bool drin = lo <= i && i < hi;
        const bool oktave = i % 12 == 0;
        felder[static_cast<size_t>(i)] = oktave ? (drin ? kOktaveDrin : kOktaveDraussen) : (drin ? kDrin : kDraussen);
    }
    const Farbe links = add16(sub16(e.TonMin(), 54), e.Transpo()) < 1 ? kRot : kGrau;
    const Farbe rechts = add16(sub16(e.TonMax(), 54), e.Transpo()) > 37 ? kRot : kGrau;
    meldeForm().spaltenFaerben(felder, links, rechts);
}

} // namespace lyrabo
