#include "midi/Midifile.h"

#include "model/Fehler.h"
#include "model/Text.h"
#include "model/Zahlen.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace lyrabo {

namespace {

class Leser {
public:
    Leser(const std::string& b, const std::string& name) : m_b(b), m_name(name) {}

    [[noreturn]] void fehler(const std::string& was) const {
        throw MidiDateiFehler("Die Datei \"" + m_name + "\" ist keine gültige MIDI-Datei: " + was);
    }
    std::string ort(size_t pos) const {
        std::string s = m_spur > 0 ? "Spur " + std::to_string(m_spur) + ", " : std::string();
        return s + "Byte " + std::to_string(pos);
    }

    void setzeSpur(int s) { m_spur = s; }

    bool ende(size_t pos, size_t grenze) const { return pos >= grenze; }
    uint8_t byte(size_t pos, size_t grenze, const char* was) const {
        if (pos >= grenze) fehler(ort(pos) + ": " + was + " fehlt, der Block ist zu Ende.");
        return static_cast<uint8_t>(m_b[pos]);
    }
    uint32_t u32(size_t pos) const {
        return (uint32_t(uint8_t(m_b[pos])) << 24) | (uint32_t(uint8_t(m_b[pos + 1])) << 16) |
               (uint32_t(uint8_t(m_b[pos + 2])) << 8) | uint32_t(uint8_t(m_b[pos + 3]));
    }
    uint16_t u16(size_t pos) const { return uint16_t((uint8_t(m_b[pos]) << 8) | uint8_t(m_b[pos + 1])); }

    // A variable-length quantity of at most four bytes.
    uint32_t vlq(size_t& pos, size_t grenze, const char* was) const {
        size_t start = pos;
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) {
            uint8_t c = byte(pos++, grenze, was);
            v = (v << 7) | (c & 0x7F);
            if (!(c & 0x80)) return v;
        }
        fehler(ort(start) + ": " + was + " ist länger als vier Bytes.");
    }

    const std::string& bytes() const { return m_b; }

private:
    const std::string& m_b;
    const std::string& m_name;
    int m_spur = 0;
};

MidiSpurDaten spurParsen(Leser& l, size_t pos, size_t grenze) {
    MidiSpurDaten spur;
    uint8_t laufend = 0;
    while (pos < grenze) {
        MidiEreignis e;
        e.delta = l.vlq(pos, grenze, "Die Zeitangabe");
        size_t evStart = pos;
        uint8_t c = l.byte(pos, grenze, "Das Ereignis");
        if (c & 0x80) {
            ++pos;
            e.status = c;
        } else {
            if (!laufend) l.fehler(l.ort(evStart) + ": Laufender Status ohne vorheriges Statusbyte.");
            e.status = laufend;
        }
        if (e.status == 0xFF) {
            e.metaTyp = l.byte(pos++, grenze, "Der Typ des Meta-Ereignisses");
            if (e.metaTyp & 0x80) l.fehler(l.ort(pos - 1) + ": Ungültiger Typ eines Meta-Ereignisses.");
            uint32_t n = l.vlq(pos, grenze, "Die Länge des Meta-Ereignisses");
            if (n > grenze - pos) l.fehler(l.ort(evStart) + ": Das Meta-Ereignis reicht über das Ende der Spur hinaus.");
            e.daten.assign(l.bytes().begin() + static_cast<long>(pos), l.bytes().begin() + static_cast<long>(pos + n));
            pos += n;
            spur.ereignisse.push_back(std::move(e));
            if (spur.ereignisse.back().metaTyp == 0x2F) break; // end of track: the rest of the chunk is ignored
            continue;
        }
        if (e.status == 0xF0 || e.status == 0xF7) {
            uint32_t n = l.vlq(pos, grenze, "Die Länge der System-Exclusive-Nachricht");
            if (n > grenze - pos) l.fehler(l.ort(evStart) + ": Die System-Exclusive-Nachricht reicht über das Ende der Spur hinaus.");
            e.daten.assign(l.bytes().begin() + static_cast<long>(pos), l.bytes().begin() + static_cast<long>(pos + n));
            pos += n;
            spur.ereignisse.push_back(std::move(e));
            continue;
        }
        int anzahl;
        if (e.status < 0xF0) {
            uint8_t art = e.status & 0xF0;
            anzahl = (art == 0xC0 || art == 0xD0) ? 1 : 2;
            laufend = e.status;
        } else {
            switch (e.status) {
            case 0xF2: anzahl = 2; break;
            case 0xF1: case 0xF3: anzahl = 1; break;
            default: anzahl = 0; break;
            }
        }
        for (int i = 0; i < anzahl; ++i) {
            uint8_t d = l.byte(pos, grenze, "Ein Datenbyte");
            if (d & 0x80) l.fehler(l.ort(pos) + ": Ein Datenbyte fehlt (Statusbyte an seiner Stelle).");
            e.daten.push_back(d);
            ++pos;
        }
        spur.ereignisse.push_back(std::move(e));
    }
    return spur;
}

} // namespace

