// The MIDI file reader beyond what the comparison with midicsv shows: broken files, the 16-bit
// cursor, wrapped and padded files, and how texts are shown.
#include "midi/Midifile.h"
#include "model/Fehler.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// A file of one track: a delta time, then exactly these bytes and nothing added.
std::string roh(std::initializer_list<uint8_t> b, uint16_t division = 480, uint32_t delta = 0) {
    MidiBauer m(division);
    m.spur().ev(delta, b).ohneEnde();
    return m.bytes();
}

} // namespace

TEST(Midifile, KaputteDateienGebenEineKlareMeldung) {
    const std::string g = roh({0x90, 60, 100, 10, 0x80, 60, 64, 0, 0xFF, 0x2F, 0}); // one short note
    const std::pair<std::string, std::string> faelle[] = {
        {"Hallo Welt, ich bin ein Text.", "Sie beginnt nicht mit einem MIDI-Kopf (MThd)."},
        {"", "Sie beginnt nicht mit einem MIDI-Kopf"},
        {g.substr(0, 10), "Der MIDI-Kopf ist unvollständig."},
        {g.substr(0, 18), "Byte 14: Der Kopf eines Blocks ist abgeschnitten."},
        {g.substr(0, g.size() - 2), "Spur 1, Byte 14: Die Blocklänge 12 reicht über das Dateiende hinaus."},
        // 81 81 81 81 01: a delta time of five bytes
        {roh({0x90, 60, 1}, 480, 0x10204081), "Spur 1, Byte 22: Die Zeitangabe ist länger als vier Bytes."},
        {roh({0x90, 60}), "Spur 1, Byte 25: Ein Datenbyte fehlt, die Spur ist zu Ende."},
        {roh({0x90, 60, 0x80, 60, 0}), "Spur 1, Byte 25: Ein Datenbyte fehlt, an seiner Stelle steht ein Statusbyte."},
        {roh({60, 100}), "Spur 1, Byte 23: Laufender Status ohne vorheriges Statusbyte."},
        {roh({0xFF, 0x03, 0x09, 'a'}), "Spur 1, Byte 23: Das Meta-Ereignis reicht über das Ende der Spur hinaus."},
        {roh({0xFF, 0x2F, 0x00}, 0xE728), "Die Zeitbasis ist in SMPTE-Bildern angegeben"},
        {roh({0xFF, 0x2F, 0x00}, 0), "Die Zeitbasis ist 0 Ticks pro Viertelnote."},
        {g.substr(0, 10) + "\x9C\x40" + g.substr(12), "Sie gibt 40000 Spuren an; mehr als 32767 Spuren sind nicht möglich."},
        {g.substr(0, 10) + std::string(2, '\0') + g.substr(12, 2), "Sie enthält keine Spur."},
        {g.substr(0, 10) + std::string("\0\3", 2) + g.substr(12), "Sie enthält nur 1 der 3 angegebenen Spuren."},
        {roh({0xFF, 0x51, 0x03, 0, 0, 0}), "Spur 1, Byte 23: Das Tempo-Ereignis gibt 0 Mikrosekunden pro Viertelnote an."},
        {roh({0xFF, 0x51, 0x02, 7, 0xA1}), "weniger als drei Datenbytes"},
        {roh({0xFF, 0x58, 0x04, 0, 2, 24, 8}), "Die Taktart hat den Zähler 0."},
        {roh({0xFF, 0x58, 0x04, 4, 15, 24, 8}), "Der Nenner der Taktart ist 2 hoch 15, höchstens 2 hoch 14 ist möglich."},
        {"RIFF" + le32(16) + "RMIDLIST" + le32(4) + "abcd", "Die RIFF-Datei enthält keinen MIDI-Datenblock (\"data\")."},
        {"RIFF" + le32(4) + "RMI", "Der RIFF-Kopf ist unvollständig."},
        {"RIFF" + le32(12) + "RMIDdata\x08", "Byte 12: Der Kopf eines RIFF-Blocks ist abgeschnitten."},
        {"RIFF" + le32(16) + "RMIDLIST" + le32(10) + "abcd", "Byte 12: Der RIFF-Block \"LIST\" mit 10 Bytes reicht über das Dateiende hinaus."},
        {"RIFF" + le32(16) + "RMIDdata" + le32(10) + "MThd", "Byte 12: Der RIFF-Datenblock reicht über das Dateiende hinaus."},
    };
    for (const auto& [bytes, erwartet] : faelle) {
        std::string t = "(geladen)";
        try {
            Midifile().ladenAusBytes(bytes, "kaputt.mid");
        } catch (const MidiDateiFehler& f) {
            t = f.what();
        }
        EXPECT_EQ(t.rfind("Die Datei \"kaputt.mid\" ist keine gültige MIDI-Datei: ", 0), 0u) << t;
        EXPECT_NE(t.find(erwartet), std::string::npos) << erwartet << " / " << t;
    }
}

