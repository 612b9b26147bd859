#!/usr/bin/python3
"""Builds Velmora-Icons.ttf, the app's icon font, from Font Awesome 4.7 as Debian ships it.

Run once when an icon changes and commit the result beside this script:

    apt-get install fonts-font-awesome python3-fonttools
    /usr/bin/python3 resources/fonts/make_icon_font.py

The app's markup writes icons as plain ASCII characters ("F" opens the side menu, "T" is the
call button), so the font maps each of those characters to a Font Awesome glyph. The table
below is the single place that decides which picture stands for which use; the C++ constants
in richtext/IconFont.h name the same characters.
"""
import pathlib
import sys

from fontTools import subset
from fontTools.ttLib import TTFont
from fontTools.ttLib.tables._c_m_a_p import cmap_format_4

SOURCE = pathlib.Path("/usr/share/fonts/truetype/font-awesome/fontawesome-webfont.ttf")
OUTPUT = pathlib.Path(__file__).resolve().parent / "Velmora-Icons.ttf"
FAMILY = "Velmora-Icons"

# character -> (Font Awesome code point, Font Awesome name, what the app uses it for)
GLYPHS = {
    "1": (0xF02E, "bookmark", "my places, selected"),
    "2": (0xF0F3, "bell", "notifications, selected"),
    "3": (0xF013, "cog", "settings, selected"),
    "4": (0xF05A, "info-circle", "info, selected"),
    "8": (0xF002, "search", "browse, selected"),
    "n": (0xF279, "map", "map, selected"),
    "H": (0xF002, "search", "browse"),
    "E": (0xF278, "map-o", "map"),
    "A": (0xF097, "bookmark-o", "my places; the card's save row and the my-places hints"),
    "B": (0xF0A2, "bell-o", "notifications"),
    "D": (0xF129, "info", "info"),
    "C": (0xF1DE, "sliders", "settings"),
    "F": (0xF0C9, "bars", "opens the side menu"),
    "P": (0xF104, "angle-left", "back"),
    "d": (0xF0B0, "filter", "the filter button of the search bar (the subscription screens share it)"),
    "R": (0xF105, "angle-right", "a row or card that leads on"),
    "r": (0xF1E0, "share-alt", "share: the place card's bar, the save sheet and the gallery"),
    "K": (0xF078, "chevron-down", "row that can open, closed; province button"),
    "L": (0xF077, "chevron-up", "row that can open, open; province picker"),
    "M": (0xF041, "map-marker", "place location in cells"),
    "N": (0xF274, "calendar-check-o", "reserve"),
    "O": (0xF138, "chevron-circle-right", "map callout"),
    "S": (0xF030, "camera", "picture count"),
    "T": (0xF095, "phone", "call"),
    "s": (0xF095, "phone", "call without a number (drawn grey)"),
    "t": (0xF014, "trash-o", "delete"),
    "U": (0xF08A, "heart-o", "favourite, off"),
    "V": (0xF004, "heart", "favourite, on"),
    "W": (0xF05D, "check-circle-o", "visited, off"),
    "X": (0xF058, "check-circle", "visited, on"),
    "Y": (0xF11D, "flag-o", "to visit, off"),
    "Z": (0xF024, "flag", "to visit, on"),
    "e": (0xF058, "check-circle", "chosen row"),
    "f": (0xF10C, "circle-o", "row not chosen"),
    "v": (0xF071, "exclamation-triangle", "warning"),
    "w": (0xF05B, "crosshairs", "map: find my location"),
    "x": (0xF124, "location-arrow", "map: following my location"),
}


def main():
    font = TTFont(str(SOURCE))
    source_cmap = font.getBestCmap()
    wanted = {ch: source_cmap[cp] for ch, (cp, _, _) in GLYPHS.items()}

    options = subset.Options()
    options.glyph_names = True
    options.notdef_outline = True
    options.name_IDs = []
    options.layout_features = []
    subsetter = subset.Subsetter(options)
    subsetter.populate(glyphs=sorted(set(wanted.values()) | {"space"}))
    subsetter.subset(font)

    mapping = {ord(ch): glyph for ch, glyph in wanted.items()}
    mapping[0x20] = "space"
    tables = []
    for platform_id, encoding_id in ((0, 3), (3, 1)):
        table = cmap_format_4(4)
        table.platformID, table.platEncID, table.language = platform_id, encoding_id, 0
        table.cmap = dict(mapping)
        tables.append(table)
    font["cmap"].tables = tables

    names = font["name"]
    names.names = []
    for name_id, text in (
        (0, "Glyphs from Font Awesome 4.7 by Dave Gandy, SIL Open Font License 1.1"),
        (1, FAMILY), (2, "Regular"), (3, FAMILY + " 1.0"), (4, FAMILY),
        (5, "Version 1.0"), (6, FAMILY),
    ):
        names.setName(text, name_id, 3, 1, 0x409)
        names.setName(text, name_id, 1, 0, 0)
    font["OS/2"].usFirstCharIndex = min(mapping)
    font["OS/2"].usLastCharIndex = max(mapping)
    font.save(str(OUTPUT))
    print(f"{OUTPUT}: {len(GLYPHS)} icons")


if __name__ == "__main__":
    sys.exit(main())
