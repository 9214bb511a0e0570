"""Every kind of file in, every kind of file out, and what is kept on the way."""

import struct
import unittest

import numpy as np
from PIL import Image, ImageOps

from tool_case import ToolCase, as_array, raw_tiff, text_page, tiles_of


def grey_sample(height=45, width=61):
    return np.random.default_rng(1).integers(1, 255, (height, width), dtype=np.uint8)


def colour_sample(height=45, width=61):
    return np.random.default_rng(2).integers(0, 256, (height, width, 3), dtype=np.uint8)


class FormatsIn(ToolCase):
    def test_kind_of_every_format(self):
        grey, colour = Image.fromarray(grey_sample()), Image.fromarray(colour_sample())
        bits = grey.point(lambda v: 255 * (v > 99))
        cases = [
            ("grey", "L", grey, ["a.png", "a.tif", "a.jpg", "a.pgm", "a.gif", "a.bmp", "a.jp2"]),
            ("colour", "RGB", colour, ["b.png", "b.tif", "b.jpg", "b.ppm", "b.bmp", "b.jp2", "b.j2k",
                                         "b.webp"]),
            ("bitonal", "1", bits, ["c.png", "c.tif", "c.pbm", "c.gif", "c.bmp"]),
            ("bitonal", "L", bits, ["d.png", "d.tif", "d.pgm"]),
            ("bitonal", "RGB", bits, ["e.png", "e.tif", "e.ppm"]),
            ("grey", "RGB", grey, ["f.png", "f.tif", "f.ppm"]),
            ("colour", "P", colour, ["g.png", "g.tif", "g.gif", "g.bmp"]),
            ("bitonal", "P", bits, ["h.png", "h.tif"]),
            ("colour", "RGBA", colour, ["i.png", "i.tif", "i.bmp", "i.jp2", "i.webp"]),
            ("colour", "CMYK", colour, ["j.jpg", "j.tif"]),
        ]
        formats = {"png": "PNG", "tif": "TIFF", "jpg": "JPEG", "jp2": "JPEG 2000", "j2k": "JPEG 2000",
                   "webp": "WebP", "gif": "GIF", "bmp": "BMP"}
        for kind, mode, image, names in cases:
            for name in names:
                with self.subTest(name=name, mode=mode):
                    self.save(name, image.convert(mode))
                    file, = self.info(name)
                    page, = file["pages"]
                    self.assertEqual(file["format"], formats.get(name[2:], "PNM"))
                    self.assertEqual((page["kind"], page["width"], page["height"], page["dpi"]),
                                     (kind, 61, 45, [96, 96] if name.endswith("bmp") else None))

    def test_pixels_arrive_unchanged(self):
        """A turn by 180 degrees, twice, through formats that lose nothing."""
        bits = as_array(Image.fromarray(grey_sample()).point(lambda v: 255 * (v > 99)))
        for pixels in (grey_sample(), colour_sample(), Image.fromarray(bits)):
            for width in (1, 2, 7, 8, 9, 31, 32, 33, 61):
                cut = Image.fromarray(np.asarray(pixels)[:, :width])
                self.save("in.png", cut)
                self.good("rotate", 180, "in.png", "-o", "turned.tif", "--overwrite")
                turned, = self.pages("turned.tif")
                self.assertEqual(turned.mode, cut.mode)
                self.assertSamePixels(turned, cut.rotate(180))
                if width in (1, 9, 33):
                    for name in ("back.pnm", "back.png"):
                        self.good("rotate", 180, "turned.tif", "-o", name, "--overwrite")
                        self.assertSamePixels(self.pages(name)[0], cut)

    def test_transparent_parts_are_white_paper(self):
        pixels = np.zeros((40, 50, 4), np.uint8)
        pixels[:, :20] = (10, 20, 30, 255)
        pixels[:, 20:30] = (0, 0, 0, 0)
        pixels[:, 30:] = (100, 100, 100, 128)
        for name in ("a.png", "a.tif", "a.webp", "a.jp2"):
            self.save(name, pixels, **({"lossless": True} if name == "a.webp" else {}))
            row = np.asarray(self.decoded(name))[0].astype(int)
            for x, wanted in ((0, (10, 20, 30)), (25, (255, 255, 255)), (49, (177, 177, 177))):
                self.assertLessEqual(abs(row[x] - wanted).max(), 1, (name, x))

    def test_pixels_of_formats_that_are_only_read(self):
        grey, colour = Image.fromarray(grey_sample()), Image.fromarray(colour_sample())
        palette = colour.quantize(16)
        for name, image, options in (
                ("a.bmp", grey, {}), ("b.bmp", colour, {}), ("c.bmp", palette, {}), ("a.webp", colour, {"lossless": True}),
                ("a.jp2", grey, {}), ("b.jp2", colour, {"tile_size": (32, 32)}), ("a.gif", grey, {"interlace": 1}),
                ("b.gif", palette, {"interlace": 0})):
            self.save(name, image, **options)
            self.assertSamePixels(self.decoded(name), image.convert("RGB") if image.mode == "P" else image, name)
        self.save("t.gif", palette, transparency=3)
        numbers, wanted = np.asarray(palette), np.array(palette.convert("RGB"))
        wanted[numbers == 3] = 255
        self.assertSamePixels(self.decoded("t.gif"), wanted)
        self.save("d.bmp", colour, dpi=(240, 120))
        self.assertEqual(self.info("d.bmp")[0]["pages"][0]["dpi"], [240, 120])
        deep = np.array([0xF800, 0x07E0, 0x001F, 0xFFFF], "<u2").tobytes()
        header = struct.pack("<2sIHHIIiiHHIIiiII", b"BM", 74, 0, 0, 66, 40, 4, -1, 1, 16, 3, 8, 0, 0, 0, 0)
        self.write("e.bmp", header + struct.pack("<III", 0xF800, 0x07E0, 0x001F) + deep)
        self.assertSamePixels(self.decoded("e.bmp"), [[[255, 0, 0], [0, 255, 0], [0, 0, 255], [255, 255, 255]]])

    def test_sixteen_bits_keep_their_upper_byte(self):
        deep = grey_sample().astype(np.uint16) * 256 + 77
        self.save("a.png", deep)
        self.save("a.tif", deep)
        self.write("a.pgm", b"P5\n61 45\n65535\n" + deep.astype(">u2").tobytes())
        for name in ("a.png", "a.tif", "a.pgm"):
            self.assertSamePixels(self.decoded(name), grey_sample(), name)

    def test_plain_pnms_and_pams(self):
        colour = colour_sample()
        alpha = np.full((45, 61, 1), 255)
        for depth, kind, samples in ((1, "GRAYSCALE", colour[..., :1]), (3, "RGB", colour),
                                     (2, "GRAYSCALE_ALPHA", np.dstack([colour[..., :1], alpha])),
                                     (4, "RGB_ALPHA", np.dstack([colour, alpha]))):
            for largest, factor, form in ((255, 1, "u1"), (510, 2, ">u2"), (65535, 257, ">u2")):
                self.write("a.pam", b"P7\nWIDTH 61\nHEIGHT 45\nDEPTH %d\nMAXVAL %d\nTUPLTYPE %s\nENDHDR\n" %
                           (depth, largest, kind.encode()) + (samples.astype(int) * factor).astype(form).tobytes())
                self.assertSamePixels(self.decoded("a.pam"), colour if depth > 2 else colour[..., 0], (kind, largest))
        bits = colour[..., 0] > 99
        for largest, factor in ((255, 1), (510, 2), (65535, 257)):
            values = " ".join(map(str, (colour.astype(int) * factor).ravel()))
            self.write("a.ppm", b"P3\n61 45\n%d\n" % largest + values.encode())
            self.assertSamePixels(self.decoded("a.ppm"), colour, largest)
        for space in ("", " "):
            rows = "\n".join(space.join(map(str, row)) for row in 1 - bits)
            self.write("a.pbm", b"P1 # bits\n61 45\n" + rows.encode())
            self.assertSamePixels(self.decoded("a.pbm"), bits, space)

    def test_unusual_tiffs(self):
        grey, colour = grey_sample(), colour_sample()
        bits = grey > 99
        deep = grey.astype("<u2") * 257
        ramp = list(range(256))
        tiled = {"tile": (32, 16)}
        cases = {
            "tiled grey": (grey, 8, 1, [t.tobytes() for t in tiles_of(grey)], tiled),
            "tiled colour": (colour, 8, 2, [t.tobytes() for t in tiles_of(colour)],
                             {"samples": 3, **tiled}),
            "tiled bits": (bits * 255, 1, 1, [np.packbits(t, 1).tobytes() for t in tiles_of(bits)], tiled),
            "tiled deep grey": (grey, 16, 1, [t.tobytes() for t in tiles_of(deep)], tiled),
            "tiled deep inverted": (grey, 16, 0, [t.tobytes() for t in tiles_of(65535 - deep)], tiled),
            "tiled and to be turned": (np.rot90(grey, -1), 8, 1, [t.tobytes() for t in tiles_of(grey)],
                                       {"others": {274: [6]}, **tiled}),
            "planes": (colour, 8, 2, [colour[..., i].tobytes() for i in range(3)],
                       {"samples": 3, "planes": 2}),
            "deep inverted": (grey, 16, 0, [(65535 - deep).tobytes()], {}),
            "4 bits inverted": (grey[:, :60] // 16 * 17, 4, 0,
                                [(255 - (grey[:, :60:2] // 16 * 16 + grey[:, 1:60:2] // 16)).tobytes()], {}),
            "palette of 8 bits": (np.dstack([grey, 255 - grey, 0 * grey + 7]), 8, 3, [grey.tobytes()],
                                  {"others": {320: ramp + ramp[::-1] + [7] * 256}}),
        }
        for name, (pixels, depth, photometric, chunks, options) in cases.items():
            with self.subTest(name=name):
                width = 60 if depth == 4 else 61
                self.write("a.tif", raw_tiff(width, 45, depth, photometric, chunks, **options))
                image = self.decoded("a.tif")
                self.assertSamePixels(image.convert("L") if image.mode == "1" else image, pixels, name)
        self.write("a.tif", raw_tiff(61, 45, 32, 1, [bytes(61 * 45 * 4)]))
        self.assertIn("32-bit samples", self.one_error("info", "a.tif"))

    def test_extra_samples_of_tiffs(self):
        """Alpha as it is stated; a sample that is not said to be alpha takes nothing off the page."""
        grey, colour = grey_sample(), colour_sample()
        alpha = np.random.default_rng(3).integers(0, 256, grey.shape, dtype=np.uint8)
        def laid(pixels):
            part = alpha.astype(int)[(...,) + (None,) * (pixels.ndim - 2)]
            return np.minimum((pixels * part + 127) // 255 + 255 - part, 255)
        for kind, grey_wanted, colour_wanted in ((2, laid(grey), laid(colour)), (0, grey, colour)):
            for photometric, stored in ((1, grey), (0, 255 - grey)):
                self.write("a.tif", raw_tiff(61, 45, 8, photometric, [np.dstack([stored, alpha]).tobytes()],
                                             samples=2, others={338: [kind]}))
                self.assertSamePixels(self.decoded("a.tif"), grey_wanted, (kind, photometric))
            self.write("a.tif", raw_tiff(61, 45, 8, 2, [np.dstack([colour, alpha]).tobytes()], samples=4,
                                         others={338: [kind]}))
            self.assertLessEqual(abs(np.asarray(self.decoded("a.tif")).astype(int) - colour_wanted).max(), 1)

    def test_a_tiff_of_thumbnails_alone(self):
        self.write("a.tif", raw_tiff(61, 45, 8, 1, [grey_sample().tobytes()], others={254: [1]}))
        self.assertSamePixels(self.decoded("a.tif"), grey_sample())

    def test_kinds_that_are_not_read(self):
        self.save("a.jp2", Image.fromarray(colour_sample()).convert("RGBA"))
        whole = self.read("a.jp2")
        numbered = whole.index(b"colr") - 4
        profile = b"\2\0\0" + bytes(16) + b"CMYK" + bytes(200)
        at = whole.index(b"jp2h") - 4
        length = struct.unpack(">I", whole[at:at + 4])[0] + len(profile) - 7
        self.write("a.jp2", whole[:at] + struct.pack(">I", length) + whole[at + 4:numbered] +
                   struct.pack(">I", 8 + len(profile)) + b"colr" + profile + whole[numbered + 15:])
        self.assertIn("neither greys nor red, green and blue is not read", self.one_error("info", "a.jp2"))
        self.write("a.tif", raw_tiff(61, 45, 8, 1, [bytes(61 * 45)], others={339: [2]}))
        self.assertIn("signed or floating-point samples is not read", self.one_error("info", "a.tif"))

    def test_transparent_colour_of_a_png(self):
        grey, colour = grey_sample(), colour_sample()
        bits = Image.fromarray(grey).point(lambda v: 255 * (v > 99)).convert("1")
        key = int(grey[3, 4])
        of_colour = np.where((colour == colour[3, 4]).all(axis=2)[..., None], 255, colour)
        for name, image, transparent, pixels in (
                ("grey", grey, key, np.where(grey == key, 255, grey)),
                ("colour", colour, tuple(map(int, colour[3, 4])), of_colour),
                ("white", bits, 1, bits), ("black", bits, 0, bits.point(lambda v: 255))):
            self.save("a.png", image, transparency=transparent)
            self.assertSamePixels(self.decoded("a.png"), pixels, name)

    def test_orientation(self):
        page = Image.fromarray(np.kron(grey_sample(6, 4), np.ones((16, 16), np.uint8)))
        colour = Image.fromarray(colour_sample(48, 64))
        for orientation in range(1, 9):
            exif = Image.Exif()
            exif[0x0112] = orientation
            self.save("a.jpg", page, exif=exif.tobytes(), quality=100)
            self.assertSamePixels(self.decoded("a.jpg"), ImageOps.exif_transpose(Image.open(self.path("a.jpg"))))
            for image, options in ((colour, {}), (colour, {"compression": "jpeg"}),
                                   (colour.convert("L"), {}), (colour.convert("1"), {})):
                self.save("a.tif", image, tiffinfo={274: orientation}, **options)
                self.assertSamePixels(self.decoded("a.tif"), self.pages("a.tif")[0].convert(image.mode),
                                      (image.mode, options, orientation))

    def test_orientation_turns_the_page_and_is_recorded(self):
        exif = Image.Exif()
        exif[0x0112] = 6
        self.save("a.jpg", text_page().rotate(90, expand=True), exif=exif.tobytes(), dpi=(100, 150))
        file, = self.record("clean", "--no-doubling", "a.jpg", "-o", "a.tif")
        step = file["pages"][0]["steps"][0]
        self.assertEqual((step["name"], step["status"]), ("orientation", "done"))
        self.assertIn("90 degrees clockwise", step["why"])
        page, = self.pages("a.tif")
        self.assertEqual(page.size, (600, 800))
        self.assertEqual(page.info["dpi"], (150, 100))


class FormatsOut(ToolCase):
    def setUp(self):
        super().setUp()
        self.save("a.png", text_page(), dpi=(240, 240))

    def test_formats_by_name_and_by_option_have_the_same_pixels(self):
        cases = [("a.tif", [], "TIFF"), ("b.TIFF", [], "TIFF"), ("c.png", [], "PNG"),
                 ("d.pbm", [], "PPM"), ("e.xyz", ["--format", "png"], "PNG"),
                 ("f.bin", ["--format", "tiff"], "TIFF"), ("g", ["--format", "pbm"], "PPM")]
        for name, options, wanted in cases:
            self.good("clean", "a.png", "-o", name, *options)
            image, = self.pages(name)
            self.assertEqual((image.format, image.mode), (wanted, "1"), name)
            self.assertSamePixels(image, self.pages("a.tif")[0], name)
        page, = self.pages("a.tif")
        self.assertLess(0.02, 1 - as_array(page).mean())
        self.assertEqual((page.tags[258], page.tags[259], page.tags[262]), ((1,), 4, 0))    # Group 4

    def test_resolution(self):
        for name in ("in.png", "in.jpg", "in.tif"):
            self.save(name, text_page(), dpi=(240, 240))
            for out in ("out.tif", "out.png"):
                self.good("clean", name, "-o", out, "--overwrite")
                self.assertEqual(round(self.pages(out)[0].info["dpi"][0]), 240, (name, out))
        self.save("none.png", text_page())
        self.save("odd.tif", text_page(), dpi=(1, 1))
        self.save("blank.png", Image.new("L", (600, 800), 255))
        for name, options, dpi, source in (
                ("none.png", [], 150, "estimate"), ("none.png", ["--dpi", 300], 300, "option"),
                ("a.png", ["--dpi", 600], 600, "option"), ("a.png", [], 240, "file"),
                ("odd.tif", [], 150, "estimate"), ("blank.png", [], 75, "page-size")):
            page = self.record("clean", "--no-doubling", name, "-o", "out.tif", "--overwrite", *options)[0]["pages"][0]
            self.assertEqual((page["dpi"], page["dpi_source"]), ([dpi, dpi], source))
            self.assertEqual(self.pages("out.tif")[0].info["dpi"], (dpi, dpi))
        words = self.good("clean", "none.png", "-o", "out.tif", "--overwrite", "-v").stdout.decode()
        self.assertIn("150 dpi (as its letters look, the file has none)", words)
        self.save("small.png", text_page().resize((400, 533)), dpi=(75, 75))
        words = self.good("clean", "small.png", "-o", "out.tif", "--overwrite").stdout.decode()
        self.assertIn("resolution doubled for its small letters", words)
        page = self.pages("out.tif")[0]
        self.assertEqual((page.size, page.info["dpi"]), ((800, 1066), (150, 150)))
        # Letters far too small for what the file says are believed, and the file keeps its word.
        self.save("in.tif", text_page(), dpi=(1200, 1200))
        page = self.record("clean", "in.tif", "-o", "out.tif", "--overwrite")[0]["pages"][0]
        self.assertEqual((page["dpi"], page["dpi_source"], page["dpi_stated"], page["output"]["dpi"]),
                         ([150, 150], "estimate", [1200, 1200], [1200, 1200]))

    def test_a_resolution_that_no_scanner_has_counts_as_none(self):
        for dpi, found in (((1, 1), None), ((900000, 900000), None), ((200, 0), [200, 200]),
                           ((1, 150), [150, 150]), ((204, 98), [204, 98])):
            self.save("in.tif", text_page().convert("1"), dpi=dpi)
            page, = self.info("in.tif")[0]["pages"]
            self.assertEqual(page["dpi"], found, dpi)

    def test_standard_input_and_output(self):
        self.good("clean", "a.png", "-o", "a.tif")
        for arguments, stdin in ((("a.png", "-o", "/dev/stdout"), b""), (("-", "-o", "-"), self.read("a.png"))):
            done = self.run_tool("clean", *arguments, stdin=stdin)
            self.assertEqual((done.returncode, done.stdout), (0, self.read("a.tif")))
            self.assertEqual(len(done.errors), 1)
            self.assertTrue(done.errors[0].startswith(arguments[0] + ": grey, 600 x 800 pixels, 240 dpi"))
        done = self.good("clean", "-", "-o", "-", "-q", "--format", "pbm", stdin=done.stdout)
        self.assertTrue(done.stdout.startswith(b"P4\n600 800\n"))
        self.good("clean", "-", "-o", ".", "-q", stdin=self.read("a.png"))
        self.assertEqual(self.read("stdin.tif"), self.read("a.tif"))

    def test_multi_page_to_every_format(self):
        sizes = [(320 + 8 * i, 400) for i in range(11)]
        self.save("many.tif", *[text_page(0, size) for size in sizes])
        self.good("clean", "--no-doubling", "many.tif", "-o", "out.tif")
        self.good("clean", "--no-doubling", "many.tif", "-o", ".", "--format", "png")
        self.good("clean", "--no-doubling", "many.tif", "-o", "out.pbm")
        self.assertEqual([p.size for p in self.pages("out.tif")], sizes)
        self.assertEqual([self.pages(f"many-{n:02}.png")[0].size for n in range(1, 12)], sizes)
        pages = self.info("out.pbm")[0]["pages"]
        self.assertEqual([(p["width"], p["height"]) for p in pages], sizes)


if __name__ == "__main__":
    unittest.main()
