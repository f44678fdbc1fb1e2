// Runs the real lyrabo-cli from a private program folder (its own copy beside its own ini/ and
// data/) and compares what it writes with what the core computes the way the window gets it.
#include "app/core/CProgramm.h"
#include "blattmaler/BlattMaler.h"
#include "blattmaler/BlattPdf.h"
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "midi/EreignisListe.h"
#include "model/Text.h"
#include "settings/BlattDaten.h"
#include "settings/UserDaten.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QXmlStreamReader>

#include <cstdlib>
#include <functional>
#include <set>
#include <sstream>
#include <tuple>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace lyrabo::test {
namespace {

namespace fs = std::filesystem;

std::string lesen(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void schreiben(const fs::path& p, const std::string& bytes) { std::ofstream(p, std::ios::binary) << bytes; }

bool enthaelt(const std::string& text, const std::string& teil) { return text.find(teil) != std::string::npos; }

std::vector<std::string> zeilenVon(const std::string& text) {
    std::vector<std::string> zeilen;
    std::istringstream in(text);
    for (std::string z; std::getline(in, z);) zeilen.push_back(z);
    return zeilen;
}

std::set<std::string> dateienIn(const fs::path& ordner) {
    std::set<std::string> namen;
    for (const auto& e : fs::directory_iterator(ordner)) namen.insert(e.path().filename().string());
    return namen;
}

// The sheet's painter needs a QGuiApplication: made when a test first needs one, gone at the end.
class QtUmgebung : public ::testing::Environment {
public:
    static void bereit() {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        if (!QGuiApplication::instance()) s_qt = std::make_unique<QGuiApplication>(argc, argv);
    }
    void TearDown() override { s_qt.reset(); }

private:
    static inline std::unique_ptr<QGuiApplication> s_qt;
};
const auto* const kQt = ::testing::AddGlobalTestEnvironment(new QtUmgebung);

// The window's flow on one file: after the load the preselected row is converted. Texts are kept
// in Windows-1252, as the command line writes them.
class Kern : public IForm {
public:
    Kern(const fs::path& ordner, const fs::path& midi, int16_t spurNr,
         const std::function<void(CEinstellungen&)>& optionen = {})
        : programm(ordner, *this), spur(spurNr) {
        programm.initGlobals();
        if (optionen) optionen(programm.Einstellungen());
        programm.Einstellungen().MIDIFilePath(midi.string());
        EXPECT_TRUE(programm.openMIDIFile(2));
    }
    void meldung(const std::string&) override {}
    int16_t ausgewaehlteSpurZeile() const override { return static_cast<int16_t>(spur - 1); }
    void setKlangNotenText(const std::string& t) override { text = utf8ZuCp1252(t); }
    void setZwischenablage(const std::string& t) override { zwischenablage = utf8ZuCp1252(t); }
    void nachDateiGeladen() override { programm.neuBerechnen(); }

    CKLNCreator& kln() { return programm.KLNCreator(); }

    // The note sheet as the window's "save as PDF" writes it.
    std::string pdf(const fs::path& ziel, const KlangNotenRef& noten, int16_t spurNr, const blatt::Einstellungen& e) {
        QtUmgebung::bereit();
        EXPECT_EQ(notenblattPdf(programm, noten, spurNr, e, ziel), "");
        return lesen(ziel);
    }

    // The Works database as the save menu writes it: converted once more, then written.
    std::string wdb(const fs::path& ziel) {
        kln().KlangNoten(programm.KlangNoten);
        EXPECT_TRUE(kln().produce(true));
        CWDBCreator& w = programm.WDBCreator();
        w.Akkorde(kln().Akkorde());
        w.KlangNoten(kln().KlangNoten());
        w.Pausen(kln().Pausen());
        w.write_WDB(ziel.string());
        return lesen(ziel);
    }

    CProgramm programm;
    int16_t spur;
    std::string text, zwischenablage;
};

struct Lauf { int code; std::string aus, fehler; };

// Three tracks: tempo 120 with 3/4 and from bar 3 on 6/8; a melody with gaps between its notes;
// a bass. The melody is 5,760 ticks long: two bars of 3/4 and two of 6/8.
MidiBauer lied() {
    MidiBauer b(480);
    b.spur().tempo(0, 500000).taktart(0, 3, 2).taktart(2880, 6, 3).ende();
    auto& m = b.spur().name("Melodie");
    for (int i = 0; i < 12; ++i) m.note(i == 0 ? 0 : 120, 60 + (i % 8), 360);
    m.ende(120);
    b.spur().name("Bass").note(0, 48, 1440).note(0, 50, 1440).note(0, 52, 1440).note(0, 53, 1440).ende();
    return b;
}

// A private program folder with a copy of lyrabo-cli, the templates and an empty data/.
class CliTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::path exe(LYRABO_CLI_EXE);
        fs::create_directories(programm / "data");
        fs::copy_file(exe, programm / exe.filename());
        fs::copy(exe.parent_path() / "ini", programm / "ini", fs::copy_options::recursive);
    }

