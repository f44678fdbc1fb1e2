#pragma once
// The choices that shape the note sheet: paper, string spacing, how much room a beat gets.
#include <cstdint>

namespace lyrabo::blatt {

enum class Papier { A4, A3 };

// How a note's value is shown: the table-harp shapes (size and fill, no stems) or heads with stems and flags.
enum class Notenform { Harfe, Hals };

struct Einstellungen {
    Papier papier = Papier::A3;
    bool quer = true;              // landscape
    double saitenAbstand = 11.5;   // mm between neighbouring strings, 10 to 14
    double mmProViertel = 6.0;     // vertical room of a quarter note
    bool notenTexte = true;        // print the notes' lyrics beside them
    bool melodieLinie = true;      // line from melody note to melody note
    bool einpassen = true;         // scale the spacing so the whole song fills one sheet (never beyond its natural spacing)
    Notenform notenform = Notenform::Harfe;
    bool kurzePausenSchliessen = true; // a rest shorter than an eighth between two notes lengthens the note before it
    bool wiederholungenZusammenfassen = true; // a run of bars played again is written once with repeat signs
    double druckRand = 0;          // mm at each paper edge that the printer cannot reach; 0 for a file

    static constexpr double kMinAbstand = 10.0, kMaxAbstand = 14.0;
    static constexpr double kMinProViertel = 4.0, kMaxProViertel = 20.0;
};

// The defaults a harp of this size gets: 25 strings on A4 landscape, 37 on A3 landscape.
Einstellungen standardFuer(int saiten);

// Width and height of the paper in mm, as it lies (landscape swaps them).
struct Format {
    double breite = 0, hoehe = 0;
};
Format papierFormat(const Einstellungen& e);

// Values out of their range are pulled back into it.
Einstellungen begrenzt(Einstellungen e);

} // namespace lyrabo::blatt
