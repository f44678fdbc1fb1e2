#pragma once
// The Works database writer: lays notes and rests out in string columns by patching a blank grid
// of cells and splicing it between the template pieces in ini/; also builds the harp events.
#include "app/core/Oberflaeche.h"
#include "model/Records.h"

#include <cstdint>
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

    // Asks for the target through Dialog and writes it. Every outcome, failures included, ends in
    // one message through Form: the error's own text when the write failed.
    void saveDialog_WDB();
    // Builds the patched grid, the harp events and the file `fileName` (UTF-8 path). Throws
    // DateiFehler (template piece missing, target not writable), UeberlaufFehler, or Fehler for a
    // length that has no note character; an existing target is only replaced by a complete file.
    void write_WDB(const std::string& fileName);
    // Builds only the harp events (with lyrics and tracks); writes no file.
    void write_ExportColl();
    void writeINIDateien25();
    void writeINIDateien37();

private:
    // Working state of one write, reset at the start of every write.
    void zustandZuruecksetzen();
    void noteUebernehmen(const CKlangNote& note, bool mitTextUndSpur);
    void pauseUebernehmen(const CKlangPause& pause);
    void harfeEventAnhaengen(int16_t art);
    // Takes the first rest of chord number 0 into the working state; false when there is none.
    bool fuehrendePauseNehmen();
    void pausenDesAkkords(int16_t akkordNr);
    int32_t tiefsteNoteZaehlend(const CAkkord& akkord) const;
    int32_t tiefsteNotePosition(const CAkkord& akkord) const;
    int32_t melodieNote(const CAkkord& akkord) const;

    // Cell steps on the grid: the blank grid is read in order, the patched grid written in order.
    void zuSpalteSpringen(int16_t spalte);
    void zelleSchreiben(bool istNote);
    void zeileFuellen();
    void bytesKopieren(int32_t anzahl);
    uint8_t quellByte();

    void meldung(const std::string& text);

    int16_t m_spalte = 0;
    int16_t m_zeilen = 0;
    int16_t m_pausenIndex = 0;
    int16_t m_akkordZaehler = 0;
    int16_t m_tonHoehe = 0;
    int16_t m_laenge = 0;
    int32_t m_start = 0;
    int16_t m_akkordNr = 0;
    std::string m_text;
    int16_t m_spur = 0;

    std::string m_quelle;       // blank grid
    size_t m_quellPos = 0;
    std::string m_ziel;         // patched grid

    CProgramm& m_programm;
    AkkordeRef m_akkorde;
    KlangNotenRef m_klangNoten;
    PausenRef m_pausen;
    IDialog* m_dialog = nullptr;
    IForm* m_form = nullptr;
};

} // namespace lyrabo
