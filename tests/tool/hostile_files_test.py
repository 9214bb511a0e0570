"""Files that ask for more time or memory than their pages are worth."""

import resource
import struct
import unittest

from PIL import Image

from tool_case import PROGRAM, ToolCase, raw_tiff


def tiny_pages(count, back_to=None):
    """A TIFF file of pages of 8 x 1 pixels; the chain ends, or goes back to a page."""
    tags = ((256, 8), (257, 1), (258, 1), (259, 1), (262, 0), (273, 8), (277, 1), (278, 1), (279, 1))
    size = 2 + 12 * len(tags) + 4
    directory = struct.pack("<H", len(tags)) + b"".join(struct.pack("<HHII", tag, 4, 1, value) for tag, value in tags)
    places = [10 + size * i for i in range(count)]
    follow = places[1:] + [0 if back_to is None else places[back_to]]
    return b"II*\0" + struct.pack("<I", 10) + b"\x80\0" + b"".join(directory + struct.pack("<I", at) for at in follow)


def memory_limit(megabytes):
    """None for the address sanitizer, which needs more than any page."""
    with open(PROGRAM, "rb") as file:
        if b"__asan_init" in file.read():
            return None
    return lambda: resource.setrlimit(resource.RLIMIT_DATA, (megabytes << 20,) * 2)


class HostileFiles(ToolCase):
    def one_line(self, name, data, megabytes=200):
        """What the run says, in little memory and time."""
        self.write(name, data)
        return self.one_error("info", name, preexec_fn=memory_limit(megabytes))

    def test_many_tiff_pages_take_linear_time(self):
        self.write("many.tif", tiny_pages(10000))
        self.assertEqual(len(self.info("many.tif")[0]["pages"]), 10000)

    def test_tiff_pages_that_run_in_a_circle(self):
        for back_to in (0, 3, 4):
            self.assertIn("its pages run in a circle", self.one_line("a.tif", tiny_pages(5, back_to)))

    def test_tiff_tiles_out_of_proportion(self):
        for side in (16384, 65520):
            line = self.one_line("a.tif", raw_tiff(70, 61, 8, 1, [b"x"], tile=(side, side)))
            self.assertIn("are too large for a page of 70 x 61 pixels", line)
        self.assertIn("tags", self.one_line("b.tif", raw_tiff(8, 8, 8, 1, [bytes(64)],
                                                              others={40000 + i: [1] for i in range(1000)})))

    def test_jpeg_of_very_many_scans(self):
        self.save("a.jpg", Image.effect_noise((64, 64), 50), progressive=True)
        whole = self.read("a.jpg")
        last = whole[whole.rindex(b"\xff\xda"):-2]
        self.assertIn("more than 100 scans", self.one_line("a.jpg", whole[:-2] + last * 100 + whole[-2:]))

    def test_png_colour_key_before_a_long_rest(self):
        self.save("a.png", Image.new("L", (20, 20), 7), transparency=3)
        with open(self.path("a.png"), "ab") as file:
            file.truncate(1 << 30)
        self.good("info", "a.png", preexec_fn=memory_limit(200))

    def test_sizes_that_are_stated(self):
        """A page of the largest size in every format, with next to nothing behind it, is no reason to take memory."""
        big = struct.pack("<II", 40000, 40000)
        self.save("a.jp2", Image.new("L", (20, 20)))
        jp2 = self.read("a.jp2")
        siz = jp2.index(b"\xff\x4f\xff\x51") + 8
        for name, data in (
                ("a.gif", b"GIF89a" + bytes(7) + b"," + bytes(4) + b"\xff\xff\xff\xff" + bytes(3) + b";"),
                ("a.bmp", b"BM" + bytes(8) + struct.pack("<II", 54, 40) + big + struct.pack("<HH", 1, 24) + bytes(24)),
                ("a.jp2", jp2[:siz] + struct.pack(">II", 30000, 30000) + jp2[siz + 8:]),
                ("a.webp", b"RIFF" + struct.pack("<I", 22) + b"WEBPVP8X" + struct.pack("<I", 10) + bytes(4) + b"\xff" * 6),
                ("a.pam", b"P7\nWIDTH 32000\nHEIGHT 32000\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n")):
            with self.subTest(name=name):
                self.one_line(name, data)


if __name__ == "__main__":
    unittest.main()
