#pragma once
// Writing a whole file so that a failure never leaves a truncated file behind: the content goes to
// a temporary file beside the target, which then replaces the target in one rename.
#include <filesystem>
#include <string>

namespace lyrabo {

// Throws DateiFehler naming the file when it cannot be written.
void dateiErsetzen(const std::filesystem::path& ziel, const std::string& bytes);

// Name of a fresh temporary file in the target's folder.
std::filesystem::path temporaerBeside(const std::filesystem::path& ziel);

// Moves a finished temporary file over the target; removes the temporary file on failure.
void temporaerUebernehmen(const std::filesystem::path& temp, const std::filesystem::path& ziel);

// Reads a whole file; throws DateiFehler naming it when it cannot be read.
std::string dateiLesen(const std::filesystem::path& pfad);

} // namespace lyrabo
