#include "model/Datei.h"
#include "settings/BlattDaten.h"
#include "settings/CDreiZeichen.h"
#include "settings/CEinstellungen.h"
#include "settings/Takte.h"
#include "settings/UserDaten.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace lyrabo;
using lyrabo::test::TestOrdner;

TEST(Einstellungen, VorgabenUndAbgeleiteteWerte) {
    CEinstellungen e;
    EXPECT_EQ(e.TPQN_Faktor(), 10);
    EXPECT_EQ(e.QuantTicks(), 120);
    EXPECT_EQ(e.TaktLaenge(), 0); // until a numerator is set
    EXPECT_TRUE(e.PausenLetzterTakt());
    EXPECT_FALSE(e.PunktiertePausen());
    EXPECT_EQ(e.TonMin(), 128);
    EXPECT_EQ(e.WDBSpaltenAnzahl(), 37);
    ASSERT_EQ(e.ClipExportFlags()->Count(), 8);
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(e.ClipExportFlags()->Item(i)->ID(), i);
        EXPECT_EQ(e.ClipExportFlags()->Item(i)->Value(), i == 5 ? 0 : 1);
    }
    const int16_t laengen[8] = {192, 144, 96, 72, 48, 36, 24, 12};
    const char* namen[8] = {"1/1", "1/2p", "1/2", "1/4p", "1/4", "1/8p", "1/8", "1/16"};
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(e.ABSErlaubteLaengen()->Item(i)->Value(), laengen[i - 1]);
        EXPECT_EQ(e.NotenLaengenStr()->Item(i)->Text(), namen[i - 1]);
        EXPECT_EQ(e.NotenLaengenStr()->Item(i)->ID(), i);
    }
    EXPECT_EQ(e.SpurSelected()->Count(), 0); // created on first use, never null
}

TEST(Einstellungen, SetterRechnenAbgeleiteteWerteNach) {
    CEinstellungen e;
    e.TicksPerQuarterNote(96);
    EXPECT_EQ(e.TPQN_Faktor(), 2);
    EXPECT_EQ(e.QuantTicks(), 24);
    e.TicksPerQuarterNote(120); // 2.5 rounds to the even 2
    EXPECT_EQ(e.TPQN_Faktor(), 2);
    e.TicksPerQuarterNote(480);
    e.Numerator(3);
    e.Denominator(3);
    EXPECT_EQ(e.TaktLaenge(), 720);
    e.Numerator(4);
    e.Denominator(2);
    EXPECT_EQ(e.TaktLaenge(), 1920);
    e.QuantNotenwert(24);
    EXPECT_EQ(e.QuantTicks(), 240);
}

TEST(Einstellungen, UeberlaufBehaeltBasiswertUndAlteAbgeleiteteWerte) {
    CEinstellungen e;
    e.Numerator(5);
    e.Denominator(2);
    EXPECT_EQ(e.TaktLaenge(), 2400);
    EXPECT_THROW(e.TicksPerQuarterNote(1920), UeberlaufFehler); // 1920 x 5 x 4 = 38400
    EXPECT_EQ(e.TicksPerQuarterNote(), 1920);
    EXPECT_EQ(e.TPQN_Faktor(), 40);   // recomputed before the failure
    EXPECT_EQ(e.QuantTicks(), 480);   // likewise
    EXPECT_EQ(e.TaktLaenge(), 2400);  // the failing one keeps its old value

    CEinstellungen f;
    f.TicksPerQuarterNote(32000 - 32000 % 48); // factor 666
    EXPECT_THROW(f.QuantNotenwert(192), UeberlaufFehler);
    EXPECT_EQ(f.QuantNotenwert(), 192);
}

TEST(UserDaten, OhneDateiGeltenDieVorgabenUndDerProgrammordner) {
    TestOrdner t;
    CEinstellungen e;
    std::string aktuell;
    EXPECT_FALSE(UserDatenLesen(e, aktuell, t.pfad()));
    EXPECT_EQ(e.InitDir(), t.pfad().string());
    EXPECT_EQ(aktuell, "");
    EXPECT_TRUE(e.PausenLetzterTakt());
}

