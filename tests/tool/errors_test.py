"""Everything that can go wrong: one line each, the right exit status, and nothing left behind."""

import ctypes
import os
import resource
import signal
import subprocess
import time
import unittest

import numpy as np
from PIL import Image

from tool_case import PROGRAM, ToolCase, memory_limit, text_page


def heed_permissions():
    """As other users must: what is run next may not write where only root may."""
    drop_from_bounding_set, override = 24, 1
    ctypes.CDLL(None).prctl(drop_from_bounding_set, override, 0, 0, 0)


class Errors(ToolCase):
    def setUp(self):
        super().setUp()
        self.save("a.png", text_page(1))

    def test_inputs_that_cannot_be_read(self):
        self.write("empty.png", b"")
        self.write("words.txt", b"not an image")
        unknown = "not a TIFF, PNG, JPEG, JPEG 2000, WebP, GIF, BMP or PNM file"
        for name, what in (("none.png", "No such file or directory"),
                           ("empty.png", "is empty"), ("words.txt", unknown)):
            self.fails("clean", name, "-o", "out.tif", lines=[f"{name}: {what}"])
        self.fails("clean", "-", "-o", "out.tif", lines=["-: is empty"])
        for start, word in ((b"%PDF-1.7", "pdftoppm"), (b"\0\0\0\x18ftypheic", "heif-convert"),
                            (b"\0\0\0\x18ftypavif", "heif-convert"), (b"AT&TFORM", "ddjvu")):
            self.write("a.tif", start + bytes(100))
            for name in ("a.tif", "-"):
                self.assertIn(word, self.one_error("info", name, stdin=start + bytes(100)))
        colour = Image.new("RGB", (20, 20))
        for name in ("a.gif", "a.webp"):
            self.save(name, colour, Image.new("RGB", (20, 20), "red"))
            self.assertIn("files of their own", self.one_error("info", name))

    def test_damaged_files(self):
        colour = np.random.default_rng(5).integers(0, 256, (200, 300, 3), dtype=np.uint8)
        bits = Image.fromarray(colour).convert("1")
        files = [("t.jpg", colour, {}), ("p.jpg", colour, {"progressive": True}), ("t.png", colour, {}),
                 ("t.tif", colour, {}), ("l.tif", colour, {"compression": "tiff_lzw"}),
                 ("j.tif", colour, {"compression": "jpeg"}), ("g.tif", bits, {"compression": "group4"}),
                 ("t.ppm", colour, {}), ("t.pbm", bits, {}), ("t.gif", bits, {}), ("t.bmp", colour, {}),
                 ("t.webp", colour, {}), ("l.webp", colour, {"lossless": True}), ("t.jp2", colour, {}),
                 ("y.jp2", colour, {"irreversible": True})]
        self.save("four.tif", *[text_page(i) for i in range(4)], compression="raw")
        self.write("four.tif", self.read("four.tif")[:-300000])
        self.one_error("clean", "four.tif", "-o", ".", "--format", "png")    # no page of it is written
        for name, image, options in files:
            self.save(name, image, **options)
            whole = self.read(name)
            self.good("info", name)
            damaged = [whole[:int(len(whole) * share)] for share in (0.3, 0.6, 0.98)]
            if name in ("t.png", "l.tif", "t.jpg"):
                middle = len(whole) // 2
                damaged.append(whole[:middle] + b"\xff\xd9" * 200 + whole[middle + 400:])
            for data in damaged:
                with self.subTest(name=name, size=len(data)):
                    self.write(name, data)
                    self.assertRegex(self.one_error("clean", name, "-o", "out.tif"),
                                     f"^vemoprepro: {name}: damaged or truncated [A-Za-z0 2]+ file")

    def test_pages_that_are_too_large(self):
        self.save("w.png", Image.new("1", (32768, 3)))
        self.save("h.tif", Image.new("1", (3, 32768)))
        self.save("ok.tif", Image.new("1", (32767, 3)))
        limit = "pixels are too large, the limit is 32767 a side"
        self.fails("clean", "w.png", "-o", "o.tif", lines=[f"w.png: 32768 x 3 {limit}"])
        self.fails("clean", "h.tif", "-o", "o.tif", lines=[f"h.tif: 3 x 32768 {limit}"])
        self.write("bomb.ppm", b"P3\n2000000000 2000000000\n255\n0 0 0")
        self.one_error("clean", "bomb.ppm", "-o", "o.tif")
        self.good("clean", "ok.tif", "-o", "o.tif")

    def test_outputs_that_are_in_the_way(self):
        self.good("clean", "a.png", "-o", "a.tif")
        old = self.read("a.tif")
        self.fails("clean", "a.png", "-o", "a.tif",
                   lines=["a.tif: exists already (--overwrite replaces it)"])
        self.good("binarize", "a.png", "-o", "a.tif", "--overwrite")
        self.assertNotEqual(self.read("a.tif"), old)
        os.mkdir(self.path("look"))
        for name in ("same.png", "look/index.html"):
            os.link(self.path("a.png"), self.path(name))
        for name in ("a.png", "./a.png", "same.png"):
            self.fails("clean", "a.png", "-o", name, "--overwrite",
                       lines=[f"{name}: the output would overwrite an input"])
        self.fails("clean", "a.png", "-o", "new.tif", "--overwrite", "--report", "look",
                   lines=["look/index.html: the report would overwrite an input"])
        self.fails("clean", "a.tif", "-o", ".", "--overwrite",
                   lines=["./a.tif: the output would overwrite an input"])

    def test_links_are_followed_and_permissions_stay(self):
        os.mkdir(self.path("real"))
        old = self.path(self.write("real/old.tif", b"old"))
        os.chmod(old, 0o640)
        os.symlink("real/old.tif", self.path("link.tif"))
        self.good("clean", "a.png", "-o", "link.tif", "--overwrite")
        self.assertTrue(os.path.islink(self.path("link.tif")))
        self.assertEqual(os.listdir(self.path("real")), ["old.tif"])
        self.assertEqual((os.stat(old).st_mode & 0o777, self.pages("real/old.tif")[0].mode), (0o640, "1"))
        os.chmod(old, 0o444)
        os.symlink("none.tif", self.path("lost.tif"))
        self.save("damaged.png", text_page())
        self.write("damaged.png", self.read("damaged.png")[:-100])
        for name, what in (("real/old.tif", "is read-only"), ("link.tif", "is read-only"),
                           ("lost.tif", "is a link to a file that does not exist")):
            for options in ((), ("--overwrite",)):
                if options or name == "lost.tif":
                    self.fails("clean", "damaged.png", "-o", name, *options, lines=[f"{name}: {what}"])

    def test_leftovers_of_killed_runs(self):
        def leave(name, days):
            self.write(name, b"part of a page")
            os.utime(self.path(name), (time.time() - days * 86400,) * 2)
        for name, days in ((".vemoprepro-aB3dE6", 2), (".vemoprepro-aB3dE7", 0.9), (".vemoprepro-aB3dE67", 2),
                           (".vemoprepro-aB3d.6", 2), ("vemoprepro-aB3dE6", 2)):
            leave(name, days)
        os.symlink("vemoprepro-aB3dE6", self.path(".vemoprepro-linked"))
        kept = set(os.listdir(self.here)) - {".vemoprepro-aB3dE6"}
        self.good("clean", "a.png", "-o", "o.tif")
        self.assertEqual(set(os.listdir(self.here)), kept | {"o.tif"})

    def test_places_that_cannot_be_written(self):
        os.mkdir(self.path("closed"), 0o555)
        self.save("two.tif", text_page(), text_page())
        for arguments, what in (
                (("a.png", "-o", "none/a.tif"), "none/a.tif: no such folder: none/"),
                (("a.png", "-o", "none/more/"), "none/more/: no such folder: none/"),
                (("a.png", "b.png", "-o", "none/more"), "none/more: no such folder: none/"),
                (("a.png", "-o", "closed/more/"), "closed/more/: Permission denied"),
                (("a.png", "-o", "closed/a.tif"), "closed/a.tif: Permission denied"),
                (("two.tif", "-o", "o.png"), "two.tif: holds 2 pages and a PNG file only one; "
                                             "name a folder, or a TIFF file")):
            self.fails("clean", *arguments, lines=[what], preexec_fn=heed_permissions)

    def test_outputs_that_take_no_more(self):
        full = "No space left on device"
        for name in ("tiff", "png", "pbm"):
            self.fails("clean", "a.png", "-o", "/dev/full", "--format", name,
                       lines=[f"/dev/full: {full}"])
            with open("/dev/full", "wb") as device:
                self.fails("clean", "a.png", "-o", "-", "-q", "--format", name, stdout=device,
                           lines=[f"standard output: {full}"])
        reader, writer = os.pipe()
        os.close(reader)
        self.addCleanup(os.close, writer)
        self.fails("clean", "a.png", "-o", "-", "-q", stdout=writer, lines=["standard output: Broken pipe"])

    def test_too_little_memory_fails_one_file_only(self):
        limit = memory_limit(500, resource.RLIMIT_AS)
        if limit is None:
            self.skipTest("the address sanitizer needs more than the limit")
        self.save("big.tif", Image.new("RGB", (16000, 16000), 250), compression="packbits")
        for command in (["info"], ["rotate", "90", "-j1", "-o", "out/"]):
            done = self.run_tool(*command, "big.tif", "a.png", preexec_fn=limit)
            self.assertEqual((done.returncode, done.errors), (
                1, ["vemoprepro: big.tif: not enough memory"]))
            self.assertIn(b"a.png: ", done.stdout)

    def test_file_size_limit(self):
        """A write that fails in the middle of a page, in every format."""
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (3000, 3000))
        self.save("many.tif", text_page(1), text_page(2))
        for name in ("o.tif", "o.pbm", "."):
            self.fails("clean", "many.tif", "-o", name, "--format",
                       {"o.tif": "tiff", "o.pbm": "pbm"}.get(name, "png"), preexec_fn=limit,
                       lines=[("./many-1.png" if name == "." else name) + ": File too large"])

    def test_closed_standard_streams(self):
        def run(closed, *arguments):
            return subprocess.run(["sh", "-c", f'exec "$@" {closed}', "sh", PROGRAM, *arguments],
                                  cwd=self.here, stderr=subprocess.PIPE, check=False)
        self.assertEqual(run(">&-", "clean", "a.png", "-o", "-", "-q").stderr,
                         b"vemoprepro: standard output: Bad file descriptor\n")
        self.assertEqual(run("<&-", "clean", "-", "-o", "o.tif").stderr,
                         b"vemoprepro: -: Bad file descriptor\n")
        self.good("clean", "a.png", "-o", "a.pbm")
        run("<&- >&-", "clean", "a.png", "-o", "o.pbm", "-v")
        self.assertEqual(self.read("o.pbm"), self.read("a.pbm"))


if __name__ == "__main__":
    unittest.main()
