#pragma once
// A device list whose devices record what they are sent instead of sounding it: for tests of the
// queue and of the window's playback controls, with no MIDI port and no sound card.
#include "midi/wiedergabe/MidiAusgang.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace lyrabo {

struct CAufgenommen {
    int16_t geraet = 0;
    double zeitMs = 0;                          // the moment the player handed over
    std::chrono::steady_clock::time_point real; // when it arrived
    std::vector<uint8_t> bytes;
};

// What all devices of one list received, in order, and which devices were opened and closed.
class CAufnahme {
public:
    void dazu(CAufgenommen a);
    void geoeffnet(int16_t nr);
    void geschlossen(int16_t nr);
    std::vector<CAufgenommen> nachrichten() const;
    std::vector<int16_t> oeffnungen() const;
    int16_t offen() const;
    void leeren();

private:
    mutable std::mutex m_mutex;
    std::vector<CAufgenommen> m_nachrichten;
    std::vector<int16_t> m_oeffnungen;
    int16_t m_offen = 0;
};

class CAufnahmeGeraete : public IGeraeteListe {
public:
    // `namen` are the system ports 0, 1, ...; device -1 is called "Aufnahme". With echtzeit the
    // player waits for each message's moment, else the queue plays out at once.
    explicit CAufnahmeGeraete(std::shared_ptr<CAufnahme> aufnahme, std::vector<std::string> namen = {},
                              bool echtzeit = false);
    // These devices refuse to open.
    void defekt(std::set<int16_t> nummern) { m_defekt = std::move(nummern); }

    int16_t anzahl() override;
    std::string name(int16_t nr) override;
    std::unique_ptr<IMidiAusgang> oeffnen(int16_t nr) override;

private:
    std::shared_ptr<CAufnahme> m_aufnahme;
    std::vector<std::string> m_namen;
    bool m_echtzeit;
    std::set<int16_t> m_defekt;
};

} // namespace lyrabo
