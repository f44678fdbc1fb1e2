#pragma once
// The harp's strings: their German names as the window's string row shows them.
#include <string>

namespace lyrabo::blatt {

// Name of the string that sounds MIDI note n: c, cis, d, dis, e, f, fis, g, gis, a, b (B flat),
// h, with an apostrophe per octave above the small one (c' is middle C); below it capitalised.
std::string saitenName(int note);

} // namespace lyrabo::blatt
