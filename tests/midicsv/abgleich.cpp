// Compares our MIDI reader with midicsv, a parser we did not write. The MIDI files are made fresh
// from short ABC tunes (abc2midi) and hand-written CSV (csvmidi); for every file, track by track,
// each event's absolute time, status, data bytes, tempo, time signature and text must agree.
//
// Usage: midicsv_abgleich <abc2midi> <csvmidi> <midicsv> <abc folder> <csv folder> <work folder>
#include "midi/Midifile.h"
#include "model/Fehler.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using lyrabo::Midifile;

namespace {

struct Satz {
    int spur = 0;
    long long zeit = 0;
    std::string art;
    std::vector<std::string> felder; // parameters after the type, strings already decoded
    int zeile = 0;
};

// A midicsv string: "" is a quote, \\ a backslash, \ooo an octal byte, other bytes as they are.
std::string zeichenketteLesen(const std::string& z, size_t& i) {
    std::string s;
    ++i; // opening quote
    while (i < z.size()) {
        char c = z[i];
        if (c == '"') {
            if (i + 1 < z.size() && z[i + 1] == '"') {
                s += '"';
                i += 2;
                continue;
            }
            ++i;
            break;
        }
        if (c == '\\' && i + 1 < z.size() && z[i + 1] == '\\') {
            s += '\\';
            i += 2;
            continue;
        }
        if (c == '\\' && i + 3 < z.size() && std::isdigit(static_cast<unsigned char>(z[i + 1]))) {
            s += static_cast<char>(std::stoi(z.substr(i + 1, 3), nullptr, 8));
            i += 4;
            continue;
        }
        s += c;
        ++i;
    }
    return s;
}

std::vector<std::string> felderTeilen(const std::string& z) {
    std::vector<std::string> f;
    size_t i = 0;
    while (i <= z.size()) {
        while (i < z.size() && z[i] == ' ') ++i;
        if (i < z.size() && z[i] == '"') {
            f.push_back(zeichenketteLesen(z, i));
            i = z.find(',', i);
        } else {
            size_t ende = z.find(',', i);
            std::string feld = z.substr(i, ende == std::string::npos ? std::string::npos : ende - i);
            while (!feld.empty() && (feld.back() == ' ' || feld.back() == '\r')) feld.pop_back();
            f.push_back(feld);
            i = ende;
        }
        if (i == std::string::npos) break;
        ++i;
    }
    return f;
}

std::vector<Satz> csvLesen(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::vector<Satz> saetze;
    std::string z;
    int nr = 0;
    while (std::getline(in, z)) {
        ++nr;
        if (z.empty() || z[0] == '#' || z[0] == ';') continue;
        auto f = felderTeilen(z);
        if (f.size() < 3) continue;
        Satz s;
        s.spur = std::stoi(f[0]);
        s.zeit = std::stoll(f[1]);
        s.art = f[2];
        s.felder.assign(f.begin() + 3, f.end());
        s.zeile = nr;
        saetze.push_back(std::move(s));
    }
    return saetze;
}

int zahl(const Satz& s, size_t k) { return std::stoi(s.felder.at(k)); }

// What the reader must report for one midicsv record.
struct Erwartung {
    std::vector<uint8_t> bytes; // status, meta type for meta events, data bytes
    bool istText = false;
    std::string text;
};

bool erwartungBilden(const Satz& s, Erwartung& e) {
    static const std::map<std::string, int> kanal = {{"Note_off_c", 0x80},          {"Note_on_c", 0x90},
                                                     {"Poly_aftertouch_c", 0xA0},   {"Control_c", 0xB0},
                                                     {"Program_c", 0xC0},           {"Channel_aftertouch_c", 0xD0},
                                                     {"Pitch_bend_c", 0xE0}};
    static const std::map<std::string, int> texte = {{"Text_t", 1},  {"Copyright_t", 2},       {"Title_t", 3},
                                                     {"Instrument_name_t", 4}, {"Lyric_t", 5}, {"Marker_t", 6},
                                                     {"Cue_point_t", 7}};
    auto b = [&](int v) { e.bytes.push_back(static_cast<uint8_t>(v)); };
    auto rest = [&](size_t ab) {
        for (size_t k = ab; k < s.felder.size(); ++k) b(zahl(s, k));
    };
    if (auto k = kanal.find(s.art); k != kanal.end()) {
        b(k->second | zahl(s, 0));
        if (s.art == "Pitch_bend_c") {
            b(zahl(s, 1) & 0x7F);
            b(zahl(s, 1) >> 7);
        } else {
            rest(1);
        }
    } else if (auto t = texte.find(s.art); t != texte.end()) {
        b(0xFF);
        b(t->second);
        for (char c : s.felder.at(0)) b(static_cast<uint8_t>(c));
        e.istText = true;
        e.text = s.felder.at(0);
    } else if (s.art == "Sequence_number") {
        b(0xFF), b(0x00), b(zahl(s, 0) >> 8), b(zahl(s, 0) & 0xFF);
    } else if (s.art == "MIDI_port") {
        b(0xFF), b(0x21), b(zahl(s, 0));
    } else if (s.art == "Channel_prefix") {
        b(0xFF), b(0x20), b(zahl(s, 0));
    } else if (s.art == "End_track") {
        b(0xFF), b(0x2F);
    } else if (s.art == "Tempo") {
        int t = zahl(s, 0);
        b(0xFF), b(0x51), b(t >> 16), b((t >> 8) & 0xFF), b(t & 0xFF);
    } else if (s.art == "SMPTE_offset") {
        b(0xFF), b(0x54), rest(0);
    } else if (s.art == "Time_signature") {
        b(0xFF), b(0x58), rest(0);
    } else if (s.art == "Key_signature") {
        b(0xFF), b(0x59), b(zahl(s, 0) & 0xFF), b(s.felder.at(1) == "minor" ? 1 : 0);
    } else if (s.art == "Sequencer_specific") {
        b(0xFF), b(0x7F), rest(1);
    } else if (s.art == "Unknown_meta_event") {
        b(0xFF), b(zahl(s, 0)), rest(2);
    } else if (s.art == "System_exclusive") {
        b(0xF0), rest(1);
    } else if (s.art == "System_exclusive_packet") {
        b(0xF7), rest(1);
    } else {
        return false;
    }
    return true;
}

std::string hex(const std::vector<uint8_t>& v) {
    std::string s;
    char p[4];
    for (size_t i = 0; i < v.size(); ++i) {
        std::snprintf(p, sizeof p, "%02X", v[i]);
        if (i) s += ' ';
        s += p;
    }
    return s;
}

class Abgleich {
public:
    // Returns the number of differences found in one file.
    int datei(const fs::path& mid, const std::string& midicsv, const fs::path& arbeit) {
        fs::path csv = arbeit / (mid.stem().string() + ".midicsv.csv");
        std::string befehl = "\"" + midicsv + "\" \"" + mid.string() + "\" \"" + csv.string() + "\"";
        if (std::system(befehl.c_str()) != 0) return melden(mid, "midicsv konnte die Datei nicht lesen");
        auto saetze = csvLesen(csv);

        Midifile m;
        m.filename(mid.string());
        try {
            m.Action(5);
            m.Action(2);
            m.Action(1);
        } catch (const lyrabo::Fehler& f) {
            return melden(mid, std::string("unser Leser lehnt ab: ") + f.what());
        }

        int fehler = 0;
        std::map<int, std::vector<Satz>> spuren;
        for (auto& s : saetze) {
            if (s.art == "Header") {
                if (zahl(s, 0) != m.Format() || zahl(s, 1) != m.TrackCount() || zahl(s, 2) != m.TicksPerQuarterNote())
                    fehler += melden(mid, "Kopf: midicsv " + s.felder[0] + "/" + s.felder[1] + "/" + s.felder[2] +
                                              ", wir " + std::to_string(m.Format()) + "/" + std::to_string(m.TrackCount()) +
                                              "/" + std::to_string(m.TicksPerQuarterNote()));
            } else if (s.spur > 0 && s.art != "Start_track") {
                spuren[s.spur].push_back(s);
            }
        }
        if (static_cast<int>(spuren.size()) != m.TrackCount())
            fehler += melden(mid, "Spurenzahl: midicsv " + std::to_string(spuren.size()) + ", wir " +
                                      std::to_string(m.TrackCount()));
        for (auto& [nr, liste] : spuren) {
            if (nr > m.TrackCount()) continue;
            m.Track(static_cast<int16_t>(nr));
            if (m.EventCount() != static_cast<int32_t>(liste.size())) {
                fehler += melden(mid, "Spur " + std::to_string(nr) + ": midicsv " + std::to_string(liste.size()) +
                                          " Ereignisse, wir " + std::to_string(m.EventCount()));
                continue;
            }
            long long zeit = 0;
            for (size_t i = 0; i < liste.size(); ++i) {
                m.Event(static_cast<int32_t>(i + 1));
                zeit += m.Time();
                fehler += ereignis(mid, nr, liste[i], m, zeit);
            }
            ereignisse += static_cast<int>(liste.size());
        }
        if (fehler == 0)
            std::cout << "OK   " << mid.filename().string() << ": " << m.TrackCount() << " Spuren\n";
        return fehler;
    }

