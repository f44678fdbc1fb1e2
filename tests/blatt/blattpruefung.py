#!/usr/bin/python3
"""Checks a note sheet PDF with poppler's tools only, never with the program's own layout code.

- pdfinfo: every page has the paper and orientation asked for.
- pdftotext -bbox: the row of string names (g, gis, a, ... g''') is there, in order, and the names'
  centres lie on a grid of the string spacing; on a page that shows every string, first to last is
  (strings - 1) x spacing.
- pdftoppm -r 300: every note head (a filled or hollow ellipse from 1.8 x 1.3 mm, a sixteenth in the
  table-harp shapes, to 3.5 x 2.5 mm, a whole note) in the music area sits centred on the x of a
  string as the names measure it.

Usage: blattpruefung.py --saiten 37 --abstand 11.5 --papier A3 --quer|--hoch [--koepfe] DATEI.pdf...
"""
import argparse
import html
import os
import re
import subprocess
import sys
import tempfile
import unicodedata

MM_PRO_PT = 25.4 / 72
DPI = 300
MM_PRO_PX = 25.4 / DPI
TOLERANZ = 0.3  # mm
PAPIER = {"A4": (210.0, 297.0), "A3": (297.0, 420.0)}
TOENE = ["c", "cis", "d", "dis", "e", "f", "fis", "g", "gis", "a", "b", "h"]


class Fehler(Exception):
    pass


