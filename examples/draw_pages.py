#!/usr/bin/python3
"""Draws the sample pages: printed sheets with the faults that scans have, and the text that stands on them.

    examples/draw_pages.py [FOLDER]

Each page is set on a clean sheet, worn, laid askew on the glass and scanned.  The same pages come out each time.
Needs Debian's python3-pil, python3-numpy, fonts-liberation and fonts-dejavu.
"""

import pathlib
import sys

import numpy as np
from PIL import Image

from drawing import words
from drawing.damage import (add_noise, dark_border, falling_light, gutter_shadow, lay_on_glass, on_paper,
                            save_with_dpi, show_through, smooth_field, soften, specks, starve_ink, to_array, to_bitonal)
from drawing.picture import halftone, landscape
from drawing.sheet import BLACK, Sheet

# Degrees by which each page is turned; positive: the lines rise to the right.
ANGLES = {"letter": 1.4, "book": -0.8, "form": 3.3, "magazine": -2.1, "ledger": 0.45, "fax": (-1.6, 1.1, -0.5)}

BLUE_INK = (38, 62, 140)
RED_INK = (190, 42, 48)


def save_text(sheets, path):
    """The known text of a file, its pages parted by form feeds."""
    path.write_text("\f\n".join(sheet.known_text() for sheet in sheets), encoding="utf-8")


def signature(sheet, rng, x, y, width, ink):
    """A name written in a hurry, and the flourish below it."""
    t = np.linspace(0, 1, 1400)
    tall = np.where(rng.random(19) < 0.3, 3.6, 0.9) + 0.5 * rng.random(19)
    heights = np.interp(t, np.linspace(0, 1, 20), np.r_[5.0, tall])
    wave = np.sin(t * 2 * np.pi * 11.5 + 0.9 * np.sin(t * 25))
    xs = x + width * t + (0.9 + 0.25 * heights) * np.cos(t * 2 * np.pi * 11.5 + 0.6) + 0.45 * heights * wave
    ys = y - heights * (wave + 0.6) - 2.0 * t
    sheet.stroke(list(zip(xs, ys)), 0.55, ink, 0.65 + 0.35 * np.clip(wave, -1, 1))
    u = np.linspace(0, 1, 600)
    sheet.stroke(list(zip(x + width * (1.02 - 0.95 * u), y + 3.2 + 1.2 * np.sin(u * 4.5) - u)), 0.5, ink, 1.1 - 0.7 * u)


def pen_ring(sheet, rng, x, y, width, height, ink):
    """Something circled by hand, once and a bit."""
    t = np.linspace(0, 2.25 * np.pi, 700)
    wobble = 1 + 0.05 * np.sin(t * 1.7 + rng.random() * 6) + 0.02 * t
    sheet.stroke(list(zip(x + width / 2 * wobble * np.cos(t + 2), y + height / 2 * wobble * np.sin(t + 2))), 0.45, ink,
                 0.8 + 0.2 * np.sin(t))


def tick(sheet, x, y, ink):
    down, up = np.linspace(0, 1, 40), np.linspace(0, 1, 120)
    points = [(x + 1.2 * a, y - 1.0 + 1.6 * a) for a in down] + [(x + 1.2 + 2.6 * a, y + 0.6 - 4.6 * a ** 0.8) for a in up]
    sheet.stroke(points, 0.5, ink)


