#pragma once
// Short gaps closed on the sheet: a melody played detached leaves a tiny rest after almost every
// note, which a harp player never plays (the string rings on). Only the drawing changes.
#include "blatt/BlattStueck.h"

namespace lyrabo::blatt {

// Rests shorter than an eighth between two notes removed, the note before lengthened by the rest.
Stueck kurzePausenSchliessen(const Stueck& stueck);

} // namespace lyrabo::blatt
