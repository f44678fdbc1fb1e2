#include "cli/ProgrammOrdner.h"

#include <system_error>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

namespace lyrabo::cli {

namespace fs = std::filesystem;

namespace {

fs::path vomSystem() {
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

} // namespace

fs::path programmOrdner(const char* argv0) {
    fs::path exe = vomSystem();
    if (exe.empty() && argv0 && *argv0) {
        std::error_code ec;
        exe = fs::absolute(fs::path(argv0), ec);
        if (ec) exe = fs::path(argv0);
    }
    if (exe.empty()) return fs::current_path();
    return exe.parent_path();
}

} // namespace lyrabo::cli
