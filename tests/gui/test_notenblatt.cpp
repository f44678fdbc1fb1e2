// The note sheet in the window: the view follows every change, the menu's PDF is the command
// line's, printing keeps the size, dropped files, and the notes lit while the music plays.
#include "FensterUmgebung.h"

#include "blattmaler/BlattMaler.h"
#include "settings/BlattDaten.h"
#include "ui/BlattAnsicht.h"
#include "ui/BlattBereich.h"
#include "ui/MidiAblage.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QMimeData>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollBar>
#include <QUrl>

#include <functional>

namespace lyrabo::test {
namespace {

using Bedienung = std::function<void(FensterUmgebung&)>;

BlattAnsicht& ansicht(FensterUmgebung& u) { return u.fenster().blattBereich().ansicht(); }
QImage bild(FensterUmgebung& u) { return ansicht(u).viewport()->grab().toImage(); }
// The notes the view lights up while the player stands at `tick`.
std::vector<int> leuchtetBei(FensterUmgebung& u, int32_t tick) {
    u.fenster().blattBereich().wiedergabePosition(tick);
    std::vector<int> an;
    const auto& licht = ansicht(u).hervorgehoben();
    for (size_t i = 0; i < licht.size(); ++i)
        if (licht[i]) an.push_back(int(i));
    return an;
}

Bedienung klick(const char* name, int index = -1) {
    return [=](FensterUmgebung& u) { u.el<QAbstractButton>(name, index)->click(); };
}
Bedienung mischen(std::vector<int> spuren) {
    return [=](FensterUmgebung& u) {
        for (int s : spuren) u.el<QCheckBox>("chSpurMischen", s)->click();
        u.el<QPushButton>("cmdSpurenMischen")->click();
    };
}
Bedienung spur(int zeile) {
    return [=](FensterUmgebung& u) { u.el<QListWidget>("TrackList")->setCurrentRow(zeile); };
}
template <typename W, typename V>
Bedienung setzen(const char* name, void (W::*setter)(V), V wert) {
    return [=](FensterUmgebung& u) { (u.el<W>(name)->*setter)(wert); };
}
Bedienung nacheinander(std::vector<Bedienung> schritte) {
    return [=](FensterUmgebung& u) {
        for (const auto& s : schritte) s(u);
    };
}

std::string lesen(const std::filesystem::path& p) { return dateiLesen(p); }

QString ausfuehren(const QString& programm, const QStringList& argumente) {
    QProcess p;
    p.start(programm, argumente);
    EXPECT_TRUE(p.waitForFinished(60000)) << programm.toStdString();
    EXPECT_EQ(p.exitCode(), 0) << programm.toStdString() << ": " << p.readAllStandardError().toStdString();
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The paper ("A4 quer") and the page count, as poppler reads the file.
std::pair<QString, int> pdfSeiten(const std::filesystem::path& pdf) {
    const QString info = ausfuehren(QStringLiteral("pdfinfo"), {QString::fromStdString(pdf.string())});
    const auto g = QRegularExpression(QStringLiteral("Page size:\\s+([\\d.]+) x ([\\d.]+) pts \\((\\w+)\\)")).match(info);
    const auto seiten = QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)")).match(info);
    const bool quer = g.captured(1).toDouble() > g.captured(2).toDouble();
    return {g.captured(3) + (quer ? QStringLiteral(" quer") : QStringLiteral(" hoch")), seiten.captured(1).toInt()};
}

// Every word of page 1 with its box in points, as poppler places it.
QStringList woerter(const std::filesystem::path& pdf) {
    const QString html = ausfuehren(QStringLiteral("pdftotext"),
                                    {QStringLiteral("-bbox"), QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
                                     QStringLiteral("1"), QString::fromStdString(pdf.string()), QStringLiteral("-")});
    QStringList w;
    QRegularExpression wort(QStringLiteral("xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" yMax=\"([\\d.]+)\">([^<]*)<"));
    for (auto it = wort.globalMatch(html); it.hasNext();) {
        auto m = it.next();
        // A tenth of a point is far below what a printer or an eye tells apart.
        w << QStringLiteral("%1 %2 %3").arg(m.captured(5)).arg(std::lround(m.captured(1).toDouble() * 10)).arg(std::lround(m.captured(2).toDouble() * 10));
    }
    return w;
}

// Each step changes the sheet: the view shows a new picture (page width kept); the slider
// alone never converts, so the harp-event text stays.
TEST(Notenblatt, AnsichtZeichnetNachJederAenderungNeu) {
    FensterUmgebung u;
    u.startenMit(liedMitDreiSpuren());
    EXPECT_EQ(u.el<QTabWidget>("tabAnsichten")->currentWidget()->objectName(), QStringLiteral("frameNotenblatt"));
    const std::string userDaten = lesen(u.userDaten());
    struct Schritt {
        const char* was;
        Bedienung bedienen;
        double seitenBreite;
    };
    const Schritt schritte[] = {
        {"geladen", [](FensterUmgebung&) {}, 420},
        {"A4", setzen<QComboBox, int>("comboPapier", &QComboBox::setCurrentIndex, 0), 297},
        {"hoch", klick("opHochformat"), 210},
        {"Saitenabstand", setzen<QDoubleSpinBox, double>("spinSaitenabstand", &QDoubleSpinBox::setValue, 12.0), 210},
        {"mm je Viertel", setzen<QDoubleSpinBox, double>("spinMmProViertel", &QDoubleSpinBox::setValue, 9.0), 210},
        {"ohne Melodielinie", klick("chMelodieLinie"), 210},
        {"Transposition", setzen<QSlider, int>("hsTranspo", &QSlider::setValue, 5), 210},
        {"Mischung", mischen({2, 3}), 210},
        {"25 Saiten", [](FensterUmgebung& f) { f.menue("m37SaitenHarfe")->trigger(); }, 297},
    };
    QImage vorher;
    std::string text = u.fenster().klangNotenText();
    for (const Schritt& s : schritte) {
        s.bedienen(u);
        const QImage jetzt = bild(u);
        EXPECT_NE(jetzt, vorher) << s.was;
        ASSERT_FALSE(ansicht(u).blatt().seiten.empty()) << s.was;
        EXPECT_DOUBLE_EQ(ansicht(u).blatt().seiten.front().breite, s.seitenBreite) << s.was;
        if (std::string(s.was) == "Transposition") {
            EXPECT_EQ(u.fenster().klangNotenText(), text);
        }
        vorher = jetzt;
        text = u.fenster().klangNotenText();
    }
    // The layout's switches, kept like the others for the harp shown, now 25 strings (what they
    // change on the sheet the layout's tests check).
    for (const char* name : {"chEinpassen", "chKurzePausen", "chWiederholungen"}) klick(name)(u);
    setzen<QComboBox, int>("comboNotenform", &QComboBox::setCurrentIndex, 1)(u);
    // Every change was kept in the sheet's own file; the user settings file is as it was.
    BlattDaten erwartet;
    erwartet.saiten25.einpassen = erwartet.saiten25.kurzePausenSchliessen = false;
    erwartet.saiten25.wiederholungenZusammenfassen = false;
    erwartet.saiten25.notenform = blatt::Notenform::Hals;
    erwartet.saiten37.papier = blatt::Papier::A4;
    erwartet.saiten37.quer = false;
    erwartet.saiten37.saitenAbstand = 12;
    erwartet.saiten37.mmProViertel = 9;
    erwartet.saiten37.melodieLinie = false;
    EXPECT_EQ(blattDatenText(blattDatenLesen(u.ordner())), blattDatenText(erwartet));
    EXPECT_EQ(lesen(u.userDaten()), userDaten);
}

#ifdef LYRABO_CLI
// The menu's PDF has the bytes lyrabo-cli writes for the same track (or mix) and settings; the
// rows build on each other as a user would go on.
TEST(Notenblatt, PdfAusDemMenueIstDasDerKommandozeile) {
    FensterUmgebung u;
    const auto lied = u.startenMit(liedMitDreiSpuren());
    const QString l = QString::fromStdString(lied.string());
    const QStringList a4hoch{"--papier", "A4", "--hoch", "--saitenabstand", "12", "--transpo", "12"};
    struct Fall {
        const char* was;
        Bedienung bedienen;
        QStringList cli;
    };
    const Fall faelle[] = {
        {"Spur 2", [](FensterUmgebung&) {}, {"convert", l, "--spur", "2"}},
        {"Spur 3 auf A4 hoch, transponiert",
         nacheinander({spur(2), setzen<QComboBox, int>("comboPapier", &QComboBox::setCurrentIndex, 0), klick("opHochformat"),
                       setzen<QDoubleSpinBox, double>("spinSaitenabstand", &QDoubleSpinBox::setValue, 12.0),
                       setzen<QSlider, int>("hsTranspo", &QSlider::setValue, 12)}),
         QStringList{"convert", l, "--spur", "3"} + a4hoch},
        {"Mischung", mischen({2, 3}), QStringList{"mix", l, "--spuren", "2,3"} + a4hoch},
        {"25 Saiten", nacheinander({[](FensterUmgebung& f) { f.menue("m37SaitenHarfe")->trigger(); }, spur(1)}),
         {"convert", l, "--spur", "2", "--saiten", "25", "--transpo", "12"}},
    };
    int nr = 0;
    for (const Fall& f : faelle) {
        f.bedienen(u);
        const auto fenster = u.ordner() / ("fenster" + std::to_string(++nr) + ".pdf");
        const auto cli = u.ordner() / ("cli" + std::to_string(nr) + ".pdf");
        u.dialogAntworten.push_back(QString::fromStdString(fenster.string()));
        u.menue("mBlattAlsPdf")->trigger();
        ausfuehren(QStringLiteral(LYRABO_CLI), f.cli + QStringList{"--pdf", QString::fromStdString(cli.string())});
        ASSERT_TRUE(std::filesystem::exists(fenster)) << f.was;
        EXPECT_TRUE(lesen(fenster) == lesen(cli)) << f.was;
    }

    // SVG from the menu: the command line's files, one per page.
    const auto svg = u.ordner() / "fenster.svg", cliSvg = u.ordner() / "cli.svg";
    u.dialogAntworten.push_back(QString::fromStdString((u.ordner() / "fenster").string()));
    u.menue("mBlattAlsSvg")->trigger();
    ausfuehren(QStringLiteral(LYRABO_CLI), faelle[3].cli + QStringList{"--svg", QString::fromStdString(cliSvg.string())});
    const size_t seiten = ansicht(u).blatt().seiten.size();
    for (size_t i = 0; i < seiten; ++i) {
        ASSERT_TRUE(std::filesystem::exists(blatt::svgDateien(svg, seiten)[i]));
        EXPECT_TRUE(lesen(blatt::svgDateien(svg, seiten)[i]) == lesen(blatt::svgDateien(cliSvg, seiten)[i]));
    }

    // An existing file is replaced only when the user says so; a folder that is not there gets
    // a German message and no file.
    u.nachrichten.clear();
    const auto erstes = u.ordner() / "fenster1.pdf";
    const std::string alt = lesen(erstes);
    u.frageAntwort = QMessageBox::No;
    u.dialogAntworten.push_back(QString::fromStdString(erstes.string()));
    u.menue("mBlattAlsPdf")->trigger();
    EXPECT_EQ(lesen(erstes), alt);
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten.back().text, QStringLiteral("Die Datei „fenster1.pdf“ gibt es schon.\nSoll sie ersetzt werden?"));
    u.dialogAntworten.push_back(QString::fromStdString((u.ordner() / "fehlt" / "x.pdf").string()));
    u.menue("mBlattAlsPdf")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 2u);
    EXPECT_TRUE(u.nachrichten.back().text.startsWith(QStringLiteral("Das Notenblatt „x.pdf“")) ||
                u.nachrichten.back().text.startsWith(QStringLiteral("Das Notenblatt \"x.pdf\"")))
        << u.nachrichten.back().text.toStdString();
    EXPECT_FALSE(std::filesystem::exists(u.ordner() / "fehlt"));
}
#endif

