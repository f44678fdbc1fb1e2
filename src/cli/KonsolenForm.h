#pragma once
// The command line as the core's window: messages go to stderr, the texts the window would show
// in its text box or put on the clipboard are kept, and the save dialog answers with the name
// given on the command line.
#include "app/core/Oberflaeche.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lyrabo::cli {

class CKonsolenForm : public IForm, public IDialog {
public:
    // ---- IForm ----
    void meldung(const std::string& text) override;
    int16_t ausgewaehlteSpurZeile() const override { return m_zeile; }
    void setKlangNotenText(const std::string& text) override { m_klangNotenText = text; }
    void setLabelTempo(const std::string& text) override { m_labelTempo = text; }
    void setLabelTicks(const std::string& text) override { m_labelTicks = text; }
    void setLabelTimeSignature(const std::string& text) override { m_labelTaktart = text; }
    void setZwischenablage(const std::string& text) override { m_zwischenablage = text; }
    void trackListeFuellen(const std::vector<std::string>& labels) override { m_trackListe = labels; }
    void nachDateiGeladen() override;

    // ---- IDialog ----
    std::optional<std::string> oeffnen(const std::string&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> speichern(const std::string&, int) override { return m_speicherName; }

    // Starts over for the next file.
    void zuruecksetzen();

    // Row of the track list selected (track - 1); -1 for none.
    void Zeile(int16_t zeile) { m_zeile = zeile; }
    // Run when a load finishes, as the window's selection of the preselected row.
    void NachLaden(std::function<void()> f) { m_nachLaden = std::move(f); }
    // The name the save dialog answers with.
    void SpeicherName(std::optional<std::string> name) { m_speicherName = std::move(name); }

    const std::optional<std::string>& KlangNotenText() const { return m_klangNotenText; }
    void KlangNotenText(std::optional<std::string> t) { m_klangNotenText = std::move(t); }
    const std::optional<std::string>& Zwischenablage() const { return m_zwischenablage; }
    const std::optional<std::string>& LabelTempo() const { return m_labelTempo; }
    const std::optional<std::string>& LabelTaktart() const { return m_labelTaktart; }
    const std::vector<std::string>& TrackListe() const { return m_trackListe; }
    const std::vector<std::string>& Meldungen() const { return m_meldungen; }
    bool Geladen() const { return m_geladen; }

private:
    int16_t m_zeile = -1;
    std::function<void()> m_nachLaden;
    std::optional<std::string> m_speicherName;
    std::optional<std::string> m_klangNotenText;
    std::optional<std::string> m_zwischenablage;
    std::optional<std::string> m_labelTempo;
    std::optional<std::string> m_labelTicks;
    std::optional<std::string> m_labelTaktart;
    std::vector<std::string> m_trackListe;
    std::vector<std::string> m_meldungen;
    bool m_geladen = false;
};

} // namespace lyrabo::cli
