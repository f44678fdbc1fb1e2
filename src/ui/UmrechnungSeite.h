#pragma once
// The "Umrechnung" options page: the quantisation slider, the four conversion options and the
// switch "Genaue Auflösung"; and the line of the window's file info that says what that switch
// does for the open file. The window keeps the older controls under their names and handles them.
#include <QObject>

#include <functional>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QSlider;
class QWidget;

namespace lyrabo {

class CProgramm;
class frmLyrabo;

class UmrechnungSeite : public QObject {
    Q_OBJECT
public:
    struct Steuerelemente {
        QSlider* hsQuantisierung = nullptr;
        QLineEdit* txtQuantisierung = nullptr;
        QCheckBox* chLegato = nullptr;
        QCheckBox* chHoechsterTonMelodie = nullptr;
        QCheckBox* chPausenLetzerTakt = nullptr;
        QCheckBox* chPunktPausen = nullptr;
    };

    // `neuBerechnen` is the window's recompute of the selected track.
    UmrechnungSeite(frmLyrabo& fenster, CProgramm& programm, std::function<void()> neuBerechnen);

    // The page, and the window's controls on it.
    QFrame* anlegen(QWidget* eltern, Steuerelemente& steuer);
    // The file info's line about the resolution (hidden while it has nothing to say).
    QLabel* hinweisAnlegen(QWidget* eltern);
    // Brings that line into line with the file now open.
    void hinweisZeigen();

private:
    void chGenaueAufloesung_Click(bool an);

    frmLyrabo& m_fenster;
    CProgramm& m_programm;
    std::function<void()> m_neuBerechnen;
    QCheckBox* chGenaueAufloesung = nullptr;
    QLabel* labAufloesung = nullptr;
};

} // namespace lyrabo
