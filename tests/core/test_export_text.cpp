// The export texts compared byte for byte with texts worked out by hand: from small MIDI files
// (480 ticks per quarter, 4/4 at 120, sixteenth quantisation) to the text in the window, and from
// events made by hand for the switches, channel words and time signatures. Also the export run and
// the recompute after an option change, as the window and the command line use them.
#include "engine/CKLNCreator.h"
#include "export/TextExport.h"
#include "model/Zahlen.h"
#include "support/MidiBauer.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <functional>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Track 1 holds tempo and time signature, track 2 the tune, track 3 (if any) nothing at all.
using Spur = std::function<void(MidiSpur&)>;
struct MidiLied : ExportUmgebung {
    explicit MidiLied(const Spur& melodie, bool leereSpur = false,
                      const Spur& leiter = [](MidiSpur& s) { s.tempo(0, 500000).taktart(0, 4, 2).ende(1920); }) {
        MidiBauer b(480);
        leiter(b.spur());
        melodie(b.spur());
        if (leereSpur) b.spur().ohneEnde();
        e().MIDIFilePath(b.schreiben(ordner / "lied.mid").string());
        EXPECT_TRUE(programm.openMIDIFile(2));
        form.zeile = 1; // the window selects track 2 after loading
    }
    std::string harfenText() {
        programm.neuBerechnen();
        return form.klangNotenText;
    }
};

// One voice: a rest before the first note, a lyric on it, a gap after the second note, a half
// note in bar 2 and the rest that fills bar 2 (the track ends at 2880, so the piece has 2 bars).
void einstimmig(MidiSpur& s) {
    s.name("Melodie").an(480, 1, 60).lyric(0, "la").aus(480, 1, 60).note(0, 62, 480).note(480, 64, 960).ende();
}
// Two voices: a third at the start, then one note.
void zweistimmig(MidiSpur& s) {
    s.name("Satz").an(0, 1, 60).an(0, 1, 64).aus(960, 1, 60).aus(0, 1, 64).note(0, 67, 960).ende();
}

void dreiNoten(MidiSpur& s) { s.name("Melodie").note(0, 60, 480).note(0, 62, 480).note(0, 64, 960).ende(); }

std::string kopf(const std::string& art, const std::string& beginn, int anzahl, const std::string& flags,
                 const std::string& kanaele = "einer") {
    return art + "-Export :\r\n" + (art == "HarfeEvent" ? "Anzahl der Taktarten, 1\r\n1. Taktart: 4/4 | Beginn: " + beginn
                                                       : "Numerator,  4\r\nDenominator,  2") +
           "\r\nTicksPerQuarterNote,  480\r\nTempo,  120\r\nTranspo, 0\r\nAnzahl, " + Str(anzahl) +
           "\r\nMIDI-Kanäle, " + kanaele + "\r\nFeldCheck, " + flags;
}
const std::string kTakt1 = "\r\n----- Takt  1 / 1920 Ticks -----", kTakt2 = "\r\n----- Takt  2 / 1920 Ticks -----";

} // namespace

TEST(ExportAusMidi, EinstimmigMitTextUndPausenUndOhneSchalter) {
    MidiLied lied(einstimmig);
    lied.e().Transpo(2); // the events carry the transposed pitches; the header stays at 0
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "1. Takt", 6, "11110111") + kTakt1 +
                                     "\r\n 1, 0, 3, 0, 62, 480, 0,,\r\n 2, 1, 1, 480, 62, 480, 0,la,"
                                     "\r\n 3, 2, 1, 960, 64, 480, 0,,\r\n 4, 2, 3, 1440, 64, 480, 0,," +
                                     kTakt2 + "\r\n 5, 3, 1, 1920, 66, 960, 0,,\r\n 6, 3, 3, 2880, 66, 960, 0,,");
    lied.e().Transpo(0);
    lied.e().PausenLetzterTakt(false);
    lied.flags("00000000"); // the recompute switches the eighth back on for one voice
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "1. Takt", 5, "00000001") + kTakt1 +
                                     "\r\n 480,,\r\n 480,la,\r\n 480,,\r\n 480,," + kTakt2 + "\r\n 960,,");
}

