// Cutting the template database into its pieces and blank grid.
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace lyrabo;
using namespace lyrabo::test;
namespace fs = std::filesystem;

namespace {

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
    for (auto [saiten, befehl] : {std::pair<int16_t, int16_t>{37, 25}, {25, 37}, {30, 25}, {30, 37}}) u.schneiden(saiten, befehl);
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
