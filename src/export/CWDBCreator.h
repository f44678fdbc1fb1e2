#pragma once
// The Works database writer: lays notes and rests out in string columns by patching a blank grid
// of cells and splicing it between the template pieces in ini/; also builds the harp events.
#include "app/core/Oberflaeche.h"
#include "model/Records.h"

#include <string>

namespace lyrabo {

class CProgramm;

class CWDBCreator {
public:
    explicit CWDBCreator(CProgramm& programm);

    void Akkorde(AkkordeRef a) { m_akkorde = std::move(a); }
    void Dialog(IDialog* d) { m_dialog = d; }
    void Form(IForm* f) { m_form = f; }
    const KlangNotenRef& KlangNoten() const { return m_klangNoten; }
    void KlangNoten(KlangNotenRef k) { m_klangNoten = std::move(k); }
    void Pausen(PausenRef p) { m_pausen = std::move(p); }

    void saveDialog_WDB();
    void write_WDB(const std::string& fileName);
    void write_ExportColl();
    void writeINIDateien25();
    void writeINIDateien37();

private:
    CProgramm& m_programm;
    AkkordeRef m_akkorde;
    KlangNotenRef m_klangNoten;
    PausenRef m_pausen;
    IDialog* m_dialog = nullptr;
    IForm* m_form = nullptr;
};

} // namespace lyrabo
