// The window program: start-up, then either the automatic run from the clipboard or the window.
#include "app/CStart.h"

#include <QApplication>
#include <QClipboard>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lyrabo"));
    QApplication::setApplicationVersion(QStringLiteral(LYRABO_VERSION));

    lyrabo::CStart start(lyrabo::CStart::programmOrdner());
    if (start.automatischerLauf(QGuiApplication::clipboard()->text().toStdString())) return 0;
    return app.exec();
}
