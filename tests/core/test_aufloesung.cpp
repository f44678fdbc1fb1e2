// "Genaue Auflösung": one tune written at many resolutions, with and without a tempo event, in
// 4/4, 6/8, 3/8 and with a pickup bar. Switched on, each file gives the harp-event text of the
// same tune written at 480 ticks per quarter; switched off, the text the conversion has always
// given (pinned by a fingerprint of the whole text, since a 1024-tick file gives pages of it).
#include "settings/UmrechnungDaten.h"
#include "support/MidiBauer.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct Fall {
    const char* name;
    uint16_t ticks;
    bool tempo;
    int zaehler, exponent;  // time signature
    int auftakt;            // sixteenths of a pickup bar, 0 for none
    uint64_t ausgeschaltet; // fingerprint of the text with the switch off
    const char* hinweis;    // the file info's line with the switch on
};

const Fall kFaelle[] = {
    {"1024 ohne Tempo", 1024, false, 4, 2, 0, 17758933639304358377ull, "Auflösung 1024 Ticks pro Viertel, ohne Tempoangabe: genau umgerechnet"},
    {"1024 mit Tempo", 1024, true, 4, 2, 0, 12737180685930424970ull, "Auflösung 1024 Ticks pro Viertel: genau umgerechnet"},
    {"96", 96, true, 4, 2, 0, 4320072139372098150ull, "Auflösung 96 Ticks pro Viertel: genau umgerechnet"},
    {"120", 120, true, 4, 2, 0, 8906790750877805065ull, "Auflösung 120 Ticks pro Viertel: genau umgerechnet"},
    {"220", 220, true, 4, 2, 0, 491884851263339097ull, "Auflösung 220 Ticks pro Viertel: genau umgerechnet"},
    {"256", 256, true, 4, 2, 0, 10955289092688050739ull, "Auflösung 256 Ticks pro Viertel: genau umgerechnet"},
    {"384", 384, true, 4, 2, 0, 16497543305451234309ull, "Auflösung 384 Ticks pro Viertel: genau umgerechnet"},
    {"960", 960, true, 4, 2, 0, 7170605551259138570ull, "Auflösung 960 Ticks pro Viertel: genau umgerechnet"},
    {"6/8 bei 384", 384, true, 6, 3, 0, 9249515153379508780ull, "Auflösung 384 Ticks pro Viertel: genau umgerechnet"},
    {"3/8 bei 96 ohne Tempo", 96, false, 3, 3, 0, 4245801889402349698ull, "Auflösung 96 Ticks pro Viertel, ohne Tempoangabe: genau umgerechnet"},
    {"Auftakt bei 1024 ohne Tempo", 1024, false, 4, 2, 4, 1342138980592717978ull,
     "Auflösung 1024 Ticks pro Viertel, ohne Tempoangabe: genau umgerechnet"},
};

// The tune in sixteenths (start, length, pitch): quarter, eighths, dotted quarter, half, a rest of
// a quarter, dotted eighth and sixteenth, a whole note. Each note is played a quarter of a
// sixteenth short, as a player lifts the finger.
struct Ton {
    int start, laenge, hoehe;
};
const Ton kMelodie[] = {{0, 4, 60},  {4, 2, 62},  {6, 2, 64},  {8, 6, 65},  {14, 2, 64}, {16, 8, 62},
                        {28, 4, 67}, {32, 3, 69}, {35, 1, 67}, {36, 4, 65}, {40, 8, 64}, {48, 16, 60}};

MidiBauer lied(const Fall& f, uint16_t ticks) {
    MidiBauer b(ticks);
    auto tick = [ticks](int sechzehntel) { return uint32_t(sechzehntel) * ticks / 4; };
    MidiSpur& leiter = b.spur();
    if (f.tempo) leiter.tempo(0, 500000);
    if (f.auftakt > 0) leiter.taktart(0, f.auftakt, 4).taktart(tick(f.auftakt), f.zaehler, f.exponent);
    else leiter.taktart(0, f.zaehler, f.exponent);
    leiter.ende();
    MidiSpur& melodie = b.spur().name("Melodie");
    uint32_t zeit = 0;
    for (const Ton& t : kMelodie) {
        melodie.an(tick(t.start) - zeit, 1, t.hoehe);
        zeit = tick(t.start + t.laenge) - ticks / 16;
        melodie.aus(zeit - tick(t.start), 1, t.hoehe);
    }
    melodie.ende();
    return b;
}

