#pragma once
// The fonts that come with the program (data/schriften beside it): registered for the window at
// start-up, listed first among the note fonts, and on request copied into the user's font folder
// so that office programs print the Works sheets with them.
#include <QString>
#include <QStringList>

#include <filesystem>

namespace lyrabo {

// Registers every font file in data/schriften of the program folder (each file once per run) and
// returns their families, sorted. A missing folder or an unreadable file only means fewer fonts.
QStringList eigeneSchriftenRegistrieren(const std::filesystem::path& programmOrdner);

// The entries of the font list: the program's own fonts first, then the system's fonts in their
// order without the first one the system lists; an own family is not listed twice.
QStringList schriftenListe(const QStringList& eigene, const QStringList& system);

// The user's own font folder: ~/.local/share/fonts, on Windows the per-user font folder.
QString benutzerSchriftenOrdner();

struct SchriftKopie {
    QStringList neu;      // files copied now
    QStringList schonDa;  // files that were there with the same content
};

// Copies the program's font files into zielOrdner, each through a temporary file and a rename;
// a file already there with the same content is left alone. Throws a DateiFehler with a German
// message when the program has no font file or the folder cannot be written.
SchriftKopie notenschriftKopieren(const std::filesystem::path& programmOrdner, const QString& zielOrdner);

// Copies the fonts into the user's font folder and makes them known (fc-cache; on Windows the
// per-user registry entry). Returns the message for the user, naming the folder.
QString notenschriftInstallieren(const std::filesystem::path& programmOrdner);

} // namespace lyrabo
