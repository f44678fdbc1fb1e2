#pragma once
// What the core asks of its surroundings: the main window implements it with widgets and message
// boxes, the command line with stderr. Display calls have empty defaults, so a surrounding without
// a display only implements the messages and the track selection.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lyrabo {

struct Farbe {
    uint8_t r = 0, g = 0, b = 0;
    bool operator==(const Farbe&) const = default;
};

class IForm {
public:
    virtual ~IForm() = default;

    // A message box with an OK button (German text as it stands).
    virtual void meldung(const std::string& text) = 0;

    // Row of TrackList that is selected, from 0; -1 when none.
    virtual int16_t ausgewaehlteSpurZeile() const = 0;

    // Display of the main window.
    virtual void anzeigeAktuallisieren() {}
    virtual void DisplayTrack(int16_t /*spur*/) {}
    virtual void spaltenFaerben(const std::array<Farbe, 37>& /*felder*/, Farbe /*links*/, Farbe /*rechts*/) {}
    virtual void setKlangNotenText(const std::string& /*text*/) {}
    virtual void setLabelTempo(const std::string& /*text*/) {}
    virtual void setLabelTicks(const std::string& /*text*/) {}
    virtual void setLabelTimeSignature(const std::string& /*text*/) {}
    // Clears the clipboard and puts the text on it.
    virtual void setZwischenablage(const std::string& /*text*/) {}

    // Opening a file: the track list is filled with these labels (row r is track r + 1) ...
    virtual void trackListeFuellen(const std::vector<std::string>& /*labels*/) {}
    // ... and, after tempo and time signatures are known, the window finishes the load: mixing
    // check boxes, selecting the second row (which converts that track), hsTranspo on, cmdKopieren
    // off, the channel option shown without running its handler.
    virtual void nachDateiGeladen() {}
    // Every open, loaded or not, ends by disabling cmdSpurenMischen.
    virtual void spurenMischenSperren() {}
};

// The common file dialog. Each call returns the chosen full path, or nothing when cancelled.
class IDialog {
public:
    virtual ~IDialog() = default;
    virtual std::optional<std::string> oeffnen(const std::string& initDir, const std::string& filter) = 0;
    // flags 2: ask before overwriting an existing file.
    virtual std::optional<std::string> speichern(const std::string& filter, int flags) = 0;
};

} // namespace lyrabo
