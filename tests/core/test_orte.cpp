// Where the programs find their files, and the list of recent files.
#include "model/Datei.h"
#include "settings/ProgrammOrte.h"
#include "settings/Zuletzt.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

namespace lyrabo::test {
namespace {

namespace fs = std::filesystem;

TEST(Orte, EineRegelFuerAlleDateien) {
    enum class Lage { Tragbar, DataIstDatei, Installiert, Leer };
    const struct {
        Lage lage;
        const char* beilagen;  // relative to the test folder
        const char* benutzer;  // "K" = the configuration folder
        const char* arbeit;
    } faelle[] = {
        {Lage::Tragbar, "bin", "bin/data", "bin/ini"},
        {Lage::DataIstDatei, "bin", "K", "K"},
        {Lage::Installiert, "share/lyrabo", "K", "K"},
        {Lage::Leer, "bin", "K", "K"},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(static_cast<int>(f.lage));
        TestOrdner t;
        const fs::path bin = t / "bin", konfiguration = t / "heim" / "lyrabo";
        fs::create_directories(bin);
        if (f.lage == Lage::Tragbar || f.lage == Lage::DataIstDatei) fs::create_directories(bin / "ini");
        if (f.lage == Lage::Tragbar) fs::create_directories(bin / "data");
        if (f.lage == Lage::DataIstDatei) dateiErsetzen(bin / "data", "");
        if (f.lage == Lage::Installiert) fs::create_directories(t / "share" / "lyrabo" / "ini");
        const auto pfad = [&](const std::string& p) { return p == "K" ? konfiguration : t / p; };

        const ProgrammOrte o = orteBestimmen(bin, konfiguration);
        EXPECT_EQ(o.beilagen.lexically_normal(), pfad(f.beilagen).lexically_normal());
        EXPECT_EQ(o.benutzer, pfad(f.benutzer));
        EXPECT_EQ(o.arbeit, pfad(f.arbeit));
        EXPECT_EQ(fs::is_directory(konfiguration), o.benutzer == konfiguration);
        // Without a configuration folder everything stays beside the program, as it always did.
        EXPECT_EQ(orteBestimmen(bin, {}).benutzer, bin / "data");
    }
}

TEST(Zuletzt, AchtNeuesteZuerstOhneDoppelte) {
    using L = std::vector<std::string>;
    const struct {
        L vorher;
        std::string neu;
        L nachher;
    } faelle[] = {
        {{}, "a", {"a"}},
        {{"a", "b", "c"}, "c", {"c", "a", "b"}},
        {{"1", "2", "3", "4", "5", "6", "7", "8"}, "9", {"9", "1", "2", "3", "4", "5", "6", "7"}},
    };
    for (const auto& f : faelle) EXPECT_EQ(zuletztVorne(f.vorher, f.neu), f.nachher) << f.neu;
    // Written elsewhere, the file may have other line ends, empty lines and more than eight.
    TestOrdner t;
    fs::create_directories(t / "data");
    dateiErsetzen(t / "data" / "LYRABO_zuletzt.txt", "a\r\n\r\nb\n1\n2\n3\n4\n5\n6\n7\n");
    EXPECT_EQ(zuletztLesen(t.pfad()), (L{"a", "b", "1", "2", "3", "4", "5", "6"}));
}

} // namespace
} // namespace lyrabo::test
