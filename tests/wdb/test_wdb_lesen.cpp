// Databases written from the shipped templates read back through wks2csv: every note and rest
// glyph shows up in its row and string column, wherever the fixed pieces cut the grid.
#include "app/core/CProgramm.h"
#include "export/CWDBCreator.h"
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

class StilleForm : public IForm {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return -1; }
    std::vector<std::string> meldungen;
};

std::string vorlage(int spalten) {
    return dateiLesen(fs::path(LYRABO_BIN_DIR) / "ini" / ("wdb_" + std::to_string(spalten) + ".ini"));
}

// What the sheet should show: (row, string column from 0) -> glyph text.
using Blatt = std::map<std::pair<int, int>, std::string>;

// Glyphs of the program's font tables by length at 48 ticks per quarter.
std::string notenZeichen(int laenge48) {
    switch (laenge48) {
    case 192: return "c";
    case 144: return "v,";
    case 96: return "v";
    case 72: return "b,";
    case 48: return "b";
    case 36: return "n,";
    case 24: return "n";
    default: return "m";
    }
}
std::string pausenZeichen(int laenge48) {
    switch (laenge48) {
    case 192: return "f";
    case 144: return "g,";
    case 96: return "g";
    case 72: return "h,";
    case 48: return "h";
    case 36: return "j,";
    case 24: return "j";
    default: return "k";
    }
}

// A program folder with the shipped ini/ pieces, and a piece to write built by hand.
class Schreiber {
public:
    explicit Schreiber(int spalten) : m_spalten(spalten) {
        fs::copy(fs::path(LYRABO_BIN_DIR) / "ini", m_ordner.pfad() / "ini", fs::copy_options::recursive);
        m_programm.initGlobals();
        m_programm.Einstellungen().WDBSpaltenAnzahl(static_cast<int16_t>(spalten));
    }

    // The leading rest: the first row.
    void fuehrendePause(int saite, int laenge48) {
        auto p = std::make_shared<CKlangPause>();
        p->AkkordNr(0);
        p->TonHoehe(static_cast<int16_t>(54 + saite));
        p->Laenge(laenge48 * m_programm.Einstellungen().TPQN_Faktor());
        m_pausen->Add(p);
        m_erwartet[{0, saite - 1}] = pausenZeichen(laenge48);
        m_ersteZeile = 1;
    }

    // Notes of one chord, lowest string first; each chord is one row.
    void akkord(std::vector<std::pair<int, int>> saitenUndLaengen) {
        auto a = neueSammlung<CKlangNote>();
        const int nr = m_akkorde->Count() + 1;
        for (auto [saite, laenge48] : saitenUndLaengen) {
            auto n = std::make_shared<CKlangNote>();
            n->AkkordNr(static_cast<int16_t>(nr));
            n->TonHoehe(static_cast<int16_t>(54 + saite));
            n->Laenge(laenge48 * m_programm.Einstellungen().TPQN_Faktor());
            a->Add(n);
            m_erwartet[{m_ersteZeile + nr - 1, saite - 1}] = notenZeichen(laenge48);
        }
        m_akkorde->Add(a);
    }

    // Chords of one short note each until the grid's last row.
    void auffuellenBis(int zeilen) {
        while (m_ersteZeile + m_akkorde->Count() < zeilen) {
            int z = m_ersteZeile + m_akkorde->Count();
            akkord({{1 + (z * 7) % m_spalten, z % 2 ? 12 : 24}});
        }
    }

    fs::path schreiben(const std::string& name) {
        CWDBCreator& w = m_programm.WDBCreator();
        w.Akkorde(m_akkorde);
        w.Pausen(m_pausen);
        w.KlangNoten(neueSammlung<CKlangNote>());
        w.Form(&m_form);
        const fs::path datei = m_ordner / name;
        w.write_WDB(datei.string());
        return datei;
    }

    Blatt& erwartet() { return m_erwartet; }

private:
    int m_spalten;
    TestOrdner m_ordner;
    StilleForm m_form;
    CProgramm m_programm{m_ordner.pfad(), m_form};
    AkkordeRef m_akkorde = neueSammlung<CAkkord>();
    PausenRef m_pausen = neueSammlung<CKlangPause>();
    Blatt m_erwartet;
    int m_ersteZeile = 0;
};

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

std::string wks2csv(const fs::path& datei) {
    const std::string programm = LYRABO_WKS2CSV;
    EXPECT_TRUE(fs::exists(programm)) << "wks2csv fehlt (Paket libwps-tools)";
    return ausfuehren("'" + programm + "' -f ';' '" + datei.string() + "' 2>/dev/null");
}

