#include "midi/Midifile.h"

#include "model/Fehler.h"
#include "model/Text.h"
#include "model/Zahlen.h"

#include <cstdio>
#include <fstream>
#include <new>
#include <system_error>

namespace lyrabo {

std::string ungueltig(const std::string& name) { return "Die Datei \"" + name + "\" ist keine gültige MIDI-Datei: "; }

void beimLaden(const std::string& name, const std::function<void()>& schritt) {
    try {
        schritt();
    } catch (const Fehler&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw MidiDateiFehler(ungueltig(name) + "Für ihren Inhalt reicht der Arbeitsspeicher nicht.");
    } catch (const std::exception&) {
        throw MidiDateiFehler(ungueltig(name) + "Ihr Inhalt lässt sich nicht lesen.");
    }
}

namespace {

// Reads the bytes of one file with bounds checks. Offsets in messages are offsets in the file,
// also when the MIDI data sits inside a RIFF wrapper (`basis` is where it starts).
class Leser {
public:
    Leser(const std::string& b, size_t basis, const std::string& name) : m_b(b), m_basis(basis), m_name(name) {}

    [[noreturn]] void fehler(const std::string& was) const { throw MidiDateiFehler(ungueltig(m_name) + was); }
    // "Spur 2, Byte 120: " for a place in the file.
    std::string ort(size_t pos) const {
        std::string s = m_spur > 0 ? "Spur " + std::to_string(m_spur) + ", " : std::string();
        return s + "Byte " + std::to_string(m_basis + pos) + ": ";
    }
    void setzeSpur(size_t s) { m_spur = s; }

    size_t groesse() const { return m_b.size(); }
    const std::string& bytes() const { return m_b; }

    uint8_t byte(size_t pos, size_t grenze, const char* was) const {
        if (pos >= grenze) fehler(ort(pos) + was + " fehlt, die Spur ist zu Ende.");
        return static_cast<uint8_t>(m_b[pos]);
    }
    uint32_t u32(size_t pos) const {
        return (uint32_t(uint8_t(m_b[pos])) << 24) | (uint32_t(uint8_t(m_b[pos + 1])) << 16) |
               (uint32_t(uint8_t(m_b[pos + 2])) << 8) | uint32_t(uint8_t(m_b[pos + 3]));
    }
    uint16_t u16(size_t pos) const { return uint16_t((uint8_t(m_b[pos]) << 8) | uint8_t(m_b[pos + 1])); }

    // A variable-length quantity: at most four bytes, seven bits each.
    uint32_t vlq(size_t& pos, size_t grenze, const char* was) const {
        size_t start = pos;
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) {
            uint8_t c = byte(pos++, grenze, was);
            v = (v << 7) | (c & 0x7F);
            if (!(c & 0x80)) return v;
        }
        fehler(ort(start) + was + " ist länger als vier Bytes.");
    }

private:
    const std::string& m_b;
    size_t m_basis;
    const std::string& m_name;
    size_t m_spur = 0;
};

// Data bytes after the status byte of a message that carries no length of its own.
int datenbytesNachStatus(uint8_t status) {
    if (status < 0xF0) {
        uint8_t art = status & 0xF0;
        return (art == 0xC0 || art == 0xD0) ? 1 : 2;
    }
    switch (status) {
    case 0xF2: return 2;             // song position
    case 0xF1: case 0xF3: return 1;  // time code quarter frame, song select
    default: return 0;               // tune request and real-time bytes
    }
}

// Tempo and time signature feed divisions later on, so values that would divide by zero or
// leave the 16-bit range are refused here, where the file is still named and placed.
void metaPruefen(const Leser& l, const MidiEreignis& e, size_t evStart) {
    if (e.metaTyp == 0x51) {
        if (e.daten.size() < 3) l.fehler(l.ort(evStart) + "Das Tempo-Ereignis hat weniger als drei Datenbytes.");
        if (e.daten[0] == 0 && e.daten[1] == 0 && e.daten[2] == 0)
            l.fehler(l.ort(evStart) + "Das Tempo-Ereignis gibt 0 Mikrosekunden pro Viertelnote an.");
    } else if (e.metaTyp == 0x58) {
        if (e.daten.size() < 2) l.fehler(l.ort(evStart) + "Das Taktart-Ereignis hat weniger als zwei Datenbytes.");
        if (e.daten[0] == 0) l.fehler(l.ort(evStart) + "Die Taktart hat den Zähler 0.");
        if (e.daten[1] > 14)
            l.fehler(l.ort(evStart) + "Der Nenner der Taktart ist 2 hoch " + std::to_string(e.daten[1]) +
                     ", höchstens 2 hoch 14 ist möglich.");
    }
}

MidiSpurDaten spurParsen(const Leser& l, size_t pos, size_t grenze) {
    const std::string& b = l.bytes();
    auto kopie = [&](size_t von, size_t n) {
        return std::vector<uint8_t>(b.begin() + static_cast<std::ptrdiff_t>(von),
                                    b.begin() + static_cast<std::ptrdiff_t>(von + n));
    };
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
            if (!laufend) l.fehler(l.ort(evStart) + "Laufender Status ohne vorheriges Statusbyte.");
            e.status = laufend;
        }
        if (e.status == 0xFF) {
            e.metaTyp = l.byte(pos++, grenze, "Der Typ des Meta-Ereignisses");
            if (e.metaTyp & 0x80) l.fehler(l.ort(pos - 1) + "Ungültiger Typ eines Meta-Ereignisses.");
            uint32_t n = l.vlq(pos, grenze, "Die Länge des Meta-Ereignisses");
            if (n > grenze - pos) l.fehler(l.ort(evStart) + "Das Meta-Ereignis reicht über das Ende der Spur hinaus.");
            e.daten = kopie(pos, n);
            pos += n;
            metaPruefen(l, e, evStart);
            bool spurEnde = e.metaTyp == 0x2F;
            spur.ereignisse.push_back(std::move(e));
            if (spurEnde) break; // whatever follows the end of track in its chunk is not part of it
            continue;
        }
        if (e.status == 0xF0 || e.status == 0xF7) {
            uint32_t n = l.vlq(pos, grenze, "Die Länge der System-Exclusive-Nachricht");
            if (n > grenze - pos)
                l.fehler(l.ort(evStart) + "Die System-Exclusive-Nachricht reicht über das Ende der Spur hinaus.");
            e.daten = kopie(pos, n);
            pos += n;
            spur.ereignisse.push_back(std::move(e));
            continue;
        }
        if (e.status < 0xF0) laufend = e.status;
        int anzahl = datenbytesNachStatus(e.status);
        e.daten.reserve(static_cast<size_t>(anzahl));
        for (int i = 0; i < anzahl; ++i) {
            uint8_t d = l.byte(pos, grenze, "Ein Datenbyte");
            if (d & 0x80) l.fehler(l.ort(pos) + "Ein Datenbyte fehlt, an seiner Stelle steht ein Statusbyte.");
            e.daten.push_back(d);
            ++pos;
        }
        spur.ereignisse.push_back(std::move(e));
    }
    return spur;
}

