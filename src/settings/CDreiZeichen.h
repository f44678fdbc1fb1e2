#pragma once
// The note-font character tables: for each of the eight note values the character of the note
// (or rest) and, for dotted values, the dot character that follows it.
#include "model/Sammlung.h"

#include <cstdint>

namespace lyrabo {

class CDreiZeichen {
public:
    uint8_t Zeichen1() const { return m_z1; }
    void Zeichen1(uint8_t v) { m_z1 = v; }
    uint8_t Zeichen2() const { return m_z2; }
    void Zeichen2(uint8_t v) { m_z2 = v; }
    uint8_t Zeichen3() const { return m_z3; }
    void Zeichen3(uint8_t v) { m_z3 = v; }

private:
    uint8_t m_z1 = 0, m_z2 = 0, m_z3 = 0;
};

using ZeichenTabelle = Sammlung<CDreiZeichen>;
using ZeichenTabelleRef = SammlungRef<CDreiZeichen>;

// Keys of the tables in order: the note values in ticks at 48 per quarter note.
extern const char* const kZeichenSchluessel[8];

// Fill a new, empty table with the built-in codes (keys "192" down to "12").
void fillFontNotenColl(ZeichenTabelle& tabelle);
void fillFontPausenColl(ZeichenTabelle& tabelle);

} // namespace lyrabo