MidiDateiInhalt midiDateiParsen(const std::string& roh, const std::string& name) {
    const std::string* b = &roh;
    std::string innen;
    Leser vorab(roh, name);
    // A RIFF-wrapped file (RMID) carries the standard MIDI file in its "data" chunk.
    if (roh.size() >= 12 && roh.compare(0, 4, "RIFF") == 0 && roh.compare(8, 4, "RMID") == 0) {
        size_t pos = 12;
        bool gefunden = false;
        while (pos + 8 <= roh.size()) {
            uint32_t n = uint32_t(uint8_t(roh[pos + 4])) | (uint32_t(uint8_t(roh[pos + 5])) << 8) |
                         (uint32_t(uint8_t(roh[pos + 6])) << 16) | (uint32_t(uint8_t(roh[pos + 7])) << 24);
            if (roh.compare(pos, 4, "data") == 0) {
                if (n > roh.size() - pos - 8) vorab.fehler("Der RIFF-Datenblock reicht über das Dateiende hinaus.");
                innen = roh.substr(pos + 8, n);
                gefunden = true;
                break;
            }
            if (n > roh.size() - pos - 8) break;
            pos += 8 + n + (n & 1);
        }
        if (!gefunden) vorab.fehler("Die RIFF-Datei enthält keinen MIDI-Datenblock.");
        b = &innen;
    }
    Leser l(*b, name);
    const std::string& s = *b;
    if (s.size() < 4 || s.compare(0, 4, "MThd") != 0) l.fehler("Sie beginnt nicht mit einem MIDI-Kopf (MThd).");
    if (s.size() < 14) l.fehler("Der MIDI-Kopf ist unvollständig.");
    uint32_t kopfLaenge = l.u32(4);
    if (kopfLaenge < 6) l.fehler("Der MIDI-Kopf ist zu kurz.");
    if (kopfLaenge > s.size() - 8) l.fehler("Der MIDI-Kopf reicht über das Dateiende hinaus.");
    MidiDateiInhalt inhalt;
    inhalt.format = l.u16(8);
    uint16_t anzahl = l.u16(10);
    inhalt.division = l.u16(12);
    if (inhalt.format > 2) l.fehler("Unbekanntes Format " + std::to_string(inhalt.format) + ".");
    if (inhalt.division & 0x8000) l.fehler("SMPTE-Zeitbasis wird nicht unterstützt, nur Ticks pro Viertelnote.");
    if (inhalt.division == 0) l.fehler("Die Zeitbasis ist 0 Ticks pro Viertelnote.");
    if (anzahl > 32767) l.fehler("Sie gibt " + std::to_string(anzahl) + " Spuren an, mehr als 32767 sind nicht möglich.");

    size_t pos = 8 + kopfLaenge;
    inhalt.spuren.reserve(anzahl);
    while (inhalt.spuren.size() < anzahl) {
        if (pos >= s.size()) {
            l.fehler("Sie enthält nur " + std::to_string(inhalt.spuren.size()) + " von " + std::to_string(anzahl) +
                     " angegebenen Spuren.");
        }
        if (s.size() - pos < 8) l.fehler("Byte " + std::to_string(pos) + ": Der Blockkopf ist abgeschnitten.");
        uint32_t n = l.u32(pos + 4);
        bool istSpur = s.compare(pos, 4, "MTrk") == 0;
        if (n > s.size() - pos - 8) {
            if (istSpur) l.setzeSpur(static_cast<int>(inhalt.spuren.size()) + 1);
            l.fehler(l.ort(pos) + ": Die Blocklänge " + std::to_string(n) + " reicht über das Dateiende hinaus.");
        }
        if (istSpur) {
            l.setzeSpur(static_cast<int>(inhalt.spuren.size()) + 1);
            inhalt.spuren.push_back(spurParsen(l, pos + 8, pos + 8 + n));
            l.setzeSpur(0);
        }
        pos += 8 + n; // unknown chunks are skipped
    }
    return inhalt;
}

void Midifile::Action(int16_t befehl) {
    switch (befehl) {
    case 5:
    case 2:
        m_inhalt.reset();
        m_spur = 0;
        m_ereignis = 0;
        break;
    case 1: {
        m_inhalt.reset();
        m_spur = 0;
        m_ereignis = 0;
        std::ifstream in(std::filesystem::u8path(m_dateiname), std::ios::binary);
        if (!in) throw MidiDateiFehler("Die Datei \"" + m_dateiname + "\" konnte nicht geöffnet werden.");
        std::stringstream ss;
        ss << in.rdbuf();
        if (in.bad()) throw MidiDateiFehler("Die Datei \"" + m_dateiname + "\" konnte nicht gelesen werden.");
        ladenAusBytes(ss.str(), m_dateiname);
        break;
    }
    default:
        break;
    }
}