TEST(ExportAusMidi, ZweistimmigEineNoteJeAkkordUndKlangNoten) {
    MidiLied lied(zweistimmig);
    // Several voices: the eighth switch goes off, the field order is the polyphonic one.
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "1. Takt", 2, "11110110") + kTakt1 +
                                     "\r\n 1, 1, 1, 0, 60, 960,,\r\n 2, 2, 1, 960, 67, 960,,");
    EXPECT_EQ(lied.programm.KLNCreator().getKlangNotenString(),
              kopf("KlangNoten", "", 3, "11110110") + "\r\n 1, 1, 0, 60, 960,\r\n 2, 1, 0, 64, 960,\r\n 3, 2, 960, 67, 960,");
}

TEST(ExportAusMidi, SpurOhneNotenGibtNurDenKopf) {
    MidiLied lied([](MidiSpur& s) { s.name("Leer").ende(1920); });
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "0. Ticks", 0, "11110111"));
    EXPECT_EQ(lied.programm.KLNCreator().getKlangNotenString(), kopf("KlangNoten", "", 0, "11110111"));
}

// The recompute needs a selected track with events; it shows the track and its text.
TEST(ExportLauf, NeuBerechnenNurMitGewaehlterSpurMitEreignissen) {
    ExportUmgebung ohneDatei;
    ohneDatei.form.zeile = 1;
    ohneDatei.programm.neuBerechnen();
    MidiLied lied(dreiNoten, true);
    for (int16_t zeile : {-1, 2, 3}) { // nothing selected, a track without events, no such track
        lied.form.zeile = zeile;
        lied.programm.neuBerechnen();
    }
    EXPECT_EQ(ohneDatei.form.textGesetzt + lied.form.textGesetzt, 0);
    lied.form.zeile = 1;
    lied.programm.KLNCreator().IsMonoton(false);
    lied.programm.neuBerechnen();
    EXPECT_EQ(lied.form.angezeigteSpuren, std::vector<int16_t>{2});
    EXPECT_EQ(lied.form.textGesetzt, 1);
    EXPECT_TRUE(lied.programm.KLNCreator().IsMonoton()); // a melody of single notes: monophonic again
}

// A short tune in 4/4: a leading rest, a note with a lyric and the rest after it (which carries the
// lyric on), a whole note in bar 2, and a note past the last known bar; its harp events come from
// the writer's collection run, the bars from a MIDI file.
TEST(HarfeEventText, SchalterUndStimmenEntscheidenUeberDieFelder) {
    MidiLied u(einstimmig);
    u.harfenText();
    u.pausen->Add(pause(0, 60, 480, 0));
    u.akkorde->Add(akkord({note(62, 480, 480, 1, "la", 1)}));
    u.pausen->Add(pause(1, 62, 960, 960));
    u.akkorde->Add(akkord({note(64, 1920, 1920, 2, "", 1)}));
    u.akkorde->Add(akkord({note(67, 1920, 5760, 3, "", 1)}));
    u.schreiber().write_ExportColl();
    u.e().Transpo(5);       // never shown: the events carry the transposed pitches
    u.e().KanalBelegung(2); // never shown either: always one channel
    const struct { const char* flags; bool monoton; std::vector<std::string> zeilen; } faelle[] = {
        {"11110111", false, {" 1, 0, 3, 0, 60, 480,, 1,", " 2, 1, 1, 480, 62, 480,la, 1,", " 3, 1, 3, 960, 62, 960,la, 1,",
                             " 4, 2, 1, 1920, 64, 1920,, 1,", " 5, 3, 1, 5760, 67, 1920,, 1,"}},
        // Switch 5 has no field; switch 8 gives the constant for several voices (length and lyric
        // for one, see the MIDI tune); switch 7 the other way round.
        {"00001000", true, {"", "", "", "", ""}},
        {"00001000", false, {"", "", "", "", ""}},
        {"00000001", false, {" 1,", " 1,", " 1,", " 1,", " 1,"}},
        {"00000010", true, {" 0,", " 1,", " 1,", " 1,", " 1,"}},
        {"00000010", false, {" 480,,", " 480,la,", " 960,la,", " 1920,,", " 1920,,"}},
    };
    for (const auto& f : faelle) {
        u.flags(f.flags);
        std::string erwartet = kopf("HarfeEvent", "1. Takt", 5, f.flags);
        for (size_t k = 0; k < 5; ++k) {
            erwartet += k == 0 ? kTakt1 : k == 3 ? kTakt2 : "";
            if (!f.zeilen[k].empty()) erwartet += "\r\n" + f.zeilen[k];
        }
        EXPECT_EQ(harfeEventText(u.e(), *u.programm.TimeSignatures(), *u.programm.HarfeEvents, f.monoton), erwartet)
            << f.flags << " " << f.monoton;
    }
}

