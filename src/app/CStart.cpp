#include "app/CStart.h"

#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "settings/Takte.h"
#include "ui/frmLyrabo.h"

#include <QCoreApplication>
#include <QFile>

namespace lyrabo {

CStart::CStart(std::filesystem::path programmOrdner)
    : m_fenster(std::make_unique<frmLyrabo>(std::move(programmOrdner))) {
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

std::filesystem::path CStart::programmOrdner() {
    const QString ordner = QCoreApplication::applicationDirPath();
#ifdef _WIN32
    return std::filesystem::path(ordner.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(ordner).toStdString());
#endif
}

} // namespace lyrabo
