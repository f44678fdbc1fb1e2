#pragma once
// What the fuzz targets and the table of their findings share: a window that shows nothing, asks
// nothing and keeps what it was told, and a walk over every value of every event the reader's
// 16-bit cursor can reach.
#include "app/core/Oberflaeche.h"
#include "midi/EreignisListe.h"
#include "midi/Midifile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lyrabo::fuzz {

class StilleForm : public IForm, public IDialog {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    std::optional<std::string> oeffnen(const std::string&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> speichern(const std::string&, int) override { return std::nullopt; }
    int16_t zeile = 0;
    std::vector<std::string> meldungen;
};

inline void allesLesen(Midifile& m) {
    for (int16_t t = 1; t <= m.TrackCount(); ++t) {
        m.Track(t);
        const int32_t n = m.EventCount() < 32767 ? m.EventCount() : 32767;
        for (int32_t i = 1; i <= n; ++i) {
            m.Event(i);
            volatile int64_t summe = int64_t{m.Message()} + m.Data1() + m.Data2() + m.Time() + m.Tempo() +
                                     m.Numerator() + m.Denominator();
            (void)summe;
            volatile size_t laenge = m.BufferText().size() + m.Text().size() + ereignisZeile(m).size();
            (void)laenge;
        }
    }
}

} // namespace lyrabo::fuzz
