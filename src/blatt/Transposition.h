#pragma once
// Fitting the piece onto the harp: the one rule that the sheet's header, the window's button
// "Passend transponieren" and lyrabo-cli's --transpo passend share, so that they always agree.
#include "blatt/BlattStueck.h"

#include <optional>
#include <string>

namespace lyrabo::blatt {

// The lowest and highest pitch of the notes a sheet shows, as the file has them (untransposed).
struct Tonumfang {
    int tief = 0;
    int hoch = -1;
    bool leer() const { return hoch < tief; }
    void dazu(int tonHoehe);
};

Tonumfang tonumfang(const Stueck& stueck);

// The transpositions that put every pitch onto strings 1 to `saiten` form one unbroken run; this is
// its value nearest 0 (0 itself when the piece fits as written), so the piece stays as close to its
// written pitch as the harp allows. No two values can tie. Nothing when the piece spans more
// semitones than the harp has strings, or when the value lies beyond +/-grenze (the slider's reach).
// An empty piece fits as it is.
std::optional<int> passendeTransposition(const Tonumfang& umfang, int saiten, int grenze = 36);

// Why passendeTransposition found nothing, in German for the user.
std::string passtNichtText(const Tonumfang& umfang, int saiten, int grenze = 36);

} // namespace lyrabo::blatt
