#include "midi/EreignisListe.h"

#include "model/Zahlen.h"

#include <cmath>
#include <cstdio>

namespace lyrabo {

namespace {
std::string hex(int64_t v) {
    char puffer[24];
    std::snprintf(puffer, sizeof puffer, "%llX", static_cast<unsigned long long>(v) & 0xFFFFFFFFull);
    return puffer;
}
} // namespace

std::string ereignisZeile(const Midifile& d) {
    int16_t msg = d.Message();
    if (msg != 255) {
        static const char* const kNamen[7] = {"Note Off ", "Note On ", "Poly Key Press ", "Controller Change ",
                                              "Program Change ", "Channel Pressure ", "Pitch Bend "};
        int art = msg & 0xF0;
        if (art >= 0x80 && art <= 0xE0) return kNamen[(art - 0x80) >> 4] + hex(msg);
        return hex(msg);
    }
    int16_t typ = d.Data1();
    switch (typ) {
    case 0:
        return "Sequence number " + hex(d.Data2()) + " : " + d.Text();
    case 1: case 2: case 3: case 4: case 5: case 6: case 7: {
        static const char* const kText[7] = {"Text ", "Copyright ", "Track Name ", "Instrument Name ",
                                             "Lyric ", "Marker ", "Cue point "};
        return kText[typ - 1] + hex(typ) + " : " + d.Text();
    }
    case 81: {
        int32_t tempo = d.Tempo();
        int64_t bpm = tempo > 0 ? static_cast<int64_t>(60000000.0 / tempo) : 0;
        return Str(d.Time()) + " Tempo " + std::to_string(bpm);
    }
    case 88:
        return Str(d.Time()) + " Time Signature " + std::to_string(d.Numerator()) + "/" +
               std::to_string(static_cast<int64_t>(std::pow(2.0, d.Denominator())));
    default:
        return "Sysex " + hex(typ);
    }
}

std::vector<std::string> DisplayTrackZeilen(Midifile& d, int16_t spur) {
    std::vector<std::string> zeilen;
    d.Track(spur);
    int32_t anzahl = d.EventCount();
    for (int32_t i = 1; i <= anzahl && i <= 500; ++i) {
        d.Event(i);
        zeilen.push_back(ereignisZeile(d));
    }
    return zeilen;
}

std::string zahlAlsText(int32_t wert, bool hexa, bool* piepen) {
    if (piepen) *piepen = false;
    if (!hexa) return std::to_string(wert);
    if (wert > 256 && piepen) *piepen = true;
    return hex(wert);
}

int16_t textAlsZahl(const std::string& text, bool hexa) {
    try {
        size_t n = 0;
        long v = std::stol(text, &n, hexa ? 16 : 10);
        if (n != text.size()) return 0;
        return cint16(int64_t{v});
    } catch (const std::exception&) {
        return 0;
    }
}

} // namespace lyrabo
