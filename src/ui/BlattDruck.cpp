#include "ui/BlattDruck.h"

#include "blattmaler/BlattMaler.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <cmath>

namespace lyrabo {

namespace {

constexpr double kMmProPunkt = 25.4 / 72.0;

struct Rahmen {
    double x0 = 1e18, y0 = 1e18, x1 = -1e18, y1 = -1e18;
    void dazu(double x, double y, double rand = 0) {
        x0 = std::min(x0, x - rand);
        y0 = std::min(y0, y - rand);
        x1 = std::max(x1, x + rand);
        y1 = std::max(y1, y + rand);
    }
};

QPageLayout layoutVon(const blatt::Seite& seite) {
    const double kurz = std::min(seite.breite, seite.hoehe), lang = std::max(seite.breite, seite.hoehe);
    // The standard sizes by name, so that the printer picks the right tray.
    QPageSize groesse = std::abs(kurz - 210) < 0.5 && std::abs(lang - 297) < 0.5   ? QPageSize(QPageSize::A4)
                        : std::abs(kurz - 297) < 0.5 && std::abs(lang - 420) < 0.5 ? QPageSize(QPageSize::A3)
                            : QPageSize(QSizeF(kurz, lang), QPageSize::Millimeter, QString(), QPageSize::ExactMatch);
    return QPageLayout(groesse, seite.breite > seite.hoehe ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
}

} // namespace

QRectF druckbereichMm(const QPrinter& drucker) {
    QPageLayout layout = drucker.pageLayout();
    layout.setUnits(QPageLayout::Millimeter);
    return layout.fullRect().marginsRemoved(layout.minimumMargins());
}

QRectF inhaltMm(const blatt::Seite& seite) {
    Rahmen r;
    for (const auto& e : seite.elemente) {
        std::visit(
            [&](const auto& f) {
                using T = std::decay_t<decltype(f)>;
                if constexpr (std::is_same_v<T, blatt::Linie>) {
                    r.dazu(f.a.x, f.a.y, f.staerke / 2);
                    r.dazu(f.b.x, f.b.y, f.staerke / 2);
                } else if constexpr (std::is_same_v<T, blatt::Ellipse>) {
                    r.dazu(f.mitte.x, f.mitte.y, std::max(f.rx, f.ry) + f.staerke / 2);
                } else if constexpr (std::is_same_v<T, blatt::Pfad>) {
                    // The control points hold the curve inside them.
                    for (const auto& s : f.schritte) {
                        if (s.art == blatt::Pfad::Art::Schliessen) continue;
                        r.dazu(s.p.x, s.p.y, f.staerke / 2);
                        if (s.art == blatt::Pfad::Art::Kurve) {
                            r.dazu(s.c1.x, s.c1.y, f.staerke / 2);
                            r.dazu(s.c2.x, s.c2.y, f.staerke / 2);
                        }
                    }
                } else {
                    QFont schrift(QStringLiteral("DejaVu Sans"));
                    schrift.setPointSizeF(f.groesse);
                    schrift.setBold(f.fett);
                    const QFontMetricsF mass(schrift);
                    const double breite =
                        mass.horizontalAdvance(QString::fromUtf8(f.text.data(), qsizetype(f.text.size()))) * kMmProPunkt;
                    const double x = f.ausrichtung == blatt::Ausrichtung::Links  ? f.ort.x
                                     : f.ausrichtung == blatt::Ausrichtung::Mitte ? f.ort.x - breite / 2
                                                                                  : f.ort.x - breite;
                    r.dazu(x, f.ort.y - mass.ascent() * kMmProPunkt);
                    r.dazu(x + breite, f.ort.y + mass.descent() * kMmProPunkt);
                }
            },
            e.form);
    }
    if (r.x1 < r.x0) return {};
    return QRectF(QPointF(r.x0, r.y0), QPointF(r.x1, r.y1));
}

bool passtAufDrucker(const blatt::Blatt& blatt, const QRectF& druckbereich) {
    // A hundredth of a millimetre is rounding, not a missing edge.
    const QRectF weit = druckbereich.adjusted(-0.01, -0.01, 0.01, 0.01);
    for (const auto& seite : blatt.seiten) {
        // Ink beyond the paper's edge is lost on any paper; it asks nothing of the printer.
        const QRectF inhalt = inhaltMm(seite).intersected(QRectF(0, 0, seite.breite, seite.hoehe));
        if (!inhalt.isEmpty() && !weit.contains(inhalt)) return false;
    }
    return true;
}

std::optional<blatt::Papier> druckerPapier(const QPrinter& drucker) {
    const QSizeF g = drucker.pageLayout().pageSize().size(QPageSize::Millimeter);
    const double kurz = std::min(g.width(), g.height()), lang = std::max(g.width(), g.height());
    if (std::abs(kurz - 210) < 1 && std::abs(lang - 297) < 1) return blatt::Papier::A4;
    if (std::abs(kurz - 297) < 1 && std::abs(lang - 420) < 1) return blatt::Papier::A3;
    return std::nullopt;
}

void papierEinstellen(QPrinter& drucker, const blatt::Blatt& blatt) {
    if (blatt.seiten.empty()) return;
    drucker.setPageLayout(layoutVon(blatt.seiten.front()));
}

std::string blattDrucken(QPrinter& drucker, const blatt::Blatt& blatt) {
    if (blatt.seiten.empty()) return "Das Notenblatt hat keine Seite.";
    // Paint from the paper's corner, as the sheet's coordinates are measured.
    drucker.setFullPage(true);
    QPainter maler;
    if (!maler.begin(&drucker)) return "Der Drucker lässt sich nicht ansprechen; es wurde nichts gedruckt.";
    const double pxProMm = drucker.resolution() / 25.4;
    for (size_t i = 0; i < blatt.seiten.size(); ++i) {
        if (i > 0 && !drucker.newPage()) {
            maler.end();
            return "Der Drucker hat nach Seite " + std::to_string(i) + " abgebrochen.";
        }
        maler.save();
        maler.scale(pxProMm, pxProMm);
        blatt::seiteMalen(maler, blatt.seiten[i]);
        maler.restore();
    }
    if (!maler.end()) return "Der Drucker hat das Notenblatt nicht angenommen.";
    return "";
}

} // namespace lyrabo
