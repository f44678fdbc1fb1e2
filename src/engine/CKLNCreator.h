#pragma once
// The conversion engine: from the note events of one track to KlangNoten, chords and rests.
#include "app/core/Oberflaeche.h"
#include "midi/Midifile.h"
#include "model/Records.h"

#include <cstdint>
#include <string>

namespace lyrabo {

class CProgramm;

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
    CProgramm& m_programm;
    AkkordeRef m_akkorde;
    KlangNotenRef m_klangNoten;
    PausenRef m_pausen;
    Midifile* m_midiFile = nullptr;
    IForm* m_form = nullptr;
    IDialog* m_dialog = nullptr;
    bool m_isMonoton = true;
};

} // namespace lyrabo
