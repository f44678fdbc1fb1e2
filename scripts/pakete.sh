#!/usr/bin/env bash
# Installs the Debian packages Lyrabo needs to build, run and test, if any is missing.
set -euo pipefail

PAKETE=(
  build-essential cmake ninja-build pkgconf
  qt6-base-dev qt6-svg-dev libgl-dev
  librtmidi-dev libfluidsynth-dev timgm6mb-soundfont
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  midicsv abcmidi libwps-tools
  poppler-utils python3-numpy python3-scipy
  xvfb xauth fonts-dejavu-core fontconfig
)
if [ "${1:-}" = "--fuzz" ]; then
  PAKETE+=(clang libclang-rt-14-dev)
fi
# Only for scripts/druckprobe.sh: an office program that reads Works databases, and PDF tools.
if [ "${1:-}" = "--druckprobe" ]; then
  PAKETE+=(libreoffice-calc-nogui poppler-utils)
fi

fehlend=()
for p in "${PAKETE[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    fehlend+=("$p")
  fi
done

if [ ${#fehlend[@]} -gt 0 ]; then
  echo "Installiere fehlende Pakete: ${fehlend[*]}"
  SUDO=""
  if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
  $SUDO apt-get update -q
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -q --no-install-recommends "${fehlend[@]}"
fi
