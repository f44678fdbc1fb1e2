// The monophony test and the grouping of notes that start together into chords.
#include "engine/CKLNCreator.h"

#include "model/Zahlen.h"

namespace lyrabo {

// Only neighbours of the same track count: two tracks playing at once is still one melody each.
bool CKLNCreator::checkIsMonoton() {
    int32_t vorigeSpur = -1;
    int64_t vorigerStart = -1;
    for (const auto& note : *KlangNoten()) {
        if (note->Spur() == vorigeSpur && note->StartZeit() == vorigerStart) return false;
        vorigeSpur = note->Spur();
        vorigerStart = note->StartZeit();
    }
    return true;
}

// Within a chord the notes rise in pitch, except that a longer note goes in front of shorter
// ones; the last note of a chord is the one legato lengthens and the rests follow.
void CKLNCreator::akkordeBilden() {
    const auto& akkorde = Akkorde();
    akkorde->Clear();
    int64_t letzterStart = -1;
    std::shared_ptr<CAkkord> akkord;
    for (const auto& note : *KlangNoten()) {
        if (note->StartZeit() > letzterStart || !akkord) {
            akkord = std::make_shared<CAkkord>();
            akkorde->Add(akkord);
            letzterStart = note->StartZeit();
        }
        note->AkkordNr(cint16(int64_t{akkorde->Count()}));
        int32_t vor = akkord->Count() + 1;
        for (int32_t k = 1; k <= akkord->Count(); ++k) {
            const auto& mitglied = akkord->Item(k);
            if (note->TonHoehe() < mitglied->TonHoehe() || note->Laenge() > mitglied->Laenge()) {
                vor = k;
                break;
            }
        }
        akkord->Insert(note, vor);
    }
    for (const auto& a : *akkorde) {
        int16_t platz = 0;
        for (const auto& mitglied : *a) {
            platz = add16(platz, 1);
            mitglied->Kanal(platz);
        }
    }
}

} // namespace lyrabo
