"""The commands that bring pages to another place: scale, rotate by any angle, deskew of greys and colours,
perspective."""

import json
import os
import unittest

import numpy as np
from PIL import Image, ImageDraw

from tool_case import ToolCase, as_array, text_page

PAPER, TABLE = (236, 232, 220), (52, 44, 36)


def three_kinds(grey):
    """The same page bitonal, grey and in colours."""
    colour = np.stack([grey, grey // 2 + 90, 255 - grey // 3], axis=2)
    return [Image.fromarray(grey > 128), Image.fromarray(grey), Image.fromarray(colour)]


def photograph(corners, size=(900, 1200), table=TABLE):
    """A page of text in colours that lies on a table; corners from the upper left one clockwise."""
    page = Image.composite(Image.new("RGB", (600, 800), PAPER), Image.new("RGB", (600, 800), (30, 30, 50)),
                           text_page().point(lambda grey: 255 * (grey > 128)))
    equations, values = [], []
    for (x, y), (u, v) in zip(corners, ((0, 0), (600, 0), (600, 800), (0, 800))):
        equations += [[x, y, 1, 0, 0, 0, -u * x, -u * y], [0, 0, 0, x, y, 1, -v * x, -v * y]]
        values += [u, v]
    seen = page.transform(size, Image.PERSPECTIVE, tuple(np.linalg.solve(equations, values)), Image.BICUBIC)
    mask = Image.new("L", size)
    ImageDraw.Draw(mask).polygon(corners, fill=255)
    return Image.composite(seen, Image.new("RGB", size, table), mask)


class GeometryCase(ToolCase):
    def page(self, *arguments):
        """The page of the record and of out.tif."""
        page, = self.record(*arguments, "-o", "out.tif", "--overwrite")[0]["pages"]
        out, = self.pages("out.tif")
        self.assertEqual((out.width, out.height), (page["output"]["width"], page["output"]["height"]))
        return page, out

    def refused(self, *arguments):
        """One line of complaint and where help is found, status 2."""
        done = self.run_tool(*arguments, "in.png", "-o", "out.tif")
        self.assertEqual((done.returncode, len(done.errors)), (2, 2), (arguments, done.errors))
        self.assertEqual(done.errors[1], f"Try 'vemoprepro {arguments[0]} --help'.")
        return done.errors[0]


class Scale(GeometryCase):
    def test_twice_as_large(self):
        grey = np.random.default_rng(1).integers(0, 256, (30, 41), dtype=np.uint8)
        self.save("in.png", grey, dpi=(200, 100))
        page, out = self.page("scale", "in.png", "--factor", 2, "--filter", "bilinear")
        wide = np.pad(grey, ((0, 1), (0, 1)), "edge").astype(int)
        between = (wide[:, :-1] + wide[:, 1:]) // 2
        rows = np.stack([wide[:, :-1], between], axis=2).reshape(31, 82)
        expected = np.stack([rows[:-1], (rows[:-1] + rows[1:]) // 2], axis=1).reshape(60, 82)
        self.assertSamePixels(out, expected)
        self.assertEqual(page["output"]["dpi"], [400, 200])
        step, = [step for step in page["steps"] if step["name"] == "scale"]
        self.assertEqual((step["status"], step["why"]), ("done", "scaled to 82 x 60 pixels"))

    def test_every_way_keeps_the_kind(self):
        grey = np.random.default_rng(2).integers(0, 256, (60, 90), dtype=np.uint8)
        for image in three_kinds(grey):
            self.save("in.tif", image, dpi=(300, 300))
            for options, size, dpi in ((("--size", "30x40"), (30, 40), [100, 200]),
                                       (("--factor", "0.5"), (45, 30), [150, 150]),
                                       (("--dpi", 400), (120, 80), [400, 400]),
                                       (("--from-dpi", 100, "--dpi", 300), (270, 180), [300, 300])):
                for kernel in ("bilinear", "bicubic"):
                    page, out = self.page("scale", "in.tif", *options, "--filter", kernel)
                    self.assertEqual((out.mode, out.size), (image.mode, size))
                    self.assertEqual(page["output"]["dpi"], dpi)
                    if options[0] == "--factor":  # every second pixel, no mean of two
                        shown = np.asarray(image)[::2, ::2].astype(int)
                        self.assertLessEqual(np.abs(np.asarray(out).astype(int) - shown).max(), 3)
            page, out = self.page("scale", "in.tif", "--factor", 1)
            self.assertSamePixels(out, image)
            self.assertEqual(page["steps"][-1]["why"], "has this size already")

    def test_errors(self):
        self.save("in.png", text_page())
        for options, said in (((), "how large? one of --size, --factor and --dpi says it"),
                              (("--size", "0x9"), "--size: 0x9: a side has 1 .. 32767 pixels"),
                              (("--size", "9x32768"), "--size: 9x32768: a side has 1 .. 32767 pixels"),
                              (("--size", "9"), "--size: 9 is no size like 800x600"),
                              (("--factor", "0"), "--factor: 0 is no number above 0"),
                              (("--factor", "nan"), "--factor: nan is no number above 0")):
            self.assertEqual(self.refused("scale", *options), "vemoprepro: " + said)
        for options in (("--size", "9x9", "--factor", 2), ("--factor", 2, "--filter", "nearest")):
            self.refused("scale", *options)
        self.fails("scale", "in.png", "-o", "out.png", "--factor", 99,
                   lines=["in.png: scaled it would be 59400 x 79200 pixels, a side has 1 .. 32767"])
        self.fails("scale", "in.png", "-o", "out.png", "--dpi", 99,
                   lines=["in.png: the file states no resolution to scale from; --from-dpi gives it"])


class Rotate(GeometryCase):
    def test_by_any_angle(self):
        grey = np.full((60, 100), 40, np.uint8)
        for image in three_kinds(grey):
            self.save("in.png", image)
            for angle in (30, -30, 200.5, "1e1"):
                page, out = self.page("rotate", angle, "in.png", "--background", "200,100,50")
                radians = np.radians(float(angle))
                across, along = abs(np.cos(radians)), abs(np.sin(radians))
                self.assertEqual(out.size, (int(100 * across + 60 * along), int(100 * along + 60 * across)))
                self.assertEqual(out.mode, image.mode)
                self.assertEqual(out.getpixel((out.width // 2, out.height // 2)), image.getpixel((50, 30)))
                ground = {"1": 0, "L": 124, "RGB": (200, 100, 50)}[image.mode]
                self.assertEqual(out.getpixel((0, 0)), ground)
                self.assertEqual(page["steps"][-1]["why"], f"turned {float(angle):g} degrees clockwise")

    def test_the_way_round(self):
        grey = np.full((101, 101), 220, np.uint8)
        grey[48:53, 50:] = 9  # a hand that points to the right
        self.save("in.png", grey)
        _, out = self.page("rotate", 30, "in.png")
        y, x = np.nonzero(np.asarray(out) < 128)
        self.assertGreater((y - out.height / 2).mean(), 10)  # and now down to the right
        self.assertGreater((x - out.width / 2).mean(), 18)

    def test_backgrounds(self):
        page = np.full((80, 80, 3), (210, 200, 180), np.uint8)
        page[30:50, 30:50] = 0
        self.save("in.png", page)
        for name, colour in (("white", (255,) * 3), ("border", (210, 200, 180)), ("99", (99,) * 3)):
            self.assertEqual(self.page("rotate", 45, "in.png", "--background", name)[1].getpixel((0, 0)), colour)
        self.assertEqual(self.page("rotate", 45, "in.png")[1].getpixel((0, 0)), (255,) * 3)

    def test_right_angles_move_pixels(self):
        for image in three_kinds(np.random.default_rng(4).integers(0, 256, (70, 99), dtype=np.uint8)):
            self.save("in.png", image)
            for angle, same in ((-90, 270), (-270, 90), ("-180.0", 180), ("90.0", 90)):
                self.assertSamePixels(self.page("rotate", angle, "in.png")[1], self.page("rotate", same, "in.png")[1])
            self.assertSamePixels(self.page("rotate", 0, "in.png")[1], image)

    def test_errors(self):
        self.assertEqual(self.refused("rotate", "360"),
                         "vemoprepro: ANGLE: more than -360 and less than 360 degrees")
        self.assertEqual(self.refused("rotate", "a.png"),
                         "vemoprepro: ANGLE comes before INPUT and is a number, 'a.png' is none")
        for background in ("grey", "256", "1,2", "1,2,3,4", ""):
            self.assertIn("--background", self.refused("rotate", "9", "--background", background))
        self.save("in.png", Image.new("1", (32767, 20000)))
        self.fails("rotate", 5, "in.png", "-o", "out.png",
                   lines=["in.png: turned it would be 34385 x 22779 pixels, the most is 32767 a side"])


class Deskew(GeometryCase):
    def test_every_kind_is_straightened(self):
        for image in three_kinds(np.array(text_page(3))):
            self.save("in.png", image, dpi=(300, 300))
            page, out = self.page("deskew", "in.png")
            self.assertEqual((out.mode, page["output"]["dpi"]), (image.mode, [300, 300]))
            self.assertAlmostEqual(page["skew"]["degrees"], 3, delta=0.1)
            self.save("again.png", out)
            again, _ = self.page("deskew", "again.png")
            self.assertAlmostEqual(again["skew"]["degrees"], 0, delta=0.12)

    def test_background(self):
        image = three_kinds(np.array(text_page(3)))[2]
        self.save("in.png", image)
        for options, colour in (((), image.getpixel((0, 0))), (("--background", "border"), image.getpixel((0, 0))),
                                (("--background", "white"), (255,) * 3), (("--background", "1,2,3"), (1, 2, 3))):
            _, out = self.page("deskew", "in.png", *options)
            self.assertEqual(out.getpixel((0, 0)), colour, options)


class KeepColour(GeometryCase):
    def test_the_kept_page_lies_under_the_ink(self):
        colour = three_kinds(np.array(text_page(3)))[2]
        for name, image in (("in.png", colour), ("grey.png", text_page(2)), ("bits.png", text_page(2).point(lambda grey: 255 * (grey > 128)).convert("1"))):
            for options in ((), ("--for", "ocr"), ("--crop-border",), ("--no-deskew",)):
                for dpi in (300, 100):  # coarse pages are doubled
                    self.save(name, image, dpi=(dpi, dpi))
                    file, = self.record("clean", name, "-o", "out.tif", "--overwrite", "--keep-colour", *options)
                    self.assertEqual(file["outputs"], ["out.tif", "out-colour.tif"])
                    page, = file["pages"]
                    bits, = self.pages("out.tif")
                    kept, = self.pages("out-colour.tif")
                    self.assertEqual((bits.mode, kept.mode, bits.size), ("1", image.mode, kept.size))
                    self.assertEqual(page["kept"], {"kind": {"1": "bitonal", "L": "grey", "RGB": "colour"}[image.mode],
                                                    "width": bits.width, "height": bits.height, "file": "out-colour.tif",
                                                    "dpi": page["output"]["dpi"]})
                    grey, ink = np.asarray(kept.convert("L")).astype(int), ~as_array(bits)
                    inside = np.s_[200:-200, 200:-200]
                    least = [np.corrcoef(-grey[inside].ravel(), np.roll(ink, shift, (0, 1))[inside].ravel())[0, 1]
                             for shift in ((0, 0), (2, 0), (-2, 0), (0, 2), (0, -2))]
                    self.assertEqual(np.argmax(least), 0, (name, options, dpi, least))
                    self.assertGreater(least[0], 0.6)

    def test_both_files_or_none(self):
        self.save("in.png", text_page(1).convert("RGB"))
        self.save("two.tif", text_page(1), text_page(2))
        keep = ("--keep-colour", "-o")
        self.good("clean", "two.tif", *keep, "out/", "--format", "png")
        self.assertEqual(sorted(os.listdir(self.path("out"))),
                         ["two-1-colour.png", "two-1.png", "two-2-colour.png", "two-2.png"])
        self.good("clean", "two.tif", *keep, "out/a.pbm")
        self.assertEqual([page.mode for page in self.pages("out/a-colour.pnm")], ["L"])
        self.write("out/in-colour.tif", b"here")
        self.fails("clean", "in.png", *keep, "out/in.tif",
                   lines=["out/in-colour.tif: exists already (--overwrite replaces it)"])
        self.assertFalse(os.path.exists(self.path("out/in.tif")))
        self.good("clean", "in.png", *keep, "out/in.tif", "--overwrite")
        self.assertIn(b"skipped: out/in.tif exists",
                      self.good("clean", "in.png", *keep, "out/in.tif", "--skip-existing").stdout)
        os.remove(self.path("out/in-colour.tif"))
        self.fails("clean", "in.png", *keep, "out/in.tif", "--skip-existing",
                   lines=["out/in.tif: exists already (--overwrite replaces it)"])
        self.save("in-colour.png", text_page(1))
        done = self.run_tool("clean", "in.png", "in-colour.png", *keep, "new/")
        self.assertEqual((done.returncode, os.path.exists(self.path("new"))), (2, False))
        self.assertIn("would both become new/in-colour.tif", done.errors[0])
        self.usage("clean", "in.png", *keep, "-")


class Perspective(GeometryCase):
    def test_an_upright_rectangle(self):
        for image in three_kinds(np.random.default_rng(5).integers(0, 256, (80, 90), dtype=np.uint8)):
            self.save("in.png", image)
            for order in ((0, 1, 2, 3), (2, 0, 3, 1)):
                corners = [["10,20", "69,20", "69,59", "10,59"][i] for i in order]
                page, out = self.page("perspective", "in.png", "--corners", *corners)
                self.assertEqual((out.mode, out.size), (image.mode, (59, 39)))
                self.assertEqual(page["corners"], [[10, 20], [69, 20], [69, 59], [10, 59]])
                if image.mode != "RGB":
                    self.assertSamePixels(out, image.crop((10, 20, 69, 59)))

    def test_the_page_is_found(self):
        for corners in ([(130, 90), (760, 140), (800, 1090), (80, 1040)], [(95, 160), (720, 80), (830, 1010), (170, 1130)]):
            self.save("in.png", photograph(corners), dpi=(72, 72))
            page, out = self.page("perspective", "in.png")
            self.assertLess(np.abs(np.array(page["corners"]) - corners).max(), 6, page["corners"])
            self.assertGreater(np.array(out)[:8].mean(), 200)    # paper, not the table
            self.assertGreater(np.array(out)[:, -8:].mean(), 200)
            self.assertTrue(page["steps"][-1]["why"].startswith("corners "), page["steps"])

    def test_what_is_not_sure_is_left(self):
        right = [(130, 90), (760, 140), (800, 1090), (80, 1040)]
        for image, why in ((text_page(), "a corner lies outside of the picture"),
                           (photograph([(-30, 90), (760, 140), (800, 1090), (-50, 1040)]), "a corner lies outside"),
                           (photograph([(400, 500), (600, 500), (600, 800), (400, 790)]), "nothing bright is large"),
                           (photograph(right, table=PAPER), ""),
                           (Image.new("L", (50, 50)), "the picture is too small")):
            self.save("in.png", image)
            done = self.good("perspective", "in.png", "-o", "out.tif", "--overwrite", "--json")
            page, = json.loads(done.stdout)["files"][0]["pages"]
            step = page["steps"][-1]
            self.assertEqual((step["status"], step["warning"], "corners" in page), ("skipped", True, False))
            self.assertTrue(step["why"].startswith("no page found: " + why), step["why"])
            self.assertEqual(done.errors, [f"vemoprepro: in.png: warning: perspective skipped: {step['why']}"])
            self.assertSamePixels(self.pages("out.tif")[0], image)

    def test_errors(self):
        for corners in (["1,1", "2,2", "3,3"], ["1,1", "2,2", "3,3", "4"], ["1,1", "2,2", "3,3", "4,x"]):
            self.refused("perspective", "--corners", *corners)
        self.save("in.png", text_page())
        for corners, said in ((["0,0", "600,0", "600,800", "0,800"], "the corner 600,0 lies outside of the page"),
                              (["0,0", "10,10", "20,20", "9,80"], "the four corners do not surround a page")):
            self.fails("perspective", "in.png", "-o", "out.png", "--corners", *corners, lines=["in.png: " + said])


class Records(GeometryCase):
    def test_a_report_of_each(self):
        self.save("in.png", photograph([(130, 90), (760, 140), (800, 1090), (80, 1040)]))
        for command in (["scale", "--factor", 0.5], ["rotate", 12.5], ["deskew", "--skew", 2], ["perspective"]):
            self.good(command[0], *command[1:], "in.png", "-o", "out.png", "--report", "look", "--overwrite")
            name, = [name for name in os.listdir(self.path("look/pages")) if name.endswith(".html")]
            self.assertIn(f"<b>{command[0]}</b>".encode(), self.read("look/pages/" + name))


if __name__ == "__main__":
    unittest.main()
