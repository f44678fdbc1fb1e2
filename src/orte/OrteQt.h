#pragma once
// The user's configuration folder as Qt names it on each system, handed to the core's one rule
// for where the program's files lie. Both programs start from here.
#include "settings/ProgrammOrte.h"

namespace lyrabo {

// ~/.config/lyrabo on Linux ($XDG_CONFIG_HOME/lyrabo when set), %LOCALAPPDATA%\lyrabo on Windows.
std::filesystem::path konfigurationsOrdner();

// orteBestimmen for the program in `programm` with the user's configuration folder.
ProgrammOrte orteDesProgramms(const std::filesystem::path& programm);

} // namespace lyrabo
