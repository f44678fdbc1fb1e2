#!/usr/bin/python3
"""Real songs through lyrabo-cli, checked from the PDF with poppler's tools (blattpruefung.py).

The songs are public-domain tunes written as ABC. abc2midi makes MIDI files of 480 ticks per
quarter; midicsv and csvmidi make copies at the other resolutions (every tick time and the
header's division scaled). Every file is converted for 25 and for 37 strings, the preselected
track, and for files of three tracks also track 3 and the mix of tracks 2 and 3; every conversion
that writes a harp-event text must also write a sheet. The sheets must have the default paper and
their string names on the spacing grid; page 1 of one file per song is rasterised and every note
head on it must sit on its string. A second table runs a few songs with other options (paper,
spacing, transposition) and rasterises every page.

Usage: lieder.py lieder|papier LYRABO-CLI ABC-ORDNER ARBEITSORDNER
"""
import os
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import blattpruefung  # noqa: E402

TEILUNGEN = (96, 120, 192, 256, 384, 480, 960)

# (song, strings, options, expected paper, landscape, spacing) for the second table.
PAPIERE = [
    ("greensleeves", 37, ["--papier", "A4", "--hoch"], "A4", False, 11.5),    # strips
    ("stille_nacht", 37, ["--papier", "A4"], "A4", True, 11.5),               # strips
    ("stille_nacht", 25, ["--papier", "A3", "--hoch"], "A3", False, 11.5),
    ("amazing_grace", 25, ["--saitenabstand", "10"], "A4", True, 10.0),
    ("amazing_grace", 25, ["--saitenabstand", "14"], "A4", True, 14.0),       # strips
    ("twinkle", 37, ["--saitenabstand", "12,5"], "A3", True, 12.5),           # strips
    ("o_tannenbaum", 37, ["--saitenabstand", "10", "--hoch"], "A3", False, 10.0),
    ("freude_schoener_goetterfunken", 25, ["--transpo", "-14"], "A4", True, 11.5),  # beside the strings
    # Its last note ends past the bar table, where filling the last bar with rests fails.
    ("coventry_carol", 37, ["--ohne-pausen-letzter-takt"], "A3", True, 11.5),    # 3/4, 4/4, 3/2
]
# The shapes with stems: heads, stems and flags on the grid as well.
HALS = [
    ("greensleeves", 37, ["--notenform", "hals"], "A3", True, 11.5),
    ("irish_washerwoman", 25, ["--notenform", "hals"], "A4", True, 11.5),       # two pages
    ("stille_nacht", 37, ["--notenform", "hals", "--papier", "A4"], "A4", True, 11.5),  # strips
]


def lauf(*befehl, **kw):
    return subprocess.run([str(b) for b in befehl], capture_output=True, **kw)


def midi_dateien(abc_ordner, arbeit):
    """NAME-tTEILUNG.mid for every song and resolution; returns {song: ([files], tracks)}."""
    roh, ordner = os.path.join(arbeit, "abc2midi"), os.path.join(arbeit, "midi")
    for o in (roh, ordner):
        os.makedirs(o)
    lieder = {}
    for abc in sorted(f for f in os.listdir(abc_ordner) if f.endswith(".abc")):
        name = abc[:-4]
        mid = os.path.join(roh, name + ".mid")
        r = lauf("abc2midi", os.path.join(abc_ordner, abc), "-o", mid)
        if r.returncode != 0 or not os.path.exists(mid):
            raise SystemExit(f"abc2midi {abc}: {r.stdout.decode(errors='replace')}")
        csv = lauf("midicsv", mid, check=True).stdout.decode("latin-1").splitlines()
        lieder[name] = ([], int(csv[0].split(", ")[4]))
        for teilung in TEILUNGEN:
            zeilen = []
            for z in csv:
                spur, zeit, rest = z.split(", ", 2)
                if rest.startswith("Header"):
                    art, fmt, spuren, _ = rest.split(", ")
                    rest = f"{art}, {fmt}, {spuren}, {teilung}"
                zeilen.append(f"{spur}, {(int(zeit) * teilung + 240) // 480}, {rest}")
            ziel = os.path.join(ordner, f"{name}-t{teilung}.mid")
            lauf("csvmidi", "-", ziel, input="\n".join(zeilen).encode("latin-1") + b"\n", check=True)
            lieder[name][0].append(ziel)
    return lieder


