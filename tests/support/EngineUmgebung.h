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
    void spaltenFaerben(const std::array<Farbe, 37>& f, Farbe l, Farbe r) override {
        felder = f;
        links = l;
        rechts = r;
        ++faerbungen;
    }
    void setZwischenablage(const std::string& text) override {
        zwischenablage = text;
        ++zwischenablageGesetzt;
    }

    std::vector<std::string> meldungen;
    int16_t zeile = 0;
    std::array<Farbe, 37> felder{};
    Farbe links{}, rechts{};
    int faerbungen = 0;
    std::string zwischenablage;
    int zwischenablageGesetzt = 0;
};

// One bar of the bar tables: length in ticks, numerator, denominator as stored.
struct EngineTakt {
    int32_t laenge;
    int16_t zaehler;
    int16_t nenner;
};

class EngineUmgebung {
public:
    EngineUmgebung() : programm(ordner.pfad(), form) {
        programm.initGlobals();
        verbinden();
    }

    // What opening a file hands the engine: window, reader and the global collections.
    void verbinden() {
        auto& k = programm.KLNCreator();
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

    // Opens the file as the window does (written beside the program, loaded without a dialog),
    // then computes the bar tables for the track as a conversion does before it runs.
    void oeffnen(const MidiBauer& datei, int16_t spur) {
        e().MIDIFilePath(datei.schreiben(ordner / "lied.mid").string());
        programm.openMIDIFile(2);
        e().TrackNr(spur);
        programm.MIDIFileSetsESVarsFrmIntern(spur);
    }

    // Bar tables as opening the file would set them, bar k at position k.
    void takte(const std::vector<EngineTakt>& liste) {
        e().initTaktLaengen();
        for (const auto& t : liste) {
            anhaengen(e().MFITaktLaengen(), static_cast<int16_t>(t.laenge));
            anhaengen(e().Numeratoren(), t.zaehler);
            anhaengen(e().Denominatoren(), t.nenner);
        }
    }
    void takte(int anzahl, EngineTakt t) { takte(std::vector<EngineTakt>(static_cast<size_t>(anzahl), t)); }

    CKLNCreator& engine() { return programm.KLNCreator(); }
    CEinstellungen& e() { return programm.Einstellungen(); }
    bool produce(bool neu = true) { return engine().produce(neu); }
    const KlangNotenRef& noten() { return engine().KlangNoten(); }
    const PausenRef& pausen() { return engine().Pausen(); }
    const AkkordeRef& akkorde() { return engine().Akkorde(); }

    TestOrdner ordner;
    EngineTestForm form;
    CProgramm programm;

private:
    static void anhaengen(const SammlungRef<CInteger>& tabelle, int16_t wert) {
        auto i = std::make_shared<CInteger>();
        i->Value(wert);
        i->ID(static_cast<int16_t>(tabelle->Count() + 1));
        tabelle->Add(i);
    }
};

} // namespace lyrabo::test
