#include "ui/frmLyrabo.h"

#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "midi/EreignisListe.h"
#include "model/Fehler.h"
#include "model/Text.h"
#include "settings/UserDaten.h"
#include "ui/BlattBereich.h"
#include "ui/Hilfe.h"
#include "ui/MidiAblage.h"
#include "ui/Notenschrift.h"
#include "ui/Steuerelemente.h"
#include "ui/ZuletztMenue.h"
#include "ui/UmrechnungSeite.h"

#if __has_include("ui/WiedergabeLeiste.h")
#include "ui/WiedergabeLeiste.h"
#define LYRABO_MIT_WIEDERGABE 1
#endif

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace lyrabo {

using namespace steuer;

namespace {

// The character a code stands for in the note font (the fonts use the Windows code page).
QString zeichenVonCode(int code) {
    if (code <= 0) return {};
    return ausUtf8(cp1252ZuUtf8(std::string(1, static_cast<char>(code))));
}

// Length names for captions, longest first, as the note values are listed.
const char* const kLaengenNamen[8] = {"1/1", "1/2p", "1/2", "1/4p", "1/4", "1/8p", "1/8", "1/16"};

} // namespace

frmLyrabo::frmLyrabo(ProgrammOrte orte, QWidget* parent)
    : QMainWindow(parent), m_programm(std::move(orte), *this, this) {
    setObjectName(QStringLiteral("frmLyrabo"));

    m_blatt = new BlattBereich(*this, m_programm);
    m_umrechnung = new UmrechnungSeite(*this, m_programm, [this] { neuBerechnen(); });
    menuesAnlegen();

    auto* zentrum = new QWidget(this);
    auto* haupt = new QHBoxLayout(zentrum);
    haupt->setContentsMargins(8, 6, 8, 6);
    haupt->setSpacing(10);
    haupt->addWidget(spurenBereichAnlegen());

    auto* rechts = new QVBoxLayout;
    rechts->setSpacing(6);
    rechts->addWidget(saitenAnzeigeAnlegen());
    // The options can be pushed up out of the way, so that more of the sheet shows.
    auto* teiler = new QSplitter(Qt::Vertical, zentrum);
    teiler->setObjectName(QStringLiteral("teilerOptionenAnsichten"));
    teiler->setChildrenCollapsible(false);
    teiler->addWidget(optionenAnlegen());
    teiler->addWidget(ansichtenAnlegen());
    teiler->setStretchFactor(0, 0);
    teiler->setStretchFactor(1, 1);
    teiler->setCollapsible(0, true);
    rechts->addWidget(teiler, 1);
    haupt->addLayout(rechts, 1);
    setCentralWidget(zentrum);
    statusBar()->setSizeGripEnabled(true);

    m_hilfe = new frmHilfe(this);
    m_info = new frmInfo(this);
    // A MIDI file dropped anywhere on the window opens as through the menu.
    setAcceptDrops(true);
    installEventFilter(new MidiAblage(this, [this](const QString& pfad) { abgelegtOeffnen(pfad); },
                                      [this](const QString& text) { nachricht(QMessageBox::Information, text); }));
    resize(1300, 700);
}

frmLyrabo::~frmLyrabo() = default;

// ---------------------------------------------------------------- building the window

void frmLyrabo::menuesAnlegen() {
    auto* datei = menuBar()->addMenu(QStringLiteral("&Datei"));
    FileOpen = element(datei->addAction(QStringLiteral("MIDI-Datei &öffnen…")), "FileOpen");
    FileOpen->setShortcut(QKeySequence::Open);
    m_zuletzt = new ZuletztMenue(*this, m_programm, datei, [this](const QString& pfad) { abgelegtOeffnen(pfad); },
                                 [this](const QString& text) { nachricht(QMessageBox::Information, text); });
    mSpeichernAlsWDB = element(datei->addAction(QStringLiteral("Als &Works-Datenbank speichern…")), "mSpeichernAlsWDB");
    mSpeichernAlsWDB->setShortcut(QKeySequence::Save);
    datei->addSeparator();
    m_blatt->menueEintraege(datei);
    datei->addSeparator();
    FileExit = element(datei->addAction(QStringLiteral("&Beenden")), "FileExit");
    FileExit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));

    auto* ansicht = menuBar()->addMenu(QStringLiteral("&Ansicht"));
    mShowMIDIEvents = element(ansicht->addAction(QStringLiteral("MIDI-&Ereignisse zeigen")), "mShowMIDIEvents");
    mShowMIDIEvents->setCheckable(true);

    auto* harfe = menuBar()->addMenu(QStringLiteral("&Harfe"));
    m37SaitenHarfe = element(harfe->addAction(QStringLiteral("&37-Saiten-Harfe")), "m37SaitenHarfe");
    m37SaitenHarfe->setCheckable(true);
    m37SaitenHarfe->setChecked(true);
    mMelodieSpur = element(harfe->addAction(QStringLiteral("&Melodiespur wählen")), "mMelodieSpur");
    mMelodieSpur->setEnabled(false);
    harfe->addSeparator();
    mCreateAbschnittsINIs = element(harfe->addAction(QStringLiteral("&Vorlagen-Abschnitte neu schneiden")),
                                    "mCreateAbschnittsINIs");
    // The Works sheets name the note font; office programs print notes only when it is installed.
    auto* mNotenschriftInstallieren = element(
        harfe->addAction(QStringLiteral("&Notenschrift für andere Programme installieren")), "mNotenschriftInstallieren");
    connect(mNotenschriftInstallieren, &QAction::triggered, this, [this] {
        sicher([this] { meldung(nachUtf8(notenschriftInstallieren(m_programm.Orte().beilagen))); });
    });

    auto* hilfe = menuBar()->addMenu(QStringLiteral("&Hilfe"));
    mInhalt = element(hilfe->addAction(QStringLiteral("&Inhalt")), "mInhalt");
    mInhalt->setShortcut(QKeySequence::HelpContents);
    mInfo = element(hilfe->addAction(QStringLiteral("Info über &Lyrabo")), "mInfo");

    connect(FileOpen, &QAction::triggered, this, [this] { FileOpen_Click(); });
    connect(mSpeichernAlsWDB, &QAction::triggered, this, [this] { mSpeichernAlsWDB_Click(); });
    connect(mCreateAbschnittsINIs, &QAction::triggered, this, [this] { mCreateAbschnittsINIs_Click(); });
    connect(m37SaitenHarfe, &QAction::triggered, this, [this] { m37SaitenHarfe_Click(); });
    connect(mMelodieSpur, &QAction::triggered, this, [this] { melodieSpurWaehlen(); });
    connect(mShowMIDIEvents, &QAction::triggered, this, [this](bool an) { ansichtZeigen(an); });
    connect(mInhalt, &QAction::triggered, this, [this] { m_hilfe->themaZeigen(0); });
    connect(mInfo, &QAction::triggered, this, [this] { infoAnzeigen(); });
    connect(FileExit, &QAction::triggered, this, [this] { programmBeenden(); });
}