def stapel(cli, befehl, dateien, ordner, saiten):
    """One batch run; {file stem: (text?, pdf?)}."""
    os.makedirs(ordner)
    r = lauf(cli, *befehl, *dateien, "--ausgabe", ordner, "--formate", "harfentext,pdf", "--saiten", saiten)
    fehler = r.stderr.decode(errors="replace")
    if r.returncode not in (0, 3, 4) or "Unerwarteter Fehler" in fehler:
        raise SystemExit(f"{' '.join(befehl)} --saiten {saiten}: Rückgabewert {r.returncode}\n{fehler}")
    stamm = lambda d: os.path.splitext(os.path.basename(d))[0]
    return {stamm(d): (os.path.exists(os.path.join(ordner, stamm(d) + ".txt")),
                       os.path.exists(os.path.join(ordner, stamm(d) + ".pdf"))) for d in dateien}


def noten_im_text(txt, takte=None):
    """Notes (type 1) among the harp events, of the given bars or of all: every one has at least one
    head on the sheet (a chord's other notes and tied parts add more)."""
    n, takt = 0, 0
    with open(txt, encoding="cp1252") as f:
        for z in f:
            if z.startswith("----- Takt "):
                takt = int(z.split()[2])
                continue
            felder = [t.strip() for t in z.split(",")]
            if len(felder) > 5 and felder[0].isdigit() and felder[2] == "1" and (takte is None or takt in takte):
                n += 1
    return n


def gedruckte_takte(pdf, nur_seite_1=False):
    """The bar numbers printed between the first two strings, above the foot: with repeats written
    once, the bars the sheet draws (a later pass's number in brackets is no bar of its own)."""
    takte = set()
    for woerter in blattpruefung.woerter(pdf)[:1 if nur_seite_1 else None]:
        zeile, unten = blattpruefung.namenszeile(woerter, blattpruefung.saiten_namen(37))
        links, rechts = (zeile[0][1], zeile[1][1]) if len(zeile) > 1 else (0, 0)
        fuss = min((w[2] for w in woerter if w[0] == "100" and w[2] > unten), default=1e9)
        takte |= {int(w[0]) for w in woerter if w[0].isdigit() and links < w[1] < rechts and unten < w[2] < fuss}
    return takte


def pruefe(pdf, saiten, papier, quer, abstand, koepfe_mindestens=None, seiten=None):
    try:
        n = blattpruefung.pruefen(pdf, saiten, abstand, papier, quer, koepfe_mindestens is not None, seiten)
    except blattpruefung.Fehler as f:
        return f"{os.path.basename(pdf)}: {f}"
    if koepfe_mindestens is not None and n < koepfe_mindestens:
        return f"{os.path.basename(pdf)}: {n} Notenköpfe gefunden, der Text nennt {koepfe_mindestens} Noten"
    return None


