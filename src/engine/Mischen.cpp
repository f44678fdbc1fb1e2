// Converting every ticked track and merging their notes into one time-ordered list.
#include "engine/CKLNCreator.h"

#include "app/core/CProgramm.h"
#include "export/CWDBCreator.h"
#include "model/Zahlen.h"

#include <vector>

namespace lyrabo {

const SammlungRef<CInteger>& CKLNCreator::SpurReihenfolge() {
    if (!m_spurReihenfolge) m_spurReihenfolge = neueSammlung<CInteger>();
    return m_spurReihenfolge;
}

// The voice of a track is its place in the track order; nothing fills that list, so every track
// is voice 1.
int16_t CKLNCreator::spurNachStimme(int16_t spur) {
    int16_t platz = 0;
    for (const auto& eintrag : *SpurReihenfolge()) {
        platz = add16(platz, 1);
        if (eintrag->Value() == spur) return platz;
    }
    return 1;
}

void CKLNCreator::klangNoteKopieren(const CKlangNote& quelle, CKlangNote& ziel) {
    ziel.AkkordNr(quelle.AkkordNr());
    ziel.Kanal(quelle.Kanal());
    ziel.Laenge(quelle.Laenge());
    ziel.LaengeOrig(quelle.LaengeOrig());
    ziel.MsgText(quelle.MsgText());
    ziel.StartZeit(quelle.StartZeit());
    ziel.TaktNr(quelle.TaktNr());
    ziel.TonHoehe(quelle.TonHoehe());
    ziel.ID(quelle.ID());
    ziel.Spur(einstellungen().SpurNr());
}

// Stable: a track's note goes after every merged note that starts no later, so at equal starts
// the tracks merged earlier come first and each track keeps its own order.
void CKLNCreator::mischeEin(const KlangNotenRef& gemischt, const KlangNotenRef& spurNoten) {
    auto kopie = [&](const CKlangNote& n) {
        auto k = std::make_shared<CKlangNote>();
        klangNoteKopieren(n, *k);
        return k;
    };
    if (gemischt->leer()) {
        for (const auto& n : *spurNoten) gemischt->Add(kopie(*n));
        return;
    }

    bool sortiert = true;
    int64_t vorher = INT64_MIN;
    for (const auto& n : *spurNoten) {
        if (n->StartZeit() < vorher) sortiert = false;
        vorher = n->StartZeit();
    }
    if (sortiert) {
        // The usual case (quantising keeps the order of the track): one pass over both lists.
        const auto alt = gemischt->alsVektor();
        std::vector<std::shared_ptr<CKlangNote>> neu;
        neu.reserve(alt.size() + static_cast<size_t>(spurNoten->Count()));
        size_t p = 0;
        for (const auto& n : *spurNoten) {
            while (p < alt.size() && alt[p]->StartZeit() <= n->StartZeit()) neu.push_back(alt[p++]);
            neu.push_back(kopie(*n));
        }
        while (p < alt.size()) neu.push_back(alt[p++]);
        gemischt->ersetzeDurch(std::move(neu));
        return;
    }

    // A track out of time order: the position walk itself, which also looks at the copies
    // inserted before.
    int32_t p = 0;
    for (const auto& n : *spurNoten) {
        while (true) {
            ++p;
            if (p > gemischt->Count()) {
                gemischt->Add(kopie(*n));
                break;
            }
            if (gemischt->Item(p)->StartZeit() > n->StartZeit()) {
                gemischt->Insert(kopie(*n), p);
                --p;
                break;
            }
        }
    }
}

void CKLNCreator::spurenMischen() {
    auto& e = einstellungen();
    m_programm.KlangNotenMix = neueSammlung<CKlangNote>();
    const KlangNotenRef gemischt = m_programm.KlangNotenMix;

    const auto& auswahl = e.SpurSelected();
    for (int32_t k = 1; k <= auswahl->Count(); ++k) {
        if (auswahl->Item(k)->Value() == 0) continue;
        const int16_t spur = cint16(int64_t{k});
        e.TrackNr(spur);
        e.SpurNr(spurNachStimme(spur));
        KlangNoten(m_programm.KlangNoten);
        m_isMonoton = true;
        e.ClipExportFlags()->Item(8)->Value(1);
        // A track that breaks off has shown its message; its notes read so far still go in.
        produce(true);
        mischeEin(gemischt, KlangNoten());
    }

    // Chords and rests of the merged notes, on the bar tables of the track last shown, so that
    // the harp-event text belongs to the merged notes.
    KlangNoten(gemischt);
    m_arbeitsLaenge = mul16(CEinstellungen::wert(e.ABSErlaubteLaengen(), 8), e.TPQN_Faktor());
    akkordeBilden();
    pausenErzeugen();
    if (!e.PunktiertePausen()) punktiertePausenAufloesen();

    auto& schreiber = m_programm.WDBCreator();
    schreiber.Akkorde(Akkorde());
    schreiber.KlangNoten(KlangNoten());
    schreiber.Pausen(Pausen());
    schreiber.write_ExportColl();
    meldeForm().setZwischenablage(getHarfeEventString());
}

} // namespace lyrabo
