#include "settings/CEinstellungen.h"

#include "model/Zahlen.h"

#include <cmath>

namespace lyrabo {

namespace {
const int16_t kLaengen[8] = {192, 144, 96, 72, 48, 36, 24, 12};
const char* const kNamen[8] = {"1/1", "1/2p", "1/2", "1/4p", "1/4", "1/8p", "1/8", "1/16"};
} // namespace

CEinstellungen::CEinstellungen() {
    m_HoechsterTonMelodie = false;
    m_KanalBelegung = 0;
    m_Legato = false;
    m_PausenLetzterTakt = true;
    m_PunktiertePausen = false;
    m_QuantNotenwert = 12;
    m_TicksPerQuarterNote = 480;
    m_TonMax = 0;
    m_TonMin = 128;
    m_Transpo = 0;
    m_WDBSpaltenAnzahl = 37;

    auto& flags = ClipExportFlags();
    for (int16_t i = 1; i <= 8; ++i) {
        auto f = std::make_shared<CInteger>();
        f->ID(i);
        flags->Add(f);
    }
    auto& laengen = ABSErlaubteLaengen();
    auto& namen = NotenLaengenStr();
    for (int16_t i = 1; i <= 8; ++i) {
        auto l = std::make_shared<CInteger>();
        l->ID(i);
        laengen->Add(l);
        auto n = std::make_shared<CString>();
        n->ID(i);
        namen->Add(n);
    }
    for (int16_t i = 1; i <= 8; ++i) {
        laengen->Item(i)->Value(kLaengen[i - 1]);
        namen->Item(i)->Text(kNamen[i - 1]);
        flags->Item(i)->Value(1);
    }
    flags->Item(5)->Value(0);

    berechneTPQNFaktor();
    berechneQuantTicks();
    berechneTaktLaenge();
}

void CEinstellungen::berechneTPQNFaktor() { m_TPQN_Faktor = cint16(m_TicksPerQuarterNote / 48.0); }

void CEinstellungen::berechneQuantTicks() { m_QuantTicks = mul16(m_TPQN_Faktor, m_QuantNotenwert); }

void CEinstellungen::berechneTaktLaenge() {
    // The product is formed in 16 bits, as the program always has: 1920 x 5 x 4 overflows.
    int16_t produkt = mul16(mul16(m_TicksPerQuarterNote, m_Numerator), 4);
    m_TaktLaenge = clng32(produkt / std::pow(2.0, m_Denominator));
}

void CEinstellungen::TicksPerQuarterNote(int16_t v) {
    m_TicksPerQuarterNote = v;
    berechneTPQNFaktor();
    berechneQuantTicks();
    berechneTaktLaenge();
}

void CEinstellungen::QuantNotenwert(int16_t v) {
    m_QuantNotenwert = v;
    berechneQuantTicks();
}

void CEinstellungen::Numerator(int16_t v) {
    m_Numerator = v;
    berechneTaktLaenge();
}

void CEinstellungen::Denominator(int16_t v) {
    m_Denominator = v;
    berechneTaktLaenge();
}

// All three per-bar tables start over, so they never grow from one conversion to the next.
void CEinstellungen::initTaktLaengen() {
    m_MFITaktLaengen = neueSammlung<CInteger>();
    m_Numeratoren = neueSammlung<CInteger>();
    m_Denominatoren = neueSammlung<CInteger>();
}

} // namespace lyrabo
