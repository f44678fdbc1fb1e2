// The Works database writer on a small program folder of its own: cutting the template into its
// pieces, the patched grid cell by cell, the splicing of the final file, the save dialog, failures,
// and the harp events with their two melody rules.
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <vector>

using namespace lyrabo;
using namespace lyrabo::test;
namespace fs = std::filesystem;

namespace {

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

// Template pieces, each of its own byte, and the given blank grid.
struct WdbOrdner : ExportUmgebung {
    std::string leer;
    WdbOrdner(int16_t saiten, std::string raster) : leer(std::move(raster)) {
        fs::create_directories(ini);
        e().WDBSpaltenAnzahl(saiten);
        const std::string n = "_" + std::to_string(saiten) + ".ini";
        using Stuecke = std::vector<std::pair<const char*, size_t>>;
        const Stuecke stuecke = saiten == 25 ? Stuecke{{"Header", 3682}, {"Schriften", 4096}, {"Footer", 566}}
                                             : Stuecke{{"Header", 5627}, {"Schriften", 4096}, {"Break01", 512}, {"Footer", 731}};
        char byte = 0;
        for (const auto& [name, groesse] : stuecke) dateiErsetzen(ini / (name + n), std::string(groesse, ++byte));
        dateiErsetzen(ini / ("FelderAll" + n), leer);
    }
    std::string temp() { return dateiLesen(ini / ("FelderAllTemp_" + std::to_string(e().WDBSpaltenAnzahl()) + ".ini")); }
    void schreiben(const std::string& name = "lied.wdb") { schreiber().write_WDB((ordner / name).string()); }
    void speichern(const fs::path& ziel) {
        dialog.antwort = ziel.string();
        schreiber().saveDialog_WDB();
    }
};

// Expected grid: the blank one with the three text bytes of the given cells (row, column) replaced.
std::string gepatcht(std::string raster, int saiten, std::initializer_list<std::tuple<int, int, std::string>> zellen) {
    for (const auto& [zeile, spalte, text] : zellen)
        raster.replace(static_cast<size_t>(((zeile - 1) * saiten + spalte - 1) * 14 + 11), 3, text);
    return raster;
}

const std::string kViertel{'b', 0, 0}, kAchtel{'n', 0, 0}, kPunktViertel{'b', ',', 0}, kViertelPause{'h', 0, 0};

// A template whose every byte tells its offset apart from its neighbours'.
std::string musterVorlage(size_t laenge) {
    std::string s(laenge, '\0');
    for (size_t i = 0; i < laenge; ++i) s[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return s;
}

struct Vorlagen : ExportUmgebung {
    Vorlagen() { fs::create_directories(ini); }
    std::string lesen(const std::string& name) const { return dateiLesen(ini / name); }
    void schneiden(int16_t saiten, int16_t befehl) {
        e().WDBSpaltenAnzahl(saiten);
        if (befehl == 25) programm.WDBCreator().writeINIDateien25();
        else programm.WDBCreator().writeINIDateien37();
    }
    long dateien() const { return std::distance(fs::directory_iterator(ini), fs::directory_iterator()); }
};

} // namespace

// Each piece runs from the end of the one before it to its own end (exclusive); the "Felder"
// pieces together make up the blank grid.
TEST(VorlagenSchnitt, SchneidetAnDenFestenGrenzen) {
    const std::pair<int16_t, std::vector<std::pair<std::string, size_t>>> faelle[] = {
        {25, {{"Header", 3682}, {"Felder01", 6144}, {"Schriften", 10240}, {"Felder02", 56778}, {"Footer", 57344}}},
        {37, {{"Header", 5627}, {"Felder01", 6144}, {"Schriften", 10240}, {"Felder02", 66048}, {"Break01", 66560},
              {"Felder03", 80165}, {"Footer", 80896}}},
    };
    for (const auto& [saiten, stuecke] : faelle) {
        Vorlagen u;
        const std::string n = "_" + std::to_string(saiten) + ".ini", vorlage = musterVorlage(stuecke.back().second);
        dateiErsetzen(u.ini / ("wdb" + n), vorlage);
        u.schneiden(saiten, saiten);
        std::string raster;
        size_t von = 0;
        for (const auto& [name, bis] : stuecke) {
            EXPECT_EQ(u.lesen(name + n), vorlage.substr(von, bis - von)) << name << n;
            if (name.rfind("Felder", 0) == 0) raster += vorlage.substr(von, bis - von);
            von = bis;
        }
        EXPECT_EQ(u.lesen("FelderAll" + n), raster);
        EXPECT_EQ(raster.size(), saiten == 25 ? 49000u : 69930u);
        EXPECT_EQ(u.dateien(), static_cast<long>(stuecke.size()) + 2); // the template, pieces and grid, nothing else
        EXPECT_TRUE(u.form.meldungen.empty());
    }
}

TEST(VorlagenSchnitt, SchneidetNurWennDieSaitenzahlZumBefehlPasst) {
    Vorlagen u;
    dateiErsetzen(u.ini / "wdb_25.ini", musterVorlage(57344));
    dateiErsetzen(u.ini / "wdb_37.ini", musterVorlage(80896));
    // The names are built from the setting but compared with literal "_25" and "_37" names.
    for (auto [saiten, befehl] : {std::pair<int16_t, int16_t>{37, 25}, {25, 37}, {30, 25}, {30, 37}})
        u.schneiden(saiten, befehl);
    EXPECT_EQ(u.dateien(), 2);
    // Without a matching name not even the template is opened; with one, a missing template is named.
    fs::remove(u.ini / "wdb_25.ini");
    EXPECT_NO_THROW(u.schneiden(37, 25));
    try {
        u.schneiden(25, 25);
        FAIL() << "kein Fehler";
    } catch (const DateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("wdb_25.ini"), std::string::npos);
    }
}

