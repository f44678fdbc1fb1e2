#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and UndefinedBehaviorSanitizer
# and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DLYRABO_SANITIZE=ON -DLYRABO_BENCH=OFF
cmake --build build-test
export QT_QPA_PLATFORM=offscreen
cd build-test
ctest --output-on-failure -j2
