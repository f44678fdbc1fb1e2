#!/usr/bin/env bash
# Makes docs/begleitung.png: "Old Hundredth" in four voices on the 37-string harp, the soprano as
# the melody and the bass as accompaniment, fitted with --transpo passend, as lyrabo-cli writes it,
# rasterised with poppler.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lyrabo-cli
arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT
abc2midi tests/melodie/lieder/old_hundredth_satb.abc -o "$arbeit/lied.mid" >/dev/null
build/bin/lyrabo-cli convert "$arbeit/lied.mid" --spur melodie --begleitung 5 --transpo passend --saiten 37 \
  --pdf "$arbeit/lied.pdf" >/dev/null
if [ "$(pdfinfo "$arbeit/lied.pdf" | awk '/^Pages:/{print $2}')" != 1 ]; then
  echo "Das Notenblatt hat mehr als eine Seite." >&2
  exit 1
fi
pdftoppm -r 70 -png -singlefile "$arbeit/lied.pdf" docs/begleitung
echo "docs/begleitung.png geschrieben."