QWidget* frmLyrabo::optionenAnlegen() {
    auto* bereich = new QWidget(this);
    auto* l = new QVBoxLayout(bereich);
    l->setContentsMargins(0, 0, 0, 0);
    l->setSpacing(0);

    static const char* const titel[8] = {"", "Umrechnung", "MIDI-Kanäle", "Textfelder", "Spuren mischen",
                                         "Notenschrift", "Wiedergabe", "Notenblatt"};
    auto* knoepfe = new QHBoxLayout;
    knoepfe->setSpacing(2);
    auto* gruppe = new QButtonGroup(bereich);
    gruppe->setExclusive(true);
    for (int i = 1; i <= 7; ++i) {
        cmdEbene[i] = element(new QPushButton(QString::fromUtf8(titel[i]), bereich), "cmdEbene", i);
        cmdEbene[i]->setCheckable(true);
        gruppe->addButton(cmdEbene[i]);
        knoepfe->addWidget(cmdEbene[i]);
        connect(cmdEbene[i], &QPushButton::clicked, this, [this, i] { cmdEbene_Click(i); });
    }
    knoepfe->addStretch(1);
    l->addLayout(knoepfe);

    auto* seiten = new QFrame(bereich);
    seiten->setFrameShape(QFrame::StyledPanel);
    seiten->setFixedHeight(176);
    auto* s = new QVBoxLayout(seiten);
    s->setContentsMargins(10, 8, 10, 8);
    frameBereich[1] = bereichUmrechnung();
    frameBereich[2] = bereichKanaele();
    frameBereich[3] = bereichTextfelder();
    frameBereich[4] = bereichMischen();
    frameBereich[5] = bereichNotenschrift();
    frameBereich[6] = bereichWiedergabe();
    frameBereich[7] = m_blatt->optionenAnlegen(this);
    for (int i = 1; i <= 7; ++i) {
        element(frameBereich[i], "frameBereich", i);
        frameBereich[i]->setParent(seiten);
        s->addWidget(frameBereich[i]);
        frameBereich[i]->setVisible(i == 1);
    }
    cmdEbene[1]->setChecked(true);
    l->addWidget(seiten);
    return bereich;
}

QFrame* frmLyrabo::bereichUmrechnung() {
    UmrechnungSeite::Steuerelemente st;
    QFrame* f = m_umrechnung->anlegen(this, st);
    hsQuantisierung = st.hsQuantisierung;
    txtQuantisierung = st.txtQuantisierung;
    chLegato = st.chLegato;
    chHoechsterTonMelodie = st.chHoechsterTonMelodie;
    chPausenLetzerTakt = st.chPausenLetzerTakt;
    chPunktPausen = st.chPunktPausen;
    connect(hsQuantisierung, &QSlider::valueChanged, this, [this](int wert) { hsQuantisierung_Change(wert); });
    for (auto* ch : {chLegato, chHoechsterTonMelodie, chPausenLetzerTakt, chPunktPausen})
        connect(ch, &QCheckBox::clicked, this, [this, ch] { chOption_Click(ch); });
    return f;
}

QFrame* frmLyrabo::bereichKanaele() {
    auto* f = new QFrame(this);
    auto* l = new QVBoxLayout(f);
    l->addWidget(new QLabel(QStringLiteral("Kanalbelegung der Noten (E bis e):"), f));
    static const char* const texte[3] = {"Ein Kanal für alle Saiten", "E–e auf die Kanäle 1 bis 6",
                                         "E–e auf die Kanäle 6 bis 1"};
    auto* gruppe = new QButtonGroup(f);
    for (int i = 0; i < 3; ++i) {
        opKanal[i] = element(new QRadioButton(QString::fromUtf8(texte[i]), f), "opKanal", i);
        gruppe->addButton(opKanal[i], i);
        l->addWidget(opKanal[i]);
        connect(opKanal[i], &QRadioButton::clicked, this, [this, i] { opKanal_Click(i); });
    }
    opKanal[0]->setChecked(true);
    l->addStretch(1);
    return f;
}

QFrame* frmLyrabo::bereichTextfelder() {
    auto* f = new QFrame(this);
    auto* g = new QGridLayout(f);
    g->addWidget(new QLabel(QStringLiteral("Felder jeder Zeile des Harfen-Textes (Textfeld und Zwischenablage):"), f),
                 0, 0, 1, 4);
    static const char* const texte[9] = {"", "ID der Note", "Akkord-Nr.", "Art (Note/Pause)", "Startzeit",
                                         "(ohne Feld)", "Tonhöhe", "Länge / Stimme", "Kanal / Länge"};
    for (int i = 1; i <= 8; ++i) {
        chClipExport[i] = element(new QCheckBox(QString::fromUtf8(texte[i]), f), "chClipExport", i);
        g->addWidget(chClipExport[i], 1 + (i - 1) / 4, (i - 1) % 4);
        connect(chClipExport[i], &QCheckBox::clicked, this, [this, i] { chClipExport_Click(i); });
    }
    g->setRowStretch(3, 1);
    return f;
}

