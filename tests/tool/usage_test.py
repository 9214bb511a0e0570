"""Command lines that cannot be run: what was meant is guessed, and where help is found is said."""

import os
import pty
import subprocess
import unittest

from tool_case import PROGRAM, ToolCase, text_page


class Usage(ToolCase):
    def test_a_line_without_a_command(self):
        self.write("scan.jpg", b"")
        for first, said in ((None, None),
                            ("scan.jpg", "the command is missing before 'scan.jpg'; "
                                         "to clean it: vemoprepro clean scan.jpg -o OUT"),
                            ("claen", "there is no command 'claen'; did you mean 'clean'?"),
                            ("desk", "there is no command 'desk'; did you mean 'deskew'?"),
                            ("xyzzy", "there is no command 'xyzzy'"),
                            ("help", "there is no command 'help'; did you mean '--help'?"),
                            ("--overwrite", "the command comes first, before '--overwrite'")):
            done = self.run_tool(*([first, "a.png"] if first else []))
            self.assertEqual((done.returncode, done.stdout), (2, b""), first)
            if said:
                self.assertEqual(done.errors.pop(0), "vemoprepro: " + said)
            help_text = "\n".join(done.errors)
            self.assertIn("  vemoprepro clean scan.jpg -o page.tif ", help_text)
            self.assertIn("'vemoprepro clean --help'", help_text)

    def test_options_that_are_not_there(self):
        for option, said in (("--despekle", "there is no option '--despekle'; did you mean '--despeckle'?"),
                             ("--skew", "--skew: the value is missing"),
                             ("--skew=x", "--skew = x is no number"),
                             ("-ob.tif", "--output: is given twice"),
                             ("-r", "-o OUT is missing: where is the result to go?"),
                             ("--outptu=a.tif", "there is no option '--outptu'; did you mean '--output'?")):
            done = self.run_tool("clean", "a.png", *(("-o", "a.tif") if option[1:3] in ("-d", "-s", "ob") else ()), option)
            self.assertEqual((done.returncode, done.errors),
                             (2, ["vemoprepro: " + said, "Try 'vemoprepro clean --help'."]))

    def test_names_that_say_another_format(self):
        for name, option in (("x.jp2", "png"), ("x.tif", "png"), ("x.pdf", "tiff")):
            self.usage("clean", "a.png", "-o", name, "--format", option)
        self.save("a.png", text_page())
        self.good("clean", "a.png", "-o", "page.7", "--format", "png")
        self.good("clean", "a.png", "-o", "x.pnm", "--format", "pbm")

    def test_no_page_goes_to_a_terminal(self):
        self.save("a.png", text_page())
        try:
            master, slave = pty.openpty()
        except OSError:
            self.skipTest("there are no terminals here")
        self.addCleanup(os.close, master)
        self.addCleanup(os.close, slave)
        for name in ("-", "/dev/stdout", os.ttyname(slave)):
            done = subprocess.run([PROGRAM, "clean", "a.png", "-o", name], cwd=self.here, stdout=slave,
                                  stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 2)
            self.assertIn(b"is a terminal", done.stderr)


if __name__ == "__main__":
    unittest.main()
