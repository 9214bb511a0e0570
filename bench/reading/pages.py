"""The pages of the reading test: plain text on A4, mostly at 300 dots per inch, each with one fault that scans have.

`PAGES` maps a fault's name to the ways to draw it: at least three texts, each with its own type and its own chance, so
that no figure hangs on a few letters. Each way gives the image, the options to save it with, and the text that stands
on it. The same pages come out each time.
"""

import functools
import pathlib
import sys

import numpy as np
from PIL import Image

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "examples"))

from drawing import words  # noqa: E402
from drawing.damage import (add_noise, dark_border, falling_light, lay_on_glass, on_paper, show_through, smooth_field,  # noqa: E402
                            soften, specks, starve_ink, to_array, to_bitonal, to_image)
from drawing.sheet import BLACK, Sheet  # noqa: E402

DPI = 300
PAPER = (246, 244, 238)


def plain(text):
    return text.translate(str.maketrans("", "", "*_="))


def first_sentences(text, length):
    return text[:length].rsplit(".", 1)[0] + "."


ESSAY = first_sentences(words.MAGAZINE, 2300)
ADVICE = words.FAX_SECOND + words.FAX_FIRST
MILL = words.BOOK_BACK + words.MAGAZINE_BACK


def text_sheet(text, face="serif", points=11.5, ink=BLACK, dpi=DPI, heading=None, leading=6.0):
    """A sheet of running text in one column."""
    sheet = Sheet(dpi)
    top = 32
    if heading:
        sheet.text(25, top, heading, face + "-bold", 17, ink)
        top += 13
    sheet.flow([(25, top, 160, 240)], plain(text), face, points, leading, ink, gap=2.5)
    return sheet


def scan(page, rng, angle=0.0, noise=0.012):
    """The page on the glass, as the lens and the sensor see it."""
    if angle:
        page = lay_on_glass(page, angle, (214, 214, 212), shadow=0.3)
    return add_noise(soften(page, 0.8), rng, noise)


def grey(page):
    return to_image(page).convert("L")


def paper_of(sheet, rng, mottle=0.006):
    return on_paper(to_array(sheet.finish()), rng, PAPER, mottle)


def skewed(seed, sheet, angle):
    rng = np.random.default_rng(seed)
    return grey(scan(paper_of(sheet, rng), rng, angle)), {}


def falling(seed, sheet, corners):
    """Lamp and lid leave one corner at a fifth of the light of the other."""
    rng = np.random.default_rng(seed)
    return grey(scan(falling_light(paper_of(sheet, rng), *corners, 0.12), rng)), {}


def stained(seed, sheet, behind):
    """Brown spots, a blot of tea, and the other side shining through."""
    rng = np.random.default_rng(seed)
    page = show_through(to_array(sheet.finish()), to_array(behind().finish()), 0.34, 2.0, (11, -8))
    page = on_paper(page, rng, (240, 228, 202), 0.02, foxing=60)
    rows, columns = np.indices(page.shape[:2], np.float32)
    wet = np.clip(1.4 - np.hypot(columns - 1500, rows - 1300) / 520 + 0.25 * smooth_field(rng, page.shape, 90), 0, 1)
    page = page * (1.0 - np.clip(wet * 1.6, 0, 1)[..., None] * np.float32([0.28, 0.42, 0.58]))
    return to_image(scan(page, rng)), {}


def faint(seed, sheet):
    """Ink hardly darker than the paper, and uneven."""
    rng = np.random.default_rng(seed)
    page = starve_ink(to_array(sheet.finish()), rng, 0.45, 10)
    page = on_paper(page, rng, (238, 238, 238), 0.006)
    return grey(falling_light(scan(page, rng, noise=0.010), 1.0, 0.93, 0.9, 0.82)), {}


def coloured_sheet(text, face, points, inks):
    """Paragraphs in the inks of ribbons and pens, some of them light."""
    sheet, base = Sheet(DPI), 32
    for i, paragraph in enumerate(plain(text).strip().split("\n\n")[:7]):
        base = sheet.flow([(25, base, 160, 250)], paragraph, face, points, 5.8, inks[i % len(inks)]) + 9
    return sheet