TEST(VorlagenSchnitt, AlteDateienBehaltenIhrEndeUnbeschreibbaresZielIstEinFehler) {
    Vorlagen u;
    // A longer piece from elsewhere: the cut overwrites its start and keeps the rest.
    const std::string alt(5000, '\xEE');
    dateiErsetzen(u.ini / "Header_25.ini", alt);
    const std::string vorlage = musterVorlage(57344);
    dateiErsetzen(u.ini / "wdb_25.ini", vorlage);
    u.schneiden(25, 25);
    EXPECT_EQ(u.lesen("Header_25.ini"), vorlage.substr(0, 3682) + alt.substr(3682));

    // A smaller template: what it no longer fills keeps the bytes of the previous cut.
    const std::string footerAlt = u.lesen("Footer_25.ini");
    const std::string felderAlt = u.lesen("FelderAll_25.ini");
    const size_t kurz = 50000;
    dateiErsetzen(u.ini / "wdb_25.ini", std::string(kurz, '\x11'));
    u.schneiden(25, 25);
    EXPECT_EQ(u.lesen("Footer_25.ini"), footerAlt);
    const std::string felder = u.lesen("FelderAll_25.ini");
    const size_t neu = 2462 + (kurz - 10240);
    ASSERT_EQ(felder.size(), 49000u);
    EXPECT_EQ(felder.substr(0, neu), std::string(neu, '\x11'));
    EXPECT_EQ(felder.substr(neu), felderAlt.substr(neu));
    EXPECT_EQ(u.lesen("Felder02_25.ini").size(), 46538u);

    // A piece that cannot be written is a file error; the pieces before it are cut.
    dateiErsetzen(u.ini / "wdb_37.ini", musterVorlage(80896));
    fs::create_directories(u.ini / "Break01_37.ini");
    EXPECT_THROW(u.schneiden(37, 37), DateiFehler);
    EXPECT_EQ(u.lesen("Header_37.ini").size(), 5627u);
}

