#pragma once
// The two export texts, each built from the collections it prints: the KlangNoten table and the
// harp-event text that the notation program Cantorix imports. Lines end in CR LF; the text never
// ends with one.
#include "model/Records.h"
#include "settings/CEinstellungen.h"

#include <string>

namespace lyrabo {

// Header with the settings, then one line per note of the chords with the switched-on fields.
std::string klangNotenText(CEinstellungen& e, const Sammlung<CKlangNote>& klangNoten, const Sammlung<CAkkord>& akkorde);

// Header with the time signatures, then the events bar by bar; `monoton` chooses the field order.
std::string harfeEventText(CEinstellungen& e, const Sammlung<CTimeSignature>& taktarten,
                           const Sammlung<CHarfeEvent>& events, bool monoton);

} // namespace lyrabo