QFrame* frmLyrabo::bereichMischen() {
    auto* f = new QFrame(this);
    auto* l = new QHBoxLayout(f);
    auto* scroll = new QScrollArea(f);
    scroll->setWidgetResizable(true);
    m_mischFlaeche = new QWidget(scroll);
    m_mischLayout = new QVBoxLayout(m_mischFlaeche);
    m_mischLayout->setContentsMargins(4, 4, 4, 4);
    m_mischLayout->addStretch(1);
    scroll->setWidget(m_mischFlaeche);
    l->addWidget(scroll, 1);
    auto* r = new QVBoxLayout;
    auto* hinweis = new QLabel(QStringLiteral("Die angekreuzten Spuren werden einzeln umgerechnet, der Zeit nach "
                                              "zusammengeführt und als Harfen-Text in die Zwischenablage gelegt."),
                               f);
    hinweis->setWordWrap(true);
    r->addWidget(hinweis);
    cmdSpurenMischen = element(new QPushButton(QStringLiteral("Spuren &mischen"), f), "cmdSpurenMischen");
    cmdSpurenMischen->setEnabled(false);
    connect(cmdSpurenMischen, &QPushButton::clicked, this, [this] { cmdSpurenMischen_Click(); });
    r->addWidget(cmdSpurenMischen);
    r->addStretch(1);
    l->addLayout(r, 1);
    return f;
}

QFrame* frmLyrabo::bereichNotenschrift() {
    auto* f = new QFrame(this);
    auto* l = new QVBoxLayout(f);
    l->setContentsMargins(0, 0, 0, 0);  // the previews need the height to show a note whole
    l->setSpacing(4);
    auto* kopf = new QHBoxLayout;
    kopf->addWidget(new QLabel(QStringLiteral("Notenschrift:"), f));
    comboFontname = element(new QComboBox(f), "comboFontname");
    comboFontname->setMinimumWidth(220);
    connect(comboFontname, &QComboBox::currentIndexChanged, this, [this](int i) { comboFontname_Click(i); });
    kopf->addWidget(comboFontname);
    kopf->addWidget(new QLabel(QStringLiteral("Zeichencodes (dezimal) und Vorschau; „p“ = punktiert"), f));
    kopf->addStretch(1);
    l->addLayout(kopf);

    auto* tabellen = new QHBoxLayout;
    auto tabelle = [&](const QString& titel, std::array<QLineEdit*, 8>& code1, std::array<QLabel*, 8>& vor1,
                       std::array<QLineEdit*, 8>& code2, std::array<QLabel*, 8>& vor2, const char* n1,
                       const char* nv1, const char* n2, const char* nv2, bool pause) {
        auto* g = new QGridLayout;
        g->setHorizontalSpacing(3);
        g->setVerticalSpacing(1);
        g->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(titel), f), 0, 0);
        g->addWidget(new QLabel(QStringLiteral("Zeichen"), f), 1, 0);
        g->addWidget(new QLabel(QStringLiteral("Punkt"), f), 3, 0);
        for (int i = 0; i < 8; ++i) {
            auto* kopfzeile = new QLabel(QString::fromLatin1(kLaengenNamen[i]), f);
            kopfzeile->setAlignment(Qt::AlignCenter);
            g->addWidget(kopfzeile, 0, i + 1);
            code1[i] = element(new QLineEdit(f), n1, i);
            vor1[i] = element(new QLabel(f), nv1, i);
            code2[i] = element(new QLineEdit(f), n2, i);
            vor2[i] = element(new QLabel(f), nv2, i);
            for (auto* e : {code1[i], code2[i]}) {
                e->setMaxLength(3);
                e->setFixedWidth(38);
                e->setAlignment(Qt::AlignCenter);
            }
            for (auto* v : {vor1[i], vor2[i]}) {
                v->setFixedSize(38, 31);
                v->setAlignment(Qt::AlignCenter);
            }
            g->addWidget(code1[i], 1, i + 1);
            g->addWidget(vor1[i], 2, i + 1);
            g->addWidget(code2[i], 3, i + 1);
            g->addWidget(vor2[i], 4, i + 1);
            connect(code1[i], &QLineEdit::textChanged, this, [this, i, pause] { txtZeichen_Change(i, pause, false); });
            connect(code2[i], &QLineEdit::textChanged, this, [this, i, pause] { txtZeichen_Change(i, pause, true); });
        }
        tabellen->addLayout(g);
    };
    tabelle(QStringLiteral("Noten"), txtZeichen01, labZeichen01, txtZeichen02, labZeichen02, "txtZeichen01",
            "labZeichen01", "txtZeichen02", "labZeichen02", false);
    tabellen->addSpacing(24);
    tabelle(QStringLiteral("Pausen"), txtPZeichen01, labPZeichen01, txtPZeichen02, labPZeichen02, "txtPZeichen01",
            "labPZeichen01", "txtPZeichen02", "labPZeichen02", true);
    tabellen->addStretch(1);
    l->addLayout(tabellen);
    l->addStretch(1);
    return f;
}