    fs::path datei(const std::string& name) const { return ordner / name; }
    fs::path midi(const std::string& name, const MidiBauer& b = lied()) const { return b.schreiben(datei(name)); }

    Lauf lauf(const std::vector<std::string>& args) const {
        // No argument of these tests holds a quote.
        std::string befehl = "'" + (programm / fs::path(LYRABO_CLI_EXE).filename()).string() + "'";
        for (const auto& a : args) befehl += " '" + a + "'";
        befehl += " > '" + datei("stdout").string() + "' 2> '" + datei("stderr").string() + "' < /dev/null";
        int rc = std::system(befehl.c_str());
#ifndef _WIN32
        rc = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
#endif
        return {rc, lesen(datei("stdout")), lesen(datei("stderr"))};
    }

    TestOrdner ordner;
    fs::path programm = ordner / "programm";
};

// Each file into the folder under its own name, as the core converts its preselected track; a
// second file of the same name is refused, and the others go on. Nothing temporary is left beside
// the outputs.
TEST_F(CliTest, MehrereDateienInEinenOrdnerGleicherNameWirdAbgelehnt) {
    fs::path eins = midi("eins.mid"), aus = datei("aus");
    MidiBauer b(96, 0);
    b.spur().name("Solo").note(0, 67, 96).note(0, 69, 192).ende();
    fs::path zwei = midi("zwei.mid", b);
    fs::create_directories(datei("b"));
    fs::copy_file(zwei, datei("b") / "eins.mid");

    Lauf l = lauf({"convert", eins.string(), zwei.string(), (datei("b") / "eins.mid").string(), "--ausgabe",
                   aus.string(), "--formate", "harfentext,wdb"});
    EXPECT_EQ(l.code, 2) << l.fehler;
    EXPECT_TRUE(enthaelt(l.fehler, "\"eins\" schon erzeugt")) << l.fehler;
    EXPECT_TRUE(enthaelt(l.fehler, "Daten gespeichert!"));
    EXPECT_TRUE(l.aus.empty());
    EXPECT_EQ(dateienIn(aus), (std::set<std::string>{"eins.txt", "eins.wdb", "zwei.txt", "zwei.wdb"}));
    Kern k1(programm, eins, 2), k2(programm, zwei, 1);
    EXPECT_EQ(lesen(aus / "eins.txt"), k1.text);
    EXPECT_EQ(lesen(aus / "zwei.txt"), k2.text);
    const std::string wdb = k1.wdb(datei("kern.wdb"));
    EXPECT_EQ(lesen(aus / "eins.wdb"), wdb);
    EXPECT_EQ(wdb.size(), 80896u);
    // Windows-1252 with CR LF, as the window's text box holds it.
    EXPECT_TRUE(enthaelt(k1.text, "MIDI-Kan\xE4le, einer\r\n"));
}

