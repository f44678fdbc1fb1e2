// The KlangNoten table and the harp-event text from events made by hand, compared byte for byte:
// which switch shows which field for one and for several voices, the channel word, time signatures.
#include "engine/CKLNCreator.h"
#include "export/TextExport.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

void ereignis(CProgramm& p, int16_t art, int16_t akkordNr, int32_t start, int16_t ton, int32_t laenge,
              const std::string& text = "", int16_t spur = 0) {
    auto e = std::make_shared<CHarfeEvent>();
    e->Art(art);
    e->AkkordNr(akkordNr);
    e->StartZeit(start);
    e->TonHoehe(ton);
    e->Laenge(laenge);
    e->MsgText(text);
    e->Spur(spur);
    p.HarfeEvents->Add(e);
}

void taktart(ExportUmgebung& u, int16_t zaehler, int16_t nenner, int32_t abs, std::initializer_list<int16_t> laengen = {}) {
    auto ts = std::make_shared<CTimeSignature>();
    ts->ID(static_cast<int16_t>(u.programm.TimeSignatures()->Count() + 1));
    ts->Numerator(zaehler);
    ts->Denominator(nenner);
    ts->ABSTime(abs);
    u.programm.TimeSignatures()->Add(ts);
    for (int16_t l : laengen) {
        auto i = std::make_shared<CInteger>();
        i->ID(static_cast<int16_t>(u.e().MFITaktLaengen()->Count() + 1));
        i->Value(l);
        u.e().MFITaktLaengen()->Add(i);
    }
}

std::string harfenText(ExportUmgebung& u, bool monoton) {
    return harfeEventText(u.e(), *u.programm.TimeSignatures(), *u.programm.HarfeEvents, monoton);
}

} // namespace

// A short tune in 4/4: a leading rest, a note with a lyric and the rest after it (which carries the
// lyric on), a whole note in bar 2, and a note past the last known bar.
TEST(HarfeEventText, SchalterUndStimmenEntscheidenUeberDieFelder) {
    ExportUmgebung u;
    u.e().TicksPerQuarterNote(480);
    u.e().Tempo(120);
    u.e().Transpo(5);       // never shown: the events carry the transposed pitches
    u.e().KanalBelegung(2); // never shown either: always one channel
    u.e().initTaktLaengen();
    taktart(u, 4, 4, 0, {1920, 1920, 1920});
    ereignis(u.programm, 3, 0, 0, 60, 480);
    ereignis(u.programm, 1, 1, 480, 62, 480, "la", 1);
    ereignis(u.programm, 3, 1, 960, 62, 960, "la", 1);
    ereignis(u.programm, 1, 2, 1920, 64, 1920, "", 1);
    ereignis(u.programm, 1, 3, 5760, 67, 1920, "", 1);
    const struct { const char* flags; bool monoton; std::vector<std::string> zeilen; } faelle[] = {
        {"11110111", true, {" 1, 0, 3, 0, 60, 480, 0,,", " 2, 1, 1, 480, 62, 480, 1,la,", " 3, 1, 3, 960, 62, 960, 1,la,",
                            " 4, 2, 1, 1920, 64, 1920, 1,,", " 5, 3, 1, 5760, 67, 1920, 1,,"}},
        {"11110111", false, {" 1, 0, 3, 0, 60, 480,, 1,", " 2, 1, 1, 480, 62, 480,la, 1,", " 3, 1, 3, 960, 62, 960,la, 1,",
                             " 4, 2, 1, 1920, 64, 1920,, 1,", " 5, 3, 1, 5760, 67, 1920,, 1,"}},
        // Switch 5 has no field; switch 8 gives length and lyric for one voice, the constant for
        // several; switch 7 the other way round.
        {"00001000", true, {"", "", "", "", ""}},
        {"00001000", false, {"", "", "", "", ""}},
        {"00000001", true, {" 480,,", " 480,la,", " 960,la,", " 1920,,", " 1920,,"}},
        {"00000001", false, {" 1,", " 1,", " 1,", " 1,", " 1,"}},
        {"00000010", true, {" 0,", " 1,", " 1,", " 1,", " 1,"}},
        {"00000010", false, {" 480,,", " 480,la,", " 960,la,", " 1920,,", " 1920,,"}},
    };
    for (const auto& f : faelle) {
        u.flags(f.flags);
        std::string erwartet = "HarfeEvent-Export :\r\nAnzahl der Taktarten, 1\r\n1. Taktart: 4/4 | Beginn: 1. Takt\r\n"
                               "TicksPerQuarterNote,  480\r\nTempo,  120\r\nTranspo, 0\r\nAnzahl,  5\r\n"
                               "MIDI-Kanäle, einer\r\nFeldCheck, " + std::string(f.flags);
        for (size_t k = 0; k < 5; ++k) {
            if (k == 0 || k == 3) erwartet += "\r\n----- Takt  " + std::string(k == 0 ? "1" : "2") + " / 1920 Ticks -----";
            if (!f.zeilen[k].empty()) erwartet += "\r\n" + f.zeilen[k];
        }
        EXPECT_EQ(harfenText(u, f.monoton), erwartet) << f.flags << " " << f.monoton;
    }
}