def cup_ring(page, rng, dpi, x, y, radius):
    """The mark of a cup."""
    rows, columns = np.indices(page.shape[:2], np.float32)
    distance = np.hypot(columns - x / 25.4 * dpi, rows - y / 25.4 * dpi) / dpi * 25.4 - radius
    wet = np.clip(0.62 + 0.7 * smooth_field(rng, page.shape, dpi // 2), 0, 1)
    stain = wet * (np.exp(-(distance / 0.55) ** 2) + 0.35 * np.exp(-((distance + 1.6) / 1.3) ** 2))
    return page * (1.0 - stain[..., None] * np.float32([0.20, 0.34, 0.50]))


def fold(page, dpi, y, depth=0.05):
    """A crease across the page: a dark line with a light one above it."""
    rows = np.arange(page.shape[0], dtype=np.float32) / dpi * 25.4 - y
    light = 1.0 - depth * np.exp(-(rows / 0.25) ** 2) + 0.5 * depth * np.exp(-((rows + 0.6) / 0.6) ** 2)
    light -= 0.4 * depth * np.exp(-np.abs(rows) / 9.0) * (rows > 0)
    return page * light[:, None, None]


def punch_holes(page, dpi, x, ys, tone):
    rows, columns = np.indices(page.shape[:2], np.float32)
    for y in ys:
        inside = np.clip(2.75 / 25.4 * dpi - np.hypot(columns - x / 25.4 * dpi, rows - y / 25.4 * dpi), 0, 1)[..., None]
        page = page * (1.0 - inside) + tone * inside
    return page


def draw_letter(folder):
    """A typed letter with a coloured head, a marker, underlining, a stamp and the ring of a cup."""
    rng, dpi = np.random.default_rng(11), 300
    sheet = Sheet(dpi)
    teal = (22, 98, 104)
    sheet.text(25, 27, "Harrow & Wick", "serif-bold", 25, teal)
    sheet.text(25, 33.5, "Keepers of Paper and Print", "serif-italic", 12, teal)
    for i, line in enumerate(("14 Millrace Lane", "Stony Ford", "Telephone 555 0142")):
        sheet.text(186, 22 + 5.2 * i, line, "sans", 9.5, teal, "r")
    sheet.line(25, 38, 186, 38, 0.7, teal)
    sheet.line(25, 39.3, 186, 39.3, 0.2, teal)
    for i, line in enumerate(("", "Mrs E. Ashdown", "The Old Schoolhouse", "Weir House Road", "")):
        sheet.text(25, 48 + 5.4 * i, line, "sans", 11)
    sheet.text(25, 81, "17 March", "sans", 11)
    sheet.text(25, 92, "Your eleven notebooks", "sans-bold", 12)
    last = sheet.flow([(25, 102, 158, 180)], "\n\n" + words.LETTER, "sans", 11, 5.6, justify=False, gap=2.6)
    signature(sheet, rng, 27, last + 15, 44, BLUE_INK)
    sheet.text(25, last + 26, "R. Harrow", "sans", 11)
    sheet.stamp(rng, 158, 62, ["RECEIVED", "21 MAR"], 19, RED_INK, 11)

    page = starve_ink(to_array(sheet.finish()), rng, 0.12)
    page = on_paper(page, rng, (251, 249, 243), 0.004)
    page = cup_ring(page, rng, dpi, 163, 247, 37)
    page = fold(fold(page, dpi, 99), dpi, 198)
    page = lay_on_glass(page, ANGLES["letter"], (205, 207, 208), shadow=0.45)
    page = falling_light(soften(page, 1.1), 1.0, 0.95, 0.93, 0.80, 0.05)
    page = specks(page, rng, 90, 30, dpi, 0.3)
    save_with_dpi(add_noise(page, rng, 0.010), folder / "letter.jpg", dpi, quality=60, optimize=True)
    save_text([sheet], folder / "letter.txt")


def book_back(dpi):
    back = Sheet(dpi)
    back.text(112, 30, "THE FINISHING ROOM", "book", 10, align="m", spacing=0.8)
    back.flow([(43, 42, 138, 220)], words.BOOK_BACK * 2, "book", 11.5, 6.3, indent=6)
    return to_array(back.finish())


def draw_book(folder):
    """A page of an old book: yellow and spotted, dark towards the fold, the other side shining through."""
    rng, dpi, ink = np.random.default_rng(23), 200, (46, 36, 30)
    sheet = Sheet(dpi)
    sheet.text(37, 30, "48", "book", 10.5, ink)
    sheet.text(108, 30, "THE VATMAN'S SHAKE", "book", 10.5, ink, "m", spacing=0.8)
    sheet.line(37, 33, 179, 33, 0.25, ink)
    sheet.lines.append("")
    sheet.text(108, 51, "CHAPTER IV", "book-bold", 13, ink, "m", spacing=1.0)
    sheet.text(108, 60, "Of Water and Rags", "book-italic", 14, ink, "m")
    sheet.line(94, 66, 122, 66, 0.4, ink)
    sheet.lines.append("")
    sheet.flow([(37, 77, 142, 180)], words.BOOK, "book", 11.5, 6.2, ink, indent=6)
    sheet.line(37, 254, 75, 254, 0.2, ink)
    sheet.flow([(37, 260, 142, 20)], words.BOOK_NOTE, "book", 8.5, 4.6, ink)

    page = soften(starve_ink(to_array(sheet.finish()), rng, 0.30, 14), 0.5)
    page = show_through(page, book_back(dpi), 0.17, 1.6, (9, -6))
    page = on_paper(page, rng, (244, 231, 202), 0.016, foxing=42)
    page = lay_on_glass(page, ANGLES["book"], (70, 58, 48), shadow=0.5)
    page = gutter_shadow(falling_light(page, 0.98, 0.97, 0.96, 0.88, 0.08), dpi, 12, 11, 0.62)
    page = specks(soften(page, 0.5), rng, 130, 60, dpi, 0.4)
    save_with_dpi(add_noise(page, rng, 0.014, 0.012), folder / "book.jpg", dpi, quality=66, optimize=True)
    save_text([sheet], folder / "book.txt")


def draw_form(folder):
    """A delivery note with a table, scanned with the lid open: turned, with a dark border all around."""
    rng, dpi, green = np.random.default_rng(37), 200, (30, 104, 66)
    sheet = Sheet(dpi)
    sheet.text(20, 27, "DELIVERY NOTE", "sans-bold", 22, green, spacing=0.3)
    sheet.text(190, 27, "No. 20817", "mono-bold", 16, (186, 40, 44), "r")
    sheet.line(20, 32, 190, 32, 1.0, green)
    sheet.lines.append("")
    fields = (("Delivered to", "Workshop E. Lindqvist, bookbinder"), ("Street", "3 Bridge End, second yard"),
              ("Date", "9 October"), ("Carrier", "by hand"))
    for i, (name, value) in enumerate(fields):
        sheet.text(20, 43 + 9 * i, name, "sans", 9, green, keep=False)
        sheet.text(52, 43 + 9 * i, value, "mono", 12, keep=False)
        sheet.line(50, 44.8 + 9 * i, 150, 44.8 + 9 * i, 0.2, green)
        sheet.lines.append(name + " " + value)
    sheet.lines.append("")
    bottom = sheet.table(20, 82, (18, 74, 24, 24, 30), words.FORM_ROWS, 10, "sans", 11, "llrrr", line_ink=green,
                         head_fill=(212, 233, 216))
    for i, (name, value) in enumerate((("Total of goods", "277.20"), ("Carriage", "6.80"), ("To pay", "284.00"))):
        face = "sans-bold" if i == 2 else "sans"
        sheet.text(158, bottom + 9 + 9 * i, name, face, 11, align="r", keep=False)
        sheet.text(188, bottom + 9 + 9 * i, value, face, 11, align="r", keep=False)
        sheet.lines.append(name + " " + value)
    sheet.line(160, bottom + 29.5, 190, bottom + 29.5, 0.6)
    sheet.lines.append("")
    sheet.flow([(20, 216, 170, 30)], words.FORM_NOTE, "sans", 9.5, 5, justify=False)
    sheet.line(20, 262, 88, 262, 0.25, green)
    sheet.text(20, 267, "Received in good order", "sans", 9, green)
    signature(sheet, rng, 26, 259, 40, BLUE_INK)
    pen_ring(sheet, rng, 180, bottom + 25.5, 27, 11, RED_INK)
    for i in (0, 1, 3, 4, 6, 7):
        tick(sheet, 14, 98 + 10 * i, BLUE_INK)
    sheet.stamp(rng, 62, 196, ["PAID"], 34, (70, 60, 150), -9)

    page = on_paper(starve_ink(to_array(sheet.finish()), rng, 0.15), rng, (247, 246, 238), 0.007)
    page = fold(page, dpi, 148, 0.07)
    page = dark_border(page, rng, ANGLES["form"], dpi, 11, (14, -10))
    page = falling_light(soften(page, 0.75), 0.97, 0.99, 0.84, 0.93, 0.05)
    page = specks(page, rng, 60, 150, dpi, 0.3)
    save_with_dpi(add_noise(page, rng, 0.012), folder / "form.jpg", dpi, quality=66, optimize=True)
    save_text([sheet], folder / "form.txt")


def magazine_back(dpi):
    back = Sheet(dpi)
    back.text(105, 40, "READING ROOM", "sans-bold", 34, align="m")
    back.box(20, 52, 110, 70, (120, 120, 120))
    back.flow([(20, 134, 82, 136), (108, 134, 82, 136)], words.MAGAZINE_BACK * 3, "serif", 10.5, 5)
    return to_array(back.finish())


def draw_magazine(folder):
    """Two columns with a photograph, a coloured box with white type and a picture printed in dots."""
    rng, dpi, red = np.random.default_rng(53), 200, (176, 44, 36)
    sheet = Sheet(dpi)
    sheet.box(20, 14, 170, 8, red)
    sheet.text(23, 20, "WORKSHOP", "sans-bold", 13, (255, 255, 255), spacing=0.8)
    sheet.text(187, 20, "The Level Line", "sans-italic", 11, (255, 255, 255), "r")
    sheet.lines.append("")
    sheet.text(20, 42, "One Degree Uphill", "serif-bold", 38, red)
    sheet.text(20, 52, "Why no page ever lies straight, and what can be done about it", "serif-italic", 15)
    sheet.lines.append("")
    sheet.picture(20, 58, 170, 72, to_photo(landscape(rng, 1340, 566)))
    sheet.text(20, 134.5, "Evening at the upper lake, from a print that has never been level on any wall.", "sans-italic", 8.5)
    sheet.lines.append("")
    sheet.flow([(20, 144, 82, 131), (108, 144, 82, 62)], words.MAGAZINE, "serif", 10.5, 4.8, indent=4)
    sheet.box(108, 206, 82, 21, (40, 66, 92))
    for i, line in enumerate(words.MAGAZINE_QUOTE.split("\n")):
        sheet.text(149, 214.7 + 8 * i, line, "serif-italic", 17, (250, 246, 236), "m")
    sheet.picture(108, 232, 82, 42, halftone(landscape(np.random.default_rng(71), 1292, 662), 9.6))
    sheet.lines.append("")
    sheet.text(20, 284, "12", "sans-bold", 10, red)

    page = soften(starve_ink(to_array(sheet.finish()), rng, 0.08), 0.4)
    page = show_through(page, magazine_back(dpi), 0.09, 1.3, (5, 4))
    page = on_paper(page, rng, (246, 245, 240), 0.005)
    page = lay_on_glass(page, ANGLES["magazine"], (222, 223, 222), shadow=0.5)
    page = falling_light(soften(page, 0.5), 0.86, 0.97, 0.95, 1.0, 0.06)
    page = specks(page, rng, 60, 60, dpi, 0.3)
    save_with_dpi(add_noise(page, rng, 0.010), folder / "magazine.jpg", dpi, quality=62, optimize=True)
    save_text([sheet], folder / "magazine.txt")


def to_photo(scene):
    """A scene as a photographic print with a thin dark rim."""
    glossy = Image.fromarray((scene * 255).astype(np.uint8))
    framed = Image.new("RGB", (glossy.width + 6, glossy.height + 6), (60, 56, 54))
    framed.paste(glossy, (3, 3))
    return framed


def draw_ledger(folder):
    """A grey scan of a typed list with ruled lines and punch holes; the ribbon was nearly dry."""
    rng, dpi, ink, pale = np.random.default_rng(67), 200, (84, 84, 84), (150, 150, 150)
    sheet = Sheet(dpi)
    sheet.text(110, 30, "STOCK BOOK OF THE PAPER ROOM", "mono-bold", 15, ink, "m")
    sheet.text(110, 38, "Goods received in November", "mono", 12, ink, "m")
    sheet.text(192, 20, "Sheet 11", "mono", 11, ink, "r", keep=False)
    sheet.lines = ["Sheet 11"] + sheet.lines + [""]
    total = ("", "", "Carried forward", "191", "2250.5")
    sheet.table(28, 46, (14, 34, 66, 22, 28), [words.LEDGER_HEAD] + words.LEDGER_ROWS + [total], 9.4, "mono", 11,
                "rllrr", ink, pale)
    sheet.lines.append("")
    sheet.flow([(28, 256, 164, 30)], words.LEDGER_NOTE, "mono", 10.5, 5.4, ink, justify=False)

    page = starve_ink(to_array(sheet.finish()), rng, 0.55, 10)
    page = on_paper(page, rng, (236, 236, 236), 0.004)
    page = punch_holes(page, dpi, 12, (108.5, 188.5), 0.33)
    page = lay_on_glass(page, ANGLES["ledger"], (120, 120, 120), shadow=0.5)
    page = falling_light(soften(page, 0.8), 1.0, 0.93, 0.9, 0.76)
    page = specks(page, rng, 110, 90, dpi, 0.35)
    grey = add_noise(page, rng, 0.008, 0.006).mean(axis=2)
    levels = np.clip(np.rint(grey * 51), 0, 51) * 5
    save_with_dpi(Image.fromarray(levels.astype(np.uint8)), folder / "ledger.png", dpi, optimize=True)
    save_text([sheet], folder / "ledger.txt")


def fax_sheet(dpi, number):
    sheet = Sheet(dpi)
    head = f"21 NOV 09:4{number}   MILL OFFICE 555 0177   PAGE {number} OF 3"
    sheet.text(105, 14, head, "mono-bold", 9.5, align="m", keep=False)
    sheet.lines += [" ".join(head.split()), ""]
    return sheet


def fax_first(dpi):
    sheet = fax_sheet(dpi, 1)
    sheet.text(24, 40, "TELEFAX", "sans-bold", 34)
    sheet.line(24, 45, 186, 45, 1.0)
    for i, (name, value) in enumerate((("To", "Print shop, Weir House"), ("From", "Mill office, Stony Ford"),
                                       ("Subject", "Trial of the fine setting"), ("Pages", "3"))):
        sheet.text(24, 56 + 8 * i, name, "sans-bold", 12, keep=False)
        sheet.text(54, 56 + 8 * i, value, "sans", 12, keep=False)
        sheet.line(52, 57.6 + 8 * i, 186, 57.6 + 8 * i, 0.3)
        sheet.lines.append(name + " " + value)
    sheet.lines.append("")
    last = sheet.flow([(24, 100, 162, 160)], words.FAX_FIRST, "sans", 12.5, 6.6, justify=False, gap=3)
    signature(sheet, np.random.default_rng(5), 26, last + 18, 40, (0, 0, 0))
    return sheet, None


def fax_second(dpi):
    sheet = fax_sheet(dpi, 2)
    sheet.text(24, 36, "How to read a bad page", "serif-bold", 20)
    sheet.lines.append("")
    sheet.flow([(24, 50, 162, 220)], words.FAX_SECOND, "serif", 13, 6.6, gap=3)
    return sheet, None


def fax_third(dpi):
    sheet = fax_sheet(dpi, 3)
    sheet.text(24, 36, "The upper lake", "serif-bold", 20)
    sheet.lines.append("")
    sheet.picture(45, 46, 120, 80, to_photo(landscape(np.random.default_rng(90), 720, 480)))
    sheet.flow([(24, 140, 162, 60)], words.FAX_THIRD, "serif", 13, 6.6, gap=3)
    return sheet, (45, 46, 120, 80)


def fax_scan(rng, sheet, angle, picture):
    """Sends one page: turned, turned into black and white, with a dirty lamp and a bar where the paper ended."""
    dpi = sheet.dpi
    page = lay_on_glass(to_array(sheet.finish()), angle, (255, 255, 255), shadow=0.0)
    page = specks(soften(page, 0.7), rng, 420, 260, dpi, 0.32)
    inside = None
    if picture:
        inside = Sheet(dpi)
        inside.box(*picture, fill=(0, 0, 0))
        inside = lay_on_glass(to_array(inside.finish()), angle, (255, 255, 255), shadow=0.0)[..., 0] < 0.5
    height, width = page.shape[:2]
    bar = width - 22 + 5 * smooth_field(rng, (height, 1), 90) + 1.5 * smooth_field(rng, (height, 1), 2)
    page[np.arange(width)[None, :] > bar] = 0.0
    page[:, 131:133] *= np.where(smooth_field(rng, (height, 1), 40) > 0.15, 0.0, 1.0)[..., None]
    return to_bitonal(page, rng, 0.58, 0.10, inside)


def draw_fax(folder):
    """Three pages in one file, black and white: a cover, plain text, and a dithered picture."""
    rng, dpi = np.random.default_rng(83), 200
    drawn = [make(dpi) for make in (fax_first, fax_second, fax_third)]
    scans = [fax_scan(rng, sheet, angle, picture) for (sheet, picture), angle in zip(drawn, ANGLES["fax"])]
    save_with_dpi(scans[0], folder / "fax.tif", dpi, save_all=True, append_images=scans[1:], compression="group4")
    save_text([sheet for sheet, _ in drawn], folder / "fax.txt")


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent / "pages"
    folder.mkdir(parents=True, exist_ok=True)
    for draw in (draw_letter, draw_book, draw_form, draw_magazine, draw_ledger, draw_fax):
        draw(folder)


if __name__ == "__main__":
    main()
