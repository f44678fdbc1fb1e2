// Databases written from the shipped templates read back through wks2csv: every note and rest
// glyph shows up in its row and string column, wherever the fixed pieces cut the grid.
#include "core/test_export_umgebung.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>

using namespace lyrabo;
using namespace lyrabo::test;
namespace fs = std::filesystem;

namespace {

// Glyphs of the program's font tables by length at 48 ticks per quarter: note, rest.
const std::map<int, std::pair<std::string, std::string>> kZeichen = {
    {192, {"c", "f"}}, {144, {"v,", "g,"}}, {96, {"v", "g"}}, {72, {"b,", "h,"}},
    {48, {"b", "h"}},  {36, {"n,", "j,"}},  {24, {"n", "j"}}, {12, {"m", "k"}}};

// A program folder with the shipped ini/ pieces, a piece built by hand, and what the sheet
// should show: (row, string column from 0) -> glyph text.
struct Schreiber : ExportUmgebung {
    int spalten, transpo;
    int ersteZeile = 0;
    std::map<std::pair<int, int>, std::string> erwartet;

    explicit Schreiber(int s, int16_t t = 0, int16_t ticksProViertel = 480) : spalten(s), transpo(t) {
        mitVorlagen();
        e().WDBSpaltenAnzahl(static_cast<int16_t>(s));
        e().Transpo(t);
        e().TicksPerQuarterNote(ticksProViertel);
    }
    // The leading rest: the first row.
    void fuehrendePause(int saite, int laenge48) {
        pausen->Add(pause(0, static_cast<int16_t>(54 + saite - transpo), laenge48 * e().TPQN_Faktor()));
        erwartet[{0, saite - 1}] = kZeichen.at(laenge48).second;
        ersteZeile = 1;
    }
    // Notes of one chord, lowest string first; each chord is one row.
    void neuerAkkord(const std::vector<std::pair<int, int>>& saitenUndLaengen) {
        auto a = neueSammlung<CKlangNote>();
        const int nr = akkorde->Count() + 1;
        for (auto [saite, laenge48] : saitenUndLaengen) {
            a->Add(note(static_cast<int16_t>(54 + saite - transpo), laenge48 * e().TPQN_Faktor(), 0, static_cast<int16_t>(nr)));
            erwartet[{ersteZeile + nr - 1, saite - 1}] = kZeichen.at(laenge48).first;
        }
        akkorde->Add(a);
    }
    // Chords of one short note each until the grid's last row.
    void auffuellenBis(int zeilen) {
        for (int z = ersteZeile + akkorde->Count(); z < zeilen; ++z) neuerAkkord({{1 + (z * 7) % spalten, z % 2 ? 12 : 24}});
    }
    fs::path schreiben(const std::string& name) {
        schreiber().write_WDB((ordner / name).string());
        return ordner / name;
    }

    // Every placed cell holds its glyphs behind the lead blank; every other cell only the blank.
    void pruefeBlatt(const fs::path& datei, int zeilen) {
        ASSERT_EQ(fs::file_size(datei), spalten == 37 ? 80896u : 57343u);
        ASSERT_TRUE(fs::exists(LYRABO_WKS2CSV)) << "wks2csv fehlt (Paket libwps-tools)";
        const fs::path csv = ordner / "blatt.csv";
        const std::string befehl = "'" + std::string(LYRABO_WKS2CSV) + "' -f ';' '" + datei.string() + "' > '" +
                                   csv.string() + "' 2>/dev/null";
        ASSERT_EQ(std::system(befehl.c_str()), 0);
        std::istringstream text(dateiLesen(csv));
        std::string zeile;
        std::getline(text, zeile); // the line of column heads
        int z = 0;
        for (; std::getline(text, zeile) && !zeile.empty(); ++z) {
            std::istringstream felder(zeile);
            int s = 0;
            for (std::string feld; std::getline(felder, feld, ';'); ++s) {
                auto it = erwartet.find({z, s});
                const std::string soll = " " + (it == erwartet.end() ? std::string() : it->second);
                EXPECT_EQ(feld, '"' + soll + '"') << "Zeile " << z << ", Saite " << s + 1;
            }
            EXPECT_EQ(s, spalten) << "Zeile " << z;
        }
        EXPECT_EQ(z, zeilen);
    }
};

} // namespace

TEST(WdbLesen, OhneNotenEntstehtDieVorlage) {
    // 37 strings: the template byte for byte; 25 strings: one byte shorter, without byte 3681.
    Schreiber s37(37);
    EXPECT_EQ(dateiLesen(s37.schreiben("leer37.wdb")), dateiLesen(s37.ini / "wdb_37.ini"));
    Schreiber s25(25);
    const fs::path leer25 = s25.schreiben("leer25.wdb");
    EXPECT_EQ(dateiLesen(leer25), dateiLesen(s25.ini / "wdb_25.ini").erase(3681, 1));
    s25.pruefeBlatt(leer25, 140);
}

TEST(WdbLesen, Saiten37NotenUndPausenAnIhrenPlaetzen) {
    Schreiber s(37, 12); // transposed up an octave: the pitches lie 12 lower for the same strings
    s.fuehrendePause(37, 72); // row 0, highest string: the cell's last byte lies behind "Schriften"
    s.neuerAkkord({{1, 192}, {5, 144}, {12, 48}, {36, 36}});
    s.neuerAkkord({{37, 12}});
    s.neuerAkkord({{1, 96}, {2, 72}, {3, 24}, {4, 192}});
    s.auffuellenBis(108);
    s.neuerAkkord({{27, 192}, {28, 72}}); // row 108: string 28 is cut by "Break01" before its glyphs
    s.auffuellenBis(134);
    s.neuerAkkord({{1, 24}, {37, 144}}); // last row
    s.pruefeBlatt(s.schreiben("noten37.wdb"), 135);
}

TEST(WdbLesen, Saiten25NotenUndPausenAnIhrenPlaetzen) {
    Schreiber s(25, 0, 96); // 96 ticks per quarter: every length counts double
    s.fuehrendePause(13, 144);
    s.neuerAkkord({{1, 192}, {25, 72}});
    s.auffuellenBis(7);
    s.neuerAkkord({{1, 144}, {2, 36}}); // row 7, string 1: the stream reads a 00 instead of its dot
    s.erwartet[{7, 0}] = "v";
    s.neuerAkkord({{1, 144}, {25, 36}});
    s.auffuellenBis(139);
    s.neuerAkkord({{1, 192}, {25, 12}});
    s.pruefeBlatt(s.schreiben("noten25.wdb"), 140);
}
