#!/usr/bin/env bash
# Packs this build with CPack, unpacks the .deb into an empty folder and converts a song with the
# unpacked lyrabo-cli, which must find its templates in the unpacked usr/share/lyrabo/ and keep
# its working files in the user's configuration folder. The results must equal those of the same
# program run as a portable copy, with ini/ and data/ beside it.
# Then desktop-file-validate, appstreamcli and lintian (errors fail, warnings are listed).
set -euo pipefail
bau=$1 quelle=$2
for w in cpack dpkg-deb abc2midi desktop-file-validate appstreamcli lintian pdfinfo; do
  command -v "$w" > /dev/null || { echo "Werkzeug fehlt: $w (scripts/pakete.sh)"; exit 1; }
done
tmp=$(mktemp -d /tmp/lyrabo_paket.XXXXXX)
trap 'rm -rf "$tmp"' EXIT

cpack --config "$bau/CPackConfig.cmake" -B "$tmp/cpack" > "$tmp/cpack.log" || { cat "$tmp/cpack.log"; exit 1; }
deb=$(ls "$tmp"/cpack/lyrabo_*.deb)
dpkg-deb -c "$deb" | awk '{print $6}' > "$tmp/inhalt"
# What the steps below do not use themselves.
for pfad in ./usr/bin/lyrabo ./usr/share/lyrabo/data/schriften/LyraboNoten.otf \
    ./usr/share/icons/hicolor/scalable/apps/lyrabo.svg; do
  grep -qx "$pfad" "$tmp/inhalt" || { echo "Nicht im Paket: $pfad"; exit 1; }
done
if grep -E 'test|bench|fuzz|wdbvorlage|bildschirmfoto' "$tmp/inhalt"; then echo "Gehört nicht ins Paket"; exit 1; fi

mkdir -p "$tmp/wurzel" "$tmp/heim" "$tmp/arbeit" "$tmp/vergleich" "$tmp/tragbar/data"
dpkg-deb -x "$deb" "$tmp/wurzel"
cp "$tmp/wurzel/usr/bin/lyrabo-cli" "$tmp/tragbar/"
cp -r "$quelle/ini" "$tmp/tragbar/ini"
abc2midi "$quelle/tests/blatt/lieder/freude_schoener_goetterfunken.abc" -o "$tmp/lied.mid" > /dev/null
# A user of their own: nothing of this machine's or the build's settings is read.
export HOME=$tmp/heim XDG_CONFIG_HOME=$tmp/heim/.config
umrechnen() {  # PROGRAMM ZIELORDNER
  (cd "$2" && "$1" convert "$tmp/lied.mid" --transpo -5 --harfentext lied.txt --wdb lied.wdb --pdf lied.pdf)
}
umrechnen "$tmp/tragbar/lyrabo-cli" "$tmp/vergleich"
[ -f "$tmp/tragbar/ini/FelderAllTemp_37.ini" ] && [ ! -e "$XDG_CONFIG_HOME/lyrabo" ] || { echo "Tragbare Kopie nicht beisammen"; exit 1; }
umrechnen "$tmp/wurzel/usr/bin/lyrabo-cli" "$tmp/arbeit"
cmp "$tmp/arbeit/lied.txt" "$tmp/vergleich/lied.txt"
cmp "$tmp/arbeit/lied.wdb" "$tmp/vergleich/lied.wdb"
[ -s "$tmp/arbeit/lied.txt" ] || { echo "Harfen-Text leer"; exit 1; }
seiten=$(pdfinfo "$tmp/arbeit/lied.pdf" | awk '/^Pages:/ {print $2}')
[ "$seiten" -ge 1 ] || { echo "PDF ohne Seiten"; exit 1; }
# The Works writer's working grid went to the configuration folder, not into the package's files.
[ -f "$XDG_CONFIG_HOME/lyrabo/FelderAllTemp_37.ini" ] || { echo "Arbeitsraster nicht im Konfigurationsordner"; exit 1; }
[ -z "$(find "$tmp/wurzel" -newer "$deb" -type f)" ] || { echo "Ins ausgepackte Paket geschrieben"; exit 1; }

desktop-file-validate "$tmp/wurzel/usr/share/applications/de.lyrabo.Lyrabo.desktop"
appstreamcli validate --no-net "$tmp/wurzel/usr/share/metainfo/de.lyrabo.Lyrabo.metainfo.xml"

lintian --tag-display-limit 0 "$deb" > "$tmp/lintian" 2>&1 || true
cat "$tmp/lintian"
if grep -q '^E:' "$tmp/lintian"; then echo "lintian meldet Fehler"; exit 1; fi
echo "Paket $(basename "$deb"): $(stat -c %s "$deb") Bytes, $(grep -c '^W:' "$tmp/lintian") lintian-Warnungen, $seiten PDF-Seiten"