    int ereignisse = 0;

private:
    int melden(const fs::path& mid, const std::string& was) {
        std::cout << "FEHL " << mid.filename().string() << ": " << was << "\n";
        return 1;
    }

    int ereignis(const fs::path& mid, int spur, const Satz& s, Midifile& m, long long zeit) {
        std::string wo = "Spur " + std::to_string(spur) + ", CSV-Zeile " + std::to_string(s.zeile) + " (" + s.art + "): ";
        Erwartung e;
        if (!erwartungBilden(s, e)) return melden(mid, wo + "unbekannte Satzart");
        int f = 0;
        if (zeit != s.zeit) f += melden(mid, wo + "Zeit " + std::to_string(zeit) + " statt " + std::to_string(s.zeit));
        if (m.Message() != e.bytes[0]) f += melden(mid, wo + "Status " + std::to_string(m.Message()));
        if (m.BufferText() != hex(e.bytes))
            f += melden(mid, wo + "Bytes \"" + m.BufferText() + "\" statt \"" + hex(e.bytes) + "\"");
        if (e.bytes[0] < 0xF0) {
            int d1 = e.bytes.size() > 1 ? e.bytes[1] : 0, d2 = e.bytes.size() > 2 ? e.bytes[2] : 0;
            if (m.Data1() != d1 || m.Data2() != d2) f += melden(mid, wo + "Datenbytes");
        } else if (e.bytes[0] == 0xFF) {
            if (m.Data1() != e.bytes[1]) f += melden(mid, wo + "Meta-Typ " + std::to_string(m.Data1()));
            if (s.art == "Sequence_number" && m.Data2() != zahl(s, 0)) f += melden(mid, wo + "Sequenznummer");
            if (s.art == "Tempo" && m.Tempo() != zahl(s, 0)) f += melden(mid, wo + "Tempo " + std::to_string(m.Tempo()));
            if (s.art == "Time_signature" && (m.Numerator() != zahl(s, 0) || m.Denominator() != zahl(s, 1)))
                f += melden(mid, wo + "Taktart " + std::to_string(m.Numerator()) + "/" + std::to_string(m.Denominator()));
            if (e.istText && m.TextBytes() != e.text) f += melden(mid, wo + "Text \"" + m.TextBytes() + "\"");
        }
        return f;
    }
};

int ausfuehren(const std::string& befehl) { return std::system(befehl.c_str()); }

} // namespace