TEST(UserDaten, GeschriebenUndWiedergelesenExaktDieseBytes) {
    TestOrdner t;
    std::filesystem::create_directory(t / "data");
    CEinstellungen e;
    e.Legato(true);
    UserDatenSchreiben(e, "C:\\Lieder\\", t.pfad());
    std::string bytes = dateiLesen(t / "data" / "LYRABO_user.ini");
    EXPECT_EQ(bytes,
              "\"Default-Ordner = \",\"C:\\Lieder\\\"\r\n"
              "\"HoechsterTonMelodie = \",#FALSE#\r\n"
              "\"Legato = \",#TRUE#\r\n"
              "\"PausenLetzterTakt = \",#TRUE#\r\n"
              "\"PunktiertePausen = \",#FALSE#\r\n");
    CEinstellungen g;
    std::string aktuell;
    EXPECT_TRUE(UserDatenLesen(g, aktuell, t.pfad()));
    EXPECT_EQ(g.InitDir(), "C:\\Lieder\\");
    EXPECT_EQ(aktuell, "C:\\Lieder\\");
    EXPECT_TRUE(g.Legato());
}

TEST(UserDaten, SchluesselWerdenNieVerglichenUndUmlauteSindWindows1252) {
    TestOrdner t;
    std::filesystem::create_directory(t / "data");
    std::ofstream(t / "data" / "LYRABO_user.ini", std::ios::binary)
        << "\"irgendwas\",\"D:\\Gr\xFC\xDF" "e\\\"\r\n\"a\",#FALSE#\r\n\"geaendert\",#TRUE#\r\n\"b\",#FALSE#\r\n\"c\",#TRUE#\r\n";
    CEinstellungen e;
    std::string aktuell = "E:\\schon\\";
    EXPECT_TRUE(UserDatenLesen(e, aktuell, t.pfad()));
    EXPECT_EQ(e.InitDir(), "D:\\Grüße\\");
    EXPECT_EQ(aktuell, "E:\\schon\\"); // a current folder is kept
    EXPECT_TRUE(e.Legato());
    EXPECT_FALSE(e.PausenLetzterTakt());
    EXPECT_TRUE(e.PunktiertePausen());
    UserDatenSchreiben(e, "", t.pfad());
    EXPECT_EQ(dateiLesen(t / "data" / "LYRABO_user.ini").substr(0, 31), "\"Default-Ordner = \",\"D:\\Gr\xFC\xDF" "e\\\"");
}

// A read that fails part-way keeps the Booleans read so far; InitDir falls back to the program folder.
TEST(UserDaten, AbgebrochenesLesenBehaeltDasSchonGelesene) {
    struct Fall {
        const char* inhalt;
        bool hoechster, legato, pausenLetzter;
        const char* aktuell;
    };
    const Fall faelle[] = {
        // fewer than five lines
        {"\"Default-Ordner = \",\"X\\\"\r\n\"H\",#TRUE#\r\n\"L\",#TRUE#\r\n", true, true, true, "X\\"},
        // a value that is no Boolean
        {"\"Default-Ordner = \",\"\"\r\n\"H\",#TRUE#\r\n\"L\",vielleicht\r\n\"P\",#FALSE#\r\n\"Q\",#TRUE#\r\n", true, false,
         true, ""},
    };
    for (const auto& f : faelle) {
        TestOrdner t;
        std::filesystem::create_directory(t / "data");
        std::ofstream(t / "data" / "LYRABO_user.ini", std::ios::binary) << f.inhalt;
        CEinstellungen e;
        std::string aktuell;
        EXPECT_FALSE(UserDatenLesen(e, aktuell, t.pfad()));
        EXPECT_EQ(e.HoechsterTonMelodie(), f.hoechster);
        EXPECT_EQ(e.Legato(), f.legato);
        EXPECT_EQ(e.PausenLetzterTakt(), f.pausenLetzter); // never read: default
        EXPECT_EQ(e.InitDir(), t.pfad().string());
        EXPECT_EQ(aktuell, f.aktuell); // line 1 was taken before the failure
    }
}

