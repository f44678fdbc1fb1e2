#pragma once
// The song the playback tests play: 100 ticks per quarter note, three tempo changes in track 1,
// a melody in track 2 and a bass in track 3.
#include "support/EngineUmgebung.h"

namespace lyrabo::test {

// Track 1: 500,000 us at tick 0, 250,000 us after 400 ticks, 1,000,000 us after 400 more. The
// window's tempo scan makes of it 5, 2 (2.5 rounded half to even) and 10 ms per tick, starting
// at 0, 2000 (400 x 5) and 2800 ms (400 x 2 + 2000).
// Track 2: a program change, notes 60, 62, 64, 65, 67, and a lyric with a delta of its own.
// Track 3: two bass notes.
inline std::string tempoLied() {
    MidiBauer b(100);
    b.spur().name("Tempo").tempo(0, 500000).tempo(400, 250000).tempo(400, 1000000).ende();
    auto& melodie = b.spur().name("Melodie").ev(0, {0xC0, 24}).note(0, 60, 100).note(100, 62, 200);
    melodie.lyric(50, "la").note(300, 64, 100).note(200, 65, 100).note(10, 67, 10).ende();
    b.spur().name("Bass").note(0, 36, 150, 2).note(0, 43, 150, 2).ende();
    return b.bytes();
}

// Loads a song as the window does before playing: settings, file, tempo table.
inline void tempoLiedLaden(CProgramm& p, const std::string& bytes = tempoLied()) {
    p.initGlobals();
    p.Midifile1.ladenAusBytes(bytes, "tempo.mid");
    p.tempoScan();
}

} // namespace lyrabo::test
