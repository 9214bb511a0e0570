"""The pages of the reading test: plain text on A4 at 300 dots per inch, each page with one fault that scans have.

`PAGES` maps a page's name to a function that draws it. Each returns the image, the options to save it with, and the
text that stands on it. The same pages come out each time.
"""

import pathlib
import sys

import numpy as np
from PIL import Image

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "examples"))

from drawing import words  # noqa: E402
from drawing.damage import (add_noise, dark_border, falling_light, lay_on_glass, on_paper, show_through, smooth_field,  # noqa: E402
                            soften, specks, starve_ink, to_array, to_image)
from drawing.sheet import BLACK, Sheet  # noqa: E402

DPI = 300
PAPER = (246, 244, 238)


def plain(text):
    return text.translate(str.maketrans("", "", "*_="))


def text_sheet(text, face="serif", points=11.5, ink=BLACK, dpi=DPI, heading=None):
    """A sheet of running text in one column."""
    sheet = Sheet(dpi)
    top = 32
    if heading:
        sheet.text(25, top, heading, face + "-bold", 17, ink)
        top += 13
    sheet.flow([(25, top, 160, 240)], plain(text), face, points, 6.0, ink, gap=2.5)
    return sheet


def scan(page, rng, angle=0.0, noise=0.012):
    """The page on the glass, as the lens and the sensor see it."""
    if angle:
        page = lay_on_glass(page, angle, (214, 214, 212), shadow=0.3)
    return add_noise(soften(page, 0.8), rng, noise)


def grey(page):
    return to_image(page).convert("L")


def skewed():
    rng = np.random.default_rng(101)
    sheet = text_sheet(words.BOOK, heading="Of Water and Rags")
    page = on_paper(to_array(sheet.finish()), rng, PAPER, 0.006)
    return grey(scan(page, rng, 4.2)), {}, sheet.known_text()


def falling():
    """Lamp and lid leave one corner at a fifth of the light of the other."""
    rng = np.random.default_rng(102)
    sheet = text_sheet(words.MAGAZINE[:2300].rsplit(".", 1)[0] + ".", heading="One Degree Uphill")
    page = on_paper(to_array(sheet.finish()), rng, PAPER, 0.006)
    page = falling_light(page, 1.0, 0.72, 0.62, 0.20, 0.12)
    return grey(scan(page, rng)), {}, sheet.known_text()


def stained():
    """Brown spots, a blot of tea, and the other side shining through."""
    rng = np.random.default_rng(103)
    sheet = text_sheet(words.BOOK, "book", 10.5)
    back = to_array(text_sheet(words.BOOK_BACK * 2, "book", 10.5).finish())
    page = show_through(to_array(sheet.finish()), back, 0.34, 2.0, (11, -8))
    page = on_paper(page, rng, (240, 228, 202), 0.02, foxing=60)
    rows, columns = np.indices(page.shape[:2], np.float32)
    wet = np.clip(1.4 - np.hypot(columns - 1500, rows - 1300) / 520 + 0.25 * smooth_field(rng, page.shape, 90), 0, 1)
    page = page * (1.0 - np.clip(wet * 1.6, 0, 1)[..., None] * np.float32([0.28, 0.42, 0.58]))
    return to_image(scan(page, rng)), {}, sheet.known_text()


def faint():
    """Ink hardly darker than the paper, and uneven."""
    rng = np.random.default_rng(104)
    sheet = text_sheet(words.LETTER, "sans", 11, (196, 196, 196))
    page = starve_ink(to_array(sheet.finish()), rng, 0.45, 10)
    page = on_paper(page, rng, (238, 238, 238), 0.006)
    return grey(falling_light(scan(page, rng, noise=0.010), 1.0, 0.93, 0.9, 0.82)), {}, sheet.known_text()


