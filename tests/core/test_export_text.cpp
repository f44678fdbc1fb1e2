// The KlangNoten table and the harp-event text, compared byte for byte with texts worked out by hand.
#include "engine/CKLNCreator.h"
#include "export/TextExport.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

std::shared_ptr<CHarfeEvent> ev(int16_t art, int16_t akkordNr, int32_t start, int16_t ton, int32_t laenge,
                                const std::string& text = "", int16_t spur = 0) {
    auto e = std::make_shared<CHarfeEvent>();
    e->Art(art);
    e->AkkordNr(akkordNr);
    e->StartZeit(start);
    e->TonHoehe(ton);
    e->Laenge(laenge);
    e->MsgText(text);
    e->Spur(spur);
    return e;
}

void taktart(CProgramm& p, int16_t zaehler, int16_t nenner, int32_t abs) {
    auto ts = std::make_shared<CTimeSignature>();
    ts->ID(static_cast<int16_t>(p.TimeSignatures()->Count() + 1));
    ts->Numerator(zaehler);
    ts->Denominator(nenner);
    ts->ABSTime(abs);
    p.TimeSignatures()->Add(ts);
}

// A short tune in 4/4 at 480 ticks: a leading rest, a note with a lyric and the rest after it
// (which carries the lyric on), a whole note in bar 2, and a note past the last known bar.
struct HarfenLied : ExportUmgebung {
    HarfenLied() {
        e().TicksPerQuarterNote(480);
        e().Tempo(120);
        taktLaengen({1920, 1920, 1920});
        taktart(programm, 4, 4, 0);
        auto& h = *programm.HarfeEvents;
        h.Add(ev(3, 0, 0, 60, 480));
        h.Add(ev(1, 1, 480, 62, 480, "la", 1));
        h.Add(ev(3, 1, 960, 62, 960, "la", 1));
        h.Add(ev(1, 2, 1920, 64, 1920, "", 1));
        h.Add(ev(1, 3, 5760, 67, 1920, "", 1));
    }
    std::string text(bool monoton) { return harfeEventText(e(), *programm.TimeSignatures(), *programm.HarfeEvents, monoton); }
};

const std::string kLiedKopf = "HarfeEvent-Export :\r\n"
                              "Anzahl der Taktarten, 1\r\n"
                              "1. Taktart: 4/4 | Beginn: 1. Takt\r\n"
                              "TicksPerQuarterNote,  480\r\n"
                              "Tempo,  120\r\n"
                              "Transpo, 0\r\n"
                              "Anzahl,  5\r\n"
                              "MIDI-Kanäle, einer\r\n";

} // namespace

TEST(HarfeEventText, EinstimmigLaengeSpurUndTextInDieserFolge) {
    HarfenLied lied;
    lied.e().Transpo(5);        // never shown: the events carry the transposed pitches
    lied.e().KanalBelegung(2);  // never shown either: always one channel
    EXPECT_EQ(lied.text(true), kLiedKopf + "FeldCheck, 11110111"
                                           "\r\n----- Takt  1 / 1920 Ticks -----"
                                           "\r\n 1, 0, 3, 0, 60, 480, 0,,"
                                           "\r\n 2, 1, 1, 480, 62, 480, 1,la,"
                                           "\r\n 3, 1, 3, 960, 62, 960, 1,la,"
                                           "\r\n----- Takt  2 / 1920 Ticks -----"
                                           "\r\n 4, 2, 1, 1920, 64, 1920, 1,,"
                                           "\r\n 5, 3, 1, 5760, 67, 1920, 1,,");
}

