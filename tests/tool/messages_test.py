"""What the program says beside the pages: warnings, the last line of a run, and names that hold more than
letters."""

import os
import unittest

import numpy as np
from PIL import Image

from tool_case import ToolCase, text_page


def specked_page():
    """Most of its ink is specks, which are kept for that."""
    page = Image.new("1", (400, 400), 1)
    for x in range(20, 380, 12):
        for y in range(20, 380, 12):
            page.putpixel((x, y), 0)
    return page


class Messages(ToolCase):
    def setUp(self):
        super().setUp()
        self.save("good.png", text_page(1), dpi=(300, 300))
        self.save("specks.png", specked_page(), dpi=(300, 300))
        os.mkdir(self.path("out"))

    def test_a_warning_is_said_on_standard_error(self):
        said = "despeckle skipped: would take 100 % of the ink"
        for options in ((), ("-q",), ("-v",), ("--json",)):
            done = self.good("clean", "specks.png", "-o", "a.tif", "--overwrite", "--despeckle", 6,
                             *options)
            self.assertEqual(done.errors[-1:], [f"vemoprepro: specks.png: warning: {said}"], options)
        self.save("two.tif", text_page().convert("1"), specked_page(), dpi=(300, 300))
        self.assertEqual(self.good("despeckle", "two.tif", "-o", "b.tif", "--max-area", 6).errors[1:],
                         [f"vemoprepro: two.tif: page 2 of 2: warning: {said}"])

    def test_the_last_line_counts_the_files(self):
        self.write("bad.png", b"")
        self.save("three.tif", *[text_page()] * 3)
        names = ["good.png", "specks.png", "bad.png", "three.tif"]
        done = self.run_tool("clean", *names, "-o", "out", "--despeckle", 6)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout.decode().splitlines()[-1],
                         "4 files: 3 done (5 pages), 1 of them with warnings, 1 failed")
        self.assertNotIn("files:", self.good("clean", "three.tif", "-o", "a.tif").stdout.decode())

    def test_control_characters_in_names_are_escaped(self):
        name = "a\n\x1b[31m\u202etxt\udcff\u00e9.png"
        safe = "a\\n\\x1b[31m\\xe2\\x80\\xaetxt\\xff\u00e9.png"
        os.link(self.path("good.png"), self.path(name))
        for words in (self.good("clean", name, "-o", "a.tif", "-v").stdout, self.good("info", name).stdout):
            self.assertTrue(words.decode().startswith(safe + ": "), words)
        os.remove(self.path(name))
        self.fails("clean", name, "-o", "b.tif", lines=[safe + ": No such file or directory"])
        self.save("a\nb.png", np.full((9, 9), 255, np.uint8))
        self.assertEqual(self.info("a\nb.png")[0]["input"], "a\nb.png")

    def test_lost_lines_are_an_error(self):
        with open("/dev/full", "wb") as device:
            for arguments in (("clean", "good.png", "-o", "a.tif"), ("info", "good.png"), ("--help",)):
                done = self.run_tool(*arguments, stdout=device)
                self.assertEqual((done.returncode, done.errors), (
                    1, ["vemoprepro: standard output: cannot be written, lines are lost"]), arguments)


if __name__ == "__main__":
    unittest.main()
