"""What the clean command finds, does and reports."""

import json
import os
import unittest

import numpy as np
from PIL import Image

from tool_case import ROOT, ToolCase, as_array, text_page

SAMPLES = os.path.join(ROOT, "examples", "pages")


def line_contrast(ink):
    """How sharply the rows of ink and of paper alternate: highest when the lines lie level."""
    return np.abs(np.diff(1.0 * ink.sum(axis=1))).sum() / ink.sum()


class Clean(ToolCase):
    def test_known_skews_are_measured_and_straightened(self):
        for degrees, *options in ((-4.0,), (-1.5,), (-0.4,), (0.5,), (2.0,), (7.0,), (-3.0, "--for", "ocr")):
            skewed = text_page(degrees)
            page, _, straight = self.clean(*options, image=skewed)
            self.assertAlmostEqual(page["skew"]["degrees"], degrees, delta=0.1)
            self.assertGreater(page["skew"]["confidence"], 1.5)
            self.assertGreater(straight.shape[1], 600)
            self.assertGreater(line_contrast(straight), 1.4 * line_contrast(~as_array(skewed)))
            again, = self.record("clean", "a.tif", "-o", "b.tif", "--overwrite")
            self.assertAlmostEqual(again["pages"][0]["skew"]["degrees"], 0, delta=0.15)

    def test_sample_pages(self):
        for name, degrees in (("letter.jpg", 1.3), ("form.jpg", 3.3)):
            sample = os.path.join(SAMPLES, name)
            for options in ((), ("--for", "ocr", "--no-prepare", "--no-crop-border")):
                page = self.record("clean", sample, "-o", "out.tif", "--overwrite", *options)[0]["pages"][0]
                self.assertAlmostEqual(page["skew"]["degrees"], degrees, delta=0.12)
                self.assertEqual(page["output"]["kind"], "bitonal")

    def test_thresholds(self):
        ramp = np.tile(np.arange(256, dtype=np.uint8), (40, 1))
        self.save("a.png", ramp)
        for threshold in (1, 100, 255, "auto"):
            page = self.record("binarize", "a.png", "-o", "a.tif", "--overwrite", "--threshold",
                               threshold)[0]["pages"][0]
            self.assertTrue((as_array(self.pages("a.tif")[0]) == (ramp >= page["threshold"])).all())
            self.assertIn(page["threshold"], range(120, 136) if threshold == "auto" else [threshold])

    def test_ink_of_a_single_grey_is_not_lost(self):
        pixels = np.full((50, 70), 200, np.uint8)
        pixels[10:20, 10:40] = 50
        self.save("a.png", pixels)
        for method, threshold in (("otsu", 51), ("gradient", None)):
            page = self.record("binarize", "a.png", "-o", "a.tif", "--overwrite", "--binarize",
                               method)[0]["pages"][0]
            self.assertTrue((as_array(self.pages("a.tif")[0]) == (pixels == 200)).all(), method)
            self.assertEqual(page["threshold"], threshold)

    def test_skipped_steps_say_why(self):
        noise = np.random.default_rng(3).integers(0, 256, (300, 200), dtype=np.uint8)
        cases = [(noise, ["--threshold", "128"], "no clear skew (confidence "),
                 (np.full((300, 200), 255, np.uint8), [], "no ink on the page"),
                 (noise[:31], [], "smaller than 32 pixels a side"),
                 (text_page(), [], "already straight (confidence "),
                 (text_page(2), ["--no-deskew"], "switched off"),
                 (text_page(2), ["--skew", "0"], "already straight (as given)"),
                 (Image.new("1", (32767, 400), 1), ["--skew", "10"],
                  "straight it would be larger than 32767 pixels a side (as given)")]
        for image, options, why in cases:
            with self.subTest(why=why):
                page, steps, _ = self.clean(*options, image=image)
                self.assertEqual(steps["deskew"]["status"], "skipped")
                self.assertTrue(steps["deskew"]["why"].startswith(why), steps["deskew"]["why"])
                self.assertEqual([page["output"][side] for side in ("width", "height")],
                                 [page["width"], page["height"]])
                words = self.good("clean", "a.png", "-o", "a.tif", "--overwrite", *options, "-v").stdout
                self.assertIn("  deskew: skipped: " + steps["deskew"]["why"] + "\n", words.decode())

    def test_given_skew(self):
        page, _, straight = self.clean("--skew", "3", image=text_page(3))
        self.assertEqual(page["skew"], {"degrees": page["skew"]["degrees"], "numerator": 27,
                                        "denominator": 512, "confidence": None})
        self.assertGreater(line_contrast(straight), 1.4 * line_contrast(~as_array(text_page(3))))


