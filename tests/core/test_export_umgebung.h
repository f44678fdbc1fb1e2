#pragma once
// A program without a window for the export and template tests: records messages and texts,
// answers the save dialog with a prepared name, and builds notes, rests and chords by hand.
#include "app/core/CProgramm.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "support/TestOrdner.h"

#include <filesystem>

namespace lyrabo::test {

struct ExportForm : IForm {
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    void DisplayTrack(int16_t spur) override { angezeigteSpuren.push_back(spur); }
    void setKlangNotenText(const std::string& text) override {
        klangNotenText = text;
        ++textGesetzt;
    }
    int16_t zeile = -1;
    std::vector<std::string> meldungen;
    std::vector<int16_t> angezeigteSpuren;
    std::string klangNotenText;
    int textGesetzt = 0;
};

struct ExportDialog : IDialog {
    std::optional<std::string> oeffnen(const std::string&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> speichern(const std::string& f, int fl) override {
        filter = f;
        flags = fl;
        return antwort;
    }
    std::optional<std::string> antwort;
    std::string filter;
    int flags = 0;
};

struct ExportUmgebung {
    TestOrdner ordner;
    ExportForm form;
    ExportDialog dialog;
    CProgramm programm{ordner.pfad(), form, &dialog};
    std::filesystem::path ini = ordner / "ini";
    AkkordeRef akkorde = neueSammlung<CAkkord>();
    PausenRef pausen = neueSammlung<CKlangPause>();

    ExportUmgebung() { programm.initGlobals(); }
    CEinstellungen& e() { return programm.Einstellungen(); }
    void mitVorlagen() { std::filesystem::copy(std::filesystem::path(LYRABO_SOURCE_DIR) / "ini", ini); }
    void flags(const std::string& achtZiffern) {
        for (int i = 0; i < 8; ++i) e().ClipExportFlags()->Item(i + 1)->Value(achtZiffern[i] == '1' ? 1 : 0);
    }
    // The database writer on this program's chords and rests, talking to this form and dialog.
    CWDBCreator& schreiber() {
        auto& w = programm.WDBCreator();
        w.Akkorde(akkorde);
        w.Pausen(pausen);
        w.Form(&form);
        w.Dialog(&dialog);
        return w;
    }
};

inline std::shared_ptr<CKlangNote> note(int16_t ton, int32_t laenge, int32_t start = 0, int16_t akkordNr = 0,
                                        const std::string& text = "", int16_t spur = 0) {
    auto n = std::make_shared<CKlangNote>();
    n->TonHoehe(ton);
    n->Laenge(laenge);
    n->StartZeit(start);
    n->AkkordNr(akkordNr);
    n->MsgText(text);
    n->Spur(spur);
    return n;
}

inline std::shared_ptr<CKlangPause> pause(int16_t akkordNr, int16_t ton, int32_t laenge, int32_t start = 0) {
    auto p = std::make_shared<CKlangPause>();
    p->AkkordNr(akkordNr);
    p->TonHoehe(ton);
    p->Laenge(laenge);
    p->StartZeit(start);
    return p;
}

inline SammlungRef<CKlangNote> akkord(std::initializer_list<std::shared_ptr<CKlangNote>> noten) {
    auto a = neueSammlung<CKlangNote>();
    for (const auto& n : noten) a->Add(n);
    return a;
}

// The harp events as short comparable texts: Art/AkkordNr/TonHoehe/Laenge/StartZeit/Spur/MsgText.
inline std::vector<std::string> kurz(const Sammlung<CHarfeEvent>& events) {
    std::vector<std::string> v;
    for (const auto& ev : events)
        v.push_back(std::to_string(ev->Art()) + "/" + std::to_string(ev->AkkordNr()) + "/" + std::to_string(ev->TonHoehe()) +
                    "/" + std::to_string(ev->Laenge()) + "/" + std::to_string(ev->StartZeit()) + "/" +
                    std::to_string(ev->Spur()) + "/" + ev->MsgText());
    return v;
}

} // namespace lyrabo::test
