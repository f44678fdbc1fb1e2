// The export texts of small MIDI files, from opening the file to the text in the window, worked
// out by hand: 480 ticks per quarter, 4/4 at 120, sixteenth quantisation. Also the export run and
// the recompute after an option change, as the window and the command line use them.
#include "engine/CKLNCreator.h"
#include "model/Zahlen.h"
#include "support/MidiBauer.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <functional>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Track 1 holds tempo and time signature, track 2 the tune, track 3 (if any) nothing at all.
struct MidiLied : ExportUmgebung {
    explicit MidiLied(const std::function<void(MidiSpur&)>& melodie, bool leereSpur = false) {
        MidiBauer b(480);
        b.spur().tempo(0, 500000).taktart(0, 4, 2).ende(1920);
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

std::string kopf(const std::string& art, const std::string& beginn, int anzahl, const std::string& flags) {
    return art + "-Export :\r\n" + (art == "HarfeEvent" ? "Anzahl der Taktarten, 1\r\n1. Taktart: 4/4 | Beginn: " + beginn
                                                       : "Numerator,  4\r\nDenominator,  2") +
           "\r\nTicksPerQuarterNote,  480\r\nTempo,  120\r\nTranspo, 0\r\nAnzahl, " + Str(anzahl) +
           "\r\nMIDI-Kanäle, einer\r\nFeldCheck, " + flags;
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

TEST(ExportAusMidi, ZweistimmigEineNoteJeAkkordOderAlleUndKlangNoten) {
    MidiLied lied(zweistimmig);
    // Several voices: the eighth switch goes off, the field order is the polyphonic one.
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "1. Takt", 2, "11110110") + kTakt1 +
                                     "\r\n 1, 1, 1, 0, 60, 960,,\r\n 2, 2, 1, 960, 67, 960,,");
    EXPECT_EQ(lied.programm.KLNCreator().getKlangNotenString(),
              kopf("KlangNoten", "", 3, "11110110") + "\r\n 1, 1, 0, 60, 960,\r\n 2, 1, 0, 64, 960,\r\n 3, 2, 960, 67, 960,");
    lied.e().HoechsterTonMelodie(true);
    lied.e().ClipExportFlags()->Item(8)->Value(1);
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "1. Takt", 3, "11110110") + kTakt1 +
                                     "\r\n 1, 1, 1, 0, 60, 960,,\r\n 2, 1, 1, 0, 64, 960,,\r\n 3, 2, 1, 960, 67, 960,,");
}

TEST(ExportAusMidi, SpurOhneNotenGibtNurDenKopf) {
    MidiLied lied([](MidiSpur& s) { s.name("Leer").ende(1920); });
    EXPECT_EQ(lied.harfenText(), kopf("HarfeEvent", "0. Ticks", 0, "11110111"));
    EXPECT_EQ(lied.programm.KLNCreator().getKlangNotenString(), kopf("KlangNoten", "", 0, "11110111"));
}

// The run of the window shows the track and its text and hands the track's notes to the writer;
// the run of the command line shows nothing and hands over the merged tracks' notes.
TEST(ExportLauf, MitAnzeigeOderNurDieHarfenEvents) {
    MidiLied mit(dreiNoten, true), ohne(dreiNoten, true);
    for (MidiLied* l : {&mit, &ohne}) l->programm.MIDIFileSetsESVarsFrmIntern(2);
    mit.programm.HarfeExportLauf(2, true, true);
    ohne.programm.HarfeExportLauf(2, false, false);
    EXPECT_EQ(mit.e().TrackNr() + ohne.e().TrackNr(), 4);
    EXPECT_EQ(mit.form.angezeigteSpuren, std::vector<int16_t>{2});
    ASSERT_EQ(mit.form.textGesetzt, 1);
    EXPECT_EQ(mit.form.klangNotenText, mit.programm.KLNCreator().getHarfeEventString());
    EXPECT_EQ(mit.programm.WDBCreator().KlangNoten(), mit.programm.KlangNoten);
    EXPECT_TRUE(ohne.form.angezeigteSpuren.empty());
    EXPECT_EQ(ohne.form.textGesetzt, 0);
    EXPECT_EQ(ohne.programm.WDBCreator().KlangNoten(), ohne.programm.KlangNotenMix);
}

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
    lied.programm.KLNCreator().KlangNoten(neueSammlung<CKlangNote>());
    lied.programm.neuBerechnen();
    EXPECT_EQ(lied.form.angezeigteSpuren, std::vector<int16_t>{2});
    EXPECT_EQ(lied.form.textGesetzt, 1);
    EXPECT_TRUE(lied.programm.KLNCreator().IsMonoton()); // a melody of single notes: monophonic again
    EXPECT_EQ(lied.programm.KLNCreator().KlangNoten(), lied.programm.KlangNoten);
}