TEST_F(CliTest, OptionenSetzenDieEinstellungenWieDieBedienelemente) {
    fs::path pfad = midi("lied.mid");
    Lauf l = lauf({"convert", pfad.string(), "--transpo", "-5", "--quantisierung", "1/8", "--kanal", "1", "--legato",
                   "--hoechster-ton-melodie", "--punktierte-pausen", "--ohne-pausen-letzter-takt", "--saiten", "25",
                   "--felder", "10110110", "--harfentext", datei("h.txt").string(), "--klangnoten", "-", "--wdb",
                   datei("lied.WDB").string()});
    ASSERT_EQ(l.code, 0) << l.fehler;

    Kern k(programm, pfad, 2, [](CEinstellungen& e) {
        e.Transpo(-5);
        e.QuantNotenwert(24);
        e.KanalBelegung(1);
        e.Legato(true);
        e.HoechsterTonMelodie(true);
        e.PunktiertePausen(true);
        e.PausenLetzterTakt(false);
        e.WDBSpaltenAnzahl(25);
    });
    // The field boxes are ticked after the load: the text is refreshed without a new conversion.
    for (int i = 1; i <= 8; ++i)
        k.programm.Einstellungen().ClipExportFlags()->Item(i)->Value(static_cast<int16_t>("10110110"[i - 1] - '0'));
    const std::string harfe = utf8ZuCp1252(k.kln().getHarfeEventString());
    EXPECT_EQ(lesen(datei("h.txt")), harfe);
    EXPECT_TRUE(enthaelt(harfe, "FeldCheck, 10110110"));
    EXPECT_EQ(l.aus, utf8ZuCp1252(k.kln().getKlangNotenString()));
    EXPECT_TRUE(enthaelt(l.aus, "MIDI-Kan\xE4le, E-e=1-6\r\n"));
    const std::string wdb = k.wdb(datei("kern.wdb"));
    EXPECT_EQ(lesen(datei("lied.WDB")), wdb);
    EXPECT_EQ(wdb.size(), 57343u);
}

// Without an output option the text goes to standard output.
TEST_F(CliTest, DieUserDatenGeltenWennKeineOptionSieAendert) {
    fs::path pfad = midi("lied.mid");
    const std::string ini = "\"Default-Ordner = \",\"C:\\Noten\\\"\r\n"
                            "\"HoechsterTonMelodie = \",#FALSE#\r\n"
                            "\"Legato = \",#TRUE#\r\n"
                            "\"PausenLetzterTakt = \",#TRUE#\r\n"
                            "\"PunktiertePausen = \",#FALSE#\r\n";
    schreiben(userDatenPfad(programm), ini);
    Kern mit(programm, pfad, 2), ohne(programm, pfad, 2, [](CEinstellungen& e) { e.Legato(false); });
    ASSERT_NE(mit.text, ohne.text);
    EXPECT_EQ(lauf({"convert", pfad.string()}).aus, mit.text);
    EXPECT_EQ(lauf({"convert", pfad.string(), "--legato=nein"}).aus, ohne.text);
    EXPECT_EQ(lesen(userDatenPfad(programm)), ini);  // only read
}

TEST_F(CliTest, MixErgibtDenTextDerZwischenablageUndWarntBeiPolyphonie) {
    fs::path pfad = midi("lied.mid");
    Lauf l = lauf({"mix", pfad.string(), "--spuren", "3,2", "--harfentext", datei("m.txt").string()});
    ASSERT_EQ(l.code, 0) << l.fehler;
    Kern k(programm, pfad, 2);
    for (int spur : {2, 3}) k.programm.Einstellungen().SpurSelected()->Item(spur)->Value(1);
    k.kln().spurenMischen();
    EXPECT_EQ(lesen(datei("m.txt")), k.zwischenablage);
    EXPECT_TRUE(enthaelt(k.zwischenablage, "HarfeEvent-Export :\r\n"));
    EXPECT_FALSE(enthaelt(l.fehler, "polyphon"));

    MidiBauer b(480);
    b.spur().tempo(0, 500000).ende();
    // The warning looks at the last track converted, so the chords are in the last one.
    b.spur().name("Erste").note(0, 67, 960).ende();
    b.spur().name("Akkorde").an(0, 1, 60).an(0, 1, 64).aus(480, 1, 60).aus(0, 1, 64).note(0, 62, 480).ende();
    Lauf poly = lauf({"mix", midi("poly.mid", b).string(), "--spuren", "2,3"});
    ASSERT_EQ(poly.code, 0) << poly.fehler;
    EXPECT_TRUE(enthaelt(poly.fehler, "Eine der ausgewählten Spuren ist polyphon!\n"
                                      "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
                                      "möglicherweise nicht zum gewünschten Ergebnis,\n"
                                      "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte."))
        << poly.fehler;
    EXPECT_FALSE(poly.aus.empty());
}

