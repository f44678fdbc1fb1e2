#!/usr/bin/env bash
# Builds the Debian package build-paket/lyrabo_VERSION_ARCH.deb: the programs alone (no tests,
# no benchmarks) in a Release build with Debian's hardening flags, packed by CPack.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
eval "$(dpkg-buildflags --export=sh)"
start=()
if command -v ccache > /dev/null; then start=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B build-paket -G Ninja -DCMAKE_BUILD_TYPE=Release -DLYRABO_TESTS=OFF -DLYRABO_BENCH=OFF "${start[@]}" \
  -DCMAKE_CXX_FLAGS="$CXXFLAGS $CPPFLAGS" -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS"
cmake --build build-paket -j "${JOBS:-$(nproc)}"
rm -f build-paket/lyrabo_*.deb
(cd build-paket && cpack -G DEB)
paket=$(ls build-paket/lyrabo_*.deb)
echo "Paket: $paket ($(du -h "$paket" | cut -f1))"
echo "Installieren: sudo apt install ./$paket"
