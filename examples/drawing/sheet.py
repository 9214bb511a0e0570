"""A sheet of A4 paper to set type on.

Places are given in millimetres, type in points.  The sheet is drawn at twice its resolution and halved at the end,
which rounds the edges of the letters the way a press does.  Everything that is set is also written down in `lines`,
in reading order, so that the text of the page is known to the letter.
"""

import re

import numpy as np
from PIL import Image, ImageChops, ImageDraw, ImageFilter, ImageFont

from drawing.damage import smooth_field

BLACK = (28, 27, 30)
MARKER = (255, 240, 90)
PAGE_MM = (210.0, 297.0)

_FONT_ROOT = "/usr/share/fonts/truetype/"
_FACES = {
    "serif": "liberation/LiberationSerif-Regular.ttf",
    "serif-italic": "liberation/LiberationSerif-Italic.ttf",
    "serif-bold": "liberation/LiberationSerif-Bold.ttf",
    "sans": "liberation/LiberationSans-Regular.ttf",
    "sans-italic": "liberation/LiberationSans-Italic.ttf",
    "sans-bold": "liberation/LiberationSans-Bold.ttf",
    "book": "dejavu/DejaVuSerif.ttf",
    "book-italic": "dejavu/DejaVuSerif-Italic.ttf",
    "book-bold": "dejavu/DejaVuSerif-Bold.ttf",
    "mono": "liberation/LiberationMono-Regular.ttf",
    "mono-bold": "liberation/LiberationMono-Bold.ttf",
}
_STYLES = {"*": "italic", "_": "underline", "=": "marker"}


def paragraphs(text):
    """The paragraphs of a text whose line ends mean nothing."""
    return [" ".join(part.split()) for part in re.split(r"\n\s*\n", text.strip())]


def styled_words(paragraph):
    """The words of a paragraph with the styles that hold for each; a style opens and closes at a word's ends."""
    words, styles = [], set()
    for word in paragraph.split():
        while len(word) > 1 and word[0] in _STYLES:
            styles.add(_STYLES[word[0]])
            word = word[1:]
        closing = set()
        while len(word) > 1 and word[-1] in _STYLES:
            closing.add(_STYLES[word[-1]])
            word = word[:-1]
        words.append((word, frozenset(styles)))
        styles -= closing
    return words


