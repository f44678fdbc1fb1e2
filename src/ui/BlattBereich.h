#pragma once
// Everything of the note sheet in the window: the "Notenblatt" view, its options page, saving it
// as PDF or SVG, printing it with a preview, and lighting the notes while a track plays. The window
// tells it when the piece changed (a conversion, a mix, the transposition slider, the harp size).
#include "blatt/BlattElemente.h"
#include "blatt/BlattStueck.h"
#include "settings/BlattDaten.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QAction;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFrame;
class QLabel;
class QListWidget;
class QMenu;
class QPrinter;
class QPushButton;
class QRadioButton;
class QWidget;

namespace lyrabo {

class BlattAnsicht;
class CProgramm;
class frmLyrabo;

class BlattBereich : public QObject {
    Q_OBJECT
public:
    BlattBereich(frmLyrabo& fenster, CProgramm& programm);
    ~BlattBereich() override;

    // The view with its zoom bar, the options page, and the four entries of the "Datei" menu.
    QFrame* ansichtAnlegen(QWidget* eltern);
    QFrame* optionenAnlegen(QWidget* eltern);
    void menueEintraege(QMenu* datei);

    // ---- what the window reports ----
    // A conversion of the selected track (mischung false) or a mix has finished.
    void nachUmrechnung(bool mischung);
    // The transposition slider moved: the sheet shows the piece moved by `transpo`, as a preview.
    void transpoVorschau(int16_t transpo);
    // The harp size changed (25 or 37): its own sheet settings apply.
    void harfeGeaendert();
    // A new file is being opened: nothing of the old piece stays on view.
    void leeren();
    // A file was loaded: its tracks with notes are offered as accompaniment, none ticked. `labels`
    // are the track list's labels (row r is track r + 1).
    void begleitSpurenAnbieten(const std::vector<std::string>& labels);
    // The tracks ticked as accompaniment (kept for this file only).
    const std::vector<int16_t>& begleitung() const { return m_begleitung; }
    // Playback: the music is at this tick; and it stopped.
    void wiedergabePosition(int32_t tick);
    void wiedergabeAus();

    // ---- menu commands ----
    void alsPdfSpeichern();
    void alsSvgSpeichern();
    void drucken();
    void druckVorschau();

    // The sheet as it stands (empty until a track is converted) and the settings it was laid out with.
    BlattAnsicht& ansicht() { return *m_ansicht; }
    bool hatStueck() const { return m_stueck.has_value(); }
    const std::optional<blatt::Stueck>& stueck() const { return m_stueck; }
    const blatt::Einstellungen& einstellungen() const;
    // Writes the sheet shown as a PDF; "" or a German message.
    std::string pdfSchreiben(const std::filesystem::path& ziel) const;
    // The same as SVG, one file per page; `seiten` gets their number. "" or a German message.
    std::string svgSchreiben(const std::filesystem::path& ziel, size_t* seiten = nullptr) const;

    // Tests answer the print dialog: they set up the printer and return true to print.
    using DruckerAntwort = std::function<bool(QPrinter&)>;
    void setDruckerAntwort(DruckerAntwort antwort) { m_druckerAntwort = std::move(antwort); }

private:
    int saiten() const;
    // The piece shown: the melody's piece and the ticked accompaniment.
    void stueckZusammensetzen();
    void begleitungGeaendert();
    void neuSetzen();
    void optionenZeigen();
    // "Notenblatt als PDF/SVG speichern…": the dialog, the question before replacing, the file(s).
    void speichern(bool svg);
    void optionGeaendert();
    void infoZeigen();
    // The sheet to print on this printer: as shown, or after asking, cut into strips that fit.
    // Nothing when the user cancels.
    std::optional<blatt::Blatt> blattFuerDrucker(QPrinter& drucker);
    bool nichtsZuDrucken();
    void status(const QString& text);

    frmLyrabo& m_fenster;
    CProgramm& m_programm;
    BlattDaten m_daten;
    std::optional<blatt::Stueck> m_melodie;  // the piece of the track (or mix) alone
    std::optional<blatt::Stueck> m_stueck;   // with the accompaniment: what the sheet shows
    std::vector<int16_t> m_begleitung;
    blatt::Stueck m_geschrieben; // the piece as the shown sheet writes it, its repeats once: what playback lights
    bool m_mischung = false;
    int16_t m_spur = 0;  // track the sheet shows; 0 for a mix
    bool m_sperre = false;  // while the page's controls are set from the settings
    DruckerAntwort m_druckerAntwort;

    BlattAnsicht* m_ansicht = nullptr;
    QLabel* labBlattInfo = nullptr;
    QLabel* labBlattZoom = nullptr;
    QPushButton* cmdBlattBreite = nullptr;
    QPushButton* cmdBlatt100 = nullptr;
    QLabel* labBlattHarfe = nullptr;
    QComboBox* comboPapier = nullptr;
    QRadioButton* opHochformat = nullptr;
    QRadioButton* opQuerformat = nullptr;
    QDoubleSpinBox* spinSaitenabstand = nullptr;
    QDoubleSpinBox* spinMmProViertel = nullptr;
    QComboBox* comboNotenform = nullptr;
    QCheckBox* chEinpassen = nullptr;
    QCheckBox* chKurzePausen = nullptr;
    QCheckBox* chWiederholungen = nullptr;
    QCheckBox* chNotenTexte = nullptr;
    QCheckBox* chMelodieLinie = nullptr;
    QListWidget* listBegleitung = nullptr;
    QAction* mBlattAlsPdf = nullptr;
    QAction* mBlattAlsSvg = nullptr;
    QAction* mBlattDrucken = nullptr;
    QAction* mBlattVorschau = nullptr;
};

} // namespace lyrabo
