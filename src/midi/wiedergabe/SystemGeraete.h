#pragma once
// The devices a user has: -1 is the default device (on Windows the system's MIDI mapper,
// elsewhere the built-in synthesizer, so that a track is heard without any MIDI hardware), and
// 0 upwards the system's MIDI output ports.
#include "midi/wiedergabe/MidiAusgang.h"

#include <filesystem>
#include <memory>

class RtMidiOut;

namespace lyrabo {

class CSystemGeraete : public IGeraeteListe {
public:
    // The program's folder is where the synthesizer looks for its SoundFont first.
    explicit CSystemGeraete(std::filesystem::path programmOrdner);
    ~CSystemGeraete() override;

    int16_t anzahl() override;
    std::string name(int16_t nr) override;
    std::unique_ptr<IMidiAusgang> oeffnen(int16_t nr) override;

private:
    // The system's port list; null when the system has no MIDI service (no sequencer device).
    RtMidiOut* ports();

    std::filesystem::path m_ordner;
    std::unique_ptr<RtMidiOut> m_ports;
    bool m_portsVersucht = false;
};

} // namespace lyrabo
