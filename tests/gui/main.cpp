// The widget tests need a QApplication; without a display they run on the offscreen platform.
#include <QApplication>

#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The offscreen platform reports every window feature it lacks; those lines say nothing here.
    qInstallMessageHandler([](QtMsgType typ, const QMessageLogContext& kontext, const QString& text) {
        if (!text.startsWith(QStringLiteral("This plugin does not support")) &&
            !text.startsWith(QStringLiteral("QStandardPaths: XDG_RUNTIME_DIR")))
            std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(typ, kontext, text)));
    });
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lyrabo"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
