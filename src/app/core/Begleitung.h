#pragma once
// Accompaniment voices on the sheet: further tracks, each converted exactly as the track shown is
// converted (same options), drawn beside the melody in a lighter style. Only the sheet sees them:
// the texts, the Works database and what the program holds for the track shown stay as they were.
#include "blatt/BlattStueck.h"
#include "midi/Midifile.h"

#include <cstdint>
#include <vector>

namespace lyrabo {

class CProgramm;

// The tracks of the loaded file that hold at least one note, in file order.
std::vector<int16_t> spurenMitNoten(const MidiDateiInhalt& inhalt);

// The notes of `spur` as the window converts a track, marked as accompaniment. Leaves the engine's
// collections, its monophony flag, the settings (track number, bar tables, field 8) and the
// reader's cursor as it found them. Nothing when the track cannot be converted.
std::vector<blatt::Note> begleitNoten(CProgramm& programm, int16_t spur);

// Adds accompaniment notes to a piece: a note on the string of a melody note that starts at the
// same moment is left out (the player plays that string once), the notes are kept in time order
// after the melody's own, and the bars are extended by the last bar's length when the
// accompaniment plays on after the melody has ended.
void begleitungHinzufuegen(blatt::Stueck& stueck, std::vector<blatt::Note> begleitung);

// blattStueck and then the accompaniment of each of `spuren` (tracks that do not exist or that are
// the melody's own are skipped).
blatt::Stueck blattStueckMitBegleitung(CProgramm& programm, const blatt::Stueck& melodie, const std::vector<int16_t>& spuren,
                                       int16_t melodieSpur);

} // namespace lyrabo
