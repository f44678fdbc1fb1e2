// lyrabo-cli convert and mix: the same texts and database as the window, written safely.
#include "CliUmgebung.h"

#include "settings/CEinstellungen.h"
#include "settings/UserDaten.h"

#include <algorithm>

namespace lyrabo::test {
namespace {

bool enthaelt(const std::string& text, const std::string& teil) { return text.find(teil) != std::string::npos; }

// Every line feed follows a carriage return.
bool nurCrLf(const std::string& t) {
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i] == '\n' && (i == 0 || t[i - 1] != '\r')) return false;
    return true;
}

std::vector<std::string> dateienIn(const fs::path& ordner) {
    std::vector<std::string> namen;
    for (const auto& e : fs::directory_iterator(ordner)) namen.push_back(e.path().filename().string());
    std::sort(namen.begin(), namen.end());
    return namen;
}

// A file whose only track lets a note end that never started.
MidiBauer kaputteNoten() {
    MidiBauer b(480);
    b.spur().name("Eins").note(0, 60, 480).aus(0, 1, 62).ende();
    return b;
}

using UmsetzenTest = CliTest;

TEST_F(UmsetzenTest, ConvertSchreibtWasDerKernFuerDieVorgewaehlteSpurErgibt) {
    fs::path pfad = midi("lied.mid", lied());
    Lauf l = lauf({"convert", pfad.string(), "--harfentext", datei("h.txt").string(), "--klangnoten",
                   datei("k.txt").string(), "--wdb", datei("lied.wdb").string()});
    ASSERT_EQ(l.code, 0) << l.fehler;
    EXPECT_TRUE(l.aus.empty());
    EXPECT_TRUE(enthaelt(l.fehler, "Daten gespeichert!"));

    Kern k = kern(pfad, 2);
    ASSERT_TRUE(k.geladen);
    const std::string harfe = utf8ZuCp1252(k.form.text);
    const std::string klang = utf8ZuCp1252(k.kln().getKlangNotenString());
    const std::string wdb = k.wdb(datei("kern.wdb"));

    EXPECT_EQ(lesen(datei("h.txt")), harfe);
    EXPECT_EQ(lesen(datei("k.txt")), klang);
    EXPECT_EQ(lesen(datei("lied.wdb")), wdb);

    // Windows-1252 with CR LF, as the window's text box holds it.
    std::string h = lesen(datei("h.txt"));
    EXPECT_EQ(h.rfind("HarfeEvent-Export :\r\n", 0), 0u);
    EXPECT_TRUE(enthaelt(h, "MIDI-Kan\xE4le, einer\r\n"));
    EXPECT_TRUE(enthaelt(h, "----- Takt  3 / 1440 Ticks -----"));
    EXPECT_TRUE(nurCrLf(h));
    EXPECT_EQ(lesen(datei("k.txt")).rfind("KlangNoten-Export :\r\n", 0), 0u);
    EXPECT_EQ(wdb.size(), 80896u);

    // Nothing temporary is left beside the outputs.
    EXPECT_EQ(dateienIn(arbeit()), (std::vector<std::string>{"h.txt", "k.txt", "kern.wdb", "lied.mid", "lied.wdb"}));
}

TEST_F(UmsetzenTest, ConvertOhneZielOderMitStrichSchreibtAufDieStandardausgabe) {
    fs::path pfad = midi("lied.mid", lied());
    Kern k = kern(pfad, 2);
    const std::string harfe = utf8ZuCp1252(k.form.text);
    const std::string klang = utf8ZuCp1252(k.kln().getKlangNotenString());

    Lauf ohne = lauf({"convert", pfad.string()});
    ASSERT_EQ(ohne.code, 0) << ohne.fehler;
    EXPECT_EQ(ohne.aus, harfe);
    Lauf strich = lauf({"convert", pfad.string(), "--klangnoten", "-"});
    ASSERT_EQ(strich.code, 0) << strich.fehler;
    EXPECT_EQ(strich.aus, klang);
}

