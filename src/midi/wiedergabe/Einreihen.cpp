#include "midi/wiedergabe/Einreihen.h"

#include <algorithm>
#include <cstdint>

namespace lyrabo {

namespace {

// A file without tempo events plays at 120 quarter notes per minute.
constexpr double kStandardTempo = 500000;  // microseconds per quarter note

} // namespace

void spurEinreihen(CProgramm& programm, int16_t spur, CMIDIOutput& ausgabe, const std::function<void()>& zwischendurch) {
    Midifile& mf = programm.Midifile1;
    const auto& tempi = programm.TempoTabelle;
    const int16_t tempoAnzahl = programm.TempoAnzahl;

    mf.Track(spur);
    const int32_t anzahl = mf.EventCount();

    // With no tempo event the table is empty and its index stays at 0, whose entry holds 0 ms per
    // tick; every event would sound at once. Such a file is timed at the standard tempo instead,
    // unrounded, so that it really plays at 120.
    double standardMsProTick = 0;
    if (tempoAnzahl == 0) {
        int16_t tpqn = mf.TicksPerQuarterNote();
        if (tpqn <= 0)
            throw Fehler("Die Datei gibt ihre Zeiten nicht in Viertelnoten an; sie lässt sich nicht abspielen.");
        standardMsProTick = kStandardTempo / 1000.0 / tpqn;
    }

    // The playing clock starts at zero for every track.
    double vorige = 0;
    int16_t index = 0;
    int64_t tick = 0;  // the event's place in the piece, meta events included, for the note sheet
    for (int32_t i = 1; i <= anzahl; ++i) {
        // The cursor is shared with the rest of the window, which may have moved it while user
        // events were let through: select track and event afresh each time.
        if (mf.Track() != spur) mf.Track(spur);
        mf.Event(i);
        tick = std::min<int64_t>(tick + std::max<int32_t>(mf.Time(), 0), INT32_MAX);
        if (mf.Message() == 255) continue;  // meta events are not sent, and their delta time is not counted

        // Entry 0 of the tempo table is never filled, so the first event keeps the previous time
        // stamp; the entry in use is the one the index has moved on to.
        double msProTick = tempoAnzahl == 0 ? standardMsProTick : tempi[static_cast<size_t>(index)].msProTick;
        double zeit = static_cast<double>(mf.Time()) * msProTick + vorige;

        if (tempi[static_cast<size_t>(index)].positionMs <= zeit && index < tempoAnzahl) {
            ausgabe.TempoMarker(index);
            ++index;
        }

        ausgabe.Time(zeit);
        ausgabe.Message(mf.Message());
        ausgabe.Data1(mf.Data1());
        ausgabe.Data2(mf.Data2());
        ausgabe.Tick(static_cast<int32_t>(tick));
        ausgabe.Action(CMIDIOutput::kEinreihen);
        vorige = zeit;

        if (zwischendurch) zwischendurch();
    }
}

} // namespace lyrabo