def coloured(seed, sheet):
    rng = np.random.default_rng(seed)
    page = on_paper(to_array(sheet.finish()), rng, (250, 246, 226), 0.008)
    return to_image(scan(page, rng)), {}


def ruled(seed, sheet, draw_lines, angle):
    """Text typed on a form without heed to its lines: ruled lines run under, along and through the letters."""
    rng = np.random.default_rng(seed)
    draw_lines(sheet)
    return grey(scan(paper_of(sheet, rng), rng, angle)), {}


def form_lines(sheet):
    """Lines of another distance than the text's, columns, and a frame."""
    for y in np.arange(24, 276, 7.3):
        sheet.line(16, y, 194, y, 0.32)
    for x in (16, 42, 99, 156, 194):
        sheet.line(x, 24, x, 272.2, 0.36)
    sheet.box(14.5, 22.5, 181, 251.2, None, BLACK, 0.6)


def writing_lines(sheet, above, width, pitch=6.0):
    """A ruled line for every line of text, so far above its base line (negative: below)."""
    for y in np.arange(32 - above, 262, pitch):
        sheet.line(18, y, 192, y, width)


def graph_lines(sheet):
    """Squared paper: thin lines every five millimetres both ways, a stronger one every fifty."""
    for i in range(51):
        sheet.line(15, 22 + 5 * i, 195, 22 + 5 * i, 0.45 if i % 10 == 0 else 0.15)
    for i in range(37):
        sheet.line(15 + 5 * i, 22, 15 + 5 * i, 272, 0.45 if i % 10 == 0 else 0.15)


def box_lines(sheet):
    """Boxes of thick and of thin lines, which cut the text."""
    for i, y in enumerate(np.arange(27, 235, 26)):
        sheet.box(20 + 3 * (i % 3), y, 90, 19.5, None, BLACK, (0.2, 0.4, 0.8)[i % 3])
        sheet.box(120, y + 4.3, 58, 17, None, BLACK, (0.6, 0.15, 0.3)[i % 3])


def specked(seed, sheet):
    """Grains of black and of white, most of them one or two pixels wide, on paper and ink alike."""
    rng = np.random.default_rng(seed)
    page = scan(paper_of(sheet, rng), rng)
    page = np.clip(specks(page, rng, 2500, 1500, DPI, 0.3), 0, 1)
    for share, tone in ((0.045, 0.04), (0.06, 0.98)):
        hit = rng.random(page.shape[:2]) < share
        wide = hit & (rng.random(page.shape[:2]) < 0.3)
        hit[:, 1:] |= wide[:, :-1]
        page[hit] = tone
    return grey(page), {}


def bordered(seed, sheet, angle, shift):
    """The page turned on the glass with the lid open: near black all around it."""
    rng = np.random.default_rng(seed)
    page = dark_border(paper_of(sheet, rng), rng, angle, DPI, 14, shift)
    return grey(scan(page, rng)), {}


def coarse(seed, sheet):
    """150 dots per inch, and saved as a small JPEG."""
    rng = np.random.default_rng(seed)
    page = add_noise(soften(paper_of(sheet, rng), 0.5), rng, 0.01)
    return to_image(page), {"format": "JPEG", "quality": 28, "dpi": (150, 150)}


def photographed(seed, sheet, corners, angle):
    """By hand, in poor light, on few pixels; the file says nothing about their size."""
    rng = np.random.default_rng(seed)
    page = falling_light(lay_on_glass(paper_of(sheet, rng, 0.01), angle, (70, 62, 58)), *corners, 0.15)
    page = add_noise(soften(page, 0.6), rng, 0.012)
    return to_image(page), {"format": "JPEG", "quality": 55, "dpi": None}


def black_and_white(sheet, rng):
    return to_bitonal(soften(paper_of(sheet, rng), 0.7), rng)


def misnamed(seed, sheet, stated):
    """A bitonal page whose file states another resolution than the page has."""
    return black_and_white(sheet, np.random.default_rng(seed)), {"dpi": (stated, stated)}


