#include "midi/wiedergabe/CMIDIOutput.h"

#include <algorithm>

namespace lyrabo {

CMIDIOutput::CMIDIOutput(std::unique_ptr<IGeraeteListe> geraete) : m_geraete(std::move(geraete)) {}

CMIDIOutput::~CMIDIOutput() {
    try {
        schliessen();
    } catch (...) {
        // A device that fails while closing must not take the program down with it.
    }
    std::unique_lock lk(m_mutex);
    playerBeenden(lk);
}

void CMIDIOutput::Action(int16_t befehl) {
    switch (befehl) {
    case kOeffnen: oeffnen(); break;
    case kSchliessen: schliessen(); break;
    case kSpielen: spielen(); break;
    case kStoppen: stoppen(); break;
    case kEinreihen: einreihen(); break;
    default:
        throw CMidiAusgabeFehler(CMidiAusgabeFehler::kBedienung,
                                 "Unbekannter Befehl " + std::to_string(befehl) + " an die MIDI-Ausgabe.");
    }
}

std::string CMIDIOutput::ProductName() const { return m_geraete->name(m_geraet); }

int16_t CMIDIOutput::DeviceCount() const { return m_geraete->anzahl(); }

int16_t CMIDIOutput::OpenCount() const {
    std::lock_guard lk(m_mutex);
    return m_ausgang ? 1 : 0;
}

void CMIDIOutput::PlaybackRate(int16_t rate) {
    std::lock_guard lk(m_mutex);
    if (m_spielt) {
        // Keep the piece where it is now and let it run on at the new speed.
        auto jetzt = Uhr::now();
        m_ankerMs += std::chrono::duration<double, std::milli>(jetzt - m_ankerReal).count() * faktor();
        m_ankerReal = jetzt;
    }
    m_rate = std::max<int16_t>(rate, kKleinsteRate);
    m_wecker.notify_all();
}

int16_t CMIDIOutput::PlaybackRate() const {
    std::lock_guard lk(m_mutex);
    return m_rate;
}

std::vector<CQueueNachricht> CMIDIOutput::Queue() const {
    std::lock_guard lk(m_mutex);
    return m_queue;
}

bool CMIDIOutput::spielt() const {
    std::lock_guard lk(m_mutex);
    return m_spielt;
}

double CMIDIOutput::faktor() const { return (100.0 + m_rate) / 100.0; }

CMIDIOutput::Uhr::time_point CMIDIOutput::faelligAm(double zeitMs) const {
    double realMs = (zeitMs - m_ankerMs) / faktor();
    return m_ankerReal + std::chrono::duration_cast<Uhr::duration>(std::chrono::duration<double, std::milli>(realMs));
}

void CMIDIOutput::oeffnen() {
    schliessen();
    int16_t anzahl = m_geraete->anzahl();
    if (m_geraet < -1 || m_geraet >= anzahl)
        throw CMidiAusgabeFehler(CMidiAusgabeFehler::kGeraet,
                                 "Das MIDI-Ausgabegerät " + std::to_string(m_geraet) + " gibt es nicht.");
    auto ausgang = m_geraete->oeffnen(m_geraet);
    std::lock_guard lk(m_mutex);
    m_ausgang = std::move(ausgang);
    m_klingt = false;
    m_letzteSpielMs = 0;
}

void CMIDIOutput::schliessen() {
    std::unique_lock lk(m_mutex);
    playerBeenden(lk);
    if (!m_ausgang) return;
    stille(lk);
    auto ausgang = std::move(m_ausgang);
    lk.unlock();
    ausgang.reset();
}

void CMIDIOutput::spielen() {
    std::unique_lock lk(m_mutex);
    if (m_spielt) return;
    if (!m_ausgang)
        throw CMidiAusgabeFehler(CMidiAusgabeFehler::kBedienung, "Es ist kein MIDI-Ausgabegerät geöffnet.");
    playerBeenden(lk);
    m_spielt = true;
    m_halt = false;
    m_abgespielt = true;
    m_cursor = 0;
    // Every play-through starts the clock at the beginning of the queue.
    m_ankerMs = 0;
    m_ankerReal = Uhr::now();
    m_player = std::thread(&CMIDIOutput::abspielen, this);
}

void CMIDIOutput::stoppen() {
    std::unique_lock lk(m_mutex);
    playerBeenden(lk);
    stille(lk);
}

void CMIDIOutput::einreihen() {
    CQueueNachricht n{m_zeit, m_message, m_data1, m_data2, m_tempoMarker, m_tick};
    m_tempoMarker = -1;
    m_tick = -1;
    std::lock_guard lk(m_mutex);
    if (m_abgespielt && !m_spielt) {
        // The last queue has been played; queueing begins a new one.
        m_queue.clear();
        m_abgespielt = false;
    }
    // Keep the queue in time order; tracks queued one after the other sound together. While
    // playing, a message whose moment has passed goes right at the player's position, so that
    // no note-off is lost.
    auto pos = std::upper_bound(m_queue.begin(), m_queue.end(), n.zeitMs,
                                [](double z, const CQueueNachricht& q) { return z < q.zeitMs; });
    if (m_spielt) pos = std::max(pos, m_queue.begin() + static_cast<std::ptrdiff_t>(m_cursor));
    m_queue.insert(pos, n);
    m_wecker.notify_all();
}

void CMIDIOutput::playerBeenden(std::unique_lock<std::mutex>& lk) {
    m_halt = true;
    m_wecker.notify_all();
    if (!m_player.joinable()) return;
    if (m_player.get_id() == std::this_thread::get_id()) return;  // called from an event: it ends by itself
    lk.unlock();
    m_player.join();
    lk.lock();
}

void CMIDIOutput::stille(std::unique_lock<std::mutex>&) {
    if (!m_ausgang || !m_klingt) return;
    m_klingt = false;
    try {
        for (uint8_t kanal = 0; kanal < 16; ++kanal) {
            // Sustain pedal up first, or held notes would ring on after the all-notes-off.
            m_ausgang->senden({uint8_t(0xB0 | kanal), 64, 0}, m_letzteSpielMs);
            m_ausgang->senden({uint8_t(0xB0 | kanal), 123, 0}, m_letzteSpielMs);
        }
    } catch (const CMidiAusgabeFehler&) {
        // The device is going away anyway; nothing more can be silenced.
    }
}

void CMIDIOutput::fehlerMelden(int16_t code, const std::string& text) {
    if (m_beiFehler) m_beiFehler(code, text);
}

void CMIDIOutput::abspielen() {
    std::unique_lock lk(m_mutex);
    while (!m_halt && m_cursor < m_queue.size()) {
        const CQueueNachricht n = m_queue[m_cursor];
        if (m_ausgang->echtzeit()) {
            auto faellig = faelligAm(n.zeitMs);
            if (Uhr::now() < faellig) {
                // Wakes early for stop, a new rate or a newly queued message, then looks again.
                m_wecker.wait_until(lk, faellig);
                continue;
            }
        }
        ++m_cursor;
        double spielMs = n.zeitMs / faktor();
        m_letzteSpielMs = std::max(m_letzteSpielMs, spielMs);
        IMidiAusgang* ausgang = m_ausgang.get();
        lk.unlock();

        auto status = static_cast<uint8_t>(n.message);
        int laenge = nachrichtenLaenge(status);
        bool gesendet = false;
        if (laenge == 0) {
            // A system-exclusive event arrives here with only two of its bytes; it cannot be sent.
            fehlerMelden(CMidiAusgabeFehler::kNichtUnterstuetzt,
                         "Die Nachricht " + std::to_string(n.message) + " kann nicht gesendet werden.");
        } else {
            std::vector<uint8_t> bytes{status, uint8_t(n.data1 & 0x7F)};
            if (laenge == 3) bytes.push_back(uint8_t(n.data2 & 0x7F));
            try {
                ausgang->senden(bytes, spielMs);
                gesendet = true;
            } catch (const CMidiAusgabeFehler& e) {
                fehlerMelden(e.Code(), e.what());
            } catch (const std::exception& e) {
                fehlerMelden(CMidiAusgabeFehler::kGeraet, e.what());
            }
        }
        if (n.tempoMarker >= 0 && m_beiTempo) m_beiTempo(n.tempoMarker);
        if (n.tick >= 0 && m_beiPosition) m_beiPosition(n.tick);
        lk.lock();
        if (gesendet) m_klingt = true;
    }
    bool ende = !m_halt;
    m_spielt = false;
    lk.unlock();
    if (ende && m_beiEnde) m_beiEnde();
}

} // namespace lyrabo
