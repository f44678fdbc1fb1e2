#pragma once
// The record classes every part of the program passes around. Each field has a getter and a
// setter of the same name; a setter stores its value unchanged. A new record is all zeros and
// empty texts. Records are shared by reference between collections, never copied by them.
#include "model/Sammlung.h"

#include <cstdint>
#include <string>

#define LYRABO_FELD(Typ, Name)                      \
public:                                             \
    Typ Name() const { return m_##Name; }           \
    void Name(Typ wert) { m_##Name = std::move(wert); } \
                                                    \
private:                                            \
    Typ m_##Name{};

namespace lyrabo {

// One sounding note.
class CKlangNote {
    LYRABO_FELD(int16_t, AkkordNr)
    LYRABO_FELD(int16_t, Kanal)
    LYRABO_FELD(int32_t, Laenge)
    LYRABO_FELD(int32_t, LaengeOrig)
    LYRABO_FELD(std::string, MsgText)
    LYRABO_FELD(int32_t, StartZeit)
    LYRABO_FELD(int16_t, TaktNr)
    LYRABO_FELD(int16_t, TonHoehe)
    LYRABO_FELD(int16_t, Spur)
    // Running number given when the note is read from the track ("ID der Note").
    LYRABO_FELD(int32_t, ID)
};

// One rest.
class CKlangPause {
    LYRABO_FELD(int16_t, AkkordNr)
    LYRABO_FELD(int32_t, Laenge)
    LYRABO_FELD(int32_t, StartZeit)
    LYRABO_FELD(int16_t, TaktNr)
    LYRABO_FELD(int16_t, TonHoehe)
};

// A note (Art 1) or rest (Art 3) of the harp-event export.
class CHarfeEvent {
    LYRABO_FELD(int16_t, AkkordNr)
    LYRABO_FELD(int16_t, Art)
    LYRABO_FELD(int32_t, Laenge)
    LYRABO_FELD(std::string, MsgText)
    LYRABO_FELD(int32_t, StartZeit)
    LYRABO_FELD(int16_t, TonHoehe)
    LYRABO_FELD(int16_t, Spur)
};

// A time-signature event; Denominator is the real denominator (4, 8), not the exponent.
class CTimeSignature {
    LYRABO_FELD(int16_t, ID)
    LYRABO_FELD(int16_t, Numerator)
    LYRABO_FELD(int16_t, Denominator)
    LYRABO_FELD(int32_t, ABSTime)
};

class CInteger {
    LYRABO_FELD(int16_t, ID)
    LYRABO_FELD(int16_t, Value)
};

class CString {
    LYRABO_FELD(int32_t, ID)
    LYRABO_FELD(std::string, Text)
};

// A chord: the notes that start together, in their chord order.
using CAkkord = Sammlung<CKlangNote>;

using KlangNotenRef = SammlungRef<CKlangNote>;
using PausenRef = SammlungRef<CKlangPause>;
using AkkordeRef = SammlungRef<CAkkord>;
using HarfeEventsRef = SammlungRef<CHarfeEvent>;
using TimeSignaturesRef = SammlungRef<CTimeSignature>;

} // namespace lyrabo
