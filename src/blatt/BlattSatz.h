#pragma once
// Lays out the note sheet: the strings side by side, time from top to bottom, every note on the
// string that sounds it. Reads the piece, never changes it.
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattElemente.h"
#include "blatt/BlattStueck.h"

namespace lyrabo::blatt {

Blatt setzen(const Stueck& stueck, const Einstellungen& einstellungen);

} // namespace lyrabo::blatt
