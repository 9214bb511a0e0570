"""Files that ask for more time or memory than their pages are worth."""

import io
import struct
import time
import unittest
import zlib

from PIL import Image

from tool_case import ToolCase, memory_limit, raw_tiff


def tiny_pages(count, back_to=None):
    """A TIFF file of pages of 8 x 1 pixels; the chain ends, or goes back to a page."""
    tags = ((256, 8), (257, 1), (258, 1), (259, 1), (262, 0), (273, 8), (277, 1), (278, 1), (279, 1))
    size = 2 + 12 * len(tags) + 4
    directory = struct.pack("<H", len(tags)) + b"".join(struct.pack("<HHII", tag, 4, 1, value) for tag, value in tags)
    places = [10 + size * i for i in range(count)]
    follow = places[1:] + [0 if back_to is None else places[back_to]]
    return b"II*\0" + struct.pack("<I", 10) + b"\x80\0" + b"".join(directory + struct.pack("<I", at) for at in follow)


def tiff_of_shared_profile(count, size):
    """Pages of 8 x 1 pixels that all have the same colour profile."""
    pages = tiny_pages(count)
    tags = ((256, 8), (257, 1), (258, 1), (259, 1), (262, 0), (273, 8), (277, 1), (278, 1), (279, 1))
    length = 2 + 12 * (len(tags) + 1) + 4
    profile = struct.pack("<HHII", 34675, 7, size, 10 + length * count)
    entries = struct.pack("<H", len(tags) + 1) + pages[12:12 + 12 * len(tags)] + profile
    follow = [10 + length * i for i in range(1, count)] + [0]
    return pages[:10] + b"".join(entries + struct.pack("<I", at) for at in follow) + bytes(size)


def codestream(side, tile, block=4, precinct=None, layers=1):
    """A grey JPEG 2000 page of nothing, of 6 resolutions."""
    def segment(marker, data):
        return struct.pack(">HH", marker, len(data) + 2) + data
    size = struct.pack(">HIIIIIIIIH3B", 0, side, side, 0, 0, tile, tile, 0, 0, 1, 7, 1, 1)
    style = struct.pack(">BBHBBBBBB", precinct is not None, 0, layers, 0, 5, block, block, 0, 1)
    return (b"\xff\x4f" + segment(0xFF51, size) +
            segment(0xFF52, style + bytes([precinct] * 6 if precinct is not None else [])) +
            segment(0xFF5C, b"\x40" + bytes([64] * 16)) +
            segment(0xFF90, struct.pack(">HIBB", 0, 1014, 0, 1)) + b"\xff\x93" + bytes(1000) + b"\xff\xd9")


def saved(format):
    file = io.BytesIO()
    Image.new("L", (20, 20), 7).save(file, format)
    return file.getvalue()


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

    def test_data_that_pages_share(self):
        self.assertIn("many times as large as the file", self.one_line("a.tif", tiff_of_shared_profile(3000, 1 << 20)))

    def test_tiny_pieces_of_jpeg_2000(self):
        for piece in (dict(tile=1), dict(block=0), dict(precinct=0x11), dict(precinct=0x44, layers=60000)):
            page = codestream(**{"side": 255, "tile": 255, **piece} if "tile" in piece else {"side": 2000, "tile": 2000, **piece})
            self.assertIn("very many tiles, blocks or layers", self.one_line("a.jp2", page))
        self.write("a.jp2", codestream(2000, 2000))
        self.good("info", "a.jp2")

    def test_what_nobody_asks_for_costs_nothing(self):
        """Extensions in pieces of one byte, texts of a thousand times their size, an empty directory of 65,535 tags."""
        gif, png, jpeg = saved("GIF"), saved("PNG"), saved("JPEG")
        picture = gif.index(b",")
        text = b"zTXtkey\0\0" + zlib.compress(bytes(7900000), 9)
        text = struct.pack(">I", len(text) - 4) + text + struct.pack(">I", zlib.crc32(text))
        tags = b"\xff\xe1" + struct.pack(">H", 18) + b"Exif\0\0MM\0*\0\0\0\x08\xff\xff"
        for name, data in (("a.gif", gif[:picture] + b"!\xfe" + b"\1x" * 2000000 + b"\0" + gif[picture:]),
                           ("a.png", png[:33] + text * 200 + png[33:]),
                           ("a.jpg", jpeg[:2] + tags * 100000 + jpeg[2:])):
            with self.subTest(name=name):
                self.write(name, data)
                start = time.monotonic()
                self.good("info", name, preexec_fn=memory_limit(100))
                self.assertLess(time.monotonic() - start, 5)

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
