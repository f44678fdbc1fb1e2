#pragma once
// Runs the real lyrabo-cli from a private program folder (its own copy beside its own ini/ and
// data/) and computes the same results through the core, the way the window gets them.
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"
#include "model/Datei.h"
#include "model/Text.h"
#include "support/MidiBauer.h"
#include "support/TestOrdner.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace lyrabo::test {

namespace fs = std::filesystem;

struct Lauf {
    int code = -1;
    std::string aus;     // stdout, as bytes
    std::string fehler;  // stderr
};

inline std::string lesen(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void schreiben(const fs::path& p, const std::string& bytes) {
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// What the window does after a load: select the preselected row and recompute it; captures the
// texts the window would show and copy.
class KernForm : public IForm, public IDialog {
public:
    void meldung(const std::string& text) override { meldungen.push_back(text); }
    int16_t ausgewaehlteSpurZeile() const override { return zeile; }
    void setKlangNotenText(const std::string& t) override { text = t; }
    void setZwischenablage(const std::string& t) override { zwischenablage = t; }
    void trackListeFuellen(const std::vector<std::string>& l) override { labels = l; }
    void setLabelTempo(const std::string& t) override { tempo = t; }
    void nachDateiGeladen() override {
        zeile = static_cast<int16_t>(spur - 1);
        if (umsetzen) programm->neuBerechnen();
    }
    std::optional<std::string> oeffnen(const std::string&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> speichern(const std::string&, int) override { return speicherName; }

    CProgramm* programm = nullptr;
    int16_t spur = 2;
    bool umsetzen = true;
    int16_t zeile = -1;
    std::string text, zwischenablage, tempo;
    std::vector<std::string> labels, meldungen;
    std::optional<std::string> speicherName;
};

// The core with the window's flow on one file, in a given program folder.
class Kern {
public:
    Kern(const fs::path& programmOrdner, const fs::path& midi, int16_t spur,
         const std::function<void(CEinstellungen&)>& optionen = {}, bool umsetzen = true)
        : programm(programmOrdner, form, &form) {
        form.programm = &programm;
        form.spur = spur;
        form.umsetzen = umsetzen;
        programm.initGlobals();
        if (optionen) optionen(programm.Einstellungen());
        programm.Einstellungen().MIDIFilePath(midi.string());
        geladen = programm.openMIDIFile(2);
    }
    CKLNCreator& kln() { return programm.KLNCreator(); }

    // The Works database as the save menu writes it.
    std::string wdb(const fs::path& ziel) {
        kln().KlangNoten(programm.KlangNoten);
        if (!kln().produce(true)) return {};
        CWDBCreator& w = programm.WDBCreator();
        w.Dialog(&form);
        w.Form(&form);
        w.Akkorde(kln().Akkorde());
        w.KlangNoten(kln().KlangNoten());
        w.Pausen(kln().Pausen());
        form.speicherName = ziel.string();
        w.saveDialog_WDB();
        return lesen(ziel);
    }

    KernForm form;
    CProgramm programm;
    bool geladen = false;
};

// A private program folder with a copy of lyrabo-cli, the templates and an empty data/.
class CliTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::path exe(LYRABO_CLI_EXE);
        fs::create_directories(programm());
        fs::create_directories(programm() / "data");
        fs::copy_file(exe, cli(), fs::copy_options::overwrite_existing);
        fs::copy(exe.parent_path() / "ini", programm() / "ini", fs::copy_options::recursive);
        fs::create_directories(arbeit());
    }

    fs::path programm() const { return ordner / "programm"; }
    fs::path cli() const { return programm() / fs::path(LYRABO_CLI_EXE).filename(); }
    fs::path arbeit() const { return ordner / "arbeit"; }
    fs::path datei(const std::string& name) const { return arbeit() / name; }

    fs::path midi(const std::string& name, const MidiBauer& b) const { return b.schreiben(datei(name)); }

    static std::string quote(const std::string& s) {
        std::string q = "'";
        for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return q + "'";
    }

    Lauf lauf(const std::vector<std::string>& args) const {
        std::string befehl = quote(cli().string());
        for (const auto& a : args) befehl += " " + quote(a);
        fs::path aus = ordner / "stdout.bin", fehler = ordner / "stderr.txt";
        befehl += " > " + quote(aus.string()) + " 2> " + quote(fehler.string()) + " < /dev/null";
        Lauf l;
        int rc = std::system(befehl.c_str());
#ifndef _WIN32
        l.code = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
#else
        l.code = rc;
#endif
        l.aus = lesen(aus);
        l.fehler = lesen(fehler);
        return l;
    }

    Kern kern(const fs::path& midi, int16_t spur, const std::function<void(CEinstellungen&)>& optionen = {},
              bool umsetzen = true) const {
        return Kern(programm(), midi, spur, optionen, umsetzen);
    }

    TestOrdner ordner;
};

// Three tracks: tempo 120 with 3/4 and from bar 3 on 6/8; a melody with gaps between its notes;
// a bass. The melody is 5,760 ticks long: two bars of 3/4 and two of 6/8.
inline MidiBauer lied() {
    MidiBauer b(480);
    b.spur().tempo(0, 500000).taktart(0, 3, 2).taktart(2880, 6, 3).ende();
    auto& m = b.spur().name("Melodie");
    uint32_t pause = 0;
    for (int i = 0; i < 12; ++i) {
        m.note(pause, 60 + (i % 8), 360);
        pause = 120;
    }
    m.ende(120);
    b.spur().name("Bass").note(0, 48, 1440).note(0, 50, 1440).note(0, 52, 1440).note(0, 53, 1440).ende();
    return b;
}

} // namespace lyrabo::test
