#pragma once
// Checked integer arithmetic, rounding and number-to-text as the program has always done them:
// 16-bit and 32-bit results that leave their range raise UeberlaufFehler, reals are rounded
// half to even, and a non-negative number is written with one leading blank.
#include "model/Fehler.h"

#include <cstdint>
#include <string>

namespace lyrabo {

inline int16_t cint16(int64_t v) {
    if (v < INT16_MIN || v > INT16_MAX) throw UeberlaufFehler();
    return static_cast<int16_t>(v);
}
inline int32_t clng32(int64_t v) {
    if (v < INT32_MIN || v > INT32_MAX) throw UeberlaufFehler();
    return static_cast<int32_t>(v);
}

inline int16_t add16(int64_t a, int64_t b) { return cint16(a + b); }
inline int16_t sub16(int64_t a, int64_t b) { return cint16(a - b); }
inline int16_t mul16(int64_t a, int64_t b) { return cint16(a * b); }
inline int32_t add32(int64_t a, int64_t b) { return clng32(a + b); }
inline int32_t sub32(int64_t a, int64_t b) { return clng32(a - b); }
inline int32_t mul32(int64_t a, int64_t b) { return clng32(a * b); }

// Nearest integer, exact halves to the even one (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
// Throws UeberlaufFehler for values no 64-bit integer holds (and NaN).
int64_t rundenGerade(double x);

// Real to integer as the program converts them: rounded half to even, then range-checked.
inline int16_t cint16(double x) { return cint16(rundenGerade(x)); }
inline int32_t clng32(double x) { return clng32(rundenGerade(x)); }

// Number to text with one leading blank before a non-negative number (" 5", "-5").
std::string Str(int64_t v);
// The same without the blank ("5", "-5").
std::string StrTrim(int64_t v);

} // namespace lyrabo
