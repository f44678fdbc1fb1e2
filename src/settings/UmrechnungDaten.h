#pragma once
// The conversion's settings between runs that the user settings file has no line for, in
// data/LYRABO_umrechnung.ini beside it: plain "Schluessel=Wert" lines in UTF-8.
#include "settings/ProgrammOrte.h"

#include <filesystem>
#include <optional>
#include <string>

namespace lyrabo {

struct UmrechnungDaten {
    // "Genaue Auflösung": a file is converted as written at its own resolution, with or without a
    // tempo event (read as a copy at 480 ticks per quarter note); off, as the settings always did.
    bool genaueAufloesung = true;
};

// The file's text, and back; a text with anything the program does not write gives nothing.
std::string umrechnungDatenText(const UmrechnungDaten& daten);
std::optional<UmrechnungDaten> umrechnungDatenAusText(const std::string& text);

// A missing or broken file gives the defaults, without a message.
UmrechnungDaten umrechnungDatenLesen(const ProgrammOrte& orte);
// Replaces the file only once the new content is complete. Throws DateiFehler.
void umrechnungDatenSchreiben(const UmrechnungDaten& daten, const ProgrammOrte& orte);

} // namespace lyrabo
