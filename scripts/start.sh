#!/usr/bin/env bash
# Installs what is missing, builds Lyrabo and starts the window program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLYRABO_TESTS=OFF
cmake --build build
if [ -x build/bin/lyrabo ]; then
  exec build/bin/lyrabo "$@"
else
  echo "Gebaut. Das Fenster gibt es noch nicht; lauffähig ist bisher: $(ls build/bin | tr '\n' ' ')"
fi
