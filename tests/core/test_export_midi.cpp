// The export texts of small MIDI files, from opening the file to the text in the window, worked
// out by hand: 480 ticks per quarter, 4/4 at 120, sixteenth quantisation.
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Zahlen.h"
#include "support/MidiBauer.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct MidiLied : ExportUmgebung {
    // Opens the file like the automatic run does and selects track 2 in the track list.
    explicit MidiLied(const MidiBauer& b) {
        e().MIDIFilePath(b.schreiben(ordner / "lied.mid").string());
        EXPECT_TRUE(programm.openMIDIFile(2));
        form.zeile = 1;
    }
    std::string harfenText() {
        programm.neuBerechnen();
        return form.klangNotenText;
    }
};

MidiSpur& leiterSpur(MidiBauer& b, uint32_t ende) { return b.spur().tempo(0, 500000).taktart(0, 4, 2).ende(ende); }

std::string kopf(const std::string& beginn, int anzahl) {
    return "HarfeEvent-Export :\r\n"
           "Anzahl der Taktarten, 1\r\n"
           "1. Taktart: 4/4 | Beginn: " + beginn + "\r\n"
           "TicksPerQuarterNote,  480\r\n"
           "Tempo,  120\r\n"
           "Transpo, 0\r\n"
           "Anzahl, " + Str(anzahl) + "\r\n"
           "MIDI-Kanäle, einer\r\n";
}

// One voice: a rest before the first note, a lyric on it, a gap after the second note, a half
// note in bar 2 and the rest that fills bar 2 (the track ends at 2880, so the piece has 2 bars).
MidiBauer einstimmig() {
    MidiBauer b(480);
    leiterSpur(b, 1920);
    b.spur()
        .name("Melodie")
        .an(480, 1, 60)
        .lyric(0, "la")
        .aus(480, 1, 60)
        .note(0, 62, 480)
        .note(480, 64, 960)
        .ende();
    return b;
}

// Two voices: a third at the start, then one note.
MidiBauer zweistimmig() {
    MidiBauer b(480);
    leiterSpur(b, 1920);
    b.spur().name("Satz").an(0, 1, 60).an(0, 1, 64).aus(960, 1, 60).aus(0, 1, 64).note(0, 67, 960).ende();
    return b;
}

} // namespace

TEST(ExportAusMidi, EinstimmigMitTextUndPausen) {
    MidiLied lied(einstimmig());
    lied.e().Transpo(2); // the events carry the transposed pitches; the header stays at 0
    EXPECT_EQ(lied.harfenText(), kopf("1. Takt", 6) + "FeldCheck, 11110111"
                                                     "\r\n----- Takt  1 / 1920 Ticks -----"
                                                     "\r\n 1, 0, 3, 0, 62, 480, 0,,"
                                                     "\r\n 2, 1, 1, 480, 62, 480, 0,la,"
                                                     "\r\n 3, 2, 1, 960, 64, 480, 0,,"
                                                     "\r\n 4, 2, 3, 1440, 64, 480, 0,,"
                                                     "\r\n----- Takt  2 / 1920 Ticks -----"
                                                     "\r\n 5, 3, 1, 1920, 66, 960, 0,,"
                                                     "\r\n 6, 3, 3, 2880, 66, 960, 0,,");
}

TEST(ExportAusMidi, EinstimmigOhneSchalterUndOhnePausenImLetztenTakt) {
    MidiLied lied(einstimmig());
    lied.e().PausenLetzterTakt(false);
    lied.flags("00000000"); // the recompute switches the eighth back on for one voice
    EXPECT_EQ(lied.harfenText(), kopf("1. Takt", 5) + "FeldCheck, 00000001"
                                                     "\r\n----- Takt  1 / 1920 Ticks -----"
                                                     "\r\n 480,,\r\n 480,la,\r\n 480,,\r\n 480,,"
                                                     "\r\n----- Takt  2 / 1920 Ticks -----"
                                                     "\r\n 960,,");
}

TEST(ExportAusMidi, ZweistimmigEineNoteJeAkkordOderAlle) {
    MidiLied lied(zweistimmig());
    // Several voices: the eighth switch goes off, the field order is the polyphonic one.
    EXPECT_EQ(lied.harfenText(), kopf("1. Takt", 2) + "FeldCheck, 11110110"
                                                     "\r\n----- Takt  1 / 1920 Ticks -----"
                                                     "\r\n 1, 1, 1, 0, 60, 960,,"
                                                     "\r\n 2, 2, 1, 960, 67, 960,,");
    lied.e().HoechsterTonMelodie(true);
    lied.e().ClipExportFlags()->Item(8)->Value(1);
    EXPECT_EQ(lied.harfenText(), kopf("1. Takt", 3) + "FeldCheck, 11110110"
                                                     "\r\n----- Takt  1 / 1920 Ticks -----"
                                                     "\r\n 1, 1, 1, 0, 60, 960,,"
                                                     "\r\n 2, 1, 1, 0, 64, 960,,"
                                                     "\r\n 3, 2, 1, 960, 67, 960,,");
}

