// The window program: start-up, then either the automatic run from the clipboard or the window,
// with the file named on the command line opened in it.
#include "app/CStart.h"
#include "orte/OrteQt.h"

#include <QApplication>
#include <QClipboard>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lyrabo"));
    QApplication::setApplicationVersion(QStringLiteral(LYRABO_VERSION));

    lyrabo::CStart start(lyrabo::orteDesProgramms(lyrabo::exeOrdner(argc > 0 ? argv[0] : nullptr)));
    const auto zwischenablage = QGuiApplication::clipboard()->text().toStdString();
    if (start.aufrufAusfuehren(QCoreApplication::arguments().mid(1), zwischenablage)) return 0;
    return app.exec();
}
