#include "export/CWDBCreator.h"

#include "app/core/CProgramm.h"
#include "model/Datei.h"
#include "model/Zahlen.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace lyrabo {

namespace fs = std::filesystem;

namespace {

const char* const kFilter = "MS-Works-Datenbank  (*.wdb)|*.wdb";
constexpr int32_t kZellBytes = 14;
constexpr int32_t kZellKopf = 11;
// MIDI note 55 sounds on the lowest string, column 1.
constexpr int16_t kSpaltenVersatz = 54;

fs::path pfadAusUtf8(const std::string& s) { return fs::path(std::u8string(s.begin(), s.end())); }
// Messages are UTF-8 on every system, whatever the path's native form.
std::string pfadText(const fs::path& p) {
    std::u8string u = p.u8string();
    return std::string(u.begin(), u.end());
}

// A template piece that is not there is reported by its name; the user has to restore ini/.
std::string vorlageLesen(const fs::path& pfad) {
    std::error_code ec;
    if (!fs::is_regular_file(pfad, ec))
        throw DateiFehler("Die Vorlagendatei \"" + pfadText(pfad) + "\" wurde nicht gefunden. "
                          "Die Datenbank wurde nicht gespeichert.");
    return dateiLesen(pfad);
}

// The final file is spliced from the template pieces and stretches of the patched grid. A piece
// or grid that is too short yields zero bytes, as reading past the end of a binary file does.
enum class Herkunft { Vorlage, Raster };
struct Stueck {
    const char* name;   // also the template file's stem
    int32_t bytes;
    Herkunft herkunft;
};

// Header of 25 strings: only 3681 of the piece's 3682 bytes go into the file, so everything after
// it sits one byte lower than in the template. Databases written so far look exactly like this.
const Stueck kStuecke25[] = {
    {"Header_25", 3681, Herkunft::Vorlage},
    {"Felder01_25", 2462, Herkunft::Raster},
    {"Schriften_25", 4096, Herkunft::Vorlage},
    {"Felder02_25", 46538, Herkunft::Raster},
    {"Footer_25", 566, Herkunft::Vorlage},
};
const Stueck kStuecke37[] = {
    {"Header_37", 5627, Herkunft::Vorlage},
    {"Felder01_37", 517, Herkunft::Raster},
    {"Schriften_37", 4096, Herkunft::Vorlage},
    {"Felder02_37", 55808, Herkunft::Raster},
    {"Break01_37", 512, Herkunft::Vorlage},
    {"Felder03_37", 13605, Herkunft::Raster},
    {"Footer_37", 731, Herkunft::Vorlage},
};

template <size_t N>
std::string zusammensetzen(const Stueck (&stuecke)[N], const fs::path& ini, const std::string& raster) {
    std::string ergebnis;
    size_t rasterPos = 0;
    for (const Stueck& st : stuecke) {
        const size_t anzahl = static_cast<size_t>(st.bytes);
        if (st.herkunft == Herkunft::Vorlage) {
            std::string teil = vorlageLesen(ini / (std::string(st.name) + ".ini"));
            teil.resize(std::max(teil.size(), anzahl), '\0');
            ergebnis.append(teil, 0, anzahl);
        } else {
            // The grid is read on from where the previous stretch stopped.
            size_t vorhanden = rasterPos < raster.size() ? std::min(anzahl, raster.size() - rasterPos) : 0;
            if (vorhanden > 0) ergebnis.append(raster, rasterPos, vorhanden);
            ergebnis.append(anzahl - vorhanden, '\0');
            rasterPos += anzahl;
        }
    }
    return ergebnis;
}

} // namespace

CWDBCreator::CWDBCreator(CProgramm& programm) : m_programm(programm) {}

void CWDBCreator::meldung(const std::string& text) { (m_form ? *m_form : m_programm.Form()).meldung(text); }

void CWDBCreator::saveDialog_WDB() {
    IDialog* dialog = m_dialog ? m_dialog : m_programm.Dialog();
    std::optional<std::string> name;
    try {
        if (dialog) name = dialog->speichern(kFilter, 2);
    } catch (const AbbruchFehler&) {
        name.reset();
    }
    if (!name) {
        meldung("Daten nicht gespeichert!");
        return;
    }
    // Only the last three characters count, so "liedwdb" passes as well as "lied.WdB".
    std::string endung = name->size() >= 3 ? name->substr(name->size() - 3) : *name;
    for (char& c : endung) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (endung != "WDB") {
        meldung("Falsche Dateiendung!");
        return;
    }
    // A failed write must not be reported as saved: its own message says what went wrong.
    try {
        write_WDB(*name);
    } catch (const Fehler& f) {
        meldung(f.what());
        return;
    }
    meldung("Daten gespeichert!");
}

void CWDBCreator::zustandZuruecksetzen() {
    if (!m_programm.HarfeEvents) m_programm.HarfeEvents = neueSammlung<CHarfeEvent>();
    m_programm.HarfeEvents->Clear();
    m_spalte = 0;
    m_zeilen = 0;
    m_pausenIndex = 0;
    m_akkordZaehler = 0;
    m_tonHoehe = 0;
    m_laenge = 0;
    m_start = 0;
    m_akkordNr = 0;
    m_text.clear();
    m_spur = 0;
    m_quelle.clear();
    m_quellPos = 0;
    m_ziel.clear();
}