def salted(seed, sheet, share):
    """Single black and white pixels all over a bitonal page, some in clumps."""
    rng = np.random.default_rng(seed)
    ink = np.asarray(black_and_white(sheet, rng).convert("1")) == 0
    hit = rng.random(ink.shape) < share
    clumps = hit & (rng.random(ink.shape) < 0.1)
    hit[1:] |= clumps[:-1]
    hit[:, 1:] |= hit[:, :-1] & clumps[:, 1:]
    return Image.fromarray((ink ^ hit) == 0), {}


def turned(seed, sheet, quarters):
    """The page lies on its side or upside down, and no tag says so."""
    rng = np.random.default_rng(seed)
    return grey(scan(paper_of(sheet, rng), rng, 0.4)).rotate(90 * quarters, expand=True), {}


def pale(seed, sheet):
    """Thin print that is little darker than its paper, on few pixels."""
    rng = np.random.default_rng(seed)
    page = starve_ink(to_array(sheet.finish()), rng, 0.3, 8)
    page = add_noise(soften(on_paper(page, rng, (250, 250, 250), 0.004), 0.6), rng, 0.008)
    return grey(page), {"format": "JPEG", "quality": 70, "dpi": (150, 150)}


DARK_INKS = [(30, 62, 150), (196, 40, 44), (24, 120, 60), (206, 110, 20), (120, 50, 140), (70, 150, 205), (215, 70, 130)]
LIGHT_INKS = [(90, 140, 60), (60, 130, 200), (220, 90, 60), (150, 110, 170)]
MIXED_INKS = [(20, 40, 110), (230, 120, 30), (110, 60, 30), (40, 150, 150), (180, 30, 90)]
FAINT = (196, 196, 196)


def sheet_of(*arguments, **options):
    return functools.partial(text_sheet, *arguments, **options)


