#include "midi/wiedergabe/CSynthAusgang.h"

#include <fluidsynth.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace lyrabo {

namespace {

const char* const kSoundfontName = "TimGM6mb.sf2";

[[noreturn]] void synthFehler(const std::string& text) {
    throw CMidiAusgabeFehler(CMidiAusgabeFehler::kGeraet, "Eingebauter Synthesizer: " + text);
}

} // namespace

std::filesystem::path soundfontSuchen(const std::filesystem::path& programmOrdner) {
    const std::filesystem::path kandidaten[] = {
        programmOrdner / kSoundfontName,
        programmOrdner / "data" / kSoundfontName,
        std::filesystem::path("/usr/share/sounds/sf2") / kSoundfontName,
        // Debian's choice among the installed General MIDI sound fonts (timgm6mb or fluid).
        std::filesystem::path("/usr/share/sounds/sf2/default-GM.sf2"),
    };
    for (const auto& p : kandidaten) {
        std::error_code ec;
        if (std::filesystem::is_regular_file(p, ec)) return p;
    }
    return {};
}

void CSynthAusgang::synthAnlegen(const std::filesystem::path& soundfont) {
    if (soundfont.empty() || !std::filesystem::is_regular_file(soundfont))
        synthFehler("Die Klangdatei " + std::string(kSoundfontName) + " fehlt.");
    m_settings = new_fluid_settings();
    if (!m_settings) synthFehler("Die Einstellungen lassen sich nicht anlegen.");
    fluid_settings_setnum(m_settings, "synth.sample-rate", kAbtastrate);
    // The library's default gain (0.2) leaves a single melody at about -40 dBFS; a few tracks
    // at 0.5 are still far from clipping.
    fluid_settings_setnum(m_settings, "synth.gain", 0.5);
    m_synth = new_fluid_synth(m_settings);
    if (!m_synth) {
        freigeben();
        synthFehler("Der Synthesizer lässt sich nicht anlegen.");
    }
    if (fluid_synth_sfload(m_synth, soundfont.string().c_str(), 1) == FLUID_FAILED) {
        freigeben();
        synthFehler("Die Klangdatei " + soundfont.string() + " lässt sich nicht laden.");
    }
}

CSynthAusgang::CSynthAusgang(const std::filesystem::path& soundfont) {
    synthAnlegen(soundfont);
    // The library's own choice first; where that has no device (a desktop whose sound runs
    // through a sound server), the sound servers. JACK is left out: it may start a server.
    char* standard = nullptr;
    fluid_settings_dupstr(m_settings, "audio.driver", &standard);
    std::string erster = standard ? standard : "";
    fluid_free(standard);
    std::vector<std::string> versucht;
    for (const std::string& treiber : {erster, std::string("pulseaudio"), std::string("pipewire"),
                                      std::string("alsa"), std::string("oss")}) {
        if (treiber.empty() || std::find(versucht.begin(), versucht.end(), treiber) != versucht.end()) continue;
        versucht.push_back(treiber);
        if (fluid_settings_setstr(m_settings, "audio.driver", treiber.c_str()) != FLUID_OK) continue;
        m_treiber = new_fluid_audio_driver(m_settings, m_synth);
        if (m_treiber) break;
    }
    if (!m_treiber) {
        freigeben();
        synthFehler("Es gibt keine Tonausgabe.");
    }
}

CSynthAusgang::CSynthAusgang(const std::filesystem::path& soundfont, const std::filesystem::path& wavDatei) {
    synthAnlegen(soundfont);
    fluid_settings_setstr(m_settings, "audio.file.name", wavDatei.string().c_str());
    fluid_settings_setstr(m_settings, "audio.file.type", "wav");
    fluid_settings_setstr(m_settings, "audio.file.format", "s16");
    fluid_settings_getint(m_settings, "audio.period-size", &m_blockFrames);
    m_renderer = new_fluid_file_renderer(m_synth);
    if (!m_renderer) {
        freigeben();
        synthFehler("Die Datei " + wavDatei.string() + " lässt sich nicht schreiben.");
    }
}

CSynthAusgang::~CSynthAusgang() {
    if (m_renderer) {
        try {
            double ende = static_cast<double>(m_gerendertFrames) * 1000.0 / kAbtastrate;
            rendernBis(ende + kNachklangMs);
        } catch (const CMidiAusgabeFehler&) {
            // The file stays as far as it got.
        }
    }
    freigeben();
}

void CSynthAusgang::freigeben() {
    // The audio driver pulls from the synthesizer, the renderer writes its file on deletion: both
    // go before the synthesizer.
    if (m_treiber) delete_fluid_audio_driver(m_treiber);
    if (m_renderer) delete_fluid_file_renderer(m_renderer);
    if (m_synth) delete_fluid_synth(m_synth);
    if (m_settings) delete_fluid_settings(m_settings);
    m_treiber = nullptr;
    m_renderer = nullptr;
    m_synth = nullptr;
    m_settings = nullptr;
}

void CSynthAusgang::rendernBis(double zeitMs) {
    auto ziel = static_cast<long long>(std::llround(zeitMs * kAbtastrate / 1000.0));
    while (m_gerendertFrames < ziel) {
        if (fluid_file_renderer_process_block(m_renderer) != FLUID_OK)
            synthFehler("Die Wiedergabe lässt sich nicht in die Datei schreiben.");
        m_gerendertFrames += m_blockFrames;
    }
}

void CSynthAusgang::senden(const std::vector<uint8_t>& bytes, double zeitMs) {
    if (bytes.empty()) return;
    if (m_renderer) rendernBis(zeitMs);
    int kanal = bytes[0] & 0x0F;
    int d1 = bytes.size() > 1 ? bytes[1] : 0;
    int d2 = bytes.size() > 2 ? bytes[2] : 0;
    // Results are not checked: a note-off for a note that no longer sounds is no failure.
    switch (bytes[0] & 0xF0) {
    case 0x80: fluid_synth_noteoff(m_synth, kanal, d1); break;
    case 0x90: fluid_synth_noteon(m_synth, kanal, d1, d2); break;  // velocity 0 ends the note
    case 0xA0: fluid_synth_key_pressure(m_synth, kanal, d1, d2); break;
    case 0xB0: fluid_synth_cc(m_synth, kanal, d1, d2); break;
    case 0xC0: fluid_synth_program_change(m_synth, kanal, d1); break;
    case 0xD0: fluid_synth_channel_pressure(m_synth, kanal, d1); break;
    case 0xE0: fluid_synth_pitch_bend(m_synth, kanal, d1 | (d2 << 7)); break;
    default: break;
    }
}

} // namespace lyrabo
