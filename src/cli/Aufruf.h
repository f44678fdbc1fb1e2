#pragma once
// One call of the command line, read from its arguments: the command, the MIDI files, the outputs
// and the options that stand for the window's controls.
#include "blatt/BlattEinstellungen.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lyrabo::cli {

// Exit codes of the command line.
enum Ausgang : int {
    kFertig = 0,
    kFalscherAufruf = 2,
    kMidiDateiFehler = 3,
    kKonvertierungFehler = 4,
    kSchreibFehler = 5,
};

// A wrong call: unknown command or option, a missing or invalid value. The text is German.
class AufrufFehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Befehl { Hilfe, Info, Events, Convert, Mix };

// The window's options as given on the command line; an empty field leaves the setting as the
// settings object and the user settings file have it.
struct COptionen {
    std::optional<int16_t> Transpo;
    bool TranspoPassend = false;           // --transpo passend: as the button "Passend transponieren"
    std::optional<int16_t> QuantPosition;  // 1-based position in NotenLaengenStr
    std::optional<int16_t> KanalBelegung;
    std::optional<bool> Legato;
    std::optional<bool> HoechsterTonMelodie;
    std::optional<bool> PunktiertePausen;
    std::optional<bool> PausenLetzterTakt;
    std::optional<std::string> Felder;     // eight characters '0'/'1'
    std::optional<int16_t> Saiten;
    std::optional<bool> GenaueAufloesung;  // data/LYRABO_umrechnung.ini when not given
};

// The note sheet's paper, string spacing and layout; an empty field keeps the setting of the window
// for the harp's size (data/LYRABO_blatt.ini), else its default.
struct CBlattOptionen {
    std::optional<blatt::Papier> Papier;
    std::optional<bool> Quer;
    std::optional<double> SaitenAbstand;  // mm
    std::optional<bool> Einpassen;
    std::optional<blatt::Notenform> Notenform;
    std::optional<bool> KurzePausen;
    std::optional<bool> Wiederholungen;
    std::vector<int16_t> Begleitung;       // tracks drawn as accompaniment beside the one converted
};

struct CAufruf {
    Befehl befehl = Befehl::Hilfe;
    std::vector<std::string> dateien;
    std::optional<int16_t> spur;
    bool spurMelodie = false;              // --spur melodie: the track the program takes for the melody
    std::vector<int16_t> spuren;           // mix
    bool hex = false;                      // events
    std::optional<std::string> harfentext; // file name, "-" = standard output
    std::optional<std::string> klangnoten;
    std::optional<std::string> wdb;
    std::optional<std::string> pdf;        // the note sheet
    std::optional<std::string> svg;        // the note sheet as SVG, one file per page
    std::optional<std::string> ausgabeOrdner;
    // Outputs per file in a folder: harp-event text, KlangNoten text, Works database, note sheet.
    bool mitHarfentext = true, mitKlangnoten = true, mitWdb = true, mitPdf = false, mitSvg = false;
    COptionen optionen;
    CBlattOptionen blatt;

    // A note sheet is to be written, as PDF or SVG (so the program needs Qt's graphics).
    bool willBlatt() const {
        return pdf.has_value() || svg.has_value() || (ausgabeOrdner.has_value() && (mitPdf || mitSvg));
    }
};

// Reads the arguments after the program name. Throws AufrufFehler.
CAufruf aufrufLesen(const std::vector<std::string>& argumente);

// Names of the quantisation grid in slider order ("1/1" ... "1/16"), as the settings object has them.
std::vector<std::string> quantisierungsNamen();

// The German help text.
std::string hilfeText();

} // namespace lyrabo::cli