struct Ergebnis {
    std::string text, hinweis;
};

// Opened and converted as the window does it: track 2 is preselected.
Ergebnis umrechnen(const MidiBauer& datei, bool genau) {
    ExportUmgebung u;
    u.programm.Umrechnung.genaueAufloesung = genau;
    u.e().MIDIFilePath(datei.schreiben(u.ordner / "lied.mid").string());
    EXPECT_TRUE(u.programm.openMIDIFile(2));
    u.form.zeile = 1;
    u.programm.neuBerechnen();
    return {u.form.klangNotenText, u.programm.aufloesungsHinweis()};
}

uint64_t fingerabdruck(const std::string& s) {
    uint64_t h = 14695981039346656037ull;  // FNV-1a
    for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
    return h;
}

} // namespace

TEST(GenaueAufloesung, JedeAufloesungGibtDenTextBei480AusgeschaltetDenBisherigen) {
    for (const Fall& f : kFaelle) {
        SCOPED_TRACE(f.name);
        const Ergebnis bei480 = umrechnen(lied(f, 480), true);
        EXPECT_EQ(bei480.hinweis, "");
        EXPECT_EQ(umrechnen(lied(f, 480), false).text, bei480.text);  // 480 needs nothing done

        const Ergebnis genau = umrechnen(lied(f, f.ticks), true);
        EXPECT_EQ(genau.text, bei480.text);
        EXPECT_EQ(genau.hinweis, f.hinweis);

        const Ergebnis aus = umrechnen(lied(f, f.ticks), false);
        EXPECT_NE(aus.text, bei480.text);
        EXPECT_EQ(aus.hinweis, "");
        EXPECT_EQ(fingerabdruck(aus.text), f.ausgeschaltet) << aus.text;
    }
}

TEST(GenaueAufloesung, EreignislisteBleibtBeiDenTicksDerDateiUndUmschaltenRechnetNeu) {
    const Fall& f = kFaelle[0];
    ExportUmgebung u;
    u.e().MIDIFilePath(lied(f, 1024).schreiben(u.ordner / "lied.mid").string());
    ASSERT_TRUE(u.programm.openMIDIFile(2));
    u.form.zeile = 1;
    u.programm.neuBerechnen();
    EXPECT_EQ(u.form.klangNotenText, umrechnen(lied(f, 480), true).text);

    // The reader of the event list and of playback: the file's own ticks (the first Note Off
    // comes a quarter less 64 ticks after its Note On).
    Midifile& datei = u.programm.Midifile1;
    EXPECT_EQ(datei.TicksPerQuarterNote(), 1024);
    datei.Track(2);
    datei.Event(3);
    EXPECT_EQ(datei.Time(), 1024 - 64);
    EXPECT_EQ(u.programm.umrechnungsTick(2048), 960);

    u.programm.genaueAufloesungSetzen(false);
    u.programm.neuBerechnen();
    EXPECT_EQ(u.form.klangNotenText, umrechnen(lied(f, 1024), false).text);
    EXPECT_EQ(u.programm.aufloesungsHinweis(), "");
    u.programm.genaueAufloesungSetzen(true);
    u.programm.neuBerechnen();
    EXPECT_EQ(u.form.klangNotenText, umrechnen(lied(f, 480), true).text);
}

TEST(GenaueAufloesung, EigeneEinstellungsdateiNebenDenUserDaten) {
    TestOrdner o;
    std::filesystem::create_directories(o / "data");
    ExportForm form;
    EXPECT_TRUE(CProgramm(o.pfad(), form).Umrechnung.genaueAufloesung);  // no file: on
    umrechnungDatenSchreiben({false}, o.pfad());
    EXPECT_EQ(dateiLesen(o / "data" / "LYRABO_umrechnung.ini"), "GenaueAufloesung=nein\n");
    EXPECT_FALSE(CProgramm(o.pfad(), form).Umrechnung.genaueAufloesung);
    dateiErsetzen(o / "data" / "LYRABO_umrechnung.ini", "GenaueAufloesung=vielleicht\n");
    EXPECT_TRUE(umrechnungDatenLesen(o.pfad()).genaueAufloesung);  // broken: the default
}
