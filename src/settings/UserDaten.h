#pragma once
// The user settings file LYRABO_user.ini (in data/ beside the program, or in the user's
// configuration folder, see ProgrammOrte): the dialogs' starting folder and four conversion
// options, five lines of "key",value in Windows-1252 with CR LF.
#include "settings/CEinstellungen.h"
#include "settings/ProgrammOrte.h"

#include <filesystem>
#include <string>

namespace lyrabo {

std::filesystem::path userDatenPfad(const ProgrammOrte& orte);
// The conversion's own settings (UmrechnungDaten.h), in the same folder as the user settings file.
std::filesystem::path umrechnungDatenPfad(const ProgrammOrte& orte);

// Reads the file into the settings. Any failure is silent: InitDir becomes the program's folder,
// Booleans read before the failure stay, the rest keep their defaults. Returns true when all five
// lines were read (the caller then refreshes its display).
bool UserDatenLesen(CEinstellungen& e, std::string& aktuellesInitDir, const ProgrammOrte& orte);

// Writes the file, replacing it only once the new content is complete.
// Throws DateiFehler("User-Daten konnten nicht gespeichert werden. ...") on failure.
void UserDatenSchreiben(const CEinstellungen& e, const std::string& aktuellesInitDir,
                        const ProgrammOrte& orte);

} // namespace lyrabo
