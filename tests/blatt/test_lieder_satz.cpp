// Every song of the set, for both harp sizes and both note shapes, laid out and checked on the
// layout's own elements: no two heads overlap, no text runs into a head, every row lies below the
// one before, and on one sheet a longer time never gets less room than a shorter one.
#include "app/core/BlattQuelle.h"
#include "blatt/BlattSatz.h"
#include "support/EngineUmgebung.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace lyrabo::blatt {
namespace {

struct Kasten {
    double x0, y0, x1, y1;
    bool trifft(const Kasten& k, double luft = 0) const { return x0 < k.x1 && k.x0 < x1 && y0 < k.y1 + luft && k.y0 < y1 + luft; }
};
Kasten kastenVon(const Ellipse& e) { return {e.mitte.x - e.rx, e.mitte.y - e.ry, e.mitte.x + e.rx, e.mitte.y + e.ry}; }
// A text's box from its size: sans letters about 0.62 of the size wide, ascent 0.72, descent 0.22.
Kasten kastenVon(const Text& t) {
    size_t zeichen = 0;
    for (unsigned char c : t.text) zeichen += (c & 0xC0) != 0x80;
    const double pt = 25.4 / 72 * t.groesse, b = double(zeichen) * 0.55 * pt;
    const double x = t.ausrichtung == Ausrichtung::Links ? t.ort.x : t.ausrichtung == Ausrichtung::Mitte ? t.ort.x - b / 2 : t.ort.x - b;
    return {x, t.ort.y - 0.72 * pt, x + b, t.ort.y + 0.22 * pt};
}

// What is wrong on one page, empty when nothing.
std::string pruefen(const Seite& s) {
    std::vector<Ellipse> koepfe;
    std::vector<const Text*> texte;
    for (const auto& el : s.elemente) {
        if (auto* e = std::get_if<Ellipse>(&el.form); e && el.note >= 0 && e->rx > 0.5) koepfe.push_back(*e);
        if (auto* t = std::get_if<Text>(&el.form)) texte.push_back(t);
    }
    std::sort(koepfe.begin(), koepfe.end(), [](const Ellipse& a, const Ellipse& b) { return a.mitte.y < b.mitte.y; });
    for (size_t i = 0; i < koepfe.size(); ++i)
        for (size_t j = i + 1; j < koepfe.size() && koepfe[j].mitte.y - koepfe[i].mitte.y < 5; ++j) {
            const Ellipse &a = koepfe[i], &b = koepfe[j];
            if (a.mitte.x == b.mitte.x && a.mitte.y == b.mitte.y) continue; // the same pitch twice in a chord
            // On one string 1 mm of paper between heads; elsewhere they must not touch.
            if (kastenVon(a).trifft(kastenVon(b), a.mitte.x == b.mitte.x ? 1.0 - 1e-9 : 0))
                return "Köpfe überlappen bei y " + std::to_string(a.mitte.y);
        }
    for (const Text* t : texte)
        for (const auto& k : koepfe)
            if (kastenVon(*t).trifft(kastenVon(k))) return "Text \"" + t->text + "\" über einem Kopf bei y " + std::to_string(k.mitte.y);
    // Bar numbers (the small grey texts) are not crossed by the melody line.
    for (const auto& el : s.elemente) {
        auto* l = std::get_if<Linie>(&el.form);
        if (!l || l->staerke != 0.35) continue;
        for (const Text* t : texte)
            for (int k = 0; k <= 20 && t->groesse == 5.5; ++k) {
                const double x = l->a.x + (l->b.x - l->a.x) * k / 20, y = l->a.y + (l->b.y - l->a.y) * k / 20;
                if (kastenVon(*t).trifft({x, y, x, y})) return "Melodielinie durch Taktnummer " + t->text;
            }
    }
    // Repeat dots above their thick line close a run: that run's last row stands above them on this page.
    std::vector<double> dick;
    for (const auto& el : s.elemente)
        if (auto* l = std::get_if<Linie>(&el.form); l && l->staerke == 0.7 && l->a.y == l->b.y) dick.push_back(l->a.y);
    for (const auto& el : s.elemente) {
        auto* p = std::get_if<Ellipse>(&el.form);
        if (!p || el.note >= 0 || p->rx != 0.5 || !p->gefuellt || dick.empty()) continue;
        const double d = *std::min_element(dick.begin(), dick.end(), [&](double a, double b) { return std::abs(a - p->mitte.y) < std::abs(b - p->mitte.y); });
        if (p->mitte.y < d && (s.zeit.empty() || s.zeit[0].y > p->mitte.y)) return "Schlusszeichen oben auf der Seite bei y " + std::to_string(p->mitte.y);
    }
    for (size_t i = 1; i < s.zeit.size(); ++i)
        if (!(s.zeit[i].y > s.zeit[i - 1].y)) return "Zeile " + std::to_string(i) + " nicht unter der vorigen";
    // Room per time, without what bar lines add: sorted by time, the room never falls.
    std::vector<std::pair<int32_t, double>> raum;
    for (size_t i = 1; i < s.zeit.size(); ++i)
        raum.push_back({s.zeit[i].tick - s.zeit[i - 1].tick, s.zeit[i].y - s.zeit[i - 1].y - s.zeit[i].taktRaum});
    std::sort(raum.begin(), raum.end());
    for (size_t i = 1; i < raum.size(); ++i)
        if (raum[i].first > raum[i - 1].first && raum[i].second < raum[i - 1].second - 1e-6)
            return "längere Zeit (" + std::to_string(raum[i].first) + ") mit weniger Raum als " + std::to_string(raum[i - 1].first);
    return "";
}

TEST(BlattLieder, JedesLiedOhneZusammenstoesse) {
    const std::filesystem::path ordner = LYRABO_LIEDER_MIDI;
    std::vector<std::filesystem::path> dateien;
    for (const auto& d : std::filesystem::directory_iterator(ordner))
        if (d.path().extension() == ".mid") dateien.push_back(d.path());
    std::sort(dateien.begin(), dateien.end());
    ASSERT_GE(dateien.size(), 25u) << "abc2midi hat die Lieder nicht umgesetzt (scripts/pakete.sh installiert es)";
    for (const auto& datei : dateien) {
        test::EngineUmgebung u;
        u.e().MIDIFilePath(datei.string());
        ASSERT_TRUE(u.programm.openMIDIFile(2)) << datei;
        const int16_t spur = u.programm.Midifile1.TrackCount() >= 2 ? 2 : 1;
        u.form.zeile = int16_t(spur - 1);
        // As the window converts the preselected track; a file it cannot convert has no sheet either.
        try {
            u.programm.neuBerechnen();
        } catch (const std::exception&) {
            continue;
        }
        const Stueck stueck = blattStueck(u.programm, u.programm.KlangNoten, datei.stem().string());
        ASSERT_GT(stueck.noten.size(), 10u) << datei;
        // Unfitted 25-string pages in portrait break at many bar lines, some of them a run's end, and
        // into two strips side by side.
        for (int16_t saiten : {25, 37, -25})
            for (Notenform form : {Notenform::Harfe, Notenform::Hals}) {
                Stueck s = stueck;
                s.saiten = int16_t(std::abs(saiten));
                // Words under every melody note in one of the shapes: lyrics must keep clear too.
                if (form == Notenform::Harfe)
                    for (auto& n : s.noten) n.text = n.melodie ? "Nachtigallen," : "";
                Einstellungen e = standardFuer(s.saiten);
                e.notenform = form;
                e.einpassen = e.quer = saiten > 0;
                const Blatt b = setzen(s, e);
                for (size_t i = 0; i < b.seiten.size(); ++i) {
                    const std::string fehler = pruefen(b.seiten[i]);
                    EXPECT_EQ(fehler, "") << datei.stem() << ", " << s.saiten << (saiten < 0 ? " Saiten hoch ungefüllt, " : " Saiten, ") << (form == Notenform::Harfe ? "Harfe" : "Hals")
                                          << ", Seite " << i + 1;
                }
            }
    }
}

} // namespace
} // namespace lyrabo::blatt
