// Repeats found in the bars of a piece, as a musician would write the tune: cases of whole bars
// named by letters, each letter one bar of notes.
#include "blatt/BlattSatz.h"
#include "blatt/Wiederholungen.h"
#include "blatt/Wiederholungszeichen.h"
#include "support/Ausklappen.h"

#include <gtest/gtest.h>

#include <map>

namespace lyrabo::blatt {
namespace {

struct Taktmuster {
    int16_t zaehler, nenner;
    std::vector<std::array<int32_t, 3>> noten; // start in the bar, length, pitch
};

// A..E: bars of four quarters, all different. b: B with its second note an eighth. Z: B's notes
// under 2/2. T: a bar of 3/4. L and M: different bars whose last note is held into the next bar.
const std::map<char, Taktmuster>& muster() {
    static const std::map<char, Taktmuster> m = {
        {'A', {4, 4, {{0, 480, 60}, {480, 480, 62}, {960, 480, 64}, {1440, 480, 65}}}},
        {'B', {4, 4, {{0, 480, 67}, {480, 480, 65}, {960, 480, 64}, {1440, 480, 62}}}},
        {'C', {4, 4, {{0, 960, 60}, {960, 480, 64}, {1440, 480, 67}}}},
        {'D', {4, 4, {{0, 1920, 72}}}},
        {'E', {4, 4, {{0, 480, 69}, {480, 480, 71}, {960, 960, 72}}}},
        {'b', {4, 4, {{0, 480, 67}, {480, 240, 65}, {960, 480, 64}, {1440, 480, 62}}}},
        {'Z', {2, 2, {{0, 480, 67}, {480, 480, 65}, {960, 480, 64}, {1440, 480, 62}}}},
        {'T', {3, 4, {{0, 480, 62}, {480, 480, 66}, {960, 480, 69}}}},
        {'L', {4, 4, {{0, 480, 62}, {480, 480, 65}, {960, 480, 69}, {1440, 960, 70}}}},
        {'M', {4, 4, {{0, 480, 63}, {480, 480, 66}, {960, 480, 68}, {1440, 960, 70}}}},
    };
    return m;
}

// The bars one after the other; `strophen` gives each bar's verse, whose number its notes sing.
Stueck lied(const std::string& takte, const std::string& strophen = "") {
    Stueck s;
    s.titel = "Probe";
    int32_t t = 0;
    for (size_t i = 0; i < takte.size(); ++i) {
        const Taktmuster& m = muster().at(takte[i]);
        const int32_t laenge = 4 * 480 * m.zaehler / m.nenner;
        s.takte.push_back({laenge, m.zaehler, m.nenner});
        for (auto [start, dauer, ton] : m.noten)
            s.noten.push_back({t + start, dauer, int16_t(ton), 0, strophen.empty() ? "" : std::string("Strophe ") + strophen[i], true});
        t += laenge;
    }
    return s;
}

std::string geschriebeneTakte(const std::string& takte, const Faltung& f) {
    std::string s;
    for (int t : f.takte) s += takte[size_t(t)];
    return s;
}

TEST(Wiederholungen, WieEinMusikerSieSchreibt) {
    struct W {
        int anfang, ende, mal, erste = 0, zweite = 0;
    };
    struct Fall {
        const char* was;
        const char* takte;
        const char* strophen;
        bool mitTexten;
        const char* geschrieben;
        std::vector<W> wiederholungen;
    } faelle[] = {
        {"AABB", "ABCDABCDBECABECA", "", true, "ABCDBECA", {{0, 4, 2}, {4, 8, 2}}},
        {"dreimal gespielt", "ABCABCABCD", "", true, "ABCD", {{0, 3, 3}}},
        {"erste und zweite Klammer", "ABCDABCE", "", true, "ABCDE", {{0, 5, 2, 1, 1}}},
        {"Klammern über zwei Takte", "ABCEDCABCEBA", "", true, "ABCEDCBA", {{0, 8, 2, 2, 2}}},
        {"Klammern so lang wie der Lauf", "ABCDABEA", "", true, "ABCDABEA", {}},
        {"eine Note anders lang", "ABCDAbCD", "", true, "ABCDAbCD", {}},
        {"nur der Text anders, Texte gezeigt", "ABCDABCD", "11112222", true, "ABCDABCD", {}},
        {"nur der Text anders, ohne Texte", "ABCDABCD", "11112222", false, "ABCD", {{0, 4, 2}}},
        {"gleicher Text", "ABCDABCD", "11111111", true, "ABCD", {{0, 4, 2}}},
        {"über einen Taktwechsel", "ATBATBC", "", true, "ATBC", {{0, 3, 2}}},
        {"gleiche Noten, andere Taktart", "ABCDAZCD", "", true, "ABCDAZCD", {}},
        {"am Ende des Stücks", "EDCABCAB", "", true, "EDCAB", {{2, 5, 2}}},
        {"am Ende ohne die erste Klammer", "ECABCDABC", "", true, "ECABCD", {{2, 6, 2, 1, 0}}},
        {"ohne Wiederholung", "ABCDEDCB", "", true, "ABCDEDCB", {}},
        {"ein Takt zweimal ist keine", "AABC", "", true, "AABC", {}},
        {"ein Takt viermal", "AAAAB", "", true, "AB", {{0, 1, 4}}},
        // A held note that sounds into the repeat must sound there in every pass.
        {"gehalten in den zweiten Durchgang", "ALALC", "", true, "ALALC", {}},
        {"gehalten in beide Durchgänge", "LALAC", "", true, "LAC", {{0, 2, 2}}},
        {"erste Klammer klingt in die Wiederholung", "MABLABD", "", true, "MABLABD", {}},
        {"erste Klammer ohne Überhang", "EABCABD", "", true, "EABCD", {{1, 5, 2, 1, 1}}},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.was);
        const Stueck st = lied(fall.takte, fall.strophen);
        const Faltung f = wiederholungenFinden(st, fall.mitTexten);
        EXPECT_EQ(geschriebeneTakte(fall.takte, f), fall.geschrieben);
        ASSERT_EQ(f.wiederholungen.size(), fall.wiederholungen.size());
        for (size_t i = 0; i < f.wiederholungen.size(); ++i) {
            const auto& w = f.wiederholungen[i];
            const auto& e = fall.wiederholungen[i];
            EXPECT_EQ(std::make_tuple(w.anfang, w.ende, w.mal, w.ersteKlammer, w.zweiteKlammer),
                      std::make_tuple(e.anfang, e.ende, e.mal, e.erste, e.zweite));
        }
        test::ausklappenPruefen(st, f, fall.mitTexten);
    }
}

// On the sheet: the signs where a musician looks for them, the start sign left out at bar 1.
TEST(Wiederholungen, AufDemBlatt) {
    struct Fall {
        const char* was;
        const char* takte;
        bool zusammenfassen;
        int dickeLinien;                  // of the double bars
        std::vector<std::string> texte;   // that must be there
    } faelle[] = {
        {"AABB", "ABCDABCDBECABECA", true, 2, {"1 (5)", "9 (13)", "12 (16)", kWiederholungLegende}},
        {"dreimal", "ABCABCABCD", true, 1, {"3\u00d7", "1 (4, 7)", "10"}},
        {"Klammern", "EABCDABCEBA", true, 2, {"1.", "2.", "2 (6)", "5", "9"}},
        {"ausgeschrieben", "ABCDABCDBECABECA", false, 0, {"16"}},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.was);
        Einstellungen e = standardFuer(37);
        e.wiederholungenZusammenfassen = f.zusammenfassen;
        const Blatt b = setzen(lied(f.takte), e);
        ASSERT_EQ(b.seiten.size(), 1u);
        int dicke = 0;
        std::vector<std::string> texte;
        for (const auto& el : b.seiten[0].elemente) {
            if (auto* l = std::get_if<Linie>(&el.form); l && l->staerke > 0.65) ++dicke;
            if (auto* t = std::get_if<Text>(&el.form)) texte.push_back(t->text);
        }
        EXPECT_EQ(dicke, f.dickeLinien);
        for (const auto& t : f.texte) EXPECT_NE(std::find(texte.begin(), texte.end(), t), texte.end()) << t;
        EXPECT_EQ(std::find(texte.begin(), texte.end(), kWiederholungLegende) != texte.end(), f.dickeLinien > 0);
    }
}

} // namespace
} // namespace lyrabo::blatt
