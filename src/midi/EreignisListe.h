#pragma once
// Rows of the event list as the window shows them and the command line prints them.
#include "midi/Midifile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lyrabo {

// Row text of the event under the reader's cursor ("Note On 93", " 0 Tempo 120", "Sysex 2F", ...).
std::string ereignisZeile(const Midifile& datei);

// Selects the track and returns the rows of its first events, at most 500.
std::vector<std::string> DisplayTrackZeilen(Midifile& datei, int16_t spur);

// A detail field's number: decimal, or hexadecimal (upper case) when hex; `piepen` is set when in
// hexadecimal mode the value is above 256 (the window then sounds the system beep).
std::string zahlAlsText(int32_t wert, bool hex, bool* piepen = nullptr);

// A detail field's text back to a 16-bit number; hexadecimal when hex; unreadable text gives 0.
int16_t textAlsZahl(const std::string& text, bool hex);

} // namespace lyrabo
