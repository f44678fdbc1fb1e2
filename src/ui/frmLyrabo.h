#pragma once
// The main window: track list, option pages, string-column display, the harp-event text and the
// event list. It is the core's form (messages, display) and its file dialog; every handler hands
// its work to the core and turns any error into a German message box, so the window keeps running.
#include "app/core/CProgramm.h"
#include "app/core/Oberflaeche.h"
#include "ui/DialogFilter.h"

#include <QMainWindow>
#include <QMessageBox>

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QAction;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QScrollArea;
class QSlider;
class QTabWidget;
class QVBoxLayout;

namespace lyrabo {

class BlattBereich;
class UmrechnungSeite;
class frmHilfe;
class frmInfo;
class ZuletztMenue;

class frmLyrabo : public QMainWindow, public IForm, public IDialog {
    Q_OBJECT

public:
    explicit frmLyrabo(ProgrammOrte orte, QWidget* parent = nullptr);
    ~frmLyrabo() override;

    CProgramm& programm() { return m_programm; }

    // ---- start-up steps that belong to the window ----
    // Initialises the window once and brings it into line with the settings (its first use).
    void laden();
    // Creates the string-column labels 1 to 36 right of label 0 and marks the octaves.
    void spaltenLabelsAnlegen();
    // Lists the screen fonts (without the first) and applies the first of them.
    void schriftenFuellen();
    // Applies the settings' Fontname to the preview labels of both character tables.
    void setFontName();
    // Shows both character tables in their code boxes and preview labels.
    void zeichenTabellenZeigen();

    bool Unterdrueckung() const { return m_unterdrueckung; }
    void Unterdrueckung(bool an) { m_unterdrueckung = an; }

    // Asks whether to save the user settings (unless in an automatic run) and ends the program;
    // Cancel, or a failed save, keeps it running. Returns true when the program ends.
    bool programmBeenden();
    bool beendet() const { return m_beendet; }
    // How often the event details sounded the beep for a large number in hexadecimal.
    int piepAnzahl() const { return m_piepAnzahl; }

    // Shows the help window at the topic of the help context.
    void HilfeAnzeigen(int16_t helpContext, const std::string& helpFileBase);
    void infoAnzeigen();

    // The harp-event text exactly as the core gave it (the text box shows it with plain line ends).
    const std::string& klangNotenText() const { return m_klangNotenText; }

    // Runs a handler's work; any error becomes a message box. Returns false after an error.
    bool sicher(const std::function<void()>& arbeit);

    // ---- message boxes and dialogs; tests answer them instead of a user ----
    using NachrichtAntwort = std::function<QMessageBox::StandardButton(
        QMessageBox::Icon, const QString& text, QMessageBox::StandardButtons knoepfe)>;
    void setNachrichtAntwort(NachrichtAntwort antwort) { m_nachrichtAntwort = std::move(antwort); }
    using DialogAntwort = std::function<std::optional<QString>(bool speichern, const QString& startOrdner,
                                                               const QString& filter)>;
    void setDialogAntwort(DialogAntwort antwort) { m_dialogAntwort = std::move(antwort); }
    QMessageBox::StandardButton nachricht(QMessageBox::Icon icon, const QString& text,
                                          QMessageBox::StandardButtons knoepfe = QMessageBox::Ok);
    // A save dialog that starts at `vorschlag` and leaves the overwrite question to the caller.
    std::optional<QString> speicherDialog(const QString& titel, const QString& vorschlag, const QString& filter);

    // ---- the note sheet ----
    BlattBereich& blattBereich() { return *m_blatt; }
    // Opens a file dropped on the window as FileOpen does, with the file in place of the dialog.
    void abgelegtOeffnen(const QString& pfad);

    // ---- IForm ----
    void meldung(const std::string& text) override;
    int16_t ausgewaehlteSpurZeile() const override;
    void anzeigeAktuallisieren() override;
    void DisplayTrack(int16_t spur) override;
    void spaltenFaerben(const std::array<Farbe, 37>& felder, Farbe links, Farbe rechts) override;
    // Strings (1-based) the sheet's accompaniment uses: shown lighter where the melody does not.
    void begleitSaitenZeigen(const std::vector<int>& saiten);
    void setKlangNotenText(const std::string& text) override;
    void setLabelTempo(const std::string& text) override;
    void setLabelTicks(const std::string& text) override;
    void setLabelTimeSignature(const std::string& text) override;
    void setZwischenablage(const std::string& text) override;
    void trackListeFuellen(const std::vector<std::string>& labels) override;
    void nachDateiGeladen() override;
    void spurenMischenSperren() override;

    // ---- IDialog ----
    std::optional<std::string> oeffnen(const std::string& initDir, const std::string& filter) override;
    std::optional<std::string> speichern(const std::string& filter, int flags) override;

protected:
    void closeEvent(QCloseEvent* ereignis) override;

private:
    // building the window
    void menuesAnlegen();
    QWidget* spurenBereichAnlegen();
    QWidget* saitenAnzeigeAnlegen();
    QWidget* optionenAnlegen();
    QWidget* ansichtenAnlegen();
    QFrame* bereichUmrechnung();
    QFrame* bereichKanaele();
    QFrame* bereichTextfelder();
    QFrame* bereichMischen();
    QFrame* bereichNotenschrift();
    QFrame* bereichWiedergabe();
    void initialisieren();
    void anzeigeAktuallisierenIntern();
    void mischKaestchenAnlegen(int anzahl);
    void spaltenMalen();
    // After a load: marks the track that most likely carries the melody (the selection stays) and
    // offers the tracks with notes as accompaniment on the sheet page.
    void melodieMarkieren();
    void melodieMarkeAuffrischen(); // after a change of harp size or transposition

