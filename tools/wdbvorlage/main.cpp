// Writes the template databases "wdb_25.ini" and "wdb_37.ini" into <program folder>/ini and cuts
// them into the pieces and blank grids with the program's own cutting command, so that ini/ holds
// exactly what the program would make of these templates.
//
//   lyrabo-wdbvorlage <program folder>
#include "WorksVorlage.h"

#include "app/core/CProgramm.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Fehler.h"

#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;
using namespace lyrabo;

namespace {

class KonsolenForm : public IForm {
public:
    void meldung(const std::string& text) override { std::cerr << text << '\n'; }
    int16_t ausgewaehlteSpurZeile() const override { return -1; }
};

const char* const kStaemme[] = {"Header_", "Felder01_", "Schriften_", "Felder02_", "Break01_",
                                "Felder03_", "Footer_", "FelderAll_", "FelderAllTemp_"};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Aufruf: lyrabo-wdbvorlage <Programmordner>\n";
        return 2;
    }
    try {
        const fs::path ordner = argv[1];
        const fs::path ini = ordner / "ini";
        fs::create_directories(ini);
        // Cutting never shortens an existing piece, so old pieces go first.
        for (const char* n : {"25", "37"})
            for (const char* stamm : kStaemme) fs::remove(ini / (std::string(stamm) + n + ".ini"));

        dateiErsetzen(ini / "wdb_25.ini", vorlage::vorlageDatei(vorlage::kLayout25));
        dateiErsetzen(ini / "wdb_37.ini", vorlage::vorlageDatei(vorlage::kLayout37));

        KonsolenForm form;
        CProgramm programm(ordner, form);
        programm.initGlobals();
        programm.Einstellungen().WDBSpaltenAnzahl(25);
        programm.WDBCreator().writeINIDateien25();
        programm.Einstellungen().WDBSpaltenAnzahl(37);
        programm.WDBCreator().writeINIDateien37();
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
    return 0;
}
