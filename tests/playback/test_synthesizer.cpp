// The built-in synthesizer renders a queued track into a WAV file: no sound card needed.
#include "Tempodatei.h"
#include "midi/wiedergabe/CSynthAusgang.h"
#include "midi/wiedergabe/Einreihen.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <condition_variable>
#include <fstream>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Device -1 renders into a file.
class WavGeraete : public IGeraeteListe {
public:
    WavGeraete(std::filesystem::path soundfont, std::filesystem::path wav)
        : m_soundfont(std::move(soundfont)), m_wav(std::move(wav)) {}
    int16_t anzahl() override { return 0; }
    std::string name(int16_t nr) override { return nr == -1 ? "WAV" : ""; }
    std::unique_ptr<IMidiAusgang> oeffnen(int16_t) override { return std::make_unique<CSynthAusgang>(m_soundfont, m_wav); }

private:
    std::filesystem::path m_soundfont, m_wav;
};

struct Wav {
    int kanaele = 0;
    int rate = 0;
    int bits = 0;
    std::vector<int16_t> proben;  // interleaved
    double sekunden() const { return double(proben.size()) / kanaele / rate; }
    // Root mean square of the samples between two moments, on a 16-bit scale.
    double rms(double vonS, double bisS) const {
        size_t a = size_t(vonS * rate) * kanaele, b = std::min(proben.size(), size_t(bisS * rate) * kanaele);
        double summe = 0;
        for (size_t i = a; i < b; ++i) summe += double(proben[i]) * proben[i];
        return b > a ? std::sqrt(summe / double(b - a)) : 0;
    }
};

uint32_t le(const std::string& s, size_t pos, int n) {
    uint32_t v = 0;
    for (int i = n - 1; i >= 0; --i) v = (v << 8) | uint8_t(s[pos + i]);
    return v;
}

Wav wavLesen(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::string s((std::istreambuf_iterator<char>(in)), {});
    Wav w;
    if (s.size() < 12 || s.compare(0, 4, "RIFF") != 0 || s.compare(8, 4, "WAVE") != 0) return w;
    for (size_t pos = 12; pos + 8 <= s.size();) {
        std::string id = s.substr(pos, 4);
        uint32_t laenge = le(s, pos + 4, 4);
        if (id == "fmt ") {
            w.kanaele = int(le(s, pos + 10, 2));
            w.rate = int(le(s, pos + 12, 4));
            w.bits = int(le(s, pos + 22, 2));
        } else if (id == "data") {
            size_t n = std::min<size_t>(laenge, s.size() - pos - 8) / 2;
            for (size_t i = 0; i < n; ++i) w.proben.push_back(int16_t(le(s, pos + 8 + 2 * i, 2)));
        }
        pos += 8 + laenge + (laenge & 1);
    }
    return w;
}

} // namespace

TEST(Synthesizer, RendersAQueuedTrackIntoAWavFileThatSoundsAsLongAsTheTrack) {
    auto soundfont = soundfontSuchen(LYRABO_BIN_DIR);
    ASSERT_FALSE(soundfont.empty()) << "TimGM6mb.sf2 fehlt (Paket timgm6mb-soundfont)";
    TestOrdner ordner;
    auto wav = ordner / "lied.wav";

    StummeForm form;
    CProgramm programm(LYRABO_BIN_DIR, form);
    programm.Midifile1.ladenAusBytes(tempoLied(), "tempo.mid");
    tempoTabelleEintragen(programm);

    CMIDIOutput out(std::make_unique<WavGeraete>(soundfont, wav));
    std::mutex m;
    std::condition_variable cv;
    bool ende = false;
    out.beiEnde([&] {
        std::lock_guard lk(m);
        ende = true;
        cv.notify_all();
    });
    spurEinreihen(programm, 2, out);
    out.Action(CMIDIOutput::kOeffnen);
    out.Action(CMIDIOutput::kSpielen);
    {
        std::unique_lock lk(m);
        ASSERT_TRUE(cv.wait_for(lk, std::chrono::seconds(60), [&] { return ende; }));
    }
    out.Action(CMIDIOutput::kStoppen);
    out.Action(CMIDIOutput::kSchliessen);

    Wav w = wavLesen(wav);
    std::printf("WAV: %.3f s, RMS %.0f; Noten 60, 64, 67: %.0f, %.0f, %.0f; Ende %.0f\n", w.sekunden(), w.rms(0, w.sekunden()),
                w.rms(0.02, 0.2), w.rms(1.42, 1.6), w.rms(3.12, 3.2), w.rms(3.6, 3.7));
    ASSERT_EQ(w.kanaele, 2);
    ASSERT_EQ(w.rate, 44100);
    ASSERT_EQ(w.bits, 16);
    // The track ends with its last note-off at 3200 ms; the renderer adds the decay and rounds up
    // to whole blocks of 64 frames.
    double erwartet = (3200 + CSynthAusgang::kNachklangMs) / 1000.0;
    EXPECT_NEAR(w.sekunden(), erwartet, 0.005);
    // Notes sound where the track has them: 60 from 0 to 200 ms, 64 from 1400 to 1600 ms, 67 from
    // 3100 to 3200 ms; the whole is far from silent.
    EXPECT_GT(w.rms(0.02, 0.2), 500);
    EXPECT_GT(w.rms(1.42, 1.6), 500);
    EXPECT_GT(w.rms(3.12, 3.2), 500);
    EXPECT_GT(w.rms(0, w.sekunden()), 300);
    // After the all-notes-off and the decay the end is quiet.
    EXPECT_LT(w.rms(3.6, 3.7), w.rms(3.12, 3.2) / 20);
}

TEST(Synthesizer, AMissingSoundfontIsAGermanErrorNotACrash) {
    TestOrdner ordner;
    try {
        CSynthAusgang s(ordner / "fehlt.sf2", ordner / "x.wav");
        FAIL() << "ohne Klangdatei angelegt";
    } catch (const CMidiAusgabeFehler& e) {
        EXPECT_EQ(e.Code(), CMidiAusgabeFehler::kGeraet);
        EXPECT_NE(std::string(e.what()).find("Klangdatei"), std::string::npos);
    }
    // A SoundFont beside the program comes first; a broken one is the same kind of error.
    std::ofstream(ordner / "TimGM6mb.sf2") << "kaputt";
    EXPECT_EQ(soundfontSuchen(ordner.pfad()), ordner / "TimGM6mb.sf2");
    EXPECT_THROW(CSynthAusgang(ordner / "TimGM6mb.sf2", ordner / "y.wav"), CMidiAusgabeFehler);
}