TEST(WDBRaster, ZellenSpaltenUndNotenwahlWieGeschrieben) {
    WdbOrdner w(25, leeresRaster(4 * 25));
    w.pausen->Add(pause(0, 57, 480, 0)); // leading rest on column 3 (57 - 54)
    // Stored 64, 60, 67: the counted pick finds the lowest each time: columns 6, 10, 13.
    w.akkorde->Add(akkord({note(64, 240, 480, 1), note(60, 720, 480, 1), note(67, 240, 480, 1)}));
    // Stored 62, 67, 59: the count of improvements is 2, so the 67 comes first (column 13); the
    // lower notes then land in the next free cells 14 and 15.
    w.akkorde->Add(akkord({note(62, 480, 1200, 2), note(67, 480, 1200, 2), note(59, 480, 1200, 2)}));
    w.pausen->Add(pause(1, 67, 480, 720)); // harp event only, no row
    w.schreiben();
    EXPECT_EQ(w.temp(), gepatcht(w.leer, 25, {{1, 3, kViertelPause}, {2, 6, kPunktViertel}, {2, 10, kAchtel},
                                                  {2, 13, kAchtel}, {3, 13, kViertel}, {3, 14, kViertel}, {3, 15, kViertel}}));
    EXPECT_EQ(kurz(*w.programm.HarfeEvents),
              (std::vector<std::string>{"3/0/57/480/0/0/", "1/1/60/720/480/0/", "1/1/64/240/480/0/", "1/1/67/240/480/0/",
                                        "3/1/67/480/720/0/", "1/2/67/480/1200/0/", "1/2/59/480/1200/0/",
                                        "1/2/62/480/1200/0/"}));
    for (const auto& a : *w.akkorde) EXPECT_EQ(a->Count(), 0); // writing consumes the chords
}

TEST(WDBDatei, MehrZeilenAlsDasRasterHatUndZuKurzeStuecke) {
    WdbOrdner w(25, leeresRaster(2 * 25, ""));
    dateiErsetzen(w.ini / "Footer_25.ini", "kurz");
    for (int i = 1; i <= 3; ++i) w.akkorde->Add(akkord({note(55, 480, i * 480, static_cast<int16_t>(i))}));
    w.schreiben();
    // The third row is read past the end of the blank grid: zeros, with the note's text bytes.
    std::string raster = gepatcht(w.leer, 25, {{1, 1, kViertel}, {2, 1, kViertel}});
    raster += std::string(11, '\0') + kViertel + std::string(24 * 14, '\0');
    EXPECT_EQ(w.temp(), raster);
    // The file still has the fixed size (the 25-string header without its last byte); what the pieces lack is zeros.
    std::string datei = dateiLesen(w.ordner / "lied.wdb");
    ASSERT_EQ(datei.size(), 57343u);
    EXPECT_EQ(datei.substr(3681, raster.size()), raster);
    EXPECT_EQ(datei.substr(3681 + raster.size(), 2462 - raster.size()), std::string(2462 - raster.size(), '\0'));
    EXPECT_EQ(datei.substr(57343 - 566), std::string("kurz") + std::string(562, '\0'));
}

TEST(WDBDatei, FehlerLassenDieAlteDateiStehen) {
    WdbOrdner w(25, leeresRaster(25));
    const fs::path ziel = w.ordner / "lied.wdb";
    dateiErsetzen(ziel, "alte Datenbank");
    // Each failure names its cause, and neither the old file nor a stray temporary is touched.
    auto scheitert = [&](const std::string& genannt, bool dateiFehler) {
        try {
            w.schreiben();
            ADD_FAILURE() << "keine Meldung";
        } catch (const Fehler& f) {
            EXPECT_TRUE(!dateiFehler || dynamic_cast<const DateiFehler*>(&f)) << f.what();
            EXPECT_NE(std::string(f.what()).find(genannt), std::string::npos) << f.what();
        }
        EXPECT_EQ(dateiLesen(ziel), "alte Datenbank");
        for (const auto& eintrag : fs::directory_iterator(w.ordner.pfad()))
            EXPECT_EQ(eintrag.path().filename().string().find(".tmp"), std::string::npos) << eintrag.path();
    };
    w.akkorde->Add(akkord({note(60, 250, 0, 1)})); // a length without note character (250 ticks / 10)
    scheitert("250", false);
    fs::remove(w.ini / "Schriften_25.ini");
    w.akkorde->Add(akkord({note(60, 240, 0, 1)}));
    scheitert("Schriften_25.ini", true);
    fs::remove(w.ini / "FelderAll_25.ini");
    scheitert("FelderAll_25.ini", true);
}

