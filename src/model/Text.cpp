#include "model/Text.h"

#include <cstdint>

namespace lyrabo {

namespace {
// Code points of bytes 0x80..0x9F in Windows-1252 (0 where the code page has no character).
const char32_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                            0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void anhaengen(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// Decodes one UTF-8 sequence at i; returns false when it is not well formed.
bool naechster(const std::string& s, size_t& i, char32_t& cp) {
    auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
    unsigned char c = b(i);
    int n;
    if (c < 0x80) { cp = c; i += 1; return true; }
    if ((c & 0xE0) == 0xC0) { n = 1; cp = c & 0x1F; }
    else if ((c & 0xF0) == 0xE0) { n = 2; cp = c & 0x0F; }
    else if ((c & 0xF8) == 0xF0) { n = 3; cp = c & 0x07; }
    else return false;
    for (int k = 1; k <= n; ++k) {
        if (i + k >= s.size() || (b(i + k) & 0xC0) != 0x80) return false;
        cp = (cp << 6) | (b(i + k) & 0x3F);
    }
    static const char32_t kMin[4] = {0, 0x80, 0x800, 0x10000};
    if (cp < kMin[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += static_cast<size_t>(n) + 1;
    return true;
}
} // namespace

bool istGueltigesUtf8(const std::string& s) {
    size_t i = 0;
    char32_t cp;
    while (i < s.size())
        if (!naechster(s, i, cp)) return false;
    return true;
}

std::string cp1252ZuUtf8(const std::string& bytes) {
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        char32_t cp = c;
        if (c >= 0x80 && c < 0xA0) cp = kHigh[c - 0x80] ? kHigh[c - 0x80] : c;
        anhaengen(out, cp);
    }
    return out;
}

std::string utf8ZuCp1252(const std::string& utf8) {
    std::string out;
    out.reserve(utf8.size());
    size_t i = 0;
    while (i < utf8.size()) {
        char32_t cp;
        size_t vorher = i;
        if (!naechster(utf8, i, cp)) {
            out += static_cast<char>(utf8[vorher]); // not UTF-8: pass the byte on as it is
            i = vorher + 1;
            continue;
        }
        if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
            out += static_cast<char>(cp);
            continue;
        }
        char ersatz = '?';
        for (int k = 0; k < 32; ++k)
            if (kHigh[k] == cp) ersatz = static_cast<char>(0x80 + k);
        out += ersatz;
    }
    return out;
}

std::string alsAnzeigeText(const std::string& bytes) {
    return istGueltigesUtf8(bytes) ? bytes : cp1252ZuUtf8(bytes);
}

} // namespace lyrabo