// The sheet is the one the window saves: the converted track, or the mixed notes, with the window's
// sheet settings for the harp size and the paper asked for; in a folder NAME.pdf; a text only where
// asked for.
TEST_F(CliTest, NotenblattIstDasDesFensters) {
    fs::path pfad = midi("lied.mid"), aus = datei("aus");
    BlattDaten daten;
    daten.saiten37.mmProViertel = 9;
    daten.saiten37.melodieLinie = false;
    blattDatenSchreiben(daten, programm);
    ASSERT_EQ(lauf({"convert", pfad.string(), "--saiten", "25", "--pdf", datei("a.pdf").string(), "--wdb",
                    datei("a.wdb").string()}).code, 0);
    Lauf a4 = lauf({"convert", pfad.string(), "--pdf", datei("b.pdf").string(), "--papier", "A4", "--hoch",
                    "--saitenabstand", "10,5"});
    Lauf m = lauf({"mix", pfad.string(), "--spuren", "3,2", "--pdf", datei("m.pdf").string()});
    Lauf stapel = lauf({"convert", pfad.string(), "--ausgabe", aus.string(), "--formate", "pdf,harfentext"});
    for (const Lauf& l : {a4, m, stapel}) {
        EXPECT_EQ(l.code, 0) << l.fehler;
        EXPECT_EQ(l.aus, "");
    }
    EXPECT_EQ(dateienIn(aus), (std::set<std::string>{"lied.pdf", "lied.txt"}));

    Kern k25(programm, pfad, 2, [](CEinstellungen& e) { e.WDBSpaltenAnzahl(25); });
    EXPECT_EQ(lesen(datei("a.pdf")), k25.pdf(datei("k25.pdf"), k25.programm.KlangNoten, 2, blatt::standardFuer(25)));
    Kern k(programm, pfad, 2);
    blatt::Einstellungen e = daten.saiten37;
    EXPECT_EQ(lesen(aus / "lied.pdf"), k.pdf(datei("k.pdf"), k.programm.KlangNoten, 2, e));
    EXPECT_EQ(lesen(aus / "lied.txt"), k.text);
    e.papier = blatt::Papier::A4, e.quer = false, e.saitenAbstand = 10.5;
    EXPECT_EQ(lesen(datei("b.pdf")), k.pdf(datei("kb.pdf"), k.programm.KlangNoten, 2, e));
    for (int spur : {2, 3}) k.programm.Einstellungen().SpurSelected()->Item(spur)->Value(1);
    k.kln().spurenMischen();
    const std::string mix = k.pdf(datei("km.pdf"), k.programm.KlangNotenMix, 0, daten.saiten37);
    EXPECT_EQ(lesen(datei("m.pdf")), mix);
    EXPECT_NE(mix, lesen(datei("k.pdf")));
}

// The root of an SVG file: width and height as written, "" when the file is no well-formed XML.
std::pair<std::string, std::string> svgGroesse(const fs::path& p) {
    const std::string bytes = lesen(p);
    QXmlStreamReader xml(QByteArray(bytes.data(), qsizetype(bytes.size())));
    std::pair<std::string, std::string> groesse;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QStringLiteral("svg") && groesse.first.empty())
            groesse = {xml.attributes().value("width").toString().toStdString(),
                       xml.attributes().value("height").toString().toStdString()};
    }
    return xml.hasError() ? std::pair<std::string, std::string>{} : groesse;
}

