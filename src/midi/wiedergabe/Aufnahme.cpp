#include "midi/wiedergabe/Aufnahme.h"

namespace lyrabo {

void CAufnahme::dazu(CAufgenommen a) {
    std::lock_guard lk(m_mutex);
    m_nachrichten.push_back(std::move(a));
}

void CAufnahme::geoeffnet(int16_t nr) {
    std::lock_guard lk(m_mutex);
    m_oeffnungen.push_back(nr);
    ++m_offen;
}

void CAufnahme::geschlossen(int16_t) {
    std::lock_guard lk(m_mutex);
    --m_offen;
}

std::vector<CAufgenommen> CAufnahme::nachrichten() const {
    std::lock_guard lk(m_mutex);
    return m_nachrichten;
}

std::vector<int16_t> CAufnahme::oeffnungen() const {
    std::lock_guard lk(m_mutex);
    return m_oeffnungen;
}

int16_t CAufnahme::offen() const {
    std::lock_guard lk(m_mutex);
    return m_offen;
}

void CAufnahme::leeren() {
    std::lock_guard lk(m_mutex);
    m_nachrichten.clear();
    m_oeffnungen.clear();
}

namespace {

class CAufnahmeAusgang : public IMidiAusgang {
public:
    CAufnahmeAusgang(std::shared_ptr<CAufnahme> aufnahme, int16_t nr, bool echtzeit)
        : m_aufnahme(std::move(aufnahme)), m_nr(nr), m_echtzeit(echtzeit) {
        m_aufnahme->geoeffnet(m_nr);
    }
    ~CAufnahmeAusgang() override { m_aufnahme->geschlossen(m_nr); }
    void senden(const std::vector<uint8_t>& bytes, double zeitMs) override {
        m_aufnahme->dazu({m_nr, zeitMs, std::chrono::steady_clock::now(), bytes});
    }
    bool echtzeit() const override { return m_echtzeit; }

private:
    std::shared_ptr<CAufnahme> m_aufnahme;
    int16_t m_nr;
    bool m_echtzeit;
};

} // namespace

CAufnahmeGeraete::CAufnahmeGeraete(std::shared_ptr<CAufnahme> aufnahme, std::vector<std::string> namen, bool echtzeit)
    : m_aufnahme(std::move(aufnahme)), m_namen(std::move(namen)), m_echtzeit(echtzeit) {}

int16_t CAufnahmeGeraete::anzahl() { return static_cast<int16_t>(m_namen.size()); }

std::string CAufnahmeGeraete::name(int16_t nr) {
    if (nr == -1) return "Aufnahme";
    if (nr < 0 || nr >= anzahl()) return {};
    return m_namen[static_cast<size_t>(nr)];
}

std::unique_ptr<IMidiAusgang> CAufnahmeGeraete::oeffnen(int16_t nr) {
    if (m_defekt.count(nr))
        throw CMidiAusgabeFehler(CMidiAusgabeFehler::kGeraet,
                                 "Das MIDI-Ausgabegerät " + std::to_string(nr) + " lässt sich nicht öffnen.");
    return std::make_unique<CAufnahmeAusgang>(m_aufnahme, nr, m_echtzeit);
}

} // namespace lyrabo
