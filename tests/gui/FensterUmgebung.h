#pragma once
// A program folder of its own, the real start-up, and a window whose message boxes and file
// dialogs are answered by the test instead of a user.
#include "app/CStart.h"
#include "app/core/CProgramm.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"
#include "ui/frmLyrabo.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace lyrabo::test {

struct Nachricht {
    QMessageBox::Icon icon;
    QString text;
    QMessageBox::StandardButtons knoepfe;
};

struct DialogAufruf {
    bool speichern;
    QString startOrdner;
    QString filter;
};

inline std::string dateiInhalt(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// A small song: track 1 tempo 120 and 3/4, track 2 a melody of g' to d'' (fits the harp),
// track 3 a bass line down to great G (43), below the lowest string.
inline MidiBauer liedMitDreiSpuren() {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000).taktart(0, 3, 2);
    auto& melodie = lied.spur().name("Melodie");
    for (int ton : {67, 69, 71, 72, 74, 72, 71, 69, 67, 67}) melodie.note(0, ton, 480);
    melodie.note(0, 74, 960).note(0, 72, 480);
    auto& bass = lied.spur().name("Bass");
    for (int ton : {43, 50, 55, 47, 50, 43}) bass.note(0, ton, 960);
    return lied;
}

class FensterUmgebung {
public:
    explicit FensterUmgebung(bool mitVorlagen = true) {
        std::filesystem::create_directories(m_ordner / "data");
        std::filesystem::create_directories(m_ordner / "ini");
        std::filesystem::create_directories(m_ordner / "lieder");
        if (mitVorlagen) {
            const std::filesystem::path vorlagen = std::filesystem::path(LYRABO_BIN_DIR) / "ini";
            if (std::filesystem::exists(vorlagen))
                std::filesystem::copy(vorlagen, m_ordner / "ini", std::filesystem::copy_options::recursive |
                                                                     std::filesystem::copy_options::overwrite_existing);
        }
    }

    void starten() {
        m_start = std::make_unique<CStart>(m_ordner.pfad());
        fenster().setNachrichtAntwort([this](QMessageBox::Icon icon, const QString& text, QMessageBox::StandardButtons k) {
            nachrichten.push_back({icon, text, k});
            if (k & QMessageBox::Cancel) return frageAntwort;
            return QMessageBox::Ok;
        });
        fenster().setDialogAntwort([this](bool speichern, const QString& start, const QString& filter) {
            dialogAufrufe.push_back({speichern, start, filter});
            std::optional<QString> antwort;
            if (!dialogAntworten.empty()) {
                antwort = dialogAntworten.front();
                dialogAntworten.pop_front();
            }
            return antwort;
        });
    }

    const std::filesystem::path& ordner() const { return m_ordner.pfad(); }
    CStart& start() { return *m_start; }
    frmLyrabo& fenster() { return m_start->Fenster(); }
    CProgramm& programm() { return m_start->Programm(); }
    CEinstellungen& einstellungen() { return programm().Einstellungen(); }

    // A control by its name, and for arrays by its index.
    template <typename W>
    W* el(const char* name, int index = -1) {
        for (W* w : fenster().findChildren<W*>(QString::fromLatin1(name))) {
            if (index < 0 || w->property("Index").toInt() == index) return w;
        }
        ADD_FAILURE() << "kein Element " << name << "(" << index << ")";
        return nullptr;
    }
    QAction* menue(const char* name) { return el<QAction>(name); }

    std::filesystem::path lied(const std::string& name, const MidiBauer& bauer) {
        return bauer.schreiben(m_ordner / "lieder" / name);
    }
    std::filesystem::path datei(const std::string& name, const std::string& inhalt) {
        const auto pfad = m_ordner / "lieder" / name;
        std::ofstream(pfad, std::ios::binary) << inhalt;
        return pfad;
    }

    // Opens a file as the user does: the menu entry, then the file chosen in the dialog.
    void oeffnen(const std::filesystem::path& pfad) {
        dialogAntworten.push_back(QString::fromStdString(pfad.string()));
        menue("FileOpen")->trigger();
    }

    std::vector<Nachricht> nachrichten;
    QMessageBox::StandardButton frageAntwort = QMessageBox::Cancel;
    std::deque<std::optional<QString>> dialogAntworten;
    std::vector<DialogAufruf> dialogAufrufe;

private:
    TestOrdner m_ordner;
    std::unique_ptr<CStart> m_start;
};

} // namespace lyrabo::test

// Failures print texts, not code units.
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
