#pragma once
// The note sheet's settings between runs, in data/LYRABO_blatt.ini beside the user settings file:
// paper, string spacing, room per quarter, fitting, note shapes and what is shown, once for each
// harp size, and the folder the last sheet PDF went to. Plain "Schluessel=Wert" lines in UTF-8.
#include "blatt/BlattEinstellungen.h"

#include <filesystem>
#include <optional>
#include <string>

namespace lyrabo {

struct BlattDaten {
    blatt::Einstellungen saiten25 = blatt::standardFuer(25);
    blatt::Einstellungen saiten37 = blatt::standardFuer(37);
    std::string pdfOrdner;  // UTF-8; empty until a sheet has been saved

    blatt::Einstellungen& fuer(int saiten) { return saiten == 25 ? saiten25 : saiten37; }
    const blatt::Einstellungen& fuer(int saiten) const { return saiten == 25 ? saiten25 : saiten37; }
};

std::filesystem::path blattDatenPfad(const std::filesystem::path& programmOrdner);

// The file's text, and back; a text with anything the program does not write gives nothing.
std::string blattDatenText(const BlattDaten& daten);
std::optional<BlattDaten> blattDatenAusText(const std::string& text);

// A missing or broken file gives the defaults, without a message.
BlattDaten blattDatenLesen(const std::filesystem::path& programmOrdner);
// Replaces the file only once the new content is complete. Throws DateiFehler.
void blattDatenSchreiben(const BlattDaten& daten, const std::filesystem::path& programmOrdner);

} // namespace lyrabo