TEST(ExportAusMidi, KlangNotenTabelle) {
    MidiLied lied(zweistimmig());
    lied.harfenText();
    auto& engine = lied.programm.KLNCreator();
    EXPECT_EQ(engine.getKlangNotenString(), "KlangNoten-Export :\r\n"
                                            "Numerator,  4\r\n"
                                            "Denominator,  2\r\n"
                                            "TicksPerQuarterNote,  480\r\n"
                                            "Tempo,  120\r\n"
                                            "Transpo, 0\r\n"
                                            "Anzahl,  3\r\n"
                                            "MIDI-Kanäle, einer\r\n"
                                            "FeldCheck, 11110110"
                                            "\r\n 1, 1, 0, 60, 960,"
                                            "\r\n 2, 1, 0, 64, 960,"
                                            "\r\n 3, 2, 960, 67, 960,");
    // Switch 8 shows each note's place in its chord; the channel word follows the setting here.
    lied.e().ClipExportFlags()->Item(8)->Value(1);
    lied.e().KanalBelegung(2);
    std::string text = engine.getKlangNotenString();
    EXPECT_NE(text.find("MIDI-Kanäle, E-e=6-1\r\nFeldCheck, 11110110"), std::string::npos) << text;
}

TEST(ExportAusMidi, SpurOhneNotenGibtNurDenKopf) {
    MidiBauer b(480);
    leiterSpur(b, 1920);
    b.spur().name("Leer").ende(1920);
    MidiLied lied(b);
    EXPECT_EQ(lied.harfenText(), kopf("0. Ticks", 0) + "FeldCheck, 11110111");
    EXPECT_EQ(lied.programm.KLNCreator().getKlangNotenString(), "KlangNoten-Export :\r\n"
                                                                "Numerator,  4\r\n"
                                                                "Denominator,  2\r\n"
                                                                "TicksPerQuarterNote,  480\r\n"
                                                                "Tempo,  120\r\n"
                                                                "Transpo, 0\r\n"
                                                                "Anzahl,  0\r\n"
                                                                "MIDI-Kanäle, einer\r\n"
                                                                "FeldCheck, 11110111");
}

// Saving the one-voice tune as the menu command does, with the shipped pieces: each row's glyphs
// sit in the string column of its pitch, wherever the grid is cut by the fixed pieces.
TEST(ExportAusMidi, DatenbankMitDenMitgeliefertenStuecken) {
    MidiLied lied(einstimmig());
    std::filesystem::copy(std::filesystem::path(LYRABO_SOURCE_DIR) / "ini", lied.ordner / "ini",
                          std::filesystem::copy_options::recursive);
    lied.programm.neuBerechnen(); // bar tables of track 2
    auto& engine = lied.programm.KLNCreator();
    ASSERT_TRUE(engine.produce(true));
    auto& writer = lied.programm.WDBCreator();
    writer.Akkorde(engine.Akkorde());
    writer.KlangNoten(engine.KlangNoten());
    writer.Pausen(engine.Pausen());
    writer.Form(&lied.form);
    writer.Dialog(&lied.dialog);
    lied.dialog.antwort = (lied.ordner / "lied.wdb").string();
    writer.saveDialog_WDB();
    ASSERT_EQ(lied.form.meldungen, std::vector<std::string>{"Daten gespeichert!"});

    const std::string datei = dateiLesen(lied.ordner / "lied.wdb");
    const std::string vorlage = dateiLesen(lied.ordner / "ini" / "wdb_37.ini");
    ASSERT_EQ(datei.size(), vorlage.size());
    // File offset of text byte b of the cell in row z, column s (from 1) of the 37-string layout.
    auto textByte = [](int z, int s, int b) {
        size_t g = static_cast<size_t>(((z - 1) * 37 + s - 1) * 14 + 11 + b);
        for (auto [von, bis] : {std::pair<size_t, size_t>{5627, 6143}, {10240, 66047}, {66560, 80164}}) {
            if (g <= bis - von) return von + g;
            g -= bis - von + 1;
        }
        return size_t{0};
    };
    std::string erwartet = vorlage;
    const struct { int zeile, spalte; char zeichen; } zellen[] = {
        {1, 6, 'h'},  // the leading rest, at the pitch of the first note
        {2, 6, 'b'},  // 60
        {3, 8, 'b'},  // 62; the rest after it is a harp event only
        {4, 10, 'v'}, // 64, a half note
    };
    for (const auto& z : zellen) {
        erwartet[textByte(z.zeile, z.spalte, 0)] = z.zeichen;
        erwartet[textByte(z.zeile, z.spalte, 1)] = '\0';
        erwartet[textByte(z.zeile, z.spalte, 2)] = '\0';
    }
    size_t abweichungen = 0;
    for (size_t i = 0; i < datei.size(); ++i) abweichungen += datei[i] != erwartet[i];
    EXPECT_EQ(abweichungen, 0u);
}
