// The Works database writer on a small program folder of its own: the patched grid cell by cell,
// the splicing of the final file, the save dialog and what happens when pieces are missing.
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace lyrabo;
using namespace lyrabo::test;
namespace fs = std::filesystem;

namespace {

std::string muster(size_t groesse, uint8_t start) {
    std::string s(groesse, '\0');
    for (size_t i = 0; i < groesse; ++i) s[i] = static_cast<char>((start + i * 7) & 0xFF);
    return s;
}

// A blank grid whose cell headers are all different and whose cell texts read "xyz", followed by
// a tail that is not part of any row.
std::string leeresRaster(int zellen, const std::string& schluss = "SCHLUSS") {
    std::string s;
    for (int k = 0; k < zellen; ++k) {
        for (int j = 0; j < 11; ++j) s += static_cast<char>((k * 11 + j) % 251);
        s += "xyz";
    }
    return s + schluss;
}

struct WdbOrdner : ExportUmgebung {
    SammlungRef<CAkkord> akkorde = neueSammlung<CAkkord>();
    SammlungRef<CKlangPause> pausen = neueSammlung<CKlangPause>();
    fs::path ini = ordner / "ini";

    explicit WdbOrdner(int16_t saiten) {
        fs::create_directories(ini);
        e().WDBSpaltenAnzahl(saiten);
        e().TicksPerQuarterNote(480);
        if (saiten == 25) {
            vorlage("Header_25.ini", muster(3682, 1));
            vorlage("Schriften_25.ini", muster(4096, 2));
            vorlage("Footer_25.ini", muster(566, 3));
        } else {
            vorlage("Header_37.ini", muster(5627, 4));
            vorlage("Schriften_37.ini", muster(4096, 5));
            vorlage("Break01_37.ini", muster(512, 6));
            vorlage("Footer_37.ini", muster(731, 7));
        }
        auto& w = programm.WDBCreator();
        w.Akkorde(akkorde);
        w.Pausen(pausen);
    }
    void vorlage(const std::string& name, const std::string& bytes) { dateiErsetzen(ini / name, bytes); }
    std::string lesen(const std::string& name) { return dateiLesen(ini / name); }
    void schreiben(const fs::path& ziel) { programm.WDBCreator().write_WDB(ziel.string()); }
};

// Expected grid: the blank one with the three text bytes of the given cells replaced.
struct Zelle {
    int zeile, spalte;
    std::string text;
};
std::string gepatcht(std::string raster, int saiten, std::initializer_list<Zelle> zellen) {
    for (const auto& z : zellen) raster.replace(static_cast<size_t>(((z.zeile - 1) * saiten + z.spalte - 1) * 14 + 11), 3, z.text);
    return raster;
}

const std::string kViertel{'b', 0, 0}, kAchtel{'n', 0, 0}, kPunktViertel{'b', ',', 0}, kViertelPause{'h', 0, 0};

} // namespace

TEST(WDBRaster, ZellenSpaltenUndNotenwahlWieGeschrieben) {
    WdbOrdner w(25);
    const std::string leer = leeresRaster(4 * 25);
    w.vorlage("FelderAll_25.ini", leer);
    // Leading rest on column 3 (57 - 54).
    w.pausen->Add(pause(0, 57, 480, 0));
    // Stored 64, 60, 67: the counted pick finds the lowest each time: columns 6, 10, 13.
    w.akkorde->Add(akkord({note(64, 240, 480, 1), note(60, 720, 480, 1), note(67, 240, 480, 1)}));
    // Stored 62, 67, 59: the count of improvements is 2, so the 67 comes first (column 13); the
    // lower notes then land in the next free cells 14 and 15.
    w.akkorde->Add(akkord({note(62, 480, 1200, 2), note(67, 480, 1200, 2), note(59, 480, 1200, 2)}));
    w.pausen->Add(pause(1, 67, 480, 720)); // harp event only, no row

    w.schreiben(w.ordner / "lied.wdb");

    EXPECT_EQ(w.lesen("FelderAllTemp_25.ini"),
              gepatcht(leer, 25, {{1, 3, kViertelPause}, {2, 6, kPunktViertel}, {2, 10, kAchtel}, {2, 13, kAchtel},
                                  {3, 13, kViertel}, {3, 14, kViertel}, {3, 15, kViertel}}));
    EXPECT_EQ(kurz(*w.programm.HarfeEvents),
              (std::vector<std::string>{"3/0/57/480/0/0/", "1/1/60/720/480/0/", "1/1/64/240/480/0/", "1/1/67/240/480/0/",
                                        "3/1/67/480/720/0/", "1/2/67/480/1200/0/", "1/2/59/480/1200/0/",
                                        "1/2/62/480/1200/0/"}));
    // Writing consumes the chords.
    for (const auto& a : *w.akkorde) EXPECT_EQ(a->Count(), 0);
}

