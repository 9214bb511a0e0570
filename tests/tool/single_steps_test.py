"""The commands that do one thing: binarize, deskew, rotate, info; help and version."""

import fcntl
import json
import os
import pty
import struct
import termios
import unittest

import numpy as np
from PIL import Image

from tool_case import ToolCase, as_array, text_page


class SingleSteps(ToolCase):
    def test_rotate_keeps_the_kind(self):
        random = np.random.default_rng(4)
        grey = random.integers(0, 256, (70, 99), dtype=np.uint8)
        images = [Image.fromarray(grey), Image.fromarray(grey > 128),
                  Image.fromarray(random.integers(0, 256, (70, 99, 3), dtype=np.uint8))]
        turns = {90: Image.ROTATE_270, 180: Image.ROTATE_180, 270: Image.ROTATE_90}
        for image in images:
            self.save("in.tif", image, dpi=(200, 100))
            for angle, turn in turns.items():
                self.good("rotate", angle, "in.tif", "-o", "out.tif", "--overwrite")
                out, = self.pages("out.tif")
                self.assertEqual(out.mode, image.mode)
                self.assertSamePixels(out, image.transpose(turn))
                self.assertEqual(out.info["dpi"], (200, 100) if angle == 180 else (100, 200))

    def test_rotate_into_a_bitmap(self):
        self.save("in.png", text_page(1))
        self.fails("rotate", 90, "in.png", "-o", "out.pbm",
                   lines=["out.pbm: a grey page does not fit into a PBM file, name it .pnm"])
        self.good("rotate", 90, "in.png", "-o", "out.pgm")
        self.assertEqual(self.pages("out.pgm")[0].mode, "L")

    def test_binarize_then_deskew_is_clean(self):
        self.save("in.png", text_page(2))
        page = self.record("binarize", "in.png", "-o", "bits.tif")[0]["pages"][0]
        self.assertEqual([step["name"] for step in page["steps"]], ["orientation", "binarize"])
        self.assertEqual((page["skew"], self.pages("bits.tif")[0].size), (None, (600, 800)))
        self.good("despeckle", "bits.tif", "-o", "specks.tif")
        for bits, options in (("bits.tif", ["--no-despeckle"]), ("specks.tif", [])):
            self.good("deskew", bits, "-o", "straight.tif", "--overwrite")
            self.good("clean", "--no-doubling", "in.png", "-o", "clean.tif", "--overwrite", *options)
            self.assertEqual(self.read("straight.tif"), self.read("clean.tif"))

    def test_steps_on_ink(self):
        page = np.full((300, 500), 255, np.uint8)
        page[100:103, 20:480] = 0   # a line
        page[150:180, 50:60] = 0    # a letter
        page[200:202, 200:202] = 0  # a speck
        page[:, :6] = 0             # a border
        self.save("in.png", Image.fromarray(page > 0), dpi=(300, 300))
        line, letter, speck, border = ((slice(100, 103), slice(20, 480)),
                                       (slice(150, 180), slice(50, 60)),
                                       (slice(200, 202), slice(200, 202)), (slice(300), slice(6)))
        keeps = {("despeckle", "--force"): (1, 1, 0, 1), ("unline", "--force"): (0, 1, 1, 0),
                 ("unline", "--force", "--lines", "vertical"): (1, 1, 1, 0),
                 ("underlines",): (1, 0, 0, 0), ("underlines", "--vertical"): (0, 0, 0, 1),
                 ("crop",): (1, 1, 1, 0), ("textmask", "--max-height", 40, "--min-density", 1):
                 (1, 1, 1, 0), ("textmask", "--max-height", 40, "--min-density", 5): (0, 1, 0, 0)}
        for (command, *options), kept in keeps.items():
            self.good(command, "in.png", "-o", "out.png", "--overwrite", *options)
            ink = ~as_array(self.pages("out.png")[0])
            found = tuple(int(ink[part].mean() > 0.5) for part in (line, letter, speck, border))
            self.assertEqual(found, kept, (command, options))
        self.save("grey.tif", text_page().point(lambda v: 255 * (v > 99)), text_page())
        for command in ("despeckle", "unline", "underlines", "textmask"):
            self.fails(command, "grey.tif", "-o", "x.tif",
                       lines=[f"grey.tif: page 2: {command} takes bitonal pages, this one is grey "
                              "(clean binarizes first)"])

    def test_info(self):
        self.save("in.tif", text_page(), text_page().resize((40, 50)).convert("RGB"), dpi=(96, 96))
        exif = Image.Exif()
        exif[0x0112] = 8
        self.save("b.jpg", text_page(1), exif=exif.tobytes())
        words = self.good("info", "in.tif", "b.jpg").stdout.decode()
        self.assertEqual(words, "in.tif: TIFF, 2 pages\n"
                                "  page 1: grey, 600 x 800 pixels, 96 dpi\n"
                                "  page 2: grey, 40 x 50 pixels, 96 dpi\n"
                                "b.jpg: JPEG, 1 page\n"
                                "  page 1: grey, 600 x 800 pixels, no resolution, "
                                "to be turned 270 degrees clockwise\n")
        done = self.run_tool("info", "in.tif", "none", "--json")
        self.assertEqual((done.returncode, done.errors),
                         (1, ["vemoprepro: none: No such file or directory"]))
        good, bad = json.loads(done.stdout)["files"]
        self.assertEqual(good["pages"][1], {"page": 2, "kind": "grey", "width": 40, "height": 50,
                                            "dpi": [96, 96], "turn": 0})
        self.assertEqual(bad["error"], "No such file or directory")