// The standard MIDI file inside a RIFF wrapper (RMID): the payload of its "data" chunk.
MidiDateiInhalt smfParsen(const std::string& s, size_t basis, const std::string& name) {
    Leser l(s, basis, name);
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
    if (inhalt.division & 0x8000)
        l.fehler("Die Zeitbasis ist in SMPTE-Bildern angegeben; nur Ticks pro Viertelnote werden unterstützt.");
    if (inhalt.division == 0) l.fehler("Die Zeitbasis ist 0 Ticks pro Viertelnote.");
    if (anzahl == 0) l.fehler("Sie enthält keine Spur.");
    if (anzahl > 32767)
        l.fehler("Sie gibt " + std::to_string(anzahl) + " Spuren an; mehr als 32767 Spuren sind nicht möglich.");

    size_t pos = 8 + kopfLaenge;
    while (inhalt.spuren.size() < anzahl) {
        if (pos >= s.size())
            l.fehler("Sie enthält nur " + std::to_string(inhalt.spuren.size()) + " der " + std::to_string(anzahl) +
                     " angegebenen Spuren.");
        if (s.size() - pos < 8) l.fehler(l.ort(pos) + "Der Kopf eines Blocks ist abgeschnitten.");
        uint32_t n = l.u32(pos + 4);
        bool istSpur = s.compare(pos, 4, "MTrk") == 0;
        if (istSpur) l.setzeSpur(inhalt.spuren.size() + 1);
        if (n > s.size() - pos - 8)
            l.fehler(l.ort(pos) + "Die Blocklänge " + std::to_string(n) + " reicht über das Dateiende hinaus.");
        if (istSpur) {
            inhalt.spuren.push_back(spurParsen(l, pos + 8, pos + 8 + n));
            l.setzeSpur(0);
        }
        pos += 8 + size_t{n}; // chunks of unknown kinds are skipped
    }
    return inhalt;
}

uint32_t u32le(const std::string& s, size_t pos) {
    return uint32_t(uint8_t(s[pos])) | (uint32_t(uint8_t(s[pos + 1])) << 8) | (uint32_t(uint8_t(s[pos + 2])) << 16) |
           (uint32_t(uint8_t(s[pos + 3])) << 24);
}

std::string hexPaare(const std::vector<uint8_t>& b) {
    static const char kZiffern[] = "0123456789ABCDEF";
    std::string s;
    s.reserve(b.size() * 3);
    for (size_t i = 0; i < b.size(); ++i) {
        if (i) s += ' ';
        s += kZiffern[b[i] >> 4];
        s += kZiffern[b[i] & 0x0F];
    }
    return s;
}

// A chunk name for a message: bytes outside printable ASCII become '?'.
std::string druckbar(std::string s) {
    for (char& c : s)
        if (c < 0x20 || c > 0x7E) c = '?';
    return s;
}

} // namespace