// Printed on a PDF printer the pages have the sheet's paper and every word lies where the saved
// PDF has it: 100 %. A paper too small for the sheet is said, and the strips fit it.
TEST(Notenblatt, DruckInOriginalgroesseOderInStreifen) {
    FensterUmgebung u;
    u.startenMit(liedMitDreiSpuren());
    const auto gespeichert = u.ordner() / "blatt.pdf";
    ASSERT_EQ(u.fenster().blattBereich().pdfSchreiben(gespeichert), "");
    const int seiten = int(ansicht(u).blatt().seiten.size());
    struct Fall {
        const char* was;
        bool a4;  // A4 across chosen in the print dialog for the A3 sheet
        QMessageBox::StandardButton antwort;
        const char* papier;  // as pdfinfo names it; nullptr: nothing printed
        bool streifen;
    };
    const Fall faelle[] = {
        {"wie gesetzt", false, QMessageBox::Cancel, "A3 quer", false},
        {"A4, Streifen", true, QMessageBox::Yes, "A4 quer", true},
        {"A4, abgebrochen", true, QMessageBox::Cancel, nullptr, false},
    };
    int nr = 0;
    for (const Fall& f : faelle) {
        const auto ziel = u.ordner() / ("druck" + std::to_string(++nr) + ".pdf");
        u.fenster().blattBereich().setDruckerAntwort([&](QPrinter& drucker) {
            drucker.setOutputFormat(QPrinter::PdfFormat);
            drucker.setOutputFileName(QString::fromStdString(ziel.string()));
            if (f.a4) drucker.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF()));
            return true;
        });
        u.frageAntwort = f.antwort;
        u.nachrichten.clear();
        u.menue("mBlattDrucken")->trigger();
        EXPECT_EQ(u.nachrichten.size(), f.a4 ? 1u : 0u) << f.was << (u.nachrichten.empty() ? "" : u.nachrichten.front().text.toStdString());
        if (!f.papier) {
            EXPECT_FALSE(std::filesystem::exists(ziel)) << f.was;
            continue;
        }
        const auto [papier, anzahl] = pdfSeiten(ziel);
        EXPECT_EQ(papier, QString::fromLatin1(f.papier)) << f.was;
        if (f.streifen) EXPECT_GT(anzahl, seiten) << f.was;
        else EXPECT_EQ(woerter(ziel), woerter(gespeichert)) << f.was;
    }
}

