#include "blatt/BlattSatz.h"

namespace lyrabo::blatt {

Blatt setzen(const Stueck& stueck, const Einstellungen& einstellungen) {
    Blatt b;
    Format f = papierFormat(einstellungen);
    Seite s;
    s.breite = f.breite;
    s.hoehe = f.hoehe;
    for (int k = 1; k <= stueck.saiten; ++k)
        s.elemente.push_back({Text{{15 + (k - 1) * einstellungen.saitenAbstand, 30}, std::to_string(k), 8, Ausrichtung::Mitte}});
    b.seiten.push_back(std::move(s));
    return b;
}

} // namespace lyrabo::blatt
