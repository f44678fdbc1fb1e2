// The widget tests need a QApplication; without a display they run on the offscreen platform.
#include <QApplication>

#include <gtest/gtest.h>

namespace {

// The offscreen platform reports every window feature it lacks; those lines say nothing here.
void meldungenFiltern(QtMsgType typ, const QMessageLogContext& kontext, const QString& text) {
    if (text.startsWith(QStringLiteral("This plugin does not support"))) return;
    if (text.startsWith(QStringLiteral("QStandardPaths: XDG_RUNTIME_DIR"))) return;
    fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(typ, kontext, text)));
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(meldungenFiltern);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lyrabo"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
