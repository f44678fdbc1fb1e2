// Cutting the template database "wdb_" N ".ini" into the pieces the database writer splices
// together, and into the blank grid it patches. A maintenance command: after the template was
// edited and saved under its name, it renews every piece.
#include "export/CWDBCreator.h"

#include "app/core/CProgramm.h"
#include "model/Fehler.h"
#include "model/Zahlen.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace lyrabo {

namespace fs = std::filesystem;

namespace {

struct Schnitt {
    std::vector<std::string> namen;    // stem + N, in cutting order, "FelderAll_" last
    std::vector<int32_t> von, bis;     // section bounds, both included
};

Schnitt schnittListe(const std::vector<const char*>& staemme, const std::string& n, std::vector<int32_t> von,
                     std::vector<int32_t> bis) {
    Schnitt s;
    for (const char* stamm : staemme) s.namen.push_back(stamm + n);
    s.von = std::move(von);
    s.bis = std::move(bis);
    return s;
}

std::ifstream quelleOeffnen(const fs::path& pfad) {
    std::ifstream in(pfad, std::ios::binary);
    if (!in) throw DateiFehler("Die Vorlage \"" + pfad.string() + "\" wurde nicht gefunden.");
    return in;
}

// Binary writing from the first byte on: an existing longer file keeps its old bytes behind the
// new ones, as the command always did.
std::fstream zielOeffnen(const fs::path& pfad) {
    if (!fs::exists(pfad)) std::ofstream(pfad, std::ios::binary);
    std::fstream out(pfad, std::ios::in | std::ios::out | std::ios::binary);
    if (!out) throw DateiFehler("Die Datei \"" + pfad.string() + "\" konnte nicht geschrieben werden.");
    return out;
}

// Reads and drops the bytes up to `bis` (included); the read position is `pos` on entry.
void ueberspringen(std::ifstream& in, int32_t& pos, int32_t bis) {
    for (; pos <= bis; ++pos) {
        if (in.get() == std::ifstream::traits_type::eof()) return;
    }
}

// Copies the bytes up to `bis` (included). A template shorter than the section ends the copy
// where the template ends.
void kopieren(std::ifstream& in, std::fstream& out, int32_t& pos, int32_t bis) {
    for (; pos <= bis; ++pos) {
        int c = in.get();
        if (c == std::ifstream::traits_type::eof()) return;
        out.put(static_cast<char>(c));
    }
}

void schliessen(std::fstream& out, const fs::path& pfad) {
    out.close();
    if (!out) throw DateiFehler("Die Datei \"" + pfad.string() + "\" konnte nicht geschrieben werden.");
}

// Section k (1-based) of the template into its own file.
void abschnittSchneiden(const fs::path& quelle, const fs::path& ziel, const Schnitt& s, size_t k) {
    std::ifstream in = quelleOeffnen(quelle);
    std::fstream out = zielOeffnen(ziel);
    int32_t pos = 0;
    if (k > 1) ueberspringen(in, pos, s.bis[k - 2]);
    kopieren(in, out, pos, s.bis[k - 1]);
    schliessen(out, ziel);
}

// The blank grid: the "Felder" sections one after the other, the sections between dropped.
void felderAllSchneiden(const fs::path& quelle, const fs::path& ziel, const Schnitt& s) {
    std::ifstream in = quelleOeffnen(quelle);
    std::fstream out = zielOeffnen(ziel);
    int32_t pos = 0;
    for (size_t k = 1; k < s.von.size(); ++k) {  // the last section, the footer, is not needed
        if (k % 2 == 0) kopieren(in, out, pos, s.bis[k - 1]);
        else ueberspringen(in, pos, s.bis[k - 1]);
    }
    schliessen(out, ziel);
}

// Each name of the list is compared with the literal names of the layout: only a list made for
// that layout's N cuts anything.
void schneiden(const fs::path& iniOrdner, const std::string& n, const Schnitt& s,
               const std::vector<const char*>& literale) {
    const fs::path quelle = iniOrdner / ("wdb_" + n + ".ini");
    for (const std::string& name : s.namen) {
        const fs::path ziel = iniOrdner / (name + ".ini");
        for (size_t k = 1; k <= literale.size(); ++k) {
            if (name != literale[k - 1]) continue;
            if (k == literale.size()) felderAllSchneiden(quelle, ziel, s);
            else abschnittSchneiden(quelle, ziel, s, k);
        }
    }
}

} // namespace

void CWDBCreator::writeINIDateien25() {
    const std::string n = StrTrim(m_programm.Einstellungen().WDBSpaltenAnzahl());
    const Schnitt s = schnittListe({"Header_", "Felder01_", "Schriften_", "Felder02_", "Footer_", "FelderAll_"}, n,
                                   {0, 3682, 6144, 10240, 56778}, {3681, 6143, 10239, 56777, 57343});
    schneiden(m_programm.Orte().beilagen / "ini", n, s,
              {"Header_25", "Felder01_25", "Schriften_25", "Felder02_25", "Footer_25", "FelderAll_25"});
}

void CWDBCreator::writeINIDateien37() {
    const std::string n = StrTrim(m_programm.Einstellungen().WDBSpaltenAnzahl());
    const Schnitt s = schnittListe(
        {"Header_", "Felder01_", "Schriften_", "Felder02_", "Break01_", "Felder03_", "Footer_", "FelderAll_"}, n,
        {0, 5627, 6144, 10240, 66048, 66560, 80165}, {5626, 6143, 10239, 66047, 66559, 80164, 80895});
    schneiden(m_programm.Orte().beilagen / "ini", n, s,
              {"Header_37", "Felder01_37", "Schriften_37", "Felder02_37", "Break01_37", "Felder03_37", "Footer_37",
               "FelderAll_37"});
}

} // namespace lyrabo
