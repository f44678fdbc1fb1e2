#include "blattmaler/BlattMaler.h"

#include "model/Datei.h"
#include "model/Fehler.h"

#include <QDateTime>
#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainterPath>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QBuffer>

#include <cmath>
#include <system_error>

namespace lyrabo::blatt {

namespace {

constexpr double kPunktProMm = 72.0 / 25.4;
const QColor kHervorgehoben(230, 110, 0);

QColor farbe(const Farbe& f) { return QColor(f.r, f.g, f.b); }
QPointF punkt(const Punkt& p) { return QPointF(p.x, p.y); }

QPen stift(const QColor& c, double staerke, bool gestrichelt = false) {
    QPen p(c, staerke);
    p.setCapStyle(Qt::RoundCap);
    p.setJoinStyle(Qt::RoundJoin);
    if (gestrichelt) p.setDashPattern({4.0, 3.0});
    return p;
}

// A shape is either filled without outline or outlined without filling.
void flaeche(QPainter& maler, bool gefuellt, const QColor& c, double staerke) {
    maler.setPen(gefuellt ? QPen(Qt::NoPen) : stift(c, staerke));
    maler.setBrush(gefuellt ? QBrush(c) : QBrush(Qt::NoBrush));
}

QPainterPath pfadAus(const Pfad& pfad) {
    QPainterPath q;
    for (const auto& s : pfad.schritte) {
        switch (s.art) {
        case Pfad::Art::Start: q.moveTo(punkt(s.p)); break;
        case Pfad::Art::Linie: q.lineTo(punkt(s.p)); break;
        case Pfad::Art::Kurve: q.cubicTo(punkt(s.c1), punkt(s.c2), punkt(s.p)); break;
        case Pfad::Art::Schliessen: q.closeSubpath(); break;
        }
    }
    return q;
}

void textMalen(QPainter& maler, const Text& t, const QColor& c) {
    // Sizes are points on paper, whatever the device: a pixel size in tenths of a point under a
    // transform from millimetres, so the screen, the printer and the PDF agree.
    QFont schrift(QStringLiteral("DejaVu Sans"));
    schrift.setPixelSize(int(std::lround(t.groesse * 10)));
    schrift.setBold(t.fett);
    schrift.setHintingPreference(QFont::PreferNoHinting);
    // No shaping, so no ligatures: "fis" stays three letters that a search in the PDF finds.
    schrift.setStyleStrategy(QFont::PreferNoShaping);
    maler.save();
    maler.translate(t.ort.x, t.ort.y);
    maler.scale(0.1 / kPunktProMm, 0.1 / kPunktProMm);
    maler.setFont(schrift);
    maler.setPen(c);
    const QString text = QString::fromUtf8(t.text.data(), qsizetype(t.text.size()));
    double breite = QFontMetricsF(schrift).horizontalAdvance(text);
    double x = t.ausrichtung == Ausrichtung::Links ? 0 : t.ausrichtung == Ausrichtung::Mitte ? -breite / 2 : -breite;
    maler.drawText(QPointF(x, 0), text);
    maler.restore();
}

} // namespace

void seiteMalen(QPainter& maler, const Seite& seite, const std::function<bool(int32_t)>& hervorheben) {
    maler.save();
    maler.setRenderHint(QPainter::Antialiasing, true);
    maler.setRenderHint(QPainter::TextAntialiasing, true);
    for (const Element& e : seite.elemente) {
        const bool hell = hervorheben && e.note >= 0 && hervorheben(e.note);
        std::visit(
            [&](const auto& f) {
                using T = std::decay_t<decltype(f)>;
                const QColor c = hell ? kHervorgehoben : farbe(f.farbe);
                if constexpr (std::is_same_v<T, Linie>) {
                    maler.setPen(stift(c, f.staerke, f.gestrichelt));
                    maler.drawLine(punkt(f.a), punkt(f.b));
                } else if constexpr (std::is_same_v<T, Ellipse>) {
                    maler.save();
                    maler.translate(f.mitte.x, f.mitte.y);
                    maler.rotate(-f.winkel);
                    flaeche(maler, f.gefuellt, c, f.staerke);
                    maler.drawEllipse(QPointF(0, 0), f.rx, f.ry);
                    maler.restore();
                } else if constexpr (std::is_same_v<T, Pfad>) {
                    flaeche(maler, f.gefuellt, c, f.staerke);
                    maler.drawPath(pfadAus(f));
                } else {
                    textMalen(maler, f, c);
                }
            },
            e.form);
    }
    maler.restore();
}

std::string alsPdf(const Blatt& blatt, const std::filesystem::path& ziel, const std::string& titel, int64_t erstellt) {
    namespace fs = std::filesystem;
    if (blatt.seiten.empty()) return "Das Notenblatt hat keine Seite.";
    const fs::path temp = ziel.parent_path() / (ziel.filename().string() + ".lyrabo-tmp");
    const QString tempName = QString::fromStdU16String(temp.u16string());
    {
        QPdfWriter pdf(tempName);
        pdf.setResolution(1200);
        pdf.setCreator(QStringLiteral("Lyrabo"));
        pdf.setTitle(QString::fromUtf8(titel.data(), qsizetype(titel.size())));
        auto layout = [](const Seite& s) {
            return QPageLayout(QPageSize(QSizeF(s.breite, s.hoehe), QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                               QPageLayout::Portrait, QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
        };
        pdf.setPageLayout(layout(blatt.seiten.front()));
        QPainter maler;
        if (!maler.begin(&pdf)) {
            std::error_code ec;
            fs::remove(temp, ec);
            return "Das Notenblatt \"" + ziel.filename().string() + "\" kann nicht geschrieben werden.";
        }
        const double skala = pdf.resolution() / 25.4;
        for (size_t i = 0; i < blatt.seiten.size(); ++i) {
            if (i > 0) {
                pdf.setPageLayout(layout(blatt.seiten[i]));
                pdf.newPage();
            }
            maler.save();
            maler.scale(skala, skala);
            seiteMalen(maler, blatt.seiten[i]);
            maler.restore();
        }
        maler.end();
    }
    // Qt stamps the moment of writing; the piece's own date makes equal sheets equal files.
    QFile datei(tempName);
    if (!datei.open(QIODevice::ReadWrite)) {
        std::error_code ec;
        fs::remove(temp, ec);
        return "Das Notenblatt \"" + ziel.filename().string() + "\" kann nicht geschrieben werden.";
    }
    QByteArray inhalt = datei.readAll();
    const QByteArray marke = "/CreationDate (D:";
    qsizetype pos = inhalt.indexOf(marke);
    if (pos >= 0) {
        qsizetype anfang = pos + marke.size();
        qsizetype ende = inhalt.indexOf(')', anfang);
        QByteArray neu = QDateTime::fromSecsSinceEpoch(erstellt, Qt::UTC).toString("yyyyMMddhhmmss").toLatin1() + "Z";
        if (ende > anfang) {
            QByteArray alt = inhalt.mid(anfang, ende - anfang);
            neu = neu.leftJustified(alt.size(), ' ', true);
            inhalt.replace(anfang, alt.size(), neu);
            datei.seek(0);
            datei.write(inhalt);
        }
    }
    const bool ok = datei.error() == QFileDevice::NoError;
    datei.close();
    std::error_code ec;
    if (ok) fs::rename(temp, ziel, ec);
    if (!ok || ec) {
        fs::remove(temp, ec);
        return "Das Notenblatt \"" + ziel.filename().string() + "\" kann nicht geschrieben werden.";
    }
    return "";
}

std::vector<std::filesystem::path> svgDateien(const std::filesystem::path& ziel, size_t seiten) {
    if (seiten <= 1) return {ziel};
    const std::string endung = ziel.has_extension() ? ziel.extension().string() : ".svg";
    std::vector<std::filesystem::path> dateien;
    for (size_t i = 1; i <= seiten; ++i)
        dateien.push_back(ziel.parent_path() / (ziel.stem().string() + "-" + std::to_string(i) + endung));
    return dateien;
}

std::string alsSvg(const Blatt& blatt, const std::filesystem::path& ziel, const std::string& titel) {
    if (blatt.seiten.empty()) return "Das Notenblatt hat keine Seite.";
    const auto dateien = svgDateien(ziel, blatt.seiten.size());
    // Every page is drawn before the first file is touched: a page that cannot be drawn leaves all
    // files as they were.
    std::vector<QByteArray> inhalte;
    for (size_t i = 0; i < blatt.seiten.size(); ++i) {
        const Seite& seite = blatt.seiten[i];
        QBuffer puffer;
        QSvgGenerator svg;
        svg.setOutputDevice(&puffer);
        // 100 dots per millimetre: the page's size in whole hundredths, written back as millimetres.
        svg.setResolution(2540);
        svg.setSize(QSize(int(std::lround(seite.breite * 100)), int(std::lround(seite.hoehe * 100))));
        svg.setViewBox(QRectF(0, 0, seite.breite, seite.hoehe));
        QString name = QString::fromUtf8(titel.data(), qsizetype(titel.size()));
        if (blatt.seiten.size() > 1) name += QStringLiteral(" – Seite %1 von %2").arg(i + 1).arg(blatt.seiten.size());
        svg.setTitle(name);
        svg.setDescription(QStringLiteral("Notenblatt für die Tischharfe, gesetzt mit Lyrabo"));
        QPainter maler;
        if (!maler.begin(&svg)) return "Das Notenblatt \"" + dateien[i].filename().string() + "\" kann nicht gezeichnet werden.";
        seiteMalen(maler, seite);
        maler.end();
        inhalte.push_back(puffer.data());
    }
    for (size_t i = 0; i < dateien.size(); ++i) {
        try {
            dateiErsetzen(dateien[i], std::string(inhalte[i].constData(), size_t(inhalte[i].size())));
        } catch (const Fehler&) {
            return "Das Notenblatt \"" + dateien[i].filename().string() + "\" kann nicht geschrieben werden.";
        }
    }
    return "";
}

} // namespace lyrabo::blatt
