#include "blatt/Transposition.h"

#include "blatt/Saiten.h"

#include <algorithm>

namespace lyrabo::blatt {

namespace {

// The shift nearest 0 that puts the run tief..hoch onto the strings, ignoring the slider's reach.
std::optional<int> naechsteVerschiebung(const Tonumfang& u, int saiten) {
    if (u.leer()) return 0;
    // String s = pitch + t - 54 must lie in 1..saiten for the lowest and the highest pitch.
    const int von = 55 - u.tief, bis = 54 + saiten - u.hoch;
    if (von > bis) return std::nullopt;
    return std::clamp(0, von, bis);
}

} // namespace

void Tonumfang::dazu(int tonHoehe) {
    if (leer()) {
        tief = hoch = tonHoehe;
        return;
    }
    tief = std::min(tief, tonHoehe);
    hoch = std::max(hoch, tonHoehe);
}

Tonumfang tonumfang(const Stueck& stueck) {
    Tonumfang u;
    for (const auto& n : stueck.noten) u.dazu(n.tonHoehe);
    return u;
}

std::optional<int> passendeTransposition(const Tonumfang& umfang, int saiten, int grenze) {
    const auto t = naechsteVerschiebung(umfang, saiten);
    if (!t || *t < -grenze || *t > grenze) return std::nullopt;
    return t;
}

std::string passtNichtText(const Tonumfang& umfang, int saiten, int grenze) {
    const auto t = naechsteVerschiebung(umfang, saiten);
    if (t)
        return "Dafür müsste das Stück um " + std::to_string(*t > 0 ? *t : -*t) + " Halbtöne " +
               (*t > 0 ? "höher" : "tiefer") + " klingen; der Regler reicht nur " + std::to_string(grenze) +
               " Halbtöne weit.";
    return "Das Stück umfasst mehr Töne, als die Harfe Saiten hat: von " + saitenName(umfang.tief) + " bis " +
           saitenName(umfang.hoch) + " sind es " + std::to_string(umfang.hoch - umfang.tief + 1) + " Töne, die Harfe hat " +
           std::to_string(saiten) + " Saiten.";
}

} // namespace lyrabo::blatt
