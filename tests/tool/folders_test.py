"""Folders as inputs and as outputs, and runs that are taken up again."""

import os
import shutil
import unittest

from tool_case import ToolCase, text_page


class Folders(ToolCase):
    def setUp(self):
        super().setUp()
        self.save("page.png", text_page(1, (200, 200)))
        for name in ("s10.png", "s9.PNG", "b/s9.png", "b/c/t.png", ".hidden.png", ".h/x.png"):
            self.put("scans/" + name)
        self.write("scans/notes.txt", b"")

    def put(self, name):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        shutil.copy(self.path("page.png"), self.path(name))

    def files(self, name):
        return sorted(os.path.relpath(os.path.join(folder, file), self.path(name))
                      for folder, _, files in os.walk(self.path(name)) for file in files)

    def test_a_folder_means_its_images(self):
        self.assertEqual([file["input"] for file in self.info("scans")], ["scans/s9.PNG", "scans/s10.png"])
        self.assertEqual([file["input"] for file in self.info("scans/", "-r")],
                         ["scans/s9.PNG", "scans/s10.png", "scans/b/s9.png", "scans/b/c/t.png"])
        self.assertIn("left out, no image by the name: notes.txt",
                      self.good("info", "scans").stdout.decode())
        os.symlink("gone.png", self.path("scans/lost.png"))
        self.fails("info", "scans", lines=["scans/lost.png: No such file or directory"])
        os.makedirs(self.path("empty/more"))
        self.fails("info", "empty", lines=["empty/: no images in it (-r looks into its folders)"])
        self.fails("info", "empty", "-r", lines=["empty/: no images in it"])

    def test_the_folders_below_are_kept(self):
        self.good("clean", "-r", "scans", "-o", "out")
        self.assertEqual(self.files("out"), ["b/c/t.tif", "b/s9.tif", "s10.tif", "s9.tif"])

    def test_outputs_and_reports_are_no_inputs(self):
        self.good("clean", "-r", "scans", "-o", "scans/out", "--report", "scans/look")
        count = len(self.files("scans/out"))
        self.good("clean", "-r", "scans", "-o", "scans/out", "--overwrite")
        self.assertEqual(len(self.files("scans/out")), count)
        for arguments in (("-o", "scans"), ("-o", "out", "--report", "scans")):
            self.usage("clean", "scans", *arguments)

    def test_a_folder_is_made_and_not_left_empty(self):
        self.good("clean", "page.png", "-o", "new/")
        self.assertEqual(self.files("new"), ["page.tif"])
        self.write("bad.png", b"")
        self.one_error("clean", "bad.png", "-o", "other/")

    def test_several_inputs_need_a_folder(self):
        self.write("there", b"")
        for inputs in (("page.png", "scans/s10.png"), ("scans",)):
            for name in ("all.tif", "all.pdf", "there"):
                self.usage("clean", *inputs, "-o", name)
                self.assertIn("several inputs need a folder",
                              self.run_tool("clean", *inputs, "-o", name).errors[0])

    def test_two_inputs_of_one_output_are_refused_at_once(self):
        self.put("scans/s10.jpg")
        self.put("scans/two-1.png")
        self.save("two.tif", text_page(), text_page())
        for arguments, said in (
                (["scans"], "scans/s10.jpg and scans/s10.png would both become out/s10.tif"),
                (["page.png", "page.png"], "page.png: is named twice"),
                (["two.tif", "scans/two-1.png", "--format", "png"],
                 "two.tif and scans/two-1.png would both become out/two-1.png")):
            self.usage("clean", *arguments, "-o", "out")
            self.assertEqual(self.run_tool("clean", *arguments, "-o", "out").errors[0],
                             f"vemoprepro: {said}; nothing is written")
            self.assertFalse(os.path.exists(self.path("out")))

    def test_what_is_done_is_skipped(self):
        def inputs_done(*options):
            files = self.record("clean", "-r", "scans", "-o", "out", "--skip-existing", *options)
            return [os.path.basename(file["input"]) for file in files if not file.get("skipped")]
        self.assertEqual(len(inputs_done()), 4)
        os.remove(self.path("out/b/s9.tif"))
        self.assertEqual(inputs_done(), ["s9.png"])
        self.save("two.tif", text_page(), text_page())
        options = ("clean", "two.tif", "-o", "out", "--format", "png", "--skip-existing")
        self.good(*options)
        self.assertIn(b"two.tif: skipped: out/two-1.png exists", self.good(*options).stdout)
        os.remove(self.path("out/two-2.png"))
        self.fails(*options, lines=["out/two-1.png: exists already (--overwrite replaces it)"])


if __name__ == "__main__":
    unittest.main()