TEST(WDBRaster, TranspositionVerschiebtDieSpalten) {
    WdbOrdner w(37);
    const std::string leer = leeresRaster(2 * 37);
    w.vorlage("FelderAll_37.ini", leer);
    w.e().Transpo(12);
    w.e().TicksPerQuarterNote(96); // factor 2: 192 ticks are a half note ("96"), 24 a sixteenth ("12")
    w.akkorde->Add(akkord({note(43, 192, 0, 1), note(79, 24, 0, 1)}));
    w.schreiben(w.ordner / "lied.wdb");
    EXPECT_TRUE(w.lesen("FelderAllTemp_37.ini") ==
                gepatcht(leer, 37, {{1, 1, std::string{'v', 0, 0}}, {1, 37, std::string{'m', 0, 0}}}));
}

TEST(WDBDatei, FuenfundzwanzigSaitenOhneLetztesKopfbyte) {
    WdbOrdner w(25);
    const std::string leer = muster(49000, 9);
    w.vorlage("FelderAll_25.ini", leer);
    w.schreiben(w.ordner / "lied.wdb");
    std::string erwartet = muster(3682, 1).substr(0, 3681) + leer.substr(0, 2462) + muster(4096, 2) + leer.substr(2462) +
                           muster(566, 3);
    ASSERT_EQ(erwartet.size(), 57343u);
    EXPECT_TRUE(dateiLesen(w.ordner / "lied.wdb") == erwartet);
    // The patched grid stays beside the templates.
    EXPECT_TRUE(w.lesen("FelderAllTemp_25.ini") == leer);
}

TEST(WDBDatei, SiebenunddreissigSaitenGanzerKopf) {
    WdbOrdner w(37);
    std::string leer = muster(69930, 11);
    w.vorlage("FelderAll_37.ini", leer);
    w.akkorde->Add(akkord({note(55, 480, 0, 1)})); // column 1 of row 1, a cell of the first stretch
    w.schreiben(w.ordner / "lied.wdb");
    std::string raster = leer;
    raster.replace(11, 3, kViertel);
    std::string erwartet = muster(5627, 4) + raster.substr(0, 517) + muster(4096, 5) + raster.substr(517, 55808) +
                           muster(512, 6) + raster.substr(517 + 55808) + muster(731, 7);
    ASSERT_EQ(erwartet.size(), 80896u);
    EXPECT_TRUE(dateiLesen(w.ordner / "lied.wdb") == erwartet);
}

TEST(WDBDatei, MehrZeilenAlsDasRasterHatUndZuKurzeStuecke) {
    WdbOrdner w(25);
    const std::string leer = leeresRaster(2 * 25, "");
    w.vorlage("FelderAll_25.ini", leer);
    w.vorlage("Footer_25.ini", "kurz");
    for (int i = 1; i <= 3; ++i) w.akkorde->Add(akkord({note(55, 480, i * 480, static_cast<int16_t>(i))}));
    w.schreiben(w.ordner / "lied.wdb");
    // The third row is read past the end of the blank grid: zeros, with the note's text bytes.
    std::string raster = gepatcht(leer, 25, {{1, 1, kViertel}, {2, 1, kViertel}});
    raster += std::string(11, '\0') + kViertel + std::string(24 * 14, '\0');
    EXPECT_EQ(w.lesen("FelderAllTemp_25.ini"), raster);
    // The file still has the fixed size; what the pieces lack is zeros.
    std::string datei = dateiLesen(w.ordner / "lied.wdb");
    ASSERT_EQ(datei.size(), 57343u);
    EXPECT_EQ(datei.substr(3681, raster.size()), raster);
    EXPECT_EQ(datei.substr(3681 + raster.size(), 2462 - raster.size()), std::string(2462 - raster.size(), '\0'));
    EXPECT_EQ(datei.substr(57343 - 566), std::string("kurz") + std::string(562, '\0'));
}

TEST(WDBDatei, AndereSaitenzahlSchreibtKeineDatei) {
    WdbOrdner w(30);
    w.vorlage("FelderAll_30.ini", leeresRaster(30));
    w.akkorde->Add(akkord({note(60, 480, 0, 1)}));
    w.programm.WDBCreator().Form(&w.form);
    w.programm.WDBCreator().Dialog(&w.dialog);
    w.dialog.antwort = (w.ordner / "lied.wdb").string();
    w.programm.WDBCreator().saveDialog_WDB();
    EXPECT_FALSE(fs::exists(w.ordner / "lied.wdb"));
    EXPECT_TRUE(fs::exists(w.ini / "FelderAllTemp_30.ini"));
    EXPECT_EQ(w.form.meldungen, std::vector<std::string>{"Daten gespeichert!"});
}

