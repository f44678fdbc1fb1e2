// Rests: before the first chord, in the gaps between chords and, if wanted, to the end of the last
// bar; cut at bar lines and split into writable values. A rest carries the pitch and chord number
// of the note before it.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "engine/Rechnen.h"
#include "engine/TaktRaster.h"
#include "model/Zahlen.h"

#include <algorithm>
#include <array>

namespace lyrabo {

void CKLNCreator::pausenErzeugen() {
    auto& e = einstellungen();
    Pausen()->Clear();
    const auto akkorde = Akkorde()->alsVektor();
    const CTaktRaster raster(e);

    for (size_t i = 0; i < akkorde.size(); ++i) {
        if (i == 0) {
            // The leading rest takes the pitch of the first chord but chord number 0.
            const auto& f = akkorde[0]->Last();
            if (f->StartZeit() > 0) pauseTaktSchneidenMeta(raster, f->TonHoehe(), 0, 0, f->StartZeit());
        } else {
            const auto& a = akkorde[i - 1]->Last();
            const auto& b = akkorde[i]->Last();
            const int32_t ende = add32(a->StartZeit(), a->Laenge());
            if (b->StartZeit() > ende) pauseTaktSchneidenMeta(raster, a->TonHoehe(), a->AkkordNr(), ende, b->StartZeit());
        }
    }

    if (e.PausenLetzterTakt() && !akkorde.empty()) {
        const auto& z = akkorde.back()->Last();
        const int32_t ende = add32(z->StartZeit(), z->Laenge());
        const int16_t takt = raster.taktNr(sub32(ende, 1));
        const int32_t taktEnde = raster.taktEnde(takt);
        if (taktEnde > ende) pauseTaktSchneidenMeta(raster, z->TonHoehe(), z->AkkordNr(), ende, taktEnde);
    }
}

// In a bar longer than a whole note a span that runs past the bar's end goes in pieces of at most
// a whole note up to that end; a span that ends inside the bar goes as one piece. In an ordinary
// bar the whole remaining span goes at once and the bar splitter cuts it at the bar lines.
void CKLNCreator::pauseTaktSchneidenMeta(const CTaktRaster& raster, int16_t tonHoehe, int16_t akkordNr, int32_t von,
                                         int32_t bis) {
    const int32_t ganzeNote = mul16(4, einstellungen().TicksPerQuarterNote());
    int32_t rest = sub32(bis, von);
    int32_t cur = von;
    while (rest > 0) {
        const int16_t takt = raster.taktNr(cur);
        if (raster.taktLaenge(takt) > ganzeNote) {
            const int32_t taktEnde = raster.taktEnde(takt);
            const int32_t stueck = add32(cur, rest) > taktEnde ? std::min(sub32(taktEnde, cur), ganzeNote) : rest;
            pauseTaktTeilen(raster, tonHoehe, akkordNr, cur, add32(cur, stueck));
            cur = add32(cur, stueck);
            rest = sub32(rest, stueck);
        } else {
            pauseTaktTeilen(raster, tonHoehe, akkordNr, cur, bis);
            rest = 0;
        }
    }
}

// No rest crosses a bar line.
void CKLNCreator::pauseTaktTeilen(const CTaktRaster& raster, int16_t tonHoehe, int16_t akkordNr, int32_t von,
                                  int32_t bis) {
    int32_t cur = von;
    int32_t rest = sub32(bis, cur);
    while (rest > 0) {
        const int32_t taktEnde = raster.taktEnde(raster.taktNr(cur));
        const int32_t stueck = add32(cur, rest) > taktEnde ? sub32(taktEnde, cur) : sub32(bis, cur);
        pauseZerlegen(tonHoehe, akkordNr, cur, stueck);
        cur = add32(cur, stueck);
        rest = sub32(rest, stueck);
    }
}

// The longest writable value first and the short remainder after it; a rest off the beat is first
// filled up to the beat. More than a whole note inside one bar gets no rest at all.
void CKLNCreator::pauseZerlegen(int16_t tonHoehe, int16_t akkordNr, int32_t start, int32_t laenge) {
    const int32_t p = einstellungen().TicksPerQuarterNote();
    const int16_t w = m_arbeitsLaenge;
    const int16_t pos = cint16(static_cast<double>(restVon(start, p)) / w);
    int16_t u = cint16(static_cast<double>(laenge) / w);
    if (pos != 0) {
        if (u < 4) {
            pauseHinzufuegen(tonHoehe, akkordNr, start, laenge);
            return;
        }
        const int32_t bisZumSchlag = sub32(p, restVon(start, p));
        pauseHinzufuegen(tonHoehe, akkordNr, start, bisZumSchlag);
        start = add32(start, bisZumSchlag);
        laenge = sub32(laenge, bisZumSchlag);
        u = cint16(static_cast<double>(laenge) / w);
    }
    // Units to split off after the longest writable value, for the lengths that need it.
    int32_t nachher = 0;
    switch (u) {
    case 1: case 2: case 3: case 4: case 6: case 8: case 12: case 16:
        pauseHinzufuegen(tonHoehe, akkordNr, start, laenge);
        return;
    case 5: case 7: case 9: case 13:
        nachher = 1;
        break;
    case 10: case 14:
        nachher = 2;
        break;
    case 11: case 15:
        nachher = 3;
        break;
    default:
        return; // 0 or less, or 17 and more: no rest
    }
    const int32_t kurz = mul16(nachher, w);
    const int32_t lang = sub32(laenge, kurz);
    pauseHinzufuegen(tonHoehe, akkordNr, start, lang);
    pauseHinzufuegen(tonHoehe, akkordNr, add32(start, lang), kurz);
}

void CKLNCreator::pauseHinzufuegen(int16_t tonHoehe, int16_t akkordNr, int32_t start, int32_t laenge) {
    auto pause = std::make_shared<CKlangPause>();
    pause->StartZeit(start);
    pause->Laenge(laenge);
    pause->AkkordNr(akkordNr);
    pause->TonHoehe(tonHoehe);
    Pausen()->Add(std::move(pause));
}

// A dotted rest becomes its plain value followed by a rest of half that value at the same place.
void CKLNCreator::punktiertePausenAufloesen() {
    const auto& pausen = Pausen();
    if (pausen->leer()) return;
    auto& e = einstellungen();
    std::array<int32_t, 3> punktiert{};
    for (size_t k = 0; k < 3; ++k)
        punktiert[k] = mul16(CEinstellungen::wert(e.ABSErlaubteLaengen(), static_cast<int32_t>(2 * k + 2)), e.TPQN_Faktor());
    auto istPunktiert = [&](int32_t l) { return std::find(punktiert.begin(), punktiert.end(), l) != punktiert.end(); };

    // Built anew in one pass instead of inserting in the middle; each inserted rest is looked at
    // right after the rest it came from, as it would be at the next position.
    std::vector<std::shared_ptr<CKlangPause>> neu;
    neu.reserve(static_cast<size_t>(pausen->Count()) * 2);
    for (auto r : *pausen) {
        while (true) {
            neu.push_back(r);
            // A rest of length 0 could only meet a dotted length of 0 and would split forever.
            if (!istPunktiert(r->Laenge()) || r->Laenge() == 0) break;
            const int16_t t = cint16(r->Laenge() / 3.0);
            r->Laenge(sub32(r->Laenge(), t));
            auto zweite = std::make_shared<CKlangPause>();
            zweite->AkkordNr(r->AkkordNr());
            zweite->TonHoehe(r->TonHoehe());
            zweite->Laenge(t);
            zweite->StartZeit(add32(r->StartZeit(), r->Laenge()));
            r = std::move(zweite);
        }
    }
    pausen->ersetzeDurch(std::move(neu));
}

} // namespace lyrabo
