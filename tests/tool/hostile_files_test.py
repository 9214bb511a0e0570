"""Files that ask for more time or memory than their pages are worth."""

import resource
import struct
import unittest

from tool_case import ToolCase, raw_tiff


def tiny_pages(count, back_to=None):
    """A TIFF file of pages of 8 x 1 pixels; the chain ends, or goes back to a page."""
    tags = ((256, 8), (257, 1), (258, 1), (259, 1), (262, 0), (273, 8), (277, 1), (278, 1), (279, 1))
    size = 2 + 12 * len(tags) + 4
    directory = struct.pack("<H", len(tags)) + b"".join(struct.pack("<HHII", tag, 4, 1, value) for tag, value in tags)
    places = [10 + size * i for i in range(count)]
    follow = places[1:] + [0 if back_to is None else places[back_to]]
    return b"II*\0" + struct.pack("<I", 10) + b"\x80\0" + b"".join(directory + struct.pack("<I", at) for at in follow)


class HostileFiles(ToolCase):
    def one_line(self, name, data, megabytes=200):
        """What the run says, in little memory and time."""
        self.write(name, data)
        limit = (megabytes << 20,) * 2
        return self.one_error("info", name, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_DATA, limit))

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


if __name__ == "__main__":
    unittest.main()