// The cells as wks2csv reads them, row by row; the line of column heads is dropped.
std::vector<std::vector<std::string>> zellen(const std::string& csv) {
    std::istringstream text(csv);
    std::vector<std::vector<std::string>> zeilen;
    std::string zeile;
    std::getline(text, zeile);
    while (std::getline(text, zeile)) {
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

// Every placed cell holds its glyphs behind the lead blank; every other cell only the blank.
void pruefeBlatt(const fs::path& datei, int spalten, int zeilen, const Blatt& erwartet) {
    auto gelesen = zellen(wks2csv(datei));
    ASSERT_EQ(gelesen.size(), static_cast<size_t>(zeilen));
    for (int z = 0; z < zeilen; ++z) {
        const auto& zeile = gelesen[static_cast<size_t>(z)];
        ASSERT_EQ(zeile.size(), static_cast<size_t>(spalten)) << "Zeile " << z;
        for (int s = 0; s < spalten; ++s) {
            auto it = erwartet.find({z, s});
            const std::string soll = " " + (it == erwartet.end() ? std::string() : it->second);
            EXPECT_EQ(zeile[static_cast<size_t>(s)], soll) << "Zeile " << z << ", Saite " << s + 1;
        }
    }
}

} // namespace

TEST(WdbLesen, OhneNotenEntstehtDieVorlage) {
    // 37 strings: the template byte for byte; 25 strings: one byte shorter, without byte 3681.
    Schreiber s37(37);
    EXPECT_EQ(dateiLesen(s37.schreiben("leer37.wdb")), vorlage(37));
    Schreiber s25(25);
    const fs::path leer25 = s25.schreiben("leer25.wdb");
    std::string v25 = vorlage(25);
    EXPECT_EQ(dateiLesen(leer25), v25.erase(3681, 1));
    pruefeBlatt(leer25, 25, 140, {});
}

TEST(WdbLesen, Saiten37NotenUndPausenAnIhrenPlaetzen) {
    Schreiber s(37);
    s.fuehrendePause(37, 72);                 // row 0, highest string: the cell's last byte lies behind "Schriften"
    s.akkord({{1, 192}, {5, 144}, {12, 48}, {36, 36}});
    s.akkord({{37, 12}});
    s.akkord({{1, 96}, {2, 72}, {3, 24}, {4, 192}});
    s.auffuellenBis(108);
    s.akkord({{27, 192}, {28, 72}});          // row 108: string 28 is cut by "Break01" before its glyphs
    s.auffuellenBis(134);
    s.akkord({{1, 24}, {37, 144}});           // last row
    const fs::path datei = s.schreiben("noten37.wdb");
    ASSERT_EQ(fs::file_size(datei), 80896u);
    pruefeBlatt(datei, 37, 135, s.erwartet());
}

TEST(WdbLesen, Saiten25NotenUndPausenAnIhrenPlaetzen) {
    Schreiber s(25);
    s.fuehrendePause(13, 144);
    s.akkord({{1, 192}, {25, 72}});
    s.auffuellenBis(7);
    s.akkord({{1, 144}, {2, 36}});  // row 7, string 1: the stream reads a 00 instead of its dot
    s.erwartet()[{7, 0}] = "v";
    s.akkord({{1, 144}, {25, 36}});
    s.auffuellenBis(139);
    s.akkord({{1, 192}, {25, 12}});
    const fs::path datei = s.schreiben("noten25.wdb");
    ASSERT_EQ(fs::file_size(datei), 57343u);
    pruefeBlatt(datei, 25, 140, s.erwartet());
}

TEST(WdbLesen, VorlagenPassenZuDenSchnittgrenzen) {
    const std::string zelle0("\x0F\x00\x0A\x00\x00\x00\x00\x00\x01\x00\x20\x00\x00\x00", 14);
    const std::string signatur("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    const std::string v37 = vorlage(37);
    ASSERT_EQ(v37.size(), 80896u);
    EXPECT_EQ(v37.substr(0, 8), signatur);
    EXPECT_EQ(v37.substr(5627, 14), zelle0);  // the first cell opens the "Felder01" piece
    const std::string v25 = vorlage(25);
    ASSERT_EQ(v25.size(), 57344u);
    EXPECT_EQ(v25.substr(0, 8), signatur);
    EXPECT_EQ(v25.substr(3682, 14), zelle0);  // behind the filler byte the writer drops
    // The stream of the 25-string database reads this byte in place of a dot byte.
    EXPECT_EQ(v25[6144], '\0');
}
