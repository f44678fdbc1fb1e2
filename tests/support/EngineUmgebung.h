#pragma once
// A program with a recording window around the conversion engine, for the engine's tests and
// benchmark: MIDI files built in the test are loaded into the program's own reader.
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <array>
#include <string>
#include <vector>

namespace lyrabo::test {

class EngineTestForm : public IForm {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    void spaltenFaerben(const std::array<Farbe, 37>&, Farbe l, Farbe r) override {
        links = l;
        rechts = r;
    }
    void setZwischenablage(const std::string& text) override { zwischenablage.push_back(text); }

    std::vector<std::string> meldungen, zwischenablage;
    int16_t zeile = 0;
    Farbe links{}, rechts{};
};

// One bar of the bar tables: length in ticks, numerator, denominator as stored.
using EngineTakt = std::array<int16_t, 3>;

class EngineUmgebung {
public:
    // Connected as opening a file connects the engine: window, reader and the global collections.
    EngineUmgebung() : programm(ordner.pfad(), form) {
        // These tests check the conversion as laid down ("Genaue Auflösung" off); test_aufloesung the switch.
        programm.Umrechnung.genaueAufloesung = false;
        programm.initGlobals();
        auto& k = engine();
        k.Form(&form);
        k.MIDIFile(&programm.Midifile1);
        k.KlangNoten(programm.KlangNoten);
        k.Akkorde(programm.Akkorde);
        k.Pausen(programm.Pausen);
    }

    // Loads the file into the program's reader and selects the track for conversion.
    void laden(const MidiBauer& datei, int16_t spur = 1) {
        programm.Midifile1.ladenAusBytes(datei.bytes(), "test.mid");
        e().TicksPerQuarterNote(programm.Midifile1.TicksPerQuarterNote());
        e().TrackNr(spur);
    }

    // Opens the file as the window does, then computes the bar tables for the track as a
    // conversion does before it runs.
    void oeffnen(const MidiBauer& datei, int16_t spur) {
        e().MIDIFilePath(datei.schreiben(ordner / "lied.mid").string());
        programm.openMIDIFile(2);
        e().TrackNr(spur);
        programm.MIDIFileSetsESVarsFrmIntern(spur);
    }

    // Bar tables as opening the file would set them: `anzahl` bars like `t`.
    void takte(int anzahl, EngineTakt t) {
        e().initTaktLaengen();
        const SammlungRef<CInteger> tabellen[] = {e().MFITaktLaengen(), e().Numeratoren(), e().Denominatoren()};
        for (int16_t k = 1; k <= anzahl; ++k)
            for (size_t i = 0; i < 3; ++i) {
                auto wert = std::make_shared<CInteger>();
                wert->Value(t[i]);
                wert->ID(k);
                tabellen[i]->Add(wert);
            }
    }

    CKLNCreator& engine() { return programm.KLNCreator(); }
    CEinstellungen& e() { return programm.Einstellungen(); }
    bool produce(bool neu = true) { return engine().produce(neu); }
    const KlangNotenRef& noten() { return engine().KlangNoten(); }
    const PausenRef& pausen() { return engine().Pausen(); }
    const AkkordeRef& akkorde() { return engine().Akkorde(); }

    TestOrdner ordner;
    EngineTestForm form;
    CProgramm programm;
};

} // namespace lyrabo::test
