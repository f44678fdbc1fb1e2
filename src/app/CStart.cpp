#include "app/CStart.h"

#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "settings/Takte.h"
#include "ui/MidiAblage.h"
#include "ui/frmLyrabo.h"

#include <QFileInfo>
#include <QUrl>

namespace lyrabo {

CStart::CStart(ProgrammOrte orte) : m_fenster(std::make_unique<frmLyrabo>(std::move(orte))) {
    initGlobals();                  // refreshes the window when the user settings were read
    m_fenster->spaltenLabelsAnlegen();  // the window's first use loads it, if the refresh did not
    m_fenster->Unterdrueckung(true);
    m_fenster->schriftenFuellen();
    m_fenster->Unterdrueckung(false);
    m_fenster->show();
}

CStart::~CStart() = default;

void CStart::initGlobals() {
    m_fenster->programm().initGlobals();
    m_fenster->zeichenTabellenZeigen();
}

CProgramm& CStart::Programm() { return m_fenster->programm(); }

bool CStart::automatischerLauf(const std::string& zwischenablage) {
    CProgramm& programm = Programm();
    programm.Einstellungen().MIDIFilePath(KommandoAusZwischenablage(zwischenablage));
    if (programm.Einstellungen().MIDIFilePath().empty()) return false;

    programm.Einstellungen().AutoRun(true);
    m_fenster->sicher([&programm] {
        programm.openMIDIFile(2);
        programm.Einstellungen().SpurSelected()->Item(1)->Value(1);
        programm.KLNCreator().spurenMischen();
    });
    m_fenster->programmBeenden();
    return true;
}

bool CStart::aufrufAusfuehren(const QStringList& argumente, const std::string& zwischenablage) {
    if (automatischerLauf(zwischenablage)) return true;
    const QString datei = dateiAusArgumenten(argumente);
    if (!datei.isEmpty())
        MidiAblage::annehmen(
            datei, [this](const QString& pfad) { m_fenster->abgelegtOeffnen(pfad); },
            [this](const QString& text) { m_fenster->nachricht(QMessageBox::Information, text); });
    return false;
}

QString CStart::dateiAusArgumenten(const QStringList& argumente) {
    for (const QString& a : argumente) {
        if (a.isEmpty() || a.startsWith(QLatin1Char('-'))) continue;
        const QUrl url(a);
        const QString pfad = url.isLocalFile() ? url.toLocalFile() : a;
        return QFileInfo(pfad).absoluteFilePath();
    }
    return {};
}

} // namespace lyrabo