// Time signatures begin at bars once there are events (in ticks without, see the empty export);
// numbers get their leading blank only when not negative.
TEST(HarfeEventText, TaktartenMitEreignissenInTaktenUndNegativeZahlen) {
    ExportUmgebung u;
    u.e().initTaktLaengen();
    taktart(u, 3, 4, 0, {1440, 1440});
    taktart(u, 4, 4, 2880, {1920});
    u.flags("00010000");
    ereignis(u.programm, 1, 1, -5, 60, 480);   // before the first bar: lookup 0, no bar line
    ereignis(u.programm, 1, 2, 2880, 62, 480);
    ereignis(u.programm, 1, 3, 1500, 64, 480); // an earlier bar after a later one: no bar line
    EXPECT_EQ(harfenText(u, true), "HarfeEvent-Export :\r\nAnzahl der Taktarten, 2\r\n1. Taktart: 3/4 | Beginn: 1. Takt\r\n"
                                   "2. Taktart: 4/4 | Beginn: 3. Takt\r\nTicksPerQuarterNote,  480\r\nTempo,  0\r\n"
                                   "Transpo, 0\r\nAnzahl,  3\r\nMIDI-Kanäle, einer\r\nFeldCheck, 00010000"
                                   "\r\n-5,\r\n----- Takt  3 / 1920 Ticks -----\r\n 2880,\r\n 1500,");
}

// Rows come from the chords, the count from all notes; switches 3 and 5 show as ticked but have no field.
TEST(KlangNotenText, ZeilenAusDenAkkordenKanalWortUndSchalter) {
    ExportUmgebung u;
    u.e().TicksPerQuarterNote(480);
    u.e().Numerator(4);
    u.e().Denominator(2);
    u.e().Tempo(100);
    u.e().Transpo(-12);
    auto noten = neueSammlung<CKlangNote>();
    auto a = note(60, 480, 0, 1), b = note(64, 480, 0, 1), c = note(67, 240, -30, 2);
    int16_t id = 0;
    for (const auto& [n, kanal] : std::initializer_list<std::pair<std::shared_ptr<CKlangNote>, int16_t>>{{a, 1}, {b, 2}, {c, 1}}) {
        n->ID(++id);
        n->Kanal(kanal);
        noten->Add(n);
    }
    noten->Add(note(72, 240, 960)); // in no chord
    u.akkorde->Add(akkord({a, b}));
    u.akkorde->Add(akkord({c}));
    const struct { int16_t belegung; const char* flags; const char* wort; const char* zeilen; } faelle[] = {
        {0, "11110111", "einer", "\r\n 1, 1, 0, 60, 480, 1,\r\n 2, 1, 0, 64, 480, 2,\r\n 3, 2,-30, 67, 240, 1,"},
        {1, "00000000", "E-e=1-6", ""},
        {2, "00000000", "E-e=6-1", ""},
        {3, "00000000", "", ""},
        {-1, "00000000", "", ""},
        {0, "00101000", "einer", ""},
        {0, "10000001", "einer", "\r\n 1, 1,\r\n 2, 2,\r\n 3, 1,"},
    };
    for (const auto& f : faelle) {
        u.e().KanalBelegung(f.belegung);
        u.flags(f.flags);
        EXPECT_EQ(klangNotenText(u.e(), *noten, *u.akkorde),
                  "KlangNoten-Export :\r\nNumerator,  4\r\nDenominator,  2\r\nTicksPerQuarterNote,  480\r\nTempo,  100\r\n"
                  "Transpo, 0\r\nAnzahl,  4\r\nMIDI-Kanäle, " + std::string(f.wort) + "\r\nFeldCheck, " + f.flags + f.zeilen)
            << f.flags << " " << f.belegung;
    }
}
