#pragma once
// Queueing one track of the loaded file onto the MIDI-output object, with time stamps in
// milliseconds from the file's tempo table.
#include "app/core/CProgramm.h"
#include "midi/wiedergabe/CMIDIOutput.h"

#include <functional>

namespace lyrabo {

// Queues every event of track `spur` that is not a meta event. Each track is timed from the start
// of the piece, so tracks queued one after the other sound together. After each event
// `zwischendurch` runs (the window lets pending user events through there).
// Throws IndexFehler for a track the file does not have.
void spurEinreihen(CProgramm& programm, int16_t spur, CMIDIOutput& ausgabe,
                   const std::function<void()>& zwischendurch = {});

} // namespace lyrabo
