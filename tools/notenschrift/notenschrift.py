#!/usr/bin/python3
"""Builds the note font "Lyrabo Noten" (data/schriften/LyraboNoten.otf) and its origin log.

The letters c v b n m carry notes (whole to sixteenth, stems up with flags), f g h j k the rests
of the same lengths, the comma an augmentation dot that lands right of the head of the glyph
before it, and the blank is as wide as a note. Every other digit, letter and punctuation mark
comes from a text font, so labels and cells with words stay readable.

Sources (Debian packages, both under the SIL Open Font License 1.1):
  lilypond-fonts      Emmentaler-16: note heads, flags, rests, the dot
  fonts-liberation2   Liberation Sans Regular: the text characters
The reserved names of both (Emmentaler, Feta, Liberation, Arimo, Tinos, Cousine) appear in no
name of the result.

Run by hand, or with `cmake --build build --target lyrabo_schrift_erneuern`:
  /usr/bin/python3 tools/notenschrift/notenschrift.py [target folder, default data/schriften]
Needs python3-fontforge, lilypond-fonts and fonts-liberation2.
"""
import glob
import os
import sys

# Fixed dates make the output reproducible; FontForge honours this for the head and name tables.
os.environ.setdefault("SOURCE_DATE_EPOCH", "1735689600")  # 2025-01-01

import fontforge  # noqa: E402
import psMat  # noqa: E402

VERSION = "1.000"
FAMILIE = "Lyrabo Noten"
PS_NAME = "LyraboNoten-Regular"
COPYRIGHT = ("Copyright (c) 2025 the Lyrabo developers. "
             "Music glyphs from Emmentaler, copyright (c) 1996-2017 the LilyPond authors, "
             "with Reserved Font Names \"Emmentaler\" and \"Feta\". "
             "Text glyphs from Liberation Sans: digitized data copyright (c) 2010 Google Corporation "
             "with Reserved Font Arimo, Tinos and Cousine; copyright (c) 2012 Red Hat, Inc. "
             "with Reserved Font Name \"Liberation\".")
LIZENZ = "This Font Software is licensed under the SIL Open Font License, Version 1.1."
LIZENZ_URL = "https://openfontlicense.org"

EMMENTALER = "/usr/share/lilypond/*/fonts/otf/emmentaler-16.otf"
LIBERATION = "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf"

# Geometry in font units (1000 to the em). Emmentaler draws a staff space as 250 units.
# An office program sets a cell's baseline the font's descent (212) above the row's bottom, and
# Works rows are as high as the font size (1000 units): a note, head to stem end, must lie within
# y = -212 .. 788 to stay inside its row.
K = 0.96                 # scale of the Emmentaler outlines
S = 250 * K              # staff space
KOPF_Y = -67             # centre line of the note heads, below the baseline
STIEL_LAENGE = 3.5 * S   # from the head's centre, as engraved; a shorter stem puts the flag on the dot
STIEL_DICKE = 0.13 * S
LINKS = 80               # left side bearing of notes
BREITE = 640             # advance of every note, rest and the blank
PUNKT_X = 500            # left edge of the dot, measured from the origin of the glyph before it
PUNKT_Y = KOPF_Y         # the dot sits level with the head's centre

# Text characters kept from the text font: printable ASCII, Latin-1 and German quotes and dashes.
TEXT_ZEICHEN = (list(range(0x20, 0x7F)) + list(range(0xA0, 0x100)) +
                [0x2013, 0x2014, 0x2018, 0x2019, 0x201A, 0x201C, 0x201D, 0x201E, 0x2026, 0x20AC])

protokoll = []


def quelle(pfad_muster):
    treffer = sorted(glob.glob(pfad_muster))
    if not treffer:
        sys.exit("Nicht gefunden: %s (Paket installiert?)" % pfad_muster)
    return treffer[-1]


