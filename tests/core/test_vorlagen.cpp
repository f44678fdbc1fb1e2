// Cutting the template database into its pieces and blank grid.
#include "app/core/CProgramm.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Fehler.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
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

// A template whose every byte tells its offset apart from its neighbours'.
std::string musterVorlage(size_t laenge) {
    std::string s(laenge, '\0');
    for (size_t i = 0; i < laenge; ++i) s[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return s;
}

struct Umgebung {
    TestOrdner ordner;
    StilleForm form;
    CProgramm programm{ordner.pfad(), form};
    Umgebung() {
        fs::create_directories(ordner.pfad() / "ini");
        programm.initGlobals();
    }
    fs::path ini(const std::string& name) const { return ordner.pfad() / "ini" / name; }
    std::string lesen(const std::string& name) const { return dateiLesen(ini(name)); }
    size_t anzahlDateien() const {
        size_t n = 0;
        for ([[maybe_unused]] const auto& e : fs::directory_iterator(ordner.pfad() / "ini")) ++n;
        return n;
    }
};

using Abschnitte = std::vector<std::pair<std::string, std::pair<size_t, size_t>>>;

void pruefeAbschnitte(const Umgebung& u, const std::string& vorlage, const Abschnitte& abschnitte,
                      const std::string& felderAll, const std::vector<size_t>& felder) {
    std::string raster;
    for (size_t k = 0; k < abschnitte.size(); ++k) {
        const auto& [name, grenzen] = abschnitte[k];
        std::string erwartet = vorlage.substr(grenzen.first, grenzen.second - grenzen.first + 1);
        EXPECT_EQ(u.lesen(name), erwartet) << name;
        for (size_t f : felder)
            if (f == k) raster += erwartet;
    }
    EXPECT_EQ(u.lesen(felderAll), raster);
}

} // namespace

TEST(VorlagenSchnitt, Saiten25SchneidetAnDenFestenGrenzen) {
    Umgebung u;
    const std::string vorlage = musterVorlage(57344);
    dateiErsetzen(u.ini("wdb_25.ini"), vorlage);
    u.programm.Einstellungen().WDBSpaltenAnzahl(25);
    u.programm.WDBCreator().writeINIDateien25();
    pruefeAbschnitte(u, vorlage,
                     {{"Header_25.ini", {0, 3681}},
                      {"Felder01_25.ini", {3682, 6143}},
                      {"Schriften_25.ini", {6144, 10239}},
                      {"Felder02_25.ini", {10240, 56777}},
                      {"Footer_25.ini", {56778, 57343}}},
                     "FelderAll_25.ini", {1, 3});
    EXPECT_EQ(u.lesen("FelderAll_25.ini").size(), 49000u);
    EXPECT_EQ(u.anzahlDateien(), 7u);  // the template and six pieces, nothing else
    EXPECT_TRUE(u.form.meldungen.empty());
}

TEST(VorlagenSchnitt, Saiten37SchneidetAnDenFestenGrenzen) {
    Umgebung u;
    const std::string vorlage = musterVorlage(80896);
    dateiErsetzen(u.ini("wdb_37.ini"), vorlage);
    u.programm.Einstellungen().WDBSpaltenAnzahl(37);
    u.programm.WDBCreator().writeINIDateien37();
    pruefeAbschnitte(u, vorlage,
                     {{"Header_37.ini", {0, 5626}},
                      {"Felder01_37.ini", {5627, 6143}},
                      {"Schriften_37.ini", {6144, 10239}},
                      {"Felder02_37.ini", {10240, 66047}},
                      {"Break01_37.ini", {66048, 66559}},
                      {"Felder03_37.ini", {66560, 80164}},
                      {"Footer_37.ini", {80165, 80895}}},
                     "FelderAll_37.ini", {1, 3, 5});
    EXPECT_EQ(u.lesen("FelderAll_37.ini").size(), 69930u);
    EXPECT_EQ(u.anzahlDateien(), 9u);
}

