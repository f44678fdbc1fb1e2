// The MIDI file reader: what it reads from sound files and how it refuses broken ones.
#include "midi/Midifile.h"
#include "model/Fehler.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace lyrabo;
using lyrabo::test::MidiBauer;
using lyrabo::test::TestOrdner;

namespace {

std::string alsText(std::initializer_list<int> b) {
    std::string s;
    for (int c : b) s += static_cast<char>(c);
    return s;
}

// A file of one track whose chunk holds exactly these bytes.
std::string eineSpur(const std::string& spur, uint16_t division = 480) {
    std::string s = alsText({'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, division >> 8, division & 0xFF});
    s += "MTrk";
    uint32_t n = static_cast<uint32_t>(spur.size());
    s += alsText({int(n >> 24), int((n >> 16) & 0xFF), int((n >> 8) & 0xFF), int(n & 0xFF)});
    return s + spur;
}

void schreiben(const std::filesystem::path& p, const std::string& b) {
    std::ofstream(p, std::ios::binary).write(b.data(), static_cast<std::streamsize>(b.size()));
}

// The message of the reader error for these bytes, or "" when they load.
std::string fehlerText(const std::string& bytes, const std::string& name = "kaputt.mid") {
    Midifile m;
    try {
        m.ladenAusBytes(bytes, name);
    } catch (const MidiDateiFehler& f) {
        return f.what();
    }
    return "";
}

struct Zeile {
    int32_t zeit;
    int16_t msg, d1, d2;
};

std::vector<Zeile> ereignisse(Midifile& m, int16_t spur) {
    std::vector<Zeile> z;
    m.Track(spur);
    for (int32_t i = 1; i <= m.EventCount(); ++i) {
        m.Event(i);
        z.push_back({m.Time(), m.Message(), m.Data1(), m.Data2()});
    }
    return z;
}

bool operator==(const Zeile& a, const Zeile& b) {
    return a.zeit == b.zeit && a.msg == b.msg && a.d1 == b.d1 && a.d2 == b.d2;
}

} // namespace

TEST(Midifile, KopfSpurenUndEreignisseUeberDenCursor) {
    MidiBauer b(96);
    b.spur().name("Begleitung").tempo(0, 500000).taktart(0, 6, 3).ende(192);
    b.spur().note(0, 60, 48).ev(0, {0xC2, 5}).ev(10, {0xE0, 0x01, 0x40}).ende();
    Midifile m;
    m.ladenAusBytes(b.bytes(), "a.mid");
    EXPECT_EQ(m.TrackCount(), 2);
    EXPECT_EQ(m.TicksPerQuarterNote(), 96);
    EXPECT_EQ(m.Format(), 1);

    m.Track(1);
    EXPECT_EQ(m.EventCount(), 4); // end of track counts as the file has it
    m.Event(1);
    EXPECT_EQ(m.Message(), 255);
    EXPECT_EQ(m.Data1(), 3);
    EXPECT_EQ(m.Text(), "Begleitung");
    m.Event(2);
    EXPECT_EQ(m.Data1(), 81);
    EXPECT_EQ(m.Tempo(), 500000);
    m.Event(3);
    EXPECT_EQ(m.Data1(), 88);
    EXPECT_EQ(m.Numerator(), 6);
    EXPECT_EQ(m.Denominator(), 3); // the exponent as stored
    m.Event(4);
    EXPECT_EQ(m.Data1(), 0x2F);
    EXPECT_EQ(m.Time(), 192);

    EXPECT_EQ(ereignisse(m, 2), (std::vector<Zeile>{{0, 0x90, 60, 100}, {48, 0x80, 60, 64}, {0, 0xC2, 5, 0},
                                                    {10, 0xE0, 0x01, 0x40}, {0, 255, 0x2F, 0}}));
    // Selecting a track starts with no event under the cursor.
    m.Track(1);
    EXPECT_EQ(m.Message(), 0);
}

TEST(Midifile, LaufenderStatusSysexUndAlleMetaArten) {
    std::string spur = alsText({
        0x00, 0x90, 60, 100,             // note on
        0x10, 62, 100,                   // running status
        0x00, 0xFF, 0x00, 0x02, 0x01, 0x02, // sequence number 258
        0x05, 64, 0,                     // running status survives the meta event
        0x00, 0xF0, 0x03, 0x7E, 0x09, 0xF7, // sysex
        0x00, 0xF7, 0x02, 0x43, 0x12,    // sysex continuation packet
        0x00, 0xFF, 0x59, 0x02, 0xFE, 0x01, // key signature
        0x00, 0xFF, 0x7F, 0x00,          // sequencer-specific, empty
        0x83, 0x60, 0xFF, 0x2F, 0x00,    // end of track after 480 ticks
    });
    Midifile m;
    m.ladenAusBytes(eineSpur(spur), "b.mid");
    auto z = ereignisse(m, 1);
    ASSERT_EQ(z.size(), 9u);
    EXPECT_EQ(z[1], (Zeile{16, 0x90, 62, 100}));
    EXPECT_EQ(z[2], (Zeile{0, 255, 0, 258}));
    EXPECT_EQ(z[3], (Zeile{5, 0x90, 64, 0}));
    EXPECT_EQ(z[4].msg, 0xF0);
    EXPECT_EQ(z[5].msg, 0xF7);
    EXPECT_EQ(z[6].d1, 0x59);
    EXPECT_EQ(z[7].d1, 0x7F);
    EXPECT_EQ(z[8], (Zeile{480, 255, 0x2F, 0}));

    m.Event(2);
    EXPECT_EQ(m.BufferText(), "90 3E 64");
    m.Event(5);
    EXPECT_EQ(m.BufferText(), "F0 7E 09 F7");
    m.Event(7);
    EXPECT_EQ(m.BufferText(), "FF 59 FE 01");
    m.Event(8);
    EXPECT_EQ(m.BufferText(), "FF 7F");
}

TEST(Midifile, TexteBleibenBytesUndWerdenAlsUtf8OderWindows1252Gezeigt) {
    MidiBauer b;
    b.spur().name("Gr\xC3\xBC\xC3\x9F" "e").lyric(0, "s\xFC\xDF").meta(0, 1, "").ende();
    Midifile m;
    m.ladenAusBytes(b.bytes(), "t.mid");
    m.Track(1);
    m.Event(1);
    EXPECT_EQ(m.Text(), "Grüße"); // valid UTF-8 stays as it is
    m.Event(2);
    EXPECT_EQ(m.TextBytes(), "s\xFC\xDF");
    EXPECT_EQ(m.Text(), "süß"); // otherwise read as Windows-1252
    EXPECT_EQ(m.BufferText(), "FF 05 73 FC DF");
    m.Event(3);
    EXPECT_EQ(m.Text(), "");
}

TEST(Midifile, RiffHuelleUnbekannteBloeckeUndLangerKopf) {
    MidiBauer b;
    b.spur().note(0, 67, 240).ende();
    std::string smf = b.bytes();
    // A longer header and an unknown chunk before the track are both passed over.
    std::string lang = smf.substr(0, 7) + std::string(1, 8) + smf.substr(8, 6) + alsText({0xAB, 0xCD}) + "XFIH" +
                       alsText({0, 0, 0, 3, 1, 2, 3}) + smf.substr(14);
    Midifile m;
    m.ladenAusBytes(lang, "lang.mid");
    EXPECT_EQ(ereignisse(m, 1).size(), 3u);

    auto le32 = [](uint32_t v) { return alsText({int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF), int(v >> 24)}); };
    std::string riff = "RMID" + std::string("LIST") + le32(3) + "abc" + std::string(1, 0) + "data" +
                       le32(static_cast<uint32_t>(smf.size())) + smf;
    riff = "RIFF" + le32(static_cast<uint32_t>(riff.size())) + riff;
    m.ladenAusBytes(riff, "r.rmi");
    EXPECT_EQ(ereignisse(m, 1), (std::vector<Zeile>{{0, 0x90, 67, 100}, {240, 0x80, 67, 64}, {0, 255, 0x2F, 0}}));

    std::string ohneDaten = "RIFF" + le32(4 + 8 + 4) + "RMID" + "LIST" + le32(4) + "abcd";
    EXPECT_NE(fehlerText(ohneDaten).find("keinen MIDI-Datenblock"), std::string::npos);
}

TEST(Midifile, FormatNullUndZweiUndEineLeereSpur) {
    MidiBauer null(120, 0);
    null.spur().ev(0, {0xB0, 7, 100}).note(0, 60, 120).ende();
    Midifile m;
    m.ladenAusBytes(null.bytes(), "f0.mid");
    EXPECT_EQ(m.Format(), 0);
    EXPECT_EQ(m.TrackCount(), 1);

    MidiBauer zwei(120, 2);
    zwei.spur().ende();
    zwei.spur().ohneEnde(); // an empty chunk: a track without events
    m.ladenAusBytes(zwei.bytes(), "f2.mid");
    EXPECT_EQ(m.TrackCount(), 2);
    m.Track(2);
    EXPECT_EQ(m.EventCount(), 0);
    EXPECT_THROW(m.Event(1), IndexFehler);
}

TEST(Midifile, KaputteDateienGebenEineKlareMeldung) {
    const std::string kopf = "Die Datei \"kaputt.mid\" ist keine gültige MIDI-Datei: ";
    struct Fall {
        const char* was;
        std::string bytes;
        std::string erwartet;
    };
    MidiBauer gut;
    gut.spur().note(0, 60, 10).ende();
    const std::string g = gut.bytes();
    std::vector<Fall> faelle = {
        {"keine MIDI-Datei", "Hallo Welt, ich bin ein Text.", "Sie beginnt nicht mit einem MIDI-Kopf (MThd)."},
        {"leere Datei", "", "Sie beginnt nicht mit einem MIDI-Kopf"},
        {"abgeschnittener Kopf", g.substr(0, 10), "Der MIDI-Kopf ist unvollständig."},
        {"abgeschnittener Blockkopf", g.substr(0, 18), "Byte 14: Der Kopf eines Blocks ist abgeschnitten."},
        {"Blocklänge über das Dateiende", g.substr(0, g.size() - 2),
         "Spur 1, Byte 14: Die Blocklänge 12 reicht über das Dateiende hinaus."},
        {"Zeitangabe länger als vier Bytes", eineSpur(alsText({0x81, 0x81, 0x81, 0x81, 0x01, 0x90, 60, 1})),
         "Spur 1, Byte 22: Die Zeitangabe ist länger als vier Bytes."},
        {"Datenbyte fehlt am Spurende", eineSpur(alsText({0x00, 0x90, 60})),
         "Spur 1, Byte 25: Ein Datenbyte fehlt, die Spur ist zu Ende."},
        {"Statusbyte statt Datenbyte", eineSpur(alsText({0x00, 0x90, 60, 0x80, 60, 0})),
         "Spur 1, Byte 25: Ein Datenbyte fehlt, an seiner Stelle steht ein Statusbyte."},
        {"laufender Status ohne Status", eineSpur(alsText({0x00, 60, 100})),
         "Spur 1, Byte 23: Laufender Status ohne vorheriges Statusbyte."},
        {"Meta-Ereignis zu lang", eineSpur(alsText({0x00, 0xFF, 0x03, 0x09, 'a'})),
         "Spur 1, Byte 23: Das Meta-Ereignis reicht über das Ende der Spur hinaus."},
        {"SMPTE-Zeitbasis", eineSpur(alsText({0x00, 0xFF, 0x2F, 0x00}), 0xE728),
         "Die Zeitbasis ist in SMPTE-Bildern angegeben"},
        {"Zeitbasis 0", eineSpur(alsText({0x00, 0xFF, 0x2F, 0x00}), 0), "Die Zeitbasis ist 0 Ticks pro Viertelnote."},
        {"zu viele Spuren", g.substr(0, 10) + alsText({0x9C, 0x40}) + g.substr(12),
         "Sie gibt 40000 Spuren an; mehr als 32767 Spuren sind nicht möglich."},
        {"keine Spur", g.substr(0, 10) + alsText({0, 0}) + g.substr(12, 2), "Sie enthält keine Spur."},
        {"weniger Spuren als angegeben", g.substr(0, 10) + alsText({0, 3}) + g.substr(12),
         "Sie enthält nur 1 der 3 angegebenen Spuren."},
        {"Tempo 0", eineSpur(alsText({0x00, 0xFF, 0x51, 0x03, 0, 0, 0})),
         "Spur 1, Byte 23: Das Tempo-Ereignis gibt 0 Mikrosekunden pro Viertelnote an."},
        {"Tempo zu kurz", eineSpur(alsText({0x00, 0xFF, 0x51, 0x02, 7, 0xA1})), "weniger als drei Datenbytes"},
        {"Taktart mit Zähler 0", eineSpur(alsText({0x00, 0xFF, 0x58, 0x04, 0, 2, 24, 8})), "Die Taktart hat den Zähler 0."},
        {"Taktart-Nenner zu groß", eineSpur(alsText({0x00, 0xFF, 0x58, 0x04, 4, 15, 24, 8})),
         "Der Nenner der Taktart ist 2 hoch 15, höchstens 2 hoch 14 ist möglich."},
    };
    for (const auto& f : faelle) {
        std::string t = fehlerText(f.bytes);
        EXPECT_EQ(t.rfind(kopf, 0), 0u) << f.was << ": " << t;
        EXPECT_NE(t.find(f.erwartet), std::string::npos) << f.was << ": " << t;
    }
}

TEST(Midifile, DateiFehlendUnlesbarOderZuGross) {
    TestOrdner o;
    Midifile m;
    m.filename((o / "gibtsnicht.mid").string());
    try {
        m.Action(1);
        FAIL();
    } catch (const MidiDateiFehler& f) {
        EXPECT_EQ(std::string(f.what()), "Die Datei \"" + (o / "gibtsnicht.mid").string() + "\" wurde nicht gefunden.");
    }
    m.filename(o.pfad().string());
    EXPECT_THROW(m.Action(1), MidiDateiFehler);
    m.filename("");
    EXPECT_THROW(m.Action(1), MidiDateiFehler);

    // A big file that is not MIDI is refused without being parsed.
    auto gross = o / "gross.mid";
    std::ofstream(gross).put('x');
    std::filesystem::resize_file(gross, kMidiDateiHoechstGroesse + 1);
    m.filename(gross.string());
    try {
        m.Action(1);
        FAIL();
    } catch (const MidiDateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("zu groß für eine MIDI-Datei"), std::string::npos);
    }
}

TEST(Midifile, FehlgeschlagenesLadenLaesstNichtsHalbGeladen) {
    TestOrdner o;
    MidiBauer b;
    b.spur().note(0, 60, 10).ende();
    b.spur().note(0, 64, 10).ende();
    auto gut = b.schreiben(o / "gut.mid");
    schreiben(o / "kaputt.mid", b.bytes().substr(0, 40));

    Midifile m;
    m.filename(gut.string());
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
    s.ende();
    Midifile m;
    m.ladenAusBytes(b.bytes(), "lang.mid");
    m.Track(1);
    EXPECT_EQ(m.EventCount(), 40002);
    m.Event(32767);
    EXPECT_EQ(m.Data1(), 61);
    EXPECT_THROW(m.Event(32768), UeberlaufFehler);
    EXPECT_EQ(m.Event(), 32767); // the cursor stays where it was
    EXPECT_THROW(m.Event(0), IndexFehler);
    EXPECT_THROW(m.Track(2), IndexFehler);
    EXPECT_THROW(m.Track(70000), UeberlaufFehler);
}