// SVG: one well-formed file per page, of the page's size in millimetres, DATEI.svg for one page and
// DATEI-1.svg, DATEI-2.svg for more; from the command line the same drawing as the window's.
TEST_F(CliTest, NotenblattAlsSvgEineDateiJeSeite) {
    QtUmgebung::bereit();
    blatt::Blatt zwei;
    zwei.seiten.resize(2);
    zwei.seiten[0].breite = 420, zwei.seiten[0].hoehe = 297;
    zwei.seiten[1].breite = 210, zwei.seiten[1].hoehe = 297;
    for (auto& seite : zwei.seiten) {
        seite.elemente.push_back({blatt::Linie{{10, 10}, {100, 10}, 0.3, {0, 0, 0}}, -1});
        seite.elemente.push_back({blatt::Text{{10, 20}, "Grüße & <Noten>", 12}, -1});
    }
    ASSERT_EQ(blatt::alsSvg(zwei, datei("b.svg"), "Probe"), "");
    EXPECT_FALSE(fs::exists(datei("b.svg")));
    EXPECT_EQ(svgGroesse(datei("b-1.svg")), std::make_pair(std::string("420mm"), std::string("297mm")));
    EXPECT_EQ(svgGroesse(datei("b-2.svg")), std::make_pair(std::string("210mm"), std::string("297mm")));
    zwei.seiten.pop_back();
    ASSERT_EQ(blatt::alsSvg(zwei, datei("e.svg"), "Probe"), "");
    EXPECT_EQ(svgGroesse(datei("e.svg")).first, "420mm");
    // A folder in the file's place: a German message, the folder stays.
    fs::create_directories(datei("ordner.svg") / "drin");
    EXPECT_EQ(blatt::alsSvg(zwei, datei("ordner.svg"), "Probe"), "Das Notenblatt \"ordner.svg\" kann nicht geschrieben werden.");
    EXPECT_TRUE(fs::exists(datei("ordner.svg") / "drin"));

    const fs::path pfad = midi("lied.mid"), aus = datei("aus");
    Lauf l = lauf({"convert", pfad.string(), "--svg", datei("s.svg").string(), "--notenform", "hals"});
    Lauf stapel = lauf({"convert", pfad.string(), "--ausgabe", aus.string(), "--formate", "svg"});
    for (const Lauf& x : {l, stapel}) EXPECT_EQ(x.code, 0) << x.fehler;
    Kern k(programm, pfad, 2);
    size_t seiten = 0;
    blatt::Einstellungen e = blatt::standardFuer(37);
    ASSERT_EQ(notenblattSvg(k.programm, k.programm.KlangNoten, 2, e, datei("k.svg"), &seiten), "");
    e.notenform = blatt::Notenform::Hals;
    ASSERT_EQ(notenblattSvg(k.programm, k.programm.KlangNoten, 2, e, datei("h.svg")), "");
    const auto erwartet = blatt::svgDateien(datei("k.svg"), seiten);
    EXPECT_EQ(dateienIn(aus).size(), seiten);
    for (size_t i = 0; i < seiten; ++i) {
        EXPECT_EQ(lesen(blatt::svgDateien(aus / "lied.svg", seiten)[i]), lesen(erwartet[i]));
        EXPECT_EQ(lesen(blatt::svgDateien(datei("s.svg"), seiten)[i]), lesen(blatt::svgDateien(datei("h.svg"), seiten)[i]));
        EXPECT_EQ(svgGroesse(erwartet[i]), std::make_pair(std::string("420mm"), std::string("297mm")));
    }
}

// A song of 500 notes (chords, rests, lyrics, ties) stays a small file: vector shapes, one font.
TEST_F(CliTest, NotenblattVon500NotenBleibtUnter300KB) {
    MidiBauer b(480);
    b.spur().tempo(0, 500000).taktart(0, 3, 2).ende();
    auto& m = b.spur().name("Lang");
    for (int i = 0, noten = 0; noten < 500; ++i) {
        const int ton = 55 + (i * 7) % 37, dauer = (i % 5 + 1) * 240;
        m.lyric(i % 6 == 0 ? 240 : 0, "la");
        if (i % 4 == 3) {
            m.an(0, 1, ton).an(0, 1, ton - 5).aus(dauer, 1, ton).aus(0, 1, ton - 5);
            noten += 2;
        } else {
            m.note(0, ton, dauer);
            ++noten;
        }
    }
    m.ende();
    const fs::path pdf = datei("lang.pdf");
    Lauf l = lauf({"convert", midi("lang.mid", b).string(), "--pdf", pdf.string()});
    ASSERT_EQ(l.code, 0) << l.fehler;
    EXPECT_LT(fs::file_size(pdf), 300u * 1024);
}

