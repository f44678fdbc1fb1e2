#pragma once
// Small helpers the main window's files share: names for controls, field colours, text conversion
// and the measures of the string row.
#include "blatt/Saiten.h"

#include <QColor>
#include <QLabel>
#include <QPalette>
#include <QString>
#include <QVariant>

#include <string>

namespace lyrabo::steuer {

inline constexpr int kSpalteBreite = 20;   // width of one string field
inline constexpr int kSpalteAbstand = 3;   // gap between two string fields
inline constexpr int kSpalteHoeheBass = 92;
inline constexpr int kSpalteHoeheDiskant = 40;
inline constexpr int kRandBreite = 12;
inline constexpr int kSpaltenOben = 4;
inline const QColor kOktavFarbe(150, 150, 255);
inline const QColor kBegleitFarbe(180, 235, 180);       // a string only the accompaniment uses
inline const QColor kBegleitOktavFarbe(165, 215, 235);  // the same on an octave string

// Controls of an array share their name and carry their index, as the program addresses them.
template <typename W>
W* element(W* w, const char* name, int index = -1) {
    w->setObjectName(QString::fromLatin1(name));
    if (index >= 0) w->setProperty("Index", index);
    return w;
}

inline void faerben(QLabel* feld, const QColor& farbe) {
    QPalette p = feld->palette();
    p.setColor(QPalette::Window, farbe);
    feld->setPalette(p);
    feld->setAutoFillBackground(true);
}

inline QString ausUtf8(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
inline std::string nachUtf8(const QString& s) { return s.toUtf8().toStdString(); }

// Name of the string that sounds MIDI note n, German style (g, gis, a, b, h, c', ...).
inline QString saitenName(int note) { return QString::fromStdString(blatt::saitenName(note)); }

} // namespace lyrabo::steuer
