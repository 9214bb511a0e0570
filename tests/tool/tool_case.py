"""What the tests of the command-line program share: a folder per test, pages with text lines at a known
angle, and a way to run the program."""

import io
import json
import os
import resource
import struct
import subprocess
import tempfile
import unittest

import numpy as np
from PIL import Image, ImageDraw

PROGRAM = os.environ["VEMOPREPRO"]
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def text_page(degrees=0.0, size=(600, 800), ink=20, paper=235):
    """Words as rows of strokes, in lines that rise to the right by `degrees`."""
    page = Image.new("L", (2 * size[0], 2 * size[1]), paper)
    draw = ImageDraw.Draw(page)
    random = np.random.default_rng(7)
    for y in range(0, 2 * size[1], 28):
        x = 0
        while x < 2 * size[0]:
            for _ in range(random.integers(2, 9)):
                draw.rectangle([x, y + random.integers(0, 5), x + 3, y + 14], fill=ink)
                draw.line([x, y + 7, x + 7, y + 7], fill=ink, width=2)
                x += 9
            x += 12
    page = page.rotate(degrees, Image.BICUBIC, fillcolor=paper)
    left, top = size[0] // 2, size[1] // 2
    page = page.crop((left, top, left + size[0], top + size[1]))
    frame = Image.new("L", size, paper)
    frame.paste(page.crop((60, 60, size[0] - 60, size[1] - 60)), (60, 60))
    return frame


def raw_tiff(width, height, bits, photometric, chunks, samples=1, tile=None, planes=1, others=()):
    """A TIFF file of uncompressed strips or tiles, for shapes that Pillow does not write."""
    tags = {256: [width], 257: [height], 258: [bits] * samples, 259: [1], 262: [photometric],
            277: [samples], 284: [planes], **dict(others)}
    tags.update({322: [tile[0]], 323: [tile[1]]} if tile else {278: [height]})
    body = b"".join(chunks)
    tags[324 if tile else 273] = [8 + sum(map(len, chunks[:i])) for i in range(len(chunks))]
    tags[325 if tile else 279] = [len(chunk) for chunk in chunks]
    end = 8 + len(body) + 2 + 12 * len(tags) + 4
    entries, values = b"", b""
    for tag in sorted(tags):
        # LONG throughout but for what is SHORT by definition
        short = tag in (258, 259, 262, 274, 277, 284, 296, 320, 338, 339)
        packed = struct.pack("<%d%s" % (len(tags[tag]), "H" if short else "I"), *tags[tag])
        entries += struct.pack("<HHI", tag, 3 if short else 4, len(tags[tag]))
        if len(packed) <= 4:
            entries += packed.ljust(4, b"\0")
        else:
            entries += struct.pack("<I", end + len(values))
            values += packed
    return (b"II*\0" + struct.pack("<I", 8 + len(body)) + body + struct.pack("<H", len(tags)) + entries +
            bytes(4) + values)


def tiles_of(pixels, width=32, height=16):
    """Rows of tiles of pixels; those at the right and lower edges are filled up."""
    padding = [(0, -pixels.shape[0] % height), (0, -pixels.shape[1] % width), (0, 0)][:pixels.ndim]
    full = np.pad(pixels, padding)
    return [full[y:y + height, x:x + width]
            for y in range(0, full.shape[0], height) for x in range(0, full.shape[1], width)]


def memory_limit(megabytes, kind=resource.RLIMIT_DATA):
    """For preexec_fn. None for the address sanitizer, which needs more than any page."""
    with open(PROGRAM, "rb") as file:
        if b"__asan_init" in file.read():
            return None
    return lambda: resource.setrlimit(kind, (megabytes << 20,) * 2)


def as_array(image):
    return np.asarray(image.convert("1")).astype(bool)


class ToolCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.here = self.folder.name

    def path(self, name):
        return os.path.join(self.here, name)

    def save(self, name, *images, **options):
        first, *rest = [Image.fromarray(i) if isinstance(i, np.ndarray) else i for i in images]
        if rest:
            options.update(save_all=True, append_images=rest)
        first.save(self.path(name), **options)
        return name

    def write(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return name

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def run_tool(self, *arguments, stdin=b"", **options):
        done = subprocess.run([PROGRAM, *map(str, arguments)], input=stdin, cwd=self.here,
                              stdout=options.pop("stdout", subprocess.PIPE), stderr=subprocess.PIPE,
                              timeout=60, **options)
        done.errors = done.stderr.decode().splitlines()
        return done

    def good(self, *arguments, **options):
        """Nothing failed; there may be warnings."""
        done = self.run_tool(*arguments, **options)
        done.warnings = [line for line in done.errors if ": warning: " in line]
        self.assertEqual((done.returncode, done.errors), (0, done.warnings))
        return done

    def record(self, *arguments):
        return json.loads(self.good(*arguments, "--json").stdout)["files"]

    def info(self, *names):
        return self.record("info", *names)

    def fails(self, *arguments, lines, status=1, **options):
        """The run says exactly these lines, and leaves nothing that was not there before."""
        before = sorted(os.listdir(self.here))
        done = self.run_tool(*arguments, **options)
        self.assertEqual(done.errors, ["vemoprepro: " + line for line in lines])
        self.assertEqual(done.returncode, status)
        self.assertEqual(sorted(os.listdir(self.here)), before)
        return done

    def one_error(self, *arguments, **options):
        """The one line that the run says; it leaves nothing behind."""
        before = sorted(os.listdir(self.here))
        done = self.run_tool(*arguments, **options)
        self.assertEqual((done.returncode, len(done.errors)), (1, 1), done.errors)
        self.assertEqual(sorted(os.listdir(self.here)), before)
        return done.errors[0]

    def decoded(self, name):
        """The pixels as the program reads them: written turned by 180 degrees, without loss."""
        self.good("rotate", 180, name, "-o", "turned.png", "--overwrite")
        return self.pages("turned.png")[0].rotate(180)

    def clean(self, *options, image=None, dpi=(300, 300)):
        """Cleans a.png, which is saved first when an image is given: the page of the record, its steps
        by name, and the ink of the result."""
        if image is not None:
            self.save("a.png", image, dpi=dpi)
        page, = self.record("clean", "a.png", "-o", "a.tif", "--overwrite", *options)[0]["pages"]
        return page, {step["name"]: step for step in page["steps"]}, ~as_array(self.pages("a.tif")[0])

    def usage(self, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual(done.returncode, 2, arguments)
        self.assertTrue(done.errors[0].startswith("vemoprepro: "), done.errors)
        self.assertIn(f"{arguments[0] if arguments else 'clean'} --help'", done.errors[-1])

    def pages(self, name_or_bytes):
        """All pages of an image file, as copies."""
        source = name_or_bytes
        pages = []
        with Image.open(io.BytesIO(source) if isinstance(source, bytes) else
                        self.path(source)) as image:
            for index in range(getattr(image, "n_frames", 1)):
                image.seek(index)
                page = image.copy()
                page.format = image.format
                page.info = dict(image.info)
                if hasattr(image, "tag_v2"):
                    page.tags = dict(image.tag_v2)
                pages.append(page)
        return pages

    def assertSamePixels(self, one, other, what=None):
        self.assertTrue(np.array_equal(np.asarray(one), np.asarray(other)), what)