# A way to draw a page: its fault, its seed, its text, and how bad the fault is.
PAGES = {
    "skew": [
        (skewed, 101, sheet_of(words.BOOK, heading="Of Water and Rags"), 4.2),
        (skewed, 201, sheet_of(ESSAY, "sans", 10.5), -2.7),
        (skewed, 301, sheet_of(MILL, "book", 10), 1.3),
        (skewed, 401, sheet_of(ADVICE, "mono", 10), -6.1),
    ],
    "falling light": [
        (falling, 102, sheet_of(ESSAY, heading="One Degree Uphill"), (1.0, 0.72, 0.62, 0.20)),
        (falling, 202, sheet_of(words.BOOK, "sans", 11), (0.25, 0.8, 0.6, 1.0)),
        (falling, 302, sheet_of(MILL, "book", 10.5), (0.8, 0.22, 1.0, 0.5)),
    ],
    "stains, show-through": [
        (stained, 103, sheet_of(words.BOOK, "book", 10.5), sheet_of(words.BOOK_BACK * 2, "book", 10.5)),
        (stained, 203, sheet_of(ESSAY, "serif", 12), sheet_of(words.BOOK, "serif", 12)),
        (stained, 303, sheet_of(words.LETTER, "sans", 11), sheet_of(words.LETTER * 2, "sans", 11, leading=5.4)),
    ],
    "faint ink": [
        (faint, 104, sheet_of(words.LETTER, "sans", 11, FAINT)),
        (faint, 204, sheet_of(words.BOOK, "serif", 12, FAINT)),
        (faint, 304, sheet_of(ADVICE, "mono", 10.5, FAINT)),
    ],
    "coloured ink": [
        (coloured, 105, functools.partial(coloured_sheet, words.BOOK + words.BOOK_BACK, "sans", 11, DARK_INKS)),
        (coloured, 205, functools.partial(coloured_sheet, words.MAGAZINE, "serif", 11.5, LIGHT_INKS)),
        (coloured, 305, functools.partial(coloured_sheet, words.LETTER, "book", 10.5, MIXED_INKS)),
    ],
    "ruled lines through the text": [
        (ruled, 106, sheet_of(ADVICE, "mono", 10.5), form_lines, 0.35),
        (ruled, 206, sheet_of(words.BOOK, "serif", 12), functools.partial(writing_lines, above=-0.6, width=0.2), -0.2),
        (ruled, 306, sheet_of(words.LETTER, "sans", 11), functools.partial(writing_lines, above=1.0, width=0.25), 0.15),
        (ruled, 406, sheet_of(MILL, "book", 10.5), box_lines, -0.3),
        (ruled, 506, sheet_of(ESSAY, "serif", 11.5), graph_lines, 0.25),
        (ruled, 606, sheet_of(words.BOOK, "sans", 11),
         functools.partial(writing_lines, above=0.0, width=0.5, pitch=8.5), 0.0),
    ],
    "black and white specks": [
        (specked, 107, sheet_of(first_sentences(words.MAGAZINE, 2200), "serif", 12)),
        (specked, 207, sheet_of(words.BOOK, "sans", 11)),
        (specked, 307, sheet_of(MILL, "book", 10.5)),
        (specked, 407, sheet_of(ADVICE, "mono", 10.5)),
    ],
    "dark border": [
        (bordered, 108, sheet_of(MILL, heading="The Finishing Room"), 3.0, (20, -14)),
        (bordered, 208, sheet_of(ESSAY, "sans", 10.5), -1.8, (-40, 10)),
        (bordered, 308, sheet_of(words.LETTER, "book", 10.5), 0.6, (5, 30)),
    ],
    "photographed, no resolution": [
        (photographed, 110, sheet_of(words.BOOK, "serif", 12, dpi=110), (1.0, 0.8, 0.7, 0.35), 1.6),
        (photographed, 210, sheet_of(ESSAY, "sans", 11, dpi=120), (0.4, 0.9, 0.6, 1.0), -2.2),
        (photographed, 310, sheet_of(MILL, "book", 11, dpi=130), (0.8, 0.4, 1.0, 0.7), 0.9),
    ],
    "bitonal, wrong resolution": [
        (misnamed, 111, sheet_of(words.BOOK, "serif", 11), 1200),
        (misnamed, 211, sheet_of(ADVICE, "mono", 10.5), 72),
        (misnamed, 311, sheet_of(words.LETTER, "sans", 10.5, dpi=200), 600),
    ],
    "bitonal, salt and pepper": [
        (salted, 112, sheet_of(words.BOOK, "serif", 12), 0.02),
        (salted, 212, sheet_of(ESSAY, "sans", 11), 0.05),
        (salted, 312, sheet_of(MILL, "book", 11), 0.03),
    ],
    "on its side, no tag": [
        (turned, 113, sheet_of(words.BOOK, "serif", 11), 1),
        (turned, 213, sheet_of(ESSAY, "sans", 11), 3),
        (turned, 313, sheet_of(MILL, "book", 10.5), 2),
    ],
    "pale print, 150 dpi": [
        (pale, 114, sheet_of(words.BOOK, "serif", 12, (178, 178, 178), dpi=150)),
        (pale, 214, sheet_of(words.LETTER, "sans", 11, (190, 190, 190), dpi=150)),
        (pale, 314, sheet_of(MILL, "book", 11, (184, 184, 184), dpi=150)),
    ],
    "150 dpi JPEG": [
        (coarse, 109, sheet_of(words.BOOK, "serif", 11, dpi=150)),
        (coarse, 209, sheet_of(words.LETTER, "sans", 10.5, dpi=150)),
        (coarse, 309, sheet_of(MILL, "book", 10, dpi=150)),
        (coarse, 409, sheet_of(ESSAY, "serif", 12, dpi=150)),
    ],
}


def slug(name):
    return "-".join("".join(c if c.isalnum() else " " for c in name).split())


def draw(name, index, folder):
    """Draws a page into the folder unless it is there; returns the paths of image and text, and the resolution: that of
    the image, or none where its file has none or a wrong one."""
    fault, seed, make_sheet, *how = PAGES[name][index]
    stem = pathlib.Path(folder) / f"{slug(name)}-{seed}"
    jpeg = fault in (coarse, photographed, pale)
    image_path, text_path = stem.with_suffix(".jpg" if jpeg else ".png"), stem.with_suffix(".txt")
    if not (image_path.exists() and text_path.exists()):
        sheet = make_sheet()
        image, options = fault(seed, sheet, *how)
        text_path.write_text(sheet.known_text(), encoding="utf-8")
        options = {"dpi": (DPI, DPI), **options}
        image.save(image_path, **{key: value for key, value in options.items() if value})
    return image_path, text_path, None if fault in (photographed, misnamed) else 150 if jpeg else DPI