def uebernehmen(ziel, emm, name, dx, dy):
    """Copies an Emmentaler outline, scaled by K, with its origin moved to (dx, dy)."""
    ebene = emm[name].foreground.dup()
    ebene.transform(psMat.compose(psMat.scale(K), psMat.translate(dx, dy)))
    ziel.foreground += ebene
    x0, y0, x1, y1 = ebene.boundingBox()
    protokoll.append("    %-14s scaled %.2f, origin at (%d, %d): ink x %d..%d, y %d..%d"
                     % (name, K, dx, dy, x0, x1, y0, y1))
    return x0, y0, x1, y1


def rechteck(ziel, x0, y0, x1, y1, was):
    pen = ziel.glyphPen(replace=False)
    pen.moveTo((x0, y0))
    pen.lineTo((x0, y1))
    pen.lineTo((x1, y1))
    pen.lineTo((x1, y0))
    pen.closePath()
    pen = None
    protokoll.append("    %-14s drawn: x %d..%d, y %d..%d" % (was, x0, x1, y0, y1))


def neues_zeichen(font, zeichen, glyphname, beschreibung):
    code = ord(zeichen)
    if code in [g.unicode for g in font.glyphs()]:
        font.removeGlyph(font[code].glyphname)
    g = font.createChar(code, glyphname)
    g.clear()
    protokoll.append("  '%s' (code %d, glyph %s): %s" % (zeichen, code, glyphname, beschreibung))
    return g


def note(font, emm, zeichen, glyphname, beschreibung, kopf, fahne=None, stiel=True):
    g = neues_zeichen(font, zeichen, glyphname, beschreibung)
    _, _, rechts, _ = uebernehmen(g, emm, kopf, LINKS, KOPF_Y)
    if stiel:
        oben = KOPF_Y + STIEL_LAENGE
        # The stem stands on the right edge of the head, from its centre up.
        rechteck(g, rechts - STIEL_DICKE, KOPF_Y + 0.2 * S, rechts, oben, "stem")
        if fahne:
            uebernehmen(g, emm, fahne, rechts - STIEL_DICKE, oben)
    g.width = BREITE
    return g


def pause(font, emm, zeichen, glyphname, beschreibung, rest, x, y, linie=None):
    g = neues_zeichen(font, zeichen, glyphname, beschreibung)
    x0, _, x1, _ = uebernehmen(g, emm, rest, x, y)
    if linie is not None:
        # Whole and half rest carry a short line (the whole hangs from it, the half stands on it),
        # which tells them apart without a staff.
        ueber = 0.15 * S
        dicke = 0.16 * S
        rechteck(g, x0 - ueber, linie - dicke / 2, x1 + ueber, linie + dicke / 2, "line")
    g.width = BREITE
    return g