class Sheet:
    """One side of the page: ink on white, and the lines of text that were set."""

    def __init__(self, dpi):
        self.dpi = dpi
        self.scale = 2 * dpi / 25.4
        self.image = Image.new("RGB", (2 * round(PAGE_MM[0] / 25.4 * dpi), 2 * round(PAGE_MM[1] / 25.4 * dpi)), "white")
        self.pen = ImageDraw.Draw(self.image)
        self.lines = []
        self._fonts = {}

    def finish(self):
        """The sheet at its own resolution."""
        return self.image.reduce(2)

    def known_text(self):
        return re.sub(r"\n{3,}", "\n\n", "\n".join(self.lines)).strip() + "\n"

    def px(self, mm):
        return mm * self.scale

    def font(self, face, points):
        key = (face, points)
        if key not in self._fonts:
            size = round(points / 72 * 2 * self.dpi)
            path = _FONT_ROOT + _FACES[face]
            self._fonts[key] = ImageFont.truetype(path, size, layout_engine=ImageFont.Layout.BASIC)
        return self._fonts[key]

    def text(self, x, y, words, face="serif", points=11, ink=BLACK, align="l", keep=True, spacing=0.0):
        """One line whose base line is at `y`; `align` is l, m or r, `spacing` is added after each letter."""
        font = self.font(face, points)
        width = font.getlength(words) + self.px(spacing) * (len(words) - 1)
        left = self.px(x) - {"l": 0, "m": width / 2, "r": width}[align]
        if spacing:
            for letter in words:
                self.pen.text((left, self.px(y)), letter, ink, font, anchor="ls")
                left += font.getlength(letter) + self.px(spacing)
        else:
            self.pen.text((left, self.px(y)), words, ink, font, anchor="ls")
        if keep:
            self.lines.append(words)

    def line(self, x0, y0, x1, y1, width=0.25, ink=BLACK):
        self.pen.line([self.px(x0), self.px(y0), self.px(x1), self.px(y1)], ink, max(1, round(self.px(width))))

    def box(self, x, y, width, height, fill=None, outline=None, line=0.25):
        corners = [self.px(x), self.px(y), self.px(x + width), self.px(y + height)]
        self.pen.rectangle(corners, fill, outline, max(1, round(self.px(line))))

    def picture(self, x, y, width, height, image):
        size = (round(self.px(width)), round(self.px(height)))
        self.image.paste(image.resize(size, Image.BICUBIC).convert("RGB"), (round(self.px(x)), round(self.px(y))))

    def flow(self, boxes, text, face="serif", points=11, leading=5.0, ink=BLACK, justify=True, indent=0.0, gap=0.0,
             keep=True):
        """Fills the boxes (x, y, width, height), one after the other, and returns the last base line."""
        boxes = list(boxes)
        x, y, width, height = boxes.pop(0)
        base, bottom = y, y + height
        for paragraph in paragraphs(text):
            for words, first, last in self._broken(paragraph, face, points, width, indent):
                if base > bottom and boxes:
                    x, y, width, height = boxes.pop(0)
                    base, bottom = y, y + height
                shift = indent if first else 0.0
                self._line(x + shift, base, width - shift, words, face, points, ink, justify and not last)
                if keep:
                    self.lines.append(" ".join(word for word, _ in words))
                base += leading
            base += gap
            if keep:
                self.lines.append("")
        return base - gap - leading

    def _broken(self, paragraph, face, points, width, indent):
        """The paragraph as lines of words, each with whether it is the first and the last."""
        font = self.font(face, points)
        space = font.getlength(" ")
        lines, line, used = [], [], self.px(indent)
        for word, styles in styled_words(paragraph):
            length = font.getlength(word)
            if line and used + length > self.px(width):
                lines.append(line)
                line, used = [], 0.0
            line.append((word, styles))
            used += length + space
        lines.append(line)
        return [(line, i == 0, i == len(lines) - 1) for i, line in enumerate(lines)]

    def _line(self, x, base, width, words, face, points, ink, justify):
        """Sets the words of one line; the marker goes on before the ink, so that the letters stay black."""
        fonts = [self.font(face + ("-italic" if "italic" in styles else ""), points) for _, styles in words]
        lengths = [font.getlength(word) for font, (word, _) in zip(fonts, words)]
        space = self.font(face, points).getlength(" ")
        if justify and len(words) > 1:
            space = (self.px(width) - sum(lengths)) / (len(words) - 1)
        lefts = self.px(x) + np.cumsum([0.0] + [length + space for length in lengths])
        y, size = self.px(base), points / 72 * 2 * self.dpi
        for i, (_, styles) in enumerate(words):
            joins = i + 1 < len(words) and styles & words[i + 1][1]
            right = lefts[i + 1] if joins else lefts[i] + lengths[i]
            if "marker" in styles:
                self.pen.rectangle([lefts[i] - size / 6, y - size * 0.85, right + size / 6, y + size * 0.3], MARKER)
            if "underline" in styles:
                self.pen.rectangle([lefts[i], y + size * 0.12, right, y + size * 0.17], ink)
        for i, (word, _) in enumerate(words):
            self.pen.text((lefts[i], y), word, ink, fonts[i], anchor="ls")

    def table(self, x, y, widths, rows, row_height, face, points, aligns, ink=BLACK, line_ink=BLACK, head_fill=None):
        """Rows of cells between ruled lines; returns the lower edge.  The first row is the heading."""
        right, bottom = x + sum(widths), y + row_height * len(rows)
        if head_fill:
            self.box(x, y, sum(widths), row_height, head_fill)
        for i, row in enumerate(rows):
            left, base = x, y + row_height * (i + 0.68)
            for width, align, cell in zip(widths, aligns, row):
                place = {"l": left + 2, "m": left + width / 2, "r": left + width - 2}[align]
                self.text(place, base, cell, face + ("-bold" if i == 0 else ""), points, ink, align, keep=False)
                left += width
            self.lines.append(" ".join(cell for cell in row if cell))
        for i in range(len(rows) + 1):
            self.line(x, y + i * row_height, right, y + i * row_height, 0.5 if i < 2 else 0.2, line_ink)
        for edge in np.cumsum([0.0] + list(widths)):
            self.line(x + edge, y, x + edge, bottom, 0.25, line_ink)
        return bottom

    def stamp(self, rng, x, y, words, points, ink, angle):
        """A rubber stamp about (x, y), unevenly inked.  It is no part of the known text."""
        font = self.font("sans-bold", points)
        _, top, _, bottom = font.getbbox(words[0])
        height = (bottom - top) * 1.5
        width = max(font.getlength(line) for line in words)
        side = round(max(width, height * len(words)) * 1.7)
        mask = Image.new("L", (side, side), 0)
        pen, middle, line = ImageDraw.Draw(mask), side / 2, max(3, round(height / 7))
        for i, row in enumerate(words):
            pen.text((middle, middle + (i - (len(words) - 1) / 2) * height), row, 255, font, anchor="mm")
        w, h = width / 2 + height * 0.5, height * (len(words) / 2 + 0.3)
        pen.rounded_rectangle([middle - w, middle - h, middle + w, middle + h], height / 3, None, 255, line)
        patchy = smooth_field(rng, (side, side), 6) * 0.9 + smooth_field(rng, (side, side), side // 5) * 0.7
        density = np.clip(0.95 - np.maximum(patchy, 0.0), 0.05, 1.0)
        mask = Image.fromarray((np.asarray(mask, np.float32) * density).astype(np.uint8)).rotate(angle, Image.BICUBIC)
        self._ink_through(mask, self.px(x) - middle, self.px(y) - middle, ink)

    def stroke(self, points_mm, width, ink, pressure=None):
        """A pen stroke through the points; `pressure` scales the width along it."""
        mask = Image.new("L", self.image.size, 0)
        pen = ImageDraw.Draw(mask)
        for i, (x, y) in enumerate(points_mm):
            radius = self.px(width) / 2 * (1.0 if pressure is None else pressure[i])
            pen.ellipse([self.px(x) - radius, self.px(y) - radius, self.px(x) + radius, self.px(y) + radius], 255)
        area = mask.getbbox()
        if area:
            self._ink_through(mask.crop(area).filter(ImageFilter.GaussianBlur(1)), area[0], area[1], ink)

    def _ink_through(self, mask, left, top, ink):
        """Lays ink over what is there, through a mask: both inks darken the paper."""
        left, top = round(left), round(top)
        area = (left, top, left + mask.width, top + mask.height)
        colour = Image.composite(Image.new("RGB", mask.size, ink), Image.new("RGB", mask.size, "white"), mask)
        self.image.paste(ImageChops.multiply(self.image.crop(area), colour), (left, top))
