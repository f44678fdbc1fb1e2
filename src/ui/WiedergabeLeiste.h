#pragma once
// The playback controls of the main window: the output device list, queueing the selected track,
// play, stop and the playback rate, around the window's MIDI-output object.
#include "midi/wiedergabe/CMIDIOutput.h"

#include <QWidget>

#include <cstdint>
#include <memory>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSlider;

namespace lyrabo {

class CProgramm;

class WiedergabeLeiste : public QWidget {
    Q_OBJECT
public:
    // trackList is the window's TrackList (row r is track r + 1), labelTempo its LabelTempo.
    // geraete replaces the system's devices (tests); without it they are the system's.
    WiedergabeLeiste(CProgramm& programm, QListWidget* trackList, QLabel* labelTempo, QWidget* parent,
                     std::unique_ptr<IGeraeteListe> geraete = nullptr);
    ~WiedergabeLeiste() override;

    // When the window closes: stop playing, silence every note, close the device.
    void beenden();

    CMIDIOutput& MIDIOutput1() { return *m_midiOutput; }

    // The rate slider changes the speed in percent: -50 half speed, 0 as written, 100 twice as fast.
    static constexpr int kRateMin = -50;
    static constexpr int kRateMax = 100;

signals:
    // Where the music is now (ticks of the piece), from the output object's own events.
    void spielPosition(int32_t tick);
    // Playback stopped or ran out.
    void angehalten();

private:
    void OutputDevComboClick();
    void CmdQueueTrackClick();
    void CmdPlayClick();
    void CmdStopClick();
    void PlaybackRateSliderChange(int wert);

    // The output object's events, already on the window's thread.
    void MIDIOutput1Error(int16_t code, const QString& text);
    void MIDIOutput1Tempo(int16_t index);
    void MIDIOutput1End();
    void MIDIOutput1Position(int32_t tick);

    bool OpenOutputDevice();
    void CloseOutputDevice();
    void anhaltenUndSchliessen();
    void meldung(const QString& text);

    CProgramm& m_programm;
    QListWidget* m_trackList;
    QLabel* m_labelTempo;
    std::unique_ptr<CMIDIOutput> m_midiOutput;

    QComboBox* OutputDevCombo;
    QPushButton* CmdQueueTrack;
    QPushButton* CmdPlay;
    QPushButton* CmdStop;
    QSlider* PlaybackRateSlider;
    // Between Play and Stop; positions still on their way after a stop are dropped.
    bool m_spielt = false;
};

} // namespace lyrabo
