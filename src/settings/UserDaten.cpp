#include "settings/UserDaten.h"

#include "model/Fehler.h"
#include "model/Text.h"
#include "model/Datei.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

namespace lyrabo {

namespace fs = std::filesystem;

fs::path userDatenPfad(const ProgrammOrte& orte) { return orte.benutzer / "LYRABO_user.ini"; }

// Beside the user settings file, wherever that one lives.
fs::path umrechnungDatenPfad(const ProgrammOrte& orte) {
    return userDatenPfad(orte).parent_path() / "LYRABO_umrechnung.ini";
}

namespace {

// Reads comma- and line-delimited fields the way a sequential data file is read back:
// a quoted field runs to the next quote, an unquoted one to the next comma or line end.
class FeldLeser {
public:
    explicit FeldLeser(std::string text) : m_t(std::move(text)) {}

    bool naechstes(std::string& feld, bool& zitiert) {
        while (m_i < m_t.size() && (m_t[m_i] == ' ' || m_t[m_i] == '\t')) ++m_i;
        if (m_i >= m_t.size()) return false;
        feld.clear();
        zitiert = false;
        if (m_t[m_i] == '"') {
            zitiert = true;
            size_t ende = m_t.find('"', m_i + 1);
            if (ende == std::string::npos) ende = m_t.size();
            feld = m_t.substr(m_i + 1, ende - m_i - 1);
            m_i = std::min(ende + 1, m_t.size());
            while (m_i < m_t.size() && m_t[m_i] == ' ') ++m_i;
        } else {
            size_t ende = m_t.find_first_of(",\r\n", m_i);
            if (ende == std::string::npos) ende = m_t.size();
            feld = m_t.substr(m_i, ende - m_i);
            while (!feld.empty() && (feld.back() == ' ' || feld.back() == '\t')) feld.pop_back();
            m_i = ende;
        }
        // Consume one delimiter: a comma, or a line end (CR LF, CR or LF).
        if (m_i < m_t.size()) {
            if (m_t[m_i] == ',') {
                ++m_i;
            } else if (m_t[m_i] == '\r') {
                ++m_i;
                if (m_i < m_t.size() && m_t[m_i] == '\n') ++m_i;
            } else if (m_t[m_i] == '\n') {
                ++m_i;
            }
        }
        return true;
    }

private:
    std::string m_t;
    size_t m_i = 0;
};

std::string gross(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

// #TRUE#/#FALSE#, a number (non-zero is true) or the words True/False; anything else fails.
bool alsBoolean(const std::string& feld, bool zitiert, bool& wert) {
    std::string g = gross(feld);
    if (!zitiert && g == "#TRUE#") { wert = true; return true; }
    if (!zitiert && g == "#FALSE#") { wert = false; return true; }
    if (g == "TRUE" || g == "WAHR") { wert = true; return true; }
    if (g == "FALSE" || g == "FALSCH") { wert = false; return true; }
    if (!g.empty()) {
        try {
            size_t n = 0;
            double d = std::stod(g, &n);
            if (n == g.size()) { wert = d != 0.0; return true; }
        } catch (const std::exception&) {
        }
    }
    return false;
}

} // namespace

bool UserDatenLesen(CEinstellungen& e, std::string& aktuellesInitDir, const ProgrammOrte& orte) {
    auto fehlschlag = [&] {
        e.InitDir(orte.programm.string());
        return false;
    };
    std::ifstream in(userDatenPfad(orte), std::ios::binary);
    if (!in) return fehlschlag();
    std::stringstream ss;
    ss << in.rdbuf();
    FeldLeser leser(cp1252ZuUtf8(ss.str()));

    std::string schluessel, wert;
    bool zitiert = false;
    if (!leser.naechstes(schluessel, zitiert) || !leser.naechstes(wert, zitiert)) return fehlschlag();
    e.InitDir(wert);
    if (aktuellesInitDir.empty()) aktuellesInitDir = e.InitDir();

    // The meaning of a value comes from its line alone; keys are read and never compared.
    void (CEinstellungen::*setter[4])(bool) = {&CEinstellungen::HoechsterTonMelodie, &CEinstellungen::Legato,
                                               &CEinstellungen::PausenLetzterTakt, &CEinstellungen::PunktiertePausen};
    for (auto s : setter) {
        bool b = false;
        if (!leser.naechstes(schluessel, zitiert) || !leser.naechstes(wert, zitiert) || !alsBoolean(wert, zitiert, b))
            return fehlschlag();
        (e.*s)(b);
    }
    return true;
}

void UserDatenSchreiben(const CEinstellungen& e, const std::string& aktuellesInitDir, const ProgrammOrte& orte) {
    auto b = [](bool v) { return v ? std::string("#TRUE#") : std::string("#FALSE#"); };
    std::string ordner = aktuellesInitDir.empty() ? e.InitDir() : aktuellesInitDir;
    std::string text;
    text += "\"Default-Ordner = \",\"" + ordner + "\"\r\n";
    text += "\"HoechsterTonMelodie = \"," + b(e.HoechsterTonMelodie()) + "\r\n";
    text += "\"Legato = \"," + b(e.Legato()) + "\r\n";
    text += "\"PausenLetzterTakt = \"," + b(e.PausenLetzterTakt()) + "\r\n";
    text += "\"PunktiertePausen = \"," + b(e.PunktiertePausen()) + "\r\n";
    try {
        dateiErsetzen(userDatenPfad(orte), utf8ZuCp1252(text));
    } catch (const DateiFehler& f) {
        throw DateiFehler(std::string("User-Daten konnten nicht gespeichert werden.\n") + f.what());
    }
}

} // namespace lyrabo
