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

const char* const kKeinTreiber = "Keine MIDI-Out Treiber geladen (OpenOutputDevice)!";

class Leiste : public ::testing::Test {
protected:
    void SetUp() override {
        programm.Midifile1.ladenAusBytes(tempoLied(), "tempo.mid");
        tempoTabelleEintragen(programm);
        trackList.addItems({"Tempo", "Melodie", "Bass"});
        labelTempo.setText(" 120");
    }
    void bauen(bool echtzeit = false) {
        auto geraete = std::make_unique<CAufnahmeGeraete>(aufnahme, std::vector<std::string>{"Port A", "Port B"}, echtzeit);
        geraeteListe = geraete.get();
        leiste = std::make_unique<WiedergabeLeiste>(programm, &trackList, &labelTempo, nullptr, std::move(geraete));
        combo = leiste->findChild<QComboBox*>("OutputDevCombo");
        queue = leiste->findChild<QPushButton*>("CmdQueueTrack");
        play = leiste->findChild<QPushButton*>("CmdPlay");
        stop = leiste->findChild<QPushButton*>("CmdStop");
        slider = leiste->findChild<QSlider*>("PlaybackRateSlider");
        ASSERT_TRUE(combo && queue && play && stop && slider);
    }
    bool wiederBereit() {
        return QTest::qWaitFor([&] { return play->isEnabled(); }, 20000);
    }

    StummeForm form;
    CProgramm programm{LYRABO_BIN_DIR, form};
    QListWidget trackList;
    QLabel labelTempo;
    std::shared_ptr<CAufnahme> aufnahme = std::make_shared<CAufnahme>();
    CAufnahmeGeraete* geraeteListe = nullptr;
    std::unique_ptr<WiedergabeLeiste> leiste;
    QComboBox* combo = nullptr;
    QPushButton *queue = nullptr, *play = nullptr, *stop = nullptr;
    QSlider* slider = nullptr;
};

} // namespace

TEST_F(Leiste, DeviceListStartsWithTheDefaultDevice) {
    bauen();
    ASSERT_EQ(combo->count(), 3);
    EXPECT_EQ(combo->itemText(0), "Aufnahme");
    EXPECT_EQ(combo->itemText(2), "Port B");
    EXPECT_EQ(combo->currentIndex(), 0);
    EXPECT_EQ(leiste->MIDIOutput1().DeviceNumber(), -1);
    EXPECT_TRUE(play->isEnabled());
    EXPECT_FALSE(stop->isEnabled());
    EXPECT_EQ(slider->minimum(), WiedergabeLeiste::kRateMin);
    EXPECT_EQ(slider->maximum(), WiedergabeLeiste::kRateMax);
    EXPECT_EQ(slider->value(), 0);
}

TEST_F(Leiste, QueueingWithoutASelectedTrackSaysSo) {
    bauen();
    trackList.setCurrentRow(-1);
    QTest::mouseClick(queue, Qt::LeftButton);
    EXPECT_EQ(form.meldungen, std::vector<std::string>{"No track selected."});
    EXPECT_TRUE(leiste->MIDIOutput1().Queue().empty());
}

