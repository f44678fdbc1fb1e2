#pragma once
// What the MIDI-output object plays through: one interface for an open output, one for the list
// of devices, and the one error type of playback. Each kind of output (a system MIDI port, the
// built-in synthesizer, the Windows MIDI mapper, a recorder for tests) is a class behind them.
#include "model/Fehler.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lyrabo {

// An error of MIDI output. The code travels with the output object's error event; the window
// ignores codes 0 and 8 and shows the text of all others.
class CMidiAusgabeFehler : public Fehler {
public:
    // 0: a note only, nothing went wrong.
    static constexpr int16_t kHinweis = 0;
    // 1: the device failed (could not be opened, or a message could not be sent).
    static constexpr int16_t kGeraet = 1;
    // 2: the object was used the wrong way (unknown command, no device open).
    static constexpr int16_t kBedienung = 2;
    // 8: a message kind the device does not take (a system-exclusive event of the file).
    static constexpr int16_t kNichtUnterstuetzt = 8;

    CMidiAusgabeFehler(int16_t code, const std::string& text) : Fehler(text), m_code(code) {}
    int16_t Code() const { return m_code; }

private:
    int16_t m_code;
};

// One open output. It is closed by destroying it.
class IMidiAusgang {
public:
    virtual ~IMidiAusgang() = default;
    // Sends one complete channel message (two or three bytes). zeitMs is the moment of the
    // message in the played piece, after the playback rate: real-time outputs ignore it, a
    // rendering output renders up to it first. Throws CMidiAusgabeFehler.
    virtual void senden(const std::vector<uint8_t>& bytes, double zeitMs) = 0;
    // True when the player must wait for each message's moment; false when the output takes the
    // whole queue as fast as it can (rendering into a file, recording in tests).
    virtual bool echtzeit() const { return true; }
};

// The output devices: -1 is the default device, 0 to anzahl() - 1 the system's MIDI ports.
class IGeraeteListe {
public:
    virtual ~IGeraeteListe() = default;
    virtual int16_t anzahl() = 0;
    // Name of device nr; empty for a number that is no device.
    virtual std::string name(int16_t nr) = 0;
    // Opens device nr. Throws CMidiAusgabeFehler when it cannot be opened.
    virtual std::unique_ptr<IMidiAusgang> oeffnen(int16_t nr) = 0;
};

// Number of bytes of a channel message with this status byte (2 for program change and channel
// pressure, 3 for the others); 0 for a status that is not a channel message.
inline int nachrichtenLaenge(uint8_t status) {
    if (status < 0x80 || status >= 0xF0) return 0;
    uint8_t art = status & 0xF0;
    return (art == 0xC0 || art == 0xD0) ? 2 : 3;
}

} // namespace lyrabo