int main(int argc, char** argv) {
    if (argc != 7) {
        std::cerr << "Aufruf: midicsv_abgleich <abc2midi> <csvmidi> <midicsv> <abc-Ordner> <csv-Ordner> <Arbeitsordner>\n";
        return 2;
    }
    const std::string abc2midi = argv[1], csvmidi = argv[2], midicsv = argv[3];
    const fs::path abcOrdner = argv[4], csvOrdner = argv[5], arbeit = argv[6];
    fs::remove_all(arbeit);
    fs::create_directories(arbeit);

    std::vector<fs::path> dateien;
    auto sortiert = [](const fs::path& ordner, const std::string& endung) {
        std::vector<fs::path> v;
        for (auto& e : fs::directory_iterator(ordner))
            if (e.path().extension() == endung) v.push_back(e.path());
        std::sort(v.begin(), v.end());
        return v;
    };
    for (auto& abc : sortiert(abcOrdner, ".abc")) {
        fs::path mid = arbeit / (abc.stem().string() + ".mid");
        ausfuehren("\"" + abc2midi + "\" \"" + abc.string() + "\" -o \"" + mid.string() + "\" > \"" +
                   (arbeit / "abc2midi.log").string() + "\" 2>&1");
        if (!fs::exists(mid)) {
            std::cout << "FEHL abc2midi hat aus " << abc << " keine Datei gemacht\n";
            return 1;
        }
        dateien.push_back(mid);
    }
    for (auto& csv : sortiert(csvOrdner, ".csv")) {
        fs::path mid = arbeit / (csv.stem().string() + ".mid");
        if (ausfuehren("\"" + csvmidi + "\" -z \"" + csv.string() + "\" \"" + mid.string() + "\"") != 0) {
            std::cout << "FEHL csvmidi lehnt " << csv << " ab\n";
            return 1;
        }
        dateien.push_back(mid);
    }
    if (dateien.size() < 6) {
        std::cout << "FEHL zu wenige Dateien: " << dateien.size() << "\n";
        return 1;
    }

    Abgleich a;
    int fehler = 0;
    for (auto& d : dateien) fehler += a.datei(d, midicsv, arbeit);
    std::cout << dateien.size() << " Dateien, " << a.ereignisse << " Ereignisse verglichen, " << fehler
              << " Abweichungen\n";
    return fehler == 0 ? 0 : 1;
}
