#pragma once
// The list of recently opened MIDI files, LYRABO_zuletzt.txt beside the user settings file:
// one full path per line in UTF-8, newest first, at most eight.
#include "settings/ProgrammOrte.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace lyrabo {

constexpr std::size_t kZuletztAnzahl = 8;

std::filesystem::path zuletztPfad(const ProgrammOrte& orte);

// A missing or unreadable file is an empty list; empty lines are skipped, the rest cut to eight.
std::vector<std::string> zuletztLesen(const ProgrammOrte& orte);
// Replaces the file only once the new content is complete. Throws DateiFehler.
void zuletztSchreiben(const std::vector<std::string>& liste, const ProgrammOrte& orte);

// `pfad` at the head of the list, no longer further down, the list cut to eight.
std::vector<std::string> zuletztVorne(std::vector<std::string> liste, const std::string& pfad);
// The list without `pfad`.
std::vector<std::string> zuletztOhne(std::vector<std::string> liste, const std::string& pfad);

} // namespace lyrabo