    // handlers
    void TrackList_Click();
    void hsTranspo_Change(int wert);
    void cmdPassendTransponieren_Click();
    void melodieSpurWaehlen();
    void hsQuantisierung_Change(int wert);
    void opKanal_Click(int index);
    void chOption_Click(QCheckBox* box);
    void chClipExport_Click(int index);
    void chSpurMischen_Click(int index);
    void cmdSpurenMischen_Click();
    void cmdKopieren_Click();
    void comboFontname_Click(int index);
    void txtZeichen_Change(int index, bool pause, bool punkt);
    void cmdEbene_Click(int index);
    void ansichtZeigen(bool ereignisse);
    void MessageList_Click();
    void FileOpen_Click();
    void mSpeichernAlsWDB_Click();
    void mCreateAbschnittsINIs_Click();
    void m37SaitenHarfe_Click();
    void neuBerechnen();
    void nachFehlgeschlagenemLaden();

    CProgramm m_programm;
    bool m_geladen = false;
    bool m_unterdrueckung = false;
    bool m_listeWirdGefuellt = false;
    bool m_beendet = false;
    int16_t m_angezeigteSpur = 0;
    int16_t m_melodieSpur = 0;  // the marked track, 0 for none
    std::array<Farbe, 37> m_spaltenFarben{};  // as the engine coloured the fields
    std::array<bool, 37> m_begleitSaiten{};
    bool m_gefaerbt = false;                  // the engine has coloured the fields at least once
    int m_piepAnzahl = 0;
    std::string m_klangNotenText;
    NachrichtAntwort m_nachrichtAntwort;
    DialogAntwort m_dialogAntwort;

    // controls named as the program names them
    QListWidget* TrackList = nullptr;
    QSlider* hsTranspo = nullptr;
    QLabel* labTranspo = nullptr;
    QPushButton* cmdPassendTransponieren = nullptr;
    QSlider* hsQuantisierung = nullptr;
    QLineEdit* txtQuantisierung = nullptr;
    std::array<QRadioButton*, 3> opKanal{};
    QCheckBox* chLegato = nullptr;
    QCheckBox* chHoechsterTonMelodie = nullptr;
    QCheckBox* chPunktPausen = nullptr;
    QCheckBox* chPausenLetzerTakt = nullptr;
    std::array<QCheckBox*, 9> chClipExport{};  // 1 to 8
    std::vector<QCheckBox*> chSpurMischen;     // index 0 unused: box i belongs to track i
    QPushButton* cmdSpurenMischen = nullptr;
    QPushButton* cmdKopieren = nullptr;
    QComboBox* comboFontname = nullptr;
    std::array<QLineEdit*, 8> txtZeichen01{}, txtZeichen02{}, txtPZeichen01{}, txtPZeichen02{};
    std::array<QLabel*, 8> labZeichen01{}, labZeichen02{}, labPZeichen01{}, labPZeichen02{};
    std::array<QLabel*, 37> labSpalte{};
    std::array<QLabel*, 2> labSpalteBorder{};
    QPlainTextEdit* txtKlangNoten = nullptr;
    QListWidget* MessageList = nullptr;
    QLineEdit* TimeEdit = nullptr;
    QLineEdit* MessageEdit = nullptr;
    QLineEdit* Data1Edit = nullptr;
    QLineEdit* Data2Edit = nullptr;
    QLineEdit* BufferEdit = nullptr;
    QLineEdit* MsgTextEdit = nullptr;
    QCheckBox* HexCheck = nullptr;
    std::array<QPushButton*, 8> cmdEbene{};     // 1 to 7
    std::array<QFrame*, 8> frameBereich{};      // 1 to 7
    QPushButton* cmdToMIDIEvents = nullptr;
    QPushButton* cmdToKlangnoten = nullptr;
    QFrame* frameMessage = nullptr;
    QFrame* frameKlangnoten = nullptr;
    QLabel* LabelTempo = nullptr;
    QLabel* LabelTicks = nullptr;
    QLabel* LabelTimeSignature = nullptr;
    QPushButton* cmdHelp = nullptr;
    QAction* FileOpen = nullptr;
    QAction* mSpeichernAlsWDB = nullptr;
    QAction* mCreateAbschnittsINIs = nullptr;
    QAction* m37SaitenHarfe = nullptr;
    QAction* mMelodieSpur = nullptr;
    QAction* mShowMIDIEvents = nullptr;
    QAction* mInhalt = nullptr;
    QAction* mInfo = nullptr;
    QAction* FileExit = nullptr;

    QWidget* m_spaltenFlaeche = nullptr;
    QWidget* m_mischFlaeche = nullptr;
    QVBoxLayout* m_mischLayout = nullptr;
    QVBoxLayout* m_wiedergabeLayout = nullptr;
    QWidget* m_wiedergabe = nullptr;
    BlattBereich* m_blatt = nullptr;
    UmrechnungSeite* m_umrechnung = nullptr;
    QTabWidget* m_ansichten = nullptr;
    QFrame* m_blattAnsicht = nullptr;
    std::optional<QString> m_abgelegt;  // a dropped file, answered in place of the open dialog
    int m_textStand = 0;                // counts harp-event texts: a conversion that ran to its end
    frmHilfe* m_hilfe = nullptr;
    frmInfo* m_info = nullptr;
    ZuletztMenue* m_zuletzt = nullptr;
};

} // namespace lyrabo
