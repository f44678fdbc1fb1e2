#!/usr/bin/python3
"""The melody guess and --transpo passend over the songs of the test set, through lyrabo-cli.

Table 1: in every file of several voices (abc2midi: track 1 holds the title, each voice a track),
`info` must name the track a musician calls the melody.
Table 2: every track with notes of every song, for 25 and 37 strings, at transposition 0 and with
--transpo passend: the latter sheet has no note beside the strings and shows the transposition the
former's header suggests; a track wider than the harp is refused with exit code 4 and the reason.

Usage: melodie.py LYRABO-CLI ARBEITSORDNER ABC-ORDNER...
"""
import os
import re
import shutil
import subprocess
import sys

MELODIE = {  # file: (track a musician would call the melody, why)
    "old_hundredth_satb": (2, "Sopran (V:1)"),
    "lobe_den_herren_satb": (5, "Sopran, als letzte Stimme notiert"),
    "es_ist_ein_ros_satb": (2, "Sopran (V:1)"),
    "alle_voegel_akkorde": (2, "Melodie; Spur 3 Gitarrengriffe"),
    "augustin_akkorde": (2, "Melodie; Spur 3 Griffe, Spur 4 hoher Holzblock auf Kanal 10"),
    "stille_nacht": (2, "Melodie; Spur 3 Griffe"),
    "freude_schoener_goetterfunken": (2, "Melodie; Spur 3 Griffe"),
    "sussex_carol": (2, "Melodie; Spur 3 Griffe"),
    "der_mond_ist_aufgegangen": (2, "Melodie; Spur 3 Bass"),
    "frere_jacques": (2, "erste Stimme des Kanons, die das ganze Lied spielt"),
}


def lauf(*befehl):
    return subprocess.run([str(b) for b in befehl], capture_output=True)


def kopf(pdf):
    """(notes beside the strings?, suggested transposition or None, transposition shown)."""
    text = lauf("pdftotext", "-l", "1", pdf, "-").stdout.decode().replace("\u2212", "-")
    v = re.search(r"Mit Transposition ([+-]\d+) passen alle", text)
    t = re.search(r"Saiten, Abstand [\d,]+ mm\s+Transposition ([+-]\d+)", text)
    return "neben den Saiten" in text, int(v.group(1)) if v else None, int(t.group(1)) if t else 0


def main():
    cli, arbeit, ordner = sys.argv[1], sys.argv[2], sys.argv[3:]
    for werkzeug in ("abc2midi", "midicsv", "pdftotext"):
        if not shutil.which(werkzeug):
            raise SystemExit(f"{werkzeug} fehlt (scripts/pakete.sh installiert es)")
    shutil.rmtree(arbeit, ignore_errors=True)
    os.makedirs(arbeit)
    for v in ("DISPLAY", "QT_QPA_PLATFORM"):
        os.environ.pop(v, None)
    midi, spuren, fehler = {}, {}, []
    for o in ordner:
        for abc in sorted(f for f in os.listdir(o) if f.endswith(".abc")):
            name = abc[:-4]
            midi[name] = os.path.join(arbeit, name + ".mid")
            if lauf("abc2midi", os.path.join(o, abc), "-o", midi[name]).returncode or not os.path.exists(midi[name]):
                raise SystemExit(f"abc2midi {abc} schlug fehl")
            csv = lauf("midicsv", midi[name]).stdout.decode("latin-1").splitlines()
            spuren[name] = {int(z.split(", ")[0]) for z in csv if ", Note_on_c, " in z and not z.endswith(", 0")}

    print("Datei | vermutet | Musiker")
    for name, (erwartet, warum) in MELODIE.items():
        m = re.search(r"^Melodie vermutlich: Spur (\d+)", lauf(cli, "info", midi[name]).stdout.decode(), re.M)
        geraten = int(m.group(1)) if m else None
        print(f"{name} | Spur {geraten} | Spur {erwartet}: {warum}")
        if geraten != erwartet:
            fehler.append(f"{name}: Melodie vermutet in Spur {geraten}, ein Musiker nimmt Spur {erwartet}")

    passend = zuGross = 0
    for saiten in ("25", "37"):
        for spur in range(1, max(max(s) for s in spuren.values()) + 1):
            dateien = [midi[n] for n in sorted(midi) if spur in spuren[n]]
            ziel = {art: os.path.join(arbeit, f"{art}-{saiten}-{spur}") for art in ("0", "passend")}
            # The last bar is not filled: the carol's last note ends past its bar table.
            for art in ziel:
                r = lauf(cli, "convert", *dateien, "--spur", spur, "--saiten", saiten, "--ohne-pausen-letzter-takt",
                         "--transpo", art, "--formate", "pdf", "--ausgabe", ziel[art])
            if r.returncode not in (0, 4):
                fehler.append(f"passend, Spur {spur}, {saiten} Saiten: Rückgabewert {r.returncode}")
            for d in dateien:
                stamm = os.path.basename(d)[:-4]
                wo = f"{stamm} Spur {spur}, {saiten} Saiten"
                pdf0, pdf = (os.path.join(ziel[a], stamm + ".pdf") for a in ziel)
                if not os.path.exists(pdf0):
                    fehler.append(f"{wo}: kein Notenblatt bei Transposition 0")
                    continue
                daneben0, vorschlag, _ = kopf(pdf0)
                if daneben0 and vorschlag is None:
                    zuGross += 1
                    if os.path.exists(pdf) or f"{stamm}.mid: Das Stück umfasst mehr Töne" not in r.stderr.decode():
                        fehler.append(f"{wo}: passt auf keine Transposition, passend hätte es sagen müssen")
                    continue
                passend += 1
                daneben, _, transpo = kopf(pdf) if os.path.exists(pdf) else (True, None, None)
                if daneben or transpo != (vorschlag if daneben0 else 0):
                    fehler.append(f"{wo}: passend gab {transpo}, der Kopf schlug {vorschlag} vor")
    print(f"{len(midi)} Lieder: {passend} Spuren mit --transpo passend auf die Saiten gebracht, "
          f"{zuGross} größer als die Harfe abgewiesen")
    for f in fehler:
        print("FEHLER:", f)
    return 1 if fehler else 0


if __name__ == "__main__":
    sys.exit(main())
