// The window and the command line convert alike: for the same file, track and options the text in
// txtKlangNoten is what lyrabo-cli writes (which writes it in Windows-1252).
#include "FensterUmgebung.h"

#include "model/Text.h"

#include <QCheckBox>
#include <QListWidget>
#include <QProcess>
#include <QRadioButton>
#include <QSlider>

#ifdef LYRABO_CLI

namespace lyrabo::test {
namespace {

struct Optionen {
    int spur = 2;
    const char* quantisierung = "1/16";
    int transpo = 0;
    int kanal = 0;
    bool legato = false, hoechster = false, punktiert = false, letzterTakt = true;
    const char* felder = "11110111";
};

std::string cliText(const std::filesystem::path& lied, const Optionen& o) {
    auto jaNein = [](const char* name, bool an) { return QStringLiteral("%1=%2").arg(name, an ? "ja" : "nein"); };
    QStringList argumente{QStringLiteral("convert"), QString::fromStdString(lied.string()),
                          QStringLiteral("--spur"), QString::number(o.spur),
                          QStringLiteral("--quantisierung"), QString::fromLatin1(o.quantisierung),
                          QStringLiteral("--transpo=%1").arg(o.transpo),
                          QStringLiteral("--kanal"), QString::number(o.kanal),
                          jaNein("--legato", o.legato), jaNein("--hoechster-ton-melodie", o.hoechster),
                          jaNein("--punktierte-pausen", o.punktiert), jaNein("--ohne-pausen-letzter-takt", !o.letzterTakt),
                          QStringLiteral("--felder"), QString::fromLatin1(o.felder),
                          QStringLiteral("--harfentext"), QStringLiteral("-")};
    QProcess cli;
    cli.start(QStringLiteral(LYRABO_CLI), argumente);
    EXPECT_TRUE(cli.waitForFinished(60000));
    EXPECT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().toStdString();
    return cp1252ZuUtf8(cli.readAllStandardOutput().toStdString());
}

TEST(Kommandozeile, FensterUndKommandozeileSchreibenDenselbenText) {
    FensterUmgebung u;
    const auto pfad = u.lied("lied.mid", liedMitDreiSpuren());
    u.starten();
    u.oeffnen(pfad);
    Optionen o;
    EXPECT_EQ(u.fenster().klangNotenText(), cliText(pfad, o)) << "nach dem Laden";

    u.el<QSlider>("hsQuantisierung")->setValue(5);
    o.quantisierung = "1/4";
    u.el<QCheckBox>("chLegato")->click();
    o.legato = true;
    EXPECT_EQ(u.fenster().klangNotenText(), cliText(pfad, o)) << "1/4, Legato";

    u.el<QCheckBox>("chHoechsterTonMelodie")->click();
    u.el<QCheckBox>("chPunktPausen")->click();
    u.el<QCheckBox>("chPausenLetzerTakt")->click();
    o.hoechster = o.punktiert = true;
    o.letzterTakt = false;
    u.el<QRadioButton>("opKanal", 2)->click();
    o.kanal = 2;
    u.el<QCheckBox>("chClipExport", 4)->click();
    o.felder = "11100111";
    EXPECT_EQ(u.fenster().klangNotenText(), cliText(pfad, o)) << "alle Schalter";

    u.el<QSlider>("hsTranspo")->setValue(12);
    u.el<QListWidget>("TrackList")->setCurrentRow(2);
    o.transpo = 12;
    o.spur = 3;
    EXPECT_EQ(u.fenster().klangNotenText(), cliText(pfad, o)) << "Bass, eine Oktave höher";
    EXPECT_FALSE(u.fenster().klangNotenText().empty());
}

} // namespace
} // namespace lyrabo::test

#endif