// Info and events report on the file as the core reads it; bars follow the chosen track: the
// melody and the bass are 5,760 ticks long, the tempo track ends at tick 2,880.
TEST_F(CliTest, InfoUndEventsZeigenWasDerKernVonDerDateiWeiss) {
    fs::path pfad = midi("lied.mid");
    Lauf info = lauf({"info", pfad.string()});
    ASSERT_EQ(info.code, 0) << info.fehler;
    for (const char* zeile : {"Format: 1\nTicks pro Viertelnote: 480\nTempo: 120\nSpuren: 3\n",
                              "  Spur 2: Melodie | 26 Ereignisse | tiefster Ton 60, höchster Ton 67\n",
                              "  Spur 3: Bass | 10 Ereignisse | tiefster Ton 48, höchster Ton 53\n"
                              "Melodie vermutlich: Spur 2 (Melodie)\n",
                              "  2. 6/8 ab Takt 3 (Tick 2880)\nTakte: 4\n"})
        EXPECT_TRUE(enthaelt(info.aus, zeile)) << info.aus;
    EXPECT_TRUE(enthaelt(lauf({"info", pfad.string(), "--spur", "1"}).aus, "Takte: 2\n"));

    // Without --spur the preselected second track is listed, row by row as in the window.
    Lauf l = lauf({"events", pfad.string()});
    ASSERT_EQ(l.code, 0) << l.fehler;
    Midifile m;
    m.ladenAusBytes(lied().bytes(), "lied.mid");
    auto zeilen = zeilenVon(l.aus);
    auto erwartet = DisplayTrackZeilen(m, 2);
    ASSERT_EQ(zeilen.size(), erwartet.size());
    for (size_t i = 0; i < zeilen.size(); ++i) EXPECT_EQ(zeilen[i].substr(0, zeilen[i].find('\t')), erwartet[i]);
    // Then time, message, data 1 and 2, the bytes and the event's text; row 3 is the first Note Off.
    EXPECT_EQ(zeilen[2], "Note Off 80\t360\t128\t60\t64\t80 3C 40\t");
    EXPECT_EQ(zeilenVon(lauf({"events", pfad.string(), "--spur", "2", "--hex"}).aus).at(2),
              "Note Off 80\t168\t80\t3C\t40\t80 3C 40\t");

    MidiBauer b(480);
    auto& s = b.spur();
    for (int i = 0; i < 600; ++i) s.note(0, 60, 10);
    EXPECT_EQ(zeilenVon(lauf({"events", midi("lang.mid", b).string(), "--spur", "1"}).aus).size(), 500u);
}

// The broken file of the fuzzer's first finding (its row in tests/core/test_fuzzfunde.cpp) and a
// RIFF-wrapped song cut at every byte: `info` and `convert` give exit code 3 and one German line
// per file naming it, and write nothing; the whole song after them converts.
TEST_F(CliTest, AbgeschnitteneRiffDateienGebenEineDeutscheMeldung) {
    std::vector<std::pair<std::string, std::string>> kaputt = {
        {datei("fund.mid").string(), "Byte 20: Dem RIFF-Block \"????\" fehlt das Füllbyte am Ende."}};
    schreiben(kaputt[0].first, ausHex("52 49 46 46 4D 5C 68 64 52 4D 49 44 41 81 41 00 00 00 00 00 00 00 00 EA 03 00 00 00 00 00 00"));
    const std::string smf = lied().bytes();
    const std::string rmid = "RMIDLIST" + le32(3) + "abc" + '\0' + "data" + le32(smf.size()) + smf;
    const std::string riff = "RIFF" + le32(rmid.size()) + rmid;
    // Cut anywhere, it is broken; only a pad byte after odd data may go missing.
    for (size_t n = 0; n < riff.size() - (smf.size() & 1); ++n) {
        kaputt.emplace_back(datei("ab" + std::to_string(n) + ".mid").string(), "");
        schreiben(kaputt.back().first, riff.substr(0, n));
    }
    const std::string ganz = datei("ganz.mid").string();
    schreiben(ganz, riff);

    std::vector<std::string> dateien;
    for (const auto& k : kaputt) dateien.push_back(k.first);
    dateien.push_back(ganz); // after all of them, and still converted
    auto mit = [&](std::vector<std::string> args) {
        args.insert(args.begin() + 1, dateien.begin(), dateien.end());
        return lauf(args);
    };
    for (const Lauf& l : {mit({"info"}), mit({"convert", "--ausgabe", datei("aus").string()})}) {
        EXPECT_EQ(l.code, 3);
        auto zeilen = zeilenVon(l.fehler);
        std::erase(zeilen, "Daten gespeichert!");
        ASSERT_EQ(zeilen.size(), kaputt.size()) << l.fehler;
        for (size_t i = 0; i < zeilen.size(); ++i) {
            const auto& [pfad, meldung] = kaputt[i];
            const std::string anfang = pfad + ": Die Datei \"" + pfad + "\" ist keine gültige MIDI-Datei: ";
            ASSERT_EQ(zeilen[i].rfind(anfang, 0), 0u) << zeilen[i];
            const std::string rest = zeilen[i].substr(anfang.size());
            EXPECT_TRUE(enthaelt(rest, meldung)) << rest;
            // Nothing of a library's English text.
            for (const char* englisch : {"std::", "basic_", "__", "size", "range", "error", "Unerwartet"})
                EXPECT_FALSE(enthaelt(rest, englisch)) << rest;
        }
    }
    EXPECT_EQ(dateienIn(datei("aus")), (std::set<std::string>{"ganz.txt", "ganz.klangnoten.txt", "ganz.wdb"}));
}