TEST(UserDaten, LeererOrdnerBleibtLeer) {
    TestOrdner t;
    std::filesystem::create_directory(t / "data");
    std::ofstream(t / "data" / "LYRABO_user.ini", std::ios::binary)
        << "\"Default-Ordner = \",\"\"\r\n\"a\",#FALSE#\r\n\"b\",#FALSE#\r\n\"c\",#TRUE#\r\n\"d\",#FALSE#\r\n";
    CEinstellungen e;
    std::string aktuell;
    EXPECT_TRUE(UserDatenLesen(e, aktuell, t.pfad()));
    EXPECT_EQ(e.InitDir(), "");
    EXPECT_EQ(aktuell, "");
    UserDatenSchreiben(e, aktuell, t.pfad());
    EXPECT_EQ(dateiLesen(t / "data" / "LYRABO_user.ini").substr(0, 24), "\"Default-Ordner = \",\"\"\r\n");
}

TEST(UserDaten, FehlschlagBeimSchreibenMeldetSichUndLaesstDieAlteDateiStehen) {
    TestOrdner t;
    CEinstellungen e;
    try {
        UserDatenSchreiben(e, "", t.pfad()); // no data folder: it is never created
        FAIL();
    } catch (const DateiFehler& f) {
        EXPECT_NE(std::string(f.what()).find("User-Daten konnten nicht gespeichert werden."), std::string::npos);
    }
    std::filesystem::create_directory(t / "data");
    UserDatenSchreiben(e, "A\\", t.pfad());
    // A folder in the way of the rename stands for any target that cannot be replaced.
    std::filesystem::create_directories(t / "sperre" / "data" / "LYRABO_user.ini" / "x");
    EXPECT_THROW(UserDatenSchreiben(e, "B\\", t / "sperre"), DateiFehler);
    EXPECT_TRUE(std::filesystem::exists(t / "sperre" / "data" / "LYRABO_user.ini" / "x"));
    for (const auto& eintrag : std::filesystem::directory_iterator(t / "sperre" / "data"))
        EXPECT_EQ(eintrag.path().filename(), "LYRABO_user.ini"); // no temporary file left behind
}

// The sheet's settings file: every value the page can set comes back; a file with anything the
// program never writes, or none at all, gives the defaults of both harp sizes.
TEST(BlattDaten, HinUndZurueckOderDieVorgaben) {
    TestOrdner t;
    std::filesystem::create_directory(t / "data");
    BlattDaten d;
    d.saiten25 = {blatt::Papier::A3, false, 13.4, 7.5, true, false, false};
    d.saiten25.einpassen = d.saiten25.kurzePausenSchliessen = d.saiten25.wiederholungenZusammenfassen = false;
    d.saiten37.notenform = blatt::Notenform::Hals;
    d.saiten37.saitenAbstand = 10;
    d.pdfOrdner = "/home/anna/Noten für Harfe";
    blattDatenSchreiben(d, t.pfad());
    EXPECT_EQ(blattDatenText(blattDatenLesen(t.pfad())), blattDatenText(d));
    EXPECT_NE(blattDatenText(d), blattDatenText(BlattDaten{}));

    const std::string vorgaben = blattDatenText(BlattDaten{});
    const struct {
        const char* was;
        std::string inhalt;
    } kaputt[] = {
        {"Unsinn", std::string("\x89PNG\0\x01 kein Text", 15)},
        {"ohne Abschnitt", "Papier=A4\n"},
        {"Papier A5", "[37 Saiten]\nPapier=A5\n"},
        {"Abstand zu groß", "[37 Saiten]\nSaitenabstand=20\n"},
        {"Zahl mit Rest", "[25 Saiten]\nMmProViertel=6mm\n"},
        {"unbekannter Schlüssel", "[25 Saiten]\nFarbe=rot\n"},
        {"ja oder nein", "[25 Saiten]\nNotenTexte=1\n"},
        {"Notenform", "[37 Saiten]\nNotenform=Stiel\n"},
        {"Einpassen", "[37 Saiten]\nEinpassen=vielleicht\n"},
        // A file of an older version: "AufEineSeite" is read and ignored, the new keys take their defaults.
        {"alte Datei", "[25 Saiten]\nPapier=A4\nAufEineSeite=ja\n[37 Saiten]\nAufEineSeite=nein\n"},
    };
    for (const auto& k : kaputt) {
        dateiErsetzen(blattDatenPfad(t.pfad()), k.inhalt);
        EXPECT_EQ(blattDatenText(blattDatenLesen(t.pfad())), vorgaben) << k.was;
    }
    EXPECT_TRUE(blattDatenAusText("[37 Saiten]\nAufEineSeite=ja\n").has_value());
    std::filesystem::remove(blattDatenPfad(t.pfad()));
    EXPECT_EQ(blattDatenText(blattDatenLesen(t.pfad())), vorgaben);
    // Nothing of it touches the user settings file.
    EXPECT_FALSE(std::filesystem::exists(userDatenPfad(t.pfad())));
}

