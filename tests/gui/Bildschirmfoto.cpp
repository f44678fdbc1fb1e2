// Takes the README's picture of the window: a folk-song melody opened and converted, the window
// grabbed as it draws itself. Run under a real (virtual) X server: scripts/bildschirmfoto.sh.
#include "app/CStart.h"
#include "app/core/CProgramm.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"
#include "ui/BlattBereich.h"
#include "ui/frmLyrabo.h"

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>

#include <cstdio>
#include <filesystem>

namespace {

// "Freude, schöner Götterfunken" in D major with the first verse, a tempo track and a bass line.
lyrabo::test::MidiBauer freude() {
    lyrabo::test::MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000).taktart(0, 4, 2);
    auto& melodie = lied.spur().name("Freude, schöner Götterfunken");
    const int viertel = 480;
    const int haelfte[] = {66, 66, 67, 69, 69, 67, 66, 64, 62, 62, 64, 66};
    static const char* const text[2][15] = {
        {"Freu", "de,", "schö", "ner", "Göt", "ter", "fun", "ken,", "Toch", "ter", "aus", "E", "ly", "si", "um,"},
        {"wir", "be", "tre", "ten", "feu", "er", "trun", "ken,", "Himm", "li", "sche,", "dein", "Hei", "lig", "tum!"}};
    for (int runde = 0; runde < 2; ++runde) {
        int silbe = 0;
        for (int ton : haelfte) melodie.lyric(0, text[runde][silbe++]).note(0, ton, viertel);
        const int schluss = runde == 0 ? 64 : 62;
        melodie.lyric(0, text[runde][silbe++]).note(0, runde == 0 ? 66 : 64, 720);
        melodie.lyric(0, text[runde][silbe++]).note(0, schluss, 240);
        melodie.lyric(0, text[runde][silbe++]).note(0, schluss, 960);
    }
    auto& bass = lied.spur().name("Begleitung");
    for (int ton : {50, 45, 50, 45, 50, 45, 45, 50}) bass.note(0, ton, 1920);
    return lied;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lyrabo"));
    const QString ziel = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/fenster.png");
    // Optionally another options page (1 to 7), "ereignisse" for the event list, "vorschau" for
    // the print preview of the sheet or "begleitung" for the sheet page with the bass ticked.
    const QString ansicht = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();

    lyrabo::test::TestOrdner ordner;
    std::filesystem::create_directories(ordner / "data");
    std::filesystem::copy(std::filesystem::path(LYRABO_BIN_DIR) / "ini", ordner / "ini",
                          std::filesystem::copy_options::recursive);
    std::filesystem::copy(std::filesystem::path(LYRABO_BIN_DIR) / "data" / "schriften", ordner / "data" / "schriften",
                          std::filesystem::copy_options::recursive);
    const auto lied = freude().schreiben(ordner / "Freude.mid");

    lyrabo::CStart start(ordner.pfad());
    lyrabo::frmLyrabo& fenster = start.Fenster();
    fenster.setGeometry(0, 0, 1366, 740);
    start.Programm().Einstellungen().MIDIFilePath(lied.string());
    if (!fenster.sicher([&] { start.Programm().openMIDIFile(2); })) return 1;

    if (ansicht == QStringLiteral("ereignisse")) {
        fenster.findChild<QAction*>(QStringLiteral("mShowMIDIEvents"))->trigger();
    } else if (ansicht == QStringLiteral("begleitung")) {
        for (auto* knopf : fenster.findChildren<QPushButton*>(QStringLiteral("cmdEbene")))
            if (knopf->property("Index").toInt() == 7) knopf->click();
        auto* liste = fenster.findChild<QListWidget*>(QStringLiteral("listBegleitung"));
        liste->item(liste->count() - 1)->setCheckState(Qt::Checked);
    } else if (!ansicht.isEmpty()) {
        for (auto* knopf : fenster.findChildren<QPushButton*>(QStringLiteral("cmdEbene")))
            if (knopf->property("Index").toString() == ansicht) knopf->click();
    }

    int ergebnis = 0;
    auto speichern = [&](QWidget& w) {
        if (!w.grab().save(ziel)) {
            std::fprintf(stderr, "Konnte %s nicht schreiben.\n", qPrintable(ziel));
            ergebnis = 1;
        }
    };
    if (ansicht == QStringLiteral("vorschau")) {
        // The preview is modal: it is grabbed and closed from inside its own event loop.
        QTimer::singleShot(1500, &app, [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog) {
                speichern(*dialog);
                dialog->close();
            } else {
                std::fprintf(stderr, "Keine Druckvorschau offen.\n");
                ergebnis = 1;
            }
        });
        fenster.blattBereich().druckVorschau();
        return ergebnis;
    }
    QTimer::singleShot(800, &app, [&] {
        speichern(fenster);
        app.quit();
    });
    app.exec();
    return ergebnis;
}