MidiDateiInhalt midiDateiParsen(const std::string& roh, const std::string& name) {
    if (roh.size() < 12 || roh.compare(0, 4, "RIFF") != 0) {
        if (roh.size() >= 4 && roh.compare(0, 4, "RIFF") == 0)
            Leser(roh, 0, name).fehler("Der RIFF-Kopf ist unvollständig.");
        return smfParsen(roh, 0, name);
    }
    if (roh.compare(8, 4, "RMID") != 0) return smfParsen(roh, 0, name);
    // Walk the chunks after "RMID" to the one named "data". Every step is checked against what is
    // left, so neither a length nor a pad byte can carry the position past the end.
    Leser riff(roh, 0, name);
    size_t pos = 12;
    while (pos < roh.size()) {
        const size_t rest = roh.size() - pos;
        if (rest < 8) riff.fehler(riff.ort(pos) + "Der Kopf eines RIFF-Blocks ist abgeschnitten.");
        const uint32_t n = u32le(roh, pos + 4);
        const bool daten = roh.compare(pos, 4, "data") == 0;
        if (n > rest - 8) {
            if (daten) riff.fehler(riff.ort(pos) + "Der RIFF-Datenblock reicht über das Dateiende hinaus.");
            riff.fehler(riff.ort(pos) + "Der RIFF-Block \"" + druckbar(roh.substr(pos, 4)) + "\" mit " +
                        std::to_string(n) + " Bytes reicht über das Dateiende hinaus.");
        }
        if (daten) return smfParsen(roh.substr(pos + 8, n), pos + 8, name);
        // RIFF chunks are padded to even lengths.
        if ((n & 1) && n == rest - 8)
            riff.fehler(riff.ort(pos) + "Dem RIFF-Block \"" + druckbar(roh.substr(pos, 4)) +
                        "\" fehlt das Füllbyte am Ende.");
        pos += 8 + size_t{n} + (n & 1);
    }
    riff.fehler("Die RIFF-Datei enthält keinen MIDI-Datenblock (\"data\").");
}

void Midifile::Action(int16_t befehl) {
    switch (befehl) {
    case 5:
    case 2:
        m_inhalt.reset();
        m_spur = 0;
        m_ereignis = 0;
        break;
    case 1:
        beimLaden(m_dateiname, [this] { dateiLaden(); });
        break;
    default:
        break;
    }
}

void Midifile::dateiLaden() {
    namespace fs = std::filesystem;
    const fs::path pfad = fs::u8path(m_dateiname);
    const std::string name = m_dateiname;
    std::error_code ec;
    if (name.empty()) throw MidiDateiFehler("Es wurde keine MIDI-Datei angegeben.");
    if (!fs::exists(pfad, ec)) throw MidiDateiFehler("Die Datei \"" + name + "\" wurde nicht gefunden.");
    if (fs::is_directory(pfad, ec)) throw MidiDateiFehler("\"" + name + "\" ist ein Ordner, keine MIDI-Datei.");
    auto groesse = fs::file_size(pfad, ec);
    if (!ec && groesse > kMidiDateiHoechstGroesse)
        throw MidiDateiFehler("Die Datei \"" + name + "\" ist mit " + std::to_string(groesse) +
                              " Bytes zu groß für eine MIDI-Datei.");
    std::ifstream in(pfad, std::ios::binary);
    if (!in) throw MidiDateiFehler("Die Datei \"" + name + "\" konnte nicht geöffnet werden.");
    std::string bytes;
    if (!ec) bytes.reserve(static_cast<size_t>(groesse));
    char puffer[65536];
    while (in.read(puffer, sizeof puffer) || in.gcount() > 0) {
        bytes.append(puffer, static_cast<size_t>(in.gcount()));
        if (bytes.size() > kMidiDateiHoechstGroesse)
            throw MidiDateiFehler("Die Datei \"" + name + "\" ist zu groß für eine MIDI-Datei.");
    }
    if (in.bad()) throw MidiDateiFehler("Die Datei \"" + name + "\" konnte nicht gelesen werden.");
    ladenAusBytes(bytes, name);
}

void Midifile::ladenAusBytes(const std::string& bytes, const std::string& name) {
    // Parse first, replace afterwards: a failure leaves what was loaded untouched.
    std::shared_ptr<const MidiDateiInhalt> neu;
    beimLaden(name, [&] { neu = std::make_shared<const MidiDateiInhalt>(midiDateiParsen(bytes, name)); });
    m_inhalt = std::move(neu);
    m_spur = 0;
    m_ereignis = 0;
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
    // The cursor is 16-bit: event 32768 and beyond cannot be selected, however many the track holds.
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
        // The sequence number is 16 bits unsigned in the file; numbers above 32767 read negative.
        if (e->metaTyp == 0 && e->daten.size() >= 2) return static_cast<int16_t>((e->daten[0] << 8) | e->daten[1]);
        return e->daten.empty() ? 0 : e->daten[0];
    }
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
    return hexPaare(b);
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
