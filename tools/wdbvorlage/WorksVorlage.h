#pragma once
// The template Works databases "wdb_25.ini" and "wdb_37.ini" from which the program cuts its
// pieces: an OLE2 compound file whose one stream "MN0" holds a database with one text field per
// harp string and a blank grid of note cells, laid out so that the cells, the free "Schriften"
// sectors and the second FAT sector sit exactly where the cutting offsets expect them.
#include <cstdint>
#include <string>

namespace lyrabo::vorlage {

// Name of the music font of the note cells: its letters c v b n m (notes), f g h j k (rests) and
// the comma (dot) are the glyphs the program writes. Change it here and regenerate ini/.
inline constexpr const char* kNotenSchrift = "Lyrabo Noten";
inline constexpr int kNotenSchriftGroesse = 16;  // points
// Font of the field names (the column heads of the printed list).
inline constexpr const char* kKopfSchrift = "Arial";
inline constexpr int kKopfSchriftGroesse = 8;
// Every column is one string, as wide as the strings stand apart on the harp: 11.5 mm in twips
// (1/1440 inch), so a printed sheet laid under the strings puts each column under its string.
inline constexpr int kSpaltenBreite = 652;
// Page set-up of the print: A4 landscape (width and height in twips); the side margins leave
// exactly 25 columns across, so a 25-string sheet fits one page width and a 37-string sheet
// continues on a second page.
inline constexpr int kSeitenBreite = 16838;
inline constexpr int kSeitenHoehe = 11906;
inline constexpr int kRandSeite = (kSeitenBreite - 25 * kSpaltenBreite) / 2;
inline constexpr int kRandObenUnten = 567;  // 1 cm

// Fixed positions of the layout (file offsets, 0-based).
struct Layout {
    int spalten = 0;          // strings
    int zeilen = 0;           // rows of the blank grid
    int32_t dateiLaenge = 0;  // length of the finished database the writer assembles
    int32_t ersteZelle = 0;   // file offset of the first cell in that database
    int32_t endeSatz = 0;     // file offset of the end record in that database
};

inline constexpr Layout kLayout25{25, 140, 57343, 3681, 56777};
inline constexpr Layout kLayout37{37, 135, 80896, 5627, 80165};

// The finished, well-formed database of the layout, as the writer assembles it from the pieces
// when no note is placed.
std::string wdbDatei(const Layout& l);

// The template file to ship: for 37 strings the database itself; for 25 strings the database with
// one filler byte inserted at offset 3681, because the writer drops that byte of the header piece.
std::string vorlageDatei(const Layout& l);

} // namespace lyrabo::vorlage
