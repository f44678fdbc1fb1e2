#include "settings/Takte.h"

#include "model/Zahlen.h"

namespace lyrabo {

int16_t getTaktNrFromABSStartZeit(CEinstellungen& e, int32_t t) {
    const auto& laengen = e.MFITaktLaengen();
    int16_t n = 0;
    int32_t summe = 0;
    while (summe <= t) {
        n = add16(n, 1);
        if (n > laengen->Count()) return 0;
        summe = add32(summe, laengen->Item(n)->Value());
    }
    return n;
}

int32_t TaktStartVon(CEinstellungen& e, int16_t k) {
    const auto& laengen = e.MFITaktLaengen();
    int32_t summe = 0;
    for (int32_t i = 1; i <= k - 1; ++i) summe = add32(summe, laengen->Item(i)->Value());
    return summe;
}

std::string KommandoAusZwischenablage(const std::string& t) {
    static const std::string kKommando = "Create Harfe-Spur";
    if (t.size() < 17 || t.compare(0, 17, kKommando) != 0) return {};
    if (t.size() < 4 || t.compare(t.size() - 4, 4, ".mid") != 0) return {};
    std::string rest = t.size() > 18 ? t.substr(18) : std::string();
    size_t a = rest.find_first_not_of(' ');
    if (a == std::string::npos) return {};
    size_t b = rest.find_last_not_of(' ');
    return rest.substr(a, b - a + 1);
}

} // namespace lyrabo
