#pragma once
// The start object: its construction performs the whole start-up of the window program, and it
// runs the automatic conversion that another program can ask for through the clipboard.
#include "settings/ProgrammOrte.h"

#include <QStringList>

#include <filesystem>
#include <memory>
#include <string>

namespace lyrabo {

class CProgramm;
class frmLyrabo;

class CStart {
public:
    // Globals and user settings, the string columns, the font list, then the window is shown.
    explicit CStart(ProgrammOrte orte);
    ~CStart();
    CStart(const CStart&) = delete;
    CStart& operator=(const CStart&) = delete;

    // Creates writer, engine, settings and the seven collections anew and reads the user settings.
    void initGlobals();

    // With "Create Harfe-Spur" and a ".mid" path in the clipboard text: opens that file without a
    // dialog, converts track 1 (its harp-event text goes to the clipboard) and ends the program
    // without asking. Returns true when it ran; false leaves the window to the user.
    bool automatischerLauf(const std::string& zwischenablage);

    // What the program was started with. The clipboard command comes first; otherwise a file named
    // on the command line (as the desktop's "open with" names it) opens as through Datei →
    // MIDI-Datei öffnen…, a bad one with the same message. Returns true when the program has ended.
    bool aufrufAusfuehren(const QStringList& argumente, const std::string& zwischenablage);
    // The first argument that names a file, made absolute; a file:// address counts too.
    static QString dateiAusArgumenten(const QStringList& argumente);

    frmLyrabo& Fenster() { return *m_fenster; }
    CProgramm& Programm();

private:
    std::unique_ptr<frmLyrabo> m_fenster;
};

} // namespace lyrabo
