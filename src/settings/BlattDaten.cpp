#include "settings/BlattDaten.h"

#include "model/Datei.h"
#include "model/Fehler.h"

#include <charconv>
#include <cmath>
#include <sstream>

namespace lyrabo {

namespace fs = std::filesystem;

namespace {

const char* const kAbschnitt25 = "[25 Saiten]";
const char* const kAbschnitt37 = "[37 Saiten]";
const char* const kAbschnittAllgemein = "[Allgemein]";

std::string zahl(double wert) {
    // Two decimals are all the spin boxes offer; "11.5", not "11.500000".
    char puffer[32];
    auto [ende, fehler] = std::to_chars(puffer, puffer + sizeof puffer, std::round(wert * 100) / 100);
    return fehler == std::errc() ? std::string(puffer, ende) : "0";
}

std::optional<double> zahlLesen(const std::string& text, double min, double max) {
    double wert = 0;
    auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size() || !(wert >= min && wert <= max)) return std::nullopt;
    return wert;
}

std::optional<bool> jaNein(const std::string& text) {
    if (text == "ja") return true;
    if (text == "nein") return false;
    return std::nullopt;
}

void abschnittSchreiben(std::ostringstream& aus, const char* kopf, const blatt::Einstellungen& e) {
    aus << kopf << '\n'
        << "Papier=" << (e.papier == blatt::Papier::A4 ? "A4" : "A3") << '\n'
        << "Lage=" << (e.quer ? "quer" : "hoch") << '\n'
        << "Saitenabstand=" << zahl(e.saitenAbstand) << '\n'
        << "MmProViertel=" << zahl(e.mmProViertel) << '\n'
        << "Einpassen=" << (e.einpassen ? "ja" : "nein") << '\n'
        << "Notenform=" << (e.notenform == blatt::Notenform::Hals ? "hals" : "harfe") << '\n'
        << "KurzePausenSchliessen=" << (e.kurzePausenSchliessen ? "ja" : "nein") << '\n'
        << "WiederholungenZusammenfassen=" << (e.wiederholungenZusammenfassen ? "ja" : "nein") << '\n'
        << "NotenTexte=" << (e.notenTexte ? "ja" : "nein") << '\n'
        << "MelodieLinie=" << (e.melodieLinie ? "ja" : "nein") << '\n';
}

// One "Schluessel=Wert" line of a harp-size section; false for anything the program never writes.
bool wertSetzen(blatt::Einstellungen& e, const std::string& schluessel, const std::string& wert) {
    using E = blatt::Einstellungen;
    if (schluessel == "Papier") {
        if (wert != "A4" && wert != "A3") return false;
        e.papier = wert == "A4" ? blatt::Papier::A4 : blatt::Papier::A3;
    } else if (schluessel == "Lage") {
        if (wert != "quer" && wert != "hoch") return false;
        e.quer = wert == "quer";
    } else if (schluessel == "Saitenabstand") {
        auto z = zahlLesen(wert, E::kMinAbstand, E::kMaxAbstand);
        if (!z) return false;
        e.saitenAbstand = *z;
    } else if (schluessel == "MmProViertel") {
        auto z = zahlLesen(wert, E::kMinProViertel, E::kMaxProViertel);
        if (!z) return false;
        e.mmProViertel = *z;
    } else if (schluessel == "Notenform") {
        if (wert != "harfe" && wert != "hals") return false;
        e.notenform = wert == "hals" ? blatt::Notenform::Hals : blatt::Notenform::Harfe;
    } else {
        auto b = jaNein(wert);
        if (!b) return false;
        // "AufEineSeite" of older files: fitting the sheet ("Einpassen") has taken its place.
        if (schluessel == "AufEineSeite") {}
        else if (schluessel == "Einpassen") e.einpassen = *b;
        else if (schluessel == "KurzePausenSchliessen") e.kurzePausenSchliessen = *b;
        else if (schluessel == "WiederholungenZusammenfassen") e.wiederholungenZusammenfassen = *b;
        else if (schluessel == "NotenTexte") e.notenTexte = *b;
        else if (schluessel == "MelodieLinie") e.melodieLinie = *b;
        else return false;
    }
    return true;
}

} // namespace

fs::path blattDatenPfad(const fs::path& programmOrdner) { return programmOrdner / "data" / "LYRABO_blatt.ini"; }

std::string blattDatenText(const BlattDaten& daten) {
    std::ostringstream aus;
    abschnittSchreiben(aus, kAbschnitt25, daten.saiten25);
    abschnittSchreiben(aus, kAbschnitt37, daten.saiten37);
    aus << kAbschnittAllgemein << '\n' << "PdfOrdner=" << daten.pdfOrdner << '\n';
    return aus.str();
}

std::optional<BlattDaten> blattDatenAusText(const std::string& text) {
    BlattDaten daten;
    std::istringstream ein(text);
    std::string zeile;
    enum { Keiner, S25, S37, Allgemein } abschnitt = Keiner;
    while (std::getline(ein, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (zeile.empty()) continue;
        if (zeile == kAbschnitt25) abschnitt = S25;
        else if (zeile == kAbschnitt37) abschnitt = S37;
        else if (zeile == kAbschnittAllgemein) abschnitt = Allgemein;
        else {
            const auto gleich = zeile.find('=');
            if (gleich == std::string::npos || abschnitt == Keiner) return std::nullopt;
            const std::string schluessel = zeile.substr(0, gleich), wert = zeile.substr(gleich + 1);
            if (abschnitt == Allgemein) {
                if (schluessel != "PdfOrdner") return std::nullopt;
                daten.pdfOrdner = wert;
            } else if (!wertSetzen(abschnitt == S25 ? daten.saiten25 : daten.saiten37, schluessel, wert)) {
                return std::nullopt;
            }
        }
    }
    return daten;
}

BlattDaten blattDatenLesen(const fs::path& programmOrdner) {
    try {
        if (auto daten = blattDatenAusText(dateiLesen(blattDatenPfad(programmOrdner)))) return *daten;
    } catch (const Fehler&) {
        // Missing or unreadable: the defaults, as on the first start.
    }
    return {};
}

void blattDatenSchreiben(const BlattDaten& daten, const fs::path& programmOrdner) {
    dateiErsetzen(blattDatenPfad(programmOrdner), blattDatenText(daten));
}

} // namespace lyrabo
