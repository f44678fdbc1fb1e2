#include "settings/CDreiZeichen.h"

#include <memory>

namespace lyrabo {

const char* const kZeichenSchluessel[8] = {"192", "144", "96", "72", "48", "36", "24", "12"};

namespace {
// A dotted value uses the character of the plain value above it plus the comma (44) as dot.
void fuellen(ZeichenTabelle& tabelle, const uint8_t (&zeichen)[8]) {
    for (const char* key : kZeichenSchluessel) tabelle.Add(std::make_shared<CDreiZeichen>(), key);
    for (int i = 0; i < 8; ++i) {
        auto& eintrag = tabelle.Item(kZeichenSchluessel[i]);
        eintrag->Zeichen1(zeichen[i]);
        if (i == 1 || i == 3 || i == 5) eintrag->Zeichen2(44);
    }
}
} // namespace

void fillFontNotenColl(ZeichenTabelle& tabelle) {
    static const uint8_t kNoten[8] = {'c', 'v', 'v', 'b', 'b', 'n', 'n', 'm'};
    fuellen(tabelle, kNoten);
}

void fillFontPausenColl(ZeichenTabelle& tabelle) {
    static const uint8_t kPausen[8] = {'f', 'g', 'g', 'h', 'h', 'j', 'j', 'k'};
    fuellen(tabelle, kPausen);
}

} // namespace lyrabo
