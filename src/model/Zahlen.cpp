#include "model/Zahlen.h"

#include <cmath>

namespace lyrabo {

int64_t rundenGerade(double x) {
    if (!(x > -9.2e18 && x < 9.2e18)) throw UeberlaufFehler();
    double unten = std::floor(x);
    double rest = x - unten;
    int64_t n = static_cast<int64_t>(unten);
    if (rest > 0.5) return n + 1;
    if (rest < 0.5) return n;
    return (n % 2 == 0) ? n : n + 1;
}

std::string Str(int64_t v) {
    return v >= 0 ? " " + std::to_string(v) : std::to_string(v);
}

std::string StrTrim(int64_t v) {
    return std::to_string(v);
}

} // namespace lyrabo
