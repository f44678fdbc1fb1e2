#include "ui/BlattAnsicht.h"

#include "blattmaler/BlattMaler.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace lyrabo {

namespace {

constexpr double kRand = 12;    // pixels around the pages
constexpr double kLuecke = 14;  // pixels between two pages
const QColor kHintergrund(105, 105, 105);
const QColor kSchatten(0, 0, 0, 70);

} // namespace

SeitenLage seitenLage(const blatt::Blatt& blatt, double pxProMm) {
    SeitenLage lage;
    double breitest = 0;
    for (const auto& s : blatt.seiten) breitest = std::max(breitest, s.breite * pxProMm);
    lage.breite = breitest + 2 * kRand;
    double y = kRand;
    for (const auto& s : blatt.seiten) {
        const double b = s.breite * pxProMm, h = s.hoehe * pxProMm;
        lage.seiten.emplace_back(kRand + (breitest - b) / 2, y, b, h);
        y += h + kLuecke;
    }
    lage.hoehe = blatt.seiten.empty() ? 0 : y - kLuecke + kRand;
    return lage;
}

void blattSichtMalen(QPainter& maler, const blatt::Blatt& blatt, const SeitenLage& lage, double pxProMm,
                     const QRectF& sichtbar, const std::function<bool(int32_t)>& hervorheben) {
    for (size_t i = 0; i < blatt.seiten.size() && i < lage.seiten.size(); ++i) {
        const QRectF& r = lage.seiten[i];
        if (!r.adjusted(0, 0, 4, 4).intersects(sichtbar)) continue;
        maler.fillRect(r.translated(3, 3), kSchatten);
        maler.fillRect(r, Qt::white);
        maler.save();
        maler.setClipRect(r.intersected(sichtbar));
        maler.translate(r.topLeft());
        maler.scale(pxProMm, pxProMm);
        blatt::seiteMalen(maler, blatt.seiten[i], hervorheben);
        maler.restore();
    }
}

std::optional<double> yVonTick(const blatt::Seite& seite, int32_t tick) {
    if (seite.zeit.empty() || tick < seite.vonTick || tick >= seite.bisTick) return std::nullopt;
    const auto& z = seite.zeit;
    auto nach = std::upper_bound(z.begin(), z.end(), tick, [](int32_t t, const blatt::Zeitmarke& m) { return t < m.tick; });
    if (nach == z.begin()) return z.front().y;
    if (nach == z.end()) return z.back().y;
    const auto& a = *(nach - 1);
    const auto& b = *nach;
    return a.y + (b.y - a.y) * double(tick - a.tick) / double(b.tick - a.tick);
}

BlattAnsicht::BlattAnsicht(QWidget* parent) : QAbstractScrollArea(parent) {
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(24);
    horizontalScrollBar()->setSingleStep(24);
}

double BlattAnsicht::pxProMm100() const { return logicalDpiX() / 25.4; }

double BlattAnsicht::prozent() const { return m_pxProMm / pxProMm100() * 100; }

void BlattAnsicht::zeigen(blatt::Blatt blatt) {
    // Keep the place in the piece: a new paper may change the height, so keep the share scrolled.
    QScrollBar* v = verticalScrollBar();
    const double anteil = v->maximum() > 0 ? double(v->value()) / v->maximum() : 0;
    m_blatt = std::move(blatt);
    m_an.clear();
    if (m_folgtBreite) seitenbreite();
    else lageNeu();
    v->setValue(int(std::lround(anteil * v->maximum())));
    viewport()->update();
}

void BlattAnsicht::seitenbreite() {
    m_folgtBreite = true;
    double breitest = 0;
    for (const auto& s : m_blatt.seiten) breitest = std::max(breitest, s.breite);
    const double platz = viewport()->width() - 2 * kRand;
    const double px = breitest > 0 && platz > 20 ? platz / breitest : pxProMm100();
    zoomSetzen(std::clamp(px, pxProMm100() * kMinProzent / 100, pxProMm100() * kMaxProzent / 100), QPointF(0, 0));
}

void BlattAnsicht::prozent(double prozent) {
    m_folgtBreite = false;
    zoomSetzen(pxProMm100() * std::clamp(prozent, kMinProzent, kMaxProzent) / 100, QPointF(viewport()->width() / 2.0, 0));
}

