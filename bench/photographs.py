#!/usr/bin/python3
"""How often `vemoprepro perspective` finds the page on drawn photographs: right, refused or wrong.

    bench/photographs.py [--each N] [--keep DIR]

Build the release first. Needs NumPy and Pillow."""

import argparse
import collections
import json
import os
import subprocess
import tempfile

import numpy as np
from PIL import Image, ImageDraw, ImageFilter

PROGRAM = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "build", "release", "vemoprepro")
RIGHT_WITHIN = 0.01    # of the longer side, at every corner


def text_page(random, size=(1000, 1400), paper=235, picture=False):
    page = Image.new("RGB", size, (paper, paper - 3, paper - 12))
    draw = ImageDraw.Draw(page)
    for y in range(90, size[1] - 90, 26):
        x, end = 90, size[0] - 90 if random.random() > 0.15 else size[0] // 2
        while x < end and not (picture and 374 < y < 800):
            for _ in range(random.integers(2, 9)):
                draw.rectangle([x, y + random.integers(0, 5), x + 3, y + 13], fill=(40,) * 3)
                draw.line([x, y + 7, x + 7, y + 7], fill=(40,) * 3, width=2)
                x += 9
            x += 12
    if picture:
        draw.rectangle([150, 400, 850, 800], fill=(70, 80, 60))
    return page


def some_corners(random, size):
    """A page in the middle of the picture, under a keystone and a turn of up to 6 degrees."""
    spread = np.array([(-0.36, -0.39), (0.36, -0.39), (0.36, 0.39), (-0.36, 0.39)]) * size
    spread *= 1 + random.uniform(-0.12, 0.12, (4, 2))
    turn = np.radians(random.uniform(-6, 6))
    return spread @ [[np.cos(turn), np.sin(turn)], [-np.sin(turn), np.cos(turn)]] + np.array(size) / 2


def seen(page, corners, size):
    equations, values = [], []
    (width, height) = page.size
    for (x, y), (u, v) in zip(corners, ((0, 0), (width, 0), (width, height), (0, height))):
        equations += [[x, y, 1, 0, 0, 0, -u * x, -u * y], [0, 0, 0, x, y, 1, -v * x, -v * y]]
        values += [u, v]
    return page.transform(size, Image.PERSPECTIVE, tuple(np.linalg.solve(equations, values)), Image.BICUBIC)