def saiten_namen(saiten):
    """String 1 is g (MIDI 55); c' is middle C, one apostrophe per octave above the small one."""
    return [TOENE[t % 12] + "'" * (t // 12 - 4) for t in range(55, 55 + saiten)]


def ausfuehren(*befehl):
    return subprocess.run(befehl, check=True, capture_output=True).stdout


def seitengroessen(pdf):
    """(width, height) in mm of every page."""
    text = ausfuehren("pdfinfo", "-f", "1", "-l", "100000", pdf).decode("utf-8", "replace")
    groessen = [(float(b) * MM_PRO_PT, float(h) * MM_PRO_PT)
                for b, h in re.findall(r"^Page +\d+ size: +([\d.]+) x ([\d.]+) pts", text, re.M)]
    if not groessen:
        raise Fehler("pdfinfo nennt keine Seite")
    return groessen


def woerter(pdf):
    """Per page: the words as (text, x0, y0, x1, y1) in mm from the top left corner."""
    text = ausfuehren("pdftotext", "-bbox", pdf, "-").decode("utf-8")
    seiten = []
    for seite in re.findall(r"<page [^>]*>(.*?)</page>", text, re.S):
        liste = []
        for x0, y0, x1, y1, wort in re.findall(
                r'<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">(.*?)</word>', seite):
            # NFKC: a ligature such as "fi" in fis' is read as its letters.
            wort = unicodedata.normalize("NFKC", html.unescape(wort))
            liste.append((wort, *(float(v) * MM_PRO_PT for v in (x0, y0, x1, y1))))
        seiten.append(liste)
    return seiten


def namenszeile(woerter_der_seite, namen):
    """The longest run of string names on one line, left to right: [(index, x centre)], y bottom."""
    kandidaten = [w for w in woerter_der_seite if w[0] in namen]
    beste, unten = [], 0.0
    for _, _, _, _, y1 in kandidaten:
        zeile = sorted((w for w in kandidaten if abs(w[4] - y1) < 1.0), key=lambda w: w[1])
        if len(zeile) > len(beste):
            beste, unten = zeile, max(w[4] for w in zeile)
    return [(namen.index(w[0]), (w[1] + w[3]) / 2) for w in beste], unten


def namen_pruefen(zeile, namen, abstand):
    """The names must be consecutive strings, each on the spacing grid of the first."""
    if len(zeile) < 2:
        raise Fehler("keine Zeile mit Saitennamen gefunden")
    erster, x0 = zeile[0]
    for i, (index, x) in enumerate(zeile):
        if index != erster + i:
            raise Fehler(f"Saitennamen nicht in Folge: {namen[index]} an Stelle {i + 1} nach {namen[erster]}")
        soll = x0 + i * abstand
        if abs(x - soll) > TOLERANZ:
            raise Fehler(f"Saite {namen[index]}: Mitte {x:.2f} mm, soll {soll:.2f} mm")


def pgm_lesen(pfad):
    import numpy as np
    with open(pfad, "rb") as f:
        daten = f.read()
    kopf = re.match(rb"P5\s+(\d+)\s+(\d+)\s+(\d+)\s", daten)
    breite, hoehe = int(kopf.group(1)), int(kopf.group(2))
    return np.frombuffer(daten, dtype=np.uint8, offset=kopf.end(), count=breite * hoehe).reshape(hoehe, breite)


def koepfe(bild, oben, unten):
    """Centres (x, y in mm) of the note heads between y = oben and y = unten (mm).

    Dark pixels, eroded by 0.4 mm: lines, stems, flags, dots, ties, rests and small text vanish,
    the core of a head stays. A core is a head when, grown back, it has a head's half axes (from
    0.9 x 0.65 mm for the smallest to 1.75 x 1.25 mm for a whole note). Hollow heads are found with
    small holes filled; filled heads also without, as filling the corner between a head, its stem
    and a flag would make a larger blob of them."""
    import numpy as np
    from scipy import ndimage

    px = lambda mm: mm / MM_PRO_PX
    y0, y1 = max(0, int(px(oben))), min(bild.shape[0], int(px(unten)))
    dunkel = bild[y0:y1] < 140
    loecher, anzahl = ndimage.label(ndimage.binary_fill_holes(dunkel) & ~dunkel)
    gefuellt = dunkel
    if anzahl:
        klein = np.bincount(loecher.ravel()) <= px(1) ** 2 * 6.0
        klein[0] = False
        gefuellt = dunkel | klein[loecher]
    r = px(0.4)
    R = int(np.ceil(r))
    yy, xx = np.mgrid[-R:R + 1, -R:R + 1]
    scheibe = xx ** 2 + yy ** 2 <= r * r
    gefunden = []
    for maske in (gefuellt, dunkel):
        kerne, _ = ndimage.label(ndimage.binary_erosion(maske, structure=scheibe))
        groessen = np.bincount(kerne.ravel())
        for i, (sy, sx) in enumerate(ndimage.find_objects(kerne), start=1):
            # A head's core is about 0.4 to 3.6 mm²; far smaller or larger ones need no closer look.
            if not px(1) ** 2 * 0.15 <= groessen[i] <= px(1) ** 2 * 5.5:
                continue
            sy = slice(max(0, sy.start - R - 1), sy.stop + R + 1)
            sx = slice(max(0, sx.start - R - 1), sx.stop + R + 1)
            kern = kerne[sy, sx] == i
            ys, xs = np.nonzero(ndimage.binary_dilation(kern, structure=scheibe))
            gross, klein_ = (2 * np.sqrt(max(v, 0)) * MM_PRO_PX
                             for v in sorted(np.linalg.eigvalsh(np.cov(np.vstack((xs, ys)))), reverse=True))
            if not (0.75 <= gross <= 2.0 and 0.5 <= klein_ <= 1.45):
                continue
            kys, kxs = np.nonzero(kern)
            x = (kxs.mean() + sx.start + 0.5) * MM_PRO_PX
            y = (kys.mean() + sy.start + y0 + 0.5) * MM_PRO_PX
            if all(abs(x - gx) > 0.5 or abs(y - gy) > 0.5 for gx, gy in gefunden):
                gefunden.append((x, y))
    return gefunden


def pruefen(pdf, saiten, abstand, papier, quer, mit_koepfen=False, seiten_fuer_koepfe=None):
    """Checks one PDF; returns the number of heads found. Raises Fehler."""
    namen = saiten_namen(saiten)
    b, h = PAPIER[papier]
    if quer:
        b, h = h, b
    groessen = seitengroessen(pdf)
    for nr, (gb, gh) in enumerate(groessen, start=1):
        # Page sizes are whole points in the file.
        if abs(gb - b) > 0.5 or abs(gh - h) > 0.5:
            raise Fehler(f"Seite {nr}: {gb:.1f} x {gh:.1f} mm statt {papier} {'quer' if quer else 'hoch'}")
    alle = woerter(pdf)
    if len(alle) != len(groessen):
        raise Fehler("pdftotext und pdfinfo zählen verschiedene Seiten")
    anzahl = 0
    with tempfile.TemporaryDirectory() as tmp:
        for nr, seite in enumerate(alle, start=1):
            zeile, namen_unten = namenszeile(seite, namen)
            try:
                namen_pruefen(zeile, namen, abstand)
                if len(zeile) == saiten:
                    spanne = zeile[-1][1] - zeile[0][1]
                    if abs(spanne - (saiten - 1) * abstand) > TOLERANZ:
                        raise Fehler(f"erste bis letzte Saite {spanne:.2f} mm statt {(saiten - 1) * abstand:.1f} mm")
                if not mit_koepfen or (seiten_fuer_koepfe and nr not in seiten_fuer_koepfe):
                    continue
                # The music lies between the names and the 100 mm bar's caption.
                mass = [w for w in seite if w[0] == "100" and w[2] > namen_unten]
                unten = min(w[2] for w in mass) - 0.5 if mass else h
                ausfuehren("pdftoppm", "-r", str(DPI), "-gray", "-f", str(nr), "-l", str(nr), pdf,
                           os.path.join(tmp, "s"))
                bilddatei = [f for f in os.listdir(tmp) if f.endswith(".pgm")][0]
                bild = pgm_lesen(os.path.join(tmp, bilddatei))
                os.remove(os.path.join(tmp, bilddatei))
                xs = [x for _, x in zeile]
                for x, y in koepfe(bild, namen_unten + 1.0, unten):
                    naechste = min(xs, key=lambda s: abs(s - x))
                    if abs(x - naechste) > TOLERANZ:
                        raise Fehler(f"Notenkopf bei x {x:.2f} mm, y {y:.2f} mm: {x - naechste:+.2f} mm neben "
                                     f"der Saite {namen[zeile[xs.index(naechste)][0]]}")
                    anzahl += 1
            except Fehler as f:
                raise Fehler(f"Seite {nr}: {f}") from None
    return anzahl


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--saiten", type=int, required=True, choices=(25, 37))
    p.add_argument("--abstand", type=float, default=11.5)
    p.add_argument("--papier", choices=PAPIER, required=True)
    lage = p.add_mutually_exclusive_group(required=True)
    lage.add_argument("--quer", action="store_true")
    lage.add_argument("--hoch", action="store_true")
    p.add_argument("--koepfe", action="store_true", help="auch die Notenköpfe im 300-dpi-Bild prüfen")
    p.add_argument("pdf", nargs="+")
    a = p.parse_args()
    fehler = 0
    for pdf in a.pdf:
        try:
            n = pruefen(pdf, a.saiten, a.abstand, a.papier, a.quer, a.koepfe)
            print(f"{pdf}: in Ordnung" + (f", {n} Notenköpfe auf ihren Saiten" if a.koepfe else ""))
        except Fehler as f:
            print(f"{pdf}: {f}")
            fehler += 1
    return 1 if fehler else 0


if __name__ == "__main__":
    sys.exit(main())
