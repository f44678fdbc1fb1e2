// The window's playback controls, offscreen, with recording devices in place of real ones.
#include "Tempodatei.h"
#include "midi/wiedergabe/Aufnahme.h"
#include "ui/WiedergabeLeiste.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QTest>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Row 0 of the device list is device -1 ("Aufnahme"), then the ports "Port A" and "Port B".
class Leiste : public ::testing::Test {
protected:
    void bauen(bool echtzeit = false) {
        tempoLiedLaden(programm);
        trackList.addItems({"Tempo", "Melodie", "Bass"});
        auto geraete = std::make_unique<CAufnahmeGeraete>(aufnahme, std::vector<std::string>{"Port A", "Port B"}, echtzeit);
        geraeteListe = geraete.get();
        leiste = std::make_unique<WiedergabeLeiste>(programm, &trackList, &labelTempo, nullptr, std::move(geraete));
    }
    template <class T = QPushButton> T* el(const char* name) { return leiste->findChild<T*>(name); }
    void klick(const char* knopf) { QTest::mouseClick(el(knopf), Qt::LeftButton); }
    bool wiederBereit() { return QTest::qWaitFor([&] { return el("CmdPlay")->isEnabled(); }, 20000); }
    CMIDIOutput& out() { return leiste->MIDIOutput1(); }

    EngineTestForm form;
    CProgramm programm{LYRABO_BIN_DIR, form};
    QListWidget trackList;
    QLabel labelTempo;
    std::shared_ptr<CAufnahme> aufnahme = std::make_shared<CAufnahme>();
    CAufnahmeGeraete* geraeteListe = nullptr;
    std::unique_ptr<WiedergabeLeiste> leiste;
};

} // namespace

TEST_F(Leiste, PlayOpensTheChosenRowsDeviceShowsTheTempoAndEndsByItself) {
    bauen();
    // Nothing to queue without a track; a device that cannot be opened is reported and stays closed.
    trackList.setCurrentRow(-1);
    klick("CmdQueueTrack");
    geraeteListe->defekt({-1});
    klick("CmdPlay");
    EXPECT_EQ(form.meldungen, (std::vector<std::string>{"No track selected.",
                                                        "Keine MIDI-Out Treiber geladen (OpenOutputDevice)!"}));
    EXPECT_TRUE(out().Queue().empty());
    EXPECT_TRUE(el("CmdPlay")->isEnabled());
    EXPECT_FALSE(el("CmdStop")->isEnabled());
    EXPECT_EQ(out().OpenCount(), 0);
    geraeteListe->defekt({});

    // The rate slider sets the rate, opening resets it.
    el<QSlider>("PlaybackRateSlider")->setValue(40);
    EXPECT_EQ(out().PlaybackRate(), 40);
    trackList.setCurrentRow(1);
    klick("CmdQueueTrack");
    klick("CmdPlay");
    EXPECT_EQ(el<QSlider>("PlaybackRateSlider")->value(), 0);
    EXPECT_EQ(out().PlaybackRate(), 0);
    EXPECT_FALSE(el("CmdPlay")->isEnabled());
    EXPECT_TRUE(el("CmdStop")->isEnabled());
    ASSERT_TRUE(wiederBereit());
    EXPECT_FALSE(el("CmdStop")->isEnabled());
    // Row 0 is device -1; the end closed it again. Markers 0 (the empty entry, nothing to show),
    // 1 (500,000 us) and 2 (250,000 us).
    EXPECT_EQ(aufnahme->oeffnungen(), std::vector<int16_t>{-1});
    EXPECT_EQ(aufnahme->offen(), 0);
    EXPECT_EQ(labelTempo.text(), " 240");
    EXPECT_EQ(aufnahme->nachrichten().size(), 11u + 32u);

    el<QComboBox>("OutputDevCombo")->setCurrentIndex(2);
    klick("CmdPlay");
    ASSERT_TRUE(wiederBereit());
    EXPECT_EQ(aufnahme->oeffnungen(), (std::vector<int16_t>{-1, 1}));
    EXPECT_EQ(form.meldungen.size(), 2u);
}

// Queueing moves the selection down and stays on the last row. Stop, a change of device and
// closing the window each silence every channel and close the device while the queue plays.
TEST_F(Leiste, QueueingThenStopADeviceChangeAndClosingSilenceAndClose) {
    bauen(true);
    trackList.setCurrentRow(1);
    for (size_t groesse : {11u, 15u}) {
        klick("CmdQueueTrack");
        EXPECT_EQ(out().Queue().size(), groesse);
        EXPECT_EQ(trackList.currentRow(), 2);
    }
    EXPECT_TRUE(el("CmdQueueTrack")->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    for (int weg = 0; weg < 3; ++weg) {
        SCOPED_TRACE(weg);
        aufnahme->leeren();
        klick("CmdPlay");
        ASSERT_TRUE(QTest::qWaitFor([&] { return aufnahme->nachrichten().size() >= 2; }, 20000));
        if (weg == 0) klick("CmdStop");
        if (weg == 1) el<QComboBox>("OutputDevCombo")->setCurrentIndex(1);
        if (weg == 2) leiste->beenden();
        if (weg < 2) {  // the closing window has no buttons left to show
            EXPECT_TRUE(el("CmdPlay")->isEnabled());
            EXPECT_FALSE(el("CmdStop")->isEnabled());
        }
        EXPECT_EQ(aufnahme->offen(), 0);
        EXPECT_FALSE(out().spielt());
        EXPECT_EQ(aufnahme->nachrichten().back().bytes, (std::vector<uint8_t>{0xBF, 123, 0}));
    }
    EXPECT_TRUE(form.meldungen.empty());
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
