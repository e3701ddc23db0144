"""name_fonts.py TO: makes copies of the machine's free fonts under the names that pages and the engine ask Windows for.

The engine takes a family only under its very own name, so that Wine's table of replacements does not help it: without these
a page's `monospace`, `serif` and emoji are drawn in the default font, or as boxes. Korean, Japanese and Chinese need nothing of
this: Wine's own fallback asks for Noto's families, which a package brings.
"""
import os
import sys

from fontTools.ttLib import TTFont

FONTS = "/usr/share/fonts/truetype"
STYLES = {"Regular": "Regular", "Bold": "Bold", "Italic": "Italic", "BoldItalic": "Bold Italic"}
FAMILIES = {
    "Arial": "liberation/LiberationSans", "Segoe UI": "liberation/LiberationSans",
    "Times New Roman": "liberation/LiberationSerif",
    "Courier New": "liberation/LiberationMono", "Consolas": "liberation/LiberationMono",
}
# DejaVu's files are named otherwise.
SINGLE = {"Verdana": "dejavu/DejaVuSans.ttf", "Segoe UI Emoji": "ancient-scripts/Symbola_hint.ttf", "Segoe UI Symbol": "ancient-scripts/Symbola_hint.ttf",
          "Malgun Gothic": "nanum/NanumGothic.ttf"}
FAMILY, STYLE, UNIQUE, FULL, POSTSCRIPT, LATER = 1, 2, 3, 4, 6, (16, 17, 21, 22)


def save(source, family, style, to):
    font = TTFont(os.path.join(FONTS, source))
    names = font["name"]
    names.names = [record for record in names.names if record.nameID not in LATER]
    full = family if style == "Regular" else f"{family} {style}"
    for number, text in ((FAMILY, family), (STYLE, style), (UNIQUE, full), (FULL, full), (POSTSCRIPT, full.replace(" ", ""))):
        for record in [record for record in names.names if record.nameID == number]:
            names.setName(text, number, record.platformID, record.platEncID, record.langID)
    font.save(os.path.join(to, full.replace(" ", "") + ".ttf"))


to = sys.argv[1]
os.makedirs(to, exist_ok=True)
for family, source in FAMILIES.items():
    for file_style, style in STYLES.items():
        save(f"{source}-{file_style}.ttf", family, style, to)
for family, source in SINGLE.items():
    save(source, family, "Regular", to)