// Time signatures begin at bars once there are events (in ticks without, see the empty export);
// numbers get their leading blank only when not negative.
TEST(HarfeEventText, TaktartenMitEreignissenInTaktenUndNegativeZahlen) {
    MidiLied u(dreiNoten, false, [](MidiSpur& s) { s.taktart(0, 3, 2).taktart(2880, 4, 2).ende(1920); });
    u.harfenText();
    u.flags("00010000");
    u.akkorde->Add(akkord({note(60, 480, -5, 1)})); // before the first bar: lookup 0, no bar line
    u.akkorde->Add(akkord({note(62, 480, 2880, 2)}));
    u.akkorde->Add(akkord({note(64, 480, 1500, 3)})); // an earlier bar after a later one: no bar line
    u.schreiber().write_ExportColl();
    EXPECT_EQ(harfeEventText(u.e(), *u.programm.TimeSignatures(), *u.programm.HarfeEvents, true),
              "HarfeEvent-Export :\r\nAnzahl der Taktarten, 2\r\n1. Taktart: 3/4 | Beginn: 1. Takt\r\n"
              "2. Taktart: 4/4 | Beginn: 3. Takt\r\nTicksPerQuarterNote,  480\r\nTempo,  0\r\n"
              "Transpo, 0\r\nAnzahl,  3\r\nMIDI-Kanäle, einer\r\nFeldCheck, 00010000"
              "\r\n-5,\r\n----- Takt  3 / 1920 Ticks -----\r\n 2880,\r\n 1500,");
}

// Rows come from the chords, the count from all notes; switches 3 and 5 show as ticked but have no field.
TEST(KlangNotenText, ZeilenAusDenAkkordenKanalWortUndSchalter) {
    MidiLied u(zweistimmig); // only for the header's time signature and tempo
    u.harfenText();
    u.e().Transpo(-12);
    auto noten = akkord({note(60, 480, 0, 1), note(64, 480, 0, 1), note(67, 240, -30, 2), note(72, 240, 960)});
    for (int16_t i = 1; i <= 3; ++i) {
        noten->Item(i)->ID(i);
        noten->Item(i)->Kanal(i == 2 ? 2 : 1);
    }
    u.akkorde->Add(akkord({noten->Item(1), noten->Item(2)}));
    u.akkorde->Add(akkord({noten->Item(3)})); // the fourth note is in no chord
    const struct { int16_t belegung; const char* flags; const char* wort; const char* zeilen; } faelle[] = {
        {0, "11110111", "einer", "\r\n 1, 1, 0, 60, 480, 1,\r\n 2, 1, 0, 64, 480, 2,\r\n 3, 2,-30, 67, 240, 1,"},
        {1, "00000000", "E-e=1-6", ""},
        {2, "00000000", "E-e=6-1", ""},
        {-1, "00000000", "", ""},
        {0, "00101000", "einer", ""},
        {0, "10000001", "einer", "\r\n 1, 1,\r\n 2, 2,\r\n 3, 1,"},
    };
    for (const auto& f : faelle) {
        u.e().KanalBelegung(f.belegung);
        u.flags(f.flags);
        EXPECT_EQ(klangNotenText(u.e(), *noten, *u.akkorde), kopf("KlangNoten", "", 4, f.flags, f.wort) + f.zeilen)
            << f.flags << " " << f.belegung;
    }
}
