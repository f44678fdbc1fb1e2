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

// The sheet's title: the track's name, else the first track's (the song's title in a file of several
// tracks), else the MIDI file's name; for a mix (spur 0) the first track's name or the file's.
// Leaves the reader's cursor where it was.
std::string blattTitel(CProgramm& programm, int16_t spur);

// Seconds since 1970 of the MIDI file's last change, 0 if unknown: the sheet's date, so that the
// same file and settings always give the same PDF.
int64_t blattDatum(CProgramm& programm);

} // namespace lyrabo
