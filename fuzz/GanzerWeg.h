#pragma once
// The whole road of a file, shared by the fuzz target and the table of its findings: loaded and
// opened as the program does it (track labels, tempo table, time signatures), then each track
// (the first two) converted into every output: bar tables, produce, harp events and their text,
// the note sheet, the KlangNoten text and the Works database written from the templates in ini/;
// finally the tracks merged and their sheet laid out. The input's last four bytes also choose the
// options, so that every switch is tried; "Genaue Auflösung" is chosen by the caller (one fuzz
// target for each way), so that a finding always replays the same way.
#include "FuzzHilfen.h"

#include "app/core/Begleitung.h"
#include "app/core/BlattQuelle.h"
#include "app/core/CProgramm.h"
#include "blatt/BlattSatz.h"
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Fehler.h"

#include <filesystem>
#include <string>
#include <vector>

namespace lyrabo::fuzz {

// A run converts at most this many tracks, so that one input stays fast.
inline constexpr int16_t kHoechstensSpuren = 2;

inline void optionenSetzen(CEinstellungen& e, uint8_t schalter, uint8_t transpo) {
    e.Legato(schalter & 1);
    e.PunktiertePausen(schalter & 2);
    e.PausenLetzterTakt(schalter & 4);
    e.HoechsterTonMelodie(schalter & 8);
    e.WDBSpaltenAnzahl(schalter & 16 ? 25 : 37);
    e.QuantNotenwert(CEinstellungen::wert(e.ABSErlaubteLaengen(), 1 + (schalter >> 5)));
    e.KanalBelegung(static_cast<int16_t>(transpo % 3));
    e.Transpo(static_cast<int16_t>(transpo % 73 - 36));
}

// The note sheet of what was converted last, laid out as the program hands it over; a sheet that
// holds no music says why, and that goes to `gesagt`. `form` chooses the sheet's newer switches and
// whether the other converted track comes along as accompaniment.
inline void blattSetzen(CProgramm& p, const KlangNotenRef& noten, int16_t spur, uint8_t schalter, uint8_t form,
                        std::vector<std::string>& gesagt) {
    blatt::Stueck stueck = blattStueck(p, noten, blattTitel(p, spur));
    if (form & 8 && spur > 0) stueck = blattStueckMitBegleitung(p, stueck, {int16_t(spur == 1 ? 2 : 1)}, spur);
    blatt::Einstellungen e = blatt::standardFuer(stueck.saiten);
    e.papier = schalter & 1 ? blatt::Papier::A4 : blatt::Papier::A3;
    e.quer = schalter & 2;
    e.einpassen = !(schalter & 4);
    e.notenform = form & 1 ? blatt::Notenform::Hals : blatt::Notenform::Harfe;
    e.kurzePausenSchliessen = !(form & 2);
    e.wiederholungenZusammenfassen = !(form & 4);
    e.notenTexte = schalter & 8;
    e.melodieLinie = schalter & 16;
    e.saitenAbstand = 10 + (schalter >> 5 & 1) * 4;
    e.mmProViertel = schalter >> 6 == 0 ? 4.0 : schalter >> 6 == 1 ? 6.0 : 20.0;
    const blatt::Blatt b = blatt::setzen(stueck, blatt::begrenzt(e));
    if (!b.hinweis.empty()) gesagt.push_back(b.hinweis);
}

// A click on the track's row and its note sheet, then the KlangNoten text and the save menu's
// Works database.
inline void spurUmrechnen(CProgramm& p, StilleForm& form, int16_t spur, uint8_t blattSchalter, uint8_t blattForm) {
    form.zeile = static_cast<int16_t>(spur - 1);
    p.neuBerechnen();
    blattSetzen(p, p.KlangNoten, spur, blattSchalter, blattForm, form.meldungen);
    CKLNCreator& kln = p.KLNCreator();
    volatile size_t laenge = kln.getKlangNotenString().size();
    (void)laenge;

    kln.KlangNoten(p.KlangNoten);
    if (!kln.produce(true)) return;
    CWDBCreator& w = p.WDBCreator();
    w.Akkorde(kln.Akkorde());
    w.KlangNoten(kln.KlangNoten());
    w.Pausen(kln.Pausen());
    const std::filesystem::path ziel = p.Orte().programm / "fuzz.wdb";
    w.write_WDB(ziel.string());
    const auto saiten = p.Einstellungen().WDBSpaltenAnzahl();
    if (std::filesystem::file_size(ziel) != (saiten == 25 ? 57343u : 80896u)) __builtin_trap();
}

// Runs `bytes` the whole road in the program folder `ordner`, with "Genaue Auflösung" on or off.
// Returns what the program told the user on the way: its messages and the texts of its own errors,
// in order. Anything else escapes.
inline std::vector<std::string> ganzerWeg(const std::string& bytes, const std::filesystem::path& ordner,
                                          bool genau = false) {
    StilleForm form;
    CProgramm programm(ordner, form, &form);
    programm.Umrechnung.genaueAufloesung = genau;
    auto& gesagt = form.meldungen;
    const std::filesystem::path midi = ordner / "fuzz.mid";
    dateiErsetzen(midi, bytes);
    programm.initGlobals();
    CEinstellungen& e = programm.Einstellungen();
    e.MIDIFilePath(midi.string());
    auto byteVonHinten = [&](size_t i) { return bytes.size() >= i ? uint8_t(bytes[bytes.size() - i]) : uint8_t{0}; };
    try {
        optionenSetzen(e, byteVonHinten(1), byteVonHinten(2));
        programm.openMIDIFile(2);
    } catch (const MidiDateiFehler& f) {
        if (programm.Midifile1.geladen()) __builtin_trap(); // a failed load leaves nothing behind
        gesagt.push_back(f.what());
        return gesagt;
    } catch (const Fehler& f) {
        gesagt.push_back(f.what());
        return gesagt;
    }

    Midifile& m = programm.Midifile1;
    try {
        allesLesen(m);
    } catch (const Fehler& f) {
        gesagt.push_back(f.what());
    }
    const int16_t spuren = m.TrackCount() < kHoechstensSpuren ? m.TrackCount() : kHoechstensSpuren;
    for (int16_t spur = 1; spur <= spuren; ++spur) {
        try {
            spurUmrechnen(programm, form, spur, byteVonHinten(3), byteVonHinten(4));
        } catch (const Fehler& f) {
            gesagt.push_back(f.what());
        }
    }
    try {
        const auto& auswahl = e.SpurSelected();
        for (int32_t i = 1; i <= auswahl->Count(); ++i) auswahl->Item(i)->Value(i <= spuren ? 1 : 0);
        programm.KLNCreator().spurenMischen();
        blattSetzen(programm, programm.KlangNotenMix, 0, byteVonHinten(3), byteVonHinten(4), gesagt);
    } catch (const Fehler& f) {
        gesagt.push_back(f.what());
    }
    return gesagt;
}

} // namespace lyrabo::fuzz
