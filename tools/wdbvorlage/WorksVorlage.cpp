#include "WorksVorlage.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace lyrabo::vorlage {

namespace {

constexpr int kSektor = 512;
constexpr uint32_t kFrei = 0xFFFFFFFFu;        // free sector, and "no entry" in the directory
constexpr uint32_t kKettenEnde = 0xFFFFFFFEu;
constexpr uint32_t kFatSektor = 0xFFFFFFFDu;
constexpr int kVerzeichnisSektor = 1;
// The "Schriften" piece: sectors 11 to 18 (file offsets 6144 to 10239) stay outside the stream
// and hold zeros. For 25 strings the writer places the piece one byte lower, so the stream reads
// its first byte in place of grid byte 2462, the dot byte of the cell in row 7 (from 0), string 1.
// That byte must stay 00: blank cells and undotted notes there remain intact; only a dot placed
// in that one cell is lost.
constexpr int kSchriftenVon = 11;
constexpr int kSchriftenBis = 18;

void u16(std::string& s, uint16_t v) {
    s.push_back(static_cast<char>(v & 0xFF));
    s.push_back(static_cast<char>(v >> 8));
}

void setzeU16(std::string& s, size_t pos, uint16_t v) {
    s[pos] = static_cast<char>(v & 0xFF);
    s[pos + 1] = static_cast<char>(v >> 8);
}

void setzeU32(std::string& s, size_t pos, uint32_t v) {
    for (int i = 0; i < 4; ++i) s[pos + static_cast<size_t>(i)] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

// One record of the stream: id, type, data length, data.
void satz(std::string& s, uint16_t kennung, const std::string& daten) {
    u16(s, kennung);
    u16(s, static_cast<uint16_t>(daten.size()));
    s += daten;
}

std::string festerText(const std::string& text, size_t laenge) {
    if (text.size() >= laenge) throw std::logic_error("Name zu lang: " + text);
    std::string t = text;
    t.resize(laenge, '\0');
    return t;
}

std::string schriftSatz(const char* name, int punkte) {
    std::string d;
    d.push_back('\0');                   // no bold, italic, underline, colour
    d.push_back('\0');
    d += festerText(name, 36);           // face name, zero-padded
    u16(d, 0x0020);
    u16(d, static_cast<uint16_t>(punkte * 2));
    return d;
}

std::string stilSatz(uint8_t ausrichtung, uint16_t schrift) {
    std::string d;
    d.push_back(0x05);                   // text
    d.push_back(static_cast<char>(ausrichtung));
    u16(d, 0);                           // no borders
    u16(d, schrift);
    u16(d, 0);                           // automatic colours, no pattern
    u16(d, 0);                           // border colours
    u16(d, 0);
    u16(d, 0);
    return d;
}

// Field names: the strings by their German note names, column 1 being g (MIDI note 55), then
// gis, a, b, h, c1, cis1 ... up to g3.
std::string feldName(int spalte) {
    static const char* const namen[12] = {"c", "cis", "d", "dis", "e", "f", "fis", "g", "gis", "a", "b", "h"};
    int ton = 54 + spalte;
    int oktave = ton / 12 - 4;  // 48..59 small octave, 60..71 one-line, ...
    std::string n = namen[ton % 12];
    if (oktave > 0) n += std::to_string(oktave);
    return n;
}

constexpr uint16_t kStilZelle = 1;

// Everything of the stream before its padding record.
std::string streamKopf(const Layout& l) {
    std::string s;
    satz(s, 0x54FF, std::string(2, '\0'));  // start of a Works database
    {
        std::string d;
        u16(d, 0);
        u16(d, 0);
        u16(d, static_cast<uint16_t>(l.spalten - 1));
        u16(d, static_cast<uint16_t>(l.zeilen - 1));
        satz(s, 0x0006, d);  // active range
    }
    {
        std::string d;
        u16(d, 0);
        u16(d, static_cast<uint16_t>(kKopfSchriftGroesse * 2));
        satz(s, 0x5424, d);  // default font
    }
    satz(s, 0x5456, schriftSatz(kKopfSchrift, kKopfSchriftGroesse));    // font 0
    satz(s, 0x5456, schriftSatz(kNotenSchrift, kNotenSchriftGroesse));  // font 1
    satz(s, 0x545A, stilSatz(0x00, 0));  // style 0: plain text in the head font
    satz(s, 0x545A, stilSatz(0x08, 1));  // style 1: the note cells, glyphs centred
    for (int c = 0; c < l.spalten; ++c) {
        std::string d;
        u16(d, static_cast<uint16_t>(c));
        u16(d, kSpaltenBreite);
        satz(s, 0x546B, d);
    }
    for (int c = 0; c < l.spalten; ++c) {
        std::string d = festerText(feldName(c + 1), 16);
        u16(d, static_cast<uint16_t>(c));
        u16(d, 0);
        u16(d, static_cast<uint16_t>(c));
        u16(d, 0x0FFF);
        satz(s, 0x000B, d);
    }
    {
        // Page set-up: margins left, bottom, top, right, then paper height and width (twips), the
        // first page number, and header and footer distances of half an inch.
        std::string d;
        for (int wert : {kRandSeite, kRandObenUnten, kRandObenUnten, kRandSeite, kSeitenHoehe, kSeitenBreite, 1, 0, 0,
                         720, 720})
            u16(d, static_cast<uint16_t>(wert));
        satz(s, 0x5423, d);
    }
    return s;
}

// A blank label cell: the lead blank, then the three bytes the writer patches, all zero.
void leereZelle(std::string& s, int spalte, int zeile) {
    u16(s, 0x000F);
    u16(s, 10);
    s.push_back(static_cast<char>(spalte));
    s.push_back('\0');
    u16(s, static_cast<uint16_t>(zeile));
    u16(s, kStilZelle);
    s.push_back(' ');
    s.append(3, '\0');
}

struct Sektoren {
    int anzahl = 0;
    std::vector<int> fat;    // sectors holding the FAT
    std::vector<int> strom;  // the order in which the stream may use the others
};

Sektoren sektorenPlanen(const Layout& l) {
    Sektoren s;
    s.anzahl = (l.dateiLaenge + kSektor - 1) / kSektor - 1;
    // Each FAT sector sits at the start of the 128 sectors it describes; for 37 strings the second
    // one is sector 128, which is exactly the "Break01" piece.
    for (int k = 0; k * 128 < s.anzahl; ++k) s.fat.push_back(k * 128);
    for (int n = 0; n < s.anzahl; ++n) {
        bool belegt = n == kVerzeichnisSektor || (n >= kSchriftenVon && n <= kSchriftenBis);
        for (int f : s.fat) belegt = belegt || f == n;
        if (!belegt) s.strom.push_back(n);
    }
    return s;
}

// Stream position of a file offset that lies in a stream sector.
int32_t stromPosition(const Sektoren& s, int32_t dateiPos) {
    int sektor = dateiPos / kSektor - 1;
    for (size_t i = 0; i < s.strom.size(); ++i)
        if (s.strom[i] == sektor) return static_cast<int32_t>(i) * kSektor + dateiPos % kSektor;
    throw std::logic_error("Dateiposition liegt nicht im Datenstrom");
}

int32_t dateiPosition(const Sektoren& s, int32_t stromPos) {
    return (s.strom.at(static_cast<size_t>(stromPos / kSektor)) + 1) * kSektor + stromPos % kSektor;
}

std::string verzeichnisEintrag(const std::string& name, uint8_t art, uint32_t kind, uint32_t start, uint32_t groesse,
                               const uint8_t* klasse) {
    std::string e(128, '\0');
    for (size_t i = 0; i < name.size(); ++i) e[2 * i] = name[i];  // UTF-16LE, ASCII names only
    if (!name.empty()) setzeU16(e, 64, static_cast<uint16_t>((name.size() + 1) * 2));
    e[66] = static_cast<char>(art);
    e[67] = art ? 1 : 0;  // black
    setzeU32(e, 68, kFrei);
    setzeU32(e, 72, kFrei);
    setzeU32(e, 76, kind);
    if (klasse) std::memcpy(e.data() + 80, klasse, 16);
    if (art) {
        setzeU32(e, 116, start);
        setzeU32(e, 120, groesse);
    }
    return e;
}

} // namespace

std::string wdbDatei(const Layout& l) {
    const Sektoren sek = sektorenPlanen(l);

    std::string strom = streamKopf(l);
    const int32_t zellenStart = stromPosition(sek, l.ersteZelle);
    const int32_t fuellung = zellenStart - static_cast<int32_t>(strom.size()) - 4;
    if (fuellung < 0) throw std::logic_error("Kein Platz vor der ersten Zelle");
    // A record no reader takes up: it only moves the first cell to its fixed offset.
    satz(strom, 0x547F, std::string(static_cast<size_t>(fuellung), '\0'));
    for (int z = 0; z < l.zeilen; ++z)
        for (int c = 0; c < l.spalten; ++c) leereZelle(strom, c, z);
    if (dateiPosition(sek, static_cast<int32_t>(strom.size())) != l.endeSatz)
        throw std::logic_error("Das Ende der Zellen liegt nicht vor dem Footer");
    satz(strom, 0x0001, "");

    const size_t stromSektoren = (strom.size() + kSektor - 1) / kSektor;
    if (stromSektoren > sek.strom.size()) throw std::logic_error("Datenstrom zu lang");

    std::vector<uint32_t> fat(sek.fat.size() * 128, kFrei);
    for (int f : sek.fat) fat[static_cast<size_t>(f)] = kFatSektor;
    fat[kVerzeichnisSektor] = kKettenEnde;
    for (size_t i = 0; i < stromSektoren; ++i)
        fat[static_cast<size_t>(sek.strom[i])] =
            i + 1 < stromSektoren ? static_cast<uint32_t>(sek.strom[i + 1]) : kKettenEnde;

    std::string bild(static_cast<size_t>(sek.anzahl + 1) * kSektor, '\0');
    auto sektorPos = [](int n) { return static_cast<size_t>(n + 1) * kSektor; };

    // Compound file header.
    const uint8_t signatur[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::memcpy(bild.data(), signatur, 8);
    setzeU16(bild, 24, 0x003E);
    setzeU16(bild, 26, 0x0003);
    setzeU16(bild, 28, 0xFFFE);
    setzeU16(bild, 30, 9);   // 512-byte sectors
    setzeU16(bild, 32, 6);   // 64-byte mini sectors
    setzeU32(bild, 44, static_cast<uint32_t>(sek.fat.size()));
    setzeU32(bild, 48, kVerzeichnisSektor);
    setzeU32(bild, 56, 4096);
    setzeU32(bild, 60, kKettenEnde);  // no mini FAT
    setzeU32(bild, 68, kKettenEnde);  // no DIFAT sectors
    for (size_t i = 0; i < 109; ++i)
        setzeU32(bild, 76 + 4 * i, i < sek.fat.size() ? static_cast<uint32_t>(sek.fat[i]) : kFrei);

    for (size_t k = 0; k < sek.fat.size(); ++k)
        for (size_t i = 0; i < 128; ++i) setzeU32(bild, sektorPos(sek.fat[k]) + 4 * i, fat[k * 128 + i]);

    // Class id {00021303-0000-0000-C000-000000000046}: a Works database.
    const uint8_t worksDatenbank[16] = {0x03, 0x13, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00,
                                        0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46};
    std::string verzeichnis = verzeichnisEintrag("Root Entry", 5, 1, kKettenEnde, 0, worksDatenbank) +
                              verzeichnisEintrag("MN0", 2, kFrei, static_cast<uint32_t>(sek.strom[0]),
                                                 static_cast<uint32_t>(strom.size()), nullptr) +
                              verzeichnisEintrag("", 0, kFrei, 0, 0, nullptr) +
                              verzeichnisEintrag("", 0, kFrei, 0, 0, nullptr);
    bild.replace(sektorPos(kVerzeichnisSektor), verzeichnis.size(), verzeichnis);

    for (size_t i = 0; i < stromSektoren; ++i) {
        size_t von = i * kSektor;
        size_t n = std::min<size_t>(kSektor, strom.size() - von);
        bild.replace(sektorPos(sek.strom[i]), n, strom, von, n);
    }

    bild.resize(static_cast<size_t>(l.dateiLaenge));
    return bild;
}

std::string vorlageDatei(const Layout& l) {
    std::string d = wdbDatei(l);
    if (l.spalten == 25) d.insert(static_cast<size_t>(l.ersteZelle), 1, '\0');
    return d;
}

} // namespace lyrabo::vorlage
