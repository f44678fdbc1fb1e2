#include "midi/wiedergabe/SystemGeraete.h"

#include "midi/wiedergabe/CSynthAusgang.h"

#include <RtMidi.h>

#include <string>

#ifdef _WIN32
#include <windows.h>
#include <mmsystem.h>
#endif

namespace lyrabo {

namespace {

// A MIDI output port of the system.
class CSystemAusgang : public IMidiAusgang {
public:
    explicit CSystemAusgang(int16_t nr) {
        try {
            m_port = std::make_unique<RtMidiOut>();
            m_port->openPort(static_cast<unsigned>(nr), "Lyrabo");
        } catch (const RtMidiError& e) {
            throw CMidiAusgabeFehler(CMidiAusgabeFehler::kGeraet,
                                     "Der MIDI-Ausgang " + std::to_string(nr) + " lässt sich nicht öffnen: " + e.getMessage());
        }
        // From here on the port reports through this callback instead of throwing.
        m_port->setErrorCallback(&CSystemAusgang::fehlerRueckruf, this);
    }
    ~CSystemAusgang() override {
        try {
            m_port->closePort();
        } catch (const RtMidiError&) {
            // Closing a port that failed is no news.
        }
    }

    void senden(const std::vector<uint8_t>& bytes, double) override {
        m_fehler.clear();
        m_port->sendMessage(bytes.data(), bytes.size());
        if (!m_fehler.empty()) throw CMidiAusgabeFehler(m_fehlerCode, m_fehler);
    }

private:
    static void fehlerRueckruf(RtMidiError::Type art, const std::string& text, void* daten) {
        auto* self = static_cast<CSystemAusgang*>(daten);
        bool nurHinweis = art == RtMidiError::WARNING || art == RtMidiError::DEBUG_WARNING;
        self->m_fehlerCode = nurHinweis ? CMidiAusgabeFehler::kHinweis : CMidiAusgabeFehler::kGeraet;
        self->m_fehler = "MIDI-Ausgang: " + text;
    }

    std::unique_ptr<RtMidiOut> m_port;
    std::string m_fehler;
    int16_t m_fehlerCode = CMidiAusgabeFehler::kGeraet;
};

#ifdef _WIN32
// The Windows MIDI mapper, which sends to the device the user chose in the system settings.
class CMapperAusgang : public IMidiAusgang {
public:
    CMapperAusgang() {
        if (midiOutOpen(&m_h, MIDI_MAPPER, 0, 0, CALLBACK_NULL) != MMSYSERR_NOERROR)
            throw CMidiAusgabeFehler(CMidiAusgabeFehler::kGeraet, "Der MIDI-Mapper lässt sich nicht öffnen.");
    }
    ~CMapperAusgang() override {
        midiOutReset(m_h);
        midiOutClose(m_h);
    }
    void senden(const std::vector<uint8_t>& bytes, double) override {
        DWORD nachricht = 0;
        for (size_t i = 0; i < bytes.size() && i < 3; ++i) nachricht |= DWORD(bytes[i]) << (8 * i);
        MMRESULT r = midiOutShortMsg(m_h, nachricht);
        if (r != MMSYSERR_NOERROR)
            throw CMidiAusgabeFehler(static_cast<int16_t>(r), "Der MIDI-Mapper meldet Fehler " + std::to_string(r) + ".");
    }

private:
    HMIDIOUT m_h{};
};
#endif

} // namespace

CSystemGeraete::CSystemGeraete(std::filesystem::path programmOrdner) : m_ordner(std::move(programmOrdner)) {}

CSystemGeraete::~CSystemGeraete() = default;

RtMidiOut* CSystemGeraete::ports() {
    if (!m_portsVersucht) {
        m_portsVersucht = true;
        try {
            m_ports = std::make_unique<RtMidiOut>(RtMidi::UNSPECIFIED, "Lyrabo");
        } catch (const RtMidiError&) {
            // No MIDI service on this system: only the default device is left.
            m_ports.reset();
        }
    }
    return m_ports.get();
}

int16_t CSystemGeraete::anzahl() {
    RtMidiOut* p = ports();
    if (!p) return 0;
    unsigned n = p->getPortCount();
    return static_cast<int16_t>(n > 32767 ? 32767 : n);
}

std::string CSystemGeraete::name(int16_t nr) {
#ifdef _WIN32
    if (nr == -1) return "MIDI-Mapper";
#else
    if (nr == -1) return "Eingebauter Synthesizer";
#endif
    RtMidiOut* p = ports();
    if (!p || nr < 0 || nr >= anzahl()) return {};
    try {
        return p->getPortName(static_cast<unsigned>(nr));
    } catch (const RtMidiError&) {
        return {};
    }
}

std::unique_ptr<IMidiAusgang> CSystemGeraete::oeffnen(int16_t nr) {
    if (nr == -1) {
#ifdef _WIN32
        return std::make_unique<CMapperAusgang>();
#else
        return std::make_unique<CSynthAusgang>(soundfontSuchen(m_ordner));
#endif
    }
    return std::make_unique<CSystemAusgang>(nr);
}

} // namespace lyrabo