TEST(Midifile, FehlgeschlagenesLadenLaesstNichtsHalbGeladen) {
    TestOrdner o;
    MidiBauer b;
    b.spur().note(0, 60, 10).ende();
    b.spur().note(0, 64, 10).ende();
    std::ofstream(o / "kaputt.mid", std::ios::binary) << b.bytes().substr(0, 40);
    std::ofstream(o / "gross.mid").put('x');
    std::filesystem::resize_file(o / "gross.mid", kMidiDateiHoechstGroesse + 1);
    const std::string fehlt = (o / "gibtsnicht.mid").string();
    // Missing, a folder, no name, and a big file refused without being parsed.
    for (auto [pfad, erwartet] : {std::pair<std::string, std::string>{fehlt, "Die Datei \"" + fehlt + "\" wurde nicht gefunden."},
                                  {o.pfad().string(), "ist ein Ordner, keine MIDI-Datei."}, {"", "Es wurde keine MIDI-Datei angegeben."},
                                  {(o / "gross.mid").string(), "zu groß für eine MIDI-Datei"}}) {
        Midifile m;
        m.filename(pfad);
        try {
            m.Action(1);
            ADD_FAILURE() << pfad;
        } catch (const MidiDateiFehler& f) {
            EXPECT_NE(std::string(f.what()).find(erwartet), std::string::npos) << f.what();
        }
    }

    Midifile m;
    m.filename(b.schreiben(o / "gut.mid").string());
    m.Action(1);
    m.Track(2);
    m.Event(1);
    // Loading a broken file straight over it: the loaded one stays, cursor and all.
    m.filename((o / "kaputt.mid").string());
    EXPECT_THROW(m.Action(1), MidiDateiFehler);
    EXPECT_EQ(m.TrackCount(), 2);
    EXPECT_EQ(m.Data1(), 64);
    // Through 5 and 2 first, as the program opens files: the reader is empty afterwards.
    m.Action(5);
    m.Action(2);
    EXPECT_THROW(m.Action(1), MidiDateiFehler);
    EXPECT_FALSE(m.geladen());
    EXPECT_EQ(m.TrackCount(), 0);
    EXPECT_EQ(m.EventCount(), 0);
    EXPECT_EQ(m.Message(), 0);
    EXPECT_THROW(m.Track(1), IndexFehler);
}

TEST(Midifile, LangeSpurLaedtDerCursorBleibtSechzehnBit) {
    MidiBauer b;
    auto& s = b.spur().an(0, 1, 60);
    for (int i = 0; i < 40000; ++i) s.ev(1, {61, 1}); // running status keeps the file small
    Midifile m;
    m.ladenAusBytes(b.bytes(), "lang.mid");
    m.Track(1);
    EXPECT_EQ(m.Message(), 0); // a newly selected track has no event under the cursor
    EXPECT_EQ(m.EventCount(), 40002);
    m.Event(32767);
    EXPECT_EQ(m.Data1(), 61);
    EXPECT_THROW(m.Event(32768), UeberlaufFehler);
    EXPECT_EQ(m.Event(), 32767); // the cursor stays where it was
    EXPECT_THROW(m.Event(0), IndexFehler);
    EXPECT_THROW(m.Track(2), IndexFehler);
    EXPECT_THROW(m.Track(70000), UeberlaufFehler);
}

TEST(Midifile, RiffHuelleLangerKopfUnbekannteBloeckeLeereSpurUndTexte) {
    MidiBauer b;
    // Running status survives meta events, system-exclusive, system-common and real-time messages.
    auto& s = b.spur().ev(0, {0x90, 67, 100}).lyric(0, "s\xFC\xDF").ev(240, {67, 0}).name("Gr\xC3\xBC\xC3\x9F" "e");
    s.ev(0, {0xF2, 0, 0}).ev(0, {62, 100}).ev(0, {0xF8}).ev(0, {62, 0}).ev(0, {0xF0, 2, 0x43, 0xF7}).ev(0, {64, 100});
    s.ev(0, {0xF1, 1}).ev(0, {64, 0}).ev(0, {0xF3, 2}).ev(0, {65, 1}).ende();
    b.spur().ohneEnde(); // an empty chunk: a track without events
    const std::string smf = b.bytes();
    // A longer header and an unknown chunk before the tracks are both passed over.
    const std::string lang = smf.substr(0, 7) + "\x08" + smf.substr(8, 6) + "\xAB\xCD" + "XFIH" +
                             std::string("\0\0\0\3\1\2\3", 7) + smf.substr(14);
    const std::string rmid = "RMIDLIST" + le32(3) + "abc" + std::string(1, '\0') + "data" + le32(smf.size()) + smf;
    for (const std::string& datei : {lang, "RIFF" + le32(rmid.size()) + rmid}) {
        Midifile m;
        m.ladenAusBytes(datei, "r.rmi");
        ASSERT_EQ(m.TrackCount(), 2);
        m.Track(1);
        std::vector<std::string> bytes;
        for (int32_t i = 1; i <= m.EventCount(); ++i) {
            m.Event(i);
            if (m.Message() != 255) bytes.push_back(m.BufferText());
        }
        EXPECT_EQ(bytes, (std::vector<std::string>{"90 43 64", "90 43 00", "F2 00 00", "90 3E 64", "F8", "90 3E 00",
                                                   "F0 43 F7", "90 40 64", "F1 01", "90 40 00", "F3 02", "90 41 01"}));
        m.Event(3);
        EXPECT_EQ(m.Time(), 240);
        m.Event(2);
        EXPECT_EQ(m.Text(), "süß"); // not UTF-8, so read as Windows-1252
        m.Event(4);
        EXPECT_EQ(m.Text(), "Grüße"); // valid UTF-8 stays as it is
        m.Track(2);
        EXPECT_EQ(m.EventCount(), 0);
        EXPECT_THROW(m.Event(1), IndexFehler);
    }
}
