#include "blatt/Wiederholungen.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>

namespace lyrabo::blatt {

namespace {

constexpr int kMaxTakte = 32767; // as many bars as the sheet draws
constexpr int kMaxLauf = 128;    // longest run looked for, in bars: a verse or a tune's part is far shorter
constexpr int kMaxKlang = 16;    // bars a held note is followed into; a bar held longer is never folded

int taktVon(const std::vector<int64_t>& anfang, int64_t tick) {
    const int n = int(anfang.size()) - 1;
    const int t = int(std::upper_bound(anfang.begin(), anfang.end(), tick) - anfang.begin()) - 1;
    return std::clamp(t, 0, std::max(0, n - 1));
}

void anhaengen(std::string& s, int64_t v) {
    char b[sizeof v];
    std::memcpy(b, &v, sizeof v);
    s.append(b, sizeof v);
}

// What must be equal for two bars to be the same bar: length and time signature, every note and
// rest that starts in it (where, how long, which string, the lyric if it counts), and what still
// sounds into it from before (a tie over the bar line sounds on in the repeat as well).
struct Inhalte {
    std::vector<int> id;           // equal bars have equal ids
    std::vector<int> noten;        // notes starting before the bar: prefix counts, one more than bars
    std::vector<int64_t> reichtBis; // the latest end of what starts in the bar
};

Inhalte inhalteVergleichen(const Stueck& st, const std::vector<int64_t>& a, bool mitTexten) {
    const int n = int(a.size()) - 1;
    auto teile = std::vector<std::vector<std::string>>(size_t(n));
    std::vector<int> einzig(size_t(n) + 1, 0); // held too long: a difference array over the bars
    Inhalte in;
    in.reichtBis.assign(size_t(n), 0);
    in.noten.assign(size_t(n) + 1, 0);

    auto eintragen = [&](char art, int64_t start, int64_t laenge, int ton, const std::string* text) {
        const int t = taktVon(a, start);
        const int64_t ende = start + std::max<int64_t>(0, laenge);
        std::string s(1, art);
        anhaengen(s, start - a[size_t(t)]);
        anhaengen(s, laenge);
        anhaengen(s, ton);
        if (text) s += *text;
        teile[size_t(t)].push_back(std::move(s));
        in.reichtBis[size_t(t)] = std::max(in.reichtBis[size_t(t)], ende);
        for (int k = t + 1; k < n && a[size_t(k)] < ende; ++k) {
            if (k - t > kMaxKlang) {
                ++einzig[size_t(k)];
                --einzig[size_t(taktVon(a, ende - 1)) + 1];
                break;
            }
            std::string h(1, char(art + 1));
            anhaengen(h, ende - a[size_t(k)]);
            anhaengen(h, ton);
            teile[size_t(k)].push_back(std::move(h));
        }
    };
    for (const auto& no : st.noten) {
        eintragen('N', no.start, no.laenge, no.tonHoehe, mitTexten ? &no.text : nullptr);
        ++in.noten[size_t(taktVon(a, no.start)) + 1];
    }
    for (const auto& p : st.pausen) eintragen('P', p.start, p.laenge, p.tonHoehe, nullptr);
    for (int t = 0; t < n; ++t) in.noten[size_t(t) + 1] += in.noten[size_t(t)];

    std::unordered_map<std::string, int> ids;
    in.id.resize(size_t(n));
    int gehalten = 0;
    for (int t = 0; t < n; ++t) {
        gehalten += einzig[size_t(t)];
        std::string s;
        const Takt takt = t < int(st.takte.size()) ? st.takte[size_t(t)] : st.takte.empty() ? Takt{} : st.takte.back();
        anhaengen(s, a[size_t(t) + 1] - a[size_t(t)]);
        anhaengen(s, takt.zaehler);
        anhaengen(s, takt.nenner);
        auto& ts = teile[size_t(t)];
        std::sort(ts.begin(), ts.end());
        for (const auto& x : ts) {
            anhaengen(s, int64_t(x.size()));
            s += x;
        }
        if (gehalten > 0) {
            in.id[size_t(t)] = -1 - t;
            continue;
        }
        in.id[size_t(t)] = ids.try_emplace(std::move(s), int(ids.size())).first->second;
    }
    return in;
}

// A fold found in the bars of the piece: bars p.. played `mal` times, `laenge` bars each; or with
// endings, X plus the first ending (`laenge` bars together) followed by X plus the second ending,
// which has no bars when the piece ends after X.
struct Kandidat {
    int p, laenge, mal, endung = 0, zweite = 0;
    int ersparnis() const { return endung ? laenge - endung : (mal - 1) * laenge; }
    int bis() const { return endung ? p + 2 * laenge - endung + zweite : p + mal * laenge; }
};

std::vector<Kandidat> kandidatenSuchen(const Inhalte& in, const std::vector<int64_t>& a) {
    const int n = int(in.id.size());
    std::vector<Kandidat> k;
    std::vector<int> lauf(size_t(n) + 1, 0);
    auto mitNoten = [&](int von, int bis) { return in.noten[size_t(bis)] > in.noten[size_t(von)]; };
    for (int l = 1; l <= std::min(kMaxLauf, n / 2); ++l) {
        // lauf[i]: how many bars from i on equal the bars l later.
        lauf[size_t(n - l)] = 0;
        for (int i = n - l - 1; i >= 0; --i) lauf[size_t(i)] = in.id[size_t(i)] == in.id[size_t(i + l)] ? lauf[size_t(i) + 1] + 1 : 0;
        for (int p = 0; p + 2 * l <= n; ++p) {
            const int gleich = lauf[size_t(p)];
            if (gleich >= l) {
                const int mal = 1 + gleich / l;
                if ((l >= 2 || mal >= 3) && mitNoten(p, p + l)) k.push_back({p, l, mal, 0});
            } else if (gleich >= l - 2 && gleich >= 2 * (l - gleich)) {
                // First and second endings of a bar or two, after a run at least twice as long.
                // What sounds on past the first ending would be drawn running into the second.
                const int x = gleich;
                const int64_t ende1 = a[size_t(p + l)];
                bool frei = true;
                for (int t = p + x; t < p + l; ++t) frei = frei && in.reichtBis[size_t(t)] <= ende1;
                if (frei && mitNoten(p, p + x)) k.push_back({p, l, 2, l - x, l - x});
            }
        }
        // The piece ends with X played again, without the first ending's bars (often a bar of rests
        // before the repeat, which the last pass leaves out).
        for (int m = 1; m <= 2; ++m) {
            const int x = l - m, p = n - l - x;
            if (p < 0 || x < 2 * m || lauf[size_t(p)] < x || !mitNoten(p, p + x)) continue;
            bool frei = true;
            for (int t = p + x; t < p + l; ++t) frei = frei && in.reichtBis[size_t(t)] <= a[size_t(p + l)];
            if (frei) k.push_back({p, l, 2, m, 0});
        }
    }
    return k;
}

// The folds that save most, none overlapping another. Among equal savings the plain repeat, the
// longer run, then the one starting on a bar that opens a phrase (bar 1, 5, 9, ... before 2, 3, ...).
std::vector<Kandidat> auswaehlen(std::vector<Kandidat> k) {
    auto phrase = [](int p) { return p == 0 ? 32 : std::min(std::countr_zero(unsigned(p)), 4); };
    std::sort(k.begin(), k.end(), [&](const Kandidat& x, const Kandidat& y) {
        return std::make_tuple(-x.ersparnis(), x.endung, -x.laenge, -phrase(x.p), x.p) <
               std::make_tuple(-y.ersparnis(), y.endung, -y.laenge, -phrase(y.p), y.p);
    });
    std::map<int, int> belegt; // start -> one past the end
    std::vector<Kandidat> gewaehlt;
    for (const auto& c : k) {
        auto nach = belegt.lower_bound(c.p);
        if (nach != belegt.end() && nach->first < c.bis()) continue;
        if (nach != belegt.begin() && std::prev(nach)->second > c.p) continue;
        belegt.emplace(c.p, c.bis());
        gewaehlt.push_back(c);
    }
    std::sort(gewaehlt.begin(), gewaehlt.end(), [](const Kandidat& x, const Kandidat& y) { return x.p < y.p; });
    return gewaehlt;
}

} // namespace

std::vector<int64_t> taktAnfaenge(const Stueck& st) {
    int64_t letzte = 0;
    for (const auto& no : st.noten) letzte = std::max(letzte, int64_t(no.start) + std::max<int32_t>(0, no.laenge));
    for (const auto& p : st.pausen) letzte = std::max(letzte, int64_t(p.start) + std::max<int32_t>(0, p.laenge));
    int64_t u = 0, laenge = 4 * std::max<int64_t>(1, st.ticksProViertel);
    std::vector<int64_t> a{0};
    for (const auto& t : st.takte) {
        if (int(a.size()) > kMaxTakte) break;
        if (t.laenge > 0) laenge = t.laenge;
        u += laenge;
        a.push_back(u);
    }
    while (u < letzte && int(a.size()) <= kMaxTakte) {
        u += laenge;
        a.push_back(u);
    }
    while (a.size() > 2 && a[a.size() - 2] >= letzte) a.pop_back();
    return a;
}

std::vector<int> Faltung::gespielteTakte(int w) const {
    const int t = takte[size_t(w)];
    auto r = std::upper_bound(wiederholungen.begin(), wiederholungen.end(), w,
                              [](int x, const Wiederholung& wh) { return x < wh.anfang; });
    if (r == wiederholungen.begin() || w >= std::prev(r)->ende) return {t};
    const Wiederholung& wh = *std::prev(r);
    const int laenge = wh.endeZeichen() - wh.anfang;
    if (w >= wh.endeZeichen() - wh.ersteKlammer) return {t}; // an ending is played once
    std::vector<int> g;
    for (int m = 0; m < wh.mal; ++m) g.push_back(t + m * laenge);
    return g;
}

Faltung wiederholungenFinden(const Stueck& st, bool mitTexten) {
    Faltung f;
    f.taktAnfang = taktAnfaenge(st);
    const int n = int(f.taktAnfang.size()) - 1;
    std::vector<Kandidat> gewaehlt;
    // A piece cut off at the most bars the sheet draws is no piece to fold.
    if (n > 0 && n < kMaxTakte) gewaehlt = auswaehlen(kandidatenSuchen(inhalteVergleichen(st, f.taktAnfang, mitTexten), f.taktAnfang));

    f.gespieltVon.assign(size_t(std::max(0, n)), 0);
    auto schreiben = [&](int t) {
        f.gespieltVon[size_t(t)] = int(f.takte.size());
        f.takte.push_back(t);
    };
    int t = 0;
    for (const auto& c : gewaehlt) {
        while (t < c.p) schreiben(t++);
        Wiederholung wh;
        wh.anfang = int(f.takte.size());
        wh.mal = c.mal;
        wh.ersteKlammer = c.endung;
        wh.zweiteKlammer = c.zweite;
        for (int i = 0; i < c.laenge; ++i) schreiben(c.p + i);
        const int x = c.laenge - c.endung; // bars played again from the written ones
        for (int m = 1; m < c.mal; ++m)
            for (int i = 0; i < x; ++i) f.gespieltVon[size_t(c.p + m * c.laenge + i)] = wh.anfang + i;
        for (int i = 0; i < c.zweite; ++i) schreiben(c.p + c.laenge + x + i);
        wh.ende = int(f.takte.size());
        f.wiederholungen.push_back(wh);
        t = c.bis();
    }
    while (t < n) schreiben(t++);

    f.geschriebenAnfang.assign(1, 0);
    for (int w : f.takte)
        f.geschriebenAnfang.push_back(f.geschriebenAnfang.back() + f.taktAnfang[size_t(w) + 1] - f.taktAnfang[size_t(w)]);
    return f;
}

std::vector<int> spielfolge(const Faltung& f) {
    std::vector<int> folge;
    auto spielen = [&](int von, int bis) {
        for (int i = von; i < bis; ++i) folge.push_back(i);
    };
    int w = 0;
    for (const auto& wh : f.wiederholungen) {
        spielen(w, wh.anfang);
        if (wh.ersteKlammer) {
            spielen(wh.anfang, wh.endeZeichen());
            spielen(wh.anfang, wh.endeZeichen() - wh.ersteKlammer);
            spielen(wh.endeZeichen(), wh.ende);
        } else {
            for (int m = 0; m < wh.mal; ++m) spielen(wh.anfang, wh.ende);
        }
        w = wh.ende;
    }
    spielen(w, int(f.takte.size()));
    return folge;
}

Stueck geschrieben(const Stueck& st, const Faltung& f) {
    if (!f.gefaltet()) return st;
    Stueck g = st;
    g.takte.clear();
    g.noten.clear();
    g.pausen.clear();
    std::vector<int> schreibt(f.gespieltVon.size(), -1); // per bar of the piece: its written bar, if it is one
    for (size_t w = 0; w < f.takte.size(); ++w) {
        const int t = f.takte[w];
        schreibt[size_t(t)] = int(w);
        Takt takt = t < int(st.takte.size()) ? st.takte[size_t(t)] : st.takte.empty() ? Takt{} : st.takte.back();
        takt.laenge = int32_t(f.taktAnfang[size_t(t) + 1] - f.taktAnfang[size_t(t)]);
        g.takte.push_back(takt);
    }
    auto verschoben = [&](int32_t start) -> std::optional<int32_t> {
        const int t = taktVon(f.taktAnfang, start);
        const int w = schreibt[size_t(t)];
        if (w < 0) return std::nullopt;
        return int32_t(f.geschriebenAnfang[size_t(w)] + start - f.taktAnfang[size_t(t)]);
    };
    for (const auto& no : st.noten)
        if (auto s = verschoben(no.start)) {
            g.noten.push_back(no);
            g.noten.back().start = *s;
        }
    for (const auto& p : st.pausen)
        if (auto s = verschoben(p.start)) {
            g.pausen.push_back(p);
            g.pausen.back().start = *s;
        }
    return g;
}

Stueck ausgeklappt(const Stueck& g, const Faltung& f) {
    if (!f.gefaltet()) return g;
    const std::vector<int64_t> a = taktAnfaenge(g);
    const int n = int(a.size()) - 1;
    auto noten = std::vector<std::vector<size_t>>(size_t(n)), pausen = noten;
    for (size_t i = 0; i < g.noten.size(); ++i) noten[size_t(taktVon(a, g.noten[i].start))].push_back(i);
    for (size_t i = 0; i < g.pausen.size(); ++i) pausen[size_t(taktVon(a, g.pausen[i].start))].push_back(i);

    Stueck r = g;
    r.takte.clear();
    r.noten.clear();
    r.pausen.clear();
    int64_t u = 0;
    for (int w : spielfolge(f)) {
        if (w >= n) break;
        r.takte.push_back(g.takte[size_t(w)]);
        const int64_t um = u - a[size_t(w)];
        for (size_t i : noten[size_t(w)]) {
            r.noten.push_back(g.noten[i]);
            r.noten.back().start = int32_t(g.noten[i].start + um);
        }
        for (size_t i : pausen[size_t(w)]) {
            r.pausen.push_back(g.pausen[i]);
            r.pausen.back().start = int32_t(g.pausen[i].start + um);
        }
        u += a[size_t(w) + 1] - a[size_t(w)];
    }
    return r;
}

int64_t geschriebenerTick(const Faltung& f, int64_t tick) {
    if (!f.gefaltet()) return tick;
    const int t = taktVon(f.taktAnfang, tick);
    return f.geschriebenAnfang[size_t(f.gespieltVon[size_t(t)])] + tick - f.taktAnfang[size_t(t)];
}

} // namespace lyrabo::blatt