class Words(ToolCase):
    def test_help_and_version(self):
        self.assertIn(b"vemoprepro 16.", self.good("--version").stdout)
        self.assertIn(b"Examples:", self.good("--help").stdout)
        for command in ("clean", "binarize", "deskew", "rotate", "scale", "perspective", "despeckle",
                        "unline", "underlines", "crop", "textmask", "info"):
            self.assertIn(b"INPUT", self.good(command, "--help").stdout)

    def test_inputs_may_follow_a_list(self):
        self.save("b.png", text_page().convert("1"))
        self.good("unline", "--lines", "horizontal,vertical", "b.png", "-o", "b.tif")
        self.good("clean", "--remove-lines", "horizontal", "b.png", "-o", "c.tif")

    def test_wrong_usage(self):
        for arguments in (["clean"], ["clean", "a.png"], ["clean", "a.png", "-o", "b.xyz"], ["clean", "a.png", "-o", ""],
                          ["clean", "a", "b", "-o", "-"], ["clean", "-", "-", "-o", "."],
                          ["rotate", "x", "a", "-o", "b.tif"], ["deskew", "a", "--threshold", "9"]):
            self.usage(*arguments)
        for options in ("--skew 10.7", "--skew -90", "--skew nan", "--skew ", "--apply ", "--report ",
                        "--skew 1 --no-deskew", "--threshold 256", "--threshold dark",
                        "--binarize magic", "--binarize otsu --threshold 9", "--despeckle -1",
                        "--despeckle 5 --no-despeckle", "--remove-lines diagonal", "--for printing",
                        "-j 0", "--dpi 0", "-q -v", "--format gif"):
            self.usage("clean", "a", "-o", "b.tif", *options.split(" "))

    def test_a_border_that_stays_is_said(self):
        self.save("a.png", Image.new("1", (9, 9)))
        words = self.good("crop", "a.png", "-o", "a.tif").stdout.decode()
        self.assertIn("crop skipped: smaller than 24 pixels a side", words)
        self.assertNotIn("crop", self.good("clean", "a.png", "-o", "b.tif").stdout.decode())

    def test_progress_on_a_terminal(self):
        """One line that fits, but what was held back stays, and so does the last page."""
        self.save("a.tif", text_page(1), text_page(2), text_page(3))
        def lines(*options):
            try:
                master, slave = pty.openpty()
            except OSError:
                self.skipTest("there are no terminals here")
            fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 60, 0, 0))
            self.run_tool("clean", "a.tif", "-o", "o.tif", "--overwrite", *options, stdout=slave)
            os.close(slave)
            shown = b""
            try:
                while True:
                    shown += os.read(master, 1 << 16)
            except OSError:    # the terminal's end
                os.close(master)
            return [line.split("\r\x1b[K")[1:] for line in shown.decode().split("\r\n")[:-1]]
        written, = lines()
        self.assertEqual([len(text) for text in written[:3]], [59] * 3)
        self.assertTrue(written[3].startswith(written[2]) and "confidence" in written[3], written)
        held_back = lines("--despeckle", 1000)
        self.assertEqual([len(line) for line in held_back], [1] * 3)
        self.assertTrue(all("despeckle skipped: would take" in line[0] for line in held_back))

    def test_quiet_and_verbose(self):
        self.save("a.png", text_page(2), dpi=(300, 300))
        self.assertEqual(self.good("clean", "a.png", "-o", "b.tif", "-q").stdout, b"")
        lines = self.good("clean", "a.png", "-o", "a.tif", "-v").stdout.decode().splitlines()
        self.assertEqual(lines[:2], ["a.png: grey, 600 x 800 pixels, 300 dpi",
                                     "  orientation: skipped: no orientation tag"])
        self.assertEqual(lines[2:4], ["  crop: skipped: switched off",
                                      "  binarize: done: thresholds by the paper"])
        self.assertRegex(lines[4], r"^  despeckle: done: specks of up to 6 pixels away from letters, \d\.\d % of the ink$")
        self.assertRegex(lines[5], r"^  deskew: done: skew 2\.\d\d degrees \(confidence \d\.\d\d\)$")
        self.assertRegex(lines[7], r"^  written: bitonal, 6\d\d x 8\d\d pixels, to a\.tif \(.* s\)$")


if __name__ == "__main__":
    unittest.main()
