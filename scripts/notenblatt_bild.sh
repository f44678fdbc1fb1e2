#!/usr/bin/env bash
# Makes docs/notenblatt.png: page 1 of the note sheet of "Freude, schöner Götterfunken" for 25
# strings, as lyrabo-cli writes it, rasterised with poppler.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lyrabo-cli
arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT
abc2midi tests/blatt/lieder/freude_schoener_goetterfunken.abc -o "$arbeit/roh.mid" >/dev/null
# abc2midi writes the words as text events; as lyric events the conversion carries them to the notes.
midicsv "$arbeit/roh.mid" | sed -E 's/^(2, [0-9]+), Text_t, "[\\/]?(.*)"$/\1, Lyric_t, "\2"/' | csvmidi - "$arbeit/freude.mid"
build/bin/lyrabo-cli convert "$arbeit/freude.mid" --spur 2 --saiten 25 --pdf "$arbeit/freude.pdf" >/dev/null
pdftoppm -r 90 -png -f 1 -l 1 -singlefile "$arbeit/freude.pdf" docs/notenblatt
echo "docs/notenblatt.png geschrieben."