TEST(HarfeEventText, MehrstimmigLaengeMitTextUndKonstanterEins) {
    HarfenLied lied;
    EXPECT_EQ(lied.text(false), kLiedKopf + "FeldCheck, 11110111"
                                            "\r\n----- Takt  1 / 1920 Ticks -----"
                                            "\r\n 1, 0, 3, 0, 60, 480,, 1,"
                                            "\r\n 2, 1, 1, 480, 62, 480,la, 1,"
                                            "\r\n 3, 1, 3, 960, 62, 960,la, 1,"
                                            "\r\n----- Takt  2 / 1920 Ticks -----"
                                            "\r\n 4, 2, 1, 1920, 64, 1920,, 1,"
                                            "\r\n 5, 3, 1, 5760, 67, 1920,, 1,");
}

TEST(HarfeEventText, SchalterEntscheidenUeberDieFelder) {
    HarfenLied lied;
    const std::string taktZeilen1 = "\r\n----- Takt  1 / 1920 Ticks -----";
    const std::string taktZeilen2 = "\r\n----- Takt  2 / 1920 Ticks -----";

    // Without any field the bar lines stay; switch 5 alone has no field.
    for (const char* f : {"00000000", "00001000"}) {
        lied.flags(f);
        EXPECT_EQ(lied.text(true), kLiedKopf + "FeldCheck, " + f + taktZeilen1 + taktZeilen2) << f;
        EXPECT_EQ(lied.text(false), kLiedKopf + "FeldCheck, " + f + taktZeilen1 + taktZeilen2) << f;
    }

    // Switch 8 alone, one voice: the length before and the lyric after the (missing) track field.
    lied.flags("00000001");
    EXPECT_EQ(lied.text(true), kLiedKopf + "FeldCheck, 00000001" + taktZeilen1 + "\r\n 480,,\r\n 480,la,\r\n 960,la," +
                                   taktZeilen2 + "\r\n 1920,,\r\n 1920,,");
    // ... several voices: only the constant.
    EXPECT_EQ(lied.text(false), kLiedKopf + "FeldCheck, 00000001" + taktZeilen1 + "\r\n 1,\r\n 1,\r\n 1," + taktZeilen2 +
                                    "\r\n 1,\r\n 1,");
    // Switch 7 alone: the track (one voice) or length and lyric (several voices).
    lied.flags("00000010");
    EXPECT_EQ(lied.text(true), kLiedKopf + "FeldCheck, 00000010" + taktZeilen1 + "\r\n 0,\r\n 1,\r\n 1," + taktZeilen2 +
                                   "\r\n 1,\r\n 1,");
    EXPECT_EQ(lied.text(false), kLiedKopf + "FeldCheck, 00000010" + taktZeilen1 + "\r\n 480,,\r\n 480,la,\r\n 960,la," +
                                    taktZeilen2 + "\r\n 1920,,\r\n 1920,,");
}

TEST(HarfeEventText, OhneEreignisseBeginnenDieTaktartenInTicks) {
    ExportUmgebung u;
    u.e().TicksPerQuarterNote(96);
    taktart(u.programm, 3, 4, 0);
    taktart(u.programm, 6, 8, 2880);
    u.programm.KLNCreator().IsMonoton(false);
    EXPECT_EQ(u.programm.KLNCreator().getHarfeEventString(),
              "HarfeEvent-Export :\r\n"
              "Anzahl der Taktarten, 2\r\n"
              "1. Taktart: 3/4 | Beginn: 0. Ticks\r\n"
              "2. Taktart: 6/8 | Beginn: 2880. Ticks\r\n"
              "TicksPerQuarterNote,  96\r\n"
              "Tempo,  0\r\n"
              "Transpo, 0\r\n"
              "Anzahl,  0\r\n"
              "MIDI-Kanäle, einer\r\n"
              "FeldCheck, 11110111");
}

