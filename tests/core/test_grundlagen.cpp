#include "model/Records.h"
#include "model/Text.h"
#include "model/Zahlen.h"

#include <gtest/gtest.h>

using namespace lyrabo;

TEST(Sammlung, PositionenSindEinsbasiertUndEinfuegenVorPosition) {
    Sammlung<CInteger> s;
    for (int16_t v : {10, 20, 30}) {
        auto i = std::make_shared<CInteger>();
        i->Value(v);
        s.Add(i);
    }
    auto neu = std::make_shared<CInteger>();
    neu->Value(15);
    s.Insert(neu, 2);
    ASSERT_EQ(s.Count(), 4);
    EXPECT_EQ(s.Item(1)->Value(), 10);
    EXPECT_EQ(s.Item(2)->Value(), 15);
    EXPECT_EQ(s.Item(4)->Value(), 30);
    s.Remove(1);
    EXPECT_EQ(s.Item(1)->Value(), 15);
    EXPECT_THROW(s.Item(0), IndexFehler);
    EXPECT_THROW(s.Item(4), IndexFehler);
    EXPECT_THROW(s.Remove(5), IndexFehler);
    s.Insert(std::make_shared<CInteger>(), s.Count() + 1); // past the last appends
    EXPECT_EQ(s.Count(), 4);
}

TEST(Sammlung, SchluesselFindenUndVerschwindenMitDemEintrag) {
    Sammlung<CString> s;
    auto a = std::make_shared<CString>();
    a->Text("a");
    s.Add(a, "192");
    s.Add(std::make_shared<CString>(), "96");
    EXPECT_EQ(s.Item("192")->Text(), "a");
    EXPECT_THROW(s.Item("48"), IndexFehler);
    EXPECT_THROW(s.Add(std::make_shared<CString>(), "96"), IndexFehler);
    s.Remove(1);
    EXPECT_FALSE(s.hatSchluessel("192"));
    EXPECT_THROW(s.Item("192"), IndexFehler);
}

TEST(Sammlung, RecordsWerdenGeteiltNichtKopiert) {
    Sammlung<CKlangNote> noten, akkord;
    auto n = std::make_shared<CKlangNote>();
    noten.Add(n);
    akkord.Add(n);
    akkord.Item(1)->TonHoehe(200); // out of the MIDI range: stored unchanged
    akkord.Item(1)->StartZeit(100000);
    EXPECT_EQ(noten.Item(1)->TonHoehe(), 200);
    EXPECT_EQ(noten.Item(1)->StartZeit(), 100000);
    akkord.Clear();
    EXPECT_EQ(noten.Count(), 1);
}

TEST(Zahlen, GepruefteArithmetikWirftStattUeberzulaufen) {
    EXPECT_EQ(add16(32766, 1), 32767);
    EXPECT_THROW(add16(32767, 1), UeberlaufFehler);
    EXPECT_THROW(sub16(-32768, 1), UeberlaufFehler);
    EXPECT_THROW(mul16(1920, 20), UeberlaufFehler);
    EXPECT_EQ(mul32(1920, 20), 38400);
    EXPECT_THROW(add32(INT32_MAX, 1), UeberlaufFehler);
    EXPECT_THROW(cint16(int64_t{40000}), UeberlaufFehler);
}

TEST(Zahlen, RundenHalbeZurGeradenZahl) {
    EXPECT_EQ(rundenGerade(2.5), 2);
    EXPECT_EQ(rundenGerade(3.5), 4);
    EXPECT_EQ(rundenGerade(-2.5), -2);
    EXPECT_EQ(rundenGerade(-3.5), -4);
    EXPECT_EQ(rundenGerade(1.4999), 1);
    EXPECT_EQ(rundenGerade(-0.6), -1);
    EXPECT_EQ(cint16(120 / 48.0), 2); // 2.5 -> 2
    EXPECT_EQ(cint16(72 / 48.0), 2);  // 1.5 -> 2
    EXPECT_THROW(cint16(32767.5), UeberlaufFehler); // rounds to 32768
}

TEST(Zahlen, ZahlAlsTextMitFuehrendemLeerzeichen) {
    EXPECT_EQ(Str(4), " 4");
    EXPECT_EQ(Str(0), " 0");
    EXPECT_EQ(Str(-12), "-12");
    EXPECT_EQ(StrTrim(4), "4");
    EXPECT_EQ(StrTrim(-12), "-12");
}

TEST(Text, Windows1252UndUtf8) {
    EXPECT_EQ(cp1252ZuUtf8("Kan\xE4le \x80"), "Kanäle €");
    EXPECT_EQ(utf8ZuCp1252("Kanäle € ☃"), "Kan\xE4le \x80 ?");
    EXPECT_TRUE(istGueltigesUtf8("Grüße"));
    EXPECT_FALSE(istGueltigesUtf8("Gr\xFC\xDF" "e"));
    EXPECT_EQ(alsAnzeigeText("Gr\xFC\xDF" "e"), "Grüße");
    EXPECT_EQ(alsAnzeigeText("Grüße"), "Grüße");
    EXPECT_FALSE(istGueltigesUtf8("\xC0\x80")); // overlong
}
