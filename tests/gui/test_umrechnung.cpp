// What the window computes: the harp-event text, which for the same file, track and options is
// what lyrabo-cli writes (in Windows-1252), the string-column colours, and the text put on the
// clipboard by mixing, copying and the automatic run.
#include "FensterUmgebung.h"

#include "engine/CKLNCreator.h"
#include "model/Text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>

#include <functional>
#include <map>

namespace lyrabo::test {
namespace {

#ifdef LYRABO_CLI
std::string cliText(const std::filesystem::path& lied, const std::map<QString, QString>& optionen) {
    QStringList argumente{QStringLiteral("convert"), QString::fromStdString(lied.string()),
                          QStringLiteral("--harfentext"), QStringLiteral("-")};
    for (const auto& [name, wert] : optionen) argumente << name + '=' + wert;
    QProcess cli;
    cli.start(QStringLiteral(LYRABO_CLI), argumente);
    EXPECT_TRUE(cli.waitForFinished(60000));
    EXPECT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().toStdString();
    return cp1252ZuUtf8(cli.readAllStandardOutput().toStdString());
}

// Each step moves one control of the window and the matching options of lyrabo-cli; the steps
// build on each other, so the last one runs with every option changed from its default. Every
// step changes the text except those marked `gleich`.
struct Schritt {
    const char* was;
    std::function<void(FensterUmgebung&)> bedienen;
    std::map<QString, QString> optionen;
    bool gleich = false;
};

std::function<void(FensterUmgebung&)> klick(const char* name, int index = -1) {
    return [=](FensterUmgebung& u) { u.el<QAbstractButton>(name, index)->click(); };
}

TEST(Kommandozeile, JedeBedienungErgibtDenTextVonLyraboCli) {
    FensterUmgebung u;
    const auto pfad = u.startenMit(liedMitDreiSpuren());
    std::map<QString, QString> optionen{{"--spur", "2"}, {"--quantisierung", "1/16"}, {"--transpo", "0"},
        {"--kanal", "0"}, {"--legato", "nein"}, {"--hoechster-ton-melodie", "nein"}, {"--punktierte-pausen", "nein"},
        {"--ohne-pausen-letzter-takt", "nein"}};
    const Schritt schritte[] = {
        {"nach dem Laden", [](FensterUmgebung&) {}, {{"--spur", "2"}}},
        {"Höchster Ton", klick("chHoechsterTonMelodie"), {{"--hoechster-ton-melodie", "ja"}}},
        {"punktierte Pausen", klick("chPunktPausen"), {{"--punktierte-pausen", "ja"}}},
        {"ohne Pausen im letzten Takt", klick("chPausenLetzerTakt"), {{"--ohne-pausen-letzter-takt", "ja"}}},
        {"Legato", klick("chLegato"), {{"--legato", "ja"}}},
        {"Quantisierung 1/4", [](FensterUmgebung& f) { f.el<QSlider>("hsQuantisierung")->setValue(5); },
         {{"--quantisierung", "1/4"}}},
        // The harp-event text names one channel whatever the option says (checked after the loop).
        {"Kanal 2", klick("opKanal", 2), {{"--kanal", "2"}}, true},
        // The slider alone does not convert; the next conversion shows the new pitches.
        {"eine Oktave höher", [](FensterUmgebung& f) { f.el<QSlider>("hsTranspo")->setValue(12); }, {}, true},
        {"Bass", [](FensterUmgebung& f) { f.el<QListWidget>("TrackList")->setCurrentRow(2); },
         {{"--transpo", "12"}, {"--spur", "3"}}},
        // Field 8 is what the last conversion set: 1, as the bass has no chord.
        {"ohne Startzeit", klick("chClipExport", 4), {{"--felder", "11100111"}}},
    };
    std::string vorher;
    for (const Schritt& s : schritte) {
        s.bedienen(u);
        for (const auto& [name, wert] : s.optionen) optionen[name] = wert;
        const std::string erwartet = cliText(pfad, optionen);
        EXPECT_EQ(erwartet == vorher, s.gleich) << s.was;
        vorher = erwartet;
        EXPECT_EQ(u.fenster().klangNotenText(), erwartet) << s.was;
        EXPECT_EQ(u.el<QPlainTextEdit>("txtKlangNoten")->toPlainText(),
                  QString::fromStdString(erwartet).replace(QStringLiteral("\r\n"), QStringLiteral("\n")))
            << s.was;
    }
    EXPECT_EQ(u.einstellungen().KanalBelegung(), 2);
    EXPECT_TRUE(u.nachrichten.empty());
}

#endif

QColor farbe(QLabel* feld) { return feld->palette().color(QPalette::Window); }

TEST(Saitenspalten, ZeigenDieGebrauchtenSaitenUndWarnenRotAmRand) {
    FensterUmgebung u;
    u.startenMit(liedMitDreiSpuren());
    auto pruefen = [&](int von, int bis, bool linksRot, bool rechtsRot, const std::string& was) {
        for (int i = 0; i <= 36; ++i) {
            const bool drin = i >= von && i <= bis, oktave = i % 12 == 0;
            const QColor f = drin ? (oktave ? QColor(190, 255, 190) : QColor(0, 255, 0))
                                  : (oktave ? QColor(100, 100, 255) : QColor(255, 255, 255));
            EXPECT_EQ(farbe(u.el<QLabel>("labSpalte", i)), f) << was << ", Feld " << i;
        }
        const QColor rot(255, 50, 50), grau(191, 191, 191);
        EXPECT_EQ(farbe(u.el<QLabel>("labSpalteBorder", 0)), linksRot ? rot : grau) << was << ", links";
        EXPECT_EQ(farbe(u.el<QLabel>("labSpalteBorder", 1)), rechtsRot ? rot : grau) << was << ", rechts";
    };
    // The melody, g' to d'', fits: fields 12 to 19.
    pruefen(12, 19, false, false, "Melodie");
    // The bass reaches down to G (43): only field 0 is inside, the left border is red.
    u.el<QListWidget>("TrackList")->setCurrentRow(2);
    pruefen(0, 0, true, false, "Bass");
    // An octave up it fits.
    u.el<QSlider>("hsTranspo")->setValue(12);
    pruefen(0, 12, false, false, "Bass eine Oktave höher");
    // Two octaves up the melody runs past the highest string.
    u.el<QListWidget>("TrackList")->setCurrentRow(1);
    u.el<QSlider>("hsTranspo")->setValue(24);
    pruefen(36, 36, false, true, "Melodie zwei Oktaven höher");
}

TEST(Zwischenablage, MischenUndKopierenLegenDenHarfenTextHinein) {
    FensterUmgebung u;
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    lied.spur().name("Oben").note(0, 72, 480).note(0, 74, 480);
    lied.spur().name("Akkorde").an(0, 1, 60).an(0, 1, 64).aus(480, 1, 60).aus(0, 1, 64);
    u.startenMit(lied, "mischen.mid");
    auto* mischen = u.el<QPushButton>("cmdSpurenMischen");
    auto* kopieren = u.el<QPushButton>("cmdKopieren");
    EXPECT_FALSE(kopieren->isEnabled()); // each load disables it
    u.el<QCheckBox>("chSpurMischen", 2)->click();
    mischen->click();
    EXPECT_TRUE(u.nachrichten.empty());
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), u.programm().KLNCreator().getHarfeEventString());

