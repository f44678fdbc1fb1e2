#pragma once
// The help window with the short manual, and the about window.
#include <QDialog>

#include <cstdint>

class QTextBrowser;

namespace lyrabo {

// Help context of the manual's main topic: the way from a MIDI file to a printed sheet.
inline constexpr int16_t kHilfeWegZumNotenblatt = 5150;

class frmHilfe : public QDialog {
    Q_OBJECT
public:
    explicit frmHilfe(QWidget* parent = nullptr);
    // Shows the window at the topic of a help context; an unknown context shows the beginning.
    void themaZeigen(int16_t helpContext);
    QString thema() const { return m_thema; }
    QTextBrowser* browser() const { return m_browser; }

private:
    QTextBrowser* m_browser;
    QString m_thema;
};

class frmInfo : public QDialog {
    Q_OBJECT
public:
    explicit frmInfo(QWidget* parent = nullptr);
};

// The manual as HTML; its anchors are the topics.
QString hilfeText();

} // namespace lyrabo
