#!/usr/bin/env bash
# Makes docs/wiederholung.png: the note sheet of "The Rakes of Mallow" (an AABB polka, played out
# in the MIDI file) for 25 strings, its repeats written once, as lyrabo-cli writes it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lyrabo-cli
arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT
abc2midi tests/blatt/lieder/rakes_of_mallow.abc -o "$arbeit/rakes.mid" >/dev/null
build/bin/lyrabo-cli convert "$arbeit/rakes.mid" --saiten 25 --wiederholungen ja --pdf "$arbeit/rakes.pdf" >/dev/null
pdftoppm -r 90 -png -f 1 -l 1 -singlefile "$arbeit/rakes.pdf" docs/wiederholung
echo "docs/wiederholung.png geschrieben."
