"""The report to look at, opened from the file system in a browser without a window."""

import base64
import io
import json
import os
import re
import unittest

import numpy as np
from PIL import Image, ImageDraw, ImageFilter
from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from tool_case import ToolCase, as_array, text_page


def ruled_page(degrees, specks):
    """Text over a level line, with specks in the margin."""
    page = text_page(degrees)
    draw = ImageDraw.Draw(page)
    draw.rectangle([100, 30, 500, 32], fill=20)
    for x in range(70, 70 + 10 * specks, 10):
        draw.point([(x, 780), (x + 1, 780)], fill=20)
    return page


def open_browser():
    options = Options()
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                     "--window-size=1400,1000"):
        options.add_argument(argument)
    options.binary_location = "/usr/bin/chromium"
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class Report(ToolCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = open_browser()
        cls.addClassCleanup(cls.browser.quit)

    def report_on(self, *arguments):
        self.browser.get("about:blank")  # a page still loading would miss pictures being replaced
        done = self.run_tool(*arguments, "--json", "--report", "look")
        self.open("index.html")
        return json.loads(done.stdout)["files"]

    def open(self, name):
        self.browser.get("file://" + self.path("look/" + name))

    def open_page(self, number=1):
        self.open("pages/%04d.html" % number)

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def pixels(self, image):
        """A picture's pixels: red, green, blue, alpha."""
        url = self.browser.execute_script("""
            const canvas = document.createElement("canvas");
            canvas.width = arguments[0].naturalWidth;
            canvas.height = arguments[0].naturalHeight;
            canvas.getContext("2d").drawImage(arguments[0], 0, 0);
            return canvas.toDataURL("image/png");""", image)
        data = base64.b64decode(url.partition(",")[2])
        return np.asarray(Image.open(io.BytesIO(data)).convert("RGBA")).astype(int)

    def picture(self, name):
        picture, = self.pages("look/pages/" + name)
        return picture

    def shown(self, cut):
        """The greys of the stage with the slider at one of its ends."""
        self.all("#cut")[0].send_keys(cut)
        stage, = self.all(".stage")
        return np.asarray(Image.open(io.BytesIO(stage.screenshot_as_png)).convert("L")).astype(int)

    def page_with_marks(self):
        self.save("a.png", ruled_page(0, 20), dpi=(300, 300))
        self.report_on("clean", "a.png", "-o", "a.tif", "--remove-lines", "horizontal",
                       "--no-deskew", "--force", "--despeckle", 6)
        self.open_page()

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_slider_shows_both_pages(self):
        self.page_with_marks()
        self.assertTrue(self.browser.title.startswith("a.png"))
        after, before = self.all(".layer.before img.small, .layer.after img.small")
        scan = np.asarray(Image.open(self.path("a.png"))).astype(int)
        self.assertLess(np.abs(self.pixels(before)[..., 0] - scan).mean(), 4)
        self.assertSamePixels(self.pixels(after)[..., 0] == 255, as_array(self.pages("a.tif")[0]))
        for end, paper in ((Keys.HOME, 255), (Keys.END, 235)):
            shown = self.shown(end)[:, 20:-20]
            self.assertLess(shown.min(), 60)
            self.assertAlmostEqual(np.median(shown), paper, delta=3)
        sheet, = self.all(".sheet")
        drag = webdriver.ActionChains(self.browser).move_to_element(sheet).click_and_hold()
        width = self.browser.execute_script("return arguments[0].getBoundingClientRect().width", sheet)
        drag.move_by_offset(-int(width / 4), 0).release().perform()
        self.assertAlmostEqual(float(self.all("#cut")[0].get_property("value")), 25, delta=1)

    def test_page_before_lies_where_the_page_after_does(self):
        self.save("turned.png", text_page(4), dpi=(300, 300))
        self.save("coarse.png", text_page(), dpi=(100, 100))
        self.save("sideways.png", text_page(), dpi=(300, 300))
        for arguments in (("clean", "turned.png"), ("clean", "turned.png", "--for", "ocr"),
                          ("clean", "coarse.png", "--for", "ocr"), ("rotate", 90, "sideways.png")):
            with self.subTest(arguments=arguments):
                self.report_on(*arguments, "-o", "a.png", "--overwrite")
                self.open_page()
                for keys in ("0", "++"):
                    self.all(".stage")[0].send_keys(keys)
                    before, after = (self.shown(end)[:, 40:-40] < 128 for end in (Keys.END, Keys.HOME))
                    self.assertGreater((before & after).sum() / (before | after).sum(), 0.6)

    def test_zooms_to_the_full_pictures(self):
        page = np.full((1600, 1200), 250, np.uint8)
        page[300:800:40, 200:1000] = page[305:800:40, 200:1000] = 0
        page[1300, 1100] = 0
        self.save("a.png", page, dpi=(300, 300))
        self.report_on("clean", "a.png", "-o", "a.tif", "--no-deskew")
        result, = self.pages("a.tif")
        self.assertSamePixels(self.picture("0001-after.png"), result)
        self.assertLess(np.abs(np.asarray(self.picture("0001-before.jpg")).astype(int) - page).mean(), 2)
        removed = np.asarray(self.picture("0001-removed-despeckle.png").convert("RGBA"))[..., 3]
        self.assertEqual(np.argwhere(removed).tolist(), [[1300, 1100]])
        self.open_page()
        self.assertEqual(self.all("img.full[src]"), [])
        self.all(".spots")[0].click()
        stage, = self.all(".stage")
        shot = np.asarray(Image.open(io.BytesIO(stage.screenshot_as_png)).convert("RGB")).astype(int)
        mark = np.argwhere((shot[..., 0] == 214) & (shot[..., 1] == 40))
        self.assertEqual(len(mark), 4)  # a pixel at 200 %
        stage.send_keys("0")
        self.assertFalse(any(image.is_displayed() for image in self.all("img.full")))

    def test_large_pages_are_averaged(self):
        page = np.full((2300, 1201), 255, np.uint8)
        page[::2] = 0
        self.save("a.png", page)
        self.report_on("clean", "a.png", "-o", "a.tif", "--threshold", 128, "--no-deskew")
        self.open_page()
        after, = self.all(".layer.after img.small")
        greys = self.pixels(after)[..., 0]
        self.assertEqual(greys.shape, (767, 401))
        self.assertEqual(set(greys[:-1].ravel()), {85, 170})

    def test_removed_ink_is_marked_where_it_was_and_can_be_hidden(self):
        self.page_with_marks()
        found = {image.get_attribute("data-step"): np.nonzero(self.pixels(image)[..., 3])[0]
                 for image in self.all(".marks img.small")}
        self.assertEqual((found["despeckle"] == 780).sum(), 40)
        self.assertEqual(found["despeckle"].max(), 780)
        self.assertGreaterEqual(np.isin(found["unline"], range(28, 35)).sum(), 1000)
        boxes = {box.get_attribute("data-step"): box for box in self.all(".steps input[type=checkbox]")}
        self.assertEqual((list(boxes), set(found)), (["despeckle", "unline"], set(boxes)))
        for step, box in boxes.items():
            marks, = self.all(f".marks img.small[data-step={step}]")
            for shown in (False, True):
                box.click()
                self.assertEqual(marks.is_displayed(), shown)

    def test_specks_that_go_with_the_greys_are_marked(self):
        text = text_page()
        page = np.asarray(text).copy()
        specks = np.random.default_rng(3).random(page.shape) < 0.04
        page[specks] = 20
        self.save("a.png", page, dpi=(300, 300))
        self.report_on("clean", "a.png", "-o", "a.tif", "--for", "ocr", "--no-deskew")
        marks = np.asarray(self.picture("0001-removed-prepare.png").convert("RGBA"))[..., 3] > 0
        # Corners of strokes go as well, and are marked.
        paper = np.asarray(text.filter(ImageFilter.MinFilter(7))) > 200
        self.assertFalse((marks & paper & ~specks).any())
        self.assertGreater((marks & paper).sum(), 0.97 * (specks & paper).sum())

    def peaks(self):
        """The highest points of the fan by the names of its curves: (score, the degrees that have it)."""
        points = [title.get_attribute("textContent") for title in self.all(".fan .fine circle > title")]
        peaks = {}
        for point in points:
            name, degrees, score = re.fullmatch(r"(.*), (.*)°: (.*)", point).groups()
            best, places = peaks.get(name, (0, []))
            peaks[name] = (float(score), (places if float(score) == best else []) + [degrees]) \
                if float(score) >= best else (best, places)
        return peaks

    def test_fan_peaks_at_the_skew(self):
        self.save("a.png", text_page(3))
        page = self.report_on("clean", "a.png", "-o", "a.tif")[0]["pages"][0]
        self.open_page()
        score, places = self.peaks()["lines"]
        self.assertAlmostEqual(float(places[len(places) // 2]), page["skew"]["degrees"], delta=0.01)
        self.assertAlmostEqual(score, page["skew"]["confidence"], delta=0.01)
        self.assertEqual(self.all(".fan .found text")[0].text, "%.2f°" % page["skew"]["degrees"])

    def test_fan_shows_a_peak_that_is_not_followed(self):
        page = np.full((600, 600), 250, np.uint8)
        random = np.random.default_rng(3)
        for x, y, width, height in zip(*random.integers(20, 540, (2, 150)), *random.integers(4, 40, (2, 150))):
            page[y:y + height, x:x + width] = 20
        self.save("a.png", page, dpi=(300, 300))
        step, = [step for step in self.report_on("clean", "a.png", "-o", "a.tif")[0]["pages"][0]["steps"]
                 if step["name"] == "deskew"]
        self.assertEqual(step["status"], "skipped")
        self.open_page()
        self.assertEqual(self.all(".fan .found"), [])
        words = self.all(".fan .refused text")[0].text
        self.assertIn(words, [degrees + "°, not followed" for _, places in self.peaks().values() for degrees in places])
        self.assertIn(step["why"], self.all(".fan figcaption")[0].text)

    def rows(self):
        """The rows of the table as their cells, by the names of the files."""
        rows = [row.find_elements(By.CSS_SELECTOR, "td, th") for row in self.all("#figures tbody tr")]
        return {cells[1].text: cells for cells in rows}

    def test_figures_are_those_of_the_record_and_sort(self):
        names = [self.save(f"{number}.png", ruled_page(degrees, 2 * number))
                 for number, degrees in enumerate((2, -3, 0.5))]
        self.write("bad & <b>.png", b"\x89PNG\r\n\x1a\nnothing")
        os.mkdir(self.path("out"))
        files = self.report_on("clean", *names, "bad & <b>.png", "-o", "out", "-j", 2,
                               "--binarize", "otsu")
        self.assertTrue(self.all("header p")[0].text.startswith("3 pages, 1 failed. Cleaned"))
        name, failed = list(self.rows().items())[0]
        self.assertEqual(name, "bad & <b>.png")
        self.assertIn(files[-1]["error"], failed[2].text)
        pages = {file["input"]: file["pages"][0] for file in files if file["pages"]}
        heads = {head.text: (index, head) for index, head in enumerate(self.all("#figures thead tr > *"))}
        for name, value in (("Skew", lambda page: page["skew"]["degrees"]),
                            ("Confidence", lambda page: page["skew"]["confidence"]),
                            ("Threshold", lambda page: page["threshold"]),
                            ("Dpi", lambda page: page["dpi"][0]),
                            ("Size", lambda page: page["width"] * page["height"]),
                            ("Seconds", lambda page: page["seconds"])):
            index, head = heads[name]
            for order in ("ascending", "descending"):
                head.find_element(By.TAG_NAME, "button").click()
                self.assertEqual(head.get_attribute("aria-sort"), order)
                shown = {file: float(cells[index].get_attribute("data-value"))
                         for file, cells in self.rows().items() if len(cells) == len(heads)}
                self.assertEqual(set(shown), set(pages))
                for file, figure in shown.items():
                    self.assertAlmostEqual(figure, value(pages[file]), delta=1e-4, msg=name)
                self.assertEqual(list(shown.values()), sorted(shown.values(), reverse=order[0] == "d"))

    def test_pages_to_look_at_come_first(self):
        plain = np.asarray(ruled_page(0, 1)).copy()
        dotted = plain.copy()
        dotted[10:790:2, 3:50:2] = dotted[10:790:2, 550:597:2] = 0
        names = [self.save("plain.png", plain, dpi=(300, 300)),
                 self.save("dotted.png", dotted, dpi=(300, 300)),
                 self.save("erased.png", dotted, dpi=(300, 300))]
        os.mkdir(self.path("out"))
        files = self.report_on("clean", *names[:2], "-o", "out", "--threshold", 128, "--despeckle", 6)
        page = files[1]["pages"][0]
        self.assertEqual([step["name"] for step in page["steps"] if step["warning"]], ["despeckle"])
        rows = self.rows()
        self.assertEqual(list(rows), ["dotted.png", "plain.png"])
        why = [step["why"] for step in page["steps"] if step["name"] == "despeckle"][0]
        self.assertIn(why, rows["dotted.png"][3].text)
        rows["dotted.png"][1].find_element(By.TAG_NAME, "a").click()
        self.assertIn(why, self.all(".warning")[0].text)
        self.report_on("clean", "plain.png", "erased.png", "-o", "out", "--threshold", 128, "--overwrite",
                       "--force", "--despeckle", 6)
        marked = {name: [cell.text for cell in cells if "much" in (cell.get_attribute("class") or "")]
                  for name, cells in self.rows().items()}
        self.assertEqual((len(marked["plain.png"]), len(marked["erased.png"])), (0, 1))
        self.assertRegex(marked["erased.png"][0], r"\d+ %")

    def test_all_columns_can_be_reached_in_a_narrow_window(self):
        self.save("a.png", ruled_page(1, 5))
        self.report_on("clean", "a.png", "-o", "a.tif", "--crop-border", "--remove-lines", "horizontal")
        metrics = {"width": 400, "height": 700, "deviceScaleFactor": 1, "mobile": False}
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", metrics)
        self.addCleanup(self.browser.execute_cdp_cmd, "Emulation.clearDeviceMetricsOverride", {})
        names = []
        for _ in self.all("#figures thead button"):
            while True:
                webdriver.ActionChains(self.browser).send_keys(Keys.TAB).perform()
                focused = self.browser.switch_to.active_element
                if focused.tag_name == "button":
                    break
            names.append(focused.text)
            left, right = self.browser.execute_script(
                "const box = arguments[0].getBoundingClientRect(); return [box.left, box.right];", focused)
            self.assertTrue(0 <= left < right <= 400, (focused.text, left, right))
        self.assertEqual((names[0], names[-1]), ("File", "Seconds"))
        self.open_page()
        self.assertLessEqual(self.browser.execute_script("return document.body.scrollWidth"), 400)

    def test_works_for_commands_on_kinds_and_pages(self):
        bits = text_page(1).convert("1")
        self.save("a.tif", bits, bits, compression="group4")
        colour = Image.merge("RGB", [text_page()] * 2 + [text_page(ink=90)])
        exif = Image.Exif()
        exif[0x0112] = 6
        self.save("b.jpg", colour, exif=exif)
        for arguments, count in ((("textmask", "a.tif"), 2), (("rotate", "90", "a.tif"), 2),
                                 (("clean", "b.jpg", "--for", "ocr"), 1),
                                 (("crop", "b.jpg"), 1)):
            with self.subTest(command=arguments[0]):
                self.report_on(*arguments, "-o", "out.tif", "--overwrite")
                self.assertEqual(len(self.all("tbody tr")), count)
                for number in range(1, count + 1):
                    self.open_page(number)
                    links = [link.text for link in self.all("nav a")]
                    self.assertEqual(("Next →" in links, "← Previous" in links), (number < count, number > 1))
                    self.all(".stage")[0].send_keys("+")
                    self.browser.execute_async_script(
                        "Promise.all([...document.images].map(image => image.decode())).then(arguments[0])")
                    for image in self.all("img"):
                        self.assertGreater(image.get_property("naturalWidth"), 0)

    def test_refers_to_nothing_but_its_own_files(self):
        self.page_with_marks()
        for folder, _, names in os.walk(self.path("look")):
            for name in names:
                if not name.endswith(".html"):
                    continue
                text = self.read(os.path.join(folder, name)).decode()
                for target in re.findall(r"(?:src|href|srcset|action)=\"([^\"]*)\"", text):
                    if not target.startswith("data:"):
                        self.assertTrue(os.path.exists(os.path.join(folder, target)), target[:80])
                self.assertNotRegex(re.sub(r"base64,[^\"]*", "", text), r"https?:|url\(|@import|fetch\(")


class ReportFile(ToolCase):
    def test_is_replaced_only_when_asked_and_as_a_whole(self):
        bits = text_page().convert("1")
        self.save("a.tif", bits, bits, compression="group4")
        self.save("c.png", text_page())
        self.good("clean", "a.tif", "-o", "b.tif", "--report", "look")
        self.write("look/pages/notes.txt", b"mine")
        first = self.read("look/index.html")
        arguments = ("clean", "c.png", "-o", "c.tif", "--report", "look")
        self.fails(*arguments, lines=["look/index.html: exists already (--overwrite replaces it)"])
        self.assertEqual(self.read("look/index.html"), first)
        self.good(*arguments, "--overwrite")
        self.assertNotEqual(self.read("look/index.html"), first)
        stems = {name.partition(".")[0].partition("-")[0] for name in os.listdir(self.path("look/pages"))}
        self.assertEqual(stems, {"0001", "notes"})
        page = self.path("look/pages/0001-before.jpg")
        self.fails("clean", page, "-o", "d.tif", "--report", "look", "--overwrite",
                   lines=["look/pages/0001-before.jpg: the report would overwrite an input"])
        self.assertTrue(os.path.exists(page))

    def test_folder_that_cannot_be(self):
        self.save("a.png", text_page())
        arguments = ("clean", "a.png", "-o", "a.tif", "--report")
        self.fails(*arguments, "no/look", lines=["--report no/look: the folder to make it in does not exist"])
        self.fails(*arguments, "a.png", lines=["a.png: Not a directory"])
        self.usage(*arguments, "")

    def test_outputs_are_the_same_with_and_without(self):
        self.save("a.png", ruled_page(2, 10))
        self.good("clean", "a.png", "-o", "a.tif", "--for", "ocr")
        self.good("clean", "a.png", "-o", "b.tif", "--for", "ocr", "--report", "look")
        self.assertEqual(self.read("a.tif"), self.read("b.tif"))


if __name__ == "__main__":
    unittest.main()