def lieder_pruefen(cli, abc_ordner, arbeit):
    lieder = midi_dateien(abc_ordner, arbeit)
    alle = [d for ds, _ in lieder.values() for d in ds]
    drei = [d for ds, spuren in lieder.values() if spuren >= 3 for d in ds]
    laeufe = [(name, befehl, dateien, saiten) for saiten in ("25", "37")
              for name, befehl, dateien in (("spur", ["convert"], alle), ("spur3", ["convert", "--spur", "3"], drei),
                                            ("mix", ["mix", "--spuren", "2,3"], drei))]
    # Two at a time: the runs and the checks wait mostly for other programs.
    with ThreadPoolExecutor(2) as pool:
        ergebnisse = list(pool.map(lambda l: stapel(cli, l[1], l[2], os.path.join(arbeit, f"{l[0]}-{l[3]}"), l[3]), laeufe))
    fehler, umsetzungen, texte, pdfs, pruefungen = [], 0, 0, 0, []
    for (name, _, _, saiten), ergebnis in zip(laeufe, ergebnisse):
        ordner = os.path.join(arbeit, f"{name}-{saiten}")
        for stamm, (txt, pdf) in ergebnis.items():
            umsetzungen += 1
            texte += txt
            pdfs += pdf
            if txt != pdf:
                fehler.append(f"{name} {stamm} ({saiten} Saiten): " + ("Text ohne PDF" if txt else "PDF ohne Text"))
            if not pdf:
                continue
            # Page 1 of one file per song (each song another resolution, in turn 25 and 37 strings)
            # is rasterised; the others are checked by their paper and their string names.
            i = sorted(lieder).index(stamm.rsplit("-t", 1)[0])
            bild = (name == "spur" and int(saiten) == (25, 37)[i % 2] and
                    stamm.endswith(f"-t{TEILUNGEN[i % len(TEILUNGEN)]}"))
            pruefungen.append((f"{name} ({saiten} Saiten)", os.path.join(ordner, stamm), int(saiten), bild))

    def pruefung(p):
        wo, pfad, saiten, bild = p
        mindestens = noten_im_text(pfad + ".txt", gedruckte_takte(pfad + ".pdf", True)) if bild else None
        f = pruefe(pfad + ".pdf", saiten, "A4" if saiten == 25 else "A3", True, 11.5, mindestens, {1})
        return f"{wo} {f}" if f else None

    with ThreadPoolExecutor(2) as pool:
        fehler += [f for f in pool.map(pruefung, pruefungen) if f]
    print(f"{len(lieder)} Lieder, {len(alle)} MIDI-Dateien ({len(TEILUNGEN)} Auflösungen), "
          f"{umsetzungen} Umsetzungen für 25 und 37 Saiten: {texte} mit HarfeEvent-Text, {pdfs} mit Notenblatt; "
          f"Seite 1 von {sum(p[3] for p in pruefungen)} Notenblättern auf Notenköpfe geprüft")
    return fehler


def papiere_pruefen(cli, abc_ordner, arbeit):
    lieder = midi_dateien(abc_ordner, arbeit)
    tabelle = PAPIERE + HALS

    def pruefung(nr):
        lied, saiten, optionen, papier, quer, abstand = tabelle[nr]
        wo = f"{lied} {' '.join(optionen)}"
        mid = lieder[lied][0][TEILUNGEN.index(480)]
        pdf, txt = os.path.join(arbeit, f"{nr}-{lied}.pdf"), os.path.join(arbeit, f"{nr}-{lied}.txt")
        r = lauf(cli, "convert", mid, "--saiten", saiten, *optionen, "--pdf", pdf, "--harfentext", txt)
        if r.returncode != 0:
            return [f"{wo}: Rückgabewert {r.returncode} {r.stderr.decode(errors='replace')}"]
        takte = gedruckte_takte(pdf)
        if not takte:
            return [f"{wo}: keine Taktnummer auf dem Blatt"]
        f = pruefe(pdf, saiten, papier, quer, abstand, noten_im_text(txt, takte))
        # Strips: together they show every string.
        namen = blattpruefung.saiten_namen(saiten)
        gesehen = set()
        for seite in blattpruefung.woerter(pdf):
            gesehen.update(i for i, _ in blattpruefung.namenszeile(seite, namen)[0])
        return ([f"{wo}: {f}"] if f else []) + \
            ([] if gesehen == set(range(saiten)) else [f"{wo}: die Seiten zeigen nicht alle {saiten} Saiten"])

    with ThreadPoolExecutor(2) as pool:
        fehler = [f for liste in pool.map(pruefung, range(len(tabelle))) for f in liste]
    print(f"{len(tabelle)} Notenblätter mit anderem Papier, Saitenabstand, Transposition oder Notenform geprüft")
    return fehler


def main():
    art, cli, abc_ordner, arbeit = sys.argv[1:5]
    for werkzeug in ("abc2midi", "midicsv", "csvmidi", "pdfinfo", "pdftotext", "pdftoppm"):
        if not shutil.which(werkzeug):
            raise SystemExit(f"{werkzeug} fehlt (scripts/pakete.sh installiert es)")
    shutil.rmtree(arbeit, ignore_errors=True)
    os.makedirs(arbeit)
    # Without a display the program picks Qt's offscreen platform itself.
    os.environ.pop("DISPLAY", None)
    os.environ.pop("WAYLAND_DISPLAY", None)
    os.environ.pop("QT_QPA_PLATFORM", None)
    fehler = (lieder_pruefen if art == "lieder" else papiere_pruefen)(cli, abc_ordner, arbeit)
    for f in fehler:
        print("FEHLER:", f)
    return 1 if fehler else 0


if __name__ == "__main__":
    sys.exit(main())
