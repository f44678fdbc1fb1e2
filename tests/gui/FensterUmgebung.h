#pragma once
// A program folder of its own, the real start-up, and a window whose message boxes and file
// dialogs are answered by the test instead of a user.
#include "app/CStart.h"
#include "model/Datei.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"
#include "ui/frmLyrabo.h"

// The controls the tests look up by name.
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lyrabo::test {

struct Nachricht {
    QMessageBox::Icon icon;
    QString text;
    QMessageBox::StandardButtons knoepfe;
};

// A small song: track 1 tempo 120 and 3/4, track 2 a melody of g' to d'' (fits the harp),
// track 3 a bass line down to great G (43), below the lowest string. The melody has what each
// option acts on: a dotted-quarter rest, an eighth off the beat, a chord, a last bar not filled.
inline MidiBauer liedMitDreiSpuren() {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000).taktart(0, 3, 2);
    auto& melodie = lied.spur().name("Melodie");
    for (int ton : {67, 69, 71, 72}) melodie.note(0, ton, 480);
    melodie.note(720, 74, 240).an(0, 1, 72).an(0, 1, 69).aus(960, 1, 72).aus(0, 1, 69);
    for (int ton : {71, 69, 67}) melodie.note(0, ton, 480);
    auto& bass = lied.spur().name("Bass");
    for (int ton : {43, 50, 55, 47, 50, 43}) bass.note(0, ton, 960);
    return lied;
}

class FensterUmgebung {
public:
    FensterUmgebung() {
        namespace fs = std::filesystem;
        for (const char* sub : {"data", "ini", "lieder"}) fs::create_directories(m_ordner / sub);
        fs::copy(fs::path(LYRABO_BIN_DIR) / "ini", m_ordner / "ini", fs::copy_options::recursive);
        fs::copy(fs::path(LYRABO_BIN_DIR) / "data" / "schriften", m_ordner / "data" / "schriften", fs::copy_options::recursive);
    }

    void starten() { starten(m_ordner.pfad()); }
    void starten(const ProgrammOrte& orte) {
        m_start = std::make_unique<CStart>(orte);
        fenster().setNachrichtAntwort([this](QMessageBox::Icon icon, const QString& text, QMessageBox::StandardButtons k) {
            nachrichten.push_back({icon, text, k});
            return (k & (QMessageBox::Cancel | QMessageBox::No)) ? frageAntwort : QMessageBox::Ok;
        });
        fenster().setDialogAntwort([this](bool, const QString&, const QString&) {
            if (dialogAntworten.empty()) return std::optional<QString>();
            const auto antwort = dialogAntworten.front();
            dialogAntworten.pop_front();
            return antwort;
        });
    }
    // Writes the song, starts the program and opens the song through the menu.
    std::filesystem::path startenMit(const MidiBauer& bauer, const std::string& name = "lied.mid") {
        const auto pfad = bauer.schreiben(m_ordner / "lieder" / name);
        starten();
        oeffnen(pfad);
        return pfad;
    }

    const std::filesystem::path& ordner() const { return m_ordner.pfad(); }
    std::filesystem::path userDaten() const { return m_ordner / "data" / "LYRABO_user.ini"; }
    CStart& start() { return *m_start; }
    frmLyrabo& fenster() { return m_start->Fenster(); }
    CProgramm& programm() { return m_start->Programm(); }
    CEinstellungen& einstellungen() { return programm().Einstellungen(); }

    // A control by its name, and for arrays by its index.
    template <typename W>
    W* el(const char* name, int index = -1) {
        for (W* w : fenster().findChildren<W*>(QString::fromLatin1(name)))
            if (index < 0 || w->property("Index").toInt() == index) return w;
        ADD_FAILURE() << "kein Element " << name << "(" << index << ")";
        return nullptr;
    }
    QAction* menue(const char* name) { return el<QAction>(name); }

    // Opens a file as the user does: the menu entry, then the file chosen in the dialog.
    void oeffnen(const std::filesystem::path& pfad) {
        dialogAntworten.push_back(QString::fromStdString(pfad.string()));
        menue("FileOpen")->trigger();
    }

    std::vector<Nachricht> nachrichten;
    QMessageBox::StandardButton frageAntwort = QMessageBox::Cancel;
    std::deque<std::optional<QString>> dialogAntworten;

private:
    TestOrdner m_ordner;
    std::unique_ptr<CStart> m_start;
};

} // namespace lyrabo::test

// Failures print texts, not code units.
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
