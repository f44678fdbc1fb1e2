#pragma once
// Where the program finds what it ships (ini/ and data/schriften/) and where it keeps the user's
// files (LYRABO_user.ini, LYRABO_blatt.ini, LYRABO_zuletzt.txt). Every path to those files is
// formed from these three folders, so one rule decides for all of them.
#include <filesystem>

namespace lyrabo {

struct ProgrammOrte {
    ProgrammOrte() = default;
    // A folder with data/ and ini/ in it, as the build tree and a portable copy have them.
    // Not explicit: a plain folder is what tests, tools and the fuzzers hand over.
    ProgrammOrte(const std::filesystem::path& ordner)
        : programm(ordner), beilagen(ordner), benutzer(ordner / "data"), arbeit(ordner / "ini") {}
    ProgrammOrte(const char* ordner) : ProgrammOrte(std::filesystem::path(ordner)) {}

    std::filesystem::path programm;  // the executable's folder
    std::filesystem::path beilagen;  // holds ini/ and data/schriften/
    std::filesystem::path benutzer;  // holds the user's files themselves
    std::filesystem::path arbeit;    // where the Works writer leaves its patched grid (FelderAllTemp_)
};

// The running executable's folder: asked of the system first, from argv[0] if that fails.
std::filesystem::path exeOrdner(const char* argv0);

// True when a file can be created in the folder. Tried, not read from permission bits: root
// passes those everywhere, and a read-only medium does not show in them.
bool beschreibbar(const std::filesystem::path& ordner);

// The one rule. Shipped files: beside the program when ini/ is there (build tree, portable copy),
// else in ../share/lyrabo/ (installed). The user's files: in data/ beside the program when that
// folder can be written; otherwise, and always when installed, in `konfiguration`, the user's
// configuration folder as the window's toolkit names it (created here), and the Works writer's
// patched grid with them. An empty `konfiguration` keeps everything beside the program.
ProgrammOrte orteBestimmen(const std::filesystem::path& programm, const std::filesystem::path& konfiguration);

} // namespace lyrabo
