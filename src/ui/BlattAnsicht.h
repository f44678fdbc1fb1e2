#pragma once
// The note sheet on screen: the pages one under the other as they will be printed, zoomable
// (page width, 100 %, Ctrl + mouse wheel) and scrollable; the notes sounding now can be lit.
#include "blatt/BlattElemente.h"

#include <QAbstractScrollArea>
#include <QRectF>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace lyrabo {

// Where the pages lie in the view at a zoom, in pixels from the top left of the whole sheet.
struct SeitenLage {
    std::vector<QRectF> seiten;
    double breite = 0, hoehe = 0;
};
SeitenLage seitenLage(const blatt::Blatt& blatt, double pxProMm);

// Paints the part `sichtbar` of the sheet (pixels of the whole sheet) into the painter, whose
// origin is the sheet's top left. The view paints with it, and so does the benchmark.
void blattSichtMalen(QPainter& maler, const blatt::Blatt& blatt, const SeitenLage& lage, double pxProMm,
                     const QRectF& sichtbar, const std::function<bool(int32_t note)>& hervorheben = {});

// The y (mm) of a tick on a page, from its time marks; nothing when the page does not hold it.
std::optional<double> yVonTick(const blatt::Seite& seite, int32_t tick);

class BlattAnsicht : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit BlattAnsicht(QWidget* parent = nullptr);

    // Shows a newly laid-out sheet; the view keeps its zoom and its place in the piece.
    void zeigen(blatt::Blatt blatt);
    const blatt::Blatt& blatt() const { return m_blatt; }

    // Zoom: the widest page fills the view's width, or a size where 100 is the paper's own.
    void seitenbreite();
    void prozent(double prozent);
    double prozent() const;
    bool folgtBreite() const { return m_folgtBreite; }

    // Lights the notes whose index is set (Element::note); an empty list lights none.
    void hervorheben(std::vector<bool> an);
    const std::vector<bool>& hervorgehoben() const { return m_an; }
    // Scrolls, if needed, so that this moment of the piece is in view.
    void tickZeigen(int32_t tick);

    static constexpr double kMinProzent = 10, kMaxProzent = 400;

signals:
    void zoomGeaendert(double prozent);

protected:
    void paintEvent(QPaintEvent* ereignis) override;
    void resizeEvent(QResizeEvent* ereignis) override;
    void wheelEvent(QWheelEvent* ereignis) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    double pxProMm100() const;
    // New zoom; the sheet point under `anker` (viewport pixels) stays where it is.
    void zoomSetzen(double pxProMm, QPointF anker);
    void lageNeu();

    blatt::Blatt m_blatt;
    SeitenLage m_lage;
    double m_pxProMm = 2;
    bool m_folgtBreite = true;
    std::vector<bool> m_an;
};

} // namespace lyrabo
