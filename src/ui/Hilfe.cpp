#include "ui/Hilfe.h"

#include "app/core/MelodieSpur.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace lyrabo {

QString hilfeText() {
    return QStringLiteral(R"(
<h1>Lyrabo – Kurzanleitung</h1>
<p>Lyrabo macht aus einer Standard-MIDI-Datei ein Notenblatt für die Tischharfe mit 37 oder 25 Saiten.
Jede Spalte des Blattes gehört zu einer Saite; das Blatt wird ausgedruckt und unter die Saiten gelegt.</p>

<h2><a name="weg"></a>Der Weg zum Notenblatt</h2>
<ol>
<li><b>MIDI-Datei öffnen:</b> <i>Datei → MIDI-Datei öffnen…</i> und eine Datei <tt>*.mid</tt> wählen.
Links erscheinen die Spuren der Datei, darunter Tempo, Auflösung (Ticks pro Viertel) und Taktart.
Der Ordner wird gemerkt und beim nächsten Mal wieder vorgeschlagen.</li>
<li><b>Spur wählen:</b> Die zweite Zeile der Spurliste ist schon gewählt (bei einer Datei mit nur einer
Spur die erste). Ein Klick auf eine andere Spur rechnet sie sofort um. Hinter der Spur, die vermutlich
die Melodie trägt, steht <i>Melodie?</i>; ein Klick darauf oder <i>Harfe → Melodiespur wählen</i> wählt sie.
{melodieregel}</li>
<li><b>Transponieren:</b> Die Reihe farbiger Felder oben zeigt die Saiten, von der tiefsten links (g) bis
zur höchsten rechts (g'''). Grün sind die Saiten, die das Stück braucht; hellgrün bzw. blau die Oktav-Saiten g.
Ist das linke oder rechte Randfeld <span style="color:#d03030"><b>rot</b></span>, reicht das Stück über die
Harfe hinaus. Den Regler <i>Transposition</i> so weit verschieben (ein Schritt = ein Halbton, zwölf Schritte
= eine Oktave), bis kein Randfeld mehr rot ist. <i>Passend transponieren</i> neben dem Regler nimmt die
kleinste Transposition, die alle Noten des Blattes auf die Saiten bringt, dieselbe, die der Kopf des
Blattes vorschlägt; je weniger verschoben, desto näher bleibt das Stück seiner Tonart. Umfasst es mehr
Töne, als die Harfe Saiten hat, sagt Lyrabo das.</li>
<li><b>Notenschrift prüfen:</b> Auf der Seite <i>Notenschrift</i> die Schriftart der Noten wählen und
die Zeichencodes der Noten und Pausen (mit Punkt-Zeichen für punktierte Werte) mit der Schrift vergleichen.
Die Vorschau zeigt jedes Zeichen in der gewählten Schrift.</li>
<li><b>Umrechnung einstellen:</b> Auf der Seite <i>Umrechnung</i> das Quantisierungsraster (der kürzeste
Notenwert, auf den Anfänge und Längen gerundet werden) und die Optionen wählen: Legato (aus),
Pausen im letzten Takt (ein), punktierte Pausen (aus). Jede Änderung rechnet die Spur sofort neu um;
der Harfen-Text unten ist immer auf dem Stand der Regler.</li>
<li><b>Speichern:</b> <i>Datei → Als Works-Datenbank speichern…</i> und einen Namen wählen; ohne Endung
wird <tt>.wdb</tt> angehängt. Lyrabo meldet „Daten gespeichert!“.</li>
<li><b>Drucken:</b> Die Datei in Works öffnen, ausdrucken und das Blatt unter die Saiten legen:
jede Zeile ist ein Akkord (oder die Anfangspause), jede Spalte eine Saite.</li>
</ol>

<h2><a name="notenblatt"></a>Das Notenblatt</h2>
<p>Ist eine Spur umgerechnet, zeigt der Reiter <i>Notenblatt</i> das Blatt zum Unterlegen. Auf der Seite
<i>Notenblatt</i> unten werden für jede Harfengröße eingestellt:</p>
<ul>
<li><b>Papier, Lage und Saitenabstand</b> – Abstand zweier Saiten Ihrer Harfe von Mitte zu Mitte;
gedruckt wird immer in Originalgröße.</li>
<li><b>Auf ein Blatt einpassen</b> (ein): das ganze Lied wird so dicht gesetzt, dass es ein Blatt füllt,
damit Sie beim Spielen nicht umlegen müssen. Passt es auch dann nicht, wird es an Taktstrichen
gleichmäßig auf möglichst wenige Blätter verteilt. Aus: das Lied steht mit seinen natürlichen Abständen.</li>
<li><b>Notenform</b>: <i>Tischharfe (ohne Hals)</i> zeigt den Wert einer Note an Größe und Füllung des
Kopfes, wie auf gekauften Unterlegblättern (eine Zeile am Fuß jeder Seite erklärt die Formen);
<i>mit Hals</i> zeichnet Notenköpfe mit Hals und Fähnchen.</li>
<li><b>Kurze Pausen schließen</b> (ein): eine Pause kürzer als eine Achtel zwischen zwei Noten – viele
MIDI-Dateien spielen jede Note etwas zu kurz – wird nicht gezeichnet; die Note davor wird um ihre Länge
verlängert. Das ändert nur das Blatt, nicht den Harfen-Text und nicht die Works-Datei.</li>
<li><b>Wiederholungen zusammenfassen</b> (ein): Takte, die noch einmal gespielt werden, stehen nur einmal
auf dem Blatt: von |: bis :| wiederholen (Doppelstrich, die Punkte zeigen zur Wiederholung hin; „3×“: dreimal
spielen), Klammer „1.“ beim ersten Mal, „2.“ beim zweiten. Die Taktnummer nennt jeden Durchgang, „9 (17)“.
Nur genau gleiche Takte werden zusammengefasst; mit Liedtext nur, wenn auch der Text gleich ist.</li>
<li><b>Liedtext an den Noten</b> und <b>Melodielinie</b> schalten diese Teile des Blattes ein und aus.</li>
<li><b>Begleitung</b>: weitere Spuren der Datei (etwa der Bass oder die Akkorde) ankreuzen, die Sie mit der
anderen Hand spielen. Jede wird umgerechnet wie die gewählte Spur und steht mit kleineren, helleren Köpfen ohne
Melodielinie auf dem Blatt; eine dünne gestrichelte Linie verbindet sie mit der Melodienote, die zugleich
beginnt. Ihre Pausen werden nicht gezeichnet; fällt eine Begleitnote im selben Moment auf die Saite einer
Melodienote, steht nur die Melodienote da. Die Saitenreihe oben zeigt die Saiten, die nur die Begleitung
braucht, in einem helleren Ton. Die Auswahl gilt für die geöffnete Datei.</li>
</ul>
<p><i>Datei → Notenblatt als PDF speichern…</i> schreibt das Blatt als PDF-Datei,
<i>Datei → Notenblatt als SVG speichern…</i> als Vektorgrafik für ein Zeichenprogramm oder eine Webseite:
eine Datei je Seite, <tt>Name.svg</tt> bei einer Seite, sonst <tt>Name-1.svg</tt>, <tt>Name-2.svg</tt> usw.
Der Titel des Blattes ist der Name des Stücks: der Name der ersten Spur, wenn sie das Stück nennt,
sonst der Name der gewählten Spur, sonst der Name der Datei.</p>

<h2><a name="harfe"></a>25 oder 37 Saiten</h2>
<p>Im Menü <i>Harfe</i> wird die Harfengröße gewählt (Haken = 37 Saiten). Danach richtet sich, welche
Vorlagen aus dem Ordner <tt>ini</tt> für die Works-Datei benutzt werden. <i>Vorlagen-Abschnitte neu schneiden</i>
zerlegt nach einer Änderung der Vorlage <tt>wdb_37.ini</tt> bzw. <tt>wdb_25.ini</tt> diese wieder in ihre Abschnitte.</p>

<h2><a name="cantorix"></a>Text für Cantorix</h2>
<p>Unten im Fenster steht der Harfen-Ereignis-Text der gewählten Spur. <i>In die Zwischenablage</i>
rechnet die Spur um und legt den Text in die Zwischenablage, von wo Cantorix ihn übernimmt.
Auf der Seite <i>Textfelder</i> wird gewählt, welche Felder jede Zeile enthält; auf der Seite
<i>MIDI-Kanäle</i> die Kanalbelegung.</p>

<h2><a name="mischen"></a>Spuren mischen</h2>
<p>Auf der Seite <i>Spuren mischen</i> die Spuren ankreuzen, die zusammen ein Stück ergeben, und
<i>Spuren mischen</i> drücken: jede Spur wird für sich umgerechnet, die Noten werden der Zeit nach
zusammengeführt und der Text kommt in die Zwischenablage. Ist eine der Spuren mehrstimmig, weist
Lyrabo darauf hin.</p>

<h2><a name="ereignisse"></a>MIDI-Ereignisse ansehen</h2>
<p><i>MIDI-Ereignisse</i> (Knopf oder Menü <i>Ansicht</i>) zeigt die ersten 500 Ereignisse der gewählten
Spur. Ein Klick auf eine Zeile zeigt ihre Werte: Delta-Zeit, Status-Byte, Daten-Bytes, die Bytes des
Ereignisses und seinen Text. <i>Hexadezimal</i> schaltet die Zahlen auf Sechzehnerschreibweise um.</p>

<h2><a name="wiedergabe"></a>Anhören</h2>
<p>Auf der Seite <i>Wiedergabe</i> ein Ausgabegerät wählen, mit <i>Spur einreihen</i> die gewählte Spur
(und mit jedem weiteren Klick die nächste) einreihen und mit <i>Abspielen</i> anhören.</p>

<h2><a name="einstellungen"></a>Ihre Einstellungen</h2>
<p>Der zuletzt benutzte Ordner und die vier Optionen Höchster Ton = Melodie, Legato, Pausen im letzten
Takt und punktierte Pausen stehen in <tt>data/LYRABO_user.ini</tt> neben dem Programm. Beim Beenden über
<i>Datei → Beenden</i> fragt Lyrabo, ob sie gespeichert werden sollen; das Schließen des Fensters über
die Titelleiste fragt nicht und speichert nichts.</p>

<h2><a name="automatik"></a>Start durch ein anderes Programm</h2>
<p>Steht beim Start in der Zwischenablage <tt>Create Harfe-Spur</tt>, ein Trennzeichen und der Pfad
einer Datei mit der Endung <tt>.mid</tt>, rechnet Lyrabo Spur 1 dieser Datei ohne Rückfrage um, legt
den Harfen-Text in die Zwischenablage und beendet sich.</p>
)")
        .replace(QStringLiteral("{melodieregel}"), QString::fromUtf8(kMelodieRegel));
}

frmHilfe::frmHilfe(QWidget* parent) : QDialog(parent), m_browser(new QTextBrowser(this)) {
    setObjectName(QStringLiteral("frmHilfe"));
    setWindowTitle(QStringLiteral("Lyrabo – Hilfe"));
    setModal(false);
    m_browser->setObjectName(QStringLiteral("txtHilfe"));
    m_browser->setHtml(hilfeText());
    m_browser->setOpenLinks(false);
    auto* knoepfe = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(knoepfe, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_browser);
    layout->addWidget(knoepfe);
    resize(640, 560);
}

void frmHilfe::themaZeigen(int16_t helpContext) {
    m_thema = helpContext == kHilfeWegZumNotenblatt ? QStringLiteral("weg") : QString();
    show();
    raise();
    activateWindow();
    if (m_thema.isEmpty())
        m_browser->moveCursor(QTextCursor::Start);
    else
        m_browser->scrollToAnchor(m_thema);
}

frmInfo::frmInfo(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmInfo"));
    setWindowTitle(QStringLiteral("Info über Lyrabo"));
    auto* text = new QLabel(this);
    text->setObjectName(QStringLiteral("labInfo"));
    text->setTextFormat(Qt::RichText);
    text->setText(QStringLiteral("<h2>Lyrabo</h2><p>Version %1</p>"
                                 "<p>Notenblätter für die Tischharfe mit 37 oder 25 Saiten<br>"
                                 "aus Standard-MIDI-Dateien.</p>")
                      .arg(QStringLiteral(LYRABO_VERSION)));
    auto* knoepfe = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(knoepfe, &QDialogButtonBox::accepted, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(knoepfe);
}

} // namespace lyrabo
