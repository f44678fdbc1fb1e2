#pragma once
// The file that is open and the ones before it: the window title names the open file
// ("lied.mid – Lyrabo"), and Datei → Zuletzt geöffnet lists the last eight, newest first.
#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <vector>

class QMainWindow;
class QMenu;

namespace lyrabo {

class CProgramm;

class ZuletztMenue : public QObject {
public:
    // Adds the submenu to `datei`. `oeffnen` opens a path the way the open dialog would,
    // `meldung` tells the user something.
    ZuletztMenue(QMainWindow& fenster, CProgramm& programm, QMenu* datei,
                 std::function<void(const QString&)> oeffnen, std::function<void(const QString&)> meldung);

    // After an attempt to open a file: the title follows what the reader holds, and a file that
    // was loaded heads the list.
    void nachDemOeffnen(bool geladen);

    QMenu* menue() const { return m_menue; }
    // The window title for the open file (UTF-8 path; empty when none).
    static QString titel(const std::string& datei);
    // The message for a listed file that is gone.
    static QString gibtEsNichtMehr(const QString& pfad);

private:
    void auswaehlen(const QString& pfad);
    void liste(std::vector<std::string> neu);
    void menueFuellen();

    QMainWindow& m_fenster;
    CProgramm& m_programm;
    QMenu* m_menue;
    std::function<void(const QString&)> m_oeffnen;
    std::function<void(const QString&)> m_meldung;
    std::vector<std::string> m_liste;
};

} // namespace lyrabo
