// libFuzzer target for the whole road of a file: loaded and opened as the program does it (track
// labels, tempo table, time signatures), then each track (the first few) converted into every
// output: bar tables, produce, harp events and their text, the note sheet, the KlangNoten text and
// the Works database written from the shipped templates; finally the tracks merged and their sheet
// laid out. The input's last three bytes also choose the options, so that every switch is tried.
// The program's own errors (Fehler, overflow included) are the expected answer to bad input;
// any other exception escaping, a sanitizer report, a hang or a wrong-sized database is a finding.
#include "FuzzHilfen.h"

#include "app/core/BlattQuelle.h"
#include "app/core/CProgramm.h"
#include "blatt/BlattSatz.h"
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Fehler.h"

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace lyrabo;

// A run converts at most this many tracks, so that one input stays fast.
constexpr int16_t kHoechstensSpuren = 4;

// A program folder of this process with the shipped templates in ini/, removed at exit.
const fs::path& programmOrdner() {
    static const fs::path ordner = [] {
        fs::path o = fs::temp_directory_path() / ("lyrabo-fuzz-" + std::to_string(std::random_device{}()));
        fs::create_directories(o / "data");
        fs::copy(LYRABO_INI_QUELLE, o / "ini", fs::copy_options::recursive);
        return o;
    }();
    static const bool aufraeumen = (std::atexit([] {
                                        std::error_code ec;
                                        fs::remove_all(ordner, ec);
                                    }),
                                    true);
    (void)aufraeumen;
    return ordner;
}

void optionenSetzen(CEinstellungen& e, uint8_t schalter, uint8_t transpo) {
    e.Legato(schalter & 1);
    e.PunktiertePausen(schalter & 2);
    e.PausenLetzterTakt(schalter & 4);
    e.HoechsterTonMelodie(schalter & 8);
    e.WDBSpaltenAnzahl(schalter & 16 ? 25 : 37);
    e.QuantNotenwert(CEinstellungen::wert(e.ABSErlaubteLaengen(), 1 + (schalter >> 5)));
    e.KanalBelegung(static_cast<int16_t>(transpo % 3));
    e.Transpo(static_cast<int16_t>(transpo % 73 - 36));
}

// The note sheet of what was converted last, laid out as the program hands it over.
void blattSetzen(CProgramm& p, const KlangNotenRef& noten, int16_t spur, uint8_t schalter) {
    const blatt::Stueck stueck = blattStueck(p, noten, blattTitel(p, spur));
    blatt::Einstellungen e = blatt::standardFuer(stueck.saiten);
    e.papier = schalter & 1 ? blatt::Papier::A4 : blatt::Papier::A3;
    e.quer = schalter & 2;
    e.aufEineSeite = schalter & 4;
    e.notenTexte = schalter & 8;
    e.melodieLinie = schalter & 16;
    e.saitenAbstand = 10 + (schalter >> 5 & 1) * 4;
    e.mmProViertel = schalter >> 6 == 0 ? 4.0 : schalter >> 6 == 1 ? 6.0 : 20.0;
    volatile size_t seiten = blatt::setzen(stueck, blatt::begrenzt(e)).seiten.size();
    (void)seiten;
}

// A click on the track's row and its note sheet, then the KlangNoten text and the save menu's
// Works database.
void spurUmrechnen(CProgramm& p, fuzz::StilleForm& form, int16_t spur, uint8_t blattSchalter) {
    form.zeile = static_cast<int16_t>(spur - 1);
    p.neuBerechnen();
    blattSetzen(p, p.KlangNoten, spur, blattSchalter);
    CKLNCreator& kln = p.KLNCreator();
    volatile size_t laenge = kln.getKlangNotenString().size();
    (void)laenge;

    kln.KlangNoten(p.KlangNoten);
    if (!kln.produce(true)) return;
    CWDBCreator& w = p.WDBCreator();
    w.Akkorde(kln.Akkorde());
    w.KlangNoten(kln.KlangNoten());
    w.Pausen(kln.Pausen());
    const fs::path ziel = programmOrdner() / "fuzz.wdb";
    w.write_WDB(ziel.string());
    const auto saiten = p.Einstellungen().WDBSpaltenAnzahl();
    if (fs::file_size(ziel) != (saiten == 25 ? 57343u : 80896u)) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static fuzz::StilleForm form;
    static CProgramm programm(programmOrdner(), form, &form);

    const fs::path midi = programmOrdner() / "fuzz.mid";
    dateiErsetzen(midi, std::string(reinterpret_cast<const char*>(data), size));
    programm.initGlobals();
    CEinstellungen& e = programm.Einstellungen();
    e.MIDIFilePath(midi.string());
    try {
        optionenSetzen(e, size > 0 ? data[size - 1] : 0, size > 1 ? data[size - 2] : 0);
        programm.openMIDIFile(2);
    } catch (const MidiDateiFehler&) {
        if (programm.Midifile1.geladen()) __builtin_trap(); // a failed load leaves nothing behind
        return 0;
    } catch (const Fehler&) {
        return 0;
    }

    const uint8_t blattSchalter = size > 2 ? data[size - 3] : 0;
    Midifile& m = programm.Midifile1;
    try {
        fuzz::allesLesen(m);
    } catch (const Fehler&) {
    }
    const int16_t spuren = m.TrackCount() < kHoechstensSpuren ? m.TrackCount() : kHoechstensSpuren;
    for (int16_t spur = 1; spur <= spuren; ++spur) {
        try {
            spurUmrechnen(programm, form, spur, blattSchalter);
        } catch (const Fehler&) {
        }
    }
    try {
        const auto& auswahl = e.SpurSelected();
        for (int32_t i = 1; i <= auswahl->Count(); ++i) auswahl->Item(i)->Value(i <= spuren ? 1 : 0);
        programm.KLNCreator().spurenMischen();
        blattSetzen(programm, programm.KlangNotenMix, 0, blattSchalter);
    } catch (const Fehler&) {
    }
    return 0;
}
