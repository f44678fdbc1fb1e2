#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "model/Zahlen.h"
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

IForm& CKLNCreator::meldeForm() { return m_form ? *m_form : m_programm.Form(); }
Midifile& CKLNCreator::leser() { return m_midiFile ? *m_midiFile : m_programm.Midifile1; }
CEinstellungen& CKLNCreator::einstellungen() { return m_programm.Einstellungen(); }

bool CKLNCreator::produce(bool bNeuEinlesen) {
    auto& e = einstellungen();
    m_arbeitsLaenge = mul16(CEinstellungen::wert(e.ABSErlaubteLaengen(), 8), e.TPQN_Faktor());

    if (bNeuEinlesen && !createKlangNoten()) return false;

    if (m_isMonoton) m_isMonoton = checkIsMonoton();
    e.ClipExportFlags()->Item(8)->Value(m_isMonoton ? 1 : 0);

    quantisieren();
    doppelEventsEntfernen();
    taktNrSetzen();
    laengenKorrigieren();
    akkordeBilden();
    if (e.Legato()) legatoSetzen();
    taktGrenzeSchneiden();
    notenInTaktCut();
    pausenErzeugen();
    if (!e.PunktiertePausen()) punktiertePausenAufloesen();
    return true;
}

int16_t CKLNCreator::getTaktNrFromABSStartZeit(int32_t t) {
    return lyrabo::getTaktNrFromABSStartZeit(einstellungen(), t);
}
int32_t CKLNCreator::TaktStartVon(int16_t n) { return lyrabo::TaktStartVon(einstellungen(), n); }

} // namespace lyrabo
