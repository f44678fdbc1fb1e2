#include "settings/Zuletzt.h"

#include "model/Datei.h"

#include <algorithm>
#include <fstream>

namespace lyrabo {

namespace fs = std::filesystem;

fs::path zuletztPfad(const ProgrammOrte& orte) { return orte.benutzer / "LYRABO_zuletzt.txt"; }

std::vector<std::string> zuletztLesen(const ProgrammOrte& orte) {
    std::vector<std::string> liste;
    std::ifstream in(zuletztPfad(orte), std::ios::binary);
    std::string zeile;
    while (liste.size() < kZuletztAnzahl && std::getline(in, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (!zeile.empty()) liste.push_back(zeile);
    }
    return liste;
}

void zuletztSchreiben(const std::vector<std::string>& liste, const ProgrammOrte& orte) {
    std::string text;
    for (const auto& pfad : liste) text += pfad + "\n";
    dateiErsetzen(zuletztPfad(orte), text);
}

std::vector<std::string> zuletztVorne(std::vector<std::string> liste, const std::string& pfad) {
    liste = zuletztOhne(std::move(liste), pfad);
    liste.insert(liste.begin(), pfad);
    if (liste.size() > kZuletztAnzahl) liste.resize(kZuletztAnzahl);
    return liste;
}

std::vector<std::string> zuletztOhne(std::vector<std::string> liste, const std::string& pfad) {
    liste.erase(std::remove(liste.begin(), liste.end(), pfad), liste.end());
    return liste;
}

} // namespace lyrabo
