// Compares our MIDI reader with midicsv, a parser we did not write. The MIDI files are made fresh
// from short ABC tunes (abc2midi) and hand-written CSV (csvmidi). Our reader writes every file the
// way midicsv does, through its own getters, and the two must agree line by line: absolute time,
// status, data bytes, tempo, time signature and text of every event.
//
// Usage: midicsv_abgleich <abc2midi> <csvmidi> <midicsv> <abc folder> <csv folder> <work folder>
#include "midi/Midifile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// A text as midicsv quotes it: "" for a quote, \\ for a backslash. (Control bytes, which it
// writes in octal, occur in none of our files.)
std::string zitiert(const std::string& t) {
    std::string s = "\"";
    for (char c : t) s += (c == '"' || c == '\\') ? std::string(2, c) : std::string(1, c);
    return s + "\"";
}

// The event under the reader's cursor, as midicsv writes it.
std::string alsCsv(const lyrabo::Midifile& m, int spur, long long zeit) {
    static const char* kanal[] = {"Note_off_c", "Note_on_c",            "Poly_aftertouch_c", "Control_c",
                                  "Program_c",  "Channel_aftertouch_c", "Pitch_bend_c"};
    static const std::map<int, std::string> meta = {
        {0, "Sequence_number"},   {1, "Text_t"},        {2, "Copyright_t"},          {3, "Title_t"},
        {4, "Instrument_name_t"}, {5, "Lyric_t"},       {6, "Marker_t"},             {7, "Cue_point_t"},
        {0x20, "Channel_prefix"}, {0x21, "MIDI_port"},  {0x2F, "End_track"},         {0x51, "Tempo"},
        {0x54, "SMPTE_offset"},   {0x58, "Time_signature"}, {0x59, "Key_signature"}};
    std::vector<int> b; // status, meta type, data bytes
    std::istringstream hex(m.BufferText());
    for (int x; hex >> std::hex >> x;) b.push_back(x);
    std::ostringstream z;
    z << spur << ", " << zeit << ", ";
    auto ab = [&](size_t k) {
        for (; k < b.size(); ++k) z << ", " << b[k];
    };
    const int st = m.Message(), typ = m.Data1();
    if (st < 0xF0) {
        z << kanal[(st >> 4) - 8] << ", " << (st & 15);
        // Pitch bend as one 14-bit value; a two-byte message shows a stray second data byte as an extra field.
        if (st >> 4 == 0xE) z << ", " << (m.Data1() | m.Data2() << 7);
        else z << ", " << m.Data1() << (b.size() > 2 || m.Data2() ? ", " + std::to_string(m.Data2()) : "");
    } else if (st != 0xFF) {
        z << (st == 0xF0 ? "System_exclusive, " : "System_exclusive_packet, ") << b.size() - 1;
        ab(1);
    } else if (!meta.count(typ)) { // sequencer-specific and unknown meta events carry their length too
        z << (typ == 0x7F ? "Sequencer_specific" : "Unknown_meta_event, " + std::to_string(typ)) << ", " << b.size() - 2;
        ab(2);
    } else {
        z << meta.at(typ);
        if (typ >= 1 && typ <= 7) z << ", " << zitiert(m.TextBytes());
        else if (typ == 0) z << ", " << m.Data2();
        else if (typ == 0x51) z << ", " << m.Tempo();
        else if (typ == 0x58) z << ", " << m.Numerator() << ", " << m.Denominator() << ", " << b.at(4) << ", " << b.at(5);
        else if (typ == 0x59) z << ", " << static_cast<int>(static_cast<int8_t>(b.at(2))) << (b.at(3) ? ", \"minor\"" : ", \"major\"");
        else ab(2);
    }
    return z.str();
}

// The whole file as midicsv writes it, read by our reader.
std::vector<std::string> unsereZeilen(const fs::path& mid) {
    lyrabo::Midifile m;
    m.filename(mid.string());
    m.Action(1);
    std::vector<std::string> z{"0, 0, Header, " + std::to_string(m.Format()) + ", " + std::to_string(m.TrackCount()) +
                               ", " + std::to_string(m.TicksPerQuarterNote())};
    for (int s = 1; s <= m.TrackCount(); ++s) {
        m.Track(s);
        z.push_back(std::to_string(s) + ", 0, Start_track");
        long long zeit = 0;
        for (int32_t i = 1; i <= m.EventCount(); ++i) {
            m.Event(i);
            zeit += m.Time();
            z.push_back(alsCsv(m, s, zeit));
        }
    }
    z.push_back("0, 0, End_of_file");
    return z;
}

std::string q(const fs::path& p) { return "\"" + p.string() + "\""; }

} // namespace

int main(int argc, char** argv) {
    if (argc != 7) {
        std::cerr << "Aufruf: midicsv_abgleich <abc2midi> <csvmidi> <midicsv> <abc-Ordner> <csv-Ordner> <Arbeitsordner>\n";
        return 2;
    }
    const fs::path arbeit = argv[6];
    fs::remove_all(arbeit);
    fs::create_directories(arbeit);
    int dateien = 0, abweichungen = 0;
    for (int k : {4, 5}) {
        std::vector<fs::path> quellen(fs::directory_iterator(argv[k]), {});
        std::sort(quellen.begin(), quellen.end());
        for (const auto& quelle : quellen) {
            const fs::path mid = arbeit / (quelle.stem().string() + ".mid"), csv = arbeit / (quelle.stem().string() + ".csv");
            const std::string machen = k == 4 ? q(argv[1]) + " " + q(quelle) + " -o " + q(mid) + " > " + q(arbeit / "abc2midi.log") + " 2>&1"
                                              : q(argv[2]) + " -z " + q(quelle) + " " + q(mid);
            std::vector<std::string> ihre, unsere;
            try {
                if ((std::system(machen.c_str()) != 0 && k == 5) || !fs::exists(mid)) throw std::runtime_error("keine MIDI-Datei daraus; fehlt ein Werkzeug? bash scripts/pakete.sh");
                if (std::system((q(argv[3]) + " " + q(mid) + " " + q(csv)).c_str()) != 0) throw std::runtime_error("midicsv scheitert; fehlt es? bash scripts/pakete.sh");
                std::ifstream in(csv, std::ios::binary);
                for (std::string z; std::getline(in, z);) ihre.push_back(z);
                unsere = unsereZeilen(mid);
            } catch (const std::exception& f) {
                unsere = {f.what()}; // shows as a difference in the first line
            }
            ++dateien;
            const int vorher = abweichungen;
            for (size_t i = 0; i < std::max(ihre.size(), unsere.size()); ++i) {
                std::string a = i < ihre.size() ? ihre[i] : "(nichts)", b = i < unsere.size() ? unsere[i] : "(nichts)";
                if (a == b) continue;
                ++abweichungen;
                std::cout << "FEHL " << quelle.filename().string() << ", Zeile " << i + 1 << ": midicsv \"" << a << "\", wir \"" << b << "\"\n";
            }
            if (abweichungen == vorher) std::cout << "OK   " << quelle.filename().string() << ": " << ihre.size() << " Zeilen gleich\n";
        }
    }
    std::cout << dateien << " Dateien (mindestens 6 erwartet), " << abweichungen << " Abweichungen\n";
    return dateien >= 6 && abweichungen == 0 ? 0 : 1;
}
