#pragma once
// The repeat signs as a harp player reads them on a sheet where time runs down the page: a double
// bar across the strings with two dots on the side of the run, the number of passes beside the end
// sign when there are more than two, the endings' brackets down the gap beside the last string
// marked "1." and "2.", and the bar numbers of every pass ("9 (17)").
#include "blatt/BlattElemente.h"
#include "blatt/Wiederholungen.h"

#include <string>
#include <vector>

namespace lyrabo::blatt {

inline constexpr const char* kWiederholungLegende = "Von |: bis :| wiederholen";

// What stands at the bar line above a written bar (the last entry: the final bar line).
struct Taktzeichen {
    std::string nummer;       // the bar as first played, then the later passes in brackets
    int takt = 0;             // the bar as first played, 1-based
    bool anfang = false;      // |: a run starts here (left out at bar 1)
    int ende = 0;             // :| the run above ends here, played this many times; 0: no end sign
    int klammer = 0;          // 1 or 2: an ending starts here ...
    int klammerBis = 0;       // ... and reaches down to the bar line above this written bar
    bool linieBricht = false; // the melody line does not run from the bar above into this one
};

// One entry per written bar and one for the final bar line. Without repeats: the bar numbers only.
std::vector<Taktzeichen> taktzeichen(const Faltung& faltung, int takte);

// Room the signs need below the bar line, before the bar's first heads (mm).
double zeichenRaum(const Taktzeichen& z);

// A page that breaks at a bar line with an end sign keeps the end sign at its foot, below the
// run's last bar; the next page starts with the rest (the start sign, the endings).
Taktzeichen nurEnde(const Taktzeichen& z);
Taktzeichen ohneEnde(const Taktzeichen& z);

// The signs at one bar line at height y, across the strings from xl to xr (`abstand` apart): the
// dots sit between strings, where no head can be.
void wiederholungZeichnen(std::vector<Element>& el, const Taktzeichen& z, double xl, double xr, double abstand, double y);

// An ending's bracket from y1 down to y2 in the gap left of the string at xr; `offen`: it goes on
// past y2 (on the next page), so it has no hook there.
void klammerZeichnen(std::vector<Element>& el, int nummer, double xr, double abstand, double y1, double y2, bool anfang, bool offen);

} // namespace lyrabo::blatt
