#include "cli/Kommandozeile.h"

#include "app/core/Begleitung.h"
#include "app/core/BlattQuelle.h"
#include "app/core/MelodieSpur.h"
#include "blatt/Transposition.h"
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "midi/EreignisListe.h"
#include "model/Datei.h"
#include "model/Fehler.h"
#include "model/Text.h"
#include "settings/BlattDaten.h"
#include "settings/Takte.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <new>

#ifdef LYRABO_MIT_BLATT
#include "blattmaler/BlattPdf.h"
#endif

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace lyrabo::cli {

namespace fs = std::filesystem;

const char* const kPolyphonMeldung =
    "Eine der ausgewählten Spuren ist polyphon!\n"
    "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
    "möglicherweise nicht zum gewünschten Ergebnis,\n"
    "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte.";

namespace {

// The conversion of a file failed; the engine has usually said why already.
class UmsetzungFehler : public Fehler {
public:
    using Fehler::Fehler;
};

// A wrong --wdb name: the save path has reported it already.
class FalscheEndung : public std::runtime_error {
public:
    FalscheEndung() : std::runtime_error("") {}
};

} // namespace

CKommandozeile::CKommandozeile(ProgrammOrte orte, std::ostream& aus, std::ostream& fehler)
    : m_aus(aus), m_fehler(fehler), m_programm(std::move(orte), m_form, &m_form) {}

int CKommandozeile::ausfuehren(const CAufruf& aufruf) {
    m_aufruf = &aufruf;
    if (aufruf.ausgabeOrdner) {
        std::error_code ec;
        fs::create_directories(*aufruf.ausgabeOrdner, ec);
        if (!fs::is_directory(*aufruf.ausgabeOrdner)) {
            m_fehler << "Der Ausgabe-Ordner \"" << *aufruf.ausgabeOrdner << "\" kann nicht angelegt werden." << std::endl;
            return kSchreibFehler;
        }
    }
    int ergebnis = kFertig;
    for (const auto& datei : aufruf.dateien) {
        int code = dateiBearbeiten(datei);
        if (ergebnis == kFertig) ergebnis = code;
    }
    return ergebnis;
}

int CKommandozeile::dateiBearbeiten(const std::string& datei) {
    const bool mehrere = m_aufruf->dateien.size() > 1;
    auto melden = [&](const std::string& text) {
        if (text.empty()) return;
        if (mehrere) m_fehler << datei << ": ";
        m_fehler << text << std::endl;
    };
    m_phase = Phase::Laden;
    try {
        switch (m_aufruf->befehl) {
        case Befehl::Info: info(datei); break;
        case Befehl::Events:
            laden(datei, false);
            events();
            break;
        case Befehl::Convert: convert(datei); break;
        case Befehl::Mix: mix(datei); break;
        case Befehl::Hilfe: break;
        }
        return kFertig;
    } catch (const AufrufFehler& f) {
        melden(f.what());
        return kFalscherAufruf;
    } catch (const FalscheEndung&) {
        return kFalscherAufruf;
    } catch (const MidiDateiFehler& f) {
        melden(f.what());
        return kMidiDateiFehler;
    } catch (const UmsetzungFehler& f) {
        melden(f.what());
        return kKonvertierungFehler;
    } catch (const DateiFehler& f) {
        melden(f.what());
        return m_phase == Phase::Laden ? kMidiDateiFehler : kSchreibFehler;
    } catch (const UeberlaufFehler& f) {
        melden(f.what());
        return m_phase == Phase::Laden ? kMidiDateiFehler : kKonvertierungFehler;
    } catch (const std::exception& f) {
        // Our own errors speak German; a library's English text is never shown.
        if (dynamic_cast<const Fehler*>(&f) != nullptr) melden(f.what());
        else if (dynamic_cast<const std::bad_alloc*>(&f) != nullptr)
            melden("Nicht genügend Arbeitsspeicher für diesen Schritt.");
        else if (m_phase == Phase::Laden) melden(ungueltig(datei) + "Ihr Inhalt lässt sich nicht lesen.");
        else if (m_phase == Phase::Umsetzen) melden("Unerwarteter Fehler: Die Umrechnung wurde abgebrochen.");
        else melden("Unerwarteter Fehler: Die Ausgabe wurde nicht vollständig geschrieben.");
        switch (m_phase) {
        case Phase::Laden: return kMidiDateiFehler;
        case Phase::Umsetzen: return kKonvertierungFehler;
        case Phase::Schreiben: return kSchreibFehler;
        }
        return kKonvertierungFehler;
    }
}

// ---- opening ----

void CKommandozeile::optionenSetzen() {
    const COptionen& o = m_aufruf->optionen;
    CEinstellungen& e = m_programm.Einstellungen();
    if (o.Transpo) e.Transpo(*o.Transpo);
    if (o.QuantPosition) e.QuantNotenwert(CEinstellungen::wert(e.ABSErlaubteLaengen(), *o.QuantPosition));
    if (o.KanalBelegung) e.KanalBelegung(*o.KanalBelegung);
    if (o.Legato) e.Legato(*o.Legato);
    if (o.HoechsterTonMelodie) e.HoechsterTonMelodie(*o.HoechsterTonMelodie);
    if (o.PunktiertePausen) e.PunktiertePausen(*o.PunktiertePausen);
    if (o.PausenLetzterTakt) e.PausenLetzterTakt(*o.PausenLetzterTakt);
    if (o.Saiten) e.WDBSpaltenAnzahl(*o.Saiten);
    if (o.GenaueAufloesung) m_programm.Umrechnung.genaueAufloesung = *o.GenaueAufloesung;
}

// The field switches as the window's check boxes store them (box i into entry i + 1).
void CKommandozeile::felderSetzen() {
    const auto& felder = m_aufruf->optionen.Felder;
    if (!felder) return;
    const auto& flags = m_programm.Einstellungen().ClipExportFlags();
    for (int32_t i = 1; i <= 8; ++i) flags->Item(i)->Value(static_cast<int16_t>((*felder)[size_t(i - 1)] == '1' ? 1 : 0));
}

void CKommandozeile::laden(const std::string& datei, bool umsetzen) {
    m_phase = Phase::Laden;
    m_form.zuruecksetzen();
    m_spur = 0;
    m_spurFehlt = false;

    std::error_code ec;
    if (!fs::is_regular_file(datei, ec))
        throw MidiDateiFehler("Die MIDI-Datei \"" + datei + "\" wurde nicht gefunden.");

    m_programm.initGlobals();
    optionenSetzen();
    m_programm.Einstellungen().MIDIFilePath(fs::absolute(datei, ec).string());

    // The window preselects the second row, which converts that track.
    m_form.NachLaden([this, umsetzen]() {
        int16_t anzahl = m_programm.Midifile1.TrackCount();
        m_spur = m_aufruf->spur ? *m_aufruf->spur : static_cast<int16_t>(anzahl >= 2 ? 2 : 1);
        if (m_aufruf->spurMelodie) m_spur = melodie();
        if (m_spur < 1 || m_spur > anzahl) {
            m_spurFehlt = true;
            return;
        }
        m_form.Zeile(static_cast<int16_t>(m_spur - 1));
        if (umsetzen) {
            m_phase = Phase::Umsetzen;
            m_programm.neuBerechnen();
        }
    });
    bool geladen = m_programm.openMIDIFile(2);
    if (!geladen || !m_programm.Midifile1.geladen() || !m_form.Geladen())
        throw MidiDateiFehler("Die MIDI-Datei \"" + datei + "\" konnte nicht geladen werden.");
    for (int16_t s : m_aufruf->blatt.Begleitung) {
        const int16_t anzahl = m_programm.Midifile1.TrackCount();
        if (s > anzahl)
            throw AufrufFehler("Die Spur " + std::to_string(s) + " gibt es nicht; die Datei hat " + std::to_string(anzahl) +
                               (anzahl == 1 ? " Spur." : " Spuren."));
    }
    if (m_spurFehlt) {
        int16_t anzahl = m_programm.Midifile1.TrackCount();
        if (m_aufruf->spurMelodie && anzahl > 0)
            throw UmsetzungFehler("Keine Spur der Datei \"" + datei + "\" enthält Noten, also auch keine Melodie.");
        if (!m_aufruf->spur) throw MidiDateiFehler("Die MIDI-Datei \"" + datei + "\" enthält keine Spur.");
        throw AufrufFehler("Die Spur " + std::to_string(m_spur) + " gibt es nicht; die Datei hat " +
                           std::to_string(anzahl) + (anzahl == 1 ? " Spur." : " Spuren."));
    }
}

// ---- info and events ----

void CKommandozeile::info(const std::string& datei) {
    laden(datei, false);
    Midifile& mf = m_programm.Midifile1;
    CEinstellungen& e = m_programm.Einstellungen();
    CKLNCreator& kln = m_programm.KLNCreator();
    const int16_t anzahl = mf.TrackCount();

    std::string s;
    s += "Datei: " + datei + "\n";
    s += "Format: " + std::to_string(mf.Format()) + "\n";
    s += "Ticks pro Viertelnote: " + std::to_string(mf.TicksPerQuarterNote()) + "\n";
    s += "Tempo: " + (m_form.LabelTempo() ? *m_form.LabelTempo() : std::string("keine Angabe")) + "\n";
    if (const std::string hinweis = m_programm.aufloesungsHinweis(); !hinweis.empty()) s += hinweis + "\n";
    s += "Spuren: " + std::to_string(anzahl) + "\n";
    const auto& labels = m_form.TrackListe();
    for (int16_t spur = 1; spur <= anzahl; ++spur) {
        mf.Track(spur);
        int32_t ereignisse = mf.EventCount();
        m_form.Zeile(static_cast<int16_t>(spur - 1));
        kln.findMinMax();
        std::string name = size_t(spur) <= labels.size() ? labels[size_t(spur - 1)] : m_programm.spurBezeichnung(spur);
        s += "  Spur " + std::to_string(spur) + ": " + name + " | " + std::to_string(ereignisse) +
             (ereignisse == 1 ? " Ereignis" : " Ereignisse") + " | ";
        if (e.TonMin() > e.TonMax()) s += "keine Noten\n";
        else s += "tiefster Ton " + std::to_string(e.TonMin()) + ", höchster Ton " + std::to_string(e.TonMax()) + "\n";
    }
    m_form.Zeile(static_cast<int16_t>(m_spur - 1));
    const int16_t melodieNr = melodie();
    s += "Melodie vermutlich: " +
         (melodieNr > 0 ? "Spur " + std::to_string(melodieNr) + " (" +
                              (size_t(melodieNr) <= labels.size() ? labels[size_t(melodieNr - 1)]
                                                                  : m_programm.spurBezeichnung(melodieNr)) + ")"
                        : std::string("keine, keine Spur enthält Noten")) + "\n";

    // Bars are counted along the track the window would convert, as its bar tables are.
    if (anzahl > 0) m_programm.MIDIFileSetsESVarsFrmIntern(m_spur);
    const auto& ts = m_programm.TimeSignatures();
    s += "Taktarten: " + std::to_string(ts->Count()) + " (Takte gezählt nach Spur " + std::to_string(m_spur) + ")\n";
    for (const auto& t : *ts) {
        int16_t takt = anzahl > 0 ? getTaktNrFromABSStartZeit(e, t->ABSTime()) : 0;
        s += "  " + std::to_string(t->ID()) + ". " + std::to_string(t->Numerator()) + "/" +
             std::to_string(t->Denominator()) + " ab " +
             (takt > 0 ? "Takt " + std::to_string(takt) : std::string("hinter dem letzten Takt")) + " (Tick " +
             std::to_string(t->ABSTime()) + ")\n";
    }
    s += "Takte: " + std::to_string(anzahl > 0 ? e.MFITaktLaengen()->Count() : 0) + "\n";
    m_aus << s << std::flush;
}

void CKommandozeile::events() {
    Midifile& mf = m_programm.Midifile1;
    const bool hex = m_aufruf->hex;
    auto zeilen = DisplayTrackZeilen(mf, m_spur);
    // Tabs and line breaks inside an event's text would break the columns.
    auto einzeilig = [](std::string t) {
        std::replace_if(t.begin(), t.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
        return t;
    };
    std::string s;
    for (size_t i = 0; i < zeilen.size(); ++i) {
        mf.Event(static_cast<int32_t>(i + 1));
        s += zeilen[i] + "\t" + zahlAlsText(mf.Time(), hex) + "\t" + zahlAlsText(mf.Message(), hex) + "\t" +
             zahlAlsText(mf.Data1(), hex) + "\t" + zahlAlsText(mf.Data2(), hex) + "\t" + mf.BufferText() + "\t" +
             einzeilig(mf.Text()) + "\n";
    }
    m_aus << s << std::flush;
}

// ---- convert and mix ----

CKommandozeile::Ziele CKommandozeile::zieleFuer(const std::string& datei) {
    Ziele z;
    const CAufruf& a = *m_aufruf;
    if (!a.ausgabeOrdner) {
        z.harfentext = a.harfentext.value_or("");
        z.klangnoten = a.klangnoten.value_or("");
        z.wdb = a.wdb.value_or("");
        z.pdf = a.pdf.value_or("");
        z.svg = a.svg.value_or("");
        if (a.befehl == Befehl::Convert && z.harfentext.empty() && z.klangnoten.empty() && z.wdb.empty() &&
            z.pdf.empty() && z.svg.empty())
            z.harfentext = "-";
        if (a.befehl == Befehl::Mix && z.harfentext.empty() && z.pdf.empty() && z.svg.empty()) z.harfentext = "-";
        return z;
    }
    std::string name = fs::path(datei).stem().string();
    if (!m_belegteNamen.insert(name).second)
        throw AufrufFehler("Eine andere Datei hat die Ausgaben unter dem Namen \"" + name + "\" schon erzeugt.");
    fs::path ordner(*a.ausgabeOrdner);
    bool convert = a.befehl == Befehl::Convert;
    if (a.mitHarfentext) z.harfentext = (ordner / (name + ".txt")).string();
    if (convert && a.mitKlangnoten) z.klangnoten = (ordner / (name + ".klangnoten.txt")).string();
    if (convert && a.mitWdb) z.wdb = (ordner / (name + ".wdb")).string();
    if (a.mitPdf) z.pdf = (ordner / (name + ".pdf")).string();
    if (a.mitSvg) z.svg = (ordner / (name + ".svg")).string();
    return z;
}

void CKommandozeile::convert(const std::string& datei) {
    Ziele z = zieleFuer(datei);
    laden(datei, true);
    m_phase = Phase::Umsetzen;
    CKLNCreator& kln = m_programm.KLNCreator();

    if (!m_form.KlangNotenText()) {
        m_programm.Midifile1.Track(m_spur);
        if (m_programm.Midifile1.EventCount() == 0)
            throw UmsetzungFehler("Die Spur " + std::to_string(m_spur) + " enthält keine Ereignisse.");
        throw UmsetzungFehler("Die Spur " + std::to_string(m_spur) + " konnte nicht umgesetzt werden.");
    }
    // Ticking the field boxes after the load refreshes the text without a new conversion.
    if (m_aufruf->optionen.Felder) {
        felderSetzen();
        m_form.KlangNotenText(kln.getHarfeEventString());
    }
    if (m_aufruf->optionen.TranspoPassend && transpoPassend(m_programm.KlangNoten, m_spur)) m_programm.neuBerechnen();
    std::string harfentext = *m_form.KlangNotenText();

    std::string klangnoten;
    if (!z.klangnoten.empty()) {
        klangnoten = kln.getKlangNotenString();
        if (klangnoten.empty())
            throw UmsetzungFehler("Die Spur " + std::to_string(m_spur) + " konnte nicht umgesetzt werden.");
    }
    if (!z.wdb.empty()) wdbSpeichern(z.wdb);

    m_phase = Phase::Schreiben;
    if (!z.harfentext.empty()) textSchreiben(z.harfentext, harfentext);
    if (!z.klangnoten.empty()) textSchreiben(z.klangnoten, klangnoten);
    // Last, so that a sheet that cannot be written keeps none of the other outputs from their file.
    // (Saving the database converts the track once more, to the same notes.)
    blattSpeichern(z, m_programm.KlangNoten, m_spur);
}

// The save path of "Speichern als WDB": convert once more, hand the engine's collections to the
// writer, and let its save dialog take the name from the command line.
void CKommandozeile::wdbSpeichern(const std::string& name) {
    m_phase = Phase::Umsetzen;
    CKLNCreator& kln = m_programm.KLNCreator();
    kln.KlangNoten(m_programm.KlangNoten);
    if (!kln.produce(true))
        throw UmsetzungFehler("Die Spur " + std::to_string(m_spur) + " konnte nicht umgesetzt werden.");
    CWDBCreator& w = m_programm.WDBCreator();
    w.Dialog(&m_form);
    w.Form(&m_form);
    w.Akkorde(kln.Akkorde());
    w.KlangNoten(kln.KlangNoten());
    w.Pausen(kln.Pausen());
    m_form.SpeicherName(name);
    size_t vorher = m_form.Meldungen().size();
    w.saveDialog_WDB();
    const auto& meldungen = m_form.Meldungen();
    bool gespeichert = false, falscheEndung = false;
    for (size_t i = vorher; i < meldungen.size(); ++i) {
        gespeichert = gespeichert || meldungen[i] == "Daten gespeichert!";
        falscheEndung = falscheEndung || meldungen[i] == "Falsche Dateiendung!";
    }
    if (falscheEndung) throw FalscheEndung();
    if (!gespeichert) {
        m_phase = Phase::Schreiben;
        throw DateiFehler("Die Works-Datenbank \"" + name + "\" wurde nicht gespeichert.");
    }
}

void CKommandozeile::mix(const std::string& datei) {
    Ziele z = zieleFuer(datei);
    laden(datei, true);
    m_phase = Phase::Umsetzen;
    const int16_t anzahl = m_programm.Midifile1.TrackCount();
    for (int16_t s : m_aufruf->spuren) {
        if (s > anzahl)
            throw AufrufFehler("Die Spur " + std::to_string(s) + " gibt es nicht; die Datei hat " +
                               std::to_string(anzahl) + (anzahl == 1 ? " Spur." : " Spuren."));
    }
    // The mixing check boxes, one per track, ticked for the tracks given.
    CEinstellungen& e = m_programm.Einstellungen();
    const auto& auswahl = e.SpurSelected();
    for (int32_t i = auswahl->Count() + 1; i <= anzahl; ++i) {
        auto item = std::make_shared<CInteger>();
        item->ID(static_cast<int16_t>(i));
        auswahl->Add(item);
    }
    for (int32_t i = 1; i <= auswahl->Count(); ++i) {
        bool gewaehlt = std::find(m_aufruf->spuren.begin(), m_aufruf->spuren.end(), i) != m_aufruf->spuren.end();
        auswahl->Item(i)->Value(static_cast<int16_t>(gewaehlt ? 1 : 0));
    }
    felderSetzen();

    CKLNCreator& kln = m_programm.KLNCreator();
    kln.spurenMischen();
    if (m_form.Zwischenablage() && m_aufruf->optionen.TranspoPassend && transpoPassend(m_programm.KlangNotenMix, 0))
        kln.spurenMischen();
    if (!m_form.Zwischenablage()) throw UmsetzungFehler("Die Spuren konnten nicht gemischt werden.");
    if (!kln.IsMonoton()) m_form.meldung(kPolyphonMeldung);

    m_phase = Phase::Schreiben;
    if (!z.harfentext.empty()) textSchreiben(z.harfentext, *m_form.Zwischenablage());
    blattSpeichern(z, m_programm.KlangNotenMix, 0);
}

int16_t CKommandozeile::melodie() {
    const Midifile& mf = m_programm.Midifile1;
    const CEinstellungen& e = m_programm.Einstellungen();
    return mf.inhalt() ? melodieSpur(*mf.inhalt(), e.Transpo(), e.WDBSpaltenAnzahl() == 25 ? 25 : 37) : 0;
}

bool CKommandozeile::transpoPassend(const KlangNotenRef& noten, int16_t spur) {
    // The voices the sheet shows: the track (or the mix) and its accompaniment.
    const blatt::Stueck st = blattStueckMitBegleitung(m_programm, blattStueck(m_programm, noten, ""), m_aufruf->blatt.Begleitung, spur);
    const blatt::Tonumfang umfang = blatt::tonumfang(st);
    const auto transpo = blatt::passendeTransposition(umfang, st.saiten);
    if (!transpo) throw UmsetzungFehler(blatt::passtNichtText(umfang, st.saiten));
    if (*transpo == m_programm.Einstellungen().Transpo()) return false;
    m_programm.Einstellungen().Transpo(static_cast<int16_t>(*transpo));
    return true;
}

void CKommandozeile::blattSpeichern(const Ziele& z, const KlangNotenRef& noten, int16_t spur) {
    if (z.pdf.empty() && z.svg.empty()) return;
    m_phase = Phase::Schreiben;
#ifdef LYRABO_MIT_BLATT
    const CBlattOptionen& o = m_aufruf->blatt;
    const std::vector<int16_t>& begleitung = o.Begleitung;
    // What the window last used for this harp size, as the user settings file stands for its controls.
    blatt::Einstellungen e = blattDatenLesen(m_programm.Orte()).fuer(m_programm.Einstellungen().WDBSpaltenAnzahl());
    if (o.Papier) e.papier = *o.Papier;
    if (o.Quer) e.quer = *o.Quer;
    if (o.SaitenAbstand) e.saitenAbstand = *o.SaitenAbstand;
    if (o.Einpassen) e.einpassen = *o.Einpassen;
    if (o.Notenform) e.notenform = *o.Notenform;
    if (o.KurzePausen) e.kurzePausenSchliessen = *o.KurzePausen;
    if (o.Wiederholungen) e.wiederholungenZusammenfassen = *o.Wiederholungen;
    if (!z.pdf.empty()) {
        const std::string meldung = notenblattPdf(m_programm, noten, spur, e, fs::path(z.pdf), begleitung);
        if (!meldung.empty()) throw DateiFehler(meldung);
    }
    if (!z.svg.empty()) {
        const std::string meldung = notenblattSvg(m_programm, noten, spur, e, fs::path(z.svg), nullptr, begleitung);
        if (!meldung.empty()) throw DateiFehler(meldung);
    }
#else
    (void)z, (void)noten, (void)spur;
#endif
}

void CKommandozeile::textSchreiben(const std::string& ziel, const std::string& utf8Text) {
    m_phase = Phase::Schreiben;
    std::string bytes = utf8ZuCp1252(utf8Text);
    if (ziel != "-") {
        dateiErsetzen(ziel, bytes);
        return;
    }
    m_aus.flush();
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    std::cout.flush();
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0)
        throw DateiFehler("Der Text konnte nicht auf die Standardausgabe geschrieben werden.");
}

} // namespace lyrabo::cli
