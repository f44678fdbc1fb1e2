#include "app/core/BlattQuelle.h"

#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>

namespace lyrabo {

blatt::Note blattNote(const CKlangNote& note) {
    blatt::Note b;
    b.start = note.StartZeit();
    b.laenge = note.Laenge();
    b.tonHoehe = note.TonHoehe();
    b.akkordNr = note.AkkordNr();
    b.text = note.MsgText();
    return b;
}

blatt::Stueck blattStueck(CProgramm& programm, const KlangNotenRef& noten, const std::string& titel) {
    CEinstellungen& e = programm.Einstellungen();
    blatt::Stueck s;
    s.titel = titel;
    s.ticksProViertel = std::max<int32_t>(1, e.TicksPerQuarterNote());
    if (programm.TempoAnzahl > 0 && programm.TempoTabelle[1].tempo > 0) s.tempo = programm.TempoTabelle[1].tempo;
    s.transpo = e.Transpo();
    s.saiten = e.WDBSpaltenAnzahl() == 25 ? 25 : 37;

    const auto& laengen = e.MFITaktLaengen();
    const auto& zaehler = e.Numeratoren();
    const auto& nenner = e.Denominatoren();
    for (int32_t k = 1; laengen && k <= laengen->Count(); ++k) {
        blatt::Takt t;
        t.laenge = laengen->Item(k)->Value();
        if (zaehler && k <= zaehler->Count()) t.zaehler = zaehler->Item(k)->Value();
        if (nenner && k <= nenner->Count()) t.nenner = nenner->Item(k)->Value();
        s.takte.push_back(t);
    }

    if (noten) {
        for (const auto& n : *noten) s.noten.push_back(blattNote(*n));
    }
    std::stable_sort(s.noten.begin(), s.noten.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    // The melody of a chord is its highest note, as a player hears the top voice.
    std::map<int32_t, size_t> oben;
    for (size_t i = 0; i < s.noten.size(); ++i) {
        auto [it, neu] = oben.try_emplace(s.noten[i].start, i);
        if (!neu && s.noten[i].tonHoehe > s.noten[it->second].tonHoehe) it->second = i;
    }
    for (const auto& [start, i] : oben) s.noten[i].melodie = true;

    const auto& pausen = programm.KLNCreator().Pausen();
    if (pausen) {
        for (const auto& p : *pausen) s.pausen.push_back({p->StartZeit(), p->Laenge(), p->TonHoehe()});
    }
    std::stable_sort(s.pausen.begin(), s.pausen.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    return s;
}

namespace {

// The file the reader holds: the window opens through the dialog and leaves MIDIFilePath empty.
std::filesystem::path geladeneDatei(CProgramm& programm) {
    const std::string& name = programm.Midifile1.filename();
    return std::filesystem::path(name.empty() ? programm.Einstellungen().MIDIFilePath() : name);
}

} // namespace

namespace {

std::string ohneRand(const std::string& s) {
    const auto anfang = s.find_first_not_of(" \t\r\n");
    if (anfang == std::string::npos) return "";
    return s.substr(anfang, s.find_last_not_of(" \t\r\n") - anfang + 1);
}

} // namespace

bool nenntStueck(const std::string& name) {
    std::string n = ohneRand(name);
    if (n.empty() || n.front() == ':') return false;
    for (char& c : n)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    // What numbers a track rather than names it: digits, "(null)" of a missing name, signs.
    for (std::string_view null = "(null)";;) {
        const auto pos = n.find(null);
        if (pos == std::string::npos) break;
        n.erase(pos, null.size());
    }
    const std::string_view zaehlt = " \t0123456789#-_.:/()[]";
    const auto anfang = n.find_first_not_of(zaehlt);
    if (anfang == std::string::npos) return false;
    n = n.substr(anfang, n.find_last_not_of(zaehlt) - anfang + 1);
    static const std::set<std::string_view> kAllgemein = {
        "track", "spur", "untitled", "unbenannt", "ohne titel", "no name", "noname", "new track", "neue spur",
        "sequence", "sequenz", "instrument", "channel", "kanal", "staff", "system", "tempo", "tempo track",
        "conductor", "melody", "melodie", "voice", "stimme", "part", "piano", "klavier"};
    return kAllgemein.count(n) == 0;
}

std::string stueckTitel(const std::string& spurEins, const std::string& spurGewaehlt, const std::string& dateiName) {
    if (nenntStueck(spurEins)) return ohneRand(spurEins);
    if (nenntStueck(spurGewaehlt)) return ohneRand(spurGewaehlt);
    return dateiName;
}

std::string blattTitel(CProgramm& programm, int16_t spur) {
    Midifile& mf = programm.Midifile1;
    const std::string datei = geladeneDatei(programm).stem().string();
    if (!mf.geladen() || spur < 0 || spur > mf.TrackCount()) return datei;
    const int16_t spurVorher = mf.Track();
    const int16_t ereignisVorher = mf.Event();
    auto name = [&](int16_t s) {
        mf.Track(s);
        for (int32_t i = 1; i <= mf.EventCount(); ++i) {
            mf.Event(i);
            if (mf.Message() == 255 && mf.Data1() == 3 && !mf.Text().empty()) return mf.Text();
        }
        return std::string();
    };
    const std::string eins = mf.TrackCount() >= 1 ? name(1) : "";
    const std::string gewaehlt = spur >= 1 ? name(spur) : "";
    const std::string titel = stueckTitel(eins, gewaehlt, datei);
    if (spurVorher >= 1) {
        mf.Track(spurVorher);
        if (ereignisVorher >= 1 && ereignisVorher <= mf.EventCount()) mf.Event(ereignisVorher);
    }
    return titel;
}

int64_t blattDatum(CProgramm& programm) {
    std::error_code ec;
    const auto zeit = std::filesystem::last_write_time(geladeneDatei(programm), ec);
    if (ec) return 0;
    const auto system = std::chrono::file_clock::to_sys(zeit);
    return std::chrono::duration_cast<std::chrono::seconds>(system.time_since_epoch()).count();
}

} // namespace lyrabo