TEST(VorlagenSchnitt, SchneidetNurWennDieSaitenzahlZumBefehlPasst) {
    Umgebung u;
    dateiErsetzen(u.ini("wdb_25.ini"), musterVorlage(57344));
    dateiErsetzen(u.ini("wdb_37.ini"), musterVorlage(80896));

    // The names are built from the setting but compared with literal "_25" and "_37" names.
    u.programm.Einstellungen().WDBSpaltenAnzahl(37);
    u.programm.WDBCreator().writeINIDateien25();
    u.programm.Einstellungen().WDBSpaltenAnzahl(25);
    u.programm.WDBCreator().writeINIDateien37();
    u.programm.Einstellungen().WDBSpaltenAnzahl(30);
    u.programm.WDBCreator().writeINIDateien25();
    u.programm.WDBCreator().writeINIDateien37();
    EXPECT_EQ(u.anzahlDateien(), 2u);

    // Without a matching name not even the template is opened.
    fs::remove(u.ini("wdb_25.ini"));
    u.programm.Einstellungen().WDBSpaltenAnzahl(37);
    EXPECT_NO_THROW(u.programm.WDBCreator().writeINIDateien25());
}

TEST(VorlagenSchnitt, FehlendeVorlageIstEinDateifehler) {
    Umgebung u;
    u.programm.Einstellungen().WDBSpaltenAnzahl(37);
    EXPECT_THROW(u.programm.WDBCreator().writeINIDateien37(), DateiFehler);
    u.programm.Einstellungen().WDBSpaltenAnzahl(25);
    try {
        u.programm.WDBCreator().writeINIDateien25();
        FAIL() << "kein Fehler";
    } catch (const DateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("wdb_25.ini"), std::string::npos);
    }
}

TEST(VorlagenSchnitt, AlteLaengereDateienBehaltenIhrEnde) {
    Umgebung u;
    // A longer piece from elsewhere: the cut overwrites its start and keeps the rest.
    const std::string alt(5000, '\xEE');
    dateiErsetzen(u.ini("Header_25.ini"), alt);
    const std::string vorlage = musterVorlage(57344);
    dateiErsetzen(u.ini("wdb_25.ini"), vorlage);
    u.programm.Einstellungen().WDBSpaltenAnzahl(25);
    u.programm.WDBCreator().writeINIDateien25();
    EXPECT_EQ(u.lesen("Header_25.ini"), vorlage.substr(0, 3682) + alt.substr(3682));

    // A smaller template: what it no longer fills keeps the bytes of the previous cut.
    const std::string footerAlt = u.lesen("Footer_25.ini");
    const std::string felderAlt = u.lesen("FelderAll_25.ini");
    const size_t kurz = 50000;
    dateiErsetzen(u.ini("wdb_25.ini"), std::string(kurz, '\x11'));
    u.programm.WDBCreator().writeINIDateien25();
    EXPECT_EQ(u.lesen("Footer_25.ini"), footerAlt);
    const std::string felder = u.lesen("FelderAll_25.ini");
    const size_t neu = 2462 + (kurz - 10240);
    ASSERT_EQ(felder.size(), 49000u);
    EXPECT_EQ(felder.substr(0, neu), std::string(neu, '\x11'));
    EXPECT_EQ(felder.substr(neu), felderAlt.substr(neu));
    EXPECT_EQ(u.lesen("Felder02_25.ini").size(), 46538u);
}

TEST(VorlagenSchnitt, UnbeschreibbaresZielIstEinDateifehler) {
    Umgebung u;
    dateiErsetzen(u.ini("wdb_37.ini"), musterVorlage(80896));
    fs::create_directories(u.ini("Break01_37.ini"));  // a folder where the piece should go
    u.programm.Einstellungen().WDBSpaltenAnzahl(37);
    EXPECT_THROW(u.programm.WDBCreator().writeINIDateien37(), DateiFehler);
    EXPECT_EQ(u.lesen("Header_37.ini").size(), 5627u);  // the pieces before it are cut
}
