#pragma once
// Fitting the sheet: one factor scales the whole song's natural spacing so that it fills one sheet,
// never below the collision minimum and never above the natural spacing. A song that cannot fit is
// split at bar lines into as few sheets as needed, filled about evenly.
#include "blatt/Abstaende.h"
#include "blatt/Zeilen.h"

#include <vector>

namespace lyrabo::blatt {

// How far above a page's first row the bar line and its number reach.
inline constexpr double kTaktLinieLuft = 0.45, kTaktNummerHoehe = 1.8;

struct Einpassung {
    double faktor = 1;               // share of the natural spacing
    std::vector<size_t> anfaenge;    // first row of every page
};

// Gives every row its page, its y (the first row's top reaches `oben`) and the room its bar line
// adds; `hoehe` is the room for music on a page. `einpassen` off keeps the natural spacing.
Einpassung einpassen(Zeilen& zeilen, const Abstaende& a, double oben, double hoehe, bool einpassen);

// What the page count would be, before any row is placed (a cheap guard against endless sheets).
size_t seitenNoetig(const Zeilen& zeilen, const Abstaende& a, double hoehe);

} // namespace lyrabo::blatt
