#pragma once
// The start object: its construction performs the whole start-up of the window program, and it
// runs the automatic conversion that another program can ask for through the clipboard.
#include <filesystem>
#include <memory>
#include <string>

namespace lyrabo {

class CProgramm;
class frmLyrabo;

class CStart {
public:
    // Globals and user settings, the string columns, the font list, then the window is shown.
    explicit CStart(std::filesystem::path programmOrdner);
    ~CStart();
    CStart(const CStart&) = delete;
    CStart& operator=(const CStart&) = delete;

    // Creates writer, engine, settings and the seven collections anew and reads the user settings.
    void initGlobals();

    // With "Create Harfe-Spur" and a ".mid" path in the clipboard text: opens that file without a
    // dialog, converts track 1 (its harp-event text goes to the clipboard) and ends the program
    // without asking. Returns true when it ran; false leaves the window to the user.
    bool automatischerLauf(const std::string& zwischenablage);

    frmLyrabo& Fenster() { return *m_fenster; }
    CProgramm& Programm();

    // The folder the program runs from, where data/ and ini/ lie.
    static std::filesystem::path programmOrdner();

private:
    std::unique_ptr<frmLyrabo> m_fenster;
};

} // namespace lyrabo
