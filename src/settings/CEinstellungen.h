#pragma once
// The one settings object: the user's options, the facts of the loaded file and three values
// derived from them (TPQN_Faktor, QuantTicks, TaktLaenge) that it keeps up to date itself.
#include "model/Records.h"

#include <cstdint>
#include <string>

#define LYRABO_EINSTELLUNG(Typ, Name)               \
public:                                             \
    Typ Name() const { return m_##Name; }           \
    void Name(Typ wert) { m_##Name = std::move(wert); } \
                                                    \
private:                                            \
    Typ m_##Name{};

#define LYRABO_TABELLE(Typ, Name)                                        \
public:                                                                  \
    const SammlungRef<Typ>& Name() {                                     \
        if (!m_##Name) m_##Name = neueSammlung<Typ>(); /* on first use */ \
        return m_##Name;                                                 \
    }                                                                    \
    void Name(SammlungRef<Typ> wert) { m_##Name = std::move(wert); }     \
                                                                         \
private:                                                                 \
    SammlungRef<Typ> m_##Name;

namespace lyrabo {

class CEinstellungen {
public:
    CEinstellungen();

    LYRABO_TABELLE(CInteger, ABSErlaubteLaengen)
    LYRABO_EINSTELLUNG(bool, AutoRun)
    LYRABO_TABELLE(CInteger, ClipExportFlags)
    LYRABO_TABELLE(CInteger, Denominatoren)
    LYRABO_EINSTELLUNG(std::string, Fontname)
    LYRABO_EINSTELLUNG(bool, HoechsterTonMelodie)
    LYRABO_EINSTELLUNG(std::string, InitDir)
    LYRABO_EINSTELLUNG(int16_t, KanalBelegung)
    LYRABO_EINSTELLUNG(bool, Legato)
    LYRABO_EINSTELLUNG(std::string, MIDIFilePath)
    LYRABO_TABELLE(CInteger, MFITaktLaengen)
    LYRABO_TABELLE(CString, NotenLaengenStr)
    LYRABO_TABELLE(CInteger, Numeratoren)
    LYRABO_EINSTELLUNG(bool, PausenLetzterTakt)
    LYRABO_EINSTELLUNG(bool, PunktiertePausen)
    LYRABO_TABELLE(CInteger, SpurSelected)
    LYRABO_EINSTELLUNG(int16_t, Tempo)
    LYRABO_EINSTELLUNG(int16_t, TonMax)
    LYRABO_EINSTELLUNG(int16_t, TonMin)
    LYRABO_EINSTELLUNG(int16_t, TrackNr)
    LYRABO_EINSTELLUNG(int16_t, Transpo)
    LYRABO_EINSTELLUNG(int16_t, WDBSpaltenAnzahl)
    LYRABO_EINSTELLUNG(int16_t, SpurNr)

public:
    // Setters with derived values: each stores its value first, then recomputes. An overflow
    // while recomputing propagates; the base value stays, later derived values keep their old ones.
    int16_t Denominator() const { return m_Denominator; }
    void Denominator(int16_t v);
    int16_t Numerator() const { return m_Numerator; }
    void Numerator(int16_t v);
    int16_t QuantNotenwert() const { return m_QuantNotenwert; }
    void QuantNotenwert(int16_t v);
    int16_t TicksPerQuarterNote() const { return m_TicksPerQuarterNote; }
    void TicksPerQuarterNote(int16_t v);

    // Derived values; written only by the recomputation above.
    int16_t QuantTicks() const { return m_QuantTicks; }
    int32_t TaktLaenge() const { return m_TaktLaenge; }
    int16_t TPQN_Faktor() const { return m_TPQN_Faktor; }

    // Starts new, empty per-bar tables (lengths, numerators, denominators) for a new conversion.
    void initTaktLaengen();

    // Value of item `pos` (1-based) of a CInteger table, as the program reads its tables.
    static int16_t wert(const SammlungRef<CInteger>& tabelle, int32_t pos) { return tabelle->Item(pos)->Value(); }

private:
    void berechneTPQNFaktor();
    void berechneQuantTicks();
    void berechneTaktLaenge();

    int16_t m_Denominator = 0;
    int16_t m_Numerator = 0;
    int16_t m_QuantNotenwert = 12;
    int16_t m_TicksPerQuarterNote = 480;
    int16_t m_QuantTicks = 0;
    int32_t m_TaktLaenge = 0;
    int16_t m_TPQN_Faktor = 0;
};

} // namespace lyrabo