// A MIDI file dropped on the window opens as through the menu; anything else is told off.
TEST(Notenblatt, AbgelegteDateien) {
    FensterUmgebung u;
    u.starten();
    const auto lied = liedMitDreiSpuren().schreiben(u.ordner() / "lieder" / "Lied.MID");
    const auto notiz = u.ordner() / "notiz.txt";
    dateiErsetzen(notiz, "keine Noten");
    struct Fall {
        std::filesystem::path datei;
        int spuren;
        QString meldung;
    };
    const Fall faelle[] = {
        {notiz, 0, MidiAblage::keineMidiDatei(QStringLiteral("notiz.txt"))},
        {lied, 3, {}},
    };
    for (const Fall& f : faelle) {
        u.nachrichten.clear();
        QMimeData daten;
        daten.setUrls({QUrl::fromLocalFile(QString::fromStdString(f.datei.string()))});
        QDragEnterEvent zug(QPoint(200, 200), Qt::CopyAction, &daten, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&u.fenster(), &zug);
        EXPECT_TRUE(zug.isAccepted());
        QDropEvent ablage(QPointF(200, 200), Qt::CopyAction, &daten, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&u.fenster(), &ablage);
        EXPECT_EQ(u.el<QListWidget>("TrackList")->count(), f.spuren) << f.datei;
        EXPECT_EQ(u.nachrichten.empty() ? QString() : u.nachrichten.front().text, f.meldung) << f.datei;
    }
    EXPECT_TRUE(u.fenster().blattBereich().hatStueck());
    EXPECT_EQ(u.programm().Midifile1.filename(), lied.string());
}

