#!/usr/bin/env bash
# Builds the MIDI reader's libFuzzer target with clang and runs it for a given time.
# Usage: scripts/fuzz.sh [seconds, default 600]
# The corpus grows in fuzz-work/korpus; inputs that crash, leak or hang land in fuzz-work/funde.
# Every finding belongs in tests/core/test_midi_fuzzfunde.cpp as a regression test.
set -euo pipefail
cd "$(dirname "$0")/.."
SEKUNDEN="${1:-600}"
bash scripts/pakete.sh --fuzz

cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DLYRABO_FUZZ=ON -DLYRABO_TESTS=OFF -DLYRABO_BENCH=OFF -DLYRABO_GUI=OFF
cmake --build build-fuzz -j2 --target fuzz_midifile

mkdir -p fuzz-work/saat fuzz-work/korpus fuzz-work/funde
# Seeds: the files of the midicsv comparison, made fresh from their ABC and CSV sources.
for abc in tests/midicsv/abc/*.abc; do
  abc2midi "$abc" -o "fuzz-work/saat/$(basename "${abc%.abc}").mid" >/dev/null 2>&1 || true
done
for csv in tests/midicsv/csv/*.csv; do
  csvmidi "$csv" "fuzz-work/saat/$(basename "${csv%.csv}").mid" || true
done

build-fuzz/bin/fuzz_midifile -max_total_time="$SEKUNDEN" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
  -dict=fuzz/midi.dict -artifact_prefix=fuzz-work/funde/ -print_final_stats=1 \
  fuzz-work/korpus fuzz-work/saat 2>&1 | tee fuzz-work/letzter-lauf.log | grep -v '^#[0-9]*.*\(NEW\|REDUCE\|pulse\)' || true

echo "Funde: $(ls fuzz-work/funde | wc -l) (in fuzz-work/funde)"