TEST(WDBDialog, AbbruchEndungErfolgUndFehlschlag) {
    WdbOrdner w(25, leeresRaster(25));
    w.schreiber().saveDialog_WDB(); // cancelled
    EXPECT_EQ(w.dialog.filter, "MS-Works-Datenbank  (*.wdb)|*.wdb");
    EXPECT_EQ(w.dialog.flags, 2);
    for (const char* falsch : {"lied.txt", "lied.wdbx", "db", ""}) w.speichern(w.ordner / falsch);
    // Only the last three characters count, in any case.
    for (const char* gut : {"a.WdB", "ohnePunktwdb"}) {
        w.akkorde->Add(akkord({note(60, 480, 0, 1)}));
        w.speichern(w.ordner / gut);
        EXPECT_EQ(dateiLesen(w.ordner / gut).size(), 57343u) << gut;
    }
    for (const char* falsch : {"lied.txt", "lied.wdbx", "db"}) EXPECT_FALSE(fs::exists(w.ordner / falsch)) << falsch;
    w.speichern(w.ordner / "gibt-es-nicht" / "lied.wdb");
    // Another string count: the grid is patched but no file written, and yet it reads as saved.
    w.e().WDBSpaltenAnzahl(30);
    dateiErsetzen(w.ini / "FelderAll_30.ini", leeresRaster(30));
    w.akkorde->Add(akkord({note(60, 480, 0, 1)}));
    w.speichern(w.ordner / "dreissig.wdb");
    EXPECT_FALSE(fs::exists(w.ordner / "dreissig.wdb"));
    EXPECT_TRUE(fs::exists(w.ini / "FelderAllTemp_30.ini"));
    ASSERT_EQ(w.form.meldungen.size(), 9u);
    // A failed write is reported with the file's name, never as saved.
    EXPECT_NE(w.form.meldungen[7].find("lied.wdb"), std::string::npos) << w.form.meldungen[7];
    w.form.meldungen[7] = "Fehler";
    EXPECT_EQ(w.form.meldungen, (std::vector<std::string>{"Daten nicht gespeichert!", "Falsche Dateiendung!",
                                                          "Falsche Dateiendung!", "Falsche Dateiendung!",
                                                          "Falsche Dateiendung!", "Daten gespeichert!",
                                                          "Daten gespeichert!", "Fehler", "Daten gespeichert!"}));
}

TEST(ExportSammlung, HoechsterTonMelodieAnNimmtAlleNotenTiefsteZuerst) {
    ExportUmgebung s;
    s.e().HoechsterTonMelodie(true);
    s.e().Transpo(2);
    // Stored order 64, 60, 67, 60: the true position of the lowest, the first of equal ones first.
    auto a = akkord({note(64, 480, 0, 1, "a", 2), note(60, 480, 0, 1, "b", 3), note(67, 960, 0, 1, "", 2),
                     note(60, 240, 0, 1, "d", 4)});
    s.akkorde->Add(a);
    s.schreiber().write_ExportColl();
    EXPECT_EQ(kurz(*s.programm.HarfeEvents), (std::vector<std::string>{"1/1/62/480/0/3/b", "1/1/62/240/0/4/d",
                                                                       "1/1/66/480/0/2/a", "1/1/69/960/0/2/"}));
    EXPECT_EQ(a->Count(), 0);
}

