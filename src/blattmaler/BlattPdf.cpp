#include "blattmaler/BlattPdf.h"

#include "app/core/BlattQuelle.h"
#include "blatt/BlattSatz.h"
#include "blattmaler/BlattMaler.h"

#include <QGuiApplication>
#include <QHash>

#include <exception>

namespace lyrabo {

namespace {

// Lays the sheet out and hands it to `schreiben`; "" or a German message.
template <typename Schreiben>
std::string notenblatt(CProgramm& programm, const KlangNotenRef& noten, int16_t spur,
                       const blatt::Einstellungen& einstellungen, const std::filesystem::path& ziel, Schreiben schreiben) {
    const std::string name = "Das Notenblatt \"" + ziel.filename().string() + "\"";
    // Without the application object Qt has no fonts and would stop the whole program.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) return name + " kann ohne grafische Umgebung nicht geschrieben werden.";
    // Qt writes the embedded fonts in the order of a hash table, which a random seed per process
    // would shuffle; a fixed seed makes the same sheet the same bytes in every run. (Every hash
    // keeps the seed it was made with, so the ones that exist already are not disturbed.)
    QHashSeed::setDeterministicGlobalSeed();
    try {
        const std::string titel = blattTitel(programm, spur);
        const blatt::Blatt blatt = blatt::setzen(blattStueck(programm, noten, titel), einstellungen);
        return schreiben(blatt, titel);
    } catch (const std::exception&) {
        return name + " konnte nicht gesetzt werden.";
    }
}

} // namespace

std::string notenblattPdf(CProgramm& programm, const KlangNotenRef& noten, int16_t spur,
                          const blatt::Einstellungen& einstellungen, const std::filesystem::path& ziel) {
    return notenblatt(programm, noten, spur, einstellungen, ziel, [&](const blatt::Blatt& blatt, const std::string& titel) {
        return blatt::alsPdf(blatt, ziel, titel, blattDatum(programm));
    });
}

std::string notenblattSvg(CProgramm& programm, const KlangNotenRef& noten, int16_t spur,
                          const blatt::Einstellungen& einstellungen, const std::filesystem::path& ziel, size_t* seiten) {
    return notenblatt(programm, noten, spur, einstellungen, ziel, [&](const blatt::Blatt& blatt, const std::string& titel) {
        if (seiten) *seiten = blatt.seiten.size();
        return blatt::alsSvg(blatt, ziel, titel);
    });
}

} // namespace lyrabo
