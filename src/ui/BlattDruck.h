#pragma once
// Printing the note sheet at 100 %: a millimetre of the sheet is a millimetre on the paper, so
// the strings on the page lie exactly under the harp's strings.
#include "blatt/BlattEinstellungen.h"
#include "blatt/BlattElemente.h"

#include <QRectF>

#include <optional>
#include <string>

class QPrinter;

namespace lyrabo {

// The part of the printer's paper it can print on, in mm from the paper's top left corner.
QRectF druckbereichMm(const QPrinter& drucker);
// The part of a page that carries ink, in mm from its top left corner.
QRectF inhaltMm(const blatt::Seite& seite);
// True when every page's ink lies inside the printable part of the printer's paper.
bool passtAufDrucker(const blatt::Blatt& blatt, const QRectF& druckbereich);

// The printer's paper as the sheet names it, if it is A4 or A3.
std::optional<blatt::Papier> druckerPapier(const QPrinter& drucker);
// Sets the printer's paper to the size and orientation of the sheet's first page.
void papierEinstellen(QPrinter& drucker, const blatt::Blatt& blatt);
// Prints every page, unscaled, on the printer's paper. Returns "" or a German message.
std::string blattDrucken(QPrinter& drucker, const blatt::Blatt& blatt);

} // namespace lyrabo
