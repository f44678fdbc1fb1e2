// Removing a note that sounds at the same time and pitch as another.
#include "engine/CKLNCreator.h"

#include <deque>
#include <vector>

namespace lyrabo {

// Walks the notes as a position list from which an item is removed in the middle. Which item goes
// follows an index rule that must be kept exactly: item j - 1 is removed, where j is the duplicate
// found. When the duplicate is A's neighbour, A itself goes (and the later note keeps the larger
// track number); with other pitches between, the note just before the duplicate goes and A stays,
// and the note moving into place j is skipped.
// Removals only ever happen at or after position i, so the positions before i are set aside in
// `fertig` and the others kept in a deque that removes near its front without shifting the rest.
void CKLNCreator::doppelEventsEntfernen() {
    const auto& noten = KlangNoten();
    using Ref = std::shared_ptr<CKlangNote>;
    std::vector<Ref> fertig;
    fertig.reserve(static_cast<size_t>(noten->Count()));
    std::deque<Ref> offen;
    for (const auto& n : *noten) offen.push_back(n);

    auto anzahl = [&] { return static_cast<int64_t>(fertig.size() + offen.size()); };
    auto an = [&](int64_t pos) -> const Ref& { return offen[static_cast<size_t>(pos - 1 - static_cast<int64_t>(fertig.size()))]; };

    int64_t i = 0;
    while (i < anzahl() - 1) {
        ++i;
        while (static_cast<int64_t>(fertig.size()) < i - 1) {
            fertig.push_back(std::move(offen.front()));
            offen.pop_front();
        }
        const Ref a = an(i);
        int64_t j = i + 1;
        Ref b = an(j);
        while (b->StartZeit() == a->StartZeit()) {
            if (b->TonHoehe() == a->TonHoehe()) {
                if (a->Spur() > b->Spur()) b->Spur(a->Spur());
                offen.erase(offen.begin() + (j - 2 - static_cast<int64_t>(fertig.size())));
            }
            if (j >= anzahl()) break;
            ++j;
            b = an(j);
        }
    }
    for (auto& n : offen) fertig.push_back(std::move(n));
    noten->ersetzeDurch(std::move(fertig));
}

} // namespace lyrabo
