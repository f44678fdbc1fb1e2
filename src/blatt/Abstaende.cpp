#include "blatt/Abstaende.h"

#include "blatt/Notenzeichen.h"

#include <algorithm>
#include <cmath>

namespace lyrabo::blatt {

namespace {

// The next row starts below this share of both rows' heads: clearly later, still tight.
constexpr double kFolge = 0.8, kFolgeLuft = 0.15;
// A lyric's box around its baseline (6 pt: ascent and descent) and the air around it.
constexpr double kTextOben = 1.65, kTextUnten = 0.55, kTextLuft = 0.25;

struct Liedtext {
    size_t zeile;
    double von, bis; // x, in string steps from string 1
};

} // namespace

double liedTextVersatz(int sechzehntel, Notenform form) {
    return notenMass(sechzehntel, form).rx + (wertVon(sechzehntel).punktiert ? 1.9 : 1.1);
}

double natuerlicherAbstand(int64_t dauerU, int64_t tpq, double mmProViertel) {
    const double sechzehntel = std::clamp(double(dauerU) / double(std::max<int64_t>(1, tpq)), 0.5, 64.0);
    return kSechzehntelRaum * mmProViertel / 6.0 * (1 + 0.5 * std::log2(sechzehntel));
}

Abstaende abstaendeBestimmen(const Zeilen& zeilen, const Stueck& st, const Einstellungen& e) {
    const auto& z = zeilen.zeilen;
    Abstaende a;
    const size_t n = z.size();
    a.oben.assign(n, 0.5);
    a.unten.assign(n, 0.5);
    for (size_t i = 0; i < n; ++i) {
        for (const auto& t : z[i].noten) {
            const Zeichenmass m = notenMass(t.sechzehntel, e.notenform);
            a.oben[i] = std::max(a.oben[i], m.oben);
            a.unten[i] = std::max(a.unten[i], m.unten);
        }
        for (const auto& p : z[i].pausen) {
            const double h = pausenHalbeHoehe(p.sechzehntel);
            a.oben[i] = std::max(a.oben[i], h);
            a.unten[i] = std::max(a.unten[i], h);
        }
        // Repeat signs under the bar line push it up.
        if (z[i].taktStart && z[i].takt >= 1 && size_t(z[i].takt) <= zeilen.zeichen.size())
            a.oben[i] += zeichenRaum(zeilen.zeichen[size_t(z[i].takt - 1)]);
    }
    if (n < 2) return a;
    a.dauer.resize(n - 1);
    a.natuerlich.resize(n - 1);
    a.mindest.resize(n - 1);
    for (size_t i = 0; i + 1 < n; ++i) {
        a.dauer[i] = z[i + 1].u - z[i].u;
        a.natuerlich[i] = natuerlicherAbstand(a.dauer[i], zeilen.tpq, e.mmProViertel);
        a.mindest[i] = kFolge * (a.unten[i] + a.oben[i + 1]) + kFolgeLuft;
    }

    // Constraints between rows that need not be neighbours: each raises the room just above the
    // later row by what is missing. `summe[i]` is the least y of row i below row 0.
    std::vector<double> summe(n, 0);
    std::vector<size_t> letzte(size_t(zeilen.saiten) + 2, SIZE_MAX); // last row with a head per string
    std::vector<double> letzteUnten(size_t(zeilen.saiten) + 2, 0);
    std::vector<Liedtext> texte; // lyrics still near enough to matter
    const double abstand = e.saitenAbstand;
    auto brauchen = [&](size_t j, size_t i, double noetig) {
        const double fehlt = noetig - (summe[i] - summe[j]);
        if (fehlt > 0) {
            a.mindest[i - 1] += fehlt;
            summe[i] += fehlt;
        }
    };
    for (size_t i = 0; i < n; ++i) {
        if (i > 0) summe[i] = summe[i - 1] + a.mindest[i - 1];
        // Two heads on one string: 1 mm of paper between them.
        for (const auto& t : z[i].noten) {
            const size_t s = size_t(t.saite);
            if (letzte[s] != SIZE_MAX && letzte[s] != i)
                brauchen(letzte[s], i, letzteUnten[s] + notenMass(t.sechzehntel, e.notenform).oben + kKopfLuft);
        }
        // Lyrics above: clear of this row's heads on the strings they cross and of its lyrics.
        texte.erase(std::remove_if(texte.begin(), texte.end(), [&](const Liedtext& l) { return summe[i] - summe[l.zeile] > 6.0; }), texte.end());
        std::vector<Liedtext> neu;
        if (e.notenTexte)
            for (const auto& t : z[i].noten) {
                const Note& no = st.noten[size_t(t.note)];
                if (!t.anfang || no.text.empty()) continue;
                const double versatz = liedTextVersatz(t.sechzehntel, e.notenform) / abstand, breite = textBreite(no.text, kLiedTextGroesse) / abstand;
                if (t.textLinks) neu.push_back({i, t.saite - 1 - versatz - breite, t.saite - 1 - versatz});
                else neu.push_back({i, t.saite - 1 + versatz, t.saite - 1 + versatz + breite});
            }
        for (const auto& l : texte) {
            for (const auto& t : z[i].noten) {
                const double rx = notenMass(t.sechzehntel, e.notenform).rx / abstand;
                if (t.saite - 1 + rx > l.von && t.saite - 1 - rx < l.bis)
                    brauchen(l.zeile, i, kTextUnten + notenMass(t.sechzehntel, e.notenform).oben + kTextLuft);
            }
            for (const auto& m : neu)
                if (m.von < l.bis && l.von < m.bis) brauchen(l.zeile, i, kTextOben + kTextUnten + kTextLuft);
        }
        // This row's lyrics: clear of the heads above on the strings they cross.
        for (const auto& l : neu)
            for (int s = std::max(1, int(std::floor(l.von - 1.8 / abstand)) + 1); s <= zeilen.saiten && s - 1 - 1.8 / abstand < l.bis; ++s)
                if (letzte[size_t(s)] != SIZE_MAX && letzte[size_t(s)] != i) brauchen(letzte[size_t(s)], i, letzteUnten[size_t(s)] + kTextOben + kTextLuft);
        for (const auto& t : z[i].noten) {
            letzte[size_t(t.saite)] = i;
            letzteUnten[size_t(t.saite)] = notenMass(t.sechzehntel, e.notenform).unten;
        }
        texte.insert(texte.end(), neu.begin(), neu.end());
    }
    return a;
}

} // namespace lyrabo::blatt
