// Queueing tracks with their time stamps and tempo markers, playing the queue into a recording
// output, and rendering it with the built-in synthesizer into a WAV file.
#include "Tempodatei.h"
#include "midi/wiedergabe/Aufnahme.h"
#include "midi/wiedergabe/CSynthAusgang.h"
#include "midi/wiedergabe/Einreihen.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <thread>
#include <tuple>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

using Bytes = std::vector<uint8_t>;
using Zeile = std::tuple<double, int, int, int, int>;  // time, message, data 1 and 2, tempo marker

// Times to the microsecond: without a tempo table a tick lasts a fraction of a millisecond.
std::vector<Zeile> zeilen(const std::vector<CQueueNachricht>& queue) {
    std::vector<Zeile> z;
    for (const CQueueNachricht& n : queue)
        z.emplace_back(std::round(n.zeitMs * 1000) / 1000, n.message, n.data1, n.data2, n.tempoMarker);
    return z;
}

// Waits until the player has reached the end of the queue.
bool abgespielt(const CMIDIOutput& out) {
    for (int i = 0; i < 6000 && out.spielt(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return !out.spielt();
}

class Wiedergabe : public ::testing::Test {
protected:
    void SetUp() override { tempoLiedLaden(programm); }

    EngineTestForm form;
    CProgramm programm{LYRABO_BIN_DIR, form};
    std::shared_ptr<CAufnahme> aufnahme = std::make_shared<CAufnahme>();
    CMIDIOutput out{std::make_unique<CAufnahmeGeraete>(aufnahme, std::vector<std::string>{"Port A"})};
};

} // namespace

// Worked by hand from tempoLied(): the first event takes entry 0 (0 ms per tick) and marker 0;
// the second uses entry 1 (5 ms) and carries marker 1, after which entry 2 (2 ms) is in use at
// once; its position (2000 ms) is reached by the note at 2000, which carries marker 2 and switches
// to entry 3 (10 ms); the last entry never gets a marker. The lyric's delta of 50 ticks is not
// counted.
TEST_F(Wiedergabe, TimeStampsAndTempoMarkersFollowTheTempoTable) {
    // Whatever runs between two events may move the shared cursor; queueing goes on regardless.
    spurEinreihen(programm, 2, out, [&] { programm.Midifile1.Track(1); });
    EXPECT_EQ(zeilen(out.Queue()), (std::vector<Zeile>{
                                       {0, 0xC0, 24, 0, 0},
                                       {0, 0x90, 60, 100, 1},
                                       {200, 0x80, 60, 64, -1},
                                       {400, 0x90, 62, 100, -1},
                                       {800, 0x80, 62, 64, -1},
                                       {1400, 0x90, 64, 100, -1},
                                       {1600, 0x80, 64, 64, -1},
                                       {2000, 0x90, 65, 100, 2},
                                       {3000, 0x80, 65, 64, -1},
                                       {3100, 0x90, 67, 100, -1},
                                       {3200, 0x80, 67, 64, -1},
                                   }));

    // The bass starts at 0 again with its own markers and slots in between the melody's notes;
    // messages at the same moment keep the order they were queued in. The tempo track queues
    // nothing, a track the file does not have is an error.
    spurEinreihen(programm, 3, out);
    spurEinreihen(programm, 1, out);
    auto q = zeilen(out.Queue());
    ASSERT_EQ(q.size(), 15u);
    EXPECT_EQ(q[2], Zeile(0, 0x91, 36, 100, 0));
    EXPECT_EQ(q[5], Zeile(750, 0x81, 36, 64, 1));
    EXPECT_EQ(q[6], Zeile(750, 0x91, 43, 100, -1));
    EXPECT_EQ(q[8], Zeile(1050, 0x81, 43, 64, -1));
    EXPECT_THROW(spurEinreihen(programm, 4, out), IndexFehler);
}

// Without tempo events a file plays at 120 quarter notes a minute.
TEST_F(Wiedergabe, AFileWithoutTempoEventsPlaysAt120) {
    MidiBauer b(480);
    b.spur().note(0, 60, 480).note(240, 62, 960).ende();
    tempoLiedLaden(programm, b.bytes());
    spurEinreihen(programm, 1, out);
    // A quarter note (480 ticks) lasts 500 ms; no tempo marker is set.
    EXPECT_EQ(zeilen(out.Queue()), (std::vector<Zeile>{
                                       {0, 0x90, 60, 100, -1},
                                       {500, 0x80, 60, 64, -1},
                                       {750, 0x90, 62, 100, -1},
                                       {1750, 0x80, 62, 64, -1},
                                   }));
}

TEST_F(Wiedergabe, EveryPlayThroughSendsTheQueueFromZeroAtItsRateAndStoppingSilences) {
    std::vector<int16_t> tempi;
    std::vector<int32_t> ticks;
    out.beiTempo([&](int16_t k) { tempi.push_back(k); });
    out.beiPosition([&](int32_t t) { ticks.push_back(t); });
    spurEinreihen(programm, 2, out);
    out.Action(CMIDIOutput::kOeffnen);
    out.Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(abgespielt(out));
    EXPECT_EQ(tempi, (std::vector<int16_t>{0, 1, 2}));
    // Each message reports its place in the piece; the lyric's 50 ticks count here, as the note
    // sheet places the notes by the file's ticks.
    EXPECT_EQ(ticks, (std::vector<int32_t>{0, 0, 100, 200, 400, 750, 850, 1050, 1150, 1160, 1170}));
    out.beiPosition({});
    out.PlaybackRate(100);  // twice as fast
    out.Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(abgespielt(out));

    // A program change is two bytes, the notes three; the second play-through starts at 0 again.
    auto n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 22u);
    EXPECT_EQ(n[0].bytes, (Bytes{0xC0, 24}));
    EXPECT_EQ(n[1].bytes, (Bytes{0x90, 60, 100}));
    EXPECT_EQ(n[10].bytes, (Bytes{0x80, 67, 64}));
    EXPECT_DOUBLE_EQ(n[10].zeitMs, 3200);
    EXPECT_EQ(n[11].bytes, n[0].bytes);
    EXPECT_DOUBLE_EQ(n[11].zeitMs, 0);
    EXPECT_DOUBLE_EQ(n[21].zeitMs, 1600);

    // Stopping silences every channel: sustain off and all notes off on 1 to 16; closing then
    // has nothing left to silence.
    out.Action(CMIDIOutput::kStoppen);
    out.Action(CMIDIOutput::kSchliessen);
    EXPECT_EQ(aufnahme->offen(), 0);
    n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 22u + 32u);
    for (uint8_t k = 0; k < 16; ++k) {
        EXPECT_EQ(n[22 + 2 * k].bytes, (Bytes{uint8_t(0xB0 | k), 64, 0}));
        EXPECT_EQ(n[23 + 2 * k].bytes, (Bytes{uint8_t(0xB0 | k), 123, 0}));
    }
    // Queueing after a play-through starts a new queue; slower than kKleinsteRate is not taken.
    spurEinreihen(programm, 3, out);
    EXPECT_EQ(out.Queue().size(), 4u);
    out.PlaybackRate(-200);
    EXPECT_EQ(out.PlaybackRate(), CMIDIOutput::kKleinsteRate);
}

