// Queueing tracks with their time stamps and tempo markers, and playing the queue into a
// recording output.
#include "Tempodatei.h"
#include "midi/wiedergabe/Aufnahme.h"
#include "midi/wiedergabe/Einreihen.h"
#include "midi/wiedergabe/SystemGeraete.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct Erwartet {
    double zeitMs;
    int message, data1, data2, tempoMarker;
};

void vergleiche(const std::vector<CQueueNachricht>& queue, const std::vector<Erwartet>& erwartet) {
    ASSERT_EQ(queue.size(), erwartet.size());
    for (size_t i = 0; i < queue.size(); ++i) {
        SCOPED_TRACE("Nachricht " + std::to_string(i + 1));
        EXPECT_DOUBLE_EQ(queue[i].zeitMs, erwartet[i].zeitMs);
        EXPECT_EQ(queue[i].message, erwartet[i].message);
        EXPECT_EQ(queue[i].data1, erwartet[i].data1);
        EXPECT_EQ(queue[i].data2, erwartet[i].data2);
        EXPECT_EQ(queue[i].tempoMarker, erwartet[i].tempoMarker);
    }
}

// Collects the output object's events as they come from the player thread.
struct Ereignisse {
    std::mutex m;
    std::condition_variable cv;
    std::vector<int16_t> tempi;
    std::vector<std::pair<int16_t, std::string>> fehler;
    int enden = 0;

    void verbinden(CMIDIOutput& out) {
        out.beiTempo([this](int16_t k) {
            std::lock_guard lk(m);
            tempi.push_back(k);
        });
        out.beiFehler([this](int16_t code, const std::string& text) {
            std::lock_guard lk(m);
            fehler.emplace_back(code, text);
        });
        out.beiEnde([this] {
            std::lock_guard lk(m);
            ++enden;
            cv.notify_all();
        });
    }
    bool aufEndeWarten(int anzahl = 1) {
        std::unique_lock lk(m);
        return cv.wait_for(lk, std::chrono::seconds(20), [&] { return enden >= anzahl; });
    }
};

class Einreihen : public ::testing::Test {
protected:
    void SetUp() override {
        programm.Midifile1.ladenAusBytes(tempoLied(), "tempo.mid");
        tempoTabelleEintragen(programm);
    }
    std::unique_ptr<CMIDIOutput> ausgabe(bool echtzeit = false, std::vector<std::string> ports = {}) {
        return std::make_unique<CMIDIOutput>(std::make_unique<CAufnahmeGeraete>(aufnahme, std::move(ports), echtzeit));
    }

    StummeForm form;
    CProgramm programm{LYRABO_BIN_DIR, form};
    std::shared_ptr<CAufnahme> aufnahme = std::make_shared<CAufnahme>();
};

} // namespace

// Worked by hand from tempoLied(): the first event takes entry 0 (0 ms per tick) and marker 0;
// the second uses entry 1 (5 ms) and carries marker 1, after which entry 2 (2 ms) is in use at
// once; its position (2000 ms) is reached by the note at 2000, which carries marker 2 and switches
// to entry 3 (10 ms); the last entry never gets a marker. The lyric's delta of 50 ticks is not
// counted.
TEST_F(Einreihen, TimeStampsAndTempoMarkersFollowTheTempoTable) {
    auto out = ausgabe();
    spurEinreihen(programm, 2, *out);
    vergleiche(out->Queue(), {
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
                             });
}

// The table the window's tempo scan builds from the file is the one worked out above.
TEST_F(Einreihen, TheTempoScanBuildsTheTableTheQueueIsTimedBy) {
    programm.initGlobals();
    programm.Midifile1.ladenAusBytes(tempoLied(), "tempo.mid");
    programm.tempoScan();
    ASSERT_EQ(programm.TempoAnzahl, 3);
    for (size_t i = 0; i <= 3; ++i) {
        SCOPED_TRACE("Eintrag " + std::to_string(i));
        CProgramm erwartet(LYRABO_BIN_DIR, form);
        tempoTabelleEintragen(erwartet);
        EXPECT_EQ(programm.TempoTabelle[i].tempo, erwartet.TempoTabelle[i].tempo);
        EXPECT_EQ(programm.TempoTabelle[i].msProTick, erwartet.TempoTabelle[i].msProTick);
        EXPECT_EQ(programm.TempoTabelle[i].positionMs, erwartet.TempoTabelle[i].positionMs);
    }
}

