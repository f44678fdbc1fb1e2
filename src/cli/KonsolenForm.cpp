#include "cli/KonsolenForm.h"

#include <iostream>

namespace lyrabo::cli {

void CKonsolenForm::meldung(const std::string& text) {
    m_meldungen.push_back(text);
    std::cerr << text << std::endl;
}

void CKonsolenForm::nachDateiGeladen() {
    m_geladen = true;
    if (m_nachLaden) m_nachLaden();
}

void CKonsolenForm::zuruecksetzen() {
    m_zeile = -1;
    m_nachLaden = nullptr;
    m_speicherName.reset();
    m_klangNotenText.reset();
    m_zwischenablage.reset();
    m_labelTempo.reset();
    m_labelTicks.reset();
    m_labelTaktart.reset();
    m_trackListe.clear();
    m_meldungen.clear();
    m_geladen = false;
}

} // namespace lyrabo::cli