TEST(ExportSammlung, HoechsterTonMelodieAusNimmtEineNoteJeAkkord) {
    ExportUmgebung s;
    // The longest note wins; the first of the longest is the candidate.
    auto laengste = akkord({note(64, 480, 0, 1), note(60, 480, 0, 1), note(67, 960, 0, 1)});
    // Equally long: every note lower than the candidate (64) becomes the pick, the last one wins,
    // so 62 rather than the lower 60.
    auto gleichLang = akkord({note(64, 480, 480, 2), note(60, 480, 480, 2), note(62, 480, 480, 2), note(59, 240, 480, 2)});
    // No note longer than 0: the first note is the candidate, lower notes of length 0 still win.
    auto ohneLaenge = akkord({note(64, 0, 960, 3), note(60, 0, 960, 3), note(67, 0, 960, 3)});
    for (const auto& k : {laengste, gleichLang, ohneLaenge, akkord({note(70, 240, 1200, 4, "la", 1)})}) s.akkorde->Add(k);
    s.akkorde->Add(neueSammlung<CKlangNote>()); // an empty chord gives no event
    s.schreiber().write_ExportColl();
    EXPECT_EQ(kurz(*s.programm.HarfeEvents), (std::vector<std::string>{"1/1/67/960/0/0/", "1/2/62/480/480/0/",
                                                                       "1/3/60/0/960/0/", "1/4/70/240/1200/1/la"}));
    // Only the picked note leaves its chord.
    EXPECT_EQ(laengste->Count() + ohneLaenge->Count(), 4);
    EXPECT_EQ(gleichLang->Count(), 3);
    EXPECT_EQ(gleichLang->Item(3)->TonHoehe(), 59);
}

TEST(ExportSammlung, PausenTragenAkkordTextUndSpurJederLaufBeginntVonVorn) {
    ExportUmgebung s;
    s.e().Transpo(-3);
    s.akkorde->Add(akkord({note(62, 480, 480, 1, "la", 2)}));
    s.akkorde->Add(akkord({note(64, 480, 1440, 2, "", 1)}));
    s.akkorde->Add(akkord({note(65, 480, 2400, 3, "lu", 3)}));
    s.pausen->Add(pause(0, 60, 480, 0));    // leading rest
    s.pausen->Add(pause(0, 60, 240, 240));  // a second rest before the first chord: passed over
    s.pausen->Add(pause(1, 62, 480, 960));
    s.pausen->Add(pause(1, 62, 240, 1200));
    s.pausen->Add(pause(3, 65, 480, 2880)); // waits for chord 3
    s.schreiber().write_ExportColl();
    EXPECT_EQ(kurz(*s.programm.HarfeEvents),
              (std::vector<std::string>{"3/0/57/480/0/0/", "1/1/59/480/480/2/la", "3/1/59/480/960/2/la",
                                        "3/1/59/240/1200/2/la", "1/2/61/480/1440/1/", "1/3/62/480/2400/3/lu",
                                        "3/3/62/480/2880/3/lu"}));
    // A new run starts with chord 0, no text and track 0, and an empty list. Without a leading rest
    // the first rest after a chord still belongs to it, found by the chord's running number.
    s.e().Transpo(0);
    s.akkorde = neueSammlung<CAkkord>();
    s.pausen = neueSammlung<CKlangPause>();
    s.akkorde->Add(neueSammlung<CKlangNote>());
    s.pausen->Add(pause(1, 50, 480, 0));
    s.schreiber().write_ExportColl();
    EXPECT_EQ(kurz(*s.programm.HarfeEvents), (std::vector<std::string>{"3/0/50/480/0/0/"}));
    s.akkorde->Add(akkord({note(60, 40000, 0, 1)}));
    EXPECT_THROW(s.schreiber().write_ExportColl(), UeberlaufFehler);
}
