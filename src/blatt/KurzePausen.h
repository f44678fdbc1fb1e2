#pragma once
// Closes the short gaps of a detached melody on the sheet: many files play every note a little
// short, and the conversion writes a tiny rest after it that no harp player plays (the string
// rings on). Only what is drawn changes; the piece the conversion made stays as it is.
#include "blatt/BlattStueck.h"

namespace lyrabo::blatt {

// The piece with every rest shorter than an eighth (ticksProViertel / 2) that lies between two
// notes removed (a note ends where the rest starts and one starts where it ends, on any string),
// and the notes that end where such a rest starts lengthened by it. Every other rest stays.
Stueck kurzePausenSchliessen(const Stueck& stueck);

} // namespace lyrabo::blatt
