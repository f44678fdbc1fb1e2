#include "ui/UmrechnungSeite.h"

#include "app/core/CProgramm.h"
#include "model/Fehler.h"
#include "settings/UmrechnungDaten.h"
#include "ui/frmLyrabo.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QStatusBar>

namespace lyrabo {

namespace {
template <typename W>
W* benannt(W* w, const char* name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}
} // namespace

UmrechnungSeite::UmrechnungSeite(frmLyrabo& fenster, CProgramm& programm, std::function<void()> neuBerechnen)
    : QObject(&fenster), m_fenster(fenster), m_programm(programm), m_neuBerechnen(std::move(neuBerechnen)) {}

QFrame* UmrechnungSeite::anlegen(QWidget* eltern, Steuerelemente& s) {
    auto* f = new QFrame(eltern);
    auto* g = new QGridLayout(f);
    g->addWidget(new QLabel(QStringLiteral("Quantisierung (kürzester Notenwert):"), f), 0, 0);
    s.hsQuantisierung = benannt(new QSlider(Qt::Horizontal, f), "hsQuantisierung");
    s.hsQuantisierung->setRange(1, 8);
    s.hsQuantisierung->setPageStep(1);
    s.hsQuantisierung->setTickPosition(QSlider::TicksBelow);
    s.hsQuantisierung->setTickInterval(1);
    s.hsQuantisierung->setValue(8);
    g->addWidget(s.hsQuantisierung, 0, 1);
    s.txtQuantisierung = benannt(new QLineEdit(f), "txtQuantisierung");
    s.txtQuantisierung->setReadOnly(true);
    s.txtQuantisierung->setFixedWidth(60);
    g->addWidget(s.txtQuantisierung, 0, 2);

    s.chHoechsterTonMelodie = benannt(new QCheckBox(QStringLiteral("Höchster Ton = Melodie"), f), "chHoechsterTonMelodie");
    s.chLegato = benannt(new QCheckBox(QStringLiteral("Legato (Lücken bis zum nächsten Akkord füllen)"), f), "chLegato");
    s.chPausenLetzerTakt = benannt(new QCheckBox(QStringLiteral("Pausen im letzten Takt"), f), "chPausenLetzerTakt");
    s.chPunktPausen = benannt(new QCheckBox(QStringLiteral("Punktierte Pausen"), f), "chPunktPausen");
    g->addWidget(s.chLegato, 1, 0);
    g->addWidget(s.chHoechsterTonMelodie, 1, 1);
    g->addWidget(s.chPausenLetzerTakt, 2, 0);
    g->addWidget(s.chPunktPausen, 2, 1);

    chGenaueAufloesung = benannt(new QCheckBox(QStringLiteral("Genaue Auflösung"), f), "chGenaueAufloesung");
    chGenaueAufloesung->setToolTip(
        QStringLiteral("Eine Viertelnote der MIDI-Datei ist auf dem Blatt und in allen Texten eine Viertelnote, bei jeder "
                       "Auflösung (Ticks pro Viertel) und auch ohne Tempoangabe. Ausgeschaltet rechnet Lyrabo wie "
                       "früher mit der Auflösung, die die Tempoangabe setzt."));
    chGenaueAufloesung->setChecked(m_programm.Umrechnung.genaueAufloesung);
    g->addWidget(chGenaueAufloesung, 3, 0);
    connect(chGenaueAufloesung, &QCheckBox::clicked, this, [this](bool an) { chGenaueAufloesung_Click(an); });

    g->setColumnStretch(1, 1);
    g->setRowStretch(4, 1);
    return f;
}

QLabel* UmrechnungSeite::hinweisAnlegen(QWidget* eltern) {
    labAufloesung = benannt(new QLabel(eltern), "labAufloesung");
    labAufloesung->setWordWrap(true);
    labAufloesung->setVisible(false);
    return labAufloesung;
}

void UmrechnungSeite::hinweisZeigen() {
    if (!labAufloesung) return;
    const std::string hinweis = m_programm.aufloesungsHinweis();
    labAufloesung->setText(QString::fromStdString(hinweis));
    labAufloesung->setVisible(!hinweis.empty());
}

void UmrechnungSeite::chGenaueAufloesung_Click(bool an) {
    if (m_fenster.Unterdrueckung()) return;
    m_fenster.sicher([this, an] { m_programm.genaueAufloesungSetzen(an); });
    try {
        umrechnungDatenSchreiben(m_programm.Umrechnung, m_programm.Orte());
    } catch (const Fehler&) {
        m_fenster.statusBar()->showMessage(
            QStringLiteral("Die Einstellung „Genaue Auflösung“ konnte nicht gespeichert werden; sie gilt bis zum Beenden."),
            8000);
    }
    hinweisZeigen();
    m_neuBerechnen();
}

} // namespace lyrabo
