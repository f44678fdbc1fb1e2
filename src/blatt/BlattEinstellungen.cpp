#include "blatt/BlattEinstellungen.h"

#include <algorithm>

namespace lyrabo::blatt {

Einstellungen standardFuer(int saiten) {
    Einstellungen e;
    e.papier = saiten == 25 ? Papier::A4 : Papier::A3;
    e.quer = true;
    return e;
}

Format papierFormat(const Einstellungen& e) {
    Format f = e.papier == Papier::A4 ? Format{210, 297} : Format{297, 420};
    if (e.quer) std::swap(f.breite, f.hoehe);
    return f;
}

Einstellungen begrenzt(Einstellungen e) {
    e.saitenAbstand = std::clamp(e.saitenAbstand, Einstellungen::kMinAbstand, Einstellungen::kMaxAbstand);
    e.mmProViertel = std::clamp(e.mmProViertel, Einstellungen::kMinProViertel, Einstellungen::kMaxProViertel);
    e.druckRand = std::clamp(e.druckRand, 0.0, 30.0);
    return e;
}

} // namespace lyrabo::blatt
