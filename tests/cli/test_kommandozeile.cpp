// lyrabo-cli: calls, file information, the event list and files it cannot read.
#include "CliUmgebung.h"

#include "midi/EreignisListe.h"
#include "settings/CEinstellungen.h"

#include <sstream>

namespace lyrabo::test {
namespace {

std::vector<std::string> zeilenVon(const std::string& text) {
    std::vector<std::string> zeilen;
    std::istringstream in(text);
    for (std::string z; std::getline(in, z);) zeilen.push_back(z);
    return zeilen;
}

std::vector<std::string> spalten(const std::string& zeile) {
    std::vector<std::string> s;
    size_t start = 0;
    while (true) {
        size_t tab = zeile.find('\t', start);
        s.push_back(zeile.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos) return s;
        start = tab + 1;
    }
}

bool enthaelt(const std::string& text, const std::string& teil) { return text.find(teil) != std::string::npos; }

using KommandozeileTest = CliTest;

TEST_F(KommandozeileTest, HilfeUndFalscheAufrufe) {
    Lauf hilfe = lauf({"--help"});
    EXPECT_EQ(hilfe.code, 0);
    EXPECT_TRUE(enthaelt(hilfe.aus, "lyrabo-cli convert DATEI.mid"));
    EXPECT_TRUE(enthaelt(hilfe.aus, "1/16"));  // the grid names come from the settings
    EXPECT_TRUE(enthaelt(hilfe.aus, "Rückgabewerte"));

    auto lied_ = midi("lied.mid", lied()).string();
    const std::vector<std::pair<std::vector<std::string>, std::string>> falsch = {
        {{}, "Kein Befehl"},
        {{"drucken", lied_}, "Unbekannter Befehl"},
        {{"convert", lied_, "--kanal", "3"}, "--kanal"},
        {{"convert", lied_, "--quantisierung", "1/3"}, "1/2p"},
        {{"convert", lied_, "--felder", "1111011"}, "--felder"},
        {{"convert", lied_, "--saiten", "30"}, "--saiten"},
        {{"convert", lied_, "--transpo", "zwei"}, "--transpo"},
        {{"convert", lied_, "--transpo"}, "fehlt"},
        {{"events", lied_, "--legato"}, "gilt nicht"},
        {{"convert", lied_, lied_}, "--ausgabe"},
        {{"mix", lied_}, "--spuren"},
        {{"convert", lied_, "--legato=vielleicht"}, "ja oder nein"},
        {{"convert", lied_, "--harfentext", "-", "--klangnoten", "-"}, "Standardausgabe"},
        {{"info"}, "Keine MIDI-Datei"},
    };
    for (const auto& [args, meldung] : falsch) {
        Lauf l = lauf(args);
        EXPECT_EQ(l.code, 2) << args.size();
        EXPECT_TRUE(enthaelt(l.fehler, meldung)) << l.fehler;
        EXPECT_TRUE(l.aus.empty());
    }
}

TEST_F(KommandozeileTest, InfoZeigtWasDerKernVonDerDateiWeiss) {
    fs::path datei = midi("lied.mid", lied());
    Lauf l = lauf({"info", datei.string()});
    ASSERT_EQ(l.code, 0) << l.fehler;

    // Fixed facts of the file.
    EXPECT_TRUE(enthaelt(l.aus, "Format: 1\n"));
    EXPECT_TRUE(enthaelt(l.aus, "Ticks pro Viertelnote: 480\n"));
    EXPECT_TRUE(enthaelt(l.aus, "Tempo: 120\n"));
    EXPECT_TRUE(enthaelt(l.aus, "Spuren: 3\n"));
    EXPECT_TRUE(enthaelt(l.aus, "  Spur 2: Melodie | 26 Ereignisse | "));
    EXPECT_TRUE(enthaelt(l.aus, "  Spur 3: Bass | 10 Ereignisse | "));
    EXPECT_TRUE(enthaelt(l.aus, "Taktarten: 2 (Takte gezählt nach Spur 2)\n"));
    EXPECT_TRUE(enthaelt(l.aus, "  1. 3/4 ab Takt 1 (Tick 0)\n"));
    EXPECT_TRUE(enthaelt(l.aus, "  2. 6/8 ab Takt 3 (Tick 2880)\n"));
    EXPECT_TRUE(enthaelt(l.aus, "Takte: 4\n"));

    // Labels and note ranges as the core finds them for the track list and the string display.
    Kern k = kern(datei, 2, {}, false);
    ASSERT_TRUE(k.geladen);
    ASSERT_EQ(k.form.labels.size(), 3u);
    for (int16_t spur = 1; spur <= 3; ++spur) {
        k.form.zeile = static_cast<int16_t>(spur - 1);
        k.kln().findMinMax();
        CEinstellungen& e = k.programm.Einstellungen();
        k.programm.Midifile1.Track(spur);
        std::string zeile = "  Spur " + std::to_string(spur) + ": " + k.form.labels[size_t(spur - 1)] + " | " +
                            std::to_string(k.programm.Midifile1.EventCount()) + " Ereignisse | " +
                            (e.TonMin() > e.TonMax() ? std::string("keine Noten")
                                                     : "tiefster Ton " + std::to_string(e.TonMin()) +
                                                           ", höchster Ton " + std::to_string(e.TonMax())) +
                            "\n";
        EXPECT_TRUE(enthaelt(l.aus, zeile)) << zeile << l.aus;
    }

    // Bars follow the chosen track: the bass is 5,760 ticks too, the tempo track ends at tick 2,880.
    Lauf spur1 = lauf({"info", datei.string(), "--spur", "1"});
    ASSERT_EQ(spur1.code, 0) << spur1.fehler;
    EXPECT_TRUE(enthaelt(spur1.aus, "Takte: 2\n")) << spur1.aus;
}

TEST_F(KommandozeileTest, InfoEinerDateiMitEinerSpurOhneNamenUndOhneTaktart) {
    MidiBauer b(96, 0);
    b.spur().name("").note(0, 67, 96).note(0, 69, 96).ende(0);
    fs::path datei = midi("eine.mid", b);
    Lauf l = lauf({"info", datei.string()});
    ASSERT_EQ(l.code, 0) << l.fehler;
    EXPECT_TRUE(enthaelt(l.aus, "Format: 0\n"));
    EXPECT_TRUE(enthaelt(l.aus, "Tempo: keine Angabe\n"));
    EXPECT_TRUE(enthaelt(l.aus, "  Spur 1: Track 1 (null) | 6 Ereignisse | "));
    EXPECT_TRUE(enthaelt(l.aus, "Taktarten: 1 (Takte gezählt nach Spur 1)\n"));
    EXPECT_TRUE(enthaelt(l.aus, "  1. 4/4 ab Takt 1 (Tick 0)\n"));
    // 192 ticks of a 384-tick bar count as one whole bar.
    EXPECT_TRUE(enthaelt(l.aus, "Takte: 1\n"));

    Lauf falsch = lauf({"info", datei.string(), "--spur", "2"});
    EXPECT_EQ(falsch.code, 2);
    EXPECT_TRUE(enthaelt(falsch.fehler, "Die Spur 2 gibt es nicht; die Datei hat 1 Spur."));
}

TEST_F(KommandozeileTest, EventsListetDieZeilenDesFensters) {
    fs::path datei = midi("lied.mid", lied());
    Midifile m;
    m.filename(datei.string());
    m.Action(5);
    m.Action(2);
    m.Action(1);

    for (int16_t spur : {1, 2, 3}) {
        Lauf l = lauf({"events", datei.string(), "--spur", std::to_string(spur)});
        ASSERT_EQ(l.code, 0) << l.fehler;
        auto erwartet = DisplayTrackZeilen(m, spur);
        auto zeilen = zeilenVon(l.aus);
        ASSERT_EQ(zeilen.size(), erwartet.size());
        for (size_t i = 0; i < zeilen.size(); ++i) EXPECT_EQ(spalten(zeilen[i])[0], erwartet[i]);
    }

    Lauf tempo = lauf({"events", datei.string(), "--spur", "1"});
    auto zeilen = zeilenVon(tempo.aus);
    ASSERT_EQ(zeilen.size(), 4u);
    EXPECT_EQ(spalten(zeilen[0])[0], " 0 Tempo 120");
    EXPECT_EQ(spalten(zeilen[1])[0], " 0 Time Signature 3/4");
    EXPECT_EQ(spalten(zeilen[2])[0], " 2880 Time Signature 6/8");
    EXPECT_EQ(spalten(zeilen[3])[0], "Sysex 2F");

    // Without --spur the preselected second track is listed.
    Lauf vorgewaehlt = lauf({"events", datei.string()});
    EXPECT_EQ(spalten(zeilenVon(vorgewaehlt.aus).at(0))[0], "Track Name 3 : Melodie");
}

TEST_F(KommandozeileTest, EventsDetailfelderDezimalOderHexadezimal) {
    fs::path datei = midi("lied.mid", lied());
    Lauf dez = lauf({"events", datei.string(), "--spur", "2"});
    Lauf hex = lauf({"events", datei.string(), "--spur", "2", "--hex"});
    ASSERT_EQ(dez.code, 0);
    ASSERT_EQ(hex.code, 0);
    // Row 3 is the first Note Off: delta 360, status 0x80, note 60, velocity 64.
    auto d = spalten(zeilenVon(dez.aus).at(2));
    auto h = spalten(zeilenVon(hex.aus).at(2));
    ASSERT_EQ(d.size(), 7u);
    EXPECT_EQ(d[0], "Note Off 80");
    EXPECT_EQ(h[0], "Note Off 80");
    EXPECT_EQ((std::vector<std::string>{d[1], d[2], d[3], d[4]}), (std::vector<std::string>{"360", "128", "60", "64"}));
    EXPECT_EQ((std::vector<std::string>{h[1], h[2], h[3], h[4]}), (std::vector<std::string>{"168", "80", "3C", "40"}));
    EXPECT_EQ(d[5], "80 3C 40");
}

TEST_F(KommandozeileTest, EventsZeigtHoechstens500Zeilen) {
    MidiBauer b(480);
    auto& s = b.spur();
    for (int i = 0; i < 600; ++i) s.note(0, 60, 10);
    s.ende();
    fs::path datei = midi("lang.mid", b);
    Lauf l = lauf({"events", datei.string(), "--spur", "1"});
    ASSERT_EQ(l.code, 0) << l.fehler;
    EXPECT_EQ(zeilenVon(l.aus).size(), 500u);
}

TEST_F(KommandozeileTest, UnlesbareDateienUndFehlendeSpuren) {
    fs::path kaputt = datei("kaputt.mid");
    schreiben(kaputt, std::string("MThd\0\0\0\6\0\1\0\1\1\340MTrk\0\0\0\40\0\220", 24));
    fs::path keinMidi = datei("text.mid");
    schreiben(keinMidi, "Das ist keine MIDI-Datei.\r\n");
    fs::path lied_ = midi("lied.mid", lied());

    for (const auto& befehl : {"info", "events", "convert"}) {
        Lauf fehlt = lauf({befehl, datei("fehlt.mid").string()});
        EXPECT_EQ(fehlt.code, 3) << befehl;
        EXPECT_TRUE(enthaelt(fehlt.fehler, "fehlt.mid")) << fehlt.fehler;
        for (const auto& p : {kaputt, keinMidi, arbeit()}) {
            Lauf l = lauf({befehl, p.string()});
            EXPECT_EQ(l.code, 3) << befehl << " " << p;
            EXPECT_FALSE(l.fehler.empty());
            EXPECT_TRUE(l.aus.empty());
        }
    }

    // A track that is not there is a wrong call, and nothing gets written.
    Lauf l = lauf({"convert", lied_.string(), "--spur", "4", "--harfentext", datei("h.txt").string()});
    EXPECT_EQ(l.code, 2);
    EXPECT_TRUE(enthaelt(l.fehler, "Die Spur 4 gibt es nicht; die Datei hat 3 Spuren.")) << l.fehler;
    EXPECT_FALSE(fs::exists(datei("h.txt")));
    Lauf mix = lauf({"mix", lied_.string(), "--spuren", "2,9", "--harfentext", datei("m.txt").string()});
    EXPECT_EQ(mix.code, 2);
    EXPECT_TRUE(enthaelt(mix.fehler, "Die Spur 9 gibt es nicht")) << mix.fehler;
    EXPECT_FALSE(fs::exists(datei("m.txt")));
}

} // namespace
} // namespace lyrabo::test
