// The note font that comes with the program: its glyphs drawn by Qt, and its installation for
// other programs through the menu.
#include "FensterUmgebung.h"

#include "ui/Notenschrift.h"

#include <QImage>
#include <QFontMetrics>
#include <QPainter>

namespace lyrabo::test {
namespace {

struct Tinte {
    int links = 1 << 20, rechts = -1, oben = 1 << 20, unten = -1, punkte = 0;
};

// The shipped font drawn black on white, 100 pixels to the em, the origin at (60, 130).
QImage zeichnen(const QString& text) {
    static const QStringList familien = eigeneSchriftenRegistrieren(LYRABO_BIN_DIR);
    EXPECT_TRUE(familien.contains("Lyrabo Noten")) << familien.join(", ").toStdString();
    QImage bild(220, 180, QImage::Format_Grayscale8);
    bild.fill(255);
    QPainter maler(&bild);
    QFont schrift(QStringLiteral("Lyrabo Noten"));
    schrift.setPixelSize(100);
    maler.setFont(schrift);
    maler.setPen(Qt::black);
    maler.drawText(60, 130, text);
    return bild;
}

// Ink of the image, or only the ink that `ohne` lacks, within rows von..bis.
Tinte tinte(const QImage& bild, const QImage* ohne = nullptr, int von = 0, int bis = 1 << 20) {
    Tinte t;
    for (int y = std::max(0, von); y < bild.height() && y <= bis; ++y)
        for (int x = 0; x < bild.width(); ++x) {
            const bool dunkel = qGray(bild.pixel(x, y)) < 128;
            if (!dunkel || (ohne && qGray(ohne->pixel(x, y)) < 128)) continue;
            t = {std::min(t.links, x), std::max(t.rechts, x), std::min(t.oben, y), std::max(t.unten, y), t.punkte + 1};
        }
    return t;
}

int unterschied(const QImage& a, const QImage& b) {
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) n += (qGray(a.pixel(x, y)) < 128) != (qGray(b.pixel(x, y)) < 128);
    return n;
}

TEST(Notenschrift, ZehnVerschiedeneZeichenUndDerPunktRechtsVomKopf) {
    const QString codes = QStringLiteral("cvbnmfghjk");
    std::vector<QImage> bilder;
    for (QChar c : codes) {
        bilder.push_back(zeichnen(c));
        EXPECT_GT(tinte(bilder.back()).punkte, 150) << "kein Zeichen bei " << c.toLatin1();
    }
    for (size_t i = 0; i < bilder.size(); ++i)
        for (size_t j = i + 1; j < bilder.size(); ++j)
            EXPECT_GT(unterschied(bilder[i], bilder[j]), 100) << codes[i].toLatin1() << " gleicht " << codes[j].toLatin1();
    EXPECT_GT(tinte(zeichnen(",")).punkte, 40);
    EXPECT_EQ(tinte(zeichnen(" ")).punkte, 0);

    // The codes of the dotted lengths: the comma adds a dot beside the head (or the rest's foot),
    // right of all the glyph's ink in those rows, and leaves the glyph's width alone.
    for (QChar c : QStringLiteral("vbnghj")) {
        const QImage ohne = zeichnen(c);
        const Tinte punkt = tinte(zeichnen(QString(c) + QLatin1Char(',')), &ohne);
        ASSERT_GT(punkt.punkte, 40) << c.toLatin1();
        const Tinte daneben = tinte(ohne, nullptr, punkt.oben, punkt.unten);
        EXPECT_GT(daneben.punkte, 0) << "Punkt nicht auf Höhe des Zeichens " << c.toLatin1();
        EXPECT_LT(daneben.rechts, punkt.links) << c.toLatin1();
        EXPECT_LT(punkt.rechts - 60, 68) << "Punkt außerhalb der Zeichenbreite bei " << c.toLatin1();
    }
    const QFontMetrics mass(QFont(QStringLiteral("Lyrabo Noten")));
    EXPECT_EQ(mass.horizontalAdvance(QStringLiteral("b,")), mass.horizontalAdvance(QStringLiteral("b")));
    EXPECT_EQ(mass.horizontalAdvance(QStringLiteral(" ")), mass.horizontalAdvance(QStringLiteral("n")));
}

// The menu entry copies the font into the user's font folder; a second run changes nothing.
TEST(Notenschrift, InstallationFuerAndereProgrammeZweimal) {
    FensterUmgebung u;
    const QByteArray vorher = qgetenv("XDG_DATA_HOME"), vorherCache = qgetenv("XDG_CACHE_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString((u.ordner() / "benutzer").string()));
    qputenv("XDG_CACHE_HOME", QByteArray::fromStdString((u.ordner() / "cache").string()));
    u.starten();
    const auto ziel = u.ordner() / "benutzer" / "fonts" / "LyraboNoten.otf";
    for (const char* erwartet : {"ist jetzt für andere Programme installiert", "war schon installiert"}) {
        u.menue("mNotenschriftInstallieren")->trigger();
        ASSERT_FALSE(u.nachrichten.empty());
        const QString text = u.nachrichten.back().text;
        EXPECT_TRUE(text.contains(QString::fromUtf8(erwartet))) << text.toStdString();
        EXPECT_TRUE(text.contains("„Lyrabo Noten“")) << text.toStdString();
        EXPECT_TRUE(text.contains(QString::fromStdString(ziel.parent_path().string()))) << text.toStdString();
    }
    EXPECT_EQ(dateiLesen(ziel), dateiLesen(u.ordner() / "data" / "schriften" / "LyraboNoten.otf"));

    // Without the font beside the program the user is told what is missing.
    std::filesystem::remove_all(u.ordner() / "data" / "schriften");
    u.menue("mNotenschriftInstallieren")->trigger();
    EXPECT_TRUE(u.nachrichten.back().text.startsWith("Die Notenschrift fehlt")) << u.nachrichten.back().text.toStdString();
    EXPECT_EQ(u.nachrichten.size(), 3u);
    for (const auto& [name, wert] : {std::pair{"XDG_DATA_HOME", vorher}, std::pair{"XDG_CACHE_HOME", vorherCache}}) {
        if (wert.isNull()) qunsetenv(name);
        else qputenv(name, wert);
    }
}

} // namespace
} // namespace lyrabo::test
