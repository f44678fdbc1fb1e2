#pragma once
// Hands the converted piece to the note sheet: the notes of the track shown (or of the mix),
// the rests, the bar table and what the header needs, copied out as plain values.
#include "blatt/BlattStueck.h"
#include "model/Records.h"

#include <string>

namespace lyrabo {

class CProgramm;

// `noten` is the collection the conversion filled (KlangNoten for a track, KlangNotenMix for a mix).
blatt::Stueck blattStueck(CProgramm& programm, const KlangNotenRef& noten, const std::string& titel);

// A converted note as the sheet reads it: start, length, pitch, chord and lyric.
blatt::Note blattNote(const CKlangNote& note);

// The sheet's title, the name of the piece: the name of track 1 when it names one (in a file of
// several tracks it is the song's title), else the name of track `spur` (0 for a mix: none), else
// the MIDI file's name without its extension. Leaves the reader's cursor where it was.
std::string blattTitel(CProgramm& programm, int16_t spur);

// Whether a track name names a piece: not empty, and not one a sequencer gives by itself
// ("Track 2", "Track 1 (null)", "Spur 3", "Untitled") nor a voice's label (":1", ":soprano").
bool nenntStueck(const std::string& name);

// The rule of blattTitel on the names: the first of the two that names a piece (without the
// blanks around it), else the file's name.
std::string stueckTitel(const std::string& spurEins, const std::string& spurGewaehlt, const std::string& dateiName);

// Seconds since 1970 of the MIDI file's last change, 0 if unknown: the sheet's date, so that the
// same file and settings always give the same PDF.
int64_t blattDatum(CProgramm& programm);

} // namespace lyrabo