void CWDBCreator::noteUebernehmen(const CKlangNote& note, bool mitTextUndSpur) {
    m_tonHoehe = add16(note.TonHoehe(), m_programm.Einstellungen().Transpo());
    m_laenge = cint16(int64_t{note.Laenge()});
    m_start = note.StartZeit();
    m_akkordNr = note.AkkordNr();
    if (mitTextUndSpur) {
        m_text = note.MsgText();
        m_spur = note.Spur();
    }
}

// Chord, text and track stay as the last note left them.
void CWDBCreator::pauseUebernehmen(const CKlangPause& pause) {
    m_tonHoehe = add16(pause.TonHoehe(), m_programm.Einstellungen().Transpo());
    m_laenge = cint16(int64_t{pause.Laenge()});
    m_start = pause.StartZeit();
}

void CWDBCreator::harfeEventAnhaengen(int16_t art) {
    auto ev = std::make_shared<CHarfeEvent>();
    ev->AkkordNr(m_akkordNr);
    ev->Art(art);
    ev->Laenge(m_laenge);
    ev->TonHoehe(m_tonHoehe);
    ev->StartZeit(m_start);
    ev->MsgText(m_text);
    ev->Spur(m_spur);
    m_programm.HarfeEvents->Add(ev);
}

bool CWDBCreator::fuehrendePauseNehmen() {
    if (!m_pausen) return false;
    for (const auto& pause : *m_pausen) {
        if (pause->AkkordNr() == 0) {
            m_zeilen = add16(m_zeilen, 1);
            m_pausenIndex = add16(m_pausenIndex, 1);
            pauseUebernehmen(*pause);
            return true;
        }
    }
    return false;
}

// The rests that follow chord `akkordNr` become harp events only; rests of earlier chords that
// are still pending (further rests before the first chord) are passed over.
void CWDBCreator::pausenDesAkkords(int16_t akkordNr) {
    if (!m_pausen) return;
    while (m_pausenIndex < m_pausen->Count()) {
        const auto& pause = m_pausen->Item(m_pausenIndex + 1);
        if (pause->AkkordNr() == akkordNr) {
            m_zeilen = add16(m_zeilen, 1);
            pauseUebernehmen(*pause);
            harfeEventAnhaengen(3);
            m_spalte = 0;
        }
        if (pause->AkkordNr() > akkordNr) break;
        m_pausenIndex = add16(m_pausenIndex, 1);
    }
}

// The counter moves only when a lower note turns up, so it finds the lowest note of a chord
// ordered up or down by pitch; in a mixed order another note may come first, and the cells show
// it that way.
int32_t CWDBCreator::tiefsteNoteZaehlend(const CAkkord& akkord) const {
    int16_t tiefste = 128;
    int32_t zaehler = 0;
    for (const auto& note : akkord) {
        if (note->TonHoehe() < tiefste) {
            tiefste = note->TonHoehe();
            zaehler = zaehler + 1;
        }
    }
    return zaehler;
}

int32_t CWDBCreator::tiefsteNotePosition(const CAkkord& akkord) const {
    int16_t tiefste = 128;
    int32_t position = 0;
    int32_t i = 0;
    for (const auto& note : akkord) {
        ++i;
        if (note->TonHoehe() < tiefste) {
            tiefste = note->TonHoehe();
            position = i;
        }
    }
    return position;
}

// One note per chord: the longest, and among the equally longest the last one lower than the
// first of them.
int32_t CWDBCreator::melodieNote(const CAkkord& akkord) const {
    int32_t laengste = 0;
    int32_t kandidat = 0;
    int16_t kandidatTon = 0;
    int32_t i = 0;
    for (const auto& note : akkord) {
        ++i;
        if (note->Laenge() > laengste) {
            laengste = note->Laenge();
            kandidat = i;
            kandidatTon = note->TonHoehe();
        }
    }
    if (kandidat == 0) {
        kandidat = 1;
        kandidatTon = akkord.Item(1)->TonHoehe();
    }
    int32_t wahl = kandidat;
    i = 0;
    for (const auto& note : akkord) {
        ++i;
        if (note->Laenge() == laengste && note->TonHoehe() < kandidatTon) wahl = i;
    }
    return wahl;
}

uint8_t CWDBCreator::quellByte() {
    if (m_quellPos < m_quelle.size()) return static_cast<uint8_t>(m_quelle[m_quellPos++]);
    ++m_quellPos;
    return 0;
}

void CWDBCreator::bytesKopieren(int32_t anzahl) {
    for (int32_t i = 0; i < anzahl; ++i) m_ziel.push_back(static_cast<char>(quellByte()));
}

