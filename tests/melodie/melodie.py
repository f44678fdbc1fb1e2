#!/usr/bin/python3
"""The melody guess and "--transpo passend" over the songs of the test set, through lyrabo-cli.

The songs are ABC files (this folder's four-voice hymns and tunes with guitar chords, and the
songs of the sheet checks); abc2midi makes the MIDI files. First table: for every file of more
than one voice, the track `lyrabo-cli info` names as the melody must be the one a musician would
pick. Second: every track with notes of every song, for 25 and 37 strings, is converted at
transposition 0 and with --transpo passend. The sheet at 0 says in its header whether notes lie
beside the strings and which transposition would bring them all on; with passend the sheet must
have no note beside the strings and show exactly that transposition, and a song that spans more
than the harp must be refused with exit code 4 and the German reason.

Usage: melodie.py LYRABO-CLI ARBEITSORDNER ABC-ORDNER...
"""
import os
import re
import shutil
import subprocess
import sys

# File -> (track a musician would call the melody, why).
MELODIE = {
    "old_hundredth_satb": (2, "Sopran (V:1)"),
    "lobe_den_herren_satb": (5, "Sopran, als letzte Stimme notiert"),
    "es_ist_ein_ros_satb": (2, "Sopran (V:1)"),
    "alle_voegel_akkorde": (2, "Melodie; Spur 3 sind die Gitarrengriffe"),
    "augustin_akkorde": (2, "Melodie; Spur 3 Griffe, Spur 4 Holzblock auf Kanal 10"),
    "stille_nacht": (2, "Melodie; Spur 3 Griffe"),
    "freude_schoener_goetterfunken": (2, "Melodie; Spur 3 Griffe"),
    "sussex_carol": (2, "Melodie; Spur 3 Griffe"),
    "der_mond_ist_aufgegangen": (2, "Melodie; Spur 3 Bass"),
    "frere_jacques": (2, "erste Stimme des Kanons, die das ganze Lied spielt"),
}

KOPF_VORSCHLAG = re.compile(r"Mit Transposition ([+\u2212-]\d+) passen alle")
KOPF_TRANSPO = re.compile(r"Saiten, Abstand [\d,]+ mm\s+Transposition ([+\u2212-]\d+)")


def lauf(*befehl):
    return subprocess.run([str(b) for b in befehl], capture_output=True)


def zahl(text):
    return int(text.replace("\u2212", "-"))


def kopf(pdf):
    """(notes beside the strings?, suggested transposition or None, transposition shown)."""
    text = lauf("pdftotext", "-l", "1", pdf, "-").stdout.decode()
    daneben = "neben den Saiten" in text
    v, t = KOPF_VORSCHLAG.search(text), KOPF_TRANSPO.search(text)
    return daneben, zahl(v.group(1)) if v else None, zahl(t.group(1)) if t else 0


def noten_spuren(mid):
    """Tracks with at least one Note On with a velocity (drums included)."""
    csv = lauf("midicsv", mid).stdout.decode("latin-1").splitlines()
    return sorted({int(z.split(", ")[0]) for z in csv if ", Note_on_c, " in z and not z.endswith(", 0")})