TEST(WDBDatei, FehlerLassenDieAlteDateiStehen) {
    WdbOrdner w(25);
    w.vorlage("FelderAll_25.ini", leeresRaster(25));
    const fs::path ziel = w.ordner / "lied.wdb";
    dateiErsetzen(ziel, "alte Datenbank");
    auto zielUnveraendert = [&] {
        EXPECT_EQ(dateiLesen(ziel), "alte Datenbank");
        for (const auto& eintrag : fs::directory_iterator(w.ordner.pfad()))
            EXPECT_EQ(eintrag.path().filename().string().find(".tmp"), std::string::npos) << eintrag.path();
    };

    // A length that has no note character (250 ticks / 10) names the length.
    w.akkorde->Add(akkord({note(60, 250, 0, 1)}));
    try {
        w.schreiben(ziel);
        ADD_FAILURE() << "keine Meldung";
    } catch (const Fehler& f) {
        EXPECT_NE(std::string(f.what()).find("250"), std::string::npos) << f.what();
    }
    zielUnveraendert();

    // A missing template piece names the file.
    fs::remove(w.ini / "Schriften_25.ini");
    w.akkorde->Add(akkord({note(60, 240, 0, 1)}));
    try {
        w.schreiben(ziel);
        ADD_FAILURE() << "keine Meldung";
    } catch (const DateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("Schriften_25.ini"), std::string::npos) << f.what();
    }
    zielUnveraendert();

    // So does a missing blank grid.
    fs::remove(w.ini / "FelderAll_25.ini");
    try {
        w.schreiben(ziel);
        ADD_FAILURE() << "keine Meldung";
    } catch (const DateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("FelderAll_25.ini"), std::string::npos) << f.what();
    }
    zielUnveraendert();
}

TEST(WDBDialog, AbbruchEndungUndErfolg) {
    WdbOrdner w(25);
    w.vorlage("FelderAll_25.ini", leeresRaster(25));
    auto& writer = w.programm.WDBCreator();
    writer.Form(&w.form);
    writer.Dialog(&w.dialog);

    writer.saveDialog_WDB(); // cancelled
    EXPECT_EQ(w.dialog.filter, "MS-Works-Datenbank  (*.wdb)|*.wdb");
    EXPECT_EQ(w.dialog.flags, 2);

    for (const char* falsch : {"lied.txt", "lied.wdbx", "db", ""}) {
        w.dialog.antwort = (w.ordner / falsch).string();
        writer.saveDialog_WDB();
    }

    // Only the last three characters count, in any case.
    for (const char* gut : {"a.WdB", "ohnePunktwdb"}) {
        w.akkorde->Add(akkord({note(60, 480, 0, 1)}));
        w.dialog.antwort = (w.ordner / gut).string();
        writer.saveDialog_WDB();
        EXPECT_EQ(dateiLesen(w.ordner / gut).size(), 57343u) << gut;
    }
    EXPECT_EQ(w.form.meldungen, (std::vector<std::string>{"Daten nicht gespeichert!", "Falsche Dateiendung!",
                                                          "Falsche Dateiendung!", "Falsche Dateiendung!",
                                                          "Falsche Dateiendung!", "Daten gespeichert!",
                                                          "Daten gespeichert!"}));
    for (const char* falsch : {"lied.txt", "lied.wdbx", "db"}) EXPECT_FALSE(fs::exists(w.ordner / falsch)) << falsch;
}

TEST(WDBDialog, FehlschlagWirdGemeldetNichtAlsGespeichert) {
    WdbOrdner w(37);
    auto& writer = w.programm.WDBCreator();
    writer.Form(&w.form);
    writer.Dialog(&w.dialog);
    w.vorlage("FelderAll_37.ini", leeresRaster(37));
    w.dialog.antwort = (w.ordner / "gibt-es-nicht" / "lied.wdb").string();
    writer.saveDialog_WDB();
    ASSERT_EQ(w.form.meldungen.size(), 1u);
    EXPECT_NE(w.form.meldungen[0].find("lied.wdb"), std::string::npos) << w.form.meldungen[0];
    EXPECT_NE(w.form.meldungen[0], "Daten gespeichert!");
}

// With the shipped pieces and no note placed, the written database is the template Works file
// itself: byte for byte for 37 strings, without header byte 3681 for 25.
TEST(WDBDatei, MitDenMitgeliefertenStueckenEntstehtDieVorlage) {
    for (int16_t saiten : {int16_t{25}, int16_t{37}}) {
        ExportUmgebung u;
        fs::copy(fs::path(LYRABO_SOURCE_DIR) / "ini", u.ordner / "ini", fs::copy_options::recursive);
        u.e().WDBSpaltenAnzahl(saiten);
        auto& writer = u.programm.WDBCreator();
        writer.Akkorde(neueSammlung<CAkkord>());
        writer.Pausen(neueSammlung<CKlangPause>());
        writer.write_WDB((u.ordner / "leer.wdb").string());
        std::string vorlage = dateiLesen(u.ordner / "ini" / ("wdb_" + std::to_string(saiten) + ".ini"));
        if (saiten == 25) vorlage.erase(3681, 1);
        EXPECT_TRUE(dateiLesen(u.ordner / "leer.wdb") == vorlage) << saiten;
    }
}
