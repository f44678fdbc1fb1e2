// lyrabo-cli: the converter without a window, for batch work and scripts.
#include "cli/Aufruf.h"
#include "cli/Kommandozeile.h"
#include "cli/ProgrammOrdner.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#ifdef LYRABO_MIT_BLATT
#include <QGuiApplication>
#endif

#ifdef _WIN32
#include <windows.h>
#endif

int main(int argc, char** argv) {
    using namespace lyrabo::cli;
#ifdef _WIN32
    // Messages and reports are UTF-8 inside the program.
    SetConsoleOutputCP(CP_UTF8);
#endif
    std::vector<std::string> argumente(argv + 1, argv + argc);
    CAufruf aufruf;
    try {
        aufruf = aufrufLesen(argumente);
    } catch (const AufrufFehler& f) {
        std::cerr << "lyrabo-cli: " << f.what() << "\n"
                  << "Hilfe: lyrabo-cli --help" << std::endl;
        return kFalscherAufruf;
    }
    if (aufruf.befehl == Befehl::Hilfe) {
        std::cout << hilfeText() << std::flush;
        return kFertig;
    }
#ifdef LYRABO_MIT_BLATT
    // The sheet writers need Qt's graphics; a console run has no window, so on Linux Qt's offscreen
    // platform stands in when no display is named (a set QT_QPA_PLATFORM is left alone).
    int qtArgc = 1;
    char* qtArgv[] = {argv[0], nullptr};
    std::unique_ptr<QGuiApplication> qt;
    if (aufruf.willBlatt()) {
        // Qt's own notes (English, for developers) would mix with the program's German messages.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
            qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
        qt = std::make_unique<QGuiApplication>(qtArgc, qtArgv);
    }
#endif
    try {
        CKommandozeile kommandozeile(programmOrdner(argc > 0 ? argv[0] : nullptr), std::cout, std::cerr);
        return kommandozeile.ausfuehren(aufruf);
    } catch (const std::exception&) {
        // A library's English text means nothing to the user.
        std::cerr << "lyrabo-cli: Unerwarteter Fehler, der Aufruf wurde abgebrochen." << std::endl;
        return kKonvertierungFehler;
    }
}