def photograph(random, size=(1800, 2200), page=None, corners=None, table=60, tint=(1, 0.9, 0.75), grain=6, noise=3,
               blur=1.0, light=0.15, cover=None, light_on=None, bend=0):
    width, height = size
    page = page or text_page(random)
    corners = some_corners(random, size) if corners is None else np.array(corners, float)
    mask = Image.new("L", size)
    draw = ImageDraw.Draw(mask)
    draw.polygon([tuple(corner) for corner in corners], fill=255)
    if cover is not None:    # a corner is cut off
        corner, before, after = corners[0], corners[3], corners[1]
        away = corner + 0.3 * (corner - (before + after) / 2)
        draw.polygon([tuple(corner + cover * (before - corner)), tuple(away), tuple(corner + cover * (after - corner))], fill=0)
    mask = np.asarray(mask.filter(ImageFilter.GaussianBlur(0.8)), float)[..., None] / 255
    grains = random.normal(128, 40, (height // 40 + 1, width // 4 + 1)).clip(0, 255).astype(np.uint8)
    grains = np.asarray(Image.fromarray(grains).resize(size, Image.BICUBIC), float) - 128
    ground = (table + grain * grains / 40)[..., None] * np.array(tint)
    picture = ground * (1 - mask) + np.asarray(seen(page, corners, size), float) * mask
    y, x = np.mgrid[0:height, 0:width]
    way = random.uniform(0, 2 * np.pi)
    picture *= (1 - light * (1 + 2 * (np.cos(way) * (x / width - 0.5) + np.sin(way) * (y / height - 0.5))))[..., None]
    if light_on:
        picture = light_on(picture, corners, random)
    if bend:
        for column, shift in enumerate((bend * np.sin(1.5 * np.pi * np.arange(width) / width)).astype(int)):
            picture[:, column] = np.roll(picture[:, column], shift, axis=0)
    picture = Image.fromarray(picture.clip(0, 255).astype(np.uint8)).filter(ImageFilter.GaussianBlur(blur))
    picture = np.asarray(picture, float) + random.normal(0, noise, (height, width, 1))
    return Image.fromarray(picture.clip(0, 255).astype(np.uint8)), corners


def shadow(softness):
    def fall(picture, _, random):
        height, width = picture.shape[:2]
        y, x = np.mgrid[0:height, 0:width]
        way = random.uniform(0, 2 * np.pi)
        from_edge = (np.cos(way) * (x - width / 2) + np.sin(way) * (y - height / 2)) / max(width, height)
        return picture * (0.45 + 0.55 / (1 + np.exp(-(from_edge + random.uniform(-0.15, 0.15)) / softness)))[..., None]
    return fall


def fingers(count):
    def lie(picture, corners, random):
        image = Image.fromarray(picture.clip(0, 255).astype(np.uint8))
        draw = ImageDraw.Draw(image)
        for _ in range(count):
            side = random.integers(0, 4)
            along = corners[(side + 1) % 4] - corners[side]
            out = np.array([along[1], -along[0]]) / np.linalg.norm(along)
            tip = corners[side] + random.uniform(0.15, 0.85) * along - out * random.uniform(30, 110)
            draw.line([tuple(tip), tuple(tip + 900 * out)], fill=(190, 140, 115), width=76)
            draw.ellipse([*(tip - 38), *(tip + 38)], fill=(200, 150, 125))
        return np.asarray(image, float)
    return lie


def two_pages(random, gap):
    both = Image.new("RGB", (2000 + gap, 1400), (60, 54, 45))
    both.paste(text_page(random), (0, 0))
    both.paste(text_page(random), (1000 + gap, 0))
    return both


def on_a_sheet(random, place):
    sheet = Image.new("RGB", (1400, 1800), (205, 205, 200))
    sheet.paste(text_page(random, (900, 1250)), (place, 180))
    return sheet


# Each of a generator of random numbers and the number of the picture.
FAMILIES = {
    "keystone": lambda r, i: photograph(r),
    "dark table": lambda r, i: photograph(r, table=25, grain=3),
    "table of wood, as light as print": lambda r, i: photograph(r, table=110, grain=25),
    "light wood": lambda r, i: photograph(r, table=165, grain=12, tint=(1, 0.85, 0.65)),
    "one to three fingers": lambda r, i: photograph(r, light_on=fingers(1 + i % 3)),
    "soft shadow over page and table": lambda r, i: photograph(r, light_on=shadow(0.06)),
    "hard shadow": lambda r, i: photograph(r, light_on=shadow(0.003)),
    "a corner cut off by 4 to 13 % of the sides": lambda r, i: photograph(r, cover=0.04 + 0.03 * (i % 4)),
    "dim, blurred, much noise": lambda r, i: photograph(r, page=text_page(r, paper=170), table=50, light=0.3, noise=14, blur=2.5),
    "large dark picture on the page": lambda r, i: photograph(r, page=text_page(r, picture=True)),
    "sheet on a larger sheet: the larger one": lambda r, i: photograph(r, page=on_a_sheet(r, 150 + 40 * (i % 8))),
    "two pages with a gap of 0 to 6 % of the width: both as one":
        lambda r, i: photograph(r, (2400, 1700), two_pages(r, (30, 6, 150, 0)[i % 4])),
    "white table": lambda r, i: photograph(r, table=238, grain=3, tint=(1, 1, 1)),
    "page beyond the picture": lambda r, i: photograph(r, corners=[(200, 150), (1990, 120), (1950, 2000), (150, 2050)]),
    "page of less than a quarter of the picture":
        lambda r, i: photograph(r, corners=[(700, 800), (1250, 780), (1270, 1500), (680, 1520)]),
    "bent page": lambda r, i: photograph(r, bend=30 + 10 * (i % 8)),
}


def judge(path, corners):
    done = subprocess.run([PROGRAM, "perspective", path, "-o", path + ".tif", "--overwrite", "--json"],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    page, = json.loads(done.stdout)["files"][0]["pages"]
    if "corners" not in page:
        return "refused"
    apart = np.linalg.norm(np.array(page["corners"])[:, None] - corners[None], axis=2).min(axis=0).max()
    return "right" if apart <= RIGHT_WITHIN * max(page["width"], page["height"]) else "wrong"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--each", type=int, default=12, help="photographs of each kind")
    parser.add_argument("--keep", help="a folder that the photographs and results stay in")
    options = parser.parse_args()
    total = collections.Counter()
    print(f"| photographs, {options.each} of each | right | refused | wrong |\n|---|---:|---:|---:|")
    with tempfile.TemporaryDirectory() as scratch:
        folder = options.keep or scratch
        os.makedirs(folder, exist_ok=True)
        for number, (name, draw) in enumerate(FAMILIES.items()):
            counts = collections.Counter()
            for i in range(options.each):
                picture, corners = draw(np.random.default_rng(1000 * i + number), i)
                path = os.path.join(folder, f"{number:02}-{i:02}.jpg")
                picture.save(path, quality=85)
                counts[judge(path, corners)] += 1
            print(f"| {name} | {counts['right']} | {counts['refused']} | {counts['wrong']} |", flush=True)
            total += counts
    print(f"| all | {total['right']} | {total['refused']} | {total['wrong']} |")


if __name__ == "__main__":
    main()
