// The harp events built without a file: which notes of a chord are taken, and what the rests carry.
#include "export/CWDBCreator.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

struct ExportSammlung : ExportUmgebung {
    SammlungRef<CAkkord> akkorde = neueSammlung<CAkkord>();
    SammlungRef<CKlangPause> pausen = neueSammlung<CKlangPause>();
    std::vector<std::string> schreiben() {
        auto& w = programm.WDBCreator();
        w.Akkorde(akkorde);
        w.Pausen(pausen);
        w.write_ExportColl();
        return kurz(*programm.HarfeEvents);
    }
};

} // namespace

TEST(ExportSammlung, HoechsterTonMelodieAnNimmtAlleNotenTiefsteZuerst) {
    ExportSammlung s;
    s.e().HoechsterTonMelodie(true);
    s.e().Transpo(2);
    // Stored order 64, 60, 67, 60: the true position of the lowest, the first of equal ones first.
    auto a = akkord({note(64, 480, 0, 1, "a", 2), note(60, 480, 0, 1, "b", 3), note(67, 960, 0, 1, "", 2),
                     note(60, 240, 0, 1, "d", 4)});
    s.akkorde->Add(a);
    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"1/1/62/480/0/3/b", "1/1/62/240/0/4/d", "1/1/66/480/0/2/a",
                                                       "1/1/69/960/0/2/"}));
    EXPECT_EQ(a->Count(), 0);
}

TEST(ExportSammlung, HoechsterTonMelodieAusNimmtEineNoteJeAkkord) {
    ExportSammlung s;
    // The longest note wins; the first of the longest is the candidate.
    auto laengste = akkord({note(64, 480, 0, 1), note(60, 480, 0, 1), note(67, 960, 0, 1)});
    // Equally long: every note lower than the candidate (64) becomes the pick, the last one wins,
    // so 62 rather than the lower 60.
    auto gleichLang = akkord({note(64, 480, 480, 2), note(60, 480, 480, 2), note(62, 480, 480, 2), note(59, 240, 480, 2)});
    // No note longer than 0: the first note is the candidate, lower notes of length 0 still win.
    auto ohneLaenge = akkord({note(64, 0, 960, 3), note(60, 0, 960, 3), note(67, 0, 960, 3)});
    auto einzeln = akkord({note(70, 240, 1200, 4, "la", 1)});
    for (const auto& a : {laengste, gleichLang, ohneLaenge, einzeln}) s.akkorde->Add(a);
    s.akkorde->Add(neueSammlung<CKlangNote>()); // an empty chord gives no event

    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"1/1/67/960/0/0/", "1/2/62/480/480/0/", "1/3/60/0/960/0/",
                                                       "1/4/70/240/1200/1/la"}));
    // Only the picked note leaves its chord.
    EXPECT_EQ(laengste->Count(), 2);
    EXPECT_EQ(gleichLang->Count(), 3);
    EXPECT_EQ(gleichLang->Item(3)->TonHoehe(), 59);
    EXPECT_EQ(ohneLaenge->Count(), 2);
}

TEST(ExportSammlung, PausenTragenAkkordTextUndSpurDerLetztenNote) {
    ExportSammlung s;
    s.e().Transpo(-3);
    s.akkorde->Add(akkord({note(62, 480, 480, 1, "la", 2)}));
    s.akkorde->Add(akkord({note(64, 480, 1440, 2, "", 1)}));
    s.akkorde->Add(akkord({note(65, 480, 2400, 3, "lu", 3)}));
    s.pausen->Add(pause(0, 60, 480, 0));    // leading rest
    s.pausen->Add(pause(0, 60, 240, 240));  // a second rest before the first chord: passed over
    s.pausen->Add(pause(1, 62, 480, 960));
    s.pausen->Add(pause(1, 62, 240, 1200));
    s.pausen->Add(pause(3, 65, 480, 2880)); // waits for chord 3
    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"3/0/57/480/0/0/", "1/1/59/480/480/2/la", "3/1/59/480/960/2/la",
                                                       "3/1/59/240/1200/2/la", "1/2/61/480/1440/1/",
                                                       "1/3/62/480/2400/3/lu", "3/3/62/480/2880/3/lu"}));
}

TEST(ExportSammlung, JederLaufBeginntVonVorn) {
    ExportSammlung s;
    s.akkorde->Add(akkord({note(62, 480, 480, 1, "la", 2)}));
    s.pausen->Add(pause(1, 62, 480, 960));
    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"1/1/62/480/480/2/la", "3/1/62/480/960/2/la"}));

    // A new run starts with chord 0, no text and track 0 for its leading rest, and an empty list.
    s.akkorde = neueSammlung<CAkkord>();
    s.pausen = neueSammlung<CKlangPause>();
    s.pausen->Add(pause(0, 55, 960, 0));
    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"3/0/55/960/0/0/"}));

    // Without a leading rest the first rest after a chord still belongs to it; rests of a chord
    // that has no notes left are found by the chord's running number.
    s.akkorde = neueSammlung<CAkkord>();
    s.pausen = neueSammlung<CKlangPause>();
    s.akkorde->Add(neueSammlung<CKlangNote>());
    s.pausen->Add(pause(1, 50, 480, 0));
    EXPECT_EQ(s.schreiben(), (std::vector<std::string>{"3/0/50/480/0/0/"}));
}

TEST(ExportSammlung, UeberlangeNoteIstEinUeberlauf) {
    ExportSammlung s;
    s.akkorde->Add(akkord({note(60, 40000, 0, 1)}));
    EXPECT_THROW(s.schreiben(), UeberlaufFehler);
}
