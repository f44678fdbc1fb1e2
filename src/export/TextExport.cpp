#include "export/TextExport.h"

#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "engine/TaktRaster.h"
#include "model/Zahlen.h"

namespace lyrabo {

namespace {

const char* const kZeilenEnde = "\r\n";

bool flagAn(const SammlungRef<CInteger>& flags, int32_t pos) { return flags->Item(pos)->Value() != 0; }

// The eight field switches as "1"/"0", as the importer checks which columns follow.
std::string feldCheck(const SammlungRef<CInteger>& flags) {
    std::string s = "FeldCheck, ";
    for (int32_t i = 1; i <= 8; ++i) s += flagAn(flags, i) ? "1" : "0";
    return s;
}

std::string kanalWort(int16_t kanalBelegung) {
    switch (kanalBelegung) {
    case 0: return "einer";
    case 1: return "E-e=1-6";
    case 2: return "E-e=6-1";
    default: return "";
    }
}

} // namespace

std::string klangNotenText(CEinstellungen& e, const Sammlung<CKlangNote>& klangNoten, const Sammlung<CAkkord>& akkorde) {
    const auto& flags = e.ClipExportFlags();

    std::string s;
    s += "KlangNoten-Export :";
    s += kZeilenEnde;
    s += "Numerator, " + Str(e.Numerator()) + kZeilenEnde;
    s += "Denominator, " + Str(e.Denominator()) + kZeilenEnde;
    s += "TicksPerQuarterNote, " + Str(e.TicksPerQuarterNote()) + kZeilenEnde;
    s += "Tempo, " + Str(e.Tempo()) + kZeilenEnde;
    // Fixed at 0 whatever the transposition: readers of this table expect untransposed pitches.
    s += std::string("Transpo, ") + "0" + kZeilenEnde;
    s += "Anzahl, " + Str(klangNoten.Count()) + kZeilenEnde;
    s += "MIDI-Kanäle, " + kanalWort(e.KanalBelegung()) + kZeilenEnde;
    s += feldCheck(flags);

    for (const auto& akkord : akkorde) {
        for (const auto& note : *akkord) {
            std::string zeile;
            if (flagAn(flags, 1)) zeile += Str(note->ID()) + ",";
            if (flagAn(flags, 2)) zeile += Str(note->AkkordNr()) + ",";
            // Switches 3 and 5 have no field in this table.
            if (flagAn(flags, 4)) zeile += Str(note->StartZeit()) + ",";
            if (flagAn(flags, 6)) zeile += Str(note->TonHoehe()) + ",";
            if (flagAn(flags, 7)) zeile += Str(note->Laenge()) + ",";
            if (flagAn(flags, 8)) zeile += Str(note->Kanal()) + ",";
            if (!zeile.empty()) s += kZeilenEnde + zeile;
        }
    }
    return s;
}

std::string harfeEventText(CEinstellungen& e, const Sammlung<CTimeSignature>& taktarten,
                           const Sammlung<CHarfeEvent>& events, bool monoton) {
    const auto& flags = e.ClipExportFlags();
    const auto& taktLaengen = e.MFITaktLaengen();
    const int32_t anzahl = events.Count();
    // Every event looks up its bar: a walk from bar 1 each time would take events x bars steps.
    const CTaktRaster raster(e);

    std::string s;
    s += "HarfeEvent-Export :";
    s += kZeilenEnde;
    s += "Anzahl der Taktarten, " + StrTrim(taktarten.Count()) + kZeilenEnde;
    for (int32_t i = 1; i <= taktarten.Count(); ++i) {
        const auto& ts = taktarten.Item(i);
        s += StrTrim(i) + ". Taktart: " + StrTrim(ts->Numerator()) + "/" + StrTrim(ts->Denominator()) + " | Beginn: ";
        // Before any event exists the bar tables may not fit the file yet, so ticks are shown.
        if (anzahl > 0)
            s += StrTrim(raster.taktNr(ts->ABSTime())) + ". Takt";
        else
            s += StrTrim(ts->ABSTime()) + ". Ticks";
        s += kZeilenEnde;
    }
    s += "TicksPerQuarterNote, " + Str(e.TicksPerQuarterNote()) + kZeilenEnde;
    s += "Tempo, " + Str(e.Tempo()) + kZeilenEnde;
    // The events already carry transposed pitches, and the importer reads one channel.
    s += std::string("Transpo, ") + "0" + kZeilenEnde;
    s += "Anzahl, " + Str(anzahl) + kZeilenEnde;
    s += std::string("MIDI-Kanäle, ") + "einer" + kZeilenEnde;
    s += feldCheck(flags);

    int16_t letzterTakt = 0;
    for (int32_t n = 1; n <= anzahl; ++n) {
        const auto& ev = events.Item(n);
        int16_t takt = raster.taktNr(ev->StartZeit());
        if (takt > letzterTakt) {
            s += kZeilenEnde;
            s += "----- Takt " + Str(takt) + " / " + StrTrim(taktLaengen->Item(takt)->Value()) + " Ticks -----";
            letzterTakt = takt;
        }

        std::string zeile;
        if (flagAn(flags, 1)) zeile += Str(n) + ",";
        if (flagAn(flags, 2)) zeile += Str(ev->AkkordNr()) + ",";
        if (flagAn(flags, 3)) zeile += Str(ev->Art()) + ",";
        if (flagAn(flags, 4)) zeile += Str(ev->StartZeit()) + ",";
        if (flagAn(flags, 6)) zeile += Str(ev->TonHoehe()) + ",";
        if (monoton) {
            // One voice: the importer expects length, track, then the lyric, around the track field.
            if (flagAn(flags, 8)) zeile += Str(ev->Laenge()) + ",";
            if (flagAn(flags, 7)) zeile += Str(ev->Spur()) + ",";
            if (flagAn(flags, 8)) zeile += ev->MsgText() + ",";
        } else {
            if (flagAn(flags, 7)) zeile += Str(ev->Laenge()) + "," + ev->MsgText() + ",";
            // Several voices all go to one channel of the importer.
            if (flagAn(flags, 8)) zeile += Str(1) + ",";
        }
        if (!zeile.empty()) s += kZeilenEnde + zeile;
    }
    return s;
}

std::string CKLNCreator::getKlangNotenString() {
    // Reads the track afresh, so the table always shows the current settings' result.
    if (!produce(true)) return "";
    return klangNotenText(m_programm.Einstellungen(), *KlangNoten(), *Akkorde());
}

std::string CKLNCreator::getHarfeEventString() {
    if (!m_programm.HarfeEvents) m_programm.HarfeEvents = neueSammlung<CHarfeEvent>();
    return harfeEventText(m_programm.Einstellungen(), *m_programm.TimeSignatures(), *m_programm.HarfeEvents,
                          IsMonoton());
}

} // namespace lyrabo