// Playing needs an open device. A system-exclusive event of the file cannot be sent: code 8,
// which the window ignores, and the rest plays on.
TEST_F(Wiedergabe, FaultsAreReportedNotCrashed) {
    std::vector<int16_t> fehler;
    out.beiFehler([&](int16_t code, const std::string&) { fehler.push_back(code); });
    EXPECT_THROW(out.Action(CMIDIOutput::kSpielen), CMidiAusgabeFehler);
    out.Action(CMIDIOutput::kOeffnen);
    for (int16_t message : {0xF0, 0x90}) {
        out.Message(message);
        out.Action(CMIDIOutput::kEinreihen);
    }
    out.Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(abgespielt(out));
    EXPECT_EQ(fehler, std::vector<int16_t>{CMidiAusgabeFehler::kNichtUnterstuetzt});
    EXPECT_EQ(aufnahme->nachrichten().size(), 1u);
}

TEST_F(Wiedergabe, TheSynthesizerRendersAQueuedTrackIntoAWavFileAsLongAsTheTrack) {
    auto soundfont = soundfontSuchen(LYRABO_BIN_DIR);
    ASSERT_FALSE(soundfont.empty()) << "TimGM6mb.sf2 fehlt (Paket timgm6mb-soundfont)";
    TestOrdner ordner;
    spurEinreihen(programm, 2, out);
    {
        // The file is complete once the synthesizer is gone.
        CSynthAusgang synth(soundfont, ordner / "lied.wav");
        for (const CQueueNachricht& n : out.Queue()) {
            Bytes b{uint8_t(n.message), uint8_t(n.data1), uint8_t(n.data2)};
            b.resize(size_t(nachrichtenLaenge(b[0])));
            synth.senden(b, n.zeitMs);
        }
    }

    // 16-bit stereo at 44.1 kHz: channels, sample rate and bits in the format chunk.
    std::ifstream in(ordner / "lied.wav", std::ios::binary);
    std::string wav((std::istreambuf_iterator<char>(in)), {});
    size_t fmt = wav.find("fmt "), data = wav.find("data", fmt);
    ASSERT_NE(data, std::string::npos);
    EXPECT_EQ(wav.substr(fmt + 10, 6), std::string("\x02\0\x44\xAC\0\0", 6));
    EXPECT_EQ(wav.substr(fmt + 22, 2), std::string("\x10\0", 2));
    std::vector<int16_t> proben((wav.size() - data - 8) / 2);
    std::memcpy(proben.data(), wav.data() + data + 8, proben.size() * 2);
    // Root mean square of the samples between two moments, on a 16-bit scale.
    auto rms = [&](double vonS, double bisS) {
        size_t a = size_t(vonS * 44100) * 2, b = std::min(proben.size(), size_t(bisS * 44100) * 2);
        double summe = 0;
        for (size_t i = a; i < b; ++i) summe += double(proben[i]) * proben[i];
        return b > a ? std::sqrt(summe / double(b - a)) : 0;
    };
    // The track ends with its last note-off at 3200 ms; the renderer adds the decay and rounds up
    // to whole blocks of 64 frames.
    const double sekunden = double(proben.size()) / 2 / 44100;
    EXPECT_NEAR(sekunden, (3200 + CSynthAusgang::kNachklangMs) / 1000.0, 0.005);
    // Notes sound where the track has them: 60 from 0 to 200 ms, 64 from 1400 to 1600 ms, 67 from
    // 3100 to 3200 ms; the whole is far from silent, and after the decay the end is quiet.
    EXPECT_GT(rms(0.02, 0.2), 500);
    EXPECT_GT(rms(1.42, 1.6), 500);
    EXPECT_GT(rms(3.12, 3.2), 500);
    EXPECT_GT(rms(0, sekunden), 300);
    EXPECT_LT(rms(3.6, 3.7), rms(3.12, 3.2) / 20);

    // A missing or broken SoundFont is an error of the device, not a crash.
    std::ofstream(ordner / "kaputt.sf2") << "kaputt";
    for (const char* name : {"fehlt.sf2", "kaputt.sf2"})
        EXPECT_THROW(CSynthAusgang(ordner / name, ordner / "x.wav"), CMidiAusgabeFehler) << name;
}