TEST_F(UmsetzenTest, OptionenSetzenDieEinstellungenWieDieBedienelemente) {
    fs::path pfad = midi("lied.mid", lied());
    Lauf l = lauf({"convert", pfad.string(), "--transpo", "-5", "--quantisierung", "1/8", "--kanal", "1", "--legato",
                   "--hoechster-ton-melodie", "--punktierte-pausen", "--ohne-pausen-letzter-takt", "--saiten", "25",
                   "--felder", "10110110", "--harfentext", datei("h.txt").string(), "--klangnoten",
                   datei("k.txt").string(), "--wdb", datei("lied.WDB").string()});
    ASSERT_EQ(l.code, 0) << l.fehler;

    Kern k = kern(pfad, 2, [](CEinstellungen& e) {
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
    const std::string felder = "10110110";
    for (int i = 1; i <= 8; ++i)
        k.programm.Einstellungen().ClipExportFlags()->Item(i)->Value(static_cast<int16_t>(felder[size_t(i - 1)] - '0'));
    const std::string harfe = utf8ZuCp1252(k.kln().getHarfeEventString());
    const std::string klang = utf8ZuCp1252(k.kln().getKlangNotenString());
    const std::string wdb = k.wdb(datei("kern.wdb"));

    EXPECT_EQ(lesen(datei("h.txt")), harfe);
    EXPECT_TRUE(enthaelt(harfe, "FeldCheck, 10110110"));
    EXPECT_EQ(lesen(datei("k.txt")), klang);
    EXPECT_TRUE(enthaelt(klang, "MIDI-Kan\xE4le, E-e=1-6\r\n"));
    EXPECT_EQ(lesen(datei("lied.WDB")), wdb);
    EXPECT_EQ(wdb.size(), 57343u);

    // Without options the text is another one.
    Lauf ohne = lauf({"convert", pfad.string()});
    EXPECT_NE(ohne.aus, harfe);
}

TEST_F(UmsetzenTest, DieUserDatenGeltenWennKeineOptionSieAendert) {
    fs::path pfad = midi("lied.mid", lied());
    const std::string ini = "\"Default-Ordner = \",\"C:\\Noten\\\"\r\n"
                            "\"HoechsterTonMelodie = \",#FALSE#\r\n"
                            "\"Legato = \",#TRUE#\r\n"
                            "\"PausenLetzterTakt = \",#TRUE#\r\n"
                            "\"PunktiertePausen = \",#FALSE#\r\n";
    schreiben(userDatenPfad(programm()), ini);

    Lauf legato = lauf({"convert", pfad.string()});
    Lauf ohneLegato = lauf({"convert", pfad.string(), "--legato=nein"});
    ASSERT_EQ(legato.code, 0) << legato.fehler;
    ASSERT_EQ(ohneLegato.code, 0) << ohneLegato.fehler;

    Kern mit = kern(pfad, 2);
    ASSERT_TRUE(mit.programm.Einstellungen().Legato());
    Kern ohne = kern(pfad, 2, [](CEinstellungen& e) { e.Legato(false); });
    EXPECT_EQ(legato.aus, utf8ZuCp1252(mit.form.text));
    EXPECT_EQ(ohneLegato.aus, utf8ZuCp1252(ohne.form.text));
    EXPECT_NE(legato.aus, ohneLegato.aus);

    // The command line only reads the file.
    EXPECT_EQ(lesen(userDatenPfad(programm())), ini);
}

TEST_F(UmsetzenTest, MixErgibtDenTextDerZwischenablage) {
    fs::path pfad = midi("lied.mid", lied());
    Lauf l = lauf({"mix", pfad.string(), "--spuren", "3,2", "--harfentext", datei("m.txt").string()});
    ASSERT_EQ(l.code, 0) << l.fehler;

    Kern k = kern(pfad, 2);
    k.programm.Einstellungen().SpurSelected()->Item(2)->Value(1);
    k.programm.Einstellungen().SpurSelected()->Item(3)->Value(1);
    k.kln().spurenMischen();
    const std::string erwartet = utf8ZuCp1252(k.form.zwischenablage);
    EXPECT_EQ(lesen(datei("m.txt")), erwartet);
    EXPECT_TRUE(enthaelt(erwartet, "HarfeEvent-Export :\r\n"));
    EXPECT_FALSE(enthaelt(l.fehler, "polyphon"));

    Lauf aus = lauf({"mix", pfad.string(), "--spuren", "2,3"});
    EXPECT_EQ(aus.code, 0);
    EXPECT_EQ(aus.aus, erwartet);
}

TEST_F(UmsetzenTest, MixWarntBeiEinerPolyphonenSpur) {
    MidiBauer b(480);
    b.spur().tempo(0, 500000).ende();
    // The warning looks at the last track converted, so the chords are in the last one.
    b.spur().name("Erste").note(0, 67, 960).ende();
    b.spur().name("Akkorde").an(0, 1, 60).an(0, 1, 64).aus(480, 1, 60).aus(0, 1, 64).note(0, 62, 480).ende();
    fs::path pfad = midi("poly.mid", b);
    Lauf l = lauf({"mix", pfad.string(), "--spuren", "2,3"});
    ASSERT_EQ(l.code, 0) << l.fehler;
    EXPECT_TRUE(enthaelt(l.fehler, "Eine der ausgewählten Spuren ist polyphon!\n"
                                   "Das Trennen von Stimmen im Listen-Editor in Cantorix führt deshalb\n"
                                   "möglicherweise nicht zum gewünschten Ergebnis,\n"
                                   "da nicht jede Stimme (1 zu 1) einer Gitarren-Saite zugeordnet werden konnte."))
        << l.fehler;
    EXPECT_FALSE(l.aus.empty());
}

TEST_F(UmsetzenTest, FehlschlaegeLassenVorhandeneDateienUnberuehrt) {
    fs::path lied_ = midi("lied.mid", lied());
    fs::path kaputt = midi("kaputt.mid", kaputteNoten());
    schreiben(datei("h.txt"), "alt");

    // The conversion fails: the engine's message, exit 4, the old text stays.
    Lauf umsetzen = lauf({"convert", kaputt.string(), "--spur", "1", "--harfentext", datei("h.txt").string()});
    EXPECT_EQ(umsetzen.code, 4);
    EXPECT_TRUE(enthaelt(umsetzen.fehler, "MIDI-File ist nicht in Ordnung.")) << umsetzen.fehler;
    EXPECT_EQ(lesen(datei("h.txt")), "alt");

    // A wrong extension for the database is refused by the save path before anything is written.
    Lauf endung = lauf({"convert", lied_.string(), "--wdb", datei("lied.doc").string(), "--harfentext",
                        datei("h.txt").string()});
    EXPECT_EQ(endung.code, 2);
    EXPECT_TRUE(enthaelt(endung.fehler, "Falsche Dateiendung!"));
    EXPECT_FALSE(fs::exists(datei("lied.doc")));
    EXPECT_EQ(lesen(datei("h.txt")), "alt");
}

TEST_F(UmsetzenTest, EinSchreibgeschuetzterOrdnerGibtFuenf) {
    fs::path lied_ = midi("lied.mid", lied());
    fs::path gesperrt = arbeit() / "gesperrt";
    fs::create_directories(gesperrt);
    fs::permissions(gesperrt, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                  fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
    // Someone who may write anyway (the administrator) gets a folder that is a plain file instead.
    {
        std::ofstream probe(gesperrt / "probe");
        if (probe) {
            probe.close();
            fs::remove(gesperrt / "probe");
            fs::permissions(gesperrt, fs::perms::owner_all, fs::perm_options::add);
            fs::remove(gesperrt);
            schreiben(gesperrt, "eine Datei, kein Ordner");
        }
    }
    for (const auto& ausgabe : {std::vector<std::string>{"--harfentext", (gesperrt / "h.txt").string()},
                                std::vector<std::string>{"--klangnoten", (gesperrt / "k.txt").string()},
                                std::vector<std::string>{"--wdb", (gesperrt / "x.wdb").string()}}) {
        std::vector<std::string> args{"convert", lied_.string()};
        args.insert(args.end(), ausgabe.begin(), ausgabe.end());
        Lauf l = lauf(args);
        EXPECT_EQ(l.code, 5) << ausgabe[0] << l.fehler;
        EXPECT_FALSE(l.fehler.empty());
    }
    if (fs::is_directory(gesperrt)) {
        EXPECT_TRUE(dateienIn(gesperrt).empty());
    }

    Lauf ordner = lauf({"convert", lied_.string(), "--ausgabe", (gesperrt / "unter").string()});
    EXPECT_EQ(ordner.code, 5);
}

TEST_F(UmsetzenTest, MehrereDateienInEinenOrdnerEineSchlechteHaeltNichtAuf) {
    fs::path eins = midi("eins.mid", lied());
    fs::path kaputt = datei("kaputt.mid");
    schreiben(kaputt, "MThd kaputt");
    MidiBauer b(96, 0);
    b.spur().name("Solo").note(0, 67, 96).note(0, 69, 192).ende();
    fs::path zwei = midi("zwei.mid", b);
    fs::path aus = arbeit() / "aus";

    Lauf l = lauf({"convert", eins.string(), kaputt.string(), zwei.string(), "--ausgabe", aus.string()});
    EXPECT_EQ(l.code, 3) << l.fehler;
    EXPECT_TRUE(enthaelt(l.fehler, "kaputt.mid")) << l.fehler;
    EXPECT_EQ(dateienIn(aus), (std::vector<std::string>{"eins.klangnoten.txt", "eins.txt", "eins.wdb",
                                                        "zwei.klangnoten.txt", "zwei.txt", "zwei.wdb"}));
    Kern k1 = kern(eins, 2);
    Kern k2 = kern(zwei, 1);
    EXPECT_EQ(lesen(aus / "eins.txt"), utf8ZuCp1252(k1.form.text));
    EXPECT_EQ(lesen(aus / "zwei.txt"), utf8ZuCp1252(k2.form.text));
    EXPECT_EQ(lesen(aus / "zwei.klangnoten.txt"), utf8ZuCp1252(k2.kln().getKlangNotenString()));

    // Only the text, and a second file of the same name is refused rather than overwriting the first.
    fs::create_directories(arbeit() / "b");
    fs::copy_file(zwei, arbeit() / "b" / "eins.mid");
    fs::path nurText = arbeit() / "nur";
    Lauf t = lauf({"convert", eins.string(), (arbeit() / "b" / "eins.mid").string(), "--ausgabe", nurText.string(),
                   "--formate", "harfentext"});
    EXPECT_EQ(t.code, 2);
    EXPECT_EQ(dateienIn(nurText), std::vector<std::string>{"eins.txt"});
    EXPECT_EQ(lesen(nurText / "eins.txt"), utf8ZuCp1252(k1.form.text));
}

} // namespace
} // namespace lyrabo::test
