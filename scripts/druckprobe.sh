#!/usr/bin/env bash
# Prints Works databases written by lyrabo-cli (37 and 25 strings) the way an office program does:
# LibreOffice (headless) turns each into a PDF, which must embed the note font and put the string
# columns 11.5 mm apart on A4 landscape; page 1 of the 37-string sheet becomes docs/works_druck.png.
# Not part of scripts/test.sh: LibreOffice is large. Usage: bash scripts/druckprobe.sh
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh --druckprobe
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLYRABO_BENCH=OFF >/dev/null
cmake --build build --target lyrabo-cli

arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT
# A tune within the lowest 25 strings (so page 1 holds all of it), with a leading rest, dotted
# lengths and sixteenths.
cat > "$arbeit/probe.abc" <<'ABC'
X:1
T:Druckprobe
M:4/4
L:1/8
Q:1/4=100
K:G
z2 G,2 B,2 D2|G4 A3 B|c2 d2 e2 f2|g6 f2|e3 d/c/ B2 z2|G8|A2 B2 c2 d2|e3 d c4|B6 A2|G8|]
ABC
abc2midi "$arbeit/probe.abc" -o "$arbeit/probe.mid" >/dev/null
# LibreOffice sees the font the way a user's office program does after the installation, but in
# a home of its own, so nothing of the real user's settings is touched.
mkdir -p "$arbeit/home/.local/share/fonts"
cp data/schriften/LyraboNoten.otf "$arbeit/home/.local/share/fonts/"

fehler=0
for saiten in 37 25; do
  echo "== $saiten Saiten"
  build/bin/lyrabo-cli convert "$arbeit/probe.mid" --saiten "$saiten" --wdb "$arbeit/probe$saiten.wdb"
  HOME="$arbeit/home" XDG_DATA_HOME="$arbeit/home/.local/share" XDG_CACHE_HOME="$arbeit/home/.cache" \
    soffice --headless "-env:UserInstallation=file://$arbeit/profil" --convert-to pdf --outdir "$arbeit" \
    "$arbeit/probe$saiten.wdb" >/dev/null 2>&1
  pdf="$arbeit/probe$saiten.pdf"
  [ -s "$pdf" ] || { echo "LibreOffice hat kein PDF geschrieben." >&2; exit 1; }

  echo "Schriften im PDF:"
  pdffonts "$pdf" | tail -n +3
  if ! pdffonts "$pdf" | grep -q "LyraboNoten"; then
    echo "FEHLER: Die Notenschrift LyraboNoten ist nicht eingebettet." >&2
    fehler=1
  fi
  seite="$(pdfinfo -f 1 -l 1 "$pdf" | awk '/^Page.*size:/ {print $4, $6}')"
  echo "Seite 1: $seite pt, $(pdfinfo "$pdf" | awk '/^Pages:/ {print $2}') Seiten"
  if ! awk -v s="$seite" 'BEGIN {split(s, m, " "); exit !(m[1] > 841 && m[1] < 843 && m[2] > 594 && m[2] < 596)}'; then
    echo "FEHLER: Seite 1 ist nicht A4 quer." >&2
    fehler=1
  fi
  # Every note of page 1 starts a whole number of column widths after the leftmost one.
  pdftotext -bbox -f 1 -l 1 "$pdf" - | awk -F'"' '/<word / {print $2}' | sort -n | uniq > "$arbeit/x.txt"
  if ! awk 'NR == 1 {x0 = $1; next}
            {d = $1 - x0; k = int(d / 32.6 + 0.5); if (k > 0) {b = d / k; if (min == "" || b < min) min = b; if (b > max) max = b}}
            END {if (min == "") exit 1
                 printf "Spaltenabstand auf Seite 1: %.2f bis %.2f mm\n", min * 25.4 / 72, max * 25.4 / 72
                 exit !(min * 25.4 / 72 > 11.45 && max * 25.4 / 72 < 11.55)}' "$arbeit/x.txt"; then
    echo "FEHLER: Die Spalten stehen nicht 11,5 mm auseinander." >&2
    fehler=1
  fi
done
mkdir -p docs
pdftoppm -r 100 -f 1 -l 1 -png -singlefile "$arbeit/probe37.pdf" docs/works_druck
echo "docs/works_druck.png geschrieben."
exit "$fehler"
