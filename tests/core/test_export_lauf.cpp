// The export run and the recompute after an option change, as the window and the command line use them.
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "support/MidiBauer.h"
#include "test_export_umgebung.h"

#include <gtest/gtest.h>

using namespace lyrabo;
using namespace lyrabo::test;

namespace {

// Track 1 holds the tempo and time signature, track 2 a short melody, track 3 nothing at all.
struct GeladenesLied : ExportUmgebung {
    GeladenesLied() {
        MidiBauer b(480);
        b.spur().tempo(0, 500000).taktart(0, 4, 2).ende(1920);
        b.spur().name("Melodie").note(0, 60, 480).note(0, 62, 480).note(0, 64, 960).ende();
        b.spur().ohneEnde();
        e().MIDIFilePath(b.schreiben(ordner / "lied.mid").string());
        EXPECT_TRUE(programm.openMIDIFile(2));
        // The window selects the second row after loading; its bar tables come with the conversion.
        form.zeile = 1;
        programm.MIDIFileSetsESVarsFrmIntern(2);
    }
};

} // namespace

TEST(ExportLauf, MitAnzeigeZeigtDieSpurUndSetztDenText) {
    GeladenesLied lied;
    lied.programm.HarfeExportLauf(2, true, true);
    EXPECT_EQ(lied.e().TrackNr(), 2);
    EXPECT_EQ(lied.form.angezeigteSpuren, std::vector<int16_t>{2});
    ASSERT_EQ(lied.form.textGesetzt, 1);
    EXPECT_EQ(lied.form.klangNotenText.rfind("HarfeEvent-Export :\r\n", 0), 0u);
    EXPECT_EQ(lied.form.klangNotenText, lied.programm.KLNCreator().getHarfeEventString());
    EXPECT_EQ(lied.programm.WDBCreator().KlangNoten(), lied.programm.KlangNoten);
}

TEST(ExportLauf, OhneAnzeigeNurDieHarfenEvents) {
    GeladenesLied lied;
    lied.programm.HarfeExportLauf(2, false, false);
    EXPECT_EQ(lied.e().TrackNr(), 2);
    EXPECT_TRUE(lied.form.angezeigteSpuren.empty());
    EXPECT_EQ(lied.form.textGesetzt, 0);
    // The merged tracks' note collection goes to the writer when nothing is shown.
    EXPECT_EQ(lied.programm.WDBCreator().KlangNoten(), lied.programm.KlangNotenMix);
}

TEST(ExportLauf, NeuBerechnenNurMitGewaehlterSpurMitEreignissen) {
    {
        ExportUmgebung ohneDatei;
        ohneDatei.form.zeile = 1;
        ohneDatei.programm.neuBerechnen();
        EXPECT_TRUE(ohneDatei.form.angezeigteSpuren.empty());
        EXPECT_EQ(ohneDatei.form.textGesetzt, 0);
    }
    GeladenesLied lied;
    for (int16_t zeile : {-1, 2, 3}) { // nothing selected, a track without events, no such track
        lied.form.zeile = zeile;
        lied.programm.neuBerechnen();
    }
    lied.form.zeile = 1;
    EXPECT_TRUE(lied.form.angezeigteSpuren.empty());
    EXPECT_EQ(lied.form.textGesetzt, 0);

    lied.programm.KLNCreator().IsMonoton(false);
    lied.e().ClipExportFlags()->Item(8)->Value(0);
    lied.programm.KLNCreator().KlangNoten(neueSammlung<CKlangNote>());
    lied.programm.neuBerechnen();
    EXPECT_EQ(lied.form.angezeigteSpuren, std::vector<int16_t>{2});
    EXPECT_EQ(lied.e().TrackNr(), 2);
    EXPECT_EQ(lied.form.textGesetzt, 1);
    // A melody of single notes: monophonic again, and the eighth switch back on.
    EXPECT_TRUE(lied.programm.KLNCreator().IsMonoton());
    EXPECT_EQ(lied.e().ClipExportFlags()->Item(8)->Value(), 1);
    EXPECT_EQ(lied.programm.KLNCreator().KlangNoten(), lied.programm.KlangNoten);
}
