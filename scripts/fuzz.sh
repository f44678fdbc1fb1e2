#!/usr/bin/env bash
# Builds a libFuzzer target with clang and runs it for a given time.
# Usage: scripts/fuzz.sh [seconds, default 600] [target, default fuzz_ganzer_weg]
#   fuzz_ganzer_weg: a file's whole road, from loading to every output of each track;
#   fuzz_ganzer_weg_genau: the same with "Genaue Auflösung" (the window's default);
#   fuzz_midifile:   the reader and opening only (many more inputs per second).
# Each target's corpus grows in fuzz-work/<target>/korpus; inputs that crash, leak or hang land
# in fuzz-work/<target>/funde. Every finding becomes a row of the regression table in
# tests/core/test_fuzzfunde.cpp, whose inputs (and the command-line tests' hex inputs) seed every run.
set -euo pipefail
cd "$(dirname "$0")/.."
SEKUNDEN="${1:-600}"
ZIEL="${2:-fuzz_ganzer_weg}"
case "$ZIEL" in
  fuzz_ganzer_weg|fuzz_ganzer_weg_genau|fuzz_midifile) ;;
  *) echo "Unbekanntes Fuzz-Ziel: $ZIEL (fuzz_ganzer_weg, fuzz_ganzer_weg_genau oder fuzz_midifile)" >&2; exit 2 ;;
esac
bash scripts/pakete.sh --fuzz

cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DLYRABO_FUZZ=ON -DLYRABO_TESTS=OFF -DLYRABO_BENCH=OFF -DLYRABO_GUI=OFF >/dev/null
cmake --build build-fuzz -j2 --target "$ZIEL"

ARBEIT="fuzz-work/$ZIEL"
SAAT=fuzz-work/saat
mkdir -p "$SAAT" "$ARBEIT/korpus" "$ARBEIT/funde"
# Seeds: the files of the midicsv comparison, made fresh from their ABC and CSV sources ...
for abc in tests/midicsv/abc/*.abc; do
  abc2midi "$abc" -o "$SAAT/$(basename "${abc%.abc}").mid" >/dev/null 2>&1 || true
done
for csv in tests/midicsv/csv/*.csv; do
  csvmidi "$csv" "$SAAT/$(basename "${csv%.csv}").mid" || true
done
# ... one of them wrapped in RIFF, as RMID files come ...
le32() { printf '\\x%02x\\x%02x\\x%02x\\x%02x' $(($1 & 255)) $(($1 >> 8 & 255)) $(($1 >> 16 & 255)) $(($1 >> 24 & 255)); }
if [ -s "$SAAT/walzer.mid" ]; then
  n=$(wc -c <"$SAAT/walzer.mid")
  { printf "RIFF$(le32 $((n + 12 + n % 2)))RMIDdata$(le32 "$n")"; cat "$SAAT/walzer.mid"; [ $((n % 2)) -eq 0 ] || printf '\0'; } \
    >"$SAAT/walzer-riff.mid"
fi
# ... and the inputs of the regression tables: every string of hex pairs in them, string
# literals that continue on the next line joined first.
n=0
cat tests/core/test_fuzzfunde.cpp tests/cli/test_kommandozeile.cpp | tr '\n' ' ' | sed 's/" *"//g' |
  { grep -o '"\([0-9A-F][0-9A-F] \)\{3,\}[0-9A-F][0-9A-F]"' || true; } | tr -d '" ' | sort -u |
  while read -r hex; do
    n=$((n + 1))
    printf '%b' "$(sed 's/../\\x&/g' <<<"$hex")" >"$SAAT/fund$n.mid"
  done

"build-fuzz/bin/$ZIEL" -max_total_time="$SEKUNDEN" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
  -dict=fuzz/midi.dict -artifact_prefix="$ARBEIT/funde/" -print_final_stats=1 \
  "$ARBEIT/korpus" "$SAAT" 2>&1 | tee "$ARBEIT/letzter-lauf.log" | grep -v '^#[0-9]*.*\(NEW\|REDUCE\|pulse\)' || true

funde=$(find "$ARBEIT/funde" -type f | wc -l)
echo "Funde: $funde (in $ARBEIT/funde)"
[ "$funde" -eq 0 ]
