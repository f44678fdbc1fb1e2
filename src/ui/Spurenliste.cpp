// The track list on the left with the file's facts below it, and the mark on the track that most
// likely carries the melody. The mark is drawn, not written into the row: the rows keep the track
// labels that the mixing boxes and everything else read.
#include "app/core/MelodieSpur.h"
#include "ui/BlattBereich.h"
#include "ui/Hilfe.h"
#include "ui/Steuerelemente.h"
#include "ui/UmrechnungSeite.h"
#include "ui/frmLyrabo.h"

#include <QAction>
#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace lyrabo {

using namespace steuer;

namespace {

constexpr int kMelodieRolle = Qt::UserRole + 1;
const char* const kMelodieMarke = "  Melodie?";

// Draws the mark after the label, in italics and the link colour, so that it does not read as part
// of the track's name.
class MelodieMarke : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* maler, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyledItemDelegate::paint(maler, option, index);
        if (!index.data(kMelodieRolle).toBool()) return;
        QStyleOptionViewItem o(option);
        initStyleOption(&o, index);
        const QStyle* stil = o.widget ? o.widget->style() : QApplication::style();
        const QRect textFeld = stil->subElementRect(QStyle::SE_ItemViewItemText, &o, o.widget);
        const int rand = stil->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, o.widget) + 1;
        QRect feld = textFeld.adjusted(rand + o.fontMetrics.horizontalAdvance(o.text), 0, 0, 0);
        QFont schrift = o.font;
        schrift.setItalic(true);
        maler->save();
        maler->setFont(schrift);
        const bool gewaehlt = o.state & QStyle::State_Selected;
        maler->setPen(o.palette.color(gewaehlt ? QPalette::HighlightedText : QPalette::Link));
        maler->drawText(feld, Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf8(kMelodieMarke));
        maler->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize groesse = QStyledItemDelegate::sizeHint(option, index);
        if (index.data(kMelodieRolle).toBool())
            groesse.rwidth() += option.fontMetrics.horizontalAdvance(QString::fromUtf8(kMelodieMarke)) + 4;
        return groesse;
    }
};

} // namespace

QWidget* frmLyrabo::spurenBereichAnlegen() {
    auto* bereich = new QWidget(this);
    bereich->setFixedWidth(250);
    auto* l = new QVBoxLayout(bereich);
    l->setContentsMargins(0, 0, 0, 0);

    auto* titel = new QLabel(QStringLiteral("<b>Spuren</b>"), bereich);
    l->addWidget(titel);
    TrackList = element(new QListWidget(bereich), "TrackList");
    TrackList->setToolTip(QStringLiteral("Ein Klick auf eine Spur zeigt sie an und rechnet sie um."));
    TrackList->setItemDelegate(new MelodieMarke(TrackList));
    l->addWidget(TrackList, 1);
    connect(TrackList, &QListWidget::currentRowChanged, this, [this](int) { TrackList_Click(); });

    auto* daten = new QGroupBox(QStringLiteral("Datei"), bereich);
    auto* g = new QGridLayout(daten);
    LabelTempo = element(new QLabel(daten), "LabelTempo");
    LabelTicks = element(new QLabel(daten), "LabelTicks");
    LabelTimeSignature = element(new QLabel(daten), "LabelTimeSignature");
    g->addWidget(new QLabel(QStringLiteral("Tempo (Viertel/min):"), daten), 0, 0);
    g->addWidget(LabelTempo, 0, 1);
    g->addWidget(new QLabel(QStringLiteral("Ticks pro Viertel:"), daten), 1, 0);
    g->addWidget(LabelTicks, 1, 1);
    g->addWidget(new QLabel(QStringLiteral("Taktart:"), daten), 2, 0);
    g->addWidget(LabelTimeSignature, 2, 1);
    g->addWidget(m_umrechnung->hinweisAnlegen(daten), 3, 0, 1, 2);
    l->addWidget(daten);

    cmdKopieren = element(new QPushButton(QStringLiteral("In die &Zwischenablage"), bereich), "cmdKopieren");
    cmdKopieren->setToolTip(QStringLiteral("Rechnet die gewählte Spur um und kopiert den Harfen-Text für Cantorix."));
    connect(cmdKopieren, &QPushButton::clicked, this, [this] { cmdKopieren_Click(); });
    l->addWidget(cmdKopieren);
    cmdHelp = element(new QPushButton(QStringLiteral("&Hilfe"), bereich), "cmdHelp");
    connect(cmdHelp, &QPushButton::clicked, this,
            [this] { HilfeAnzeigen(kHilfeWegZumNotenblatt, "Cantorix-Harfe"); });
    l->addWidget(cmdHelp);
    return bereich;
}

void frmLyrabo::trackListeFuellen(const std::vector<std::string>& labels) {
    m_listeWirdGefuellt = true;
    TrackList->clear();
    for (const auto& label : labels) TrackList->addItem(ausUtf8(label));
    TrackList->setCurrentRow(-1);
    m_listeWirdGefuellt = false;
    m_melodieSpur = 0;
    mMelodieSpur->setEnabled(false);
}

void frmLyrabo::melodieMarkieren() {
    melodieMarkeAuffrischen();
    std::vector<std::string> labels;
    for (int zeile = 0; zeile < TrackList->count(); ++zeile) labels.push_back(nachUtf8(TrackList->item(zeile)->text()));
    m_blatt->begleitSpurenAnbieten(labels);
}

// The guess counts the notes on the strings, so the harp size and the transposition move it.
void frmLyrabo::melodieMarkeAuffrischen() {
    const Midifile& mf = m_programm.Midifile1;
    const CEinstellungen& e = m_programm.Einstellungen();
    m_melodieSpur = mf.inhalt() ? melodieSpur(*mf.inhalt(), e.Transpo(), e.WDBSpaltenAnzahl() == 25 ? 25 : 37) : 0;
    for (int zeile = 0; zeile < TrackList->count(); ++zeile) {
        QListWidgetItem* eintrag = TrackList->item(zeile);
        const bool melodie = zeile + 1 == m_melodieSpur;
        eintrag->setData(kMelodieRolle, melodie);
        eintrag->setToolTip(melodie ? QString::fromUtf8(kMelodieRegel) : QString());
    }
    mMelodieSpur->setEnabled(m_melodieSpur > 0);
    TrackList->viewport()->update();
}

void frmLyrabo::melodieSpurWaehlen() {
    if (m_melodieSpur >= 1 && m_melodieSpur <= TrackList->count()) TrackList->setCurrentRow(m_melodieSpur - 1);
}

} // namespace lyrabo
