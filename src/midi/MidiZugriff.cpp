// Opening a MIDI file and what the program takes from it: the track labels, the tempo table, the
// time signatures of track 1 and the per-bar tables the conversion cuts notes and rests by.
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "midi/Aufloesung.h"
#include "model/Zahlen.h"
#include "settings/UserDaten.h"

#include <algorithm>
#include <cmath>

namespace lyrabo {

namespace {

// The folder part of a chosen path, trailing separator kept: "C:\Lieder\x.mid" gives "C:\Lieder\".
// Both separators count, since the dialogs hand over paths in the system's own form.
std::string ordnerTeil(const std::string& pfad) {
    auto pos = pfad.find_last_of("/\\");
    return pos == std::string::npos ? std::string() : pfad.substr(0, pos + 1);
}

// Whatever happens while opening, cmdSpurenMischen ends up disabled.
class MischenSperre {
public:
    explicit MischenSperre(IForm& form) : m_form(form) {}
    ~MischenSperre() {
        try {
            m_form.spurenMischenSperren();
        } catch (...) {
        }
    }
    MischenSperre(const MischenSperre&) = delete;
    MischenSperre& operator=(const MischenSperre&) = delete;

private:
    IForm& m_form;
};

} // namespace

bool CProgramm::openMIDIFile(int16_t mode) {
    MischenSperre sperre(m_form);
    if (mode == 1) initGlobals();
    m_form.anzeigeAktuallisieren();

    CKLNCreator& engine = KLNCreator();
    engine.Dialog(m_dialog);
    engine.Form(&m_form);
    engine.Akkorde(Akkorde);
    engine.KlangNoten(KlangNoten);
    engine.Pausen(Pausen);
    engine.MIDIFile(&Midifile1);

    if (!engine.openDialog_MIDIFile(mode)) return false;
    // From here on the conversion reads through its own reader, which holds this file at once.
    MidifileUmrechnung.inhaltSetzen(Midifile1.inhaltGeteilt());
    MidifileUmrechnung.filename(Midifile1.filename());
    m_umrechnungsQuelle = Midifile1.inhaltGeteilt();
    engine.MIDIFile(&MidifileUmrechnung);

    // What the file holds is still part of loading it: a failure here names the file.
    const std::string& name = Midifile1.filename();
    std::vector<std::string> labels;
    beimLaden(name, [&] {
        for (int16_t spur = 1; spur <= Midifile1.TrackCount(); ++spur) labels.push_back(spurBezeichnung(spur));
    });
    m_form.trackListeFuellen(labels);
    beimLaden(name, [this] {
        m_ticksVorTempoScan = Einstellungen().TicksPerQuarterNote();
        tempoScan();
        umrechnungsLeserBereiten();
        zeitSignaturAnzeige();
    });

    // One entry per track for the mixing check boxes, none ticked.
    const auto& gewaehlt = Einstellungen().SpurSelected();
    gewaehlt->Clear();
    for (int16_t spur = 1; spur <= Midifile1.TrackCount(); ++spur) {
        auto eintrag = std::make_shared<CInteger>();
        eintrag->ID(spur);
        eintrag->Value(0);
        gewaehlt->Add(eintrag);
    }
    m_form.nachDateiGeladen();
    return true;
}

std::string CProgramm::spurBezeichnung(int16_t spur) {
    Midifile1.Track(spur);
    const int32_t anzahl = Midifile1.EventCount();
    for (int32_t i = 1; i <= anzahl; ++i) {
        Midifile1.Event(i);
        if (Midifile1.Message() == 255 && Midifile1.Data1() == 3) {
            std::string name = Midifile1.Text();
            return name.empty() ? "Track" + Str(spur) + " (null)" : name;
        }
    }
    return "Track" + Str(spur);
}

void CProgramm::tempoScan() {
    // A new file never sees the tempo changes of the one before.
    TempoAnzahl = 0;
    TempoTabelle.fill(TempoEintrag{});

    const int16_t ticks = Midifile1.TicksPerQuarterNote();
    Midifile1.Track(1);
    const int32_t anzahl = Midifile1.EventCount();
    for (int32_t i = 1; i <= anzahl; ++i) {
        Midifile1.Event(i);
        if (Midifile1.Message() != 255 || Midifile1.Data1() != 81) continue;
        if (TempoAnzahl >= kMaxTempi)
            throw IndexFehler("Spur 1 enthält mehr als " + std::to_string(kMaxTempi) +
                              " Tempowechsel; mehr kann die Tempotabelle nicht aufnehmen.");
        TempoAnzahl = add16(TempoAnzahl, 1);
        const TempoEintrag& vorher = TempoTabelle[static_cast<size_t>(TempoAnzahl - 1)];
        TempoEintrag& e = TempoTabelle[static_cast<size_t>(TempoAnzahl)];
        e.tempo = Midifile1.Tempo();
        e.msProTick = clng32(e.tempo / 1000.0 / ticks);
        e.ticksProMs1000 = clng32(static_cast<double>(ticks) / e.tempo * 1000.0);
        e.positionMs = add32(mul32(Midifile1.Time(), vorher.msProTick), vorher.positionMs);
    }
    if (TempoAnzahl == 0) return;

    const int16_t proMinute = cint16(int64_t{60000000} / TempoTabelle[1].tempo);
    m_form.setLabelTempo(StrTrim(proMinute));
    Einstellungen().Tempo(proMinute);
    m_form.setLabelTicks(StrTrim(ticks));
    Einstellungen().TicksPerQuarterNote(ticks);
}

Midifile& CProgramm::umrechnungsLeser() {
    const bool bereit = MidifileUmrechnung.geladen() && m_umrechnungsQuelle == Midifile1.inhaltGeteilt();
    return bereit ? MidifileUmrechnung : Midifile1;
}

void CProgramm::umrechnungsLeserBereiten() {
    const auto quelle = Midifile1.inhaltGeteilt();
    std::shared_ptr<const MidiDateiInhalt> inhalt = quelle;
    if (quelle && Umrechnung.genaueAufloesung && quelle->division != kUmrechnungsTicks) {
        try {
            inhalt = std::make_shared<const MidiDateiInhalt>(aufAufloesung(*quelle, kUmrechnungsTicks));
        } catch (const UeberlaufFehler&) {
            // A piece too long for 32-bit ticks at 480 per quarter is converted at its own resolution.
        }
    }
    MidifileUmrechnung.inhaltSetzen(inhalt);
    MidifileUmrechnung.filename(Midifile1.filename());
    m_umrechnungsQuelle = quelle;
    CEinstellungen& e = Einstellungen();
    if (quelle && Umrechnung.genaueAufloesung && e.TicksPerQuarterNote() != MidifileUmrechnung.TicksPerQuarterNote())
        e.TicksPerQuarterNote(MidifileUmrechnung.TicksPerQuarterNote());
    GetTimeSignatureFRMIntern();
}

void CProgramm::genaueAufloesungSetzen(bool an) {
    Umrechnung.genaueAufloesung = an;
    if (!Midifile1.geladen()) return;
    // Switched off, the settings hold what the tempo scan gives them.
    const int16_t ticks = TempoAnzahl > 0 ? Midifile1.TicksPerQuarterNote() : m_ticksVorTempoScan;
    if (!an && Einstellungen().TicksPerQuarterNote() != ticks) Einstellungen().TicksPerQuarterNote(ticks);
    umrechnungsLeserBereiten();
}

bool CProgramm::genauUmgerechnet() {
    return Midifile1.geladen() && umrechnungsLeser().TicksPerQuarterNote() != Midifile1.TicksPerQuarterNote();
}

std::string CProgramm::aufloesungsHinweis() {
    if (!genauUmgerechnet()) return "";
    return "Auflösung " + StrTrim(Midifile1.TicksPerQuarterNote()) + " Ticks pro Viertel" +
           (TempoAnzahl == 0 ? ", ohne Tempoangabe" : "") + ": genau umgerechnet";
}

int32_t CProgramm::umrechnungsTick(int32_t dateiTick) {
    if (!genauUmgerechnet()) return dateiTick;
    const int64_t tick = tickAufAufloesung(dateiTick, static_cast<uint16_t>(Midifile1.TicksPerQuarterNote()),
                                           static_cast<uint16_t>(umrechnungsLeser().TicksPerQuarterNote()));
    return static_cast<int32_t>(std::clamp<int64_t>(tick, INT32_MIN, INT32_MAX));
}

void CProgramm::GetTimeSignatureFRMIntern() {
    m_timeSignatures = neueSammlung<CTimeSignature>();
    Midifile& mf = umrechnungsLeser();
    mf.Track(1);
    const int32_t anzahl = mf.EventCount();
    int32_t zeit = 0;
    for (int32_t i = 1; i <= anzahl; ++i) {
        mf.Event(i);
        zeit = add32(zeit, mf.Time());
        if (mf.Message() != 255 || mf.Data1() != 88) continue;
        auto ts = std::make_shared<CTimeSignature>();
        ts->ID(cint16(int64_t{m_timeSignatures->Count()} + 1));
        ts->Numerator(mf.Numerator());
        ts->Denominator(cint16(int64_t{1} << mf.Denominator()));
        ts->ABSTime(zeit);
        m_timeSignatures->Add(ts);
    }
    if (m_timeSignatures->leer()) {
        auto ts = std::make_shared<CTimeSignature>();
        ts->ID(1);
        ts->Numerator(4);
        ts->Denominator(4);
        ts->ABSTime(0);
        m_timeSignatures->Add(ts);
    }
}

void CProgramm::zeitSignaturAnzeige() {
    Midifile1.Track(1);
    const int32_t anzahl = Midifile1.EventCount();
    for (int32_t i = 1; i <= anzahl; ++i) {
        Midifile1.Event(i);
        if (Midifile1.Message() != 255 || Midifile1.Data1() != 88) continue;
        const int16_t zaehler = Midifile1.Numerator();
        const int16_t exponent = Midifile1.Denominator();
        m_form.setLabelTimeSignature(StrTrim(zaehler) + "/" + StrTrim(int64_t{1} << exponent));
        Einstellungen().Numerator(zaehler);
        // The settings take the exponent here, not the power: their bar length divides by 2^x.
        Einstellungen().Denominator(exponent);
        return;
    }
}

void CProgramm::MIDIFileSetsESVarsFrmIntern(int16_t spur) {
    CEinstellungen& e = Einstellungen();
    e.initTaktLaengen();

    Midifile& mf = umrechnungsLeser();
    mf.Track(mf.TrackCount() == 1 ? 1 : spur);
    const int32_t anzahl = mf.EventCount();
    int32_t spurLaenge = 0;
    for (int32_t i = 1; i <= anzahl; ++i) {
        mf.Event(i);
        spurLaenge = add32(spurLaenge, mf.Time());
    }

    // The reader's division, not the setting: only the tempo scan copies it into the settings.
    const int32_t ticks = mf.TicksPerQuarterNote();
    const auto& signaturen = TimeSignatures();
    const int32_t n = signaturen->Count();
    const auto& laengen = e.MFITaktLaengen();
    const auto& zaehler = e.Numeratoren();
    const auto& nenner = e.Denominatoren();
    for (int32_t i = 1; i <= n; ++i) {
        const auto& ts = signaturen->Item(i);
        int32_t abschnitt = i < n ? sub32(signaturen->Item(i + 1)->ABSTime(), ts->ABSTime())
                                  : sub32(spurLaenge, ts->ABSTime());
        const int16_t takt = cint16(mul32(mul32(ticks, 4), ts->Numerator()) / static_cast<double>(ts->Denominator()));
        if (takt <= 0)
            throw Fehler("Die Taktart " + StrTrim(ts->Numerator()) + "/" + StrTrim(ts->Denominator()) + " ergibt bei " +
                         StrTrim(ticks) + " Ticks pro Viertelnote einen Takt von " + StrTrim(takt) +
                         " Ticks; so lassen sich keine Takte bilden.");
        // The last section ends with the track and is filled up to a whole bar.
        if (i == n && abschnitt % takt != 0) abschnitt = mul32(abschnitt / takt + 1, takt);
        const int32_t takte = abschnitt / takt;
        for (int32_t k = 0; k < takte; ++k) {
            // Positions are 16-bit: a piece of more than 32767 bars is an overflow.
            const int16_t id = cint16(int64_t{laengen->Count()} + 1);
            auto l = std::make_shared<CInteger>();
            l->ID(id);
            l->Value(takt);
            laengen->Add(l);
            auto z = std::make_shared<CInteger>();
            z->ID(id);
            z->Value(ts->Numerator());
            zaehler->Add(z);
            auto d = std::make_shared<CInteger>();
            d->ID(id);
            d->Value(ts->Denominator());
            nenner->Add(d);
        }
    }
}

bool CKLNCreator::openDialog_MIDIFile(int16_t mode) {
    CEinstellungen& e = m_programm.Einstellungen();
    std::string name;
    if (mode == 1) {
        if (!m_dialog) return false;
        auto wahl = m_dialog->oeffnen(m_programm.AktuellesInitDir, "MIDI-Datei(*.mid)|*.mid");
        if (!wahl || wahl->empty()) return false;
        const std::string ordner = ordnerTeil(*wahl);
        e.InitDir(ordner);
        m_programm.AktuellesInitDir = ordner;
        try {
            UserDatenSchreiben(e, m_programm.AktuellesInitDir, m_programm.Orte());
        } catch (const DateiFehler& f) {
            // The choice of folder is lost for the next start, the file still opens.
            (m_form ? *m_form : m_programm.Form()).meldung(f.what());
        }
        name = *wahl;
    } else if (mode == 2) {
        name = e.MIDIFilePath();
    }
    Midifile& leser = m_midiFile ? *m_midiFile : m_programm.Midifile1;
    leser.Action(5);
    leser.Action(2);
    leser.filename(name);
    leser.Action(1);
    return true;
}

} // namespace lyrabo