QFrame* frmLyrabo::bereichWiedergabe() {
    auto* f = new QFrame(this);
    m_wiedergabeLayout = new QVBoxLayout(f);
#ifdef LYRABO_MIT_WIEDERGABE
    auto* leiste = new WiedergabeLeiste(m_programm, TrackList, LabelTempo, f);
    m_wiedergabe = leiste;
    // The sheet follows the music by the player's own events.
    connect(leiste, &WiedergabeLeiste::spielPosition, m_blatt, &BlattBereich::wiedergabePosition);
    connect(leiste, &WiedergabeLeiste::angehalten, m_blatt, &BlattBereich::wiedergabeAus);
    m_wiedergabeLayout->addWidget(leiste);
#else
    m_wiedergabeLayout->addWidget(new QLabel(QStringLiteral("Die Wiedergabe ist in dieser Ausgabe nicht enthalten."), f));
#endif
    m_wiedergabeLayout->addStretch(1);
    return f;
}

QWidget* frmLyrabo::ansichtenAnlegen() {
    // Three views in tabs: the note sheet, the harp-event text and the event list.
    auto* bereich = element(new QTabWidget(this), "tabAnsichten");
    m_ansichten = bereich;
    m_blattAnsicht = m_blatt->ansichtAnlegen(bereich);
    bereich->addTab(m_blattAnsicht, QStringLiteral("&Notenblatt"));

    // The notes view: the harp-event text of the track.
    frameKlangnoten = element(new QFrame(bereich), "frameKlangnoten");
    auto* kl = new QVBoxLayout(frameKlangnoten);
    kl->setContentsMargins(0, 0, 0, 0);
    auto* kkopf = new QHBoxLayout;
    kkopf->addWidget(new QLabel(QStringLiteral("<b>Harfen-Text für Cantorix</b>"), frameKlangnoten));
    kkopf->addStretch(1);
    cmdToMIDIEvents = element(new QPushButton(QStringLiteral("MIDI-&Ereignisse ›"), frameKlangnoten), "cmdToMIDIEvents");
    connect(cmdToMIDIEvents, &QPushButton::clicked, this, [this] { ansichtZeigen(true); });
    kkopf->addWidget(cmdToMIDIEvents);
    kl->addLayout(kkopf);
    txtKlangNoten = element(new QPlainTextEdit(frameKlangnoten), "txtKlangNoten");
    txtKlangNoten->setReadOnly(true);
    txtKlangNoten->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtKlangNoten->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    kl->addWidget(txtKlangNoten, 1);
    bereich->addTab(frameKlangnoten, QStringLiteral("&Harfen-Text"));

    // The event view: the events of the track and the values of the clicked one.
    frameMessage = element(new QFrame(bereich), "frameMessage");
    auto* ml = new QVBoxLayout(frameMessage);
    ml->setContentsMargins(0, 0, 0, 0);
    auto* mkopf = new QHBoxLayout;
    mkopf->addWidget(new QLabel(QStringLiteral("<b>MIDI-Ereignisse der Spur</b> (höchstens 500)"), frameMessage));
    mkopf->addStretch(1);
    cmdToKlangnoten = element(new QPushButton(QStringLiteral("‹ &Harfen-Text"), frameMessage), "cmdToKlangnoten");
    connect(cmdToKlangnoten, &QPushButton::clicked, this, [this] { ansichtZeigen(false); });
    mkopf->addWidget(cmdToKlangnoten);
    ml->addLayout(mkopf);
    auto* inhalt = new QHBoxLayout;
    MessageList = element(new QListWidget(frameMessage), "MessageList");
    MessageList->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    connect(MessageList, &QListWidget::currentRowChanged, this, [this](int) { MessageList_Click(); });
    inhalt->addWidget(MessageList, 1);
    auto* details = new QGridLayout;
    auto feld = [&](const char* name, const QString& text, int zeile) {
        auto* e = element(new QLineEdit(frameMessage), name);
        e->setReadOnly(true);
        details->addWidget(new QLabel(text, frameMessage), zeile, 0);
        details->addWidget(e, zeile, 1);
        return e;
    };
    TimeEdit = feld("TimeEdit", QStringLiteral("Delta-Zeit:"), 0);
    MessageEdit = feld("MessageEdit", QStringLiteral("Status:"), 1);
    Data1Edit = feld("Data1Edit", QStringLiteral("Daten 1:"), 2);
    Data2Edit = feld("Data2Edit", QStringLiteral("Daten 2:"), 3);
    BufferEdit = feld("BufferEdit", QStringLiteral("Bytes:"), 4);
    MsgTextEdit = feld("MsgTextEdit", QStringLiteral("Text:"), 5);
    HexCheck = element(new QCheckBox(QStringLiteral("He&xadezimal"), frameMessage), "HexCheck");
    connect(HexCheck, &QCheckBox::toggled, this, [this] { MessageList_Click(); });
    details->addWidget(HexCheck, 6, 1);
    details->setRowStretch(7, 1);
    inhalt->addLayout(details, 1);
    ml->addLayout(inhalt, 1);
    bereich->addTab(frameMessage, QStringLiteral("MIDI-&Ereignisse"));
    connect(bereich, &QTabWidget::currentChanged, this,
            [this] { mShowMIDIEvents->setChecked(m_ansichten->currentWidget() == frameMessage); });
    return bereich;
}

// ---------------------------------------------------------------- start-up

void frmLyrabo::laden() {
    if (m_geladen) return;
    m_geladen = true;
    initialisieren();
    anzeigeAktuallisierenIntern();
}

void frmLyrabo::initialisieren() {
    labTranspo->setText(QString::number(hsTranspo->value()));
    zeichenTabellenZeigen();
}

void frmLyrabo::schriftenFuellen() {
    // The program's own fonts come first, so a fresh machine starts with the note font; of the
    // system's fonts the first is left out.
    const QStringList eigene = eigeneSchriftenRegistrieren(m_programm.Orte().beilagen);
    comboFontname->clear();
    comboFontname->addItems(schriftenListe(eigene, QFontDatabase::families()));
    if (comboFontname->count() == 0) return;
    comboFontname->setCurrentIndex(0);
    m_programm.Einstellungen().Fontname(nachUtf8(comboFontname->itemText(0)));
    setFontName();
}

