#include "app/core/CProgramm.h"

#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "settings/UserDaten.h"

namespace lyrabo {

CProgramm::CProgramm(ProgrammOrte orte, IForm& form, IDialog* dialog)
    : m_orte(std::move(orte)), m_form(form), m_dialog(dialog) {
    // In the body: the places member is initialised after the public ones.
    Umrechnung = umrechnungDatenLesen(m_orte);
}

CProgramm::~CProgramm() = default;

bool CProgramm::initGlobals() {
    m_wdbCreator = std::make_unique<CWDBCreator>(*this);
    m_klnCreator = std::make_unique<CKLNCreator>(*this);
    m_einstellungen = std::make_unique<CEinstellungen>();
    KlangNoten = neueSammlung<CKlangNote>();
    Pausen = neueSammlung<CKlangPause>();
    Akkorde = neueSammlung<CAkkord>();
    FontNoten = neueSammlung<CDreiZeichen>();
    FontPausen = neueSammlung<CDreiZeichen>();
    HarfeEvents = neueSammlung<CHarfeEvent>();
    KlangNotenMix = neueSammlung<CKlangNote>();
    fillFontNotenColl(*FontNoten);
    fillFontPausenColl(*FontPausen);
    bool gelesen = UserDatenLesen(*m_einstellungen, AktuellesInitDir, m_orte);
    if (gelesen) m_form.anzeigeAktuallisieren();
    return gelesen;
}

const TimeSignaturesRef& CProgramm::TimeSignatures() {
    if (!m_timeSignatures) m_timeSignatures = neueSammlung<CTimeSignature>();
    return m_timeSignatures;
}

} // namespace lyrabo
