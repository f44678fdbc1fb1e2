#pragma once
// The song the playback tests play: 100 ticks per quarter note, three tempo changes in track 1,
// a melody in track 2 and a bass in track 3, and the tempo table worked out by hand.
#include "app/core/CProgramm.h"
#include "support/MidiBauer.h"

#include <string>
#include <vector>

namespace lyrabo::test {

class StummeForm : public IForm {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return -1; }
    std::vector<std::string> meldungen;
};

// Track 1: 500,000 us at tick 0, 250,000 us after 400 ticks, 1,000,000 us after 400 more.
// Track 2: a program change, notes 60, 62, 64, 65, 67, and a lyric with a delta of its own.
// Track 3: two bass notes.
inline std::string tempoLied() {
    MidiBauer b(100);
    b.spur().name("Tempo").tempo(0, 500000).tempo(400, 250000).tempo(400, 1000000).ende();
    b.spur()
        .name("Melodie")
        .ev(0, {0xC0, 24})
        .an(0, 1, 60)
        .aus(100, 1, 60)
        .an(100, 1, 62)
        .aus(200, 1, 62)
        .lyric(50, "la")
        .an(300, 1, 64)
        .aus(100, 1, 64)
        .an(200, 1, 65)
        .aus(100, 1, 65)
        .an(10, 1, 67)
        .aus(10, 1, 67)
        .ende();
    b.spur().name("Bass").an(0, 2, 36).aus(150, 2, 36).an(0, 2, 43).aus(150, 2, 43).ende();
    return b.bytes();
}

// The tempo table of tempoLied(): milliseconds per tick = tempo / 1000 / 100 rounded half to even
// (5, 2.5 -> 2, 10); positions = the change's delta x the previous entry's ms per tick + the
// previous position (0, 400 x 5 = 2000, 400 x 2 + 2000 = 2800).
inline void tempoTabelleEintragen(CProgramm& p) {
    p.TempoTabelle = {};
    p.TempoTabelle[1] = {500000, 5, 0, 0};
    p.TempoTabelle[2] = {250000, 2, 0, 2000};
    p.TempoTabelle[3] = {1000000, 10, 0, 2800};
    p.TempoAnzahl = 3;
}

} // namespace lyrabo::test
