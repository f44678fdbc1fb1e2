#pragma once
// The program's globals and the conversion flow shared by the window and the command line:
// the settings, engine and database writer, the seven global collections, the MIDI reader with
// the file's time signatures and tempo table, and the runs that tie them together.
#include "app/core/Oberflaeche.h"
#include "midi/Midifile.h"
#include "model/Records.h"
#include "settings/CDreiZeichen.h"
#include "settings/CEinstellungen.h"
#include "settings/ProgrammOrte.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string>

namespace lyrabo {

class CKLNCreator;
class CWDBCreator;

class CProgramm {
public:
    CProgramm(ProgrammOrte orte, IForm& form, IDialog* dialog = nullptr);
    ~CProgramm();

    // Creates writer, engine and settings anew, the seven collections, both font tables, and reads
    // the user settings file. Returns true when the user settings file was read completely.
    bool initGlobals();

    // The program's folder, its shipped files and the user's files.
    const ProgrammOrte& Orte() const { return m_orte; }
    IForm& Form() { return m_form; }
    IDialog* Dialog() { return m_dialog; }

    CEinstellungen& Einstellungen() { return *m_einstellungen; }
    CKLNCreator& KLNCreator() { return *m_klnCreator; }
    CWDBCreator& WDBCreator() { return *m_wdbCreator; }

    // The seven global collections, in the order initGlobals creates them.
    KlangNotenRef KlangNoten;        // first note collection: the track shown in the window
    PausenRef Pausen;
    AkkordeRef Akkorde;
    ZeichenTabelleRef FontNoten;
    ZeichenTabelleRef FontPausen;
    HarfeEventsRef HarfeEvents;
    KlangNotenRef KlangNotenMix;     // second note collection: merged tracks

    // The dialogs' current starting folder (empty at start).
    std::string AktuellesInitDir;

    // The window's MIDI reader; the engine reads through the same cursor.
    Midifile Midifile1;

    // ---- MIDI file access ----
    // Time signatures of track 1, created empty on first access.
    const TimeSignaturesRef& TimeSignatures();
    struct TempoEintrag {
        int32_t tempo = 0;          // microseconds per quarter note
        int32_t msProTick = 0;      // milliseconds per tick, rounded
        int32_t ticksProMs1000 = 0; // ticks per millisecond x 1000, rounded
        int32_t positionMs = 0;     // absolute position of the change in milliseconds
    };
    static constexpr int kMaxTempi = 150;
    // Entries 1 to TempoAnzahl are filled; entry 0 stays empty on purpose.
    std::array<TempoEintrag, kMaxTempi + 1> TempoTabelle{};
    int16_t TempoAnzahl = 0;

    // Opens a MIDI file: mode 1 asks through the dialog, mode 2 loads Einstellungen().MIDIFilePath().
    // Returns true when a file was loaded. Reader errors propagate.
    bool openMIDIFile(int16_t mode);
    // Label of a track in the track list.
    std::string spurBezeichnung(int16_t spur);
    void tempoScan();
    void GetTimeSignatureFRMIntern();
    void zeitSignaturAnzeige();
    void MIDIFileSetsESVarsFrmIntern(int16_t spur);

    // ---- conversion flow ----
    // Converts a track and builds the harp events; shows it in the window when mitAnzeige.
    void HarfeExportLauf(int16_t spur, bool mitAnzeige, bool mitHarfeText);
    // The window's recompute of the selected track after an option change.
    void neuBerechnen();

private:
    ProgrammOrte m_orte;
    IForm& m_form;
    IDialog* m_dialog;
    std::unique_ptr<CEinstellungen> m_einstellungen;
    std::unique_ptr<CKLNCreator> m_klnCreator;
    std::unique_ptr<CWDBCreator> m_wdbCreator;
    TimeSignaturesRef m_timeSignatures;
};

} // namespace lyrabo
