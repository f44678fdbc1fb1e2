#!/usr/bin/env bash
# Copies the note font "Lyrabo Noten" into the user's font folder, so office programs print the
# Works sheets with notes. Changes nothing when the same font is already there.
set -euo pipefail
cd "$(dirname "$0")/.."
quelle=data/schriften/LyraboNoten.otf
# Started through sudo, the font belongs to the user who called sudo, not to root.
if [ "$(id -u)" -eq 0 ] && [ -n "${SUDO_USER:-}" ] && [ "$SUDO_USER" != root ]; then
  exec sudo -u "$SUDO_USER" -H bash "$0"
fi
ordner="${XDG_DATA_HOME:-$HOME/.local/share}/fonts"
if cmp -s "$quelle" "$ordner/LyraboNoten.otf"; then
  echo "Notenschrift „Lyrabo Noten“ ist schon installiert ($ordner)."
  exit 0
fi
mkdir -p "$ordner"
cp "$quelle" "$ordner/LyraboNoten.otf.neu"
mv "$ordner/LyraboNoten.otf.neu" "$ordner/LyraboNoten.otf"
if command -v fc-cache >/dev/null; then fc-cache -f "$ordner" >/dev/null 2>&1 || true; fi
echo "Notenschrift „Lyrabo Noten“ installiert in $ordner (für Office-Programme, die Works-Datenbanken drucken)."
