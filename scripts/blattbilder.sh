#!/usr/bin/env bash
# Makes the note-sheet pictures in docs/ as lyrabo-cli writes the sheets, rasterised with poppler:
#   notenblatt.png, notenblatt_hals.png  "Amazing Grace", 25 strings on one A4 page, table-harp shapes and stems
#   wiederholung.png                     "The Rakes of Mallow" (AABB, played out in the file), repeats written once
#   begleitung.png                       "Old Hundredth" in four voices: soprano as melody, bass as accompaniment
#   aufloesung_vorher.png, …_nachher.png "Twinkle" written at 1024 ticks per quarter without a tempo event,
#                                        page 1 without and with "Genaue Auflösung"
# Each sheet must fit one page (but the one that shows what goes wrong without exact resolution); a
# picture of a sheet that spills onto a second one is a fault to fix.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/pakete.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lyrabo-cli
arbeit="$(mktemp -d)"
trap 'rm -rf "$arbeit"' EXIT

# bild MIDI NAME DPI OPTIONEN…: the sheet of MIDI as docs/NAME.png, from a one-page PDF
# (with SEITEN=n set, page 1 of an n-page PDF).
bild() {
  local mid="$1" name="$2" dpi="$3"
  shift 3
  build/bin/lyrabo-cli convert "$mid" "$@" --pdf "$arbeit/$name.pdf" >/dev/null
  if [ "$(pdfinfo "$arbeit/$name.pdf" | awk '/^Pages:/{print $2}')" != "${SEITEN:-1}" ]; then
    echo "Das Notenblatt $name hat nicht ${SEITEN:-1} Seite(n)." >&2
    exit 1
  fi
  pdftoppm -r "$dpi" -png -f 1 -singlefile "$arbeit/$name.pdf" "docs/$name"
  echo "docs/$name.png geschrieben."
}

abc2midi tests/blatt/lieder/amazing_grace.abc -o "$arbeit/roh.mid" >/dev/null
# abc2midi writes the words as text events; as lyric events the conversion carries them to the notes.
midicsv "$arbeit/roh.mid" | sed -E 's/^(2, [0-9]+), Text_t, "[\\/]?(.*)"$/\1, Lyric_t, "\2"/' | csvmidi - "$arbeit/grace.mid"
bild "$arbeit/grace.mid" notenblatt 90 --spur 2 --saiten 25 --notenform harfe
bild "$arbeit/grace.mid" notenblatt_hals 90 --spur 2 --saiten 25 --notenform hals

abc2midi tests/blatt/lieder/rakes_of_mallow.abc -o "$arbeit/rakes.mid" >/dev/null
bild "$arbeit/rakes.mid" wiederholung 90 --saiten 25 --wiederholungen ja

abc2midi tests/melodie/lieder/old_hundredth_satb.abc -o "$arbeit/hundredth.mid" >/dev/null
bild "$arbeit/hundredth.mid" begleitung 70 --spur melodie --begleitung 5 --transpo passend --saiten 37

# The same tune at 1024 ticks per quarter and without its tempo event, as many files on the web are.
abc2midi tests/blatt/lieder/twinkle.abc -o "$arbeit/twinkle.mid" >/dev/null
midicsv "$arbeit/twinkle.mid" | awk -F', ' 'BEGIN{OFS=", "} $3=="Tempo"{next} $3=="Header"{$6=1024} {$2=int($2*1024/480+0.5); print}' \
  | csvmidi - "$arbeit/twinkle1024.mid"
SEITEN=2 bild "$arbeit/twinkle1024.mid" aufloesung_vorher 60 --saiten 25 --genaue-aufloesung=nein
bild "$arbeit/twinkle1024.mid" aufloesung_nachher 60 --saiten 25 --genaue-aufloesung=ja
