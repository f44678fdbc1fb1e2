#include "app/core/Begleitung.h"

#include "app/core/BlattQuelle.h"
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"

#include <algorithm>
#include <set>
#include <utility>

namespace lyrabo {

std::vector<int16_t> spurenMitNoten(const MidiDateiInhalt& inhalt) {
    std::vector<int16_t> spuren;
    for (size_t s = 0; s < inhalt.spuren.size(); ++s) {
        const auto& ev = inhalt.spuren[s].ereignisse;
        const bool noten = std::any_of(ev.begin(), ev.end(), [](const MidiEreignis& e) {
            return (e.status & 0xF0) == 0x90 && e.daten.size() >= 2 && e.daten[1] > 0;
        });
        if (noten) spuren.push_back(int16_t(s + 1));
    }
    return spuren;
}

std::vector<blatt::Note> begleitNoten(CProgramm& programm, int16_t spur) {
    Midifile& mf = programm.Midifile1;
    if (!mf.geladen() || spur < 1 || spur > mf.TrackCount()) return {};
    CEinstellungen& e = programm.Einstellungen();
    CKLNCreator& engine = programm.KLNCreator();

    // Everything the conversion of a track changes, to be put back afterwards.
    const int16_t spurVorher = mf.Track(), ereignisVorher = mf.Event();
    const KlangNotenRef notenVorher = engine.KlangNoten();
    const PausenRef pausenVorher = engine.Pausen();
    const AkkordeRef akkordeVorher = engine.Akkorde();
    const bool monotonVorher = engine.IsMonoton();
    const int16_t trackNrVorher = e.TrackNr();
    const int16_t feld8Vorher = e.ClipExportFlags()->Item(8)->Value();
    auto laengen = e.MFITaktLaengen();
    auto zaehler = e.Numeratoren();
    auto nenner = e.Denominatoren();
    auto zurueck = [&]() {
        engine.KlangNoten(notenVorher);
        engine.Pausen(pausenVorher);
        engine.Akkorde(akkordeVorher);
        engine.IsMonoton(monotonVorher);
        e.TrackNr(trackNrVorher);
        e.ClipExportFlags()->Item(8)->Value(feld8Vorher);
        e.MFITaktLaengen(laengen);
        e.Numeratoren(zaehler);
        e.Denominatoren(nenner);
        if (spurVorher >= 1 && spurVorher <= mf.TrackCount()) {
            mf.Track(spurVorher);
            if (ereignisVorher >= 1 && ereignisVorher <= mf.EventCount()) mf.Event(ereignisVorher);
        }
    };

    std::vector<blatt::Note> noten;
    try {
        // As the window's recompute and export run do it, on collections of its own.
        auto eigene = neueSammlung<CKlangNote>();
        engine.KlangNoten(eigene);
        engine.Pausen(neueSammlung<CKlangPause>());
        engine.Akkorde(neueSammlung<Sammlung<CKlangNote>>());
        engine.IsMonoton(true);
        e.ClipExportFlags()->Item(8)->Value(1);
        programm.MIDIFileSetsESVarsFrmIntern(spur);
        e.TrackNr(spur);
        if (engine.produce(true)) {
            for (const auto& n : *eigene) {
                blatt::Note b = blattNote(*n);
                b.text.clear(); // an accompaniment's lyrics would crowd the melody's
                b.begleitung = true;
                noten.push_back(std::move(b));
            }
        }
    } catch (...) {
        zurueck();
        throw;
    }
    zurueck();
    return noten;
}

void begleitungHinzufuegen(blatt::Stueck& stueck, std::vector<blatt::Note> begleitung) {
    // One string sounds once at a moment: the melody's note first, then the first track's.
    std::set<std::pair<int32_t, int16_t>> belegt;
    for (const auto& n : stueck.noten) belegt.insert({n.start, n.tonHoehe});
    int64_t ende = 0;
    for (auto& n : begleitung) {
        if (!belegt.insert({n.start, n.tonHoehe}).second) continue;
        n.begleitung = true;
        n.melodie = false;
        n.text.clear();
        ende = std::max<int64_t>(ende, int64_t(n.start) + std::max<int32_t>(1, n.laenge));
        stueck.noten.push_back(std::move(n));
    }
    // Chord numbers of the accompaniment are its own; the sheet groups by start time.
    std::stable_sort(stueck.noten.begin(), stueck.noten.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    int64_t taktEnde = 0;
    for (const auto& t : stueck.takte) taktEnde += t.laenge;
    if (stueck.takte.empty() || stueck.takte.back().laenge <= 0) return;
    while (taktEnde < ende) {
        stueck.takte.push_back(stueck.takte.back());
        taktEnde += stueck.takte.back().laenge;
    }
}

blatt::Stueck blattStueckMitBegleitung(CProgramm& programm, const blatt::Stueck& melodie, const std::vector<int16_t>& spuren,
                                       int16_t melodieSpur) {
    blatt::Stueck s = melodie;
    std::vector<blatt::Note> alle;
    for (int16_t spur : spuren) {
        if (spur == melodieSpur) continue;
        auto noten = begleitNoten(programm, spur);
        alle.insert(alle.end(), std::make_move_iterator(noten.begin()), std::make_move_iterator(noten.end()));
    }
    if (!alle.empty()) begleitungHinzufuegen(s, std::move(alle));
    return s;
}

} // namespace lyrabo
