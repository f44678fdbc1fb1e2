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

} // namespace lyrabo
