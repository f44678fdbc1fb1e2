// "Genaue Auflösung": one tune at many resolutions, with and without tempo event, in 4/4, 6/8, 3/8 and with a
// pickup bar, gives switched on the harp-event text of the tune at 480 ticks; switched off the text it always
// gave (pinned by a fingerprint: the texts are long).
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
    int zaehler, exponent, auftakt;  // time signature; sixteenths of a pickup bar
    uint64_t ausgeschaltet;          // fingerprint of the text with the switch off
    const char* hinweis;             // the file info's line with the switch on
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

// In sixteenths (start, length, pitch): quarter, eighths, dotted quarter, half, a quarter rest, dotted eighth and
// sixteenth, whole; each played a quarter of a sixteenth short, as a player lifts the finger.
struct Ton { int start, laenge, hoehe; };
const Ton kMelodie[] = {{0, 4, 60},  {4, 2, 62},  {6, 2, 64},  {8, 6, 65},  {14, 2, 64}, {16, 8, 62},
                        {28, 4, 67}, {32, 3, 69}, {35, 1, 67}, {36, 4, 65}, {40, 8, 64}, {48, 16, 60}};

MidiBauer lied(const Fall& f, uint16_t ticks) {
    MidiBauer b(ticks);
    auto tick = [ticks](int sechzehntel) { return uint32_t(sechzehntel) * ticks / 4; };
    MidiSpur& leiter = b.spur();
    if (f.tempo) leiter.tempo(0, 500000);
    if (f.auftakt > 0) leiter.taktart(0, f.auftakt, 4);  // a bar of so many sixteenths
    leiter.taktart(tick(f.auftakt), f.zaehler, f.exponent).ende();
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

// Opened and converted as the window does it (track 2 preselected): the text and the file info's line.
struct Umgerechnet : ExportUmgebung {
    Umgerechnet(const MidiBauer& datei, bool genau) {
        programm.Umrechnung.genaueAufloesung = genau;
        e().MIDIFilePath(datei.schreiben(ordner / "lied.mid").string());
        EXPECT_TRUE(programm.openMIDIFile(2));
        form.zeile = 1;
        programm.neuBerechnen();
        text = form.klangNotenText;
        hinweis = programm.aufloesungsHinweis();
    }
    std::string text, hinweis;
};

uint64_t fingerabdruck(const std::string& s) {  // FNV-1a
    uint64_t h = 14695981039346656037ull;
    for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
    return h;
}

} // namespace

TEST(GenaueAufloesung, JedeAufloesungGibtDenTextBei480AusgeschaltetDenBisherigen) {
    for (const Fall& f : kFaelle) {
        SCOPED_TRACE(f.name);
        const Umgerechnet bei480(lied(f, 480), true), genau(lied(f, f.ticks), true), aus(lied(f, f.ticks), false);
        EXPECT_EQ(Umgerechnet(lied(f, 480), false).text, bei480.text);  // 480 needs nothing done
        EXPECT_EQ(bei480.hinweis, "");
        EXPECT_EQ(genau.text, bei480.text);
        EXPECT_EQ(genau.hinweis, f.hinweis);
        EXPECT_EQ(aus.hinweis, "");
        EXPECT_EQ(fingerabdruck(aus.text), f.ausgeschaltet) << aus.text;
    }
}

TEST(GenaueAufloesung, EigeneEinstellungsdateiNebenDenUserDaten) {
    TestOrdner o;
    ExportForm form;
    EXPECT_TRUE(CProgramm(o.pfad(), form).Umrechnung.genaueAufloesung);  // no file: on
    std::filesystem::create_directories(o / "data");
    umrechnungDatenSchreiben({false}, o.pfad());
    EXPECT_EQ(dateiLesen(o / "data" / "LYRABO_umrechnung.ini"), "GenaueAufloesung=nein\n");
    EXPECT_FALSE(CProgramm(o.pfad(), form).Umrechnung.genaueAufloesung);
    dateiErsetzen(o / "data" / "LYRABO_umrechnung.ini", "GenaueAufloesung=vielleicht\n");
    EXPECT_TRUE(umrechnungDatenLesen(o.pfad()).genaueAufloesung);  // broken: the default
}
