// What the window computes: the harp-event text for every option, the string-column colours,
// mixing, copying and saving.
#include "FensterUmgebung.h"

#include "engine/CKLNCreator.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include <cstdio>

namespace lyrabo::test {
namespace {

// The core without a window: the same file and options, converted as the window's recompute does.
class FormAttrappe : public IForm {
public:
    void meldung(const std::string& t) override { meldungen.push_back(t); }
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    void setKlangNotenText(const std::string& t) override { text = t; }
    int16_t zeile = 1;
    std::string text;
    std::vector<std::string> meldungen;
};

class Vergleich {
public:
    Vergleich(const std::filesystem::path& ordner, const std::filesystem::path& lied) : m_programm(ordner, m_form) {
        m_programm.initGlobals();
        m_programm.Einstellungen().MIDIFilePath(lied.string());
        m_programm.openMIDIFile(2);
    }
    CEinstellungen& e() { return m_programm.Einstellungen(); }
    std::string umrechnen(int16_t zeile) {
        m_form.zeile = zeile;
        m_programm.neuBerechnen();
        return m_form.text;
    }
    std::string harfenText() { return m_programm.KLNCreator().getHarfeEventString(); }

private:
    FormAttrappe m_form;
    CProgramm m_programm;
};

void textGleich(FensterUmgebung& u, const std::string& erwartet, const char* schritt) {
    EXPECT_FALSE(erwartet.empty()) << schritt;
    EXPECT_EQ(u.fenster().klangNotenText(), erwartet) << schritt;
    QString angezeigt = QString::fromStdString(erwartet);
    angezeigt.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    EXPECT_EQ(u.el<QPlainTextEdit>("txtKlangNoten")->toPlainText(), angezeigt) << schritt;
}

TEST(Umrechnung, DerTextFolgtJederBedienungWieImKern) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    ASSERT_TRUE(u.nachrichten.empty()) << u.nachrichten[0].text.toStdString();
    Vergleich k(u.ordner(), pfad);

    textGleich(u, k.umrechnen(1), "nach dem Laden");
    u.el<QSlider>("hsQuantisierung")->setValue(5);
    k.e().QuantNotenwert(48);
    textGleich(u, k.umrechnen(1), "Quantisierung 1/4");
    u.el<QCheckBox>("chLegato")->click();
    k.e().Legato(true);
    textGleich(u, k.umrechnen(1), "Legato");
    u.el<QCheckBox>("chHoechsterTonMelodie")->click();
    k.e().HoechsterTonMelodie(true);
    textGleich(u, k.umrechnen(1), "Höchster Ton");
    u.el<QCheckBox>("chPunktPausen")->click();
    k.e().PunktiertePausen(true);
    textGleich(u, k.umrechnen(1), "punktierte Pausen");
    u.el<QCheckBox>("chPausenLetzerTakt")->click();
    k.e().PausenLetzterTakt(false);
    textGleich(u, k.umrechnen(1), "ohne Pausen im letzten Takt");
    u.el<QRadioButton>("opKanal", 1)->click();
    k.e().KanalBelegung(1);
    textGleich(u, k.harfenText(), "Kanal");
    u.el<QCheckBox>("chClipExport", 4)->click();
    k.e().ClipExportFlags()->Item(4)->Value(0);
    textGleich(u, k.harfenText(), "ohne Startzeit");
    // The transposition shows in the next conversion's pitches.
    u.el<QSlider>("hsTranspo")->setValue(12);
    k.e().Transpo(12);
    u.el<QListWidget>("TrackList")->setCurrentRow(2);
    textGleich(u, k.umrechnen(2), "Bass, eine Oktave höher");
    EXPECT_TRUE(u.nachrichten.empty());
}

struct Rgb {
    int r, g, b;
};
void farbeGleich(QLabel* feld, Rgb f, const std::string& was) {
    EXPECT_EQ(feld->palette().color(QPalette::Window), QColor(f.r, f.g, f.b)) << was;
}

TEST(Saitenspalten, ZeigenDieGebrauchtenSaitenUndWarnenRotAmRand) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    auto pruefen = [&](int von, int bis, bool linksRot, bool rechtsRot, const std::string& was) {
        for (int i = 0; i <= 36; ++i) {
            const bool drin = i >= von && i <= bis;
            const bool oktave = i % 12 == 0;
            const Rgb f = drin ? (oktave ? Rgb{190, 255, 190} : Rgb{0, 255, 0})
                               : (oktave ? Rgb{100, 100, 255} : Rgb{255, 255, 255});
            farbeGleich(u.el<QLabel>("labSpalte", i), f, was + ", Feld " + std::to_string(i));
        }
        farbeGleich(u.el<QLabel>("labSpalteBorder", 0), linksRot ? Rgb{255, 50, 50} : Rgb{191, 191, 191}, was + ", links");
        farbeGleich(u.el<QLabel>("labSpalteBorder", 1), rechtsRot ? Rgb{255, 50, 50} : Rgb{191, 191, 191}, was + ", rechts");
    };
    // The melody, g' to d'', fits: fields 12 to 19.
    pruefen(12, 19, false, false, "Melodie");
    // The bass reaches down to G (43): only field 0 is inside, the left border is red.
    u.el<QListWidget>("TrackList")->setCurrentRow(2);
    pruefen(0, 0, true, false, "Bass");
    // An octave up it fits; the slider only recolours, it does not convert again.
    const std::string vorher = u.fenster().klangNotenText();
    u.el<QSlider>("hsTranspo")->setValue(12);
    pruefen(0, 12, false, false, "Bass eine Oktave höher");
    EXPECT_EQ(u.fenster().klangNotenText(), vorher);
    // Two octaves up the melody runs past the highest string.
    u.el<QListWidget>("TrackList")->setCurrentRow(1);
    u.el<QSlider>("hsTranspo")->setValue(24);
    pruefen(36, 36, false, true, "Melodie zwei Oktaven höher");
}

