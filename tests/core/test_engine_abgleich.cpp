// The engine's fast forms of two walks checked against the walks as written, on many random
// inputs: the bar lookup over summed bar starts, and duplicate removal without shifting the list.
#include "support/EngineUmgebung.h"

#include "engine/TaktRaster.h"
#include "settings/Takte.h"

#include <gtest/gtest.h>

#include <random>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

template <typename F>
std::string ergebnisOderFehler(F f) {
    try {
        return std::to_string(f());
    } catch (const IndexFehler&) {
        return "IndexFehler";
    } catch (const UeberlaufFehler&) {
        return "UeberlaufFehler";
    }
}

// Duplicate removal exactly as the index rule states it, on the collection itself.
void doppelteWieGeschrieben(Sammlung<CKlangNote>& k) {
    int32_t i = 0;
    while (i < k.Count() - 1) {
        ++i;
        auto a = k.Item(i);
        int32_t j = i + 1;
        auto b = k.Item(j);
        while (b->StartZeit() == a->StartZeit()) {
            if (b->TonHoehe() == a->TonHoehe()) {
                if (a->Spur() > b->Spur()) b->Spur(a->Spur());
                k.Remove(j - 1);
            }
            if (j >= k.Count()) break;
            ++j;
            b = k.Item(j);
        }
    }
}

// Limit and overlap pass exactly as written, with the search that gives up at the count.
void laengenWieGeschrieben(Sammlung<CKlangNote>& k) {
    for (const auto& n : k)
        if (n->Laenge() > 1920) {
            n->Laenge(1920);
            n->LaengeOrig(1920);
        }
    for (int32_t i = 1; i <= k.Count() - 1; ++i) {
        auto a = k.Item(i);
        int32_t j = i + 1;
        bool gefunden = true;
        while (k.Item(j)->StartZeit() == a->StartZeit()) {
            ++j;
            if (j >= k.Count()) {
                gefunden = false;
                break;
            }
        }
        if (!gefunden) continue;
        const int32_t abstand = k.Item(j)->StartZeit() - a->StartZeit();
        if (a->Laenge() == 0 || abstand < a->Laenge()) {
            a->Laenge(abstand);
            a->LaengeOrig(abstand);
        }
    }
}

} // namespace

TEST(EngineAbgleich, TaktRasterWieDieSchrittweiseSuche) {
    std::mt19937 zufall(4711);
    for (int runde = 0; runde < 200; ++runde) {
        CEinstellungen e;
        const int anzahl = static_cast<int>(zufall() % 12);
        const bool auchNichtPositiv = runde % 5 == 0;
        for (int k = 0; k < anzahl; ++k) {
            auto l = std::make_shared<CInteger>();
            int v = 240 * static_cast<int>(1 + zufall() % 10);
            if (auchNichtPositiv && zufall() % 4 == 0) v = -static_cast<int>(zufall() % 500);
            l->Value(static_cast<int16_t>(v));
            e.MFITaktLaengen()->Add(l);
        }
        const CTaktRaster raster(e);
        for (int32_t t = -300; t < 26000; t += 1 + static_cast<int32_t>(zufall() % 97))
            ASSERT_EQ(ergebnisOderFehler([&] { return raster.taktNr(t); }),
                      ergebnisOderFehler([&] { return getTaktNrFromABSStartZeit(e, t); }))
                << "runde " << runde << ", t " << t;
        for (int16_t k = -1; k <= anzahl + 2; ++k) {
            ASSERT_EQ(ergebnisOderFehler([&] { return raster.taktStart(k); }),
                      ergebnisOderFehler([&] { return TaktStartVon(e, k); }))
                << "runde " << runde << ", k " << k;
            ASSERT_EQ(ergebnisOderFehler([&] { return raster.taktLaenge(k); }),
                      ergebnisOderFehler([&] { return CEinstellungen::wert(e.MFITaktLaengen(), k); }));
        }
    }
}

TEST(EngineAbgleich, DoppelteUndUeberlappungWieGeschrieben) {
    std::mt19937 zufall(815);
    for (int runde = 0; runde < 300; ++runde) {
        EngineUmgebung u;
        MidiBauer d(480);
        d.spur().note(0, 60, 480);
        u.laden(d);
        u.takte(40, {1920, 4, 4});
        // A last note at tick 0 of length 0 has no bar to fill (bar 0 is a lookup error).
        u.e().PausenLetzterTakt(false);

        // Clusters of notes at one start with few pitches, so duplicates lie next to each other
        // and with other pitches between; track numbers as merged notes carry them.
        std::vector<std::shared_ptr<CKlangNote>> eingabe;
        int32_t start = 0;
        const int anzahl = 1 + static_cast<int>(zufall() % 40);
        for (int n = 0; n < anzahl; ++n) {
            if (zufall() % 3 == 0) start += 120 * static_cast<int32_t>(1 + zufall() % 4);
            auto note = std::make_shared<CKlangNote>();
            note->StartZeit(start);
            const int32_t laenge = zufall() % 4 == 0 ? 0 : 120 * static_cast<int32_t>(zufall() % 21);
            note->Laenge(laenge);
            note->LaengeOrig(laenge);
            note->TonHoehe(static_cast<int16_t>(60 + zufall() % 3));
            note->Spur(static_cast<int16_t>(zufall() % 4));
            note->ID(n + 1);
            eingabe.push_back(note);
        }
        Sammlung<CKlangNote> erwartet;
        for (const auto& n : eingabe) erwartet.Add(std::make_shared<CKlangNote>(*n));
        doppelteWieGeschrieben(erwartet);
        laengenWieGeschrieben(erwartet);

        u.noten()->ersetzeDurch(eingabe);
        ASSERT_TRUE(u.produce(false));
        ASSERT_EQ(u.noten()->Count(), erwartet.Count()) << "runde " << runde;
        for (int32_t k = 1; k <= erwartet.Count(); ++k) {
            EXPECT_EQ(u.noten()->Item(k)->ID(), erwartet.Item(k)->ID()) << "runde " << runde << ", " << k;
            EXPECT_EQ(u.noten()->Item(k)->Spur(), erwartet.Item(k)->Spur()) << "runde " << runde << ", " << k;
            // Only the limit and the overlap pass write LaengeOrig.
            EXPECT_EQ(u.noten()->Item(k)->LaengeOrig(), erwartet.Item(k)->LaengeOrig()) << "runde " << runde << ", " << k;
        }
    }
}
