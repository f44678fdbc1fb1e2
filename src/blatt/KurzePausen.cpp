#include "blatt/KurzePausen.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace lyrabo::blatt {

Stueck kurzePausenSchliessen(const Stueck& stueck) {
    Stueck ergebnis = stueck;
    const int64_t grenze = stueck.ticksProViertel / 2;
    std::vector<int64_t> anfaenge, enden;
    anfaenge.reserve(stueck.noten.size());
    enden.reserve(stueck.noten.size());
    for (const auto& n : stueck.noten) {
        anfaenge.push_back(n.start);
        enden.push_back(int64_t{n.start} + std::max<int32_t>(n.laenge, 0));
    }
    std::sort(anfaenge.begin(), anfaenge.end());
    std::sort(enden.begin(), enden.end());
    auto gibt = [](const std::vector<int64_t>& v, int64_t t) { return std::binary_search(v.begin(), v.end(), t); };

    // Decided on the piece as it came, so that two rests at one moment (a mix) are treated alike.
    // Notes ending at a moment get the longest closed rest that starts there.
    std::map<int64_t, int32_t> verlaengerung;
    ergebnis.pausen.clear();
    for (const auto& p : stueck.pausen) {
        const int64_t ende = int64_t{p.start} + p.laenge;
        if (p.laenge > 0 && p.laenge < grenze && gibt(enden, p.start) && gibt(anfaenge, ende)) {
            int32_t& l = verlaengerung[p.start];
            l = std::max(l, p.laenge);
        } else {
            ergebnis.pausen.push_back(p);
        }
    }
    if (verlaengerung.empty()) return ergebnis;
    for (auto& n : ergebnis.noten) {
        const auto it = verlaengerung.find(int64_t{n.start} + std::max<int32_t>(n.laenge, 0));
        if (it != verlaengerung.end()) n.laenge = static_cast<int32_t>(std::min<int64_t>(int64_t{n.laenge} + it->second, INT32_MAX));
    }
    return ergebnis;
}

} // namespace lyrabo::blatt
