#pragma once
// Draws a laid-out note sheet with Qt: one painter for the PDF file, the window and the printer,
// so that all three show the same page.
#include "blatt/BlattElemente.h"

#include <QPainter>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace lyrabo::blatt {

// Draws one page in the painter's current coordinates, taken as millimetres (the caller scales).
// Elements of the notes for which `hervorheben` says true are drawn in the highlight colour.
void seiteMalen(QPainter& maler, const Seite& seite, const std::function<bool(int32_t note)>& hervorheben = {});

// Writes every page as a PDF at 100 %, vector only. The file goes through a temporary file, so an
// existing one survives a failure. `erstellt` (seconds since 1970) becomes the creation date, so
// the same sheet always gives the same bytes. Returns "" or a German message.
std::string alsPdf(const Blatt& blatt, const std::filesystem::path& ziel, const std::string& titel, int64_t erstellt);

// The files an SVG sheet of `seiten` pages goes to: `ziel` itself for one page, else NAME-1.svg,
// NAME-2.svg, ... beside it.
std::vector<std::filesystem::path> svgDateien(const std::filesystem::path& ziel, size_t seiten);

// Writes every page as its own SVG file, vector only, in millimetres and of the page's size, each
// through a temporary file so that an existing one survives a failure. Returns "" or a German message.
std::string alsSvg(const Blatt& blatt, const std::filesystem::path& ziel, const std::string& titel);

} // namespace lyrabo::blatt
