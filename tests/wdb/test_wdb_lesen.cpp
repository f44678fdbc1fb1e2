// The shipped templates read back through wks2csv: notes and rests patched into the grid show up
// in their row and string column, wherever the grid is cut by the fixed pieces.
#include "model/Datei.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace lyrabo;
using lyrabo::test::TestOrdner;
namespace fs = std::filesystem;

namespace {

struct Stueck {
    size_t von, bis;  // file offsets of a grid stretch in the finished database, both included
};

struct Layout {
    int spalten, zeilen;
    std::vector<Stueck> raster;
};

const Layout kL25{25, 140, {{3681, 6142}, {10239, 56776}}};
const Layout kL37{37, 135, {{5627, 6143}, {10240, 66047}, {66560, 80164}}};

// File offset of byte `b` of the cell in row z, column s (both from 0).
size_t zellenByte(const Layout& l, int z, int s, int b) {
    size_t g = (static_cast<size_t>(z) * l.spalten + s) * 14 + b;
    for (const Stueck& st : l.raster) {
        if (g <= st.bis - st.von) return st.von + g;
        g -= st.bis - st.von + 1;
    }
    throw std::out_of_range("Zelle außerhalb des Rasters");
}

// The database the writer assembles when no note is placed: for 37 strings the template itself,
// for 25 strings the template without byte 3681.
std::string leereDatenbank(int spalten) {
    std::string d = dateiLesen(fs::path(LYRABO_BIN_DIR) / "ini" / ("wdb_" + std::to_string(spalten) + ".ini"));
    if (spalten == 25) d.erase(3681, 1);
    return d;
}

using Blatt = std::map<std::pair<int, int>, std::string>;  // (row, column) -> glyph text

void setzen(const Layout& l, std::string& d, Blatt& erwartet, int z, int s, const std::string& zeichen) {
    for (int i = 0; i < 3; ++i)
        d[zellenByte(l, z, s, 11 + i)] = i < static_cast<int>(zeichen.size()) ? zeichen[static_cast<size_t>(i)] : '\0';
    erwartet[{z, s}] = zeichen;
}

std::string ausfuehren(const std::string& befehl) {
    std::string aus;
    FILE* p = popen(befehl.c_str(), "r");
    if (!p) return aus;
    char puffer[4096];
    size_t n;
    while ((n = fread(puffer, 1, sizeof puffer, p)) > 0) aus.append(puffer, n);
    pclose(p);
    return aus;
}

// The cells as wks2csv reads them, row by row; the line of column heads is dropped.
std::vector<std::vector<std::string>> gelesen(const fs::path& datei) {
    const std::string wks2csv = LYRABO_WKS2CSV;
    EXPECT_TRUE(fs::exists(wks2csv)) << "wks2csv fehlt (Paket libwps-tools)";
    std::istringstream text(ausfuehren("'" + wks2csv + "' -f ';' '" + datei.string() + "' 2>/dev/null"));
    std::vector<std::vector<std::string>> zeilen;
    std::string zeile;
    bool kopf = true;
    while (std::getline(text, zeile)) {
        if (kopf) {
            kopf = false;
            continue;
        }
        if (zeile.empty()) continue;
        std::vector<std::string> felder;
        std::istringstream f(zeile);
        std::string feld;
        while (std::getline(f, feld, ';')) {
            if (feld.size() >= 2 && feld.front() == '"' && feld.back() == '"') feld = feld.substr(1, feld.size() - 2);
            felder.push_back(feld);
        }
        zeilen.push_back(felder);
    }
    return zeilen;
}

// Every cell holds its glyphs behind the lead blank; every other cell is just the blank.
void pruefeBlatt(const Layout& l, const fs::path& datei, const Blatt& erwartet) {
    auto zeilen = gelesen(datei);
    ASSERT_EQ(zeilen.size(), static_cast<size_t>(l.zeilen));
    for (int z = 0; z < l.zeilen; ++z) {
        ASSERT_EQ(zeilen[static_cast<size_t>(z)].size(), static_cast<size_t>(l.spalten)) << "Zeile " << z;
        for (int s = 0; s < l.spalten; ++s) {
            auto it = erwartet.find({z, s});
            std::string soll = " " + (it == erwartet.end() ? std::string() : it->second);
            EXPECT_EQ(zeilen[static_cast<size_t>(z)][static_cast<size_t>(s)], soll) << "Zeile " << z << ", Saite " << s + 1;
        }
    }
}

} // namespace

TEST(WdbLesen, LeereDatenbankLiestSichAlsLeeresRaster) {
    for (const Layout* l : {&kL25, &kL37}) {
        TestOrdner ordner;
        const fs::path datei = ordner / "leer.wdb";
        dateiErsetzen(datei, leereDatenbank(l->spalten));
        pruefeBlatt(*l, datei, {});
    }
}

TEST(WdbLesen, Saiten37NotenUndPausenAnIhrenPlaetzen) {
    TestOrdner ordner;
    std::string d = leereDatenbank(37);
    Blatt b;
    setzen(kL37, d, b, 0, 0, "f");      // whole rest, lowest string
    setzen(kL37, d, b, 1, 4, "v,");     // dotted half
    setzen(kL37, d, b, 1, 11, "b");     // chord: quarter on two strings
    setzen(kL37, d, b, 1, 36, "n,");    // highest string: its dot byte lies behind the "Schriften" piece
    setzen(kL37, d, b, 2, 36, "m");
    setzen(kL37, d, b, 108, 27, "h,");  // cut by the "Break01" piece before its glyphs
    setzen(kL37, d, b, 108, 26, "c");
    setzen(kL37, d, b, 134, 0, "j");    // last row
    setzen(kL37, d, b, 134, 36, "k");
    const fs::path datei = ordner / "noten37.wdb";
    dateiErsetzen(datei, d);
    pruefeBlatt(kL37, datei, b);
}

TEST(WdbLesen, Saiten25NotenUndPausenAnIhrenPlaetzen) {
    TestOrdner ordner;
    std::string d = leereDatenbank(25);
    Blatt b;
    setzen(kL25, d, b, 0, 12, "g,");
    setzen(kL25, d, b, 6, 24, "b,");
    setzen(kL25, d, b, 7, 1, "n,");   // beside the one cell whose dot is lost
    setzen(kL25, d, b, 8, 0, "v,");   // the row after it
    setzen(kL25, d, b, 139, 24, "m");
    setzen(kL25, d, b, 139, 0, "c");
    const fs::path datei = ordner / "noten25.wdb";
    dateiErsetzen(datei, d);
    pruefeBlatt(kL25, datei, b);
}

TEST(WdbLesen, Saiten25DerPunktInZeile7Saite1GehtVerloren) {
    // The stream reads the first "Schriften" byte (00) instead of this cell's dot byte: the note
    // stays, its dot is not shown.
    TestOrdner ordner;
    std::string d = leereDatenbank(25);
    Blatt b;
    setzen(kL25, d, b, 7, 0, "v,");
    b[{7, 0}] = "v";
    const fs::path datei = ordner / "punkt25.wdb";
    dateiErsetzen(datei, d);
    pruefeBlatt(kL25, datei, b);
}
