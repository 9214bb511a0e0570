"""What the clean command finds, does and reports."""

import json
import os
import unittest

import numpy as np
from PIL import Image

from tool_case import ROOT, ToolCase, as_array, text_page

SAMPLES = os.path.join(ROOT, "examples", "pages")


def line_contrast(image):
    """How sharply the rows of ink and of paper alternate: highest when the lines lie level."""
    ink = 1.0 - as_array(image)
    return np.abs(np.diff(ink.sum(axis=1))).sum() / ink.sum()


class Clean(ToolCase):
    def test_known_skews_are_measured_and_straightened(self):
        for degrees in (-4.0, -1.5, -0.4, 0.5, 2.0, 7.0):
            self.save("a.png", text_page(degrees))
            file, = self.record("clean", "a.png", "-o", "a.tif", "--overwrite")
            skew = file["pages"][0]["skew"]
            self.assertAlmostEqual(skew["degrees"], degrees, delta=0.1)
            self.assertGreater(skew["confidence"], 1.5)
            straight, = self.pages("a.tif")
            self.assertGreater(straight.width, 600)
            self.assertGreater(line_contrast(straight), 1.4 * line_contrast(text_page(degrees)))
            again, = self.record("clean", "a.tif", "-o", "b.tif", "--overwrite")
            self.assertAlmostEqual(again["pages"][0]["skew"]["degrees"], 0, delta=0.15)

    def test_sample_pages(self):
        for name, degrees in (("letter.jpg", 1.3), ("form.jpg", 3.3)):
            sample = os.path.join(SAMPLES, name)
            with self.subTest(name=name):
                page = self.record("clean", sample, "-o", "out.tif", "--overwrite")[0]["pages"][0]
                self.assertAlmostEqual(page["skew"]["degrees"], degrees, delta=0.12)
                self.assertEqual(page["output"]["kind"], "bitonal")

    def test_thresholds(self):
        ramp = np.tile(np.arange(256, dtype=np.uint8), (40, 1))
        self.save("a.png", ramp)
        for threshold in (1, 100, 255):
            self.good("binarize", "a.png", "-o", "a.tif", "--overwrite", "--threshold", threshold)
            self.assertTrue((as_array(self.pages("a.tif")[0]) == (ramp >= threshold)).all())
        page = self.record("binarize", "a.png", "-o", "a.tif", "--overwrite", "--threshold",
                           "auto")[0]["pages"][0]
        self.assertTrue((as_array(self.pages("a.tif")[0]) == (ramp >= page["threshold"])).all())
        self.assertIn(page["threshold"], range(120, 136))

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
        cases = [(noise, [], "no clear skew (confidence "),
                 (np.full((300, 200), 255, np.uint8), [], "no ink on the page"),
                 (noise[:31], [], "smaller than 32 pixels a side"),
                 (text_page(), [], "already straight (confidence "),
                 (text_page(2), ["--no-deskew"], "switched off"),
                 (text_page(2), ["--skew", "0"], "already straight (as given)")]
        for image, options, why in cases:
            with self.subTest(why=why):
                self.save("a.png", image)
                arguments = ["clean", "a.png", "-o", "a.tif", "--overwrite", *options]
                page = self.record(*arguments)[0]["pages"][0]
                step, = [step for step in page["steps"] if step["name"] == "deskew"]
                self.assertEqual(step["status"], "skipped")
                self.assertTrue(step["why"].startswith(why), step["why"])
                self.assertEqual((page["output"]["width"], page["output"]["height"]),
                                 (page["width"], page["height"]))
                words = self.good(*arguments, "-v").stdout.decode()
                self.assertIn("  deskew: skipped: " + step["why"] + "\n", words)

    def test_no_page_becomes_too_large(self):
        self.save("a.tif", Image.new("1", (32767, 400), 1), compression="group4")
        page, = self.record("clean", "a.tif", "-o", "b.tif", "--skew", 10)[0]["pages"]
        self.assertEqual(page["output"], {"kind": "bitonal", "width": 32767, "height": 400})
        self.assertIn("larger than 32767", page["steps"][4]["why"])

    def test_given_skew(self):
        self.save("a.png", text_page(3))
        page = self.record("clean", "a.png", "-o", "a.tif", "--skew", "3")[0]["pages"][0]
        self.assertEqual(page["skew"], {"degrees": page["skew"]["degrees"], "numerator": 27,
                                        "denominator": 512, "confidence": None})
        self.assertGreater(line_contrast(self.pages("a.tif")[0]), 1.4 * line_contrast(text_page(3)))


