#include "blatt/KurzePausen.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace lyrabo::blatt {

Stueck kurzePausenSchliessen(const Stueck& stueck) {
    Stueck s = stueck;
    const int64_t achtel = std::max<int64_t>(1, s.ticksProViertel) / 2;
    std::map<int64_t, std::vector<size_t>> enden;
    std::set<int64_t> anfaenge;
    for (size_t i = 0; i < s.noten.size(); ++i) {
        enden[int64_t(s.noten[i].start) + std::max<int32_t>(0, s.noten[i].laenge)].push_back(i);
        anfaenge.insert(s.noten[i].start);
    }
    std::vector<Pause> bleiben;
    for (const Pause& p : s.pausen) {
        const auto vor = enden.find(p.start);
        const int64_t ende = int64_t(p.start) + p.laenge;
        if (p.laenge <= 0 || p.laenge >= achtel || vor == enden.end() || !anfaenge.count(ende)) {
            bleiben.push_back(p);
            continue;
        }
        for (size_t i : vor->second) s.noten[i].laenge += p.laenge;
    }
    s.pausen = std::move(bleiben);
    return s;
}

} // namespace lyrabo::blatt
