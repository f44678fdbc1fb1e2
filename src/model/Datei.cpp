#include "model/Datei.h"

#include "model/Fehler.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <sstream>

namespace lyrabo {

namespace fs = std::filesystem;

fs::path temporaerBeside(const fs::path& ziel) {
    static std::atomic<unsigned> zaehler{0};
    auto stempel = std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path temp = ziel;
    temp += ".tmp" + std::to_string(stempel % 1000000) + "_" + std::to_string(zaehler++);
    return temp;
}

void temporaerUebernehmen(const fs::path& temp, const fs::path& ziel) {
    std::error_code ec;
    fs::rename(temp, ziel, ec);
    if (ec) {
        fs::remove(temp, ec);
        throw DateiFehler("Die Datei \"" + ziel.string() + "\" konnte nicht geschrieben werden.");
    }
}

void dateiErsetzen(const fs::path& ziel, const std::string& bytes) {
    fs::path temp = temporaerBeside(ziel);
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) throw DateiFehler("Die Datei \"" + ziel.string() + "\" konnte nicht geschrieben werden.");
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::error_code ec;
            fs::remove(temp, ec);
            throw DateiFehler("Die Datei \"" + ziel.string() + "\" konnte nicht geschrieben werden.");
        }
    }
    temporaerUebernehmen(temp, ziel);
}

std::string dateiLesen(const fs::path& pfad) {
    std::ifstream in(pfad, std::ios::binary);
    if (!in) throw DateiFehler("Die Datei \"" + pfad.string() + "\" konnte nicht gelesen werden.");
    std::stringstream ss;
    ss << in.rdbuf();
    if (in.bad()) throw DateiFehler("Die Datei \"" + pfad.string() + "\" konnte nicht gelesen werden.");
    return ss.str();
}

} // namespace lyrabo
