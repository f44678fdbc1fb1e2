#!/usr/bin/env bash
# Makes docs/notenblatt.png and docs/notenblatt_hals.png: the whole note sheet of "Amazing Grace" for
# 25 strings on one A4 page, in the table-harp shapes and in the shapes with stems, as lyrabo-cli
# writes it, rasterised with poppler.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lyrabo-cli
arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT
abc2midi tests/blatt/lieder/amazing_grace.abc -o "$arbeit/roh.mid" >/dev/null
# abc2midi writes the words as text events; as lyric events the conversion carries them to the notes.
midicsv "$arbeit/roh.mid" | sed -E 's/^(2, [0-9]+), Text_t, "[\\/]?(.*)"$/\1, Lyric_t, "\2"/' | csvmidi - "$arbeit/lied.mid"
for form in harfe hals; do
  build/bin/lyrabo-cli convert "$arbeit/lied.mid" --spur 2 --saiten 25 --notenform "$form" --pdf "$arbeit/$form.pdf" >/dev/null
  if [ "$(pdfinfo "$arbeit/$form.pdf" | awk '/^Pages:/{print $2}')" != 1 ]; then
    echo "Das Notenblatt ($form) hat mehr als eine Seite." >&2
    exit 1
  fi
done
pdftoppm -r 90 -png -singlefile "$arbeit/harfe.pdf" docs/notenblatt
pdftoppm -r 90 -png -singlefile "$arbeit/hals.pdf" docs/notenblatt_hals
echo "docs/notenblatt.png und docs/notenblatt_hals.png geschrieben."
