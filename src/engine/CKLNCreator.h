#pragma once
// The conversion engine: from the note events of one track to KlangNoten, chords and rests.
#include "app/core/Oberflaeche.h"
#include "midi/Midifile.h"
#include "model/Records.h"

#include <cstdint>
#include <string>

namespace lyrabo {

class CProgramm;
class CTaktRaster;
class CEinstellungen;

class CKLNCreator {
public:
    explicit CKLNCreator(CProgramm& programm);

    // References handed in by the caller before each use.
    const AkkordeRef& Akkorde();
    void Akkorde(AkkordeRef a) { m_akkorde = std::move(a); }
    const KlangNotenRef& KlangNoten();      // created on first use
    void KlangNoten(KlangNotenRef k) { m_klangNoten = std::move(k); }
    const PausenRef& Pausen();
    void Pausen(PausenRef p) { m_pausen = std::move(p); }
    Midifile* MIDIFile() const { return m_midiFile; }
    void MIDIFile(Midifile* m) { m_midiFile = m; }
    IForm* Form() const { return m_form; }
    void Form(IForm* f) { m_form = f; }
    IDialog* Dialog() const { return m_dialog; }
    void Dialog(IDialog* d) { m_dialog = d; }

    bool IsMonoton() const { return m_isMonoton; }
    void IsMonoton(bool v) { m_isMonoton = v; }

    // Runs the whole pipeline; false when reading the track failed.
    bool produce(bool bNeuEinlesen);
    void spurenMischen();
    void checkMonoton() {}

    // Lowest and highest note of the selected track, and the string-column colours from them.
    void findMinMax();
    void colorSpaltenLabels();

    // Chooses (mode 1) or takes (mode 2) a MIDI file and loads it into the reader.
    bool openDialog_MIDIFile(int16_t mode);

    // Text exports.
    std::string getKlangNotenString();
    std::string getHarfeEventString();

    int16_t getTaktNrFromABSStartZeit(int32_t t);
    int32_t TaktStartVon(int16_t n);

private:
    // ---- stages of produce, one file per group ----
    // Notenlesen.cpp
    bool createKlangNoten();
    bool textVorNoten();
    // Quantisierung.cpp
    void quantisieren();
    void taktNrSetzen();
    // Doppelte.cpp and Mischen.cpp
    void doppelEventsEntfernen();
    void klangNoteKopieren(const CKlangNote& quelle, CKlangNote& ziel);
    int16_t spurNachStimme(int16_t spur);
    const SammlungRef<CInteger>& SpurReihenfolge();
    void mischeEin(const KlangNotenRef& gemischt, const KlangNotenRef& spurNoten);
    // Akkorde.cpp
    bool checkIsMonoton();
    void akkordeBilden();
    // Laengen.cpp
    void laengenKorrigieren();
    void legatoSetzen();
    void taktGrenzeSchneiden();
    // Taktschnitt.cpp
    void notenInTaktCut();
    // Pausen.cpp
    void pausenErzeugen();
    void pauseTaktSchneidenMeta(const CTaktRaster& raster, int16_t tonHoehe, int16_t akkordNr, int32_t von, int32_t bis);
    void pauseTaktTeilen(const CTaktRaster& raster, int16_t tonHoehe, int16_t akkordNr, int32_t von, int32_t bis);
    void pauseZerlegen(int16_t tonHoehe, int16_t akkordNr, int32_t start, int32_t laenge);
    void pauseHinzufuegen(int16_t tonHoehe, int16_t akkordNr, int32_t start, int32_t laenge);
    void punktiertePausenAufloesen();

    // Where messages go: the engine's window, else the program's.
    IForm& meldeForm();
    // The reader the track is read through: the one handed in, else the program's own.
    Midifile& leser();
    CEinstellungen& einstellungen();

    CProgramm& m_programm;
    AkkordeRef m_akkorde;
    KlangNotenRef m_klangNoten;
    PausenRef m_pausen;
    Midifile* m_midiFile = nullptr;
    IForm* m_form = nullptr;
    IDialog* m_dialog = nullptr;
    bool m_isMonoton = true;
    // Length of a sixteenth in the file's ticks, set by produce before the stages run.
    int16_t m_arbeitsLaenge = 0;
    // Tracks in the order of their strings; nothing fills it, so every track is voice 1.
    SammlungRef<CInteger> m_spurReihenfolge;
};

} // namespace lyrabo
