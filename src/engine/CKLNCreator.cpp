// Placeholder until the engine lands.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "settings/Takte.h"

namespace lyrabo {

CKLNCreator::CKLNCreator(CProgramm& programm) : m_programm(programm) {}

const AkkordeRef& CKLNCreator::Akkorde() {
    if (!m_akkorde) m_akkorde = neueSammlung<CAkkord>();
    return m_akkorde;
}
const KlangNotenRef& CKLNCreator::KlangNoten() {
    if (!m_klangNoten) m_klangNoten = neueSammlung<CKlangNote>();
    return m_klangNoten;
}
const PausenRef& CKLNCreator::Pausen() {
    if (!m_pausen) m_pausen = neueSammlung<CKlangPause>();
    return m_pausen;
}

bool CKLNCreator::produce(bool) { return true; }
void CKLNCreator::spurenMischen() {}
void CKLNCreator::findMinMax() {}
void CKLNCreator::colorSpaltenLabels() {}

int16_t CKLNCreator::getTaktNrFromABSStartZeit(int32_t t) {
    return lyrabo::getTaktNrFromABSStartZeit(m_programm.Einstellungen(), t);
}
int32_t CKLNCreator::TaktStartVon(int16_t n) { return lyrabo::TaktStartVon(m_programm.Einstellungen(), n); }

} // namespace lyrabo
