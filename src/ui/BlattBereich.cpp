#include "ui/BlattBereich.h"

#include "app/core/Begleitung.h"
#include "app/core/BlattQuelle.h"
#include "app/core/CProgramm.h"
#include "blatt/BlattSatz.h"
#include "blattmaler/BlattMaler.h"
#include "blattmaler/BlattPdf.h"
#include "model/Fehler.h"
#include "ui/BlattAnsicht.h"
#include "ui/BlattDruck.h"
#include "ui/frmLyrabo.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace lyrabo {

namespace fs = std::filesystem;

namespace {

template <typename W>
W* benannt(W* w, const char* name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

QString ausUtf8(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
fs::path alsPfad(const QString& s) { return fs::path(s.toStdU16String()); }
QString ausPfad(const fs::path& p) { return QString::fromStdU16String(p.u16string()); }

QString mm(double wert) { return QString::number(wert, 'f', 0); }

} // namespace

BlattBereich::BlattBereich(frmLyrabo& fenster, CProgramm& programm)
    : QObject(&fenster), m_fenster(fenster), m_programm(programm),
      m_daten(blattDatenLesen(programm.Orte())) {}

BlattBereich::~BlattBereich() = default;

int BlattBereich::saiten() const {
    return m_programm.Einstellungen().WDBSpaltenAnzahl() == 25 ? 25 : 37;
}

const blatt::Einstellungen& BlattBereich::einstellungen() const { return m_daten.fuer(saiten()); }

// ---------------------------------------------------------------- building

QFrame* BlattBereich::ansichtAnlegen(QWidget* eltern) {
    auto* rahmen = benannt(new QFrame(eltern), "frameNotenblatt");
    auto* l = new QVBoxLayout(rahmen);
    l->setContentsMargins(0, 0, 0, 0);
    l->setSpacing(3);
    auto* kopf = new QHBoxLayout;
    labBlattInfo = benannt(new QLabel(rahmen), "labBlattInfo");
    labBlattInfo->setTextFormat(Qt::RichText);
    kopf->addWidget(labBlattInfo, 1);
    cmdBlattBreite = benannt(new QPushButton(QStringLiteral("Seiten&breite"), rahmen), "cmdBlattBreite");
    cmdBlattBreite->setToolTip(QStringLiteral("Die Seite füllt die Breite der Ansicht"));
    cmdBlatt100 = benannt(new QPushButton(QStringLiteral("100 %"), rahmen), "cmdBlatt100");
    cmdBlatt100->setToolTip(QStringLiteral("Originalgröße; Strg + Mausrad vergrößert und verkleinert"));
    labBlattZoom = benannt(new QLabel(rahmen), "labBlattZoom");
    labBlattZoom->setMinimumWidth(48);
    labBlattZoom->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* pdf = benannt(new QPushButton(QStringLiteral("Als &PDF…"), rahmen), "cmdBlattPdf");
    auto* druck = benannt(new QPushButton(QStringLiteral("&Drucken…"), rahmen), "cmdBlattDrucken");
    for (QWidget* w : std::initializer_list<QWidget*>{labBlattZoom, cmdBlattBreite, cmdBlatt100, pdf, druck})
        kopf->addWidget(w);
    l->addLayout(kopf);
    m_ansicht = benannt(new BlattAnsicht(rahmen), "BlattAnsicht");
    l->addWidget(m_ansicht, 1);

    connect(cmdBlattBreite, &QPushButton::clicked, this, [this] { m_ansicht->seitenbreite(); });
    connect(cmdBlatt100, &QPushButton::clicked, this, [this] { m_ansicht->prozent(100); });
    connect(pdf, &QPushButton::clicked, this, [this] { alsPdfSpeichern(); });
    connect(druck, &QPushButton::clicked, this, [this] { drucken(); });
    connect(m_ansicht, &BlattAnsicht::zoomGeaendert, this,
            [this](double p) { labBlattZoom->setText(QStringLiteral("%1 %").arg(std::lround(p))); });
    infoZeigen();
    return rahmen;
}

QFrame* BlattBereich::optionenAnlegen(QWidget* eltern) {
    auto* f = new QFrame(eltern);
    auto* g = new QGridLayout(f);
    labBlattHarfe = benannt(new QLabel(f), "labBlattHarfe");
    g->addWidget(labBlattHarfe, 0, 0, 1, 4);

    g->addWidget(new QLabel(QStringLiteral("Papier:"), f), 1, 0);
    comboPapier = benannt(new QComboBox(f), "comboPapier");
    comboPapier->addItems({QStringLiteral("A4"), QStringLiteral("A3")});
    auto* lage = new QHBoxLayout;
    lage->addWidget(comboPapier);
    opHochformat = benannt(new QRadioButton(QStringLiteral("Hochformat"), f), "opHochformat");
    opQuerformat = benannt(new QRadioButton(QStringLiteral("Querformat"), f), "opQuerformat");
    auto* gruppe = new QButtonGroup(f);
    gruppe->addButton(opHochformat);
    gruppe->addButton(opQuerformat);
    lage->addWidget(opHochformat);
    lage->addWidget(opQuerformat);
    lage->addStretch(1);
    g->addLayout(lage, 1, 1);

    auto spin = [f](const char* name, double von, double bis, double schritt) {
        auto* s = benannt(new QDoubleSpinBox(f), name);
        s->setRange(von, bis);
        s->setSingleStep(schritt);
        s->setDecimals(1);
        s->setSuffix(QStringLiteral(" mm"));
        s->setLocale(QLocale(QLocale::German, QLocale::Germany));  // "11,5 mm", as on the sheet
        s->setKeyboardTracking(false);
        return s;
    };
    using E = blatt::Einstellungen;
    g->addWidget(new QLabel(QStringLiteral("Saitenabstand:"), f), 2, 0);
    spinSaitenabstand = spin("spinSaitenabstand", E::kMinAbstand, E::kMaxAbstand, 0.1);
    spinSaitenabstand->setToolTip(QStringLiteral("Abstand zweier Saiten Ihrer Harfe, von Mitte zu Mitte gemessen"));
    g->addWidget(spinSaitenabstand, 2, 1, Qt::AlignLeft);
    g->addWidget(new QLabel(QStringLiteral("Abstand je Viertelnote:"), f), 3, 0);
    spinMmProViertel = spin("spinMmProViertel", E::kMinProViertel, E::kMaxProViertel, 0.5);
    g->addWidget(spinMmProViertel, 3, 1, Qt::AlignLeft);
    g->addWidget(new QLabel(QStringLiteral("Notenform:"), f), 4, 0);
    comboNotenform = benannt(new QComboBox(f), "comboNotenform");
    comboNotenform->addItems({QStringLiteral("Tischharfe (ohne Hals)"), QStringLiteral("mit Hals")});
    comboNotenform->setToolTip(QStringLiteral("Tischharfe: der Wert einer Note zeigt sich an Größe und Füllung des Kopfes, "
                                              "wie auf gekauften Unterlegblättern.\nmit Hals: Notenköpfe mit Hals und Fähnchen."));
    g->addWidget(comboNotenform, 4, 1, Qt::AlignLeft);

    auto schalter = [f](const char* name, const char* text, const char* tipp) {
        auto* c = benannt(new QCheckBox(QString::fromUtf8(text), f), name);
        if (tipp) c->setToolTip(QString::fromUtf8(tipp));
        return c;
    };
    chEinpassen = schalter("chEinpassen", "Auf ein Blatt einpassen",
                           "Das ganze Lied wird so dicht gesetzt, dass es ein Blatt füllt (nie weiter als ohne Einpassen).\n"
                           "Passt es auch dann nicht, wird es an Taktstrichen gleichmäßig auf möglichst wenige Blätter verteilt.");
    chKurzePausen = schalter("chKurzePausen", "Kurze Pausen schließen",
                             "Eine Pause kürzer als eine Achtel zwischen zwei Noten wird nicht gezeichnet;\n"
                             "die Note davor wird um ihre Länge verlängert. Nur das Notenblatt ändert sich.");
    chWiederholungen = schalter("chWiederholungen", "Wiederholungen zusammenfassen",
                                "Takte, die noch einmal gespielt werden, stehen nur einmal auf dem Blatt, mit Wiederholungszeichen.");
    chNotenTexte = schalter("chNotenTexte", "Liedtext an den Noten", nullptr);
    chMelodieLinie = schalter("chMelodieLinie", "Melodielinie", nullptr);
    g->addWidget(chEinpassen, 1, 2);
    g->addWidget(chKurzePausen, 2, 2);
    g->addWidget(chWiederholungen, 3, 2);
    g->addWidget(chNotenTexte, 1, 3);
    g->addWidget(chMelodieLinie, 2, 3);
    auto* standard = benannt(new QPushButton(QStringLiteral("Standardwerte"), f), "cmdBlattStandard");
    g->addWidget(standard, 4, 3, Qt::AlignRight);
    g->setColumnStretch(3, 1);
    g->setRowStretch(5, 1);

    // Further tracks drawn beside the melody, lighter; kept for this file only.
    auto* begleitung = new QGroupBox(QStringLiteral("Begleitung"), f);
    auto* bl = new QVBoxLayout(begleitung);
    listBegleitung = benannt(new QListWidget(begleitung), "listBegleitung");
    listBegleitung->setToolTip(QStringLiteral("Angekreuzte Spuren stehen als Begleitung auf dem Blatt: kleinere, hellere "
                                              "Köpfe ohne Melodielinie,\nmit einer gestrichelten Linie zur Melodienote, "
                                              "die zugleich beginnt. Umgerechnet wie die Spur selbst."));
    listBegleitung->setMaximumWidth(230);
    bl->addWidget(listBegleitung);
    g->addWidget(begleitung, 0, 4, 6, 1);
    connect(listBegleitung, &QListWidget::itemChanged, this, [this] { begleitungGeaendert(); });

    connect(comboPapier, &QComboBox::currentIndexChanged, this, [this] { optionGeaendert(); });
    connect(comboNotenform, &QComboBox::currentIndexChanged, this, [this] { optionGeaendert(); });
    for (auto* w : {opHochformat, opQuerformat}) connect(w, &QRadioButton::toggled, this, [this](bool an) {
            if (an) optionGeaendert();
        });
    for (auto* w : {spinSaitenabstand, spinMmProViertel})
        connect(w, &QDoubleSpinBox::valueChanged, this, [this] { optionGeaendert(); });
    for (auto* w : {chEinpassen, chKurzePausen, chWiederholungen, chNotenTexte, chMelodieLinie})
        connect(w, &QCheckBox::toggled, this, [this] { optionGeaendert(); });
    connect(standard, &QPushButton::clicked, this, [this] {
        m_daten.fuer(saiten()) = blatt::standardFuer(saiten());
        optionenZeigen();
        optionGeaendert();
    });
    // The controls are filled once the settings exist (harfeGeaendert, from the window's refresh).
    return f;
}

void BlattBereich::menueEintraege(QMenu* datei) {
    mBlattAlsPdf = benannt(datei->addAction(QStringLiteral("Notenblatt als &PDF speichern…")), "mBlattAlsPdf");
    mBlattAlsSvg = benannt(datei->addAction(QStringLiteral("Notenblatt als S&VG speichern…")), "mBlattAlsSvg");
    mBlattAlsSvg->setToolTip(QStringLiteral("Als Vektorgrafik für ein Zeichenprogramm oder eine Webseite, eine Datei je Seite"));
    mBlattDrucken = benannt(datei->addAction(QStringLiteral("Notenblatt &drucken…")), "mBlattDrucken");
    mBlattDrucken->setShortcut(QKeySequence::Print);
    mBlattVorschau = benannt(datei->addAction(QStringLiteral("Druck&vorschau des Notenblatts…")), "mBlattVorschau");
    connect(mBlattAlsPdf, &QAction::triggered, this, [this] { alsPdfSpeichern(); });
    connect(mBlattAlsSvg, &QAction::triggered, this, [this] { alsSvgSpeichern(); });
    connect(mBlattDrucken, &QAction::triggered, this, [this] { drucken(); });
    connect(mBlattVorschau, &QAction::triggered, this, [this] { druckVorschau(); });
}

// ---------------------------------------------------------------- the piece and its sheet

void BlattBereich::nachUmrechnung(bool mischung) {
    m_mischung = mischung;
    m_spur = mischung ? int16_t{0} : static_cast<int16_t>(m_programm.Form().ausgewaehlteSpurZeile() + 1);
    const std::string titel = blattTitel(m_programm, m_spur);
    m_melodie = blattStueck(m_programm, mischung ? m_programm.KlangNotenMix : m_programm.KlangNoten, titel);
    // The track shown is the melody; ticked as accompaniment too it would add nothing.
    if (listBegleitung) {
        const QSignalBlocker sperre(listBegleitung);
        for (int i = 0; i < listBegleitung->count(); ++i) {
            QListWidgetItem* eintrag = listBegleitung->item(i);
            const bool gezeigt = eintrag->data(Qt::UserRole).toInt() == m_spur;
            eintrag->setFlags(gezeigt ? eintrag->flags() & ~Qt::ItemIsEnabled : eintrag->flags() | Qt::ItemIsEnabled);
        }
    }
    stueckZusammensetzen();
    neuSetzen();
}

void BlattBereich::stueckZusammensetzen() {
    if (!m_melodie) {
        m_stueck.reset();
    } else {
        try {
            m_stueck = blattStueckMitBegleitung(m_programm, *m_melodie, m_begleitung, m_spur);
        } catch (const std::exception&) {
            m_stueck = m_melodie;
            status(QStringLiteral("Die Begleitung konnte nicht umgerechnet werden; das Blatt zeigt nur die Melodie."));
        }
    }
    // The string row shows the strings the accompaniment uses.
    std::vector<int> saiten;
    if (m_stueck)
        for (const auto& n : m_stueck->noten)
            if (n.begleitung) saiten.push_back(blatt::saiteVon(n.tonHoehe, m_stueck->transpo));
    m_fenster.begleitSaitenZeigen(saiten);
}

void BlattBereich::begleitSpurenAnbieten(const std::vector<std::string>& labels) {
    m_begleitung.clear();
    if (!listBegleitung) return;
    const QSignalBlocker sperre(listBegleitung);
    listBegleitung->clear();
    const MidiDateiInhalt* inhalt = m_programm.Midifile1.inhalt();
    if (!inhalt || labels.empty()) return;
    for (int16_t spur : spurenMitNoten(*inhalt)) {
        const QString name = size_t(spur) <= labels.size() ? ausUtf8(labels[size_t(spur - 1)]) : QString();
        auto* eintrag = new QListWidgetItem(QStringLiteral("%1: %2").arg(spur).arg(name), listBegleitung);
        eintrag->setData(Qt::UserRole, int(spur));
        eintrag->setFlags(eintrag->flags() | Qt::ItemIsUserCheckable);
        eintrag->setCheckState(Qt::Unchecked);
    }
}

void BlattBereich::begleitungGeaendert() {
    m_begleitung.clear();
    for (int i = 0; i < listBegleitung->count(); ++i) {
        const QListWidgetItem* eintrag = listBegleitung->item(i);
        if (eintrag->checkState() == Qt::Checked) m_begleitung.push_back(static_cast<int16_t>(eintrag->data(Qt::UserRole).toInt()));
    }
    if (!m_melodie) return;
    stueckZusammensetzen();
    neuSetzen();
}

void BlattBereich::transpoVorschau(int16_t transpo) {
    if (!m_stueck || m_stueck->transpo == transpo) return;
    m_stueck->transpo = transpo;
    m_melodie->transpo = transpo;
    std::vector<int> saiten;
    for (const auto& n : m_stueck->noten)
        if (n.begleitung) saiten.push_back(blatt::saiteVon(n.tonHoehe, transpo));
    m_fenster.begleitSaitenZeigen(saiten);
    neuSetzen();
}

void BlattBereich::harfeGeaendert() {
    optionenZeigen();
    if (m_stueck) neuSetzen();
}

void BlattBereich::leeren() {
    begleitSpurenAnbieten({});
    m_melodie.reset();
    m_stueck.reset();
    m_fenster.begleitSaitenZeigen({});
    neuSetzen();
}

void BlattBereich::neuSetzen() {
    if (!m_ansicht) return;
    if (!m_stueck) {
        m_ansicht->zeigen({});
        m_geschrieben = {};
    } else {
        m_stueck->saiten = static_cast<int16_t>(saiten());
        m_ansicht->zeigen(blatt::setzen(*m_stueck, einstellungen()));
        m_geschrieben = blatt::geschrieben(*m_stueck, m_ansicht->blatt().faltung);
    }
    infoZeigen();
}

void BlattBereich::infoZeigen() {
    if (!labBlattInfo) return;
    const auto& b = m_ansicht->blatt();
    if (!m_stueck || b.seiten.empty()) {
        labBlattInfo->setText(QStringLiteral("<b>Notenblatt</b> – erscheint, sobald eine Spur umgerechnet ist."));
        return;
    }
    const auto& e = einstellungen();
    QString text = QStringLiteral("<b>Notenblatt</b> %1 · %2 %3 · %4 Saiten")
                       .arg(b.seiten.size() == 1 ? QStringLiteral("1 Seite") : QStringLiteral("%1 Seiten").arg(b.seiten.size()))
                       .arg(e.papier == blatt::Papier::A4 ? QStringLiteral("A4") : QStringLiteral("A3"))
                       .arg(e.quer ? QStringLiteral("quer") : QStringLiteral("hoch"))
                       .arg(saiten());
    if (std::any_of(b.seiten.begin(), b.seiten.end(), [](const auto& s) { return s.streifen > 1; }))
        text += QStringLiteral(" · in Streifen");
    if (m_mischung) text += QStringLiteral(" · gemischte Spuren");
    if (b.ausserhalb > 0) {
        QString warnung = b.ausserhalb == 1 ? QStringLiteral("1 Note liegt neben den Saiten")
                                            : QStringLiteral("%1 Noten liegen neben den Saiten").arg(b.ausserhalb);
        if (b.transpoVorschlag)
            warnung += QStringLiteral(" – Transposition %1 bringt alle darauf").arg(QString::asprintf("%+d", b.vorschlag));
        text += QStringLiteral(" · <span style=\"color:#c00000\">%1</span>").arg(warnung);
    }
    labBlattInfo->setText(text);
}

// ---------------------------------------------------------------- options page

void BlattBereich::optionenZeigen() {
    if (!comboPapier) return;
    m_sperre = true;
    const auto& e = einstellungen();
    labBlattHarfe->setText(QStringLiteral("Einstellungen für die %1-saitige Harfe (Menü Harfe); "
                                          "gedruckt wird immer in Originalgröße.").arg(saiten()));
    comboPapier->setCurrentIndex(e.papier == blatt::Papier::A4 ? 0 : 1);
    (e.quer ? opQuerformat : opHochformat)->setChecked(true);
    spinSaitenabstand->setValue(e.saitenAbstand);
    spinMmProViertel->setValue(e.mmProViertel);
    comboNotenform->setCurrentIndex(e.notenform == blatt::Notenform::Hals ? 1 : 0);
    chEinpassen->setChecked(e.einpassen);
    chKurzePausen->setChecked(e.kurzePausenSchliessen);
    chWiederholungen->setChecked(e.wiederholungenZusammenfassen);
    chNotenTexte->setChecked(e.notenTexte);
    chMelodieLinie->setChecked(e.melodieLinie);
    m_sperre = false;
}

void BlattBereich::optionGeaendert() {
    if (m_sperre) return;
    blatt::Einstellungen& e = m_daten.fuer(saiten());
    e.papier = comboPapier->currentIndex() == 0 ? blatt::Papier::A4 : blatt::Papier::A3;
    e.quer = opQuerformat->isChecked();
    e.saitenAbstand = spinSaitenabstand->value();
    e.mmProViertel = spinMmProViertel->value();
    e.notenform = comboNotenform->currentIndex() == 1 ? blatt::Notenform::Hals : blatt::Notenform::Harfe;
    e.einpassen = chEinpassen->isChecked();
    e.kurzePausenSchliessen = chKurzePausen->isChecked();
    e.wiederholungenZusammenfassen = chWiederholungen->isChecked();
    e.notenTexte = chNotenTexte->isChecked();
    e.melodieLinie = chMelodieLinie->isChecked();
    e = blatt::begrenzt(e);
    try {
        blattDatenSchreiben(m_daten, m_programm.Orte());
    } catch (const Fehler&) {
        status(QStringLiteral("Die Notenblatt-Einstellungen konnten nicht gespeichert werden; sie gelten bis zum Beenden."));
    }
    neuSetzen();
}

// ---------------------------------------------------------------- PDF

std::string BlattBereich::pdfSchreiben(const fs::path& ziel) const {
    if (!m_stueck) return "Bitte zuerst eine MIDI-Datei öffnen und eine Spur wählen.";
    // The same path as the command line takes, from the same conversion, so the files are equal.
    return notenblattPdf(m_programm, m_mischung ? m_programm.KlangNotenMix : m_programm.KlangNoten, m_spur,
                         einstellungen(), ziel, m_begleitung);
}

std::string BlattBereich::svgSchreiben(const fs::path& ziel, size_t* seiten) const {
    if (!m_stueck) return "Bitte zuerst eine MIDI-Datei öffnen und eine Spur wählen.";
    return notenblattSvg(m_programm, m_mischung ? m_programm.KlangNotenMix : m_programm.KlangNoten, m_spur,
                         einstellungen(), ziel, seiten, m_begleitung);
}

void BlattBereich::alsPdfSpeichern() { speichern(false); }
void BlattBereich::alsSvgSpeichern() { speichern(true); }

void BlattBereich::speichern(bool svg) {
    if (nichtsZuDrucken()) return;
    const QString endung = svg ? QStringLiteral(".svg") : QStringLiteral(".pdf");
    std::error_code ec;
    fs::path ordner = alsPfad(ausUtf8(m_daten.pdfOrdner));
    const fs::path midi = fs::path(m_programm.Midifile1.filename());
    if (m_daten.pdfOrdner.empty() || !fs::is_directory(ordner, ec)) ordner = midi.parent_path();
    const fs::path vorschlag = ordner / (midi.stem().string() + endung.toStdString());
    auto wahl = svg ? m_fenster.speicherDialog(QStringLiteral("Notenblatt als SVG speichern"), ausPfad(vorschlag),
                                               QStringLiteral("SVG-Grafik, eine Datei je Seite (*.svg)"))
                    : m_fenster.speicherDialog(QStringLiteral("Notenblatt als PDF speichern"), ausPfad(vorschlag),
                                               QStringLiteral("PDF-Dokument (*.pdf)"));
    if (!wahl || wahl->isEmpty()) return;
    fs::path ziel = alsPfad(*wahl);
    if (ziel.extension().empty()) ziel += endung.toStdString();
    // SVG: one file per page, so every one of them may be there already.
    const auto dateien = svg ? blatt::svgDateien(ziel, m_ansicht->blatt().seiten.size()) : std::vector<fs::path>{ziel};
    std::vector<fs::path> vorhanden;
    for (const auto& d : dateien)
        if (fs::exists(d, ec)) vorhanden.push_back(d);
    if (!vorhanden.empty()) {
        const QString frage =
            vorhanden.size() == 1
                ? QStringLiteral("Die Datei „%1“ gibt es schon.\nSoll sie ersetzt werden?").arg(ausPfad(vorhanden[0].filename()))
                : QStringLiteral("Die Dateien „%1“ bis „%2“ gibt es schon.\nSollen sie ersetzt werden?")
                      .arg(ausPfad(vorhanden.front().filename()), ausPfad(vorhanden.back().filename()));
        const auto antwort = m_fenster.nachricht(QMessageBox::Question, frage, QMessageBox::Yes | QMessageBox::No);
        if (antwort != QMessageBox::Yes) return;
    }
    size_t seiten = 1;
    const std::string fehler = svg ? svgSchreiben(ziel, &seiten) : pdfSchreiben(ziel);
    if (!fehler.empty()) {
        m_fenster.nachricht(QMessageBox::Warning, ausUtf8(fehler));
        return;
    }
    m_daten.pdfOrdner = ausPfad(ziel.parent_path()).toStdString();
    try {
        blattDatenSchreiben(m_daten, m_programm.Orte());
    } catch (const Fehler&) {
        // The sheet is saved; only the folder is not remembered for next time.
    }
    if (seiten > 1)
        status(QStringLiteral("Notenblatt gespeichert: %1 Seiten, %2 bis %3")
                   .arg(seiten)
                   .arg(ausPfad(blatt::svgDateien(ziel, seiten).front()), ausPfad(blatt::svgDateien(ziel, seiten).back().filename())));
    else
        status(QStringLiteral("Notenblatt gespeichert: %1").arg(ausPfad(ziel)));
}

// ---------------------------------------------------------------- printing

bool BlattBereich::nichtsZuDrucken() {
    if (m_stueck && !m_ansicht->blatt().seiten.empty()) return false;
    m_fenster.meldung("Bitte zuerst eine MIDI-Datei öffnen und eine Spur wählen.");
    return true;
}

std::optional<blatt::Blatt> BlattBereich::blattFuerDrucker(QPrinter& drucker) {
    const blatt::Blatt& gezeigt = m_ansicht->blatt();
    const QRectF bereich = druckbereichMm(drucker);
    if (passtAufDrucker(gezeigt, bereich)) return gezeigt;

    QRectF inhalt;
    for (const auto& s : gezeigt.seiten) inhalt = inhalt.united(inhaltMm(s).intersected(QRectF(0, 0, s.breite, s.hoehe)));
    const auto antwort = m_fenster.nachricht(
        QMessageBox::Question,
        QStringLiteral("Der Drucker kann auf diesem Papier nur %1 × %2 mm bedrucken (%3 mm vom linken Rand an); "
                       "das Notenblatt reicht von %4 bis %5 mm und ist %6 mm hoch.\n\n"
                       "Ja: in Streifen drucken, die Sie an den Klebemarken aneinanderlegen.\n"
                       "Nein: trotzdem so drucken – was am Rand fehlt, fehlt auf dem Papier.")
            .arg(mm(bereich.width()), mm(bereich.height()), mm(bereich.left()), mm(inhalt.left()), mm(inhalt.right()),
                 mm(inhalt.height())),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (antwort == QMessageBox::No) return gezeigt;
    if (antwort != QMessageBox::Yes) return std::nullopt;

    // Laid out again on the printer's paper, keeping clear of the edges it cannot reach: the layout
    // cuts the strings into strips where they no longer fit. The orientation chosen first, then the other.
    const QPageLayout vorher = drucker.pageLayout();
    QPageLayout papier = drucker.pageLayout();
    papier.setUnits(QPageLayout::Millimeter);
    const QMarginsF raender = papier.minimumMargins();
    const double druckRand = std::max({raender.left(), raender.top(), raender.right(), raender.bottom()}) + 0.3;
    const bool querGewaehlt = papier.orientation() == QPageLayout::Landscape;
    for (bool quer : {querGewaehlt, !querGewaehlt}) {
        blatt::Einstellungen versuch = einstellungen();
        versuch.papier = druckerPapier(drucker).value_or(versuch.papier);
        versuch.quer = quer;
        versuch.druckRand = druckRand;
        blatt::Stueck stueck = *m_stueck;
        stueck.saiten = static_cast<int16_t>(saiten());
        blatt::Blatt streifen = blatt::setzen(stueck, versuch);
        papierEinstellen(drucker, streifen);
        if (passtAufDrucker(streifen, druckbereichMm(drucker))) return streifen;
    }
    drucker.setPageLayout(vorher);
    m_fenster.meldung("Auch in Streifen passt das Notenblatt nicht auf das bedruckbare Feld dieses Druckers. "
                      "Bitte ein größeres Papier wählen.");
    return std::nullopt;
}

void BlattBereich::drucken() {
    if (nichtsZuDrucken()) return;
    QPrinter drucker(QPrinter::HighResolution);
    papierEinstellen(drucker, m_ansicht->blatt());
    drucker.setDocName(ausUtf8(m_stueck->titel));
    if (m_druckerAntwort) {
        if (!m_druckerAntwort(drucker)) return;
    } else {
        QPrintDialog dialog(&drucker, &m_fenster);
        dialog.setWindowTitle(QStringLiteral("Notenblatt drucken"));
        if (dialog.exec() != QDialog::Accepted) return;
    }
    auto blatt = blattFuerDrucker(drucker);
    if (!blatt) return;
    const std::string fehler = blattDrucken(drucker, *blatt);
    if (!fehler.empty()) m_fenster.meldung(fehler);
    else status(QStringLiteral("Notenblatt an den Drucker geschickt (%1 Seiten).").arg(blatt->seiten.size()));
}

void BlattBereich::druckVorschau() {
    if (nichtsZuDrucken()) return;
    QPrinter drucker(QPrinter::HighResolution);
    papierEinstellen(drucker, m_ansicht->blatt());
    drucker.setDocName(ausUtf8(m_stueck->titel));
    QPrintPreviewDialog vorschau(&drucker, &m_fenster);
    vorschau.setWindowTitle(QStringLiteral("Druckvorschau – %1").arg(ausUtf8(m_stueck->titel)));
    // The preview paints again whenever paper or printer change; the question about strips is
    // asked once for each printable area.
    std::optional<QRectF> gefragtFuer;
    std::optional<blatt::Blatt> antwort;
    connect(&vorschau, &QPrintPreviewDialog::paintRequested, this, [&](QPrinter* p) {
        const QRectF bereich = druckbereichMm(*p);
        if (!gefragtFuer || *gefragtFuer != bereich) {
            gefragtFuer = bereich;
            antwort = blattFuerDrucker(*p);
        }
        if (antwort) blattDrucken(*p, *antwort);
    });
    vorschau.resize(1100, 760);
    vorschau.exec();
}

void BlattBereich::status(const QString& text) { m_fenster.statusBar()->showMessage(text, 8000); }

// ---------------------------------------------------------------- playback

void BlattBereich::wiedergabePosition(int32_t dateiTick) {
    if (!m_stueck || !m_ansicht) return;
    // Playback counts the file's own ticks; the sheet those of the conversion.
    const int32_t tick = m_programm.umrechnungsTick(dateiTick);
    // A note sounds from its start to its end; the file's own onsets lie up to half a grid step
    // beside the quantised ones.
    const int32_t raster = m_programm.Einstellungen().QuantTicks();
    const int32_t spiel = std::max<int32_t>(1, raster > 0 ? raster / 2 : m_stueck->ticksProViertel / 8);
    // A repeat's later passes light the notes where the sheet writes them.
    const int64_t t = blatt::geschriebenerTick(m_ansicht->blatt().faltung, tick);
    std::vector<bool> an(m_geschrieben.noten.size(), false);
    for (size_t i = 0; i < an.size(); ++i) {
        const auto& n = m_geschrieben.noten[i];
        const int64_t von = int64_t{n.start} - spiel, bis = int64_t{n.start} + std::max<int32_t>(n.laenge, 1) - spiel;
        an[i] = t >= von && t < bis;
    }
    m_ansicht->hervorheben(std::move(an));
    m_ansicht->tickZeigen(int32_t(t));
}

void BlattBereich::wiedergabeAus() {
    if (m_ansicht) m_ansicht->hervorheben({});
}

} // namespace lyrabo
