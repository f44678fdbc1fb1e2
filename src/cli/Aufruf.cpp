#include "cli/Aufruf.h"

#include "settings/CEinstellungen.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <system_error>

namespace lyrabo::cli {

namespace {

// The transposition slider's range in the window: three octaves either way.
constexpr int kTranspoGrenze = 36;

int16_t ganzeZahl(const std::string& text, const std::string& option, int min, int max) {
    int wert = 0;
    const char* anfang = text.data();
    const char* ende = text.data() + text.size();
    if (!text.empty() && *anfang == '+') ++anfang;
    auto [p, ec] = std::from_chars(anfang, ende, wert);
    if (text.empty() || ec != std::errc() || p != ende)
        throw AufrufFehler("Ungültige Zahl für " + option + ": \"" + text + "\"");
    if (wert < min || wert > max)
        throw AufrufFehler("Der Wert für " + option + " muss zwischen " + std::to_string(min) + " und " +
                           std::to_string(max) + " liegen, nicht " + text + ".");
    return static_cast<int16_t>(wert);
}

bool jaNein(const std::string& text, const std::string& option) {
    if (text == "ja" || text == "an" || text == "1") return true;
    if (text == "nein" || text == "aus" || text == "0") return false;
    throw AufrufFehler("Für " + option + " ist nur ja oder nein erlaubt, nicht \"" + text + "\".");
}

// A length in millimetres, with a point or a German comma.
double millimeter(const std::string& text, const std::string& option, double min, double max) {
    std::string zahl = text;
    std::replace(zahl.begin(), zahl.end(), ',', '.');
    double wert = 0;
    auto [p, ec] = std::from_chars(zahl.data(), zahl.data() + zahl.size(), wert);
    if (zahl.empty() || ec != std::errc() || p != zahl.data() + zahl.size())
        throw AufrufFehler("Ungültige Zahl für " + option + ": \"" + text + "\"");
    if (!(wert >= min && wert <= max))
        throw AufrufFehler("Der Wert für " + option + " muss zwischen " + std::to_string(int(min)) + " und " +
                           std::to_string(int(max)) + " Millimetern liegen, nicht " + text + ".");
    return wert;
}

std::vector<std::string> teile(const std::string& liste) {
    std::vector<std::string> teile;
    size_t start = 0;
    while (true) {
        size_t komma = liste.find(',', start);
        teile.push_back(liste.substr(start, komma == std::string::npos ? std::string::npos : komma - start));
        if (komma == std::string::npos) break;
        start = komma + 1;
    }
    return teile;
}

// Which command accepts which option.
bool erlaubt(Befehl b, const std::string& option) {
    static const std::set<std::string> kEinstellungen = {
        "--transpo", "--quantisierung", "--kanal", "--legato", "--hoechster-ton-melodie", "--punktierte-pausen",
        "--ohne-pausen-letzter-takt", "--felder", "--saiten", "--genaue-aufloesung"};
    static const std::set<std::string> kBlatt = {"--pdf", "--svg", "--papier", "--hoch", "--quer", "--saitenabstand",
                                                 "--einpassen", "--notenform", "--kurze-pausen", "--wiederholungen",
                                                 "--begleitung"};
    switch (b) {
    case Befehl::Info:
        return option == "--spur" || option == "--genaue-aufloesung";
    case Befehl::Events:
        return option == "--spur" || option == "--hex";
    case Befehl::Convert:
        return kEinstellungen.count(option) || kBlatt.count(option) || option == "--spur" ||
               option == "--harfentext" || option == "--klangnoten" || option == "--wdb" || option == "--ausgabe" ||
               option == "--formate";
    case Befehl::Mix:
        return kEinstellungen.count(option) || kBlatt.count(option) || option == "--spur" || option == "--spuren" ||
               option == "--harfentext" || option == "--ausgabe" || option == "--formate";
    case Befehl::Hilfe:
        return false;
    }
    return false;
}

} // namespace

std::vector<std::string> quantisierungsNamen() {
    CEinstellungen frisch;
    std::vector<std::string> namen;
    for (const auto& s : *frisch.NotenLaengenStr()) namen.push_back(s->Text());
    return namen;
}

CAufruf aufrufLesen(const std::vector<std::string>& args) {
    CAufruf a;
    if (args.empty()) throw AufrufFehler("Kein Befehl angegeben.");
    const std::string& befehl = args[0];
    if (befehl == "--help" || befehl == "-h" || befehl == "hilfe") return a;
    if (befehl == "info") a.befehl = Befehl::Info;
    else if (befehl == "events") a.befehl = Befehl::Events;
    else if (befehl == "convert") a.befehl = Befehl::Convert;
    else if (befehl == "mix") a.befehl = Befehl::Mix;
    else throw AufrufFehler("Unbekannter Befehl \"" + befehl + "\".");

    bool nurDateien = false;
    std::set<std::string> gesehen;
    for (size_t i = 1; i < args.size(); ++i) {
        std::string arg = args[i];
        if (nurDateien || arg.size() < 2 || arg[0] != '-') {
            a.dateien.push_back(arg);
            continue;
        }
        if (arg == "--") {
            nurDateien = true;
            continue;
        }
        if (arg == "--help" || arg == "-h") {
            a.befehl = Befehl::Hilfe;
            return a;
        }
        std::optional<std::string> wert;
        if (size_t gleich = arg.find('='); gleich != std::string::npos) {
            wert = arg.substr(gleich + 1);
            arg = arg.substr(0, gleich);
        }
        if (!erlaubt(a.befehl, arg)) {
            bool bekannt = erlaubt(Befehl::Convert, arg) || erlaubt(Befehl::Mix, arg) || erlaubt(Befehl::Events, arg);
            if (bekannt) throw AufrufFehler("Die Option " + arg + " gilt nicht für den Befehl " + befehl + ".");
            throw AufrufFehler("Unbekannte Option \"" + arg + "\".");
        }
        if (!gesehen.insert(arg).second) throw AufrufFehler("Die Option " + arg + " ist doppelt angegeben.");

        // Switches: without a value they mean "on".
        auto schalter = [&]() { return wert ? jaNein(*wert, arg) : true; };
        if (arg == "--hex") { a.hex = schalter(); continue; }
        if (arg == "--legato") { a.optionen.Legato = schalter(); continue; }
        if (arg == "--genaue-aufloesung") { a.optionen.GenaueAufloesung = schalter(); continue; }
        if (arg == "--hoechster-ton-melodie") { a.optionen.HoechsterTonMelodie = schalter(); continue; }
        if (arg == "--punktierte-pausen") { a.optionen.PunktiertePausen = schalter(); continue; }
        if (arg == "--ohne-pausen-letzter-takt") { a.optionen.PausenLetzterTakt = !schalter(); continue; }
        if (arg == "--hoch" || arg == "--quer") {
            if (a.blatt.Quer) throw AufrufFehler("--hoch und --quer schließen einander aus.");
            a.blatt.Quer = (arg == "--quer") == schalter();
            continue;
        }

        if (!wert) {
            if (i + 1 >= args.size()) throw AufrufFehler("Der Option " + arg + " fehlt ihr Wert.");
            wert = args[++i];
        }
        const std::string& w = *wert;
        if (arg == "--spur") {
            if (w == "melodie") a.spurMelodie = true;
            else a.spur = ganzeZahl(w, arg, 1, 32767);
        } else if (arg == "--begleitung") {
            for (const auto& t : teile(w)) {
                int16_t s = ganzeZahl(t, arg, 1, 32767);
                if (std::find(a.blatt.Begleitung.begin(), a.blatt.Begleitung.end(), s) == a.blatt.Begleitung.end())
                    a.blatt.Begleitung.push_back(s);
            }
        } else if (arg == "--spuren") {
            for (const auto& t : teile(w)) {
                int16_t s = ganzeZahl(t, arg, 1, 32767);
                if (std::find(a.spuren.begin(), a.spuren.end(), s) == a.spuren.end()) a.spuren.push_back(s);
            }
        } else if (arg == "--harfentext") {
            a.harfentext = w;
        } else if (arg == "--klangnoten") {
            a.klangnoten = w;
        } else if (arg == "--wdb") {
            a.wdb = w;
        } else if (arg == "--pdf") {
            if (w.empty() || w == "-") throw AufrufFehler("--pdf braucht einen Dateinamen.");
            a.pdf = w;
        } else if (arg == "--svg") {
            if (w.empty() || w == "-") throw AufrufFehler("--svg braucht einen Dateinamen.");
            a.svg = w;
        } else if (arg == "--einpassen") {
            a.blatt.Einpassen = jaNein(w, arg);
        } else if (arg == "--kurze-pausen") {
            a.blatt.KurzePausen = jaNein(w, arg);
        } else if (arg == "--wiederholungen") {
            a.blatt.Wiederholungen = jaNein(w, arg);
        } else if (arg == "--notenform") {
            if (w == "harfe") a.blatt.Notenform = blatt::Notenform::Harfe;
            else if (w == "hals") a.blatt.Notenform = blatt::Notenform::Hals;
            else throw AufrufFehler("--notenform erlaubt nur harfe oder hals.");
        } else if (arg == "--papier") {
            if (w == "A4" || w == "a4") a.blatt.Papier = blatt::Papier::A4;
            else if (w == "A3" || w == "a3") a.blatt.Papier = blatt::Papier::A3;
            else throw AufrufFehler("--papier erlaubt nur A4 oder A3.");
        } else if (arg == "--saitenabstand") {
            a.blatt.SaitenAbstand = millimeter(w, arg, blatt::Einstellungen::kMinAbstand, blatt::Einstellungen::kMaxAbstand);
        } else if (arg == "--ausgabe") {
            if (w.empty()) throw AufrufFehler("Der Option --ausgabe fehlt der Ordner.");
            a.ausgabeOrdner = w;
        } else if (arg == "--formate") {
            a.mitHarfentext = a.mitKlangnoten = a.mitWdb = a.mitPdf = a.mitSvg = false;
            for (const auto& t : teile(w)) {
                if (t == "harfentext") a.mitHarfentext = true;
                else if (t == "klangnoten") a.mitKlangnoten = true;
                else if (t == "wdb") a.mitWdb = true;
                else if (t == "pdf") a.mitPdf = true;
                else if (t == "svg") a.mitSvg = true;
                else throw AufrufFehler("Unbekanntes Format \"" + t + "\" (erlaubt: harfentext, klangnoten, wdb, pdf, svg).");
            }
            if (a.befehl == Befehl::Mix && (a.mitKlangnoten || a.mitWdb))
                throw AufrufFehler("mix schreibt nur harfentext, pdf und svg.");
        } else if (arg == "--transpo") {
            if (w == "passend") a.optionen.TranspoPassend = true;
            else a.optionen.Transpo = ganzeZahl(w, arg, -kTranspoGrenze, kTranspoGrenze);
        } else if (arg == "--quantisierung") {
            auto namen = quantisierungsNamen();
            auto it = std::find(namen.begin(), namen.end(), w);
            if (it == namen.end()) {
                std::string liste;
                for (const auto& n : namen) liste += (liste.empty() ? "" : ", ") + n;
                throw AufrufFehler("Unbekannte Quantisierung \"" + w + "\" (erlaubt: " + liste + ").");
            }
            a.optionen.QuantPosition = static_cast<int16_t>(it - namen.begin() + 1);
        } else if (arg == "--kanal") {
            a.optionen.KanalBelegung = ganzeZahl(w, arg, 0, 2);
        } else if (arg == "--felder") {
            if (w.size() != 8 || w.find_first_not_of("01") != std::string::npos)
                throw AufrufFehler("--felder erwartet acht Ziffern 0 oder 1, zum Beispiel 11110111.");
            a.optionen.Felder = w;
        } else if (arg == "--saiten") {
            if (w != "25" && w != "37") throw AufrufFehler("--saiten erlaubt nur 25 oder 37.");
            a.optionen.Saiten = static_cast<int16_t>(w == "25" ? 25 : 37);
        }
    }

    if (a.dateien.empty()) throw AufrufFehler("Keine MIDI-Datei angegeben.");
    if (a.befehl == Befehl::Events && a.dateien.size() > 1)
        throw AufrufFehler("events zeigt die Ereignisse einer einzigen Datei.");
    if (a.befehl == Befehl::Mix && a.spuren.empty()) throw AufrufFehler("mix braucht --spuren, zum Beispiel --spuren 2,3.");
    if (gesehen.count("--formate") && !a.ausgabeOrdner)
        throw AufrufFehler("--formate gilt nur zusammen mit --ausgabe.");
    if (a.ausgabeOrdner) {
        if (a.harfentext || a.klangnoten || a.wdb)
            throw AufrufFehler("Mit --ausgabe werden die Dateinamen aus den MIDI-Dateien gebildet; "
                               "--harfentext, --klangnoten und --wdb passen nicht dazu.");
        if (a.pdf)
            throw AufrufFehler("Mit --ausgabe werden die Dateinamen aus den MIDI-Dateien gebildet; "
                               "statt --pdf gilt dort --formate mit pdf.");
        if (a.svg)
            throw AufrufFehler("Mit --ausgabe werden die Dateinamen aus den MIDI-Dateien gebildet; "
                               "statt --svg gilt dort --formate mit svg.");
        const bool convert = a.befehl == Befehl::Convert;
        if (!a.mitHarfentext && !a.mitPdf && !a.mitSvg && (!convert || (!a.mitKlangnoten && !a.mitWdb)))
            throw AufrufFehler("--formate nennt keine Ausgabe.");
    } else if (a.dateien.size() > 1 && (a.befehl == Befehl::Convert || a.befehl == Befehl::Mix)) {
        throw AufrufFehler("Mehrere MIDI-Dateien brauchen --ausgabe ORDNER.");
    }
    for (const char* option : {"--papier", "--hoch", "--quer", "--saitenabstand", "--einpassen", "--notenform",
                               "--kurze-pausen", "--wiederholungen", "--begleitung"}) {
        if (gesehen.count(option) && !a.willBlatt())
            throw AufrufFehler(std::string("Die Option ") + option +
                               " gilt nur zusammen mit --pdf, --svg oder --formate pdf oder svg.");
    }
#ifndef LYRABO_MIT_BLATT
    if (a.willBlatt()) throw AufrufFehler("Dieses lyrabo-cli ist ohne Qt gebaut und kann kein Notenblatt schreiben.");
#endif
    if (a.harfentext && a.klangnoten && *a.harfentext == "-" && *a.klangnoten == "-")
        throw AufrufFehler("Nur ein Text kann auf die Standardausgabe gehen.");
    return a;
}

std::string hilfeText() {
    std::string quant;
    for (const auto& n : quantisierungsNamen()) quant += (quant.empty() ? "" : ", ") + n;
    return
        "lyrabo-cli: MIDI-Dateien in Noten für die Tischharfe umsetzen, ohne Fenster.\n"
        "\n"
        "Aufruf:\n"
        "  lyrabo-cli info DATEI.mid... [--spur N] [--genaue-aufloesung[=ja|nein]]\n"
        "      Format, Ticks pro Viertelnote, Tempo, die Spuren mit Nummer, Name, Anzahl der\n"
        "      Ereignisse und tiefstem und höchstem Ton, die vermutete Melodiespur, die Taktarten mit ihrem Takt und die Zahl\n"
        "      der Takte (gezählt nach der Spur N, sonst nach der vorgewählten Spur); dazu eine\n"
        "      Zeile, wenn die genaue Auflösung die Umrechnung der Datei ändert.\n"
        "  lyrabo-cli events DATEI.mid [--spur N] [--hex]\n"
        "      Die Ereignisliste der Spur wie im Fenster (höchstens 500 Zeilen). Jede Zeile: der\n"
        "      Listentext, dann durch Tabulatoren getrennt Zeit, Message, Data1, Data2 (mit --hex\n"
        "      hexadezimal), die Bytes und der Text des Ereignisses.\n"
        "  lyrabo-cli convert DATEI.mid [--spur N] [Optionen] [--harfentext DATEI]\n"
        "                     [--klangnoten DATEI] [--wdb DATEI.wdb] [--pdf DATEI.pdf]\n"
        "                     [--svg DATEI.svg]\n"
        "      Setzt die Spur um wie das Fenster nach dem Öffnen der Datei und schreibt den\n"
        "      HarfeEvent-Text, den KlangNoten-Text, die Works-Datenbank und/oder das Notenblatt.\n"
        "      Ohne Ausgabe-Option geht der HarfeEvent-Text auf die Standardausgabe; \"-\" als\n"
        "      DATEI ebenso.\n"
        "  lyrabo-cli mix DATEI.mid --spuren 2,3,5 [--spur N] [Optionen] [--harfentext DATEI]\n"
        "                 [--pdf DATEI.pdf] [--svg DATEI.svg]\n"
        "      Mischt die Spuren wie \"Spuren mischen\" im Fenster und schreibt den Text, den das\n"
        "      Fenster in die Zwischenablage legt (ohne --harfentext, --pdf und --svg auf die\n"
        "      Standardausgabe), und/oder das Notenblatt der gemischten Noten.\n"
        "  lyrabo-cli --help\n"
        "\n"
        "Spur: ohne --spur die zweite Spur, wenn die Datei mindestens zwei hat, sonst die erste;\n"
        "--spur melodie nimmt die Spur, die Lyrabo für die Melodie hält (info nennt sie).\n"
        "\n"
        "Mehrere Dateien (convert, mix):\n"
        "  --ausgabe ORDNER        jede Datei wird in ORDNER unter ihrem eigenen Namen abgelegt:\n"
        "                          NAME.txt (HarfeEvent-Text), NAME.klangnoten.txt, NAME.wdb;\n"
        "                          eine fehlerhafte Datei wird gemeldet, die übrigen werden umgesetzt\n"
        "  --formate LISTE         nur diese Ausgaben: harfentext, klangnoten, wdb, pdf, svg (mit\n"
        "                          Komma; ohne die Option alle außer pdf und svg; mix kennt\n"
        "                          harfentext, pdf und svg); pdf ist das Notenblatt NAME.pdf, svg\n"
        "                          dasselbe als NAME.svg (bei mehreren Seiten NAME-1.svg, NAME-2.svg, …)\n"
        "\n"
        "Notenblatt (mit --pdf, --svg oder --formate pdf/svg; ohne Angabe gelten die im Fenster\n"
        "gewählten Einstellungen aus data/LYRABO_blatt.ini, sonst 25 Saiten A4 quer, 37 Saiten A3\n"
        "quer):\n"
        "  --svg DATEI.svg         das Notenblatt als SVG-Grafik, eine Datei je Seite: DATEI.svg bei\n"
        "                          einer Seite, sonst DATEI-1.svg, DATEI-2.svg, …\n"
        "  --begleitung 3,4        diese Spuren als Begleitung auf dem Blatt: kleinere, hellere Köpfe\n"
        "                          ohne Melodielinie, umgerechnet wie die Spur selbst\n"
        "  --papier A4|A3          Papierformat\n"
        "  --hoch, --quer          Hoch- oder Querformat\n"
        "  --saitenabstand MM      Abstand der Saiten in Millimetern, 10 bis 14 (Vorgabe 11,5)\n"
        "  --einpassen ja|nein     das ganze Lied auf ein Blatt einpassen (Vorgabe ja); nein setzt\n"
        "                          mit den natürlichen Abständen\n"
        "  --notenform harfe|hals  Notenform: harfe die Formen der Tischharfe ohne Hals (Vorgabe),\n"
        "                          hals die Noten mit Hals und Fähnchen\n"
        "  --kurze-pausen ja|nein  kurze Pausen schließen (Vorgabe ja): eine Pause kürzer als eine\n"
        "                          Achtel zwischen zwei Noten verlängert die Note davor\n"
        "  --wiederholungen ja|nein\n"
        "                          Wiederholungen zusammenfassen (Vorgabe ja)\n"
        "\n"
        "Optionen (wie im Fenster; ohne Angabe gelten die Vorgaben und die User-Daten):\n"
        "  --transpo N             Transponierung in Halbtönen (-36 bis 36); --transpo passend\n"
        "                          nimmt die kleinste, die alle Noten auf die Saiten bringt, wie\n"
        "                          \"Passend transponieren\" im Fenster (gibt es keine: Rückgabewert 4)\n"
        "  --quantisierung WERT    Quantisierung: " + quant + "\n"
        "  --kanal 0|1|2           Kanalbelegung\n"
        "  --legato[=ja|nein]      Legato\n"
        "  --hoechster-ton-melodie[=ja|nein]\n"
        "                          höchster Ton eines Akkords ist die Melodie\n"
        "  --punktierte-pausen[=ja|nein]\n"
        "                          punktierte Pausen erlauben\n"
        "  --ohne-pausen-letzter-takt[=ja|nein]\n"
        "                          den letzten Takt nicht mit Pausen auffüllen\n"
        "  --felder 11110111       die acht Felder des Textes (ID der Note, Akkord, Art, Start,\n"
        "                          -, Tonhöhe, Länge/Spur, Kanal/Länge), gesetzt wie die\n"
        "                          Kästchen im Fenster nach dem Laden; Feld 8 setzt jede neue\n"
        "                          Umsetzung selbst (beim KlangNoten-Text und beim Mischen)\n"
        "  --saiten 25|37          Saitenzahl der Harfe (Spalten der Works-Datenbank und des\n"
        "                          Notenblatts)\n"
        "  --genaue-aufloesung[=ja|nein]\n"
        "                          eine Viertelnote der Datei ist in allen Ausgaben eine Viertelnote,\n"
        "                          bei jeder Auflösung und auch ohne Tempoangabe (umgerechnet wird mit\n"
        "                          480 Ticks pro Viertel); ohne die Option gilt die Einstellung aus\n"
        "                          data/LYRABO_umrechnung.ini, sonst ja. Mit =nein rechnet Lyrabo\n"
        "                          wie früher mit der Auflösung, die die Tempoangabe setzt\n"
        "\n"
        "Texte werden in Windows-1252 mit CR LF geschrieben, Meldungen gehen auf die Fehlerausgabe.\n"
        "Eine Datei wird erst in eine temporäre Datei geschrieben und dann umbenannt.\n"
        "\n"
        "Rückgabewerte: 0 fertig, 2 falscher Aufruf (auch eine Spur, die es nicht gibt, oder eine\n"
        "falsche Dateiendung bei --wdb), 3 MIDI-Datei nicht lesbar oder ungültig, 4 Umsetzung\n"
        "fehlgeschlagen, 5 eine Datei konnte nicht geschrieben werden. Bei mehreren Dateien gilt\n"
        "der Wert des ersten Fehlers.\n";
}

} // namespace lyrabo::cli
