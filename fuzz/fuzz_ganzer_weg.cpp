// libFuzzer target for the whole road of a file (GanzerWeg.h); built twice, as fuzz_ganzer_weg
// (the conversion as laid down) and fuzz_ganzer_weg_genau (with "Genaue Auflösung").
// The program's own errors (Fehler, overflow included) are the expected answer to bad input; any
// other exception escaping, a sanitizer report, a hang or a wrong-sized database is a finding.
#include "GanzerWeg.h"

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

// A program folder of this process with the shipped templates in ini/, removed at exit.
const fs::path& programmOrdner() {
    static const fs::path ordner = [] {
        fs::path o = fs::temp_directory_path() / ("lyrabo-fuzz-" + std::to_string(std::random_device{}()));
        fs::create_directories(o / "data");
        fs::copy(LYRABO_INI_QUELLE, o / "ini", fs::copy_options::recursive);
        return o;
    }();
    static const bool aufraeumen = (std::atexit([] {
                                        std::error_code ec;
                                        fs::remove_all(ordner, ec);
                                    }),
                                    true);
    (void)aufraeumen;
    return ordner;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lyrabo::fuzz::ganzerWeg(std::string(reinterpret_cast<const char*>(data), size), programmOrdner(),
                            LYRABO_GENAUE_AUFLOESUNG != 0);
    return 0;
}