// Exit codes: 2 a wrong call, 3 a file that cannot be read, 4 a conversion that fails, 5 an output
// that cannot be written. Whatever fails, the text already there stays as it was.
TEST_F(CliTest, FehlschlaegeGebenIhrenCodeUndLassenVorhandeneDateienUnberuehrt) {
    const std::string lied_ = midi("lied.mid").string(), h = datei("h.txt").string(), pdf = datei("p.pdf").string(),
                      svg = datei("s.svg").string();
    schreiben(h, "alt");
    schreiben(pdf, "alt");
    fs::create_directories(pdf + ".lyrabo-tmp/belegt");  // the sheet's temporary file cannot be made
    MidiBauer b(480);
    b.spur().name("Eins").note(0, 60, 480).aus(0, 1, 62).ende();  // a note ends that never started
    const std::string noten = midi("noten.mid", b).string();
    MidiBauer leer(480), weit(480);
    leer.spur().name("Leer").ende();
    weit.spur().name("Weit").note(0, 40, 480).note(0, 90, 480).ende();
    const std::string ohneNoten = midi("leer.mid", leer).string(), zuWeit = midi("weit.mid", weit).string();
    fs::path gesperrt = datei("gesperrt");
    fs::create_directories(gesperrt);
    fs::permissions(gesperrt, fs::perms::owner_read | fs::perms::owner_exec);
    // Someone who may write anyway (the administrator) gets a plain file in the folder's place.
    if (std::ofstream(gesperrt / "probe")) {
        fs::remove_all(gesperrt);
        schreiben(gesperrt, "eine Datei, kein Ordner");
    }

    const std::vector<std::tuple<std::vector<std::string>, int, std::string>> faelle = {
        {{}, 2, "Kein Befehl"},
        {{"convert", lied_, "--quantisierung", "1/3"}, 2, "1/2p"},
        {{"convert", lied_, lied_}, 2, "--ausgabe"},
        {{"convert", lied_, "--harfentext", "-", "--klangnoten", "-"}, 2, "Standardausgabe"},
        {{"convert", datei("fehlt.mid").string(), "--harfentext", h}, 3, "fehlt.mid"},
        {{"convert", lied_, "--spur", "4", "--harfentext", h}, 2, "Die Spur 4 gibt es nicht; die Datei hat 3 Spuren."},
        {{"events", noten, "--spur", "2"}, 2, "Die Spur 2 gibt es nicht; die Datei hat 1 Spur."},
        {{"mix", lied_, "--spuren", "2,9", "--harfentext", h}, 2, "Die Spur 9 gibt es nicht"},
        {{"convert", lied_, "--wdb", datei("lied.doc").string(), "--harfentext", h}, 2, "Falsche Dateiendung!"},
        {{"convert", noten, "--spur", "1", "--harfentext", h}, 4, "MIDI-File ist nicht in Ordnung."},
        {{"convert", ohneNoten, "--spur", "melodie", "--harfentext", h}, 4, "enthält Noten, also auch keine Melodie"},
        {{"convert", zuWeit, "--transpo", "passend", "--harfentext", h}, 4, "von E bis fis''' sind es 51 Töne"},
        {{"convert", lied_, "--begleitung", "3,9", "--pdf", pdf}, 2, "Die Spur 9 gibt es nicht"},
        {{"convert", lied_, "--begleitung", "3", "--harfentext", h}, 2, "nur zusammen mit --pdf"},
        {{"convert", lied_, "--harfentext", (gesperrt / "h.txt").string()}, 5, ""},
        {{"convert", lied_, "--wdb", (gesperrt / "x.wdb").string()}, 5, ""},
        {{"convert", lied_, "--ausgabe", (gesperrt / "unter").string()}, 5, ""},
        {{"convert", lied_, "--pdf", pdf, "--saitenabstand", "9"}, 2, "zwischen 10 und 14 Millimetern"},
        {{"convert", lied_, "--papier", "A5", "--pdf", pdf}, 2, "A4 oder A3"},
        {{"convert", lied_, "--quer", "--harfentext", h}, 2, "nur zusammen mit --pdf"},
        {{"convert", lied_, "--kurze-pausen", "nein", "--harfentext", h}, 2, "nur zusammen mit --pdf"},
        {{"convert", lied_, "--notenform", "stiel", "--svg", svg}, 2, "harfe oder hals"},
        {{"convert", lied_, "--einpassen", "vielleicht", "--pdf", pdf}, 2, "ja oder nein"},
        {{"convert", lied_, "--ausgabe", "x", "--svg", svg}, 2, "--formate mit svg"},
        {{"convert", lied_, "--svg", (gesperrt / "s.svg").string()}, 5, "s.svg"},
        {{"mix", lied_, "--spuren", "2", "--ausgabe", "x", "--formate", "pdf,wdb"}, 2, "mix schreibt nur"},
        {{"convert", lied_, "--pdf", pdf}, 5, "Das Notenblatt \"p.pdf\" kann nicht geschrieben werden."},
        {{"mix", lied_, "--spuren", "2", "--pdf", (gesperrt / "m.pdf").string()}, 5, "m.pdf"},
    };
    for (const auto& [args, code, meldung] : faelle) {
        Lauf l = lauf(args);
        SCOPED_TRACE(::testing::PrintToString(args));
        EXPECT_EQ(l.code, code) << l.fehler;
        EXPECT_FALSE(l.fehler.empty());
        EXPECT_TRUE(enthaelt(l.fehler, meldung)) << l.fehler;
        EXPECT_TRUE(l.aus.empty());
    }
    EXPECT_EQ(lesen(h), "alt");
    EXPECT_EQ(lesen(pdf), "alt");
    EXPECT_FALSE(fs::exists(datei("lied.doc")));
    EXPECT_TRUE(!fs::is_directory(gesperrt) || fs::is_empty(gesperrt));
}

} // namespace
} // namespace lyrabo::test

