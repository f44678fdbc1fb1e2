// The string row above the options and the transposition slider beside its button: which strings
// the piece uses, and moving it until it fits.
#include "blatt/Transposition.h"
#include "engine/CKLNCreator.h"
#include "ui/BlattBereich.h"
#include "ui/Steuerelemente.h"
#include "ui/frmLyrabo.h"

#include <QAction>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QStatusBar>
#include <QVBoxLayout>

namespace lyrabo {

using namespace steuer;

QWidget* frmLyrabo::saitenAnzeigeAnlegen() {
    auto* gruppe = new QGroupBox(QStringLiteral("Saiten der Harfe (links die tiefste, g) – kein Randfeld darf rot sein"), this);
    auto* l = new QVBoxLayout(gruppe);

    // Label 0 and the two borders exist from the start; the other 36 are laid out at start-up.
    m_spaltenFlaeche = new QWidget(gruppe);
    const int breite = kRandBreite + 8 + 37 * (kSpalteBreite + kSpalteAbstand) - kSpalteAbstand + 8 + kRandBreite;
    m_spaltenFlaeche->setFixedSize(breite, kSpaltenOben + kSpalteHoeheBass + 18);
    labSpalteBorder[0] = element(new QLabel(m_spaltenFlaeche), "labSpalteBorder", 0);
    labSpalteBorder[0]->setGeometry(0, kSpaltenOben, kRandBreite, kSpalteHoeheBass);
    labSpalteBorder[1] = element(new QLabel(m_spaltenFlaeche), "labSpalteBorder", 1);
    labSpalteBorder[1]->setGeometry(breite - kRandBreite, kSpaltenOben, kRandBreite, kSpalteHoeheBass);
    for (auto* rand : labSpalteBorder) {
        rand->setFrameShape(QFrame::Box);
        rand->setToolTip(QStringLiteral("Rot: das Stück reicht auf dieser Seite über die Saiten hinaus."));
        faerben(rand, QColor(191, 191, 191));
    }
    labSpalte[0] = element(new QLabel(m_spaltenFlaeche), "labSpalte", 0);
    labSpalte[0]->setGeometry(kRandBreite + 8, kSpaltenOben + kSpalteHoeheBass - kSpalteHoeheBass, kSpalteBreite,
                              kSpalteHoeheBass);
    labSpalte[0]->setFrameShape(QFrame::Box);
    labSpalte[0]->setToolTip(QStringLiteral("Saite 1: %1 (MIDI-Note 55)").arg(saitenName(55)));
    faerben(labSpalte[0], QColor(255, 255, 255));

    auto* zeile = new QHBoxLayout;
    zeile->addStretch(1);
    zeile->addWidget(m_spaltenFlaeche);
    zeile->addStretch(1);
    l->addLayout(zeile);

    auto* transpo = new QHBoxLayout;
    transpo->addWidget(new QLabel(QStringLiteral("Transposition (Halbtöne):"), gruppe));
    hsTranspo = element(new QSlider(Qt::Horizontal, gruppe), "hsTranspo");
    hsTranspo->setRange(-36, 36);
    hsTranspo->setPageStep(12);
    hsTranspo->setTickInterval(12);
    hsTranspo->setTickPosition(QSlider::TicksBelow);
    hsTranspo->setEnabled(false);
    transpo->addWidget(hsTranspo, 1);
    labTranspo = element(new QLabel(QStringLiteral("0"), gruppe), "labTranspo");
    labTranspo->setMinimumWidth(36);
    labTranspo->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    transpo->addWidget(labTranspo);
    cmdPassendTransponieren =
        element(new QPushButton(QStringLiteral("&Passend transponieren"), gruppe), "cmdPassendTransponieren");
    cmdPassendTransponieren->setToolTip(
        QStringLiteral("Die kleinste Transposition, die alle Noten des Blattes auf die Saiten bringt"));
    cmdPassendTransponieren->setEnabled(false);
    transpo->addWidget(cmdPassendTransponieren);
    l->addLayout(transpo);
    connect(hsTranspo, &QSlider::valueChanged, this, [this](int wert) { hsTranspo_Change(wert); });
    connect(cmdPassendTransponieren, &QPushButton::clicked, this, [this] { cmdPassendTransponieren_Click(); });
    return gruppe;
}

void frmLyrabo::spaltenLabelsAnlegen() {
    laden();
    if (labSpalte[1]) return;
    const int boden = kSpaltenOben + kSpalteHoeheBass;
    for (int i = 1; i <= 36; ++i) {
        auto* vorher = labSpalte[i - 1];
        auto* feld = element(new QLabel(m_spaltenFlaeche), "labSpalte", i);
        // Strings get shorter towards the treble, as on the instrument.
        const int hoehe = kSpalteHoeheBass - (kSpalteHoeheBass - kSpalteHoeheDiskant) * i / 36;
        feld->setGeometry(vorher->x() + vorher->width() + kSpalteAbstand, boden - hoehe, kSpalteBreite, hoehe);
        feld->setFrameShape(QFrame::Box);
        feld->setToolTip(QStringLiteral("Saite %1: %2 (MIDI-Note %3)").arg(i + 1).arg(saitenName(55 + i)).arg(55 + i));
        faerben(feld, QColor(255, 255, 255));
        feld->setVisible(true);
        labSpalte[i] = feld;
    }
    for (int i : {0, 12, 24, 36}) faerben(labSpalte[i], kOktavFarbe);
    // Names under the g and c strings help to find one's way along the row.
    for (int i = 0; i <= 36; ++i) {
        const int note = 55 + i;
        if (note % 12 != 7 && note % 12 != 0) continue;
        auto* name = new QLabel(saitenName(note), m_spaltenFlaeche);
        name->setAlignment(Qt::AlignCenter);
        QFont klein = name->font();
        klein.setPointSizeF(klein.pointSizeF() * 0.8);
        name->setFont(klein);
        name->setGeometry(labSpalte[i]->x() - 6, boden + 1, kSpalteBreite + 12, 16);
        name->setVisible(true);
    }
}

void frmLyrabo::spaltenFaerben(const std::array<Farbe, 37>& felder, Farbe links, Farbe rechts) {
    m_spaltenFarben = felder;
    m_gefaerbt = true;
    spaltenMalen();
    faerben(labSpalteBorder[0], QColor(links.r, links.g, links.b));
    faerben(labSpalteBorder[1], QColor(rechts.r, rechts.g, rechts.b));
}

void frmLyrabo::begleitSaitenZeigen(const std::vector<int>& saiten) {
    m_begleitSaiten.fill(false);
    for (int s : saiten)
        if (s >= 1 && s <= int(m_begleitSaiten.size())) m_begleitSaiten[size_t(s - 1)] = true;
    spaltenMalen();
}

// The melody's colours as the engine gave them; a string only the accompaniment uses is shown in a
// lighter shade (teal on the octave strings, which keep standing out).
void frmLyrabo::spaltenMalen() {
    static const Farbe kFrei{255, 255, 255}, kOktavFrei{100, 100, 255};
    if (!m_gefaerbt) return;
    for (size_t i = 0; i < m_spaltenFarben.size(); ++i) {
        if (!labSpalte[i]) continue;
        const Farbe f = m_spaltenFarben[i];
        QColor farbe(f.r, f.g, f.b);
        if (m_begleitSaiten[i] && f == kFrei) farbe = kBegleitFarbe;
        if (m_begleitSaiten[i] && f == kOktavFrei) farbe = kBegleitOktavFarbe;
        faerben(labSpalte[i], farbe);
    }
}

void frmLyrabo::hsTranspo_Change(int wert) {
    labTranspo->setText(QString::number(wert));
    if (m_unterdrueckung) return;
    sicher([this, wert] {
        m_programm.Einstellungen().Transpo(static_cast<int16_t>(wert));
        m_programm.KLNCreator().colorSpaltenLabels();
    });
    // No conversion: the sheet only shows the moved piece as a preview.
    m_blatt->transpoVorschau(static_cast<int16_t>(wert));
    melodieMarkeAuffrischen();
}

void frmLyrabo::m37SaitenHarfe_Click() {
    m_programm.Einstellungen().WDBSpaltenAnzahl(m37SaitenHarfe->isChecked() ? 37 : 25);
    m_blatt->harfeGeaendert();
    melodieMarkeAuffrischen();
}

// The same rule as the sheet's header, over the notes the sheet shows: the transposition nearest
// the written pitch that puts them all on the strings.
void frmLyrabo::cmdPassendTransponieren_Click() {
    const auto& stueck = m_blatt->stueck();
    if (!stueck) {
        nachricht(QMessageBox::Information, QStringLiteral("Bitte zuerst eine MIDI-Datei öffnen und eine Spur wählen."));
        return;
    }
    const int saiten = m_programm.Einstellungen().WDBSpaltenAnzahl() == 25 ? 25 : 37;
    const blatt::Tonumfang umfang = blatt::tonumfang(*stueck);
    const auto transpo = blatt::passendeTransposition(umfang, saiten, hsTranspo->maximum());
    if (!transpo) {
        nachricht(QMessageBox::Information, ausUtf8(blatt::passtNichtText(umfang, saiten, hsTranspo->maximum())));
        return;
    }
    hsTranspo->setValue(*transpo);
    statusBar()->showMessage(QStringLiteral("Transposition %1: alle Noten liegen auf den Saiten.")
                                 .arg(*transpo > 0 ? QStringLiteral("+%1").arg(*transpo) : QString::number(*transpo)),
                             6000);
}

} // namespace lyrabo