void Midifile::ladenAusBytes(const std::string& bytes, const std::string& name) {
    m_inhalt.reset();
    m_spur = 0;
    m_ereignis = 0;
    m_inhalt = std::make_shared<const MidiDateiInhalt>(midiDateiParsen(bytes, name));
}

int16_t Midifile::TrackCount() const { return m_inhalt ? static_cast<int16_t>(m_inhalt->spuren.size()) : 0; }
int16_t Midifile::TicksPerQuarterNote() const { return m_inhalt ? static_cast<int16_t>(m_inhalt->division) : 0; }
int16_t Midifile::Format() const { return m_inhalt ? static_cast<int16_t>(m_inhalt->format) : 0; }

void Midifile::Track(int32_t nr) {
    int16_t n = cint16(int64_t{nr});
    if (!m_inhalt || n < 1 || n > TrackCount())
        throw IndexFehler("Die Spur " + std::to_string(nr) + " gibt es in dieser Datei nicht.");
    m_spur = n;
    m_ereignis = 0;
}

const MidiSpurDaten& Midifile::spur() const { return m_inhalt->spuren[static_cast<size_t>(m_spur - 1)]; }

int32_t Midifile::EventCount() const {
    if (!m_inhalt || m_spur < 1) return 0;
    return static_cast<int32_t>(spur().ereignisse.size());
}

void Midifile::Event(int32_t nr) {
    int16_t n = cint16(int64_t{nr});
    if (n < 1 || n > EventCount())
        throw IndexFehler("Das Ereignis " + std::to_string(nr) + " gibt es in Spur " + std::to_string(m_spur) + " nicht.");
    m_ereignis = n;
}

const MidiEreignis* Midifile::aktuell() const {
    if (!m_inhalt || m_spur < 1 || m_ereignis < 1) return nullptr;
    return &spur().ereignisse[static_cast<size_t>(m_ereignis - 1)];
}

int16_t Midifile::Message() const {
    auto e = aktuell();
    return e ? e->status : 0;
}

int16_t Midifile::Data1() const {
    auto e = aktuell();
    if (!e) return 0;
    if (e->status == 0xFF) return e->metaTyp;
    return e->daten.empty() ? 0 : e->daten[0];
}

int16_t Midifile::Data2() const {
    auto e = aktuell();
    if (!e) return 0;
    if (e->status == 0xFF) {
        if (e->metaTyp == 0 && e->daten.size() >= 2) return static_cast<int16_t>((e->daten[0] << 8) | e->daten[1]);
        return e->daten.empty() ? 0 : e->daten[0];
    }
    if (e->status == 0xF0 || e->status == 0xF7) return e->daten.size() >= 2 ? e->daten[1] : 0;
    return e->daten.size() >= 2 ? e->daten[1] : 0;
}

int32_t Midifile::Time() const {
    auto e = aktuell();
    return e ? static_cast<int32_t>(e->delta) : 0;
}

std::string Midifile::BufferText() const {
    auto e = aktuell();
    if (!e) return {};
    std::vector<uint8_t> b{e->status};
    if (e->status == 0xFF) b.push_back(e->metaTyp);
    b.insert(b.end(), e->daten.begin(), e->daten.end());
    std::string s;
    char puffer[4];
    for (size_t i = 0; i < b.size(); ++i) {
        std::snprintf(puffer, sizeof puffer, "%02X", b[i]);
        if (i) s += ' ';
        s += puffer;
    }
    return s;
}

std::string Midifile::TextBytes() const {
    auto e = aktuell();
    if (!e || e->status != 0xFF || e->metaTyp < 1 || e->metaTyp > 15) return {};
    return std::string(e->daten.begin(), e->daten.end());
}

std::string Midifile::Text() const { return alsAnzeigeText(TextBytes()); }

int32_t Midifile::Tempo() const {
    auto e = aktuell();
    if (!e || e->status != 0xFF || e->metaTyp != 0x51 || e->daten.size() < 3) return 0;
    return (e->daten[0] << 16) | (e->daten[1] << 8) | e->daten[2];
}

int16_t Midifile::Numerator() const {
    auto e = aktuell();
    if (!e || e->status != 0xFF || e->metaTyp != 0x58 || e->daten.size() < 2) return 0;
    return e->daten[0];
}

int16_t Midifile::Denominator() const {
    auto e = aktuell();
    if (!e || e->status != 0xFF || e->metaTyp != 0x58 || e->daten.size() < 2) return 0;
    return e->daten[1];
}

} // namespace lyrabo
