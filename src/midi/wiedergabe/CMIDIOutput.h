#pragma once
// The MIDI-output object of the main window: a device list, one open device, a queue of
// time-stamped messages that plays on its own timer thread, a playback rate, and three events.
//
// The events (error, tempo, end, position) are called on the player thread; a window hands them on to its
// own thread. Set them before the first Action 4.
#include "midi/wiedergabe/MidiAusgang.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace lyrabo {

// One queued message: its moment in milliseconds from the start of the queue, the status and
// data bytes as the file has them, the tempo-table index to announce when it plays (-1: none),
// and the event's place in the piece in ticks, announced when it plays (-1: none).
struct CQueueNachricht {
    double zeitMs = 0;
    int16_t message = 0;
    int16_t data1 = 0;
    int16_t data2 = 0;
    int16_t tempoMarker = -1;
    int32_t tick = -1;
};

class CMIDIOutput {
public:
    using FehlerEreignis = std::function<void(int16_t code, const std::string& text)>;
    using TempoEreignis = std::function<void(int16_t index)>;
    using EndeEreignis = std::function<void()>;
    using PositionsEreignis = std::function<void(int32_t tick)>;

    // Action codes.
    static constexpr int16_t kOeffnen = 1;
    static constexpr int16_t kSchliessen = 2;
    static constexpr int16_t kSpielen = 4;
    static constexpr int16_t kStoppen = 5;
    static constexpr int16_t kEinreihen = 6;

    // The playback rate is a change of speed in percent: 0 plays as written, 100 twice as fast,
    // -50 at half speed. Values below kKleinsteRate are taken as kKleinsteRate.
    static constexpr int16_t kKleinsteRate = -90;

    explicit CMIDIOutput(std::unique_ptr<IGeraeteListe> geraete);
    ~CMIDIOutput();
    CMIDIOutput(const CMIDIOutput&) = delete;
    CMIDIOutput& operator=(const CMIDIOutput&) = delete;

    // 1 open the device DeviceNumber, 2 close it, 4 start playing the queue from its beginning,
    // 5 stop, 6 append the message set up in Time/Message/Data1/Data2 (and TempoMarker).
    // Throws CMidiAusgabeFehler for a device that cannot be opened, Action 4 without an open
    // device, and unknown codes.
    void Action(int16_t befehl);

    // -1 the default device, 0 upwards the system's MIDI ports.
    int16_t DeviceNumber() const { return m_geraet; }
    void DeviceNumber(int16_t nr) { m_geraet = nr; }
    // Name of the device DeviceNumber selects.
    std::string ProductName() const;
    int16_t DeviceCount() const;
    // 1 while a device is open, else 0.
    int16_t OpenCount() const;

    // Fields of the next queued message.
    void Time(double ms) { m_zeit = ms; }
    void Message(int16_t v) { m_message = v; }
    void Data1(int16_t v) { m_data1 = v; }
    void Data2(int16_t v) { m_data2 = v; }
    // Tempo-table index that travels with the next queued message.
    void TempoMarker(int16_t index) { m_tempoMarker = index; }
    // Place in the piece (ticks) that travels with the next queued message.
    void Tick(int32_t tick) { m_tick = tick; }

    void PlaybackRate(int16_t rate);
    int16_t PlaybackRate() const;

    void beiFehler(FehlerEreignis f) { m_beiFehler = std::move(f); }
    void beiTempo(TempoEreignis f) { m_beiTempo = std::move(f); }
    void beiEnde(EndeEreignis f) { m_beiEnde = std::move(f); }
    // Raised after each message that carries a tick has been sent: where the music is now.
    void beiPosition(PositionsEreignis f) { m_beiPosition = std::move(f); }

    // The queue as it stands, in playing order.
    std::vector<CQueueNachricht> Queue() const;
    bool spielt() const;

private:
    using Uhr = std::chrono::steady_clock;

    void oeffnen();
    void schliessen();
    void spielen();
    void stoppen();
    void einreihen();
    void abspielen();
    // Stops the player thread and waits for it, unless called on that thread itself.
    void playerBeenden(std::unique_lock<std::mutex>& lk);
    // All notes off on every channel, if anything was sent since the last time.
    void stille(std::unique_lock<std::mutex>& lk);
    void fehlerMelden(int16_t code, const std::string& text);
    double faktor() const;
    Uhr::time_point faelligAm(double zeitMs) const;

    std::unique_ptr<IGeraeteListe> m_geraete;
    int16_t m_geraet = -1;
    double m_zeit = 0;
    int16_t m_message = 0, m_data1 = 0, m_data2 = 0;
    int16_t m_tempoMarker = -1;
    int32_t m_tick = -1;

    FehlerEreignis m_beiFehler;
    TempoEreignis m_beiTempo;
    EndeEreignis m_beiEnde;
    PositionsEreignis m_beiPosition;

    // Guards everything below; the player thread holds it except while it sends or raises events.
    mutable std::mutex m_mutex;
    std::condition_variable m_wecker;
    std::unique_ptr<IMidiAusgang> m_ausgang;
    std::vector<CQueueNachricht> m_queue;
    size_t m_cursor = 0;           // next message to play
    bool m_spielt = false;
    bool m_halt = false;
    bool m_abgespielt = false;     // the queue was handed to playback; the next Action 6 starts a new one
    bool m_klingt = false;         // something was sent since the last all-notes-off
    double m_letzteSpielMs = 0;
    int16_t m_rate = 0;
    // The playing clock: at m_ankerReal the queue stood at m_ankerMs; it runs at faktor().
    Uhr::time_point m_ankerReal{};
    double m_ankerMs = 0;
    std::thread m_player;
};

} // namespace lyrabo
