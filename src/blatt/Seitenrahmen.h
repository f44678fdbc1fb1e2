#pragma once
// Pages and strips: the page's geometry, the strings cut into strips where the paper is too narrow,
// and the frame around the music (the small head, the string names, the edge marks, the foot with
// the 100 mm bar and the legend).
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattElemente.h"

#include <string>
#include <utility>
#include <vector>

namespace lyrabo::blatt {

struct Seitenmass {
    Format format;
    double dy = 0;              // what a printer cannot reach moves the top and bottom inwards
    double seitenRand = 0;      // paper edge to the outermost string
    double streifenLinks = 0;   // left edge of a strip to its first string
    double musikOben = 0, musikUnten = 0;
    double fussLinie = 0;       // baseline of the foot
    double musikHoehe() const { return musikUnten - musikOben; }
};
Seitenmass seitenMass(const Einstellungen& e);

// The strings of each strip: all on one page when the paper is wide enough, else balanced strips
// that share their border string.
std::vector<std::pair<int, int>> streifenTeilen(int n, double abstand, double breite, double seite, double streifenLinks);

// A signed number as the head writes it: +2, −3, 0.
std::string vorzeichenText(int v);

struct Kopfzeile {
    std::string titel;
    int tempo = 120;
    std::pair<int, int> taktart{4, 4};
    int saiten = 37;
    int transpo = 0;
    int seite = 1, seiten = 1;
    int streifen = 1, streifenAnzahl = 1;
    std::string warnung;        // notes beside the strings (red), empty when there are none
    bool wiederholungen = false; // repeats are written once: the legend says how to read the signs
};

// The frame of one page showing strings a..b, string a at x0.
void seitenRahmen(Seite& seite, const Seitenmass& m, const Einstellungen& e, int a, int b, int n, double x0, const Kopfzeile& k);

} // namespace lyrabo::blatt
