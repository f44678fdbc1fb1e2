#include "blatt/BlattSatz.h"

#include "blatt/Abstaende.h"
#include "blatt/Einpassen.h"
#include "blatt/KurzePausen.h"
#include "blatt/Musik.h"
#include "blatt/Seitenrahmen.h"
#include "blatt/Transposition.h"
#include "blatt/Wiederholungen.h"
#include "blatt/Zeilen.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace lyrabo::blatt {

namespace {

// A sheet longer than this is no sheet to play from: a stray event far behind the music, or hours
// of rests. It becomes one page that says so, decided before any page is drawn.
constexpr int kMaxSeiten = 2000;

// Notes beside the strings, and the transposition that would bring them all onto them: the one
// the button "Passend transponieren" and lyrabo-cli's --transpo passend set.
void ausserhalbZaehlen(Blatt& blatt, const Stueck& st, int n) {
    for (const auto& no : st.noten) {
        const int s = saiteVon(no.tonHoehe, st.transpo);
        if (s < 1 || s > n) ++blatt.ausserhalb;
    }
    if (blatt.ausserhalb == 0) return;
    if (const auto t = passendeTransposition(tonumfang(st), n)) {
        blatt.transpoVorschlag = true;
        blatt.vorschlag = int16_t(*t);
    }
}

std::string warnung(const Blatt& blatt) {
    if (blatt.ausserhalb == 0) return "";
    return std::to_string(blatt.ausserhalb) + (blatt.ausserhalb == 1 ? " Note liegt" : " Noten liegen") +
           " neben den Saiten (rot, Pfeil nach außen). " +
           (blatt.transpoVorschlag ? "Mit Transposition " + vorzeichenText(blatt.vorschlag) + " passen alle."
                                   : "Keine Transposition bringt alle auf die Saiten.");
}

Blatt zuLang(const Stueck& st, const Seitenmass& m, int seiten) {
    Blatt b;
    b.hinweis = "Das Notenblatt hätte " + std::to_string(seiten) + " Seiten; mehr als " + std::to_string(kMaxSeiten) +
                " Seiten legt Lyrabo nicht an.";
    Seite seite;
    seite.breite = m.format.breite;
    seite.hoehe = m.format.hoehe;
    const double x = m.seitenRand + 10;
    seite.elemente.push_back({Text{{x, m.musikOben + 10}, st.titel, 14, Ausrichtung::Links, true}});
    seite.elemente.push_back({Text{{x, m.musikOben + 22}, b.hinweis, 12}});
    seite.elemente.push_back({Text{{x, m.musikOben + 29}, "Liegt ein Ereignis der MIDI-Datei weit hinter der Musik?", 12}});
    b.seiten.push_back(std::move(seite));
    return b;
}

} // namespace

Blatt setzen(const Stueck& stueck, const Einstellungen& einstellungen) {
    const Einstellungen e = begrenzt(einstellungen);
    std::optional<Stueck> geschlossen, gefaltet;
    if (e.kurzePausenSchliessen) geschlossen = kurzePausenSchliessen(stueck);
    Faltung faltung;
    if (e.wiederholungenZusammenfassen) faltung = wiederholungenFinden(geschlossen ? *geschlossen : stueck, e.notenTexte);
    if (faltung.gefaltet()) gefaltet = geschrieben(geschlossen ? *geschlossen : stueck, faltung);
    const Stueck& st = gefaltet ? *gefaltet : geschlossen ? *geschlossen : stueck;

    Zeilen zeilen = zeilenBilden(st);
    zeilen.zeichen = taktzeichen(faltung, int(zeilen.taktStart.size()) - 1);
    const Abstaende abstaende = abstaendeBestimmen(zeilen, st, e);
    const Seitenmass mass = seitenMass(e);
    const int n = zeilen.saiten;
    const auto streifen = streifenTeilen(n, e.saitenAbstand, mass.format.breite, mass.seitenRand, mass.streifenLinks);
    const size_t mindestens = seitenNoetig(zeilen, abstaende, mass.musikHoehe()) * streifen.size();
    if (mindestens > size_t(kMaxSeiten)) return zuLang(st, mass, int(std::min<size_t>(mindestens, 1u << 30)));
    const Einpassung ep = einpassen(zeilen, abstaende, mass.musikOben, mass.musikHoehe(), e.einpassen);

    Blatt blatt;
    blatt.faltung = std::move(faltung);
    ausserhalbZaehlen(blatt, st, n);
    Kopfzeile kopf;
    kopf.seite = 0;
    kopf.titel = st.titel;
    kopf.tempo = st.tempo > 0 ? int(std::lround(60000000.0 / st.tempo)) : 120;
    kopf.saiten = n;
    kopf.transpo = st.transpo;
    kopf.seiten = int(ep.anfaenge.size() * streifen.size());
    kopf.streifenAnzahl = int(streifen.size());
    kopf.warnung = warnung(blatt);
    kopf.wiederholungen = blatt.faltung.gefaltet();
    const auto& z = zeilen.zeilen;
    for (size_t v = 0; v < ep.anfaenge.size(); ++v) {
        const size_t von = ep.anfaenge[v], bis = v + 1 < ep.anfaenge.size() ? ep.anfaenge[v + 1] : z.size();
        const int64_t vonU = von < z.size() ? z[von].u : 0;
        const int64_t bisU = bis < z.size() ? z[bis].u : zeilen.taktStart.back();
        const int ersterTakt = int(std::upper_bound(zeilen.taktStart.begin(), zeilen.taktStart.end(), vonU) - zeilen.taktStart.begin());
        for (size_t si = 0; si < streifen.size(); ++si) {
            const int a = streifen[si].first, b = streifen[si].second;
            Seite seite;
            seite.breite = mass.format.breite;
            seite.hoehe = mass.format.hoehe;
            seite.streifen = int(si) + 1;
            seite.vonTick = int32_t(std::min<int64_t>(vonU / 4, INT32_MAX));
            seite.bisTick = int32_t(std::min<int64_t>(bisU / 4, INT32_MAX));
            const double x0 = streifen.size() == 1 ? (mass.format.breite - (n - 1) * e.saitenAbstand) / 2 : mass.streifenLinks;
            ++kopf.seite;
            kopf.streifen = int(si) + 1;
            kopf.taktart = zeilen.taktart(ersterTakt);
            seitenRahmen(seite, mass, e, a, b, n, x0, kopf);
            Streifenlage lage;
            lage.a = a;
            lage.b = b;
            lage.x0 = x0;
            const double xl = x0, xr = x0 + (b - a) * e.saitenAbstand;
            lage.links = a > 1 ? xl - e.saitenAbstand / 2 : 0;
            lage.rechts = b < n ? xr + e.saitenAbstand / 2 : mass.format.breite;
            lage.musikOben = mass.musikOben;
            lage.musikUnten = mass.musikUnten;
            musikZeichnen(seite, zeilen, abstaende, von, bis, st, e, lage);
            blatt.seiten.push_back(std::move(seite));
        }
    }
    if (blatt.seiten.empty()) {
        // No rows at all: still a page with the frame, so that the sheet says what it is.
        Seite seite;
        seite.breite = mass.format.breite;
        seite.hoehe = mass.format.hoehe;
        kopf.seite = kopf.seiten = 1;
        seitenRahmen(seite, mass, e, 1, n, n, (mass.format.breite - (n - 1) * e.saitenAbstand) / 2, kopf);
        blatt.seiten.push_back(std::move(seite));
    }
    return blatt;
}

} // namespace lyrabo::blatt
