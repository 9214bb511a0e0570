"""A run that a signal ends says how far it got, and leaves the record and the report of what is done."""

import json
import os
import signal
import subprocess
import unittest

from tool_case import PROGRAM, ToolCase, text_page


def take_interrupts():
    """In the background of a script they are ignored, and what is ignored stays so."""
    signal.signal(signal.SIGINT, signal.SIG_DFL)


class Interrupts(ToolCase):
    def setUp(self):
        super().setUp()
        self.save("a.png", text_page(1))
        self.save("book.tif", *[text_page(1)] * 40)
        self.save("c.png", text_page(1))

    def interrupted(self, number, *arguments):
        """The last line on standard error and all of standard output, of a run that is interrupted in
        the middle of book.tif."""
        with subprocess.Popen([PROGRAM, "clean", *arguments, "-j1", "-v", "--json"], cwd=self.here,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              preexec_fn=take_interrupts) as running:
            while b"book.tif: page 2 " not in running.stderr.readline():
                self.assertIsNone(running.poll())
            running.send_signal(number)
            record, said = running.communicate()
            self.assertEqual(running.returncode, -number)
        return said.decode().splitlines()[-1], json.loads(record)["files"]

    def test_what_is_done_is_said_and_kept(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            said, files = self.interrupted(number, "a.png", "book.tif", "c.png", "-o", "out",
                                           "--report", "look", "--overwrite")
            self.assertRegex(said, r"^vemoprepro: interrupted: 1 of 3 files done \(1 page\), and \d+ of "
                                   r"40 pages of book\.tif, which is not written$")
            self.assertEqual([file["input"] for file in files], ["a.png", "book.tif"])
            self.assertEqual([file["error"] for file in files], [None, "interrupted"])
            self.assertEqual([len(file["outputs"]) for file in files], [1, 0])
            self.assertEqual(os.listdir(self.path("out")), ["a.tif"])
            self.assertIn(b"interrupted", self.read("look/index.html"))

    def test_one_file(self):
        said, _ = self.interrupted(signal.SIGINT, "book.tif", "-o", "o.tif")
        self.assertRegex(said, r"^vemoprepro: interrupted: \d+ of 40 pages of book\.tif, which is not written$")
        self.assertEqual(sorted(os.listdir(self.here)), ["a.png", "book.tif", "c.png"])


if __name__ == "__main__":
    unittest.main()