TEST_F(Einreihen, TracksQueuedOneAfterTheOtherSoundTogether) {
    auto out = ausgabe();
    spurEinreihen(programm, 2, *out);
    spurEinreihen(programm, 3, *out);
    auto q = out->Queue();
    ASSERT_EQ(q.size(), 15u);
    // The bass starts at 0 again with its own markers, and slots in between the melody's notes;
    // messages at the same moment keep the order they were queued in.
    vergleiche({q[2], q[5], q[6], q[8]}, {
                                             {0, 0x91, 36, 100, 0},
                                             {750, 0x81, 36, 64, 1},
                                             {750, 0x91, 43, 100, -1},
                                             {1050, 0x81, 43, 64, -1},
                                         });
    for (size_t i = 1; i < q.size(); ++i) EXPECT_LE(q[i - 1].zeitMs, q[i].zeitMs);
}

TEST_F(Einreihen, ATrackOfMetaEventsOnlyQueuesNothing) {
    auto out = ausgabe();
    spurEinreihen(programm, 1, *out);
    EXPECT_TRUE(out->Queue().empty());
}

TEST_F(Einreihen, AFileWithoutTempoEventsPlaysAt120) {
    MidiBauer b(480);
    b.spur().note(0, 60, 480).note(240, 62, 960).ende();
    programm.Midifile1.ladenAusBytes(b.bytes(), "ohne.mid");
    programm.TempoTabelle = {};
    programm.TempoAnzahl = 0;
    auto out = ausgabe();
    spurEinreihen(programm, 1, *out);
    // A quarter note (480 ticks) lasts 500 ms; no tempo marker is set.
    vergleiche(out->Queue(), {
                                 {0, 0x90, 60, 100, -1},
                                 {500, 0x80, 60, 64, -1},
                                 {750, 0x90, 62, 100, -1},
                                 {1750, 0x80, 62, 64, -1},
                             });
}

TEST_F(Einreihen, TheCallbackRunsAfterEveryQueuedEvent) {
    auto out = ausgabe();
    int aufrufe = 0;
    spurEinreihen(programm, 2, *out, [&] {
        ++aufrufe;
        // Whatever runs in between may move the shared cursor; queueing goes on regardless.
        programm.Midifile1.Track(1);
    });
    EXPECT_EQ(aufrufe, 11);
    EXPECT_EQ(out->Queue().size(), 11u);
    EXPECT_THROW(spurEinreihen(programm, 4, *out), IndexFehler);
}

TEST_F(Einreihen, PlayingSendsEveryMessageRaisesTheMarkersAndEnds) {
    auto out = ausgabe();
    Ereignisse ev;
    ev.verbinden(*out);
    spurEinreihen(programm, 2, *out);
    out->Action(CMIDIOutput::kOeffnen);
    EXPECT_EQ(out->OpenCount(), 1);
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten());

    auto n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 11u);
    // A program change is two bytes, the notes three.
    EXPECT_EQ(n[0].bytes, (std::vector<uint8_t>{0xC0, 24}));
    EXPECT_EQ(n[1].bytes, (std::vector<uint8_t>{0x90, 60, 100}));
    EXPECT_EQ(n[10].bytes, (std::vector<uint8_t>{0x80, 67, 64}));
    EXPECT_DOUBLE_EQ(n[10].zeitMs, 3200);
    EXPECT_EQ(ev.tempi, (std::vector<int16_t>{0, 1, 2}));
    EXPECT_TRUE(ev.fehler.empty());

    // Stopping silences every channel: sustain off and all notes off on 1 to 16; closing then
    // has nothing left to silence.
    out->Action(CMIDIOutput::kStoppen);
    out->Action(CMIDIOutput::kSchliessen);
    EXPECT_EQ(out->OpenCount(), 0);
    EXPECT_EQ(aufnahme->offen(), 0);
    n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 11u + 32u);
    for (uint8_t k = 0; k < 16; ++k) {
        EXPECT_EQ(n[11 + 2 * k].bytes, (std::vector<uint8_t>{uint8_t(0xB0 | k), 64, 0}));
        EXPECT_EQ(n[12 + 2 * k].bytes, (std::vector<uint8_t>{uint8_t(0xB0 | k), 123, 0}));
    }
}

TEST_F(Einreihen, EveryPlayThroughStartsFromTheBeginningAndQueueingAfterwardsStartsANewQueue) {
    auto out = ausgabe();
    Ereignisse ev;
    ev.verbinden(*out);
    spurEinreihen(programm, 3, *out);
    out->Action(CMIDIOutput::kOeffnen);
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten(1));
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten(2));
    auto n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 8u);
    EXPECT_EQ(n[4].bytes, n[0].bytes);
    EXPECT_DOUBLE_EQ(n[4].zeitMs, 0);

    spurEinreihen(programm, 2, *out);
    EXPECT_EQ(out->Queue().size(), 11u);
}

