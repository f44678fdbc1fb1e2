#pragma once
// Drawing the laid-out rows of one page (or one strip of it): bar lines, the melody line, the
// chords' dashed lines, heads, rests, ties, lyrics. Every position comes from the rows.
#include "blatt/Abstaende.h"
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattElemente.h"
#include "blatt/Zeilen.h"

namespace lyrabo::blatt {

struct Streifenlage {
    int a = 1, b = 37;          // strings shown
    double x0 = 0;              // x of string a
    double links = 0, rechts = 0; // lines are cut at these x (the strip's edges)
    double musikOben = 0, musikUnten = 0;
};

// Rows von..bis (one past) of `zeilen`, which the fitting has placed on this page.
void musikZeichnen(Seite& seite, const Zeilen& zeilen, const Abstaende& ab, size_t von, size_t bis, const Stueck& stueck,
                   const Einstellungen& e, const Streifenlage& lage);

} // namespace lyrabo::blatt
