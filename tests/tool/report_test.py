"""The report to look at, opened from the file system in a browser without a window."""

import base64
import io
import json
import os
import re
import unittest

import numpy as np
from PIL import Image, ImageDraw
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
        done = self.run_tool(*arguments, "--json", "--report", "look")
        self.browser.get("file://" + self.path("look/index.html"))
        return json.loads(done.stdout)["files"]

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

    def page_with_marks(self):
        self.save("a.png", ruled_page(0, 20), dpi=(300, 300))
        return self.report_on("clean", "a.png", "-o", "a.tif", "--remove-lines", "horizontal",
                              "--no-deskew", "--force")

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_slider_shows_both_pages(self):
        self.page_with_marks()
        self.assertTrue(self.browser.title.startswith("a.png"))
        before, after = self.all(".layer.before > img, .layer.after > img")[::-1]
        slider, = self.all("input[type=range]")
        stage, = self.all(".stage")
        scan = np.asarray(Image.open(self.path("a.png"))).astype(int)
        self.assertLess(np.abs(self.pixels(before)[..., 0] - scan).mean(), 4)
        self.assertSamePixels(self.pixels(after)[..., 0] == 255, as_array(self.pages("a.tif")[0]))
        for end, paper in ((Keys.HOME, 255), (Keys.END, 235)):
            slider.send_keys(end)
            shown = np.asarray(Image.open(io.BytesIO(stage.screenshot_as_png)).convert("L"))[:, 20:-20]
            self.assertLess(shown.min(), 60)
            self.assertAlmostEqual(np.median(shown), paper, delta=3)
        webdriver.ActionChains(self.browser).move_to_element_with_offset(
            stage, -stage.size["width"] // 4, 0).click().perform()
        self.assertAlmostEqual(float(slider.get_property("value")), 25, delta=1)

    def test_large_pages_are_averaged(self):
        page = np.full((2300, 1201), 255, np.uint8)
        page[::2] = 0
        self.save("a.png", page)
        self.report_on("clean", "a.png", "-o", "a.tif", "--threshold", 128, "--no-deskew")
        after, = self.all(".layer.after > img")
        greys = self.pixels(after)[..., 0]
        self.assertEqual(greys.shape, (767, 401))
        self.assertEqual(set(greys[:-1].ravel()), {85, 170})

    def test_removed_ink_is_marked_where_it_was_and_can_be_hidden(self):
        self.page_with_marks()
        found = {image.get_attribute("data-step"): np.nonzero(self.pixels(image)[..., 3])[0]
                 for image in self.all("img.marks")}
        self.assertEqual((found["despeckle"] == 780).sum(), 40)
        self.assertEqual(found["despeckle"].max(), 780)
        self.assertGreaterEqual(np.isin(found["unline"], range(28, 35)).sum(), 1000)
        boxes = {box.get_attribute("data-step"): box for box in self.all(".steps input[type=checkbox]")}
        self.assertEqual((list(boxes), set(found)), (["despeckle", "unline"], set(boxes)))
        for step, box in boxes.items():
            marks, = self.all(f"img.marks[data-step={step}]")
            for shown in (False, True):
                box.click()
                self.assertEqual(marks.value_of_css_property("display") != "none", shown)

    def test_fan_peaks_at_the_skew(self):
        self.save("a.png", text_page(3))
        page = self.report_on("clean", "a.png", "-o", "a.tif")[0]["pages"][0]
        points = [title.get_attribute("textContent") for title in self.all(".fan .fine circle > title")]
        scores = [tuple(map(float, re.fullmatch(r".*, (.*)°: (.*)", point).groups())) for point in points]
        degrees, score = max(scores, key=lambda point: point[1])
        self.assertAlmostEqual(degrees, page["skew"]["degrees"], delta=0.01)
        self.assertAlmostEqual(score, page["skew"]["confidence"], delta=0.01)
        self.assertEqual(self.all(".fan .found text")[0].text, "%.2f°" % page["skew"]["degrees"])

    def test_figures_are_those_of_the_record_and_sort(self):
        names = [self.save(f"{number}.png", ruled_page(degrees, 2 * number))
                 for number, degrees in enumerate((2, -3, 0.5))]
        self.write("bad & <b>.png", b"\x89PNG\r\n\x1a\nnothing")
        os.mkdir(self.path("out"))
        files = self.report_on("clean", *names, "bad & <b>.png", "-o", "out", "-j", 2,
                               "--binarize", "otsu")
        pages = {file["input"]: file["pages"][0] for file in files if file["pages"]}
        heads = {head.text: (index, head) for index, head in enumerate(self.all("#figures th"))}
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
                rows = [row.find_elements(By.TAG_NAME, "td") for row in self.all("#figures tbody tr")]
                shown = {row[0].text: float(row[index].get_attribute("data-value"))
                         for row in rows if len(row) == len(heads)}
                self.assertEqual(set(shown), set(pages))
                for file, figure in shown.items():
                    self.assertAlmostEqual(figure, value(pages[file]), delta=1e-4, msg=name)
                self.assertEqual(list(shown.values()), sorted(shown.values(), reverse=order[0] == "d"))
        failed, = self.all("article.failed")
        self.assertIn("bad & <b>.png", failed.text)
        self.assertIn(files[-1]["error"], failed.text)

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
                self.assertEqual(len(self.all("article")), count)
                for image in self.all("img"):
                    self.assertGreater(image.get_property("naturalWidth"), 0)

    def test_nothing_outside_is_referred_to(self):
        self.page_with_marks()
        text = self.read("look/index.html").decode()
        self.assertEqual(os.listdir(self.path("look")), ["index.html"])
        for target in re.findall(r"(?:src|href|srcset|action)=\"([^\"]*)\"", text):
            self.assertTrue(target.startswith(("data:", "#")), target[:80])
        self.assertNotRegex(re.sub(r"base64,[^\"]*", "", text), r"https?:|url\(|@import|fetch\(")
        self.assertEqual(self.browser.execute_script(
            "return performance.getEntriesByType('resource')"
            ".filter(entry => !entry.name.startsWith('data:')).length"), 0)


class ReportFile(ToolCase):
    def test_is_replaced_only_when_asked(self):
        self.save("a.png", text_page())
        arguments = ("clean", "a.png", "-o", "a.tif", "--report", "look")
        self.good(*arguments)
        first = self.read("look/index.html")
        os.remove(self.path("a.tif"))
        self.fails(*arguments,
                   lines=["look/index.html: exists already (--overwrite replaces it)"])
        self.assertEqual(self.read("look/index.html"), first)
        self.save("b.png", text_page(2))
        self.good("clean", "b.png", "-o", "a.tif", "--report", "look", "--overwrite")
        self.assertNotEqual(self.read("look/index.html"), first)

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