TEST_F(Einreihen, ClosingWhilePlayingSilencesAndStops) {
    auto out = ausgabe(true);
    Ereignisse ev;
    ev.verbinden(*out);
    spurEinreihen(programm, 2, *out);
    out->Action(CMIDIOutput::kOeffnen);
    out->Action(CMIDIOutput::kSpielen);
    // The first three messages are due at once, the next after 200 ms.
    for (int i = 0; i < 200 && aufnahme->nachrichten().size() < 2; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    out->Action(CMIDIOutput::kSchliessen);
    EXPECT_FALSE(out->spielt());
    EXPECT_EQ(aufnahme->offen(), 0);
    auto n = aufnahme->nachrichten();
    ASSERT_GE(n.size(), 34u);
    EXPECT_EQ(n.back().bytes, (std::vector<uint8_t>{0xBF, 123, 0}));
    EXPECT_EQ(ev.enden, 0);
}

TEST_F(Einreihen, PlaybackRateScalesTheClock) {
    auto out = ausgabe(true);
    Ereignisse ev;
    ev.verbinden(*out);
    for (double t : {0.0, 150.0}) {
        out->Time(t);
        out->Message(0x90);
        out->Data1(60);
        out->Data2(t == 0 ? 100 : 0);
        out->Action(CMIDIOutput::kEinreihen);
    }
    out->Action(CMIDIOutput::kOeffnen);
    out->PlaybackRate(-50);  // half speed: 150 ms of the piece take 300 ms
    auto start = std::chrono::steady_clock::now();
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten());
    auto n = aufnahme->nachrichten();
    ASSERT_EQ(n.size(), 2u);
    EXPECT_DOUBLE_EQ(n[1].zeitMs, 300);
    // Never early; how late a busy machine makes it is not this test's business.
    using Ms = std::chrono::duration<double, std::milli>;
    EXPECT_GE(Ms(n[1].real - start).count(), 299);

    // Twice as fast, and slower than kKleinsteRate is not taken.
    out->PlaybackRate(100);
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten(2));
    EXPECT_DOUBLE_EQ(aufnahme->nachrichten()[3].zeitMs, 75);
    out->PlaybackRate(-200);
    EXPECT_EQ(out->PlaybackRate(), CMIDIOutput::kKleinsteRate);
}

TEST_F(Einreihen, FaultsAreReportedNotCrashed) {
    auto out = ausgabe(false, {"Port A"});
    Ereignisse ev;
    ev.verbinden(*out);
    // Playing with no device open, an unknown command, a device that is not there.
    EXPECT_THROW(out->Action(CMIDIOutput::kSpielen), CMidiAusgabeFehler);
    EXPECT_THROW(out->Action(3), CMidiAusgabeFehler);
    out->DeviceNumber(1);
    EXPECT_THROW(out->Action(CMIDIOutput::kOeffnen), CMidiAusgabeFehler);
    EXPECT_EQ(out->OpenCount(), 0);
    EXPECT_EQ(out->ProductName(), "");
    out->DeviceNumber(0);
    EXPECT_EQ(out->ProductName(), "Port A");
    out->Action(CMIDIOutput::kOeffnen);
    EXPECT_EQ(aufnahme->oeffnungen(), (std::vector<int16_t>{0}));

    // A system-exclusive event of the file cannot be sent: code 8, which the window ignores, and
    // the rest plays on.
    out->Time(0);
    out->Message(0xF0);
    out->Data1(0x43);
    out->Data2(0x10);
    out->Action(CMIDIOutput::kEinreihen);
    out->Message(0x90);
    out->Action(CMIDIOutput::kEinreihen);
    out->Action(CMIDIOutput::kSpielen);
    ASSERT_TRUE(ev.aufEndeWarten());
    ASSERT_EQ(ev.fehler.size(), 1u);
    EXPECT_EQ(ev.fehler[0].first, CMidiAusgabeFehler::kNichtUnterstuetzt);
    EXPECT_EQ(aufnahme->nachrichten().size(), 1u);
}

// On a machine without MIDI ports or without a MIDI service at all, the system's list still
// holds the default device, and asking for a port that is not there is a German error.
TEST(SystemGeraete, WithoutPortsOnlyTheDefaultDeviceIsLeft) {
    CMIDIOutput out(std::make_unique<CSystemGeraete>(LYRABO_BIN_DIR));
    int16_t anzahl = out.DeviceCount();
    EXPECT_GE(anzahl, 0);
    out.DeviceNumber(-1);
    EXPECT_FALSE(out.ProductName().empty());
    out.DeviceNumber(anzahl);
    EXPECT_THROW(out.Action(CMIDIOutput::kOeffnen), CMidiAusgabeFehler);
    EXPECT_EQ(out.OpenCount(), 0);
}