def main():
    cli, arbeit, ordner = sys.argv[1], sys.argv[2], sys.argv[3:]
    for werkzeug in ("abc2midi", "midicsv", "pdftotext"):
        if not shutil.which(werkzeug):
            raise SystemExit(f"{werkzeug} fehlt (scripts/pakete.sh installiert es)")
    shutil.rmtree(arbeit, ignore_errors=True)
    os.makedirs(arbeit)
    os.environ.pop("DISPLAY", None)
    os.environ.pop("QT_QPA_PLATFORM", None)
    midi = {}
    for o in ordner:
        for abc in sorted(f for f in os.listdir(o) if f.endswith(".abc")):
            mid = os.path.join(arbeit, abc[:-4] + ".mid")
            r = lauf("abc2midi", os.path.join(o, abc), "-o", mid)
            if r.returncode != 0 or not os.path.exists(mid):
                raise SystemExit(f"abc2midi {abc}: {r.stdout.decode(errors='replace')}")
            midi[abc[:-4]] = mid
    fehler = []

    print("Datei | vermutet | Musiker")
    for name, (erwartet, warum) in MELODIE.items():
        aus = lauf(cli, "info", midi[name]).stdout.decode()
        m = re.search(r"^Melodie vermutlich: Spur (\d+)", aus, re.M)
        geraten = int(m.group(1)) if m else None
        print(f"{name} | Spur {geraten} | Spur {erwartet}: {warum}")
        if geraten != erwartet:
            fehler.append(f"{name}: Melodie vermutet in Spur {geraten}, ein Musiker nimmt Spur {erwartet}")
        melodie = lauf(cli, "convert", midi[name], "--spur", "melodie", "--harfentext", "-")
        if melodie.returncode != 0 or melodie.stdout != lauf(cli, "convert", midi[name], "--spur", geraten).stdout:
            fehler.append(f"{name}: --spur melodie setzt nicht die Spur {geraten} um")

    spuren = {name: noten_spuren(mid) for name, mid in midi.items()}
    passend = unmoeglich = 0
    for saiten in ("25", "37"):
        for spur in range(1, max(max(s) for s in spuren.values()) + 1):
            dateien = [midi[n] for n in sorted(midi) if spur in spuren[n]]
            ziel = {art: os.path.join(arbeit, f"{art}-{saiten}-{spur}") for art in ("null", "passend")}
            # The last bar is not filled: the carol's last note ends past its bar table.
            gemeinsam = ["--spur", spur, "--saiten", saiten, "--ohne-pausen-letzter-takt", "--formate", "pdf"]
            lauf(cli, "convert", *dateien, *gemeinsam, "--transpo", "0", "--ausgabe", ziel["null"])
            r = lauf(cli, "convert", *dateien, *gemeinsam, "--transpo", "passend", "--ausgabe", ziel["passend"])
            meldungen = r.stderr.decode()
            for d in dateien:
                stamm = os.path.splitext(os.path.basename(d))[0]
                wo = f"{stamm} Spur {spur}, {saiten} Saiten"
                pdf0, pdf = (os.path.join(ziel[a], stamm + ".pdf") for a in ("null", "passend"))
                if not os.path.exists(pdf0):
                    fehler.append(f"{wo}: kein Notenblatt bei Transposition 0")
                    continue
                daneben0, vorschlag, _ = kopf(pdf0)
                if daneben0 and vorschlag is None:
                    unmoeglich += 1
                    if os.path.exists(pdf) or f"{stamm}.mid: Das Stück umfasst mehr Töne" not in meldungen:
                        fehler.append(f"{wo}: passt auf keine Transposition, passend hätte es sagen müssen")
                    continue
                passend += 1
                if not os.path.exists(pdf):
                    fehler.append(f"{wo}: passend schrieb kein Notenblatt")
                    continue
                daneben, _, transpo = kopf(pdf)
                soll = vorschlag if daneben0 else 0
                if daneben or transpo != soll:
                    fehler.append(f"{wo}: passend gab Transposition {transpo}"
                                  f"{' mit Noten neben den Saiten' if daneben else ''}, der Kopf schlug {soll} vor")
            if r.returncode not in (0, 4):
                fehler.append(f"passend, Spur {spur}, {saiten} Saiten: Rückgabewert {r.returncode}\n{meldungen}")
    print(f"{len(midi)} Lieder: {passend} Spuren mit --transpo passend auf die Saiten gebracht, "
          f"{unmoeglich} größer als die Harfe abgewiesen")
    for f in fehler:
        print("FEHLER:", f)
    return 1 if fehler else 0


if __name__ == "__main__":
    sys.exit(main())