TEST(Mischen, LegtDenTextInDieZwischenablageUndWarntBeiMehrstimmigkeit) {
    FensterUmgebung u;
    MidiBauer lied(480);
    lied.spur().name("Tempo").tempo(0, 500000);
    lied.spur().name("Oben").note(0, 72, 480).note(0, 74, 480);
    auto& akkorde = lied.spur().name("Akkorde");
    akkorde.an(0, 1, 60).an(0, 1, 64).aus(480, 1, 60).aus(0, 1, 64);
    const auto pfad = u.lied("mischen.mid", lied);
    u.starten();
    u.oeffnen(pfad);
    QGuiApplication::clipboard()->setText(QStringLiteral("vorher"));
    u.el<QCheckBox>("chSpurMischen", 2)->click();
    u.el<QPushButton>("cmdSpurenMischen")->click();
    EXPECT_TRUE(u.nachrichten.empty());
    const QString gemischt = QGuiApplication::clipboard()->text();
    EXPECT_NE(gemischt, "vorher");
    EXPECT_EQ(gemischt.toStdString(), u.programm().KLNCreator().getHarfeEventString());

    u.el<QCheckBox>("chSpurMischen", 3)->click();
    u.el<QPushButton>("cmdSpurenMischen")->click();
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text,
              "Eine der ausgewählten Spuren ist polyphon!\n"
              "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
              "möglicherweise nicht zum gewünschten Ergebnis,\n"
              "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte.");
}

TEST(Automatik, DieZwischenablageHaeltDanachDenHarfenText) {
    FensterUmgebung u;
    MidiBauer lied(480, 0);
    lied.spur().name("Lied").tempo(0, 500000).note(0, 67, 480).note(0, 69, 480).note(0, 71, 960);
    const auto pfad = u.lied("auto.mid", lied);
    u.starten();
    QGuiApplication::clipboard()->setText(QStringLiteral("Create Harfe-Spur ") + QString::fromStdString(pfad.string()));
    ASSERT_TRUE(u.start().automatischerLauf(QGuiApplication::clipboard()->text().toStdString()));
    const std::string text = QGuiApplication::clipboard()->text().toStdString();
    EXPECT_NE(text.find("Anzahl"), std::string::npos) << text;
    EXPECT_EQ(text, u.programm().KLNCreator().getHarfeEventString());
    EXPECT_TRUE(u.nachrichten.empty());
}

TEST(Kopieren, LegtDenHarfenTextDerGewaehltenSpurInDieZwischenablage) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    auto* kopieren = u.el<QPushButton>("cmdKopieren");
    u.oeffnen(pfad);
    EXPECT_FALSE(kopieren->isEnabled());  // each load disables it
    kopieren->setEnabled(true);
    QGuiApplication::clipboard()->setText(QStringLiteral("vorher"));
    kopieren->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), u.fenster().klangNotenText());
    EXPECT_NE(QGuiApplication::clipboard()->text(), "vorher");
}

TEST(Speichern, WorksDatenbankMitDenMeldungenDesSchreibers) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    const auto ziel = u.ordner() / "lieder" / "lied.wdb";
    u.dialogAntworten.push_back(QString::fromStdString(ziel.string()));
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_FALSE(u.dialogAufrufe.empty());
    EXPECT_TRUE(u.dialogAufrufe.back().speichern);
    EXPECT_EQ(u.dialogAufrufe.back().filter, "MS-Works-Datenbank  (*.wdb)");
    ASSERT_EQ(u.nachrichten.size(), 1u);
    EXPECT_EQ(u.nachrichten[0].text, "Daten gespeichert!");
    EXPECT_EQ(std::filesystem::file_size(ziel), 80896u);

    u.dialogAntworten.push_back(std::nullopt);
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 2u);
    EXPECT_EQ(u.nachrichten[1].text, "Daten nicht gespeichert!");

    u.dialogAntworten.push_back(QString::fromStdString((u.ordner() / "lieder" / "lied.txt").string()));
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 3u);
    EXPECT_EQ(u.nachrichten[2].text, "Falsche Dateiendung!");
    EXPECT_FALSE(std::filesystem::exists(u.ordner() / "lieder" / "lied.txt"));

    // A folder that does not exist: the error is shown and the window goes on.
    u.dialogAntworten.push_back(QString::fromStdString((u.ordner() / "fehlt" / "lied.wdb").string()));
    u.menue("mSpeichernAlsWDB")->trigger();
    ASSERT_EQ(u.nachrichten.size(), 4u);
    EXPECT_NE(u.nachrichten[3].text, "Daten gespeichert!");
    EXPECT_TRUE(u.fenster().isVisible());
    EXPECT_EQ(std::filesystem::file_size(ziel), 80896u);
}

} // namespace
} // namespace lyrabo::test