TEST(ZeichenTabellen, NotenUndPausenZeichen) {
    ZeichenTabelle noten, pausen;
    fillFontNotenColl(noten);
    fillFontPausenColl(pausen);
    ASSERT_EQ(noten.Count(), 8);
    EXPECT_EQ(noten.Item("192")->Zeichen1(), 'c');
    EXPECT_EQ(noten.Item("144")->Zeichen1(), 'v');
    EXPECT_EQ(noten.Item("144")->Zeichen2(), 44);
    EXPECT_EQ(noten.Item("96")->Zeichen2(), 0);
    EXPECT_EQ(noten.Item("12")->Zeichen1(), 'm');
    EXPECT_EQ(pausen.Item("72")->Zeichen1(), 'h');
    EXPECT_EQ(pausen.Item("72")->Zeichen2(), 44);
    EXPECT_EQ(pausen.Item(8)->Zeichen1(), 'k'); // position and key name the same value
    EXPECT_EQ(pausen.Item(8)->Zeichen3(), 0);
    EXPECT_THROW(noten.Item("60"), IndexFehler);
    ZeichenTabelle neu; // a second build starts from a new table: keys never collide
    EXPECT_NO_THROW(fillFontNotenColl(neu));
}

namespace {
void dreiTakte(CEinstellungen& e) {
    e.initTaktLaengen();
    for (int i = 1; i <= 3; ++i) {
        auto l = std::make_shared<CInteger>();
        l->ID(static_cast<int16_t>(i));
        l->Value(1920);
        e.MFITaktLaengen()->Add(l);
    }
}
} // namespace

TEST(Takte, TaktNummerAnDenTaktgrenzen) {
    CEinstellungen e;
    dreiTakte(e);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, 0), 1);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, 1919), 1);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, 1920), 2);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, 5759), 3);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, 5760), 0);
    EXPECT_EQ(getTaktNrFromABSStartZeit(e, -1), 0);
    EXPECT_EQ(TaktStartVon(e, 1), 0);
    EXPECT_EQ(TaktStartVon(e, 0), 0);
    EXPECT_EQ(TaktStartVon(e, 3), 3840);
    EXPECT_EQ(TaktStartVon(e, 4), 5760);
    EXPECT_THROW(TaktStartVon(e, 5), IndexFehler);
    CEinstellungen leer;
    EXPECT_EQ(getTaktNrFromABSStartZeit(leer, 0), 0);
}

TEST(Takte, NeueTaktTabellenLeerenAlleDrei) {
    CEinstellungen e;
    dreiTakte(e);
    e.Numeratoren()->Add(std::make_shared<CInteger>());
    e.Denominatoren()->Add(std::make_shared<CInteger>());
    e.initTaktLaengen();
    EXPECT_EQ(e.MFITaktLaengen()->Count(), 0);
    EXPECT_EQ(e.Numeratoren()->Count(), 0);
    EXPECT_EQ(e.Denominatoren()->Count(), 0);
}

TEST(Zwischenablage, StartbefehlNurExaktGeschrieben) {
    EXPECT_EQ(KommandoAusZwischenablage("Create Harfe-Spur C:\\Lieder\\a.mid"), "C:\\Lieder\\a.mid");
    EXPECT_EQ(KommandoAusZwischenablage("Create Harfe-Spur|  /home/x/b.mid"), "/home/x/b.mid");
    EXPECT_EQ(KommandoAusZwischenablage("create harfe-spur C:\\Lieder\\a.mid"), "");
    EXPECT_EQ(KommandoAusZwischenablage("Create Harfe-Spur C:\\Lieder\\a.MID"), "");
    EXPECT_EQ(KommandoAusZwischenablage("Create Harfe-Spur C:\\a.mid "), "");
    EXPECT_EQ(KommandoAusZwischenablage(""), "");
    EXPECT_EQ(KommandoAusZwischenablage("irgendein Text.mid"), "");
}
