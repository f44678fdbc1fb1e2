#include "blatt/Saiten.h"

#include <cctype>

namespace lyrabo::blatt {

std::string saitenName(int note) {
    static const char* const namen[12] = {"c", "cis", "d", "dis", "e", "f", "fis", "g", "gis", "a", "b", "h"};
    if (note < 0) note = 0;
    std::string name = namen[note % 12];
    const int oktave = note / 12 - 4; // 48 to 59: the small octave
    if (oktave < 0) name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
    for (int i = 0; i < oktave; ++i) name += '\'';
    return name;
}

} // namespace lyrabo::blatt
