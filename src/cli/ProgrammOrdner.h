#pragma once
// The folder of the running executable, where data/ and ini/ lie beside the program.
#include <filesystem>
#include <string>

namespace lyrabo::cli {

// The executable's folder: asked of the system first, from argv[0] if that fails.
std::filesystem::path programmOrdner(const char* argv0);

} // namespace lyrabo::cli
