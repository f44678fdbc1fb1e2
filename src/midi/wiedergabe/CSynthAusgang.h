#pragma once
// The built-in software synthesizer: General MIDI sounds from a SoundFont, played through the
// computer's sound output, or rendered into a WAV file without any sound card.
#include "midi/wiedergabe/MidiAusgang.h"

#include <filesystem>

typedef struct _fluid_hashtable_t fluid_settings_t;
typedef struct _fluid_synth_t fluid_synth_t;
typedef struct _fluid_audio_driver_t fluid_audio_driver_t;
typedef struct _fluid_file_renderer_t fluid_file_renderer_t;

namespace lyrabo {

// The SoundFont the synthesizer plays with: "TimGM6mb.sf2" in the program's folder or in its data
// folder, else the one the system's package installs. Empty when there is none.
std::filesystem::path soundfontSuchen(const std::filesystem::path& programmOrdner);

class CSynthAusgang : public IMidiAusgang {
public:
    // Sounds through the computer's audio output.
    explicit CSynthAusgang(const std::filesystem::path& soundfont);
    // Renders into a WAV file (44.1 kHz, 16 bit, stereo) as fast as it is fed; the file is
    // complete once the object is destroyed, with kNachklangMs of decay after the last message.
    CSynthAusgang(const std::filesystem::path& soundfont, const std::filesystem::path& wavDatei);
    ~CSynthAusgang() override;
    CSynthAusgang(const CSynthAusgang&) = delete;
    CSynthAusgang& operator=(const CSynthAusgang&) = delete;

    void senden(const std::vector<uint8_t>& bytes, double zeitMs) override;
    bool echtzeit() const override { return m_renderer == nullptr; }

    static constexpr double kNachklangMs = 500;
    static constexpr double kAbtastrate = 44100;

private:
    void synthAnlegen(const std::filesystem::path& soundfont);
    void freigeben();
    void rendernBis(double zeitMs);

    fluid_settings_t* m_settings = nullptr;
    fluid_synth_t* m_synth = nullptr;
    fluid_audio_driver_t* m_treiber = nullptr;
    fluid_file_renderer_t* m_renderer = nullptr;
    int m_blockFrames = 64;
    long long m_gerendertFrames = 0;
};

} // namespace lyrabo
