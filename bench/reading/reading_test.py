#!/usr/bin/python3
"""How well tesseract reads damaged pages: as they are, after this program, and after other tools.

    bench/reading/reading_test.py --program build/release/vemoprepro [--cache DIR] [--pages WORD,...]

Draws the pages of pages.py and prints a table of character error rates in per cent: the edit distance between what was
read and what stands on the page, over the length of the latter, both with all white space as single spaces; for each
fault the mean over its pages. --each prints every page's rates as well. What the other tools and the untouched pages
gave is kept in the cache, so that a later run measures only this program.
Needs Debian's tesseract-ocr, tesseract-ocr-eng, unpaper, python3-pil, python3-numpy, fonts-liberation, fonts-dejavu.
"""

import argparse
import concurrent.futures
import hashlib
import os
import pathlib
import subprocess
import sys

import numpy as np
from PIL import Image

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

import pages  # noqa: E402
import peers  # noqa: E402

PEERS = {
    "Leptonica Sauvola": peers.leptonica_sauvola,
    "Leptonica Otsu": peers.leptonica_otsu,
    "unpaper": peers.unpaper,
}


def edit_distance(one, other):
    """Levenshtein's distance, row by row; a row's insertions are a running minimum."""
    a, b = (np.frombuffer(text.encode("utf-32-le"), np.uint32) for text in (one, other))
    steps = np.arange(len(b) + 1)
    row = steps.copy()
    for i, letter in enumerate(a, 1):
        best = np.empty_like(row)
        best[0] = i
        best[1:] = np.minimum(row[:-1] + (b != letter), row[1:] + 1)
        row = np.minimum.accumulate(best - steps) + steps
    return int(row[-1])


def error_rate(read, known):
    read, known = (" ".join(text.split()) for text in (read, known))
    return 100.0 * edit_distance(read, known) / len(known)


def read_page(image, dpi):
    """What tesseract reads, with the page's layout left to it."""
    known = ["--dpi", str(dpi)] if dpi else []
    command = ["nice", "-n", "10", "tesseract", str(image), "-", *known, "--psm", "3", "-l", "eng"]
    return subprocess.run(command, env={**os.environ, "OMP_THREAD_LIMIT": "1"}, check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout.decode("utf-8")


def resolution(image, otherwise):
    """The one that the page's file gives."""
    given = Image.open(image).info.get("dpi", (0, 0))[0]
    return round(given) if given > 1 else otherwise


class Cache:
    """Texts that were read, by the bytes of the page that was read."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(parents=True, exist_ok=True)

    def read(self, image, dpi):
        digest = hashlib.sha256(image.read_bytes() + str(dpi).encode()).hexdigest()[:32]
        kept = self.folder / (digest + ".read")
        if not kept.exists():
            kept.write_text(read_page(image, dpi), encoding="utf-8")
        return kept.read_text(encoding="utf-8")


def clean(program, options, source, target, dpi):
    known = ["--dpi", str(dpi)] if dpi else []
    subprocess.run([program, "clean", "-q", "--overwrite", *known, *options, str(source), "-o", str(target)], check=True,
                   stderr=subprocess.DEVNULL)


def columns(program):
    """Heading and maker of each column; None is the page as it is."""
    ours = {"clean": [], "clean --for ocr": ["--for", "ocr"]}
    made = {"as it is": None}
    for heading, options in ours.items():
        made[heading] = lambda source, target, dpi, options=options: clean(program, options, source, target, dpi)
    for heading, make in PEERS.items():
        made[heading] = lambda source, target, dpi, make=make: target.exists() or make(source, target)
    return made


def measure(name, index, made, folder, cache):
    """The rates of one page, a column each."""
    source, text, dpi = pages.draw(name, index, folder)
    known, rates = text.read_text(encoding="utf-8"), []
    for heading, make in made.items():
        target = source
        if make:
            target = folder / f"{source.stem}.{pages.slug(heading)}.tif"
            make(source, target, dpi)
        rates.append(error_rate(cache.read(target, resolution(target, dpi)), known))
    return rates


def print_row(name, rates):
    best = min(rates)
    cells = [f"**{rate:.2f}**" if rate == best else f"{rate:.2f}" for rate in rates]
    print(f"| {name} |", " | ".join(cells), "|", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True)
    parser.add_argument("--cache", default=os.path.expanduser("~/.cache/vemoprepro-reading"))
    parser.add_argument("--pages", default="", help="only faults whose name contains one of these words")
    parser.add_argument("--columns", default="", help="only columns whose heading contains one of these words")
    parser.add_argument("--each", action="store_true", help="the rates of every page, too")
    given = parser.parse_args()
    folder = pathlib.Path(given.cache)
    cache = Cache(folder / "read")
    made = {heading: make for heading, make in columns(given.program).items()
            if any(word in heading for word in given.columns.split(","))}
    wanted = [name for name in pages.PAGES if any(word in name for word in given.pages.split(","))]
    print("| fault | pages |", " | ".join(made), "|")
    print("|---|---:|" + "---:|" * len(made))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        rows = {name: [pool.submit(measure, name, index, made, folder, cache) for index in range(len(pages.PAGES[name]))]
                for name in wanted}
        for name, row in rows.items():
            rates = [page.result() for page in row]
            if given.each:
                for (_, seed, *_), page_rates in zip(pages.PAGES[name], rates):
                    print_row(f"{name}, {seed} | 1", page_rates)
            print_row(f"{name} | {len(rates)}", np.mean(rates, axis=0))


if __name__ == "__main__":
    main()
