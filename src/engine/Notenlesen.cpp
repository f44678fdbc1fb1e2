// Reading one track of the MIDI file into KlangNoten, through the reader's cursor.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "model/Zahlen.h"

#include <array>

namespace lyrabo {

namespace {
constexpr int16_t kMeta = 255;
constexpr int16_t kLyric = 5;
bool istNoteOn(int16_t status) { return status >= 144 && status < 160; }
} // namespace

// Lyric events may stand before or after the note they belong to; whichever comes first in the
// track decides for the whole track.
bool CKLNCreator::textVorNoten() {
    auto& midi = leser();
    midi.Track(einstellungen().TrackNr());
    const int32_t anzahl = midi.EventCount();
    for (int32_t i = 1; i <= anzahl; ++i) {
        midi.Event(i);
        const int16_t status = midi.Message();
        if (istNoteOn(status)) return false;
        if (status == kMeta && midi.Data1() == kLyric) return true;
    }
    return false;
}

bool CKLNCreator::createKlangNoten() {
    const auto& noten = KlangNoten();
    noten->Clear();
    const bool textDavor = textVorNoten();

    auto& midi = leser();
    midi.Track(einstellungen().TrackNr());
    const int32_t anzahl = midi.EventCount();

    // A Note Off ends the latest note of its pitch, whatever its channel and whether it already
    // has a length. Notes are only appended while reading, so the latest note of a pitch is the
    // one last appended with it.
    std::array<std::shared_ptr<CKlangNote>, 256> letzteJeTon{};

    int32_t zeit = 0;
    std::string wartenderText;
    std::shared_ptr<CKlangNote> aktuelle;
    for (int32_t i = 1; i <= anzahl; ++i) {
        midi.Event(i);
        zeit = add32(zeit, midi.Time());
        const int16_t status = midi.Message();
        if (istNoteOn(status) && midi.Data2() > 0) {
            auto note = std::make_shared<CKlangNote>();
            note->StartZeit(zeit);
            note->TonHoehe(midi.Data1());
            note->Kanal(static_cast<int16_t>(status - 143));
            note->ID(noten->Count() + 1);
            if (textDavor) {
                note->MsgText(wartenderText);
                wartenderText.clear();
            }
            letzteJeTon[static_cast<uint8_t>(midi.Data1())] = note;
            noten->Add(note);
            aktuelle = std::move(note);
        } else if (istNoteOn(status) || (status >= 128 && status < 144)) {
            const auto& note = letzteJeTon[static_cast<uint8_t>(midi.Data1())];
            if (!note) {
                // The notes read so far stay.
                meldeForm().meldung("MIDI-File ist nicht in Ordnung.");
                return false;
            }
            note->Laenge(sub32(zeit, note->StartZeit()));
            note->LaengeOrig(note->Laenge());
        } else if (status == kMeta && midi.Data1() == kLyric) {
            if (textDavor)
                wartenderText = midi.Text();
            else if (aktuelle)
                aktuelle->MsgText(midi.Text());
        }
    }
    return true;
}

} // namespace lyrabo
