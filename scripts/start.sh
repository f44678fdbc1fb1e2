#!/usr/bin/env bash
# Installs what is missing, builds Lyrabo, installs its note font for the user and starts the
# window program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLYRABO_TESTS=OFF
cmake --build build
bash scripts/schrift_installieren.sh || echo "Die Notenschrift konnte nicht installiert werden; Lyrabo läuft trotzdem."
if [ -x build/bin/lyrabo ]; then
  exec build/bin/lyrabo "$@"
else
  echo "Gebaut. Das Fenster gibt es noch nicht; lauffähig ist bisher: $(ls build/bin | tr '\n' ' ')"
fi
