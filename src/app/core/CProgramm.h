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
#include "settings/UmrechnungDaten.h"

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

    // The window's MIDI reader: the file exactly as it is, for the event list and playback.
    Midifile Midifile1;
    // The reader the conversion reads through (engine, bar tables, time signatures): the same file,
    // or with "Genaue Auflösung" a copy at 480 ticks per quarter note, so that a quarter of the
    // file is a quarter of every output whatever its resolution and whether it has a tempo event.
    Midifile MidifileUmrechnung;
    // The conversion's own settings file, read when the program object is made.
    UmrechnungDaten Umrechnung;

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

    // ---- "Genaue Auflösung" ----
    // Switches it for the loaded file: the conversion reader, the settings' TicksPerQuarterNote
    // and the time signatures follow; the caller converts again.
    void genaueAufloesungSetzen(bool an);
    // True when the switch changes anything for the loaded file (a resolution other than 480).
    bool genauUmgerechnet();
    // The file info's line when it does, else "": "Auflösung 1024 Ticks pro Viertel, ohne
    // Tempoangabe: genau umgerechnet".
    std::string aufloesungsHinweis();
    // A tick of the file (as playback counts) in the conversion's ticks.
    int32_t umrechnungsTick(int32_t dateiTick);

    // ---- conversion flow ----
    // Converts a track and builds the harp events; shows it in the window when mitAnzeige.
    void HarfeExportLauf(int16_t spur, bool mitAnzeige, bool mitHarfeText);
    // The window's recompute of the selected track after an option change.
    void neuBerechnen();

private:
    ProgrammOrte m_orte;
    // Fills MidifileUmrechnung from Midifile1 as the switch says, then the time signatures.
    void umrechnungsLeserBereiten();
    // MidifileUmrechnung when it was prepared from the file Midifile1 holds, else Midifile1.
    Midifile& umrechnungsLeser();

    IForm& m_form;
    IDialog* m_dialog;
    std::unique_ptr<CEinstellungen> m_einstellungen;
    std::unique_ptr<CKLNCreator> m_klnCreator;
    std::unique_ptr<CWDBCreator> m_wdbCreator;
    TimeSignaturesRef m_timeSignatures;
    std::shared_ptr<const MidiDateiInhalt> m_umrechnungsQuelle;
    // What the settings' TicksPerQuarterNote held before the tempo scan: a file without a tempo
    // event leaves it so, and switching off goes back to it.
    int16_t m_ticksVorTempoScan = 480;
};

} // namespace lyrabo