    u.el<QCheckBox>("chSpurMischen", 3)->click();
    mischen->click();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text,
              "Eine der ausgewählten Spuren ist polyphon!\n"
              "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
              "möglicherweise nicht zum gewünschten Ergebnis,\n"
              "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte.");
    // Mixing is on while at least one box is ticked.
    u.el<QCheckBox>("chSpurMischen", 2)->click();
    EXPECT_TRUE(mischen->isEnabled());
    u.el<QCheckBox>("chSpurMischen", 3)->click();
    EXPECT_FALSE(mischen->isEnabled());

    kopieren->setEnabled(true);
    kopieren->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), u.fenster().klangNotenText());
}


TEST(Automatik, RechnetSpurEinsInDieZwischenablageUndEndetOhneFrage) {
    MidiBauer lied(480);
    lied.spur().name("Lied").tempo(0, 500000).note(0, 67, 480).note(0, 69, 480).note(0, 71, 960);
    lied.spur().name("Bass").note(0, 48, 1920);
    for (const bool fehlt : {false, true}) {
        FensterUmgebung u;
        const auto pfad = fehlt ? u.ordner() / "lieder" / "fehlt.mid" : lied.schreiben(u.ordner() / "lieder" / "auto.mid");
        u.starten();
        QGuiApplication::clipboard()->setText(QStringLiteral("Create Harfe-Spur ") + QString::fromStdString(pfad.string()));
        ASSERT_TRUE(u.start().automatischerLauf(QGuiApplication::clipboard()->text().toStdString()));
        EXPECT_TRUE(u.fenster().beendet());
        EXPECT_FALSE(u.fenster().isVisible());
        EXPECT_FALSE(std::filesystem::exists(u.userDaten()));
        if (fehlt) {
            // A missing file is reported, and the program ends all the same.
            ASSERT_EQ(u.nachrichten.size(), 1u);
            EXPECT_TRUE(u.nachrichten[0].text.contains(QStringLiteral("fehlt.mid")));
            continue;
        }
        EXPECT_TRUE(u.nachrichten.empty());
        EXPECT_EQ(u.einstellungen().SpurSelected()->Item(1)->Value(), 1);
        const std::string text = QGuiApplication::clipboard()->text().toStdString();
        EXPECT_NE(text.find("Anzahl"), std::string::npos) << text;
        EXPECT_EQ(text, u.programm().KLNCreator().getHarfeEventString());
    }
}

TEST(GenaueAufloesung, SchalterRechnetNeuSagtEsBeiDerDateiUndMerktSichEs) {
    FensterUmgebung u;
    MidiBauer lied(1024);  // no tempo event, as many folk-tune files come
    lied.spur().name("Leiter").taktart(0, 3, 2);
    lied.spur().name("Melodie").note(0, 67, 1024).note(0, 69, 2048).note(0, 71, 1024);
    u.startenMit(lied);
    auto* schalter = u.el<QCheckBox>("chGenaueAufloesung");
    auto* hinweis = u.el<QLabel>("labAufloesung");
    EXPECT_EQ(hinweis->isHidden() ? QString() : hinweis->text(),
              QStringLiteral("Auflösung 1024 Ticks pro Viertel, ohne Tempoangabe: genau umgerechnet"));
    const std::string genau = u.fenster().klangNotenText();
    schalter->click();
    EXPECT_TRUE(hinweis->isHidden());
    EXPECT_NE(u.fenster().klangNotenText(), genau);
    EXPECT_EQ(dateiLesen(u.ordner() / "data" / "LYRABO_umrechnung.ini"), "GenaueAufloesung=nein\n");
    schalter->click();
    EXPECT_EQ(u.fenster().klangNotenText(), genau);
}

} // namespace
} // namespace lyrabo::test