TEST_F(Leiste, QueueingMovesTheSelectionDownAndStaysOnTheLastRow) {
    bauen();
    trackList.setCurrentRow(1);
    QTest::mouseClick(queue, Qt::LeftButton);
    EXPECT_EQ(leiste->MIDIOutput1().Queue().size(), 11u);
    EXPECT_EQ(trackList.currentRow(), 2);
    QTest::mouseClick(queue, Qt::LeftButton);
    EXPECT_EQ(leiste->MIDIOutput1().Queue().size(), 15u);
    EXPECT_EQ(trackList.currentRow(), 2);
    EXPECT_TRUE(form.meldungen.empty());
    EXPECT_TRUE(queue->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Leiste, PlayOpensTheChosenRowsDeviceShowsTheTempoAndEndsByItself) {
    bauen();
    trackList.setCurrentRow(1);
    QTest::mouseClick(queue, Qt::LeftButton);
    QTest::mouseClick(play, Qt::LeftButton);
    EXPECT_FALSE(play->isEnabled());
    EXPECT_TRUE(stop->isEnabled());
    ASSERT_TRUE(wiederBereit());
    EXPECT_FALSE(stop->isEnabled());
    // Row 0 is device -1; the end closed it again.
    EXPECT_EQ(aufnahme->oeffnungen(), std::vector<int16_t>{-1});
    EXPECT_EQ(aufnahme->offen(), 0);
    EXPECT_EQ(leiste->MIDIOutput1().OpenCount(), 0);
    // Markers 0 (the empty entry, nothing to show), 1 (500,000 us) and 2 (250,000 us).
    EXPECT_EQ(labelTempo.text(), " 240");
    EXPECT_EQ(aufnahme->nachrichten().size(), 11u + 32u);

    combo->setCurrentIndex(2);
    QTest::mouseClick(play, Qt::LeftButton);
    ASSERT_TRUE(wiederBereit());
    EXPECT_EQ(aufnahme->oeffnungen(), (std::vector<int16_t>{-1, 1}));
    EXPECT_TRUE(form.meldungen.empty());
}

TEST_F(Leiste, StopAndADeviceChangeSilenceAndClose) {
    bauen(true);
    trackList.setCurrentRow(1);
    QTest::mouseClick(queue, Qt::LeftButton);
    for (QPushButton* halt : {stop, static_cast<QPushButton*>(nullptr)}) {
        aufnahme->leeren();
        QTest::mouseClick(play, Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([&] { return aufnahme->nachrichten().size() >= 2; }, 5000));
        if (halt)
            QTest::mouseClick(halt, Qt::LeftButton);
        else
            combo->setCurrentIndex(1);
        EXPECT_TRUE(play->isEnabled());
        EXPECT_FALSE(stop->isEnabled());
        EXPECT_EQ(aufnahme->offen(), 0);
        EXPECT_FALSE(leiste->MIDIOutput1().spielt());
        EXPECT_EQ(aufnahme->nachrichten().back().bytes, (std::vector<uint8_t>{0xBF, 123, 0}));
    }
}

TEST_F(Leiste, ClosingTheWindowStopsAndSilences) {
    bauen(true);
    trackList.setCurrentRow(1);
    QTest::mouseClick(queue, Qt::LeftButton);
    QTest::mouseClick(play, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return aufnahme->nachrichten().size() >= 2; }, 5000));
    leiste->beenden();
    EXPECT_EQ(aufnahme->offen(), 0);
    EXPECT_EQ(aufnahme->nachrichten().back().bytes, (std::vector<uint8_t>{0xBF, 123, 0}));
    leiste.reset();
}

TEST_F(Leiste, ADeviceThatCannotBeOpenedIsReportedAndStaysClosed) {
    bauen();
    geraeteListe->defekt({-1});
    QTest::mouseClick(play, Qt::LeftButton);
    EXPECT_EQ(form.meldungen, std::vector<std::string>{kKeinTreiber});
    EXPECT_TRUE(play->isEnabled());
    EXPECT_FALSE(stop->isEnabled());
    EXPECT_EQ(leiste->MIDIOutput1().OpenCount(), 0);
}

TEST_F(Leiste, TheRateSliderSetsThePlaybackRateAndOpeningResetsIt) {
    bauen();
    slider->setValue(40);
    EXPECT_EQ(leiste->MIDIOutput1().PlaybackRate(), 40);
    QTest::mouseClick(play, Qt::LeftButton);
    EXPECT_EQ(slider->value(), 0);
    EXPECT_EQ(leiste->MIDIOutput1().PlaybackRate(), 0);
    ASSERT_TRUE(wiederBereit());
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
