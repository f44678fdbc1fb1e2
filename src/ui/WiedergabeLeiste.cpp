#include "ui/WiedergabeLeiste.h"

#include "app/core/CProgramm.h"
#include "midi/wiedergabe/Einreihen.h"
#include "midi/wiedergabe/SystemGeraete.h"
#include "model/Zahlen.h"

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

namespace lyrabo {

WiedergabeLeiste::WiedergabeLeiste(CProgramm& programm, QListWidget* trackList, QLabel* labelTempo, QWidget* parent,
                                   std::unique_ptr<IGeraeteListe> geraete)
    : QWidget(parent), m_programm(programm), m_trackList(trackList), m_labelTempo(labelTempo) {
    if (!geraete) geraete = std::make_unique<CSystemGeraete>(programm.Orte().beilagen);
    m_midiOutput = std::make_unique<CMIDIOutput>(std::move(geraete));

    OutputDevCombo = new QComboBox(this);
    OutputDevCombo->setObjectName("OutputDevCombo");
    OutputDevCombo->setToolTip(QStringLiteral("MIDI-Ausgabegerät"));
    CmdQueueTrack = new QPushButton(QStringLiteral("Spur einreihen"), this);
    CmdQueueTrack->setObjectName("CmdQueueTrack");
    CmdQueueTrack->setToolTip(QStringLiteral("Die gewählte Spur zum Abspielen einreihen"));
    CmdPlay = new QPushButton(QStringLiteral("Abspielen"), this);
    CmdPlay->setObjectName("CmdPlay");
    CmdStop = new QPushButton(QStringLiteral("Stopp"), this);
    CmdStop->setObjectName("CmdStop");
    CmdStop->setEnabled(false);
    PlaybackRateSlider = new QSlider(Qt::Horizontal, this);
    PlaybackRateSlider->setObjectName("PlaybackRateSlider");
    PlaybackRateSlider->setRange(kRateMin, kRateMax);
    PlaybackRateSlider->setValue(0);
    PlaybackRateSlider->setToolTip(QStringLiteral("Wiedergabegeschwindigkeit: links langsamer, rechts schneller"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(OutputDevCombo, 2);
    layout->addWidget(CmdQueueTrack);
    layout->addWidget(CmdPlay);
    layout->addWidget(CmdStop);
    layout->addWidget(PlaybackRateSlider, 1);

    // Row r of the list is device r - 1: row 0 is always the default device.
    {
        QSignalBlocker sperre(OutputDevCombo);
        for (int16_t nr = -1; nr < m_midiOutput->DeviceCount(); ++nr) {
            m_midiOutput->DeviceNumber(nr);
            OutputDevCombo->addItem(QString::fromStdString(m_midiOutput->ProductName()));
        }
        m_midiOutput->DeviceNumber(-1);
        OutputDevCombo->setCurrentIndex(0);
    }

    // The output object raises its events on its player thread; they are handled on this one.
    m_midiOutput->beiFehler([this](int16_t code, const std::string& text) {
        QString t = QString::fromStdString(text);
        QMetaObject::invokeMethod(this, [this, code, t] { MIDIOutput1Error(code, t); }, Qt::QueuedConnection);
    });
    m_midiOutput->beiTempo([this](int16_t index) {
        QMetaObject::invokeMethod(this, [this, index] { MIDIOutput1Tempo(index); }, Qt::QueuedConnection);
    });
    m_midiOutput->beiEnde([this] { QMetaObject::invokeMethod(this, [this] { MIDIOutput1End(); }, Qt::QueuedConnection); });
    m_midiOutput->beiPosition([this](int32_t tick) {
        QMetaObject::invokeMethod(this, [this, tick] { MIDIOutput1Position(tick); }, Qt::QueuedConnection);
    });

    connect(OutputDevCombo, &QComboBox::currentIndexChanged, this, [this] { OutputDevComboClick(); });
    connect(CmdQueueTrack, &QPushButton::clicked, this, [this] { CmdQueueTrackClick(); });
    connect(CmdPlay, &QPushButton::clicked, this, [this] { CmdPlayClick(); });
    connect(CmdStop, &QPushButton::clicked, this, [this] { CmdStopClick(); });
    connect(PlaybackRateSlider, &QSlider::valueChanged, this, [this](int wert) { PlaybackRateSliderChange(wert); });
}

WiedergabeLeiste::~WiedergabeLeiste() { beenden(); }

void WiedergabeLeiste::beenden() {
    try {
        m_midiOutput->Action(CMIDIOutput::kStoppen);
        CloseOutputDevice();
    } catch (const std::exception&) {
        // The window is closing: a device that fails now has nothing left to say.
    }
}

void WiedergabeLeiste::meldung(const QString& text) { m_programm.Form().meldung(text.toStdString()); }

bool WiedergabeLeiste::OpenOutputDevice() {
    try {
        PlaybackRateSlider->setValue(0);
        if (m_midiOutput->OpenCount() >= 1 || m_midiOutput->DeviceNumber() == -1)
            m_midiOutput->Action(CMIDIOutput::kSchliessen);
        m_midiOutput->DeviceNumber(static_cast<int16_t>(OutputDevCombo->currentIndex() - 1));
        m_midiOutput->Action(CMIDIOutput::kOeffnen);
        return true;
    } catch (const std::exception&) {
        meldung(QStringLiteral("Keine MIDI-Out Treiber geladen (OpenOutputDevice)!"));
        return false;
    }
}

void WiedergabeLeiste::CloseOutputDevice() {
    if (m_midiOutput->OpenCount() >= 1) m_midiOutput->Action(CMIDIOutput::kSchliessen);
}

void WiedergabeLeiste::anhaltenUndSchliessen() {
    try {
        m_midiOutput->Action(CMIDIOutput::kStoppen);
        CloseOutputDevice();
    } catch (const std::exception& e) {
        meldung(QString::fromUtf8(e.what()));
    }
    CmdPlay->setEnabled(true);
    CmdStop->setEnabled(false);
    m_spielt = false;
    emit angehalten();
}

void WiedergabeLeiste::OutputDevComboClick() { anhaltenUndSchliessen(); }

void WiedergabeLeiste::CmdStopClick() { anhaltenUndSchliessen(); }

void WiedergabeLeiste::MIDIOutput1End() { anhaltenUndSchliessen(); }

void WiedergabeLeiste::CmdPlayClick() {
    // A device that cannot be opened stays closed, and there is nothing to stop.
    if (!OpenOutputDevice()) return;
    try {
        m_midiOutput->Action(CMIDIOutput::kSpielen);
    } catch (const std::exception& e) {
        meldung(QString::fromUtf8(e.what()));
        return;
    }
    CmdPlay->setEnabled(false);
    CmdStop->setEnabled(true);
    m_spielt = true;
}

void WiedergabeLeiste::PlaybackRateSliderChange(int wert) { m_midiOutput->PlaybackRate(static_cast<int16_t>(wert)); }

void WiedergabeLeiste::CmdQueueTrackClick() {
    int zeile = m_trackList ? m_trackList->currentRow() : -1;
    if (zeile < 0) {
        meldung(QStringLiteral("No track selected."));
        return;
    }
    CmdQueueTrack->setEnabled(false);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        spurEinreihen(m_programm, cint16(int64_t{zeile} + 1), *m_midiOutput, [] { QCoreApplication::processEvents(); });
    } catch (const std::exception& e) {
        QApplication::restoreOverrideCursor();
        CmdQueueTrack->setEnabled(true);
        meldung(QString::fromUtf8(e.what()));
        return;
    }
    // One row down, so that the next click queues the next track; on the last row it stays.
    if (m_trackList && zeile + 1 < m_trackList->count()) m_trackList->setCurrentRow(zeile + 1);
    QApplication::restoreOverrideCursor();
    CmdQueueTrack->setEnabled(true);
}

void WiedergabeLeiste::MIDIOutput1Position(int32_t tick) {
    if (m_spielt) emit spielPosition(tick);
}

void WiedergabeLeiste::MIDIOutput1Error(int16_t code, const QString& text) {
    if (code == CMidiAusgabeFehler::kHinweis || code == CMidiAusgabeFehler::kNichtUnterstuetzt) return;
    meldung(text);
}

void WiedergabeLeiste::MIDIOutput1Tempo(int16_t index) {
    if (index < 0 || index > CProgramm::kMaxTempi) {
        meldung(QString::fromUtf8(IndexFehler().what()));
        return;
    }
    int32_t tempo = m_programm.TempoTabelle[static_cast<size_t>(index)].tempo;
    // Entry 0 is the empty start of the table: it carries no tempo to show.
    if (tempo <= 0 || !m_labelTempo) return;
    m_labelTempo->setText(QString::fromStdString(Str(60000000 / tempo)));
}

} // namespace lyrabo