def specks(page, count=150, side=2, seed=1):
    """The page with square black specks on it, away from one another and from the edges."""
    page = np.array(page.convert("L"))
    random = np.random.default_rng(seed)
    for y, x in random.integers(2, np.array(page.shape)[None] // 8 - 2, (count, 2)) * 8:
        page[y:y + side, x:x + side] = 0
    return Image.fromarray(page)


class Cleaning(ToolCase):
    """Steps that take ink away, each on a page that shows what must go and what must stay."""

    def test_keep_near_protects_dots(self):
        page = np.full((400, 400), 255, np.uint8)
        page[100:140, 100:140] = 0
        page[92:94, 110:112] = 0    # 6 rows above the square
        page[300:302, 300:302] = 0  # alone
        for distance, dots in ((0, False), (9, True)):
            _, _, ink = self.clean("--despeckle", 9, "--despeckle-keep-near", distance, "--no-deskew",
                                   image=page)
            self.assertEqual((ink[90:96].any(), ink[290:310].any()), (dots, False))

    def test_specks_near_letters_or_in_a_row_are_no_dirt(self):
        page = np.full((800, 600), 255, np.uint8)
        for x in range(60, 300, 30):
            page[100:120, x:x + 18] = 0
            page[104:116, x + 5:x + 13] = 255      # letters of strokes
        page[92:94, 70:72] = page[118:120, 292:294] = 0    # dots
        page[92:94, 98:100] = page[92:94, 103:105] = page[88:90, 100:102] = 0    # three over one letter
        for x in range(320, 520, 12):
            page[117:119, x:x + 2] = 0
        page[400:402, 300:302] = page[405:407, 303:305] = page[500:502, 90:92] = 0
        dirt = np.s_[390:510]
        for options in ((), ("--for", "ocr", "--no-crop-border")):
            _, steps, ink = self.clean("--no-deskew", *options, image=page)
            self.assertFalse(ink[dirt].any(), options)
            self.assertTrue((ink[:390] == (page[:390] == 0)).all(), options)

    def test_specks_scale_with_the_resolution(self):
        for dpi, side in ((300, 2), (600, 4)):
            page = specks(Image.new("L", (400, 400), 255), 30, side)
            self.assertFalse(self.clean("--force", image=page, dpi=(dpi, dpi))[2].any())

    def test_negatives_are_cleaned_like_their_pages(self):
        shade = np.linspace(1, 0.6, 600)
        grey = Image.fromarray((np.asarray(text_page(1.5)) * shade).astype(np.uint8))
        for page in (grey, specks(text_page(1.5)).convert("1")):
            negative = Image.fromarray(~np.asarray(page))
            for options in ((), ("--for", "ocr")):
                _, _, ink = self.clean(*options, image=page)
                _, steps, light = self.clean(*options, image=negative)
                self.assertEqual(steps["negative"]["status"], "done")
                self.assertTrue((light == ~ink).all(), (page.mode, options))

    def test_faint_print_is_kept_or_missed_aloud(self):
        dark, faint = (self.clean("--no-deskew", image=text_page(ink=ink))[2] for ink in (20, 212))
        self.assertLess((dark ^ faint).sum(), 0.1 * dark.sum())
        for ink, is_missed in ((212, False), (222, True), (235, False)):
            _, steps, _ = self.clean(image=text_page(ink=ink))
            self.assertEqual(steps["binarize"]["warning"], is_missed)

    def test_too_much_ink_is_not_taken(self):
        _, steps, ink = self.clean(image=specks(Image.new("L", (600, 800), 255), 200))
        self.assertEqual(steps["despeckle"]["status"], "skipped")
        self.assertIn("would take 100 % of the ink", steps["despeckle"]["why"])
        self.assertTrue(ink.any())
        _, steps, ink = self.clean("--force")
        self.assertEqual((steps["despeckle"]["status"], ink.any()), ("done", False))

    def test_lines(self):
        ruled = np.array(text_page())
        ruled[400:403, 20:580] = 20
        ruled[20:780, 300:303] = 20
        for asked, rows, columns in ((None, True, True), ("horizontal", False, True),
                                     ("vertical", True, False), ("horizontal,vertical", False, False)):
            options = ["--remove-lines", asked] if asked else []
            _, steps, ink = self.clean("--no-deskew", "--force", *options, image=ruled)
            self.assertEqual(ink[400:403, 20:60].all(), rows, asked)
            self.assertEqual(ink[20:60, 300:303].all(), columns, asked)
            self.assertEqual(steps["unline"]["status"], "done" if asked else "skipped")

    def test_border(self):
        page = np.array(text_page())
        page[:, :40] = 10
        for kind in ("L", "RGB"):
            record, steps, ink = self.clean("--crop-border", "--no-deskew",
                                            image=Image.fromarray(page).convert(kind))
            self.assertEqual(record["output"]["width"], 600)
            self.assertIn(record["content"]["x"], range(40, 56))
            self.assertEqual(steps["crop"]["why"], "content {width} x {height} pixels at {x}, {y}"
                             .format(**record["content"]))
            self.assertFalse(ink[:, :40].any())
            self.assertGreater(ink[:, 60:].sum(), 1000)


class ForReading(ToolCase):
    def read(self, image, *options, **how):
        _, steps, ink = self.clean("--for", "ocr", *options, image=image, **how)
        return ink, steps

    def test_can_be_switched_step_by_step(self):
        for option, step in (("--no-despeckle", "despeckle"), ("--no-crop-border", "crop"),
                             ("--no-remove-lines", "unline"), ("--no-deskew", "deskew"),
                             ("--no-prepare", "prepare"), ("--quiet", None)):
            _, steps = self.read(text_page(), option)
            off = [name for name in steps if steps[name]["why"] == "switched off"]
            self.assertEqual(off, [step] if step else [])

    def test_evens_the_light_and_takes_salt_and_pepper_off(self):
        page = np.asarray(text_page(), np.float32)
        plain, _ = self.read(text_page())
        rng = np.random.default_rng(3)
        for slope, noise in ((0.0, 0), (0.8, 0), (0.0, 0.04)):
            shaded = (page * (1.0 - slope * np.linspace(0, 1, page.shape[1]))).astype(np.uint8)
            for grey in (0, 255):
                shaded[rng.random(page.shape) < noise] = grey
            for method in ("paper", "gradient"):
                ink, steps = self.read(shaded, "--binarize", method)
                self.assertEqual("specks over" in steps["prepare"]["why"], noise > 0)
                self.assertEqual(steps["prepare"]["ink_removed"] is not None, noise > 0)
                self.assertEqual("light" in steps["prepare"]["why"], method == "gradient")
                self.assertLess((ink ^ plain).sum(), (0.25 if noise else 0.06) * plain.sum(), slope)
                self.assertLess(ink[:50].mean(), 0.001)

    def test_doubles_coarse_pages(self):
        for dpi, factor in ((150, 2), (199, 2), (200, 1)):
            ink, _ = self.read(text_page(), "--no-deskew", dpi=(dpi, dpi))
            self.assertEqual(ink.shape, (800 * factor, 600 * factor))
            self.assertAlmostEqual(self.pages("a.tif")[0].info["dpi"][0], dpi * factor, delta=1)

    def test_takes_lines_fainter_than_the_text_with_their_crossings(self):
        plain, _ = self.read(text_page(), "--no-deskew")
        page = np.array(text_page(), np.float32)
        for at in range(15, 600, 95):
            page[at:at + 4] *= 0.66
            page[:, at:at + 4] *= 0.66
        ink, _ = self.read(page.astype(np.uint8), "--no-deskew")
        self.assertLess((ink & ~plain).sum(), 0.02 * plain.sum())
        self.assertLess((plain & ~ink).sum(), 0.06 * plain.sum())    # stems along a line

    def test_keeps_print_in_the_dark(self):
        shade = np.where(np.arange(600) < 240, 0.35, 1.0)
        ink, steps = self.read((np.array(text_page()) * shade).astype(np.uint8), "--no-deskew")
        self.assertEqual(steps["crop"]["status"], "skipped")
        self.assertGreater(ink[:, 60:230].mean(), 0.5 * ink[:, 250:540].mean())


class Record(ToolCase):
    def test_schema(self):
        self.save("in.tif", text_page(2).convert("RGB"), text_page(), dpi=(300, 300))
        document = json.loads(self.good("clean", "in.tif", "-o", "out.tif", "--json").stdout)
        self.assertEqual(list(document), ["program", "files"])
        file, = document["files"]
        pages = file.pop("pages")
        self.assertEqual(file, {"input": "in.tif", "format": "TIFF", "error": None, "outputs": ["out.tif"]})
        self.assertEqual([page["page"] for page in pages], [1, 2])
        page = pages[0]
        self.assertEqual(set(page), {"page", "kind", "width", "height", "dpi", "dpi_source", "dpi_reason", "dpi_stated", "skew",
                                     "threshold", "content", "steps", "output", "seconds"})
        self.assertEqual(set(page["skew"]), {"degrees", "numerator", "denominator", "confidence"})
        self.assertEqual([step["name"] for step in page["steps"]],
                         ["orientation", "crop", "binarize", "despeckle", "deskew", "unline"])
        for step in page["steps"]:
            self.assertEqual(set(step), {"name", "status", "why", "ink_removed", "warning", "seconds"})
        self.assertEqual(set(page["output"]), {"kind", "width", "height", "dpi"})
        self.assertGreater(page["seconds"], 0)

    def test_failures_are_recorded(self):
        self.save("a.png", text_page())
        done = self.run_tool("clean", "a.png", "missing.png", "-o", ".", "--json")
        self.assertEqual(done.returncode, 1)
        good, bad = json.loads(done.stdout)["files"]
        self.assertEqual((good["error"], good["outputs"]), (None, ["./a.tif"]))
        self.assertEqual((bad["error"], bad["pages"], bad["outputs"]),
                         ("No such file or directory", [], []))

    def test_record_and_page_on_one_stream_do_not_mix(self):
        self.clean(image=text_page(2))
        done = self.run_tool("clean", "a.png", "-o", "-", "--json")
        self.assertEqual(done.stdout, self.read("a.tif"))
        self.assertEqual(json.loads(done.stderr)["files"][0]["outputs"], ["-"])

    def test_apply_to_the_same_and_to_another_scan(self):
        self.save("in.png", text_page(3))
        self.write("found.json", self.good("clean", "in.png", "-o", "a.tif", "--binarize", "otsu",
                                           "--json").stdout)
        self.good("clean", "in.png", "-o", "again.tif", "--apply", "found.json")
        self.assertEqual(self.read("again.tif"), self.read("a.tif"))
        found = json.loads(self.read("found.json"))["files"][0]["pages"][0]
        page, steps, _ = self.clean("--apply", "found.json", image=np.full((500, 400), 240, np.uint8))
        self.assertEqual(page["threshold"], found["threshold"])
        self.assertEqual(page["skew"]["numerator"], found["skew"]["numerator"])
        self.assertEqual([name for name in steps if "(as recorded)" in steps[name]["why"]],
                         ["binarize", "deskew"])

    def test_apply_refuses_what_does_not_fit(self):
        self.save("two.tif", text_page(), text_page())
        self.save("a.png", text_page())
        self.write("found.json", self.run_tool("clean", "a.png", "-o", "-", "--json").stderr)
        for record, what in (("found.json", "two.tif: holds 2 pages, but found.json records 1"),
                             ("none.json", "none.json: No such file or directory")):
            self.fails("clean", "two.tif", "-o", "o.tif", "--apply", record, lines=[what])
        for skew, denominator, threshold, good in (
                (12, 512, 143, True), (2**32 + 12, 512, None, False), (12, 2**32 + 512, None, False),
                (2**64 - 12, 512, None, False), (1e30, 512, None, False), (12.5, 512, None, False),
                (True, 512, None, False), (0, 0, None, False), (0, 512, 2**32 + 143, False)):
            page = {"skew": {"numerator": skew, "denominator": denominator}, "threshold": threshold}
            self.write("r.json", json.dumps({"files": [{"pages": [page]}]}).encode())
            run = ("clean", "a.png", "-o", "o.tif", "--apply", "r.json")
            if good:
                self.good(*run)
                os.remove(self.path("o.tif"))
            else:
                self.assertTrue(self.one_error(*run).startswith("vemoprepro: r.json: not a record of --json"))
        for hostile in (b"[" * 200000, b'{"x":' * 200000, b'"' + b"x" * 3000000,
                        b'{"files":' + b"9" * 3000000 + b"}",
                        b"{" + b",".join(b'"k%d":1' % i for i in range(200000)) + b"}",
                        b'{"files":[' + b'{"pages":[]},' * 300000 + b'{"pages":[]}]}'):
            self.write("r.json", hostile)
            self.assertLess(len(self.one_error(*run)), 300)


class SideBySide(ToolCase):
    def test_jobs_change_nothing(self):
        pages = [text_page(angle / 2, (300 + 60 * (angle % 3), 500)) for angle in range(-5, 6)]
        self.save("in.tif", *pages)
        results = []
        for jobs in (1, 2, 5):
            words = self.good("clean", "in.tif", "-o", "o.tif", "--overwrite", "-j", jobs).stdout
            results.append((words, self.read("o.tif")))
        self.assertEqual(results[0][0].count(b"\n"), 11)
        self.assertEqual(results, [results[0]] * 3)

    def test_a_failure_leaves_the_other_inputs_alone(self):
        for index in range(6):
            self.save(f"{index}.png", text_page(index / 2, (300, 400)))
        self.write("3.png", self.read("3.png")[:2000])
        os.mkdir(self.path("out"))
        for jobs in (1, 4):
            self.fails("clean", *[f"{index}.png" for index in range(6)], "-o", "out", "--overwrite",
                       "-j", jobs, lines=["3.png: damaged or truncated PNG file"])
            self.assertEqual(sorted(os.listdir(self.path("out"))),
                             [f"{index}.tif" for index in range(6) if index != 3])


if __name__ == "__main__":
    unittest.main()
