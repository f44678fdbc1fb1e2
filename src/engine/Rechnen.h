#pragma once
// Integer division and remainder as the engine's arithmetic needs them: a divisor of 0 is the
// run-time error the program has always raised, never undefined behaviour.
#include "model/Fehler.h"

#include <cstdint>

namespace lyrabo {

class DivisionDurchNullFehler : public Fehler {
public:
    DivisionDurchNullFehler() : Fehler("Division durch Null.") {}
};

// Remainder of the truncating division (sign of a), as the program's Mod.
inline int32_t restVon(int32_t a, int32_t b) {
    if (b == 0) throw DivisionDurchNullFehler();
    if (b == -1) return 0;
    return a % b;
}

} // namespace lyrabo
