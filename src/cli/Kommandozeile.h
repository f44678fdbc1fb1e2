#pragma once
// The commands of lyrabo-cli on top of the program's conversion flow: every file is opened the
// way the window opens it, the options are set the way its controls set them, and the texts and
// the Works database come from the same operations the window calls.
#include "app/core/CProgramm.h"
#include "cli/Aufruf.h"
#include "cli/KonsolenForm.h"

#include <filesystem>
#include <iosfwd>
#include <set>
#include <string>

namespace lyrabo::cli {

// The window's warning after mixing when the result is not monophonic.
extern const char* const kPolyphonMeldung;

class CKommandozeile {
public:
    // `aus` takes the reports of info and events; texts for "-" go to the process's stdout.
    CKommandozeile(std::filesystem::path programmOrdner, std::ostream& aus, std::ostream& fehler);

    // Runs the call; returns the exit code.
    int ausfuehren(const CAufruf& aufruf);

private:
    enum class Phase { Laden, Umsetzen, Schreiben };

    // One file, with every failure turned into a message and an exit code.
    int dateiBearbeiten(const std::string& datei);

    // Opens the file as the window does after "Datei öffnen": fresh settings, the user settings
    // file, the options, then the load; with `umsetzen` the preselected track is converted.
    void laden(const std::string& datei, bool umsetzen);
    void optionenSetzen();
    void felderSetzen();

    void info(const std::string& datei);
    void events();
    void convert(const std::string& datei);
    void mix(const std::string& datei);

    // Where the outputs of a file go; "" = not wanted, "-" = standard output.
    struct Ziele {
        std::string harfentext, klangnoten, wdb, pdf, svg;
    };
    Ziele zieleFuer(const std::string& datei);
    void wdbSpeichern(const std::string& name);
    // The note sheet of `noten` with the window's sheet settings for the harp size, changed by the
    // call's sheet options: as PDF to `pdf`, as SVG to `svg` (each "" for none).
    void blattSpeichern(const Ziele& z, const KlangNotenRef& noten, int16_t spur);
    void textSchreiben(const std::string& ziel, const std::string& utf8Text);

    std::filesystem::path m_ordner;
    std::ostream& m_aus;
    std::ostream& m_fehler;
    CKonsolenForm m_form;
    CProgramm m_programm;
    const CAufruf* m_aufruf = nullptr;
    Phase m_phase = Phase::Laden;
    int16_t m_spur = 0;
    bool m_spurFehlt = false;
    std::set<std::string> m_belegteNamen;
};

} // namespace lyrabo::cli