namespace lyrabo::test {
namespace {

// Without the switch the exact resolution (the window's default); info says when it changes anything,
// the event list stays at the file's ticks.
TEST_F(CliTest, GenaueAufloesungIstVorgabeUndInfoSagtEs) {
    MidiBauer b(1024);
    b.spur().name("Solo").note(0, 67, 1024).note(0, 69, 2048).ende();
    const std::string pfad = midi("solo.mid", b).string();
    const std::string zeile = "Aufl\xC3\xB6sung 1024 Ticks pro Viertel, ohne Tempoangabe: genau umgerechnet\n";
    EXPECT_TRUE(enthaelt(lauf({"info", pfad}).aus, zeile));
    EXPECT_FALSE(enthaelt(lauf({"info", pfad, "--genaue-aufloesung=nein"}).aus, zeile));
    const Lauf ohne = lauf({"convert", pfad});
    EXPECT_TRUE(enthaelt(ohne.aus, ", 69, 960,")) << ohne.aus;  // the half note, at 480 to the quarter
    EXPECT_EQ(lauf({"convert", pfad, "--genaue-aufloesung"}).aus, ohne.aus);
    EXPECT_NE(lauf({"convert", pfad, "--genaue-aufloesung=nein"}).aus, ohne.aus);
    // The event list keeps the file's own ticks: the Note Off a quarter after its Note On.
    EXPECT_TRUE(enthaelt(lauf({"events", pfad}).aus, "Note Off 80\t1024\t128\t67\t"));
}

} // namespace
} // namespace lyrabo::test
