#include "settings/ProgrammOrte.h"

#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

namespace lyrabo {

namespace fs = std::filesystem;

namespace {

fs::path exeVomSystem() {
#ifdef _WIN32
    std::vector<wchar_t> puffer(MAX_PATH);
    while (true) {
        DWORD n = GetModuleFileNameW(nullptr, puffer.data(), static_cast<DWORD>(puffer.size()));
        if (n == 0) return {};
        if (n < puffer.size()) return fs::path(std::wstring(puffer.data(), n));
        puffer.resize(puffer.size() * 2);
    }
#else
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    return exe;
#endif
}

bool istOrdner(const fs::path& p) {
    std::error_code ec;
    return fs::is_directory(p, ec);
}

} // namespace

fs::path exeOrdner(const char* argv0) {
    fs::path exe = exeVomSystem();
    if (exe.empty() && argv0 && *argv0) {
        std::error_code ec;
        exe = fs::absolute(fs::path(argv0), ec);
        if (ec) exe = fs::path(argv0);
    }
    if (exe.empty()) return fs::current_path();
    return exe.parent_path();
}

bool beschreibbar(const fs::path& ordner) {
    if (!istOrdner(ordner)) return false;
    // A name of its own per try, so that two programs starting together do not meet.
    std::random_device zufall;
    const fs::path probe = ordner / (".lyrabo_probe_" + std::to_string(zufall()));
    bool gut = false;
    {
        std::ofstream aus(probe, std::ios::binary);
        gut = static_cast<bool>(aus << 'x');
    }
    std::error_code ec;
    fs::remove(probe, ec);
    return gut;
}

ProgrammOrte orteBestimmen(const fs::path& programm, const fs::path& konfiguration) {
    ProgrammOrte orte(programm);
    const fs::path geteilt = programm.parent_path() / "share" / "lyrabo";
    const bool installiert = !istOrdner(programm / "ini") && istOrdner(geteilt / "ini");
    if (installiert) orte.beilagen = geteilt;
    if (konfiguration.empty() || (!installiert && beschreibbar(orte.benutzer))) return orte;
    std::error_code ec;
    fs::create_directories(konfiguration, ec);
    orte.benutzer = konfiguration;
    orte.arbeit = konfiguration;
    return orte;
}

} // namespace lyrabo
