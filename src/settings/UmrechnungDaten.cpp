#include "settings/UmrechnungDaten.h"

#include "model/Datei.h"
#include "model/Fehler.h"
#include "settings/UserDaten.h"

#include <sstream>

namespace lyrabo {

namespace {
const char* const kGenau = "GenaueAufloesung";
}

std::string umrechnungDatenText(const UmrechnungDaten& daten) {
    return std::string(kGenau) + "=" + (daten.genaueAufloesung ? "ja" : "nein") + "\n";
}

std::optional<UmrechnungDaten> umrechnungDatenAusText(const std::string& text) {
    UmrechnungDaten daten;
    std::istringstream ein(text);
    std::string zeile;
    while (std::getline(ein, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (zeile.empty()) continue;
        if (zeile == std::string(kGenau) + "=ja") daten.genaueAufloesung = true;
        else if (zeile == std::string(kGenau) + "=nein") daten.genaueAufloesung = false;
        else return std::nullopt;
    }
    return daten;
}

UmrechnungDaten umrechnungDatenLesen(const ProgrammOrte& orte) {
    try {
        if (auto daten = umrechnungDatenAusText(dateiLesen(umrechnungDatenPfad(orte)))) return *daten;
    } catch (const Fehler&) {
        // Missing or unreadable: the defaults, as on the first start.
    }
    return {};
}

void umrechnungDatenSchreiben(const UmrechnungDaten& daten, const ProgrammOrte& orte) {
    dateiErsetzen(umrechnungDatenPfad(orte), umrechnungDatenText(daten));
}

} // namespace lyrabo