TEST(HarfeEventText, TaktartenMitEreignissenInTaktenUndNegativeZahlen) {
    ExportUmgebung u;
    u.taktLaengen({1440, 1440, 1920});
    taktart(u.programm, 3, 4, 0);
    taktart(u.programm, 4, 4, 2880);
    u.flags("00010000");
    u.programm.HarfeEvents->Add(ev(1, 1, -5, 60, 480));   // before the first bar: lookup 0, no bar line
    u.programm.HarfeEvents->Add(ev(1, 2, 2880, 62, 480));
    u.programm.HarfeEvents->Add(ev(1, 3, 1500, 64, 480)); // an earlier bar after a later one: no bar line
    EXPECT_EQ(harfeEventText(u.e(), *u.programm.TimeSignatures(), *u.programm.HarfeEvents, true),
              "HarfeEvent-Export :\r\n"
              "Anzahl der Taktarten, 2\r\n"
              "1. Taktart: 3/4 | Beginn: 1. Takt\r\n"
              "2. Taktart: 4/4 | Beginn: 3. Takt\r\n"
              "TicksPerQuarterNote,  480\r\n"
              "Tempo,  0\r\n"
              "Transpo, 0\r\n"
              "Anzahl,  3\r\n"
              "MIDI-Kanäle, einer\r\n"
              "FeldCheck, 00010000"
              "\r\n-5,"
              "\r\n----- Takt  3 / 1920 Ticks -----"
              "\r\n 2880,"
              "\r\n 1500,");
}

namespace {

struct KlangNotenTabelle : ExportUmgebung {
    SammlungRef<CKlangNote> noten = neueSammlung<CKlangNote>();
    SammlungRef<CAkkord> akkorde = neueSammlung<CAkkord>();
    KlangNotenTabelle() {
        e().TicksPerQuarterNote(480);
        e().Numerator(4);
        e().Denominator(2);
        e().Tempo(100);
        auto a = note(60, 480, 0, 1);
        a->ID(1);
        a->Kanal(1);
        auto b = note(64, 480, 0, 1);
        b->ID(2);
        b->Kanal(2);
        auto c = note(67, 240, -30, 2);
        c->ID(3);
        c->Kanal(1);
        auto ohneAkkord = note(72, 240, 960);
        for (const auto& n : {a, b, c, ohneAkkord}) noten->Add(n);
        akkorde->Add(akkord({a, b}));
        akkorde->Add(akkord({c}));
    }
    std::string text() { return klangNotenText(e(), *noten, *akkorde); }
    std::string kopf(const std::string& kanaele) {
        return "KlangNoten-Export :\r\n"
               "Numerator,  4\r\n"
               "Denominator,  2\r\n"
               "TicksPerQuarterNote,  480\r\n"
               "Tempo,  100\r\n"
               "Transpo, 0\r\n"
               "Anzahl,  4\r\n"
               "MIDI-Kanäle, " + kanaele + "\r\n";
    }
};

} // namespace

TEST(KlangNotenText, ZeilenAusDenAkkordenAnzahlAusDenNoten) {
    KlangNotenTabelle t;
    t.e().Transpo(-12);
    EXPECT_EQ(t.text(), t.kopf("einer") + "FeldCheck, 11110111"
                                          "\r\n 1, 1, 0, 60, 480, 1,"
                                          "\r\n 2, 1, 0, 64, 480, 2,"
                                          "\r\n 3, 2,-30, 67, 240, 1,");
}

TEST(KlangNotenText, KanalWortUndSchalterOhneFeld) {
    KlangNotenTabelle t;
    const std::pair<int16_t, std::string> woerter[] = {{1, "E-e=1-6"}, {2, "E-e=6-1"}, {3, ""}, {-1, ""}};
    t.flags("00000000");
    for (const auto& [belegung, wort] : woerter) {
        t.e().KanalBelegung(belegung);
        EXPECT_EQ(t.text(), t.kopf(wort) + "FeldCheck, 00000000");
    }
    // Switches 3 and 5 show as ticked but have no field: no note line at all.
    t.e().KanalBelegung(0);
    t.flags("00101000");
    EXPECT_EQ(t.text(), t.kopf("einer") + "FeldCheck, 00101000");
    t.flags("10000001");
    EXPECT_EQ(t.text(), t.kopf("einer") + "FeldCheck, 10000001\r\n 1, 1,\r\n 2, 2,\r\n 3, 1,");
}
