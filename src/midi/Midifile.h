#pragma once
// The standard MIDI file reader. The file owns its tracks, a track owns its events, and the
// program reads everything through one cursor: a current track and, in it, a current event.
// Tracks and events are numbered from 1. Absolute times are never stored: users of the cursor
// sum the delta times themselves.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lyrabo {

struct MidiEreignis {
    uint32_t delta = 0;
    uint8_t status = 0;          // 0x80-0xEF channel message, 0xFF meta, 0xF0/0xF7 system exclusive
    uint8_t metaTyp = 0;         // meta events only
    std::vector<uint8_t> daten;  // data bytes after the status (after the type and length for meta/sysex)
};

struct MidiSpurDaten {
    std::vector<MidiEreignis> ereignisse;
};

struct MidiDateiInhalt {
    uint16_t format = 0;
    uint16_t division = 0;
    std::vector<MidiSpurDaten> spuren;
};

// Parses a whole file's bytes (a standard MIDI file, or one wrapped in RIFF as RMID). Throws
// MidiDateiFehler with a German message naming `name` and, where it helps, the track and the byte
// offset in the file. Tempo and time-signature events are checked here, so that everything the
// program computes from them later has sound values.
MidiDateiInhalt midiDateiParsen(const std::string& bytes, const std::string& name);

// The start every message about a broken file shares: "Die Datei "name" ist keine gültige MIDI-Datei: ".
std::string ungueltig(const std::string& name);

// Runs one step of loading the file `name`. The program's own errors pass as they are; anything
// else (a library's exception, memory running out) becomes a MidiDateiFehler naming the file, so
// that no library's English text ever reaches the user.
void beimLaden(const std::string& name, const std::function<void()>& schritt);

// Files larger than this are refused before they are read: no MIDI file comes near it.
inline constexpr std::uintmax_t kMidiDateiHoechstGroesse = 64u * 1024u * 1024u;

class Midifile {
public:
    // Path of the file that Action 1 loads.
    void filename(const std::string& pfad) { m_dateiname = pfad; }
    const std::string& filename() const { return m_dateiname; }

    // 5 and 2 discard what was loaded; 1 loads `filename`. A failed load throws MidiDateiFehler
    // and leaves the reader as it was (empty after 5 and 2), never half loaded.
    void Action(int16_t befehl);

    // Loads from bytes in memory, as Action 1 does from a file, with the same guarantee.
    void ladenAusBytes(const std::string& bytes, const std::string& name);

    bool geladen() const { return m_inhalt != nullptr; }
    int16_t TrackCount() const;
    int16_t TicksPerQuarterNote() const;
    int16_t Format() const;

    // Selects a track (1-based) and clears the event selection.
    void Track(int32_t nr);
    int16_t Track() const { return m_spur; }
    int32_t EventCount() const;
    // Selects an event of the current track; the cursor is 16-bit, so past 32767 is an overflow.
    void Event(int32_t nr);
    int16_t Event() const { return m_ereignis; }

    // Of the current event:
    int16_t Message() const;
    int16_t Data1() const;
    int16_t Data2() const;
    int32_t Time() const;
    std::string BufferText() const;  // the event's bytes as upper-case hex pairs separated by blanks
    std::string Text() const;        // text of a text-type meta event (shown as UTF-8)
    std::string TextBytes() const;   // the same text as the file's bytes
    int32_t Tempo() const;           // tempo meta: microseconds per quarter note
    int16_t Numerator() const;       // time-signature meta
    int16_t Denominator() const;     // time-signature meta: the exponent as stored

    const MidiDateiInhalt* inhalt() const { return m_inhalt.get(); }
    // The loaded content, shared; and taking content prepared elsewhere (cursor cleared), so that a
    // second reader can hold the same file or a copy of it without reading it again.
    const std::shared_ptr<const MidiDateiInhalt>& inhaltGeteilt() const { return m_inhalt; }
    void inhaltSetzen(std::shared_ptr<const MidiDateiInhalt> inhalt) {
        m_inhalt = std::move(inhalt);
        m_spur = 0;
        m_ereignis = 0;
    }

private:
    void dateiLaden();
    const MidiSpurDaten& spur() const;
    const MidiEreignis* aktuell() const;

    std::string m_dateiname;
    std::shared_ptr<const MidiDateiInhalt> m_inhalt;
    int16_t m_spur = 0;
    int16_t m_ereignis = 0;
};

} // namespace lyrabo
