// Every song of the sheet's test set (abc2midi plays |: :| and first and second endings out),
// converted as the window converts it: the folded sheet, played through by its repeat signs, gives
// back the converted piece. Prints the bars written before and after.
#include "app/core/BlattQuelle.h"
#include "support/Ausklappen.h"
#include "support/EngineUmgebung.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace lyrabo::test {
namespace {

TEST(WiederholungLieder, AusgeklapptWiederDasUmgesetzteStueck) {
    std::vector<std::filesystem::path> dateien;
    for (const auto& d : std::filesystem::directory_iterator(LYRABO_LIEDER_MIDI))
        if (d.path().extension() == ".mid") dateien.push_back(d.path());
    std::sort(dateien.begin(), dateien.end());
    ASSERT_GE(dateien.size(), 25u) << "abc2midi hat die Lieder nicht umgesetzt (scripts/pakete.sh installiert es)";
    int gefaltet = 0;
    for (const auto& datei : dateien) {
        const std::string name = datei.stem().string();
        SCOPED_TRACE(name);
        EngineUmgebung u;
        u.e().MIDIFilePath(datei.string());
        ASSERT_TRUE(u.programm.openMIDIFile(2));
        u.form.zeile = int16_t(u.programm.Midifile1.TrackCount() >= 2 ? 1 : 0);
        try {
            u.programm.neuBerechnen();
        } catch (const std::exception&) {
            continue; // a song the conversion refuses has no sheet either
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
                std::cout << "  |: " << f.takte[size_t(w.anfang)] + 1 << " bis " << f.takte[size_t(w.endeZeichen()) - 1] + 1 << " :|"
                          << (w.ersteKlammer ? " mit Klammern " + std::to_string(w.ersteKlammer) + "/" + std::to_string(w.zweiteKlammer)
                                             : " " + std::to_string(w.mal) + "×");
            std::cout << "\n";
        }
    }
    std::cout << gefaltet << " von " << dateien.size() << " Liedern mit Wiederholungen\n";
}

} // namespace
} // namespace lyrabo::test
