#pragma once
// The note sheet of the converted piece as a PDF file, or as SVG files: one path for the window's
// "save as" and the command line, so that both give the same bytes for the same file and settings.
#include "blatt/BlattEinstellungen.h"
#include "model/Records.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace lyrabo {

class CProgramm;

// Lays out the notes of `noten` (KlangNoten of the track converted, or KlangNotenMix after a mix)
// with the engine's rests and the bar table, titled after track `spur` (0 for a mix), and writes
// the PDF to `ziel` through a temporary file. Needs a QGuiApplication. Returns "" or a German message.
std::string notenblattPdf(CProgramm& programm, const KlangNotenRef& noten, int16_t spur,
                          const blatt::Einstellungen& einstellungen, const std::filesystem::path& ziel);

// The same sheet as SVG, one file per page (blatt::svgDateien names them); `seiten` gets the number
// of pages written. Returns "" or a German message.
std::string notenblattSvg(CProgramm& programm, const KlangNotenRef& noten, int16_t spur,
                          const blatt::Einstellungen& einstellungen, const std::filesystem::path& ziel,
                          size_t* seiten = nullptr);

} // namespace lyrabo
