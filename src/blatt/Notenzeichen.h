#pragma once
// The signs on the sheet and how much room they take: heads in the table-harp shapes (value shown
// by size and fill) or with stems and flags, rests, ties, the arrow of a note beside the strings,
// and the legend of the shapes.
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattElemente.h"

#include <string>
#include <vector>

namespace lyrabo::blatt {

// A head's half axes, and how far the whole sign reaches above and below its centre (a stem
// reaches down: time runs down the page).
struct Zeichenmass {
    double rx = 0, ry = 0;
    double oben = 0, unten = 0;
};
Zeichenmass notenMass(int sechzehntel, Notenform form);
// Half the height of a rest's sign.
double pausenHalbeHoehe(int sechzehntel);

inline constexpr double kKopfWinkel = 20; // a head leans like a written one

void notenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel, Notenform form, Farbe f, int32_t note);
void pausenZeichen(std::vector<Element>& el, Punkt m, int sechzehntel);
// The tie: a flat bow right of the heads, from one part (y1) to the next (y2).
void bogen(std::vector<Element>& el, double x, double y1, double y2, double rx, Farbe f, int32_t note);
// The red arrow beside a head that lies off the strings, pointing the way it lies.
void pfeil(std::vector<Element>& el, Punkt m, double rx, int richtung, int32_t note);

// A rough width of a text in mm (the sheet's sans face), to keep texts clear of heads.
double textBreite(const std::string& text, double groesse);

// The one-line legend at the foot: the five values with their names, set from x (left) on the
// baseline y; returns its width.
double legende(std::vector<Element>& el, double x, double y, Notenform form);
double legendenBreite(Notenform form);

} // namespace lyrabo::blatt