def coloured():
    """Paragraphs in the inks of ribbons and pens, some of them light."""
    rng = np.random.default_rng(105)
    inks = [(30, 62, 150), (196, 40, 44), (24, 120, 60), (206, 110, 20), (120, 50, 140), (70, 150, 205), (215, 70, 130)]
    sheet, base = Sheet(DPI), 32
    for i, paragraph in enumerate(plain(words.BOOK + words.BOOK_BACK).strip().split("\n\n")[:7]):
        base = sheet.flow([(25, base, 160, 250)], paragraph, "sans", 11, 5.8, inks[i]) + 9
    page = on_paper(to_array(sheet.finish()), rng, (250, 246, 226), 0.008)
    return to_image(scan(page, rng)), {}, sheet.known_text()


def ruled():
    """Text typed on a form without heed to its lines: rules run under, along and through the letters."""
    rng = np.random.default_rng(106)
    sheet = text_sheet(words.FAX_SECOND + words.FAX_FIRST, "mono", 10.5)
    for y in np.arange(24, 276, 7.3):
        sheet.rule(16, y, 194, y, 0.32)
    for x in (16, 42, 99, 156, 194):
        sheet.rule(x, 24, x, 272.2, 0.36)
    sheet.box(14.5, 22.5, 181, 251.2, None, BLACK, 0.6)
    page = on_paper(to_array(sheet.finish()), rng, PAPER, 0.006)
    return grey(scan(page, rng, 0.35)), {}, sheet.known_text()


def specked():
    """Grains of black and of white, most of them one or two pixels wide, on paper and ink alike."""
    rng = np.random.default_rng(107)
    sheet = text_sheet(words.MAGAZINE[:2200].rsplit(".", 1)[0] + ".", "serif", 12)
    page = scan(on_paper(to_array(sheet.finish()), rng, PAPER, 0.006), rng)
    page = specks(page, rng, 2500, 1500, DPI, 0.3)
    page = np.clip(page, 0, 1)
    for share, tone in ((0.045, 0.04), (0.06, 0.98)):
        hit = rng.random(page.shape[:2]) < share
        wide = hit & (rng.random(page.shape[:2]) < 0.3)
        hit[:, 1:] |= wide[:, :-1]
        page[hit] = tone
    return grey(page), {}, sheet.known_text()


def bordered():
    """The page turned on the glass with the lid open: near black all around it."""
    rng = np.random.default_rng(108)
    sheet = text_sheet(words.BOOK_BACK + words.MAGAZINE_BACK, "serif", 11.5, heading="The Finishing Room")
    page = on_paper(to_array(sheet.finish()), rng, PAPER, 0.006)
    page = dark_border(page, rng, 3.0, DPI, 14, (20, -14))
    return grey(scan(page, rng)), {}, sheet.known_text()


def coarse():
    """150 dots per inch, and saved as a small JPEG."""
    rng = np.random.default_rng(109)
    sheet = text_sheet(words.BOOK, "serif", 11, dpi=150)
    page = on_paper(to_array(sheet.finish()), rng, PAPER, 0.006)
    page = add_noise(soften(page, 0.5), rng, 0.01)
    return to_image(page), {"format": "JPEG", "quality": 28, "dpi": (150, 150)}, sheet.known_text()


PAGES = {
    "skew": skewed,
    "falling light": falling,
    "stains, show-through": stained,
    "faint ink": faint,
    "coloured ink": coloured,
    "rules through the text": ruled,
    "black and white specks": specked,
    "dark border": bordered,
    "150 dpi JPEG": coarse,
}


def slug(name):
    return "-".join("".join(c if c.isalnum() else " " for c in name).split())


def draw(name, folder):
    """Draws a page into the folder unless it is there; returns the paths of image and text, and the resolution."""
    stem = pathlib.Path(folder) / slug(name)
    jpeg = "JPEG" in name
    image_path, text_path = stem.with_suffix(".jpg" if jpeg else ".png"), stem.with_suffix(".txt")
    if not (image_path.exists() and text_path.exists()):
        image, options, text = PAGES[name]()
        text_path.write_text(text, encoding="utf-8")
        image.save(image_path, **{"dpi": (DPI, DPI), **options})
    return image_path, text_path, 150 if jpeg else DPI