void frmLyrabo::setFontName() {
    const QString name = ausUtf8(m_programm.Einstellungen().Fontname());
    for (int i = 0; i < 8; ++i) {
        for (auto* vorschau : {labZeichen01[i], labZeichen02[i], labPZeichen01[i], labPZeichen02[i]}) {
            QFont schrift = vorschau->font();
            schrift.setFamily(name);
            schrift.setPointSize(20);  // a note with its stem fits the label, its head still recognisable
            vorschau->setFont(schrift);
        }
    }
}

void frmLyrabo::zeichenTabellenZeigen() {
    if (!m_programm.FontNoten || !m_programm.FontPausen) return;
    const bool vorher = m_unterdrueckung;
    m_unterdrueckung = true;
    auto zeigen = [](const ZeichenTabelleRef& tabelle, std::array<QLineEdit*, 8>& code1, std::array<QLabel*, 8>& vor1,
                     std::array<QLineEdit*, 8>& code2, std::array<QLabel*, 8>& vor2) {
        for (int i = 0; i < 8 && i < tabelle->Count(); ++i) {
            const auto& eintrag = tabelle->Item(i + 1);
            code1[i]->setText(QString::number(eintrag->Zeichen1()));
            vor1[i]->setText(zeichenVonCode(eintrag->Zeichen1()));
            const bool punktiert = i == 1 || i == 3 || i == 5;
            code2[i]->setText(punktiert ? QString::number(eintrag->Zeichen2()) : QString());
            vor2[i]->setText(punktiert ? zeichenVonCode(eintrag->Zeichen2()) : QString());
        }
    };
    zeigen(m_programm.FontNoten, txtZeichen01, labZeichen01, txtZeichen02, labZeichen02);
    zeigen(m_programm.FontPausen, txtPZeichen01, labPZeichen01, txtPZeichen02, labPZeichen02);
    m_unterdrueckung = vorher;
}

// ---------------------------------------------------------------- display

void frmLyrabo::anzeigeAktuallisieren() {
    if (!m_geladen) {
        laden();
        return;
    }
    anzeigeAktuallisierenIntern();
}

void frmLyrabo::anzeigeAktuallisierenIntern() {
    auto& e = m_programm.Einstellungen();
    const bool vorher = m_unterdrueckung;
    m_unterdrueckung = true;
    cmdEbene_Click(1);

    const auto& laengen = e.ABSErlaubteLaengen();
    hsQuantisierung->setValue(8);
    for (int i = 1; i <= 8 && i <= laengen->Count(); ++i) {
        if (laengen->Item(i)->Value() == e.QuantNotenwert()) {
            hsQuantisierung->setValue(i);
            break;
        }
    }
    hsQuantisierung_Change(hsQuantisierung->value());

    chHoechsterTonMelodie->setChecked(e.HoechsterTonMelodie());
    chLegato->setChecked(e.Legato());
    chPunktPausen->setChecked(e.PunktiertePausen());
    chPausenLetzerTakt->setChecked(e.PausenLetzterTakt());
    const auto& flags = e.ClipExportFlags();
    for (int i = 1; i <= 8 && i <= flags->Count(); ++i) chClipExport[i]->setChecked(flags->Item(i)->Value() != 0);
    if (e.KanalBelegung() >= 0 && e.KanalBelegung() <= 2) opKanal[static_cast<size_t>(e.KanalBelegung())]->setChecked(true);

    // A new settings object also resets transposition, harp size and the character tables.
    hsTranspo->setValue(e.Transpo());
    labTranspo->setText(QString::number(hsTranspo->value()));
    m37SaitenHarfe->setChecked(e.WDBSpaltenAnzahl() == 37);
    m_blatt->harfeGeaendert();
    zeichenTabellenZeigen();
    m_unterdrueckung = vorher;
}

void frmLyrabo::DisplayTrack(int16_t spur) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    struct ZeigerZurueck {
        ~ZeigerZurueck() { QApplication::restoreOverrideCursor(); }
    } zurueck;
    const QSignalBlocker sperre(MessageList);
    MessageList->clear();
    for (auto* feld : {TimeEdit, MessageEdit, Data1Edit, Data2Edit, BufferEdit, MsgTextEdit}) feld->clear();
    m_angezeigteSpur = spur;
    for (const auto& zeile : DisplayTrackZeilen(m_programm.Midifile1, spur)) MessageList->addItem(ausUtf8(zeile));
}

void frmLyrabo::setKlangNotenText(const std::string& text) {
    ++m_textStand;
    m_klangNotenText = text;
    QString anzeige = ausUtf8(text);
    anzeige.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    txtKlangNoten->setPlainText(anzeige);
}

void frmLyrabo::setLabelTempo(const std::string& text) { LabelTempo->setText(ausUtf8(text).trimmed()); }
void frmLyrabo::setLabelTicks(const std::string& text) { LabelTicks->setText(ausUtf8(text).trimmed()); }
void frmLyrabo::setLabelTimeSignature(const std::string& text) { LabelTimeSignature->setText(ausUtf8(text).trimmed()); }

void frmLyrabo::setZwischenablage(const std::string& text) {
    QClipboard* ablage = QGuiApplication::clipboard();
    ablage->clear();
    ablage->setText(ausUtf8(text));
}

int16_t frmLyrabo::ausgewaehlteSpurZeile() const { return static_cast<int16_t>(TrackList->currentRow()); }

