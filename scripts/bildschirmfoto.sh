#!/usr/bin/env bash
# Takes docs/fenster.png (the window with the note sheet of a song), docs/druckvorschau.png (the
# print preview of that sheet) and docs/notenschrift.png (the "Notenschrift" page with the note
# font's previews), drawn on a virtual X server.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLYRABO_TESTS=ON -DLYRABO_BENCH=OFF
cmake --build build --target lyrabo_bildschirmfoto
mkdir -p docs
xvfb-run -a -s "-screen 0 1366x768x24" env QT_QPA_PLATFORM=xcb build/bin/lyrabo_bildschirmfoto docs/fenster.png
xvfb-run -a -s "-screen 0 1366x768x24" env QT_QPA_PLATFORM=xcb build/bin/lyrabo_bildschirmfoto docs/druckvorschau.png vorschau
xvfb-run -a -s "-screen 0 1366x768x24" env QT_QPA_PLATFORM=xcb build/bin/lyrabo_bildschirmfoto docs/notenschrift.png 5
echo "docs/fenster.png, docs/druckvorschau.png und docs/notenschrift.png geschrieben."
