#pragma once
// Error types of the core. Every message is German and meant for the user as it stands.
#include <stdexcept>
#include <string>

namespace lyrabo {

class Fehler : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A 16-bit or 32-bit result left its range: the program never wraps around.
class UeberlaufFehler : public Fehler {
public:
    UeberlaufFehler() : Fehler("Überlauf: Eine Zahl ist für ihren Wertebereich zu groß.") {}
};

// A position or key that a collection or table does not hold.
class IndexFehler : public Fehler {
public:
    IndexFehler() : Fehler("Index außerhalb des gültigen Bereichs.") {}
    using Fehler::Fehler;
};

// Reading or writing a file failed; the text names the file.
class DateiFehler : public Fehler {
public:
    using Fehler::Fehler;
};

// The user cancelled a file dialog.
class AbbruchFehler : public Fehler {
public:
    AbbruchFehler() : Fehler("Abgebrochen.") {}
};

// A file that the MIDI reader cannot take.
class MidiDateiFehler : public Fehler {
public:
    using Fehler::Fehler;
};

} // namespace lyrabo