void frmLyrabo::mischKaestchenAnlegen(int anzahl) {
    for (auto* box : chSpurMischen)
        if (box) box->deleteLater();
    chSpurMischen.assign(1, nullptr);
    // One mixing switch per track, all off for a newly loaded file.
    const auto& gewaehlt = m_programm.Einstellungen().SpurSelected();
    if (gewaehlt->Count() != anzahl) {
        gewaehlt->Clear();
        for (int i = 1; i <= anzahl; ++i) {
            auto eintrag = std::make_shared<CInteger>();
            eintrag->ID(static_cast<int16_t>(i));
            eintrag->Value(0);
            gewaehlt->Add(eintrag);
        }
    }
    for (int i = 1; i <= anzahl; ++i) {
        const QString text = i - 1 < TrackList->count() ? TrackList->item(i - 1)->text() : QString();
        auto* box = element(new QCheckBox(QStringLiteral("%1: %2").arg(i).arg(text), m_mischFlaeche), "chSpurMischen", i);
        box->setChecked(gewaehlt->Item(i)->Value() != 0);
        connect(box, &QCheckBox::clicked, this, [this, i] { chSpurMischen_Click(i); });
        m_mischLayout->insertWidget(m_mischLayout->count() - 1, box);
        chSpurMischen.push_back(box);
    }
}

void frmLyrabo::nachDateiGeladen() {
    const int anzahl = m_programm.Midifile1.geladen() ? m_programm.Midifile1.TrackCount() : 0;
    mischKaestchenAnlegen(anzahl);
    m_umrechnung->hinweisZeigen();
    // A loaded file shows its sheet; the old one goes before the new track is converted.
    m_blatt->leeren();
    m_ansichten->setCurrentWidget(m_blattAnsicht);
    melodieMarkieren();
    // The second row is preselected (the first track is often only the tempo track).
    const int zeile = TrackList->count() == 1 ? 0 : 1;
    if (zeile < TrackList->count()) TrackList->setCurrentRow(zeile);
    hsTranspo->setEnabled(true);
    cmdPassendTransponieren->setEnabled(true);
    cmdKopieren->setEnabled(false);
    const bool vorher = m_unterdrueckung;
    m_unterdrueckung = true;
    const int16_t kanal = m_programm.Einstellungen().KanalBelegung();
    if (kanal >= 0 && kanal <= 2) opKanal[static_cast<size_t>(kanal)]->setChecked(true);
    m_unterdrueckung = vorher;
}

void frmLyrabo::spurenMischenSperren() { cmdSpurenMischen->setEnabled(false); }

// ---------------------------------------------------------------- messages and dialogs