void CWDBCreator::zuSpalteSpringen(int16_t spalte) {
    for (int32_t s = int32_t{m_spalte} + 1; s <= int32_t{spalte} - 1; ++s) {
        bytesKopieren(kZellBytes);
        m_spalte = static_cast<int16_t>(s);
    }
}

void CWDBCreator::zelleSchreiben(bool istNote) {
    const int16_t faktor = m_programm.Einstellungen().TPQN_Faktor();
    const auto& tabelle = istNote ? m_programm.FontNoten : m_programm.FontPausen;
    std::string schluessel;
    if (faktor != 0 && m_laenge % faktor == 0) schluessel = StrTrim(m_laenge / faktor);
    if (schluessel.empty() || !tabelle || !tabelle->hatSchluessel(schluessel))
        throw Fehler(std::string(istNote ? "Eine Note" : "Eine Pause") + " der Länge " + StrTrim(m_laenge) +
                     " Ticks hat kein Zeichen im Notenfont. Die Datenbank wurde nicht gespeichert.");
    const auto& zeichen = tabelle->Item(schluessel);
    m_spalte = add16(m_spalte, 1);
    bytesKopieren(kZellKopf);
    for (int i = 0; i < kZellBytes - kZellKopf; ++i) quellByte();
    m_ziel.push_back(static_cast<char>(zeichen->Zeichen1()));
    m_ziel.push_back(static_cast<char>(zeichen->Zeichen2()));
    m_ziel.push_back(static_cast<char>(zeichen->Zeichen3()));
}

void CWDBCreator::zeileFuellen() {
    const int16_t spalten = m_programm.Einstellungen().WDBSpaltenAnzahl();
    while (m_spalte < spalten) {
        m_spalte = add16(m_spalte, 1);
        bytesKopieren(kZellBytes);
    }
}

void CWDBCreator::write_WDB(const std::string& fileName) {
    zustandZuruecksetzen();
    const int16_t spalten = m_programm.Einstellungen().WDBSpaltenAnzahl();
    const std::string n = StrTrim(spalten);
    const fs::path ini = m_programm.Orte().beilagen / "ini";
    const fs::path rasterLeer = ini / ("FelderAll_" + n + ".ini");
    const fs::path rasterTemp = m_programm.Orte().arbeit / ("FelderAllTemp_" + n + ".ini");

    std::error_code ec;
    fs::remove(rasterTemp, ec);
    m_quelle = vorlageLesen(rasterLeer);
    m_spalte = 0;

    if (fuehrendePauseNehmen()) {
        zuSpalteSpringen(sub16(m_tonHoehe, kSpaltenVersatz));
        zelleSchreiben(false);
        harfeEventAnhaengen(3);
        zeileFuellen();
        m_spalte = 0;
    }

    if (m_akkorde) {
        for (const auto& akkord : *m_akkorde) {
            m_akkordZaehler = add16(m_akkordZaehler, 1);
            m_zeilen = add16(m_zeilen, 1);
            while (!akkord->leer()) {
                const int32_t pos = tiefsteNoteZaehlend(*akkord);
                auto note = akkord->Item(pos);
                noteUebernehmen(*note, false);
                akkord->Remove(pos);
                zuSpalteSpringen(sub16(m_tonHoehe, kSpaltenVersatz));
                zelleSchreiben(true);
                harfeEventAnhaengen(1);
            }
            zeileFuellen();
            m_spalte = 0;
            pausenDesAkkords(m_akkordZaehler);
        }
    }

    // Whatever of the blank grid is left follows unchanged.
    if (m_quellPos < m_quelle.size()) m_ziel.append(m_quelle, m_quellPos, std::string::npos);
    dateiErsetzen(rasterTemp, m_ziel);

    std::string datei;
    if (spalten == 25)
        datei = zusammensetzen(kStuecke25, ini, m_ziel);
    else if (spalten == 37)
        datei = zusammensetzen(kStuecke37, ini, m_ziel);
    else
        return;
    dateiErsetzen(pfadAusUtf8(fileName), datei);
}

void CWDBCreator::write_ExportColl() {
    zustandZuruecksetzen();
    if (fuehrendePauseNehmen()) {
        harfeEventAnhaengen(3);
        m_spalte = 0;
    }
    if (!m_akkorde) return;
    const bool alleNoten = m_programm.Einstellungen().HoechsterTonMelodie();
    for (const auto& akkord : *m_akkorde) {
        m_akkordZaehler = add16(m_akkordZaehler, 1);
        m_zeilen = add16(m_zeilen, 1);
        if (alleNoten) {
            while (!akkord->leer()) {
                const int32_t pos = tiefsteNotePosition(*akkord);
                auto note = akkord->Item(pos);
                noteUebernehmen(*note, true);
                akkord->Remove(pos);
                harfeEventAnhaengen(1);
            }
        } else if (!akkord->leer()) {
            const int32_t pos = melodieNote(*akkord);
            auto note = akkord->Item(pos);
            noteUebernehmen(*note, true);
            akkord->Remove(pos);
            harfeEventAnhaengen(1);
        }
        m_spalte = 0;
        pausenDesAkkords(m_akkordZaehler);
    }
}

} // namespace lyrabo