def main():
    ziel = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "..", "..", "data", "schriften")
    os.makedirs(ziel, exist_ok=True)
    emm_pfad = quelle(EMMENTALER)
    emm = fontforge.open(emm_pfad)
    font = fontforge.open(LIBERATION)
    protokoll.append("Lyrabo Noten %s, made by tools/notenschrift/notenschrift.py" % VERSION)
    protokoll.append("")
    protokoll.append("Sources:")
    protokoll.append("  %s (%s, %s)" % (emm_pfad, emm.fontname, emm.version))
    protokoll.append("  %s (%s, %s)" % (LIBERATION, font.fontname, font.version))
    protokoll.append("")
    protokoll.append("Text characters: taken from Liberation Sans Regular, scaled from 2048 to 1000 units")
    protokoll.append("  to the em, unchanged otherwise; kept are printable ASCII, Latin-1 and German quotes")
    protokoll.append("  and dashes; all other glyphs, the kerning and every OpenType lookup were removed,")
    protokoll.append("  and the letters below were replaced by music glyphs.")
    protokoll.append("")

    font.em = 1000
    font.is_quadratic = False  # the music outlines are cubic, as the OpenType (CFF) output
    for lookup in font.gpos_lookups + font.gsub_lookups:
        font.removeLookup(lookup)
    behalten = set(TEXT_ZEICHEN)
    for g in list(font.glyphs()):
        if g.glyphname in (".notdef",):
            continue
        if g.unicode not in behalten:
            font.removeGlyph(g)

    protokoll.append("Music characters (units of 1000 to the em; baseline y = 0; advance %d unless said):" % BREITE)
    note(font, emm, "c", "ganze", "whole note", "noteheads.s0", stiel=False)
    note(font, emm, "v", "halbe", "half note, stem up", "noteheads.s1")
    note(font, emm, "b", "viertel", "quarter note, stem up", "noteheads.s2")
    note(font, emm, "n", "achtel", "eighth note, stem up, one flag", "noteheads.s2", "flags.u3")
    note(font, emm, "m", "sechzehntel", "sixteenth note, stem up, two flags", "noteheads.s2", "flags.u4")
    # Rests stand low like the note heads, so that a dot after them sits beside their foot.
    pause(font, emm, "f", "ganzePause", "whole rest, hanging from a short line", "rests.0",
          LINKS, KOPF_Y + 0.55 * S, linie=KOPF_Y + 0.55 * S)
    pause(font, emm, "g", "halbePause", "half rest, standing on a short line", "rests.1",
          LINKS, KOPF_Y - 40, linie=KOPF_Y - 40)
    pause(font, emm, "h", "viertelPause", "quarter rest", "rests.2", LINKS + 100, KOPF_Y - 100 + 321 * K)
    pause(font, emm, "j", "achtelPause", "eighth rest", "rests.3", LINKS + 100, KOPF_Y - 60 + 262 * K)
    pause(font, emm, "k", "sechzehntelPause", "sixteenth rest", "rests.4", LINKS + 100, KOPF_Y - 140 + 512 * K)

    punkt = neues_zeichen(font, ",", "punkt",
                          "augmentation dot, advance 0: drawn right of the head of the glyph before it")
    uebernehmen(punkt, emm, "dots.dot", PUNKT_X - BREITE, PUNKT_Y)
    punkt.width = 0

    leer = neues_zeichen(font, " ", "space", "blank, as wide as a note, no ink")
    leer.width = BREITE

    for g in font.glyphs():
        g.removeOverlap()
        g.correctDirection()
        g.round()

    font.fontname = PS_NAME
    font.familyname = FAMILIE
    font.fullname = FAMILIE
    font.weight = "Regular"
    font.version = VERSION
    font.copyright = COPYRIGHT
    font.os2_vendor = "LYRA"
    for sprache, feld, _ in list(font.sfnt_names):
        font.appendSFNTName(sprache, feld, "")
    for feld, text in (("Copyright", COPYRIGHT), ("Family", FAMILIE), ("SubFamily", "Regular"),
                       ("UniqueID", "%s %s" % (PS_NAME, VERSION)), ("Fullname", FAMILIE),
                       ("Version", "Version " + VERSION), ("PostScriptName", PS_NAME),
                       ("Descriptor", "Notes and rests of the Lyrabo harp sheets at the letters c v b n m "
                                      "and f g h j k, the comma as dot."),
                       ("License", LIZENZ), ("License URL", LIZENZ_URL)):
        font.appendSFNTName("English (US)", feld, text)

    schrift = os.path.join(ziel, "LyraboNoten.otf")
    font.generate(schrift, flags=("opentype", "omit-instructions"))
    protokoll.append("")
    protokoll.append("Names: family \"%s\", PostScript \"%s\"; no reserved name of the sources is used." % (FAMILIE, PS_NAME))
    protokoll.append("Metrics: ascent %d, descent %d (those of Liberation Sans at 1000 units)." % (
        font.hhea_ascent, -font.hhea_descent))
    protokoll.append("Licence: SIL Open Font License 1.1, text in OFL.txt beside the font. Emmentaler is used")
    protokoll.append("  under the OFL 1.1 as Debian's lilypond-fonts copyright states for LilyPond's font sources")
    protokoll.append("  (reserved names Emmentaler, Feta); Liberation Sans under the OFL 1.1 as it ships.")
    with open(os.path.join(ziel, "LyraboNoten-Herkunft.txt"), "w", encoding="utf-8") as log:
        log.write("\n".join(protokoll) + "\n")
    print("Geschrieben: %s" % os.path.normpath(schrift))


if __name__ == "__main__":
    main()