// While the music plays, the notes sounding at the player's tick are lit (the file's onset may
// lie a little before the quantised one); stopping puts the light out.
TEST(Notenblatt, WiedergabeLeuchtetDieKlingendenNotenAuf) {
    FensterUmgebung u;
    u.startenMit(liedMitDreiSpuren());
    auto& bereich = u.fenster().blattBereich();
    const struct {
        int32_t tick;
        std::vector<int> an;
    } faelle[] = {
        {0, {0}}, {470, {1}}, {890, {1}}, {959, {2}}, {1500, {3}}, {2640, {4}}, {2900, {5, 6}},
    };
    for (const auto& f : faelle) EXPECT_EQ(leuchtetBei(u, f.tick), f.an) << f.tick;
    // At 100 % the page is taller than the view: the last bar scrolls into sight.
    ansicht(u).prozent(100);
    ansicht(u).verticalScrollBar()->setValue(0);
    bereich.wiedergabePosition(4800);
    EXPECT_GT(ansicht(u).verticalScrollBar()->value(), 0);
    bereich.wiedergabeAus();
    EXPECT_TRUE(ansicht(u).hervorgehoben().empty());
}

// A tune played A B A B C is drawn A B C: the second pass lights the notes of the first.
TEST(Notenblatt, WiederholungLeuchtetImZweitenDurchgang) {
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000).taktart(0, 4, 2);
    auto& melodie = lied.spur().name("Melodie");
    const int takte[2][4] = {{60, 62, 64, 65}, {67, 65, 64, 62}};
    for (int t = 0; t < 4; ++t)
        for (int ton : takte[t % 2]) melodie.note(0, ton, 480);
    melodie.note(0, 72, 1920);
    FensterUmgebung u;
    u.startenMit(lied);
    const struct {
        int32_t tick;
        std::vector<int> an;
    } faelle[] = {{10, {0}}, {3850, {0}}, {6250, {5}}, {7690, {8}}};
    for (const auto& f : faelle) EXPECT_EQ(leuchtetBei(u, f.tick), f.an) << f.tick;
}

} // namespace
} // namespace lyrabo::test