void BlattAnsicht::zoomSetzen(double pxProMm, QPointF anker) {
    QScrollBar* h = horizontalScrollBar();
    QScrollBar* v = verticalScrollBar();
    const double fx = m_lage.breite > 0 ? (h->value() + anker.x()) / m_lage.breite : 0;
    const double fy = m_lage.hoehe > 0 ? (v->value() + anker.y()) / m_lage.hoehe : 0;
    const bool neu = std::abs(pxProMm - m_pxProMm) > 1e-9;
    m_pxProMm = pxProMm;
    lageNeu();
    h->setValue(int(std::lround(fx * m_lage.breite - anker.x())));
    v->setValue(int(std::lround(fy * m_lage.hoehe - anker.y())));
    viewport()->update();
    if (neu) emit zoomGeaendert(prozent());
}

void BlattAnsicht::lageNeu() {
    m_lage = seitenLage(m_blatt, m_pxProMm);
    const QSize platz = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, int(std::ceil(m_lage.breite)) - platz.width()));
    horizontalScrollBar()->setPageStep(platz.width());
    verticalScrollBar()->setRange(0, std::max(0, int(std::ceil(m_lage.hoehe)) - platz.height()));
    verticalScrollBar()->setPageStep(platz.height());
}

void BlattAnsicht::hervorheben(std::vector<bool> an) {
    if (an == m_an) return;
    m_an = std::move(an);
    viewport()->update();
}

void BlattAnsicht::tickZeigen(int32_t tick) {
    QScrollBar* v = verticalScrollBar();
    const double oben = v->value(), hoehe = viewport()->height();
    std::optional<double> ziel;
    for (size_t i = 0; i < m_blatt.seiten.size() && i < m_lage.seiten.size(); ++i) {
        auto y = yVonTick(m_blatt.seiten[i], tick);
        if (!y) continue;
        const double px = m_lage.seiten[i].top() + *y * m_pxProMm;
        // Of the strips that hold the moment, the one already in view wins.
        if (!ziel || (px >= oben && px < oben + hoehe)) ziel = px;
        if (px >= oben && px < oben + hoehe) break;
    }
    if (!ziel) return;
    // Scroll only when the moment leaves the middle of the view, then put it a third down.
    if (*ziel < oben + hoehe * 0.1 || *ziel > oben + hoehe * 0.75) v->setValue(int(std::lround(*ziel - hoehe / 3)));
}

void BlattAnsicht::paintEvent(QPaintEvent* ereignis) {
    QPainter maler(viewport());
    maler.fillRect(ereignis->rect(), kHintergrund);
    // A sheet narrower than the view sits in its middle.
    const double x0 = std::max(0.0, (viewport()->width() - m_lage.breite) / 2) - horizontalScrollBar()->value();
    const double y0 = -verticalScrollBar()->value();
    maler.translate(x0, y0);
    const QRectF sichtbar = QRectF(ereignis->rect()).translated(-x0, -y0);
    std::function<bool(int32_t)> licht;
    if (!m_an.empty()) licht = [this](int32_t n) { return n >= 0 && size_t(n) < m_an.size() && m_an[size_t(n)]; };
    blattSichtMalen(maler, m_blatt, m_lage, m_pxProMm, sichtbar, licht);
}

void BlattAnsicht::resizeEvent(QResizeEvent* ereignis) {
    QAbstractScrollArea::resizeEvent(ereignis);
    if (m_folgtBreite) seitenbreite();
    else lageNeu();
}

void BlattAnsicht::wheelEvent(QWheelEvent* ereignis) {
    if (!(ereignis->modifiers() & Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(ereignis);
        return;
    }
    const double schritte = ereignis->angleDelta().y() / 120.0;
    if (schritte == 0) return;
    m_folgtBreite = false;
    const double px = std::clamp(m_pxProMm * std::pow(1.15, schritte), pxProMm100() * kMinProzent / 100,
                                 pxProMm100() * kMaxProzent / 100);
    zoomSetzen(px, ereignis->position());
    ereignis->accept();
}

void BlattAnsicht::scrollContentsBy(int, int) { viewport()->update(); }

} // namespace lyrabo
