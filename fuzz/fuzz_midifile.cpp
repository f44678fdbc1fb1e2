// libFuzzer target: any bytes through the MIDI reader, and what loads through everything the
// program computes from a freshly opened file. Our own errors (Fehler) are the expected answer to
// bad input; anything else escaping, a sanitizer report or a hang is a finding.
#include "FuzzHilfen.h"

#include "app/core/CProgramm.h"
#include "model/Fehler.h"

#include <filesystem>

using lyrabo::fuzz::allesLesen;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static lyrabo::fuzz::StilleForm form;
    static lyrabo::CProgramm programm(std::filesystem::temp_directory_path() / "lyrabo-fuzz-ohne-ordner", form);
    static bool bereit = (programm.initGlobals(), true);
    (void)bereit;

    form.meldungen.clear();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    lyrabo::Midifile& m = programm.Midifile1;
    m.Action(5);
    m.Action(2);
    try {
        m.ladenAusBytes(bytes, "fuzz.mid");
    } catch (const lyrabo::MidiDateiFehler&) {
        if (m.geladen()) __builtin_trap(); // a failed load must leave nothing behind
        return 0;
    }
    try {
        allesLesen(m);
    } catch (const lyrabo::Fehler&) {
    }
    // Opening: labels, tempo, time signatures, then the bar tables of one track picked by the
    // input itself (one per run keeps the fuzzer fast; a piece may have up to 32767 bars).
    try {
        for (int16_t t = 1; t <= m.TrackCount() && t <= 4; ++t) (void)programm.spurBezeichnung(t);
        programm.tempoScan();
        programm.GetTimeSignatureFRMIntern();
        programm.zeitSignaturAnzeige();
        programm.MIDIFileSetsESVarsFrmIntern(static_cast<int16_t>(1 + data[size - 1] % m.TrackCount()));
    } catch (const lyrabo::Fehler&) {
    }
    return 0;
}