def specks(page, count=150, side=2, seed=1):
    """The page with square black specks on it, away from one another and from the edges."""
    page = np.array(page.convert("L"))
    random = np.random.default_rng(seed)
    for y, x in random.integers(2, np.array(page.shape)[None] // 8 - 2, (count, 2)) * 8:
        page[y:y + side, x:x + side] = 0
    return Image.fromarray(page)


class Cleaning(ToolCase):
    """Steps that take ink away, each on a page that shows what must go and what must stay."""

    def blank(self, size=(600, 800)):
        return Image.new("L", size, 255)

    def read_page(self, image):
        self.save("a.png", image, dpi=(300, 300))
        self.good("clean", "a.png", "-o", "a.tif", "--overwrite", "--no-deskew")
        return ~as_array(self.pages("a.tif")[0])

    def steps(self, *arguments):
        page, = self.record("clean", "a.png", "-o", "a.tif", "--overwrite", *arguments)[0]["pages"]
        return page, {step["name"]: step for step in page["steps"]}

    def test_specks_go_and_text_stays(self):
        text = text_page()
        self.save("a.png", text, dpi=(300, 300))
        clean, _ = self.steps("--no-despeckle")
        self.save("a.png", specks(text, 40), dpi=(300, 300))
        page, steps = self.steps()
        self.assertGreater(steps["despeckle"]["ink_removed"], 0)
        page, steps = self.steps("--despeckle", 0)
        self.assertEqual(steps["despeckle"]["why"], "switched off")
        self.assertEqual(clean["output"], page["output"])

    def test_keep_near_protects_dots(self):
        page = np.full((400, 400), 255, np.uint8)
        page[100:140, 100:140] = 0
        page[92:94, 110:112] = 0    # 6 rows above the square
        page[300:302, 300:302] = 0  # alone
        self.save("a.png", page, dpi=(300, 300))
        for distance, dots in ((0, 0), (9, 1)):
            self.steps("--despeckle", 9, "--despeckle-keep-near", distance, "--no-deskew")
            ink = ~as_array(self.pages("a.tif")[0])
            self.assertEqual((ink[90:96].any(), ink[290:310].any()), (dots == 1, False))

    def test_specks_scale_with_the_resolution(self):
        for dpi, side in ((300, 2), (600, 4)):
            self.save("a.png", specks(self.blank((400, 400)), 30, side),
                      dpi=(dpi, dpi))
            page, steps = self.steps("--force")
            self.assertTrue(as_array(self.pages("a.tif")[0]).all())

    def test_faint_print_is_kept(self):
        dark, faint = (self.read_page(text_page(ink=ink)) for ink in (20, 212))
        self.assertLess((dark ^ faint).sum(), 0.1 * dark.sum())

    def test_too_much_ink_is_not_taken(self):
        self.save("a.png", specks(self.blank(), 200), dpi=(300, 300))
        page, steps = self.steps()
        self.assertEqual(steps["despeckle"]["status"], "skipped")
        self.assertIn("would take 100 % of the ink (--force does it)", steps["despeckle"]["why"])
        self.assertFalse(as_array(self.pages("a.tif")[0]).all())
        page, steps = self.steps("--force")
        self.assertEqual(steps["despeckle"]["status"], "done")
        self.assertTrue(as_array(self.pages("a.tif")[0]).all())

    def test_lines(self):
        text = np.array(text_page().convert("L"))
        ruled = text.copy()
        ruled[400:403, 20:580] = 20
        ruled[20:780, 300:303] = 20
        self.save("a.png", ruled, dpi=(300, 300))
        for asked, rows, columns in (([], True, True), (["horizontal"], False, True),
                                     (["vertical"], True, False),
                                     (["horizontal,vertical"], False, False)):
            options = ["--no-deskew", "--force"] + (["--remove-lines", *asked] if asked else [])
            page, steps = self.steps(*options)
            ink = ~as_array(self.pages("a.tif")[0])
            self.assertEqual(ink[400:403, 20:60].all(), rows, asked)
            self.assertEqual(ink[20:60, 300:303].all(), columns, asked)
            self.assertEqual(steps["unline"]["status"], "done" if asked else "skipped")

    def test_border(self):
        page = np.array(text_page().convert("L"))
        page[:, :40] = 10
        for kind in ("L", "RGB"):
            self.save("a.png", Image.fromarray(page).convert(kind), dpi=(300, 300))
            record, steps = self.steps("--crop-border", "--no-deskew")
            self.assertEqual(record["output"]["width"], 600)
            self.assertIn(record["content"]["x"], range(40, 56))
            self.assertEqual(steps["crop"]["why"], "content {width} x {height} pixels at {x}, {y}"
                             .format(**record["content"]))
            ink = ~as_array(self.pages("a.tif")[0])
            self.assertFalse(ink[:, :40].any())
            self.assertGreater(ink[:, 60:].sum(), 1000)

    def test_the_reading_preset_can_be_switched_step_by_step(self):
        self.save("a.png", text_page(), dpi=(300, 300))
        for option, step in (("--no-despeckle", "despeckle"), ("--no-crop-border", "crop"),
                             ("--no-remove-lines", "unline"), ("--no-deskew", "deskew"),
                             ("--no-prepare", "prepare")):
            page, steps = self.steps("--for", "ocr")
            self.assertNotEqual(steps[step]["why"], "switched off")
            page, steps = self.steps("--for", "ocr", option)
            self.assertEqual(steps[step]["why"], "switched off")


    def read_bits(self, page, *options, dpi=300):
        self.save("a.png", page, dpi=(dpi, dpi))
        _, steps = self.steps("--for", "ocr", *options)
        return ~as_array(self.pages("a.tif")[0]), steps

    def test_reading_evens_the_light(self):
        page = np.asarray(text_page(), np.float32)
        plain, _ = self.read_bits(text_page())
        for slope in (0.0, 0.8):
            light = 1.0 - slope * np.linspace(0, 1, page.shape[1])[None, :]
            shaded, steps = self.read_bits(Image.fromarray((page * light).astype(np.uint8)))
            self.assertEqual(steps["prepare"]["status"], "done")
            self.assertLess((shaded ^ plain).sum(), 0.05 * plain.sum(), slope)

    def test_reading_takes_salt_and_pepper_off(self):
        rng = np.random.default_rng(3)
        page, plain = np.array(text_page()), self.read_bits(text_page())[0]
        page[rng.random(page.shape) < 0.04] = 0
        page[rng.random(page.shape) < 0.04] = 255
        cleaned, steps = self.read_bits(Image.fromarray(page))
        self.assertIn("specks", steps["prepare"]["why"])
        self.assertLess(cleaned[:50].mean(), 0.001)
        self.assertLess((cleaned ^ plain).sum(), 0.25 * plain.sum())

    def test_reading_doubles_coarse_pages(self):
        for dpi, factor in ((150, 2), (199, 2), (200, 1)):
            bits, _ = self.read_bits(text_page(), "--no-deskew", dpi=dpi)
            self.assertEqual(bits.shape, (800 * factor, 600 * factor))
            self.assertAlmostEqual(self.pages("a.tif")[0].info["dpi"][0], dpi * factor, delta=1)

    def test_reading_levels_grey_pages(self):
        for degrees in (-3.0, 2.0):
            self.read_bits(text_page(degrees))
            again, = self.record("clean", "a.tif", "-o", "b.tif", "--overwrite")
            self.assertAlmostEqual(again["pages"][0]["skew"]["degrees"], 0, delta=0.15)

    def test_reading_keeps_strokes_that_lie_along_a_rule(self):
        arches = np.full((600, 600), 235, np.uint8)
        for x in range(60, 540, 40):
            arches[199:225, x:x + 14] = 20
            arches[204:225, x + 4:x + 10] = 235
        ruled = arches.copy()
        ruled[200:203, 20:580] = 20     # within the upper bars, which are 5 pixels high
        for turned in (False, True):
            pages = [np.rot90(page) if turned else page for page in (arches, ruled)]
            plain, read = (self.read_bits(Image.fromarray(page), "--no-deskew")[0] for page in pages)
            self.assertLess((read ^ plain).sum(), 0.05 * plain.sum(), turned)

    def test_reading_follows_a_rule_and_leaves_a_screen(self):
        page = np.full((800, 1200), 235, np.uint8)
        rows, columns = np.indices((300, 500))
        page[400:700, 300:800] = np.where((rows % 6 < 3) | (columns % 6 < 2), 20, 235)
        page[100:102, 100:500] = 20    # a rule steps down by a pixel and ends in dashes
        page[101:103, 500:700] = 20
        for x in range(720, 900, 45):
            page[101:103, x:x + 25] = 20
        page[150:780, 1000:1004] = 20
        read, steps = self.read_bits(Image.fromarray(page), "--no-deskew", "--no-prepare")
        self.assertEqual(steps["unline"]["status"], "done")
        self.assertFalse(read[:380].any() or read[:, 900:].any())
        self.assertGreater(read[400:700, 300:800].mean(), 0.6)

    def test_reading_takes_rules_fainter_than_the_text_with_their_crossings(self):
        plain, _ = self.read_bits(text_page(), "--no-deskew")
        page = np.array(text_page(), np.float32)
        for at in range(15, 600, 95):
            page[at:at + 4] *= 0.66
            page[:, at:at + 4] *= 0.66
        read, _ = self.read_bits(Image.fromarray(page.astype(np.uint8)), "--no-deskew")
        self.assertLess((read & ~plain).sum(), 0.02 * plain.sum())
        self.assertLess((plain & ~read).sum(), 0.06 * plain.sum())    # stems along a rule

    def test_reading_keeps_print_in_the_dark(self):
        page = np.array(text_page())
        shade = np.where(np.arange(page.shape[1]) < 240, 0.35, 1.0)
        shaded, steps = self.read_bits(Image.fromarray((page * shade).astype(np.uint8)), "--no-deskew")
        self.assertEqual(steps["crop"]["status"], "skipped")
        self.assertGreater(shaded[:, 60:230].mean(), 0.5 * shaded[:, 250:540].mean())


class Record(ToolCase):
    def test_schema(self):
        self.save("in.tif", text_page(2).convert("RGB"), text_page(), dpi=(300, 300))
        document = json.loads(self.good("clean", "in.tif", "-o", "out.tif", "--json").stdout)
        self.assertEqual(list(document), ["program", "files"])
        file, = document["files"]
        self.assertEqual({key: file[key] for key in ("input", "format", "error", "outputs")},
                         {"input": "in.tif", "format": "TIFF", "error": None,
                          "outputs": ["out.tif"]})
        self.assertEqual([page["page"] for page in file["pages"]], [1, 2])
        page = file["pages"][0]
        self.assertEqual(set(page), {"page", "kind", "width", "height", "dpi", "dpi_source", "skew",
                                     "threshold", "content", "steps", "output", "seconds"})
        self.assertEqual(set(page["skew"]), {"degrees", "numerator", "denominator", "confidence"})
        self.assertEqual([step["name"] for step in page["steps"]],
                         ["orientation", "crop", "binarize", "despeckle", "deskew", "unline"])
        for step in page["steps"]:
            self.assertEqual(set(step), {"name", "status", "why", "ink_removed", "seconds"})
        self.assertEqual(set(page["output"]), {"kind", "width", "height"})
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
        self.save("a.png", text_page(2))
        self.good("clean", "a.png", "-o", "a.tif")
        done = self.run_tool("clean", "a.png", "-o", "-", "--json")
        self.assertEqual(done.stdout, self.read("a.tif"))
        self.assertEqual(json.loads(done.stderr)["files"][0]["outputs"], ["-"])

    def test_apply_gives_the_same_pages_again(self):
        self.save("in.tif", text_page(2), text_page(-1), text_page(0))
        record = self.good("clean", "in.tif", "-o", "out.tif", "--json").stdout
        self.write("found.json", record)
        self.good("clean", "in.tif", "-o", "again.tif", "--apply", "found.json")
        self.assertEqual(self.read("again.tif"), self.read("out.tif"))

    def test_apply_to_another_scan(self):
        self.save("in.png", text_page(3))
        self.write("found.json", self.good("clean", "in.png", "-o", "a.tif", "--binarize", "otsu",
                                           "--json").stdout)
        self.save("blank.png", np.full((500, 400), 240, np.uint8))
        page = self.record("clean", "blank.png", "-o", "b.tif", "--apply", "found.json")[0]["pages"][0]
        found = json.loads(self.read("found.json"))["files"][0]["pages"][0]
        self.assertEqual(page["threshold"], found["threshold"])
        self.assertEqual(page["skew"]["numerator"], found["skew"]["numerator"])
        self.assertEqual([step["name"] for step in page["steps"] if "(as recorded)" in step["why"]],
                         ["binarize", "deskew"])

    def test_apply_refuses_what_does_not_fit(self):
        self.save("two.tif", text_page(), text_page())
        self.save("a.png", text_page())
        self.write("found.json", self.run_tool("clean", "a.png", "-o", "-", "--json").stderr)
        self.fails("clean", "two.tif", "-o", "o.tif", "--apply", "found.json",
                   lines=["two.tif: holds 2 pages, but found.json records 1"])
        self.fails("clean", "two.tif", "-o", "o.tif", "--apply", "none.json",
                   lines=["none.json: No such file or directory"])
        self.write("odd.json", b'{"files": [{"pages": [{"skew": 7, "threshold": null}]}]}')
        done = self.run_tool("clean", "a.png", "-o", "o.tif", "--apply", "odd.json")
        self.assertEqual(done.returncode, 1)
        self.assertTrue(done.errors[0].startswith("vemoprepro: odd.json: not a record of --json"))

    def test_apply_takes_whole_numbers_only(self):
        self.save("a.png", text_page())
        for numerator, denominator, threshold, good in (
                (12, 512, 143, True), (2**32 + 12, 512, None, False), (12, 2**32 + 512, None, False),
                (2**64 - 12, 512, None, False), (1e30, 512, None, False), (12.5, 512, None, False),
                (True, 512, None, False), (0, 0, None, False), (0, 512, 2**32 + 143, False)):
            skew = {"numerator": numerator, "denominator": denominator}
            page = {"skew": skew, "threshold": threshold}
            self.write("r.json", json.dumps({"files": [{"pages": [page]}]}).encode())
            done = self.run_tool("clean", "a.png", "-o", "o.tif", "--overwrite", "--apply", "r.json")
            self.assertEqual((done.returncode, len(done.errors)), (0, 0) if good else (1, 1), page)


class SideBySide(ToolCase):
    def test_jobs_change_nothing(self):
        pages = [text_page(angle / 2, (300 + 60 * (angle % 3), 500)) for angle in range(-5, 6)]
        self.save("in.tif", *pages)
        records = []
        for jobs in (1, 2, 5):
            self.good("clean", "in.tif", "-o", f"out{jobs}.tif", "-j", jobs)
            self.assertEqual(self.read(f"out{jobs}.tif"), self.read("out1.tif"))
            lines = self.good("clean", "in.tif", "-o", "o.tif", "--overwrite", "-j", jobs).stdout
            records.append(lines)
        self.assertEqual(records[0].count(b"\n"), 11)
        self.assertEqual(records, [records[0]] * 3)

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
