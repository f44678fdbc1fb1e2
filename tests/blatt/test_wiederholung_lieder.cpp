// Every song of the sheet's test set, made a MIDI file by abc2midi (which plays |: :| and first and
// second endings out) and converted as lyrabo-cli converts it: the folded sheet, played through by
// its repeat signs, gives back the converted piece. Prints the bars written before and after.
#include "app/core/BlattQuelle.h"
#include "app/core/CProgramm.h"
#include "support/Ausklappen.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace lyrabo::test {
namespace {

namespace fs = std::filesystem;

// The window's flow on one file: after the load the preselected track (the second, if there is one)
// is converted.
class Umsetzung : public IForm {
public:
    explicit Umsetzung(const fs::path& ordner) : programm(ordner, *this) { programm.initGlobals(); }
    void meldung(const std::string&) override {}
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    void nachDateiGeladen() override {
        zeile = programm.Midifile1.TrackCount() >= 2 ? 1 : 0;
        programm.neuBerechnen();
    }
    CProgramm programm;
    int16_t zeile = 0;
};

TEST(WiederholungLieder, AusgeklapptWiederDasUmgesetzteStueck) {
    TestOrdner ordner;
    std::vector<fs::path> lieder;
    for (const auto& e : fs::directory_iterator(LYRABO_LIEDER))
        if (e.path().extension() == ".abc") lieder.push_back(e.path());
    std::sort(lieder.begin(), lieder.end());
    ASSERT_GE(lieder.size(), 20u);
    int gefaltet = 0;
    for (const auto& abc : lieder) {
        const std::string name = abc.stem().string();
        SCOPED_TRACE(name);
        const fs::path mid = ordner / (name + ".mid");
        const std::string befehl = std::string("'") + LYRABO_ABC2MIDI + "' '" + abc.string() + "' -o '" + mid.string() + "' > /dev/null 2>&1";
        ASSERT_EQ(std::system(befehl.c_str()), 0);
        Umsetzung u(ordner.pfad());
        u.programm.Einstellungen().MIDIFilePath(mid.string());
        // A song the conversion refuses has no sheet either (the command line says why).
        try {
            ASSERT_TRUE(u.programm.openMIDIFile(2));
        } catch (const std::exception&) {
            std::cout << name << ": nicht umgesetzt\n";
            continue;
        }
        const blatt::Stueck st = blattStueck(u.programm, u.programm.KlangNoten, name);
        ASSERT_FALSE(st.noten.empty());
        for (bool mitTexten : {true, false}) {
            const blatt::Faltung f = blatt::wiederholungenFinden(st, mitTexten);
            ausklappenPruefen(st, f, mitTexten);
            if (!mitTexten) continue;
            gefaltet += f.gefaltet();
            std::cout << name << ": " << f.gespieltVon.size() << " Takte, geschrieben " << f.takte.size();
            for (const auto& w : f.wiederholungen)
                std::cout << "  |: " << f.takte[size_t(w.anfang)] + 1 << " bis " << f.takte[size_t(w.endeZeichen()) - 1] + 1
                          << " :|" << (w.ersteKlammer ? " mit Klammern " + std::to_string(w.ersteKlammer) + "/" + std::to_string(w.zweiteKlammer)
                                            : " " + std::to_string(w.mal) + "×");
            std::cout << "\n";
        }
    }
    std::cout << gefaltet << " von " << lieder.size() << " Liedern mit Wiederholungen\n";
}

} // namespace
} // namespace lyrabo::test
