#pragma once
// Builds standard MIDI files byte by byte for tests and benchmarks.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

namespace lyrabo::test {

class MidiSpur {
public:
    // Any event: delta time, then the bytes as they stand (status included, or not for running status).
    MidiSpur& ev(uint32_t delta, std::initializer_list<uint8_t> daten) {
        vlq(delta);
        m_b.insert(m_b.end(), daten.begin(), daten.end());
        return *this;
    }
    MidiSpur& an(uint32_t delta, int kanal, int ton, int vel = 100) {
        return ev(delta, {uint8_t(0x90 | (kanal - 1)), uint8_t(ton), uint8_t(vel)});
    }
    MidiSpur& aus(uint32_t delta, int kanal, int ton, bool alsNoteOff = true) {
        return alsNoteOff ? ev(delta, {uint8_t(0x80 | (kanal - 1)), uint8_t(ton), 64})
                          : ev(delta, {uint8_t(0x90 | (kanal - 1)), uint8_t(ton), 0});
    }
    // A note of `laenge` ticks starting `delta` after the previous event.
    MidiSpur& note(uint32_t delta, int ton, uint32_t laenge, int kanal = 1) {
        an(delta, kanal, ton);
        return aus(laenge, kanal, ton);
    }
    MidiSpur& meta(uint32_t delta, uint8_t typ, const std::string& text) {
        vlq(delta);
        m_b.push_back(0xFF);
        m_b.push_back(typ);
        vlq(static_cast<uint32_t>(text.size()));
        m_b.insert(m_b.end(), text.begin(), text.end());
        return *this;
    }
    MidiSpur& name(const std::string& n) { return meta(0, 3, n); }
    MidiSpur& lyric(uint32_t delta, const std::string& t) { return meta(delta, 5, t); }
    MidiSpur& tempo(uint32_t delta, uint32_t usProViertel) {
        return ev(delta, {0xFF, 0x51, 3, uint8_t(usProViertel >> 16), uint8_t(usProViertel >> 8), uint8_t(usProViertel)});
    }
    MidiSpur& taktart(uint32_t delta, int zaehler, int nennerExponent) {
        return ev(delta, {0xFF, 0x58, 4, uint8_t(zaehler), uint8_t(nennerExponent), 24, 8});
    }
    MidiSpur& ende(uint32_t delta = 0) {
        m_beendet = true;
        return ev(delta, {0xFF, 0x2F, 0});
    }
    // Leaves the track without an end-of-track event.
    MidiSpur& ohneEnde() {
        m_beendet = true;
        return *this;
    }

    std::vector<uint8_t> bytes() const {
        auto b = m_b;
        if (!m_beendet) b.insert(b.end(), {0x00, 0xFF, 0x2F, 0x00});
        return b;
    }

private:
    void vlq(uint32_t v) {
        uint8_t buf[5];
        int n = 0;
        buf[n++] = v & 0x7F;
        while (v >>= 7) buf[n++] = uint8_t(0x80 | (v & 0x7F));
        while (n) m_b.push_back(buf[--n]);
    }
    std::vector<uint8_t> m_b;
    bool m_beendet = false;
};

class MidiBauer {
public:
    explicit MidiBauer(uint16_t division = 480, uint16_t format = 1) : m_div(division), m_format(format) {}

    MidiSpur& spur() {
        m_spuren.emplace_back();
        return m_spuren.back();
    }
    MidiSpur& spur(size_t i) { return m_spuren.at(i); }

    std::string bytes() const {
        std::string s = "MThd";
        u32(s, 6);
        u16(s, m_format);
        u16(s, static_cast<uint16_t>(m_spuren.size()));
        u16(s, m_div);
        for (const auto& sp : m_spuren) {
            auto b = sp.bytes();
            s += "MTrk";
            u32(s, static_cast<uint32_t>(b.size()));
            s.append(b.begin(), b.end());
        }
        return s;
    }

    std::filesystem::path schreiben(const std::filesystem::path& pfad) const {
        std::ofstream out(pfad, std::ios::binary | std::ios::trunc);
        auto b = bytes();
        out.write(b.data(), static_cast<std::streamsize>(b.size()));
        return pfad;
    }

private:
    static void u16(std::string& s, uint16_t v) {
        s += char(v >> 8);
        s += char(v & 0xFF);
    }
    static void u32(std::string& s, uint32_t v) {
        u16(s, uint16_t(v >> 16));
        u16(s, uint16_t(v & 0xFFFF));
    }
    uint16_t m_div, m_format;
    std::vector<MidiSpur> m_spuren;
};

// Four bytes of a little-endian length, as RIFF chunks give it.
inline std::string le32(size_t v) {
    return {char(v & 0xFF), char((v >> 8) & 0xFF), char((v >> 16) & 0xFF), char((v >> 24) & 0xFF)};
}

// Bytes from hex pairs separated by blanks ("4D 54 68 64").
inline std::string ausHex(const std::string& hex) {
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 3) bytes += char(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

} // namespace lyrabo::test