QMessageBox::StandardButton frmLyrabo::nachricht(QMessageBox::Icon icon, const QString& text,
                                                 QMessageBox::StandardButtons knoepfe) {
    if (m_nachrichtAntwort) return m_nachrichtAntwort(icon, text, knoepfe);
    QMessageBox box(icon, QCoreApplication::applicationName(), text, knoepfe, isVisible() ? this : nullptr);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void frmLyrabo::meldung(const std::string& text) { nachricht(QMessageBox::Information, ausUtf8(text)); }

bool frmLyrabo::sicher(const std::function<void()>& arbeit) {
    try {
        arbeit();
        return true;
    } catch (const AbbruchFehler&) {
        // The user cancelled; nothing to report.
    } catch (const Fehler& f) {
        nachricht(QMessageBox::Warning, ausUtf8(f.what()));
    } catch (const std::bad_alloc&) {
        nachricht(QMessageBox::Critical, QStringLiteral("Nicht genügend Arbeitsspeicher für diesen Schritt."));
    } catch (const std::exception&) {
        // A library's English text means nothing to the user; loading already names the file.
        nachricht(QMessageBox::Critical, QStringLiteral("Unerwarteter Fehler: Der Schritt wurde abgebrochen."));
    }
    return false;
}

std::optional<std::string> frmLyrabo::oeffnen(const std::string& initDir, const std::string& filter) {
    const QString start = ausUtf8(initDir);
    const QString qtFilter = dialogFilterFuerQt(filter);
    QString gewaehlt;
    if (m_abgelegt) {
        gewaehlt = *m_abgelegt;
        m_abgelegt.reset();
    } else if (m_dialogAntwort) {
        auto antwort = m_dialogAntwort(false, start, qtFilter);
        if (!antwort) return std::nullopt;
        gewaehlt = *antwort;
    } else {
        gewaehlt = QFileDialog::getOpenFileName(this, QStringLiteral("MIDI-Datei öffnen"), start, qtFilter);
    }
    if (gewaehlt.isEmpty()) return std::nullopt;
    return nachUtf8(QDir::toNativeSeparators(gewaehlt));
}

std::optional<std::string> frmLyrabo::speichern(const std::string& filter, int flags) {
    const QString start = ausUtf8(m_programm.AktuellesInitDir);
    const QString qtFilter = dialogFilterFuerQt(filter);
    QString gewaehlt;
    if (m_dialogAntwort) {
        auto antwort = m_dialogAntwort(true, start, qtFilter);
        if (!antwort) return std::nullopt;
        gewaehlt = *antwort;
    } else {
        QFileDialog dialog(this, QStringLiteral("Speichern unter"), start, qtFilter);
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setOption(QFileDialog::DontConfirmOverwrite, (flags & 2) == 0);
        // A name typed without extension gets the filter's one.
        const QStringList teile = ausUtf8(filter).split(QLatin1Char('|'));
        if (teile.size() >= 2 && teile[1].startsWith(QStringLiteral("*.")) && !teile[1].contains(QLatin1Char(';')))
            dialog.setDefaultSuffix(teile[1].mid(2));
        if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
        gewaehlt = dialog.selectedFiles().constFirst();
    }
    if (gewaehlt.isEmpty()) return std::nullopt;
    return nachUtf8(QDir::toNativeSeparators(gewaehlt));
}

std::optional<QString> frmLyrabo::speicherDialog(const QString& titel, const QString& vorschlag, const QString& filter) {
    QString gewaehlt;
    if (m_dialogAntwort) {
        auto antwort = m_dialogAntwort(true, vorschlag, filter);
        if (!antwort) return std::nullopt;
        gewaehlt = *antwort;
    } else {
        gewaehlt = QFileDialog::getSaveFileName(this, titel, vorschlag, filter, nullptr, QFileDialog::DontConfirmOverwrite);
    }
    if (gewaehlt.isEmpty()) return std::nullopt;
    return gewaehlt;
}

void frmLyrabo::abgelegtOeffnen(const QString& pfad) {
    m_abgelegt = pfad;
    FileOpen_Click();
    m_abgelegt.reset();
}

// ---------------------------------------------------------------- handlers

void frmLyrabo::neuBerechnen() {
    const int vorher = m_textStand;
    sicher([this] { m_programm.neuBerechnen(); });
    // Only a conversion that ran to its end replaces the sheet, as it replaces the text.
    if (m_textStand != vorher) m_blatt->nachUmrechnung(false);
}

void frmLyrabo::TrackList_Click() {
    if (m_listeWirdGefuellt || TrackList->currentRow() < 0) return;
    neuBerechnen();
    // A load leaves the copy button off; choosing a track is what makes copying worthwhile again.
    cmdKopieren->setEnabled(true);
}

void frmLyrabo::hsQuantisierung_Change(int wert) {
    auto& e = m_programm.Einstellungen();
    const auto& namen = e.NotenLaengenStr();
    if (wert >= 1 && wert <= namen->Count()) txtQuantisierung->setText(ausUtf8(namen->Item(wert)->Text()));
    if (m_unterdrueckung) return;
    sicher([&e, wert] { e.QuantNotenwert(e.ABSErlaubteLaengen()->Item(wert)->Value()); });
    neuBerechnen();
}

void frmLyrabo::opKanal_Click(int index) {
    if (m_unterdrueckung) return;
    sicher([this, index] {
        m_programm.Einstellungen().KanalBelegung(static_cast<int16_t>(index));
        setKlangNotenText(m_programm.KLNCreator().getHarfeEventString());
    });
}

void frmLyrabo::chOption_Click(QCheckBox* box) {
    if (m_unterdrueckung) return;
    auto& e = m_programm.Einstellungen();
    if (box == chLegato) e.Legato(chLegato->isChecked());
    else if (box == chHoechsterTonMelodie) e.HoechsterTonMelodie(chHoechsterTonMelodie->isChecked());
    else if (box == chPunktPausen) e.PunktiertePausen(chPunktPausen->isChecked());
    else if (box == chPausenLetzerTakt) e.PausenLetzterTakt(chPausenLetzerTakt->isChecked());
    neuBerechnen();
}

void frmLyrabo::chClipExport_Click(int index) {
    if (m_unterdrueckung) return;
    sicher([this, index] {
        m_programm.Einstellungen().ClipExportFlags()->Item(index)->Value(chClipExport[static_cast<size_t>(index)]->isChecked() ? 1 : 0);
        setKlangNotenText(m_programm.KLNCreator().getHarfeEventString());
    });
}

void frmLyrabo::chSpurMischen_Click(int index) {
    sicher([this, index] {
        const auto& gewaehlt = m_programm.Einstellungen().SpurSelected();
        gewaehlt->Item(index)->Value(chSpurMischen[static_cast<size_t>(index)]->isChecked() ? 1 : 0);
    });
    bool eine = false;
    for (auto* box : chSpurMischen)
        if (box && box->isChecked()) eine = true;
    cmdSpurenMischen->setEnabled(eine);
}

void frmLyrabo::cmdSpurenMischen_Click() {
    const bool gemischt = sicher([this] {
        auto& engine = m_programm.KLNCreator();
        engine.spurenMischen();
        if (!engine.IsMonoton())
            meldung("Eine der ausgewählten Spuren ist polyphon!\n"
                    "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
                    "möglicherweise nicht zum gewünschten Ergebnis,\n"
                    "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte.");
    });
    if (gemischt) m_blatt->nachUmrechnung(true);
}

void frmLyrabo::cmdKopieren_Click() {
    const int zeile = TrackList->currentRow();
    if (zeile < 0 || !m_programm.Midifile1.geladen()) return;
    const int vorher = m_textStand;
    sicher([this, zeile] {
        auto& engine = m_programm.KLNCreator();
        engine.KlangNoten(m_programm.KlangNoten);
        m_programm.HarfeExportLauf(static_cast<int16_t>(zeile + 1), true, true);
        setZwischenablage(engine.getHarfeEventString());
    });
    if (m_textStand != vorher) m_blatt->nachUmrechnung(false);
}

void frmLyrabo::comboFontname_Click(int index) {
    if (m_unterdrueckung || index < 0) return;
    m_programm.Einstellungen().Fontname(nachUtf8(comboFontname->itemText(index)));
    setFontName();
}

void frmLyrabo::txtZeichen_Change(int index, bool pause, bool punkt) {
    if (m_unterdrueckung) return;
    QLineEdit* feld = pause ? (punkt ? txtPZeichen02 : txtPZeichen01)[static_cast<size_t>(index)]
                            : (punkt ? txtZeichen02 : txtZeichen01)[static_cast<size_t>(index)];
    QLabel* vorschau = pause ? (punkt ? labPZeichen02 : labPZeichen01)[static_cast<size_t>(index)]
                             : (punkt ? labZeichen02 : labZeichen01)[static_cast<size_t>(index)];
    QString text = feld->text();
    if (text.size() > 3) {
        feld->setText(text.left(3));  // runs this handler again with the shortened text
        return;
    }
    for (QChar c : text) {
        if (!c.isDigit() || c.unicode() > '9') {
            feld->setText(QString());  // runs this handler again with the empty box
            return;
        }
    }
    const int code = text.isEmpty() ? 0 : text.toInt();
    sicher([&] {
        if (code > 255) throw UeberlaufFehler();
        vorschau->setText(zeichenVonCode(code));
        const auto& tabelle = pause ? m_programm.FontPausen : m_programm.FontNoten;
        const auto& eintrag = tabelle->Item(index + 1);
        if (punkt)
            eintrag->Zeichen2(static_cast<uint8_t>(code));
        else
            eintrag->Zeichen1(static_cast<uint8_t>(code));
    });
}

void frmLyrabo::cmdEbene_Click(int index) {
    for (int i = 1; i <= 7; ++i) frameBereich[static_cast<size_t>(i)]->setVisible(false);
    frameBereich[static_cast<size_t>(index)]->setVisible(true);
    cmdEbene[static_cast<size_t>(index)]->setChecked(true);
}

void frmLyrabo::ansichtZeigen(bool ereignisse) {
    m_ansichten->setCurrentWidget(ereignisse ? frameMessage : frameKlangnoten);
    mShowMIDIEvents->setChecked(ereignisse);
}

void frmLyrabo::MessageList_Click() {
    const int zeile = MessageList->currentRow();
    if (zeile < 0 || !m_programm.Midifile1.geladen() || m_angezeigteSpur < 1) return;
    sicher([this, zeile] {
        auto& datei = m_programm.Midifile1;
        datei.Track(m_angezeigteSpur);
        datei.Event(zeile + 1);
        const bool hex = HexCheck->isChecked();
        auto zahl = [this, hex](int32_t wert) {
            bool piepen = false;
            const std::string text = zahlAlsText(wert, hex, &piepen);
            if (piepen) {
                ++m_piepAnzahl;
                QApplication::beep();
            }
            return ausUtf8(text);
        };
        TimeEdit->setText(zahl(datei.Time()));
        MessageEdit->setText(zahl(datei.Message()));
        Data1Edit->setText(zahl(datei.Data1()));
        Data2Edit->setText(zahl(datei.Data2()));
        BufferEdit->setText(ausUtf8(datei.BufferText()));
        MsgTextEdit->setText(ausUtf8(datei.Text()));
    });
}

void frmLyrabo::FileOpen_Click() {
    bool geladen = false;
    const bool gut = sicher([&] { geladen = m_programm.openMIDIFile(1); });
    if (!gut) nachFehlgeschlagenemLaden();
    m_zuletzt->nachDemOeffnen(geladen);
}

void frmLyrabo::nachFehlgeschlagenemLaden() {
    cmdSpurenMischen->setEnabled(false);
    m_umrechnung->hinweisZeigen();
    if (m_programm.Midifile1.geladen()) return;
    // The reader dropped the old file: nothing of it may be offered any more.
    m_blatt->leeren();
    trackListeFuellen({});
    mischKaestchenAnlegen(0);
    const QSignalBlocker sperre(MessageList);
    MessageList->clear();
    m_angezeigteSpur = 0;
}

void frmLyrabo::mSpeichernAlsWDB_Click() {
    if (!m_programm.Midifile1.geladen() || TrackList->currentRow() < 0) {
        meldung("Bitte zuerst eine MIDI-Datei öffnen und eine Spur wählen.");
        return;
    }
    sicher([this] {
        auto& engine = m_programm.KLNCreator();
        engine.KlangNoten(m_programm.KlangNoten);
        if (!engine.produce(true)) return;
        auto& writer = m_programm.WDBCreator();
        writer.Akkorde(engine.Akkorde());
        writer.KlangNoten(engine.KlangNoten());
        writer.Pausen(engine.Pausen());
        writer.Dialog(this);
        writer.Form(this);
        writer.saveDialog_WDB();
    });
}

void frmLyrabo::mCreateAbschnittsINIs_Click() {
    sicher([this] {
        const int16_t saiten = m_programm.Einstellungen().WDBSpaltenAnzahl();
        if (saiten == 25)
            m_programm.WDBCreator().writeINIDateien25();
        else if (saiten == 37)
            m_programm.WDBCreator().writeINIDateien37();
        else
            return;
        statusBar()->showMessage(QStringLiteral("Vorlagen-Abschnitte für %1 Saiten geschrieben.").arg(saiten), 5000);
    });
}

// ---------------------------------------------------------------- help and the end

void frmLyrabo::HilfeAnzeigen(int16_t helpContext, const std::string& /*helpFileBase*/) {
    m_hilfe->themaZeigen(helpContext);
}

void frmLyrabo::infoAnzeigen() {
    m_info->show();
    m_info->raise();
}

bool frmLyrabo::programmBeenden() {
    if (!m_programm.Einstellungen().AutoRun()) {
        const auto antwort = nachricht(QMessageBox::Question, QStringLiteral("Wollen Sie Ihre User-Daten speichern?"),
                                       QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        if (antwort != QMessageBox::Yes && antwort != QMessageBox::No) return false;
        if (antwort == QMessageBox::Yes) {
            const bool gespeichert = sicher([this] {
                UserDatenSchreiben(m_programm.Einstellungen(), m_programm.AktuellesInitDir, m_programm.Orte());
            });
            if (!gespeichert) return false;  // the user wanted them kept: stay so nothing is lost
        }
    }
    m_beendet = true;
    close();
    QCoreApplication::quit();
    return true;
}

void frmLyrabo::closeEvent(QCloseEvent* ereignis) {
    // Closing through the title bar asks nothing and saves nothing; only playback is stopped.
#ifdef LYRABO_MIT_WIEDERGABE
    if (m_wiedergabe) static_cast<WiedergabeLeiste*>(m_wiedergabe)->beenden();
#endif
    m_hilfe->close();
    m_info->close();
    ereignis->accept();
}

} // namespace lyrabo
