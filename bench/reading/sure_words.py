#!/usr/bin/python3
"""How many words tesseract reads surely on real pages: as they are, after Leptonica's binarizations, and after this program.

    bench/reading/sure_words.py --program build/release/vemoprepro [--cache DIR] [PAGE...]

Without pages of one's own the drawn ones of pages.py are read. A sure word has three letters or more and a confidence of
80 or more. A real page has no known text; a word that is read surely is hardly ever one that does not stand there. The
difference of a few words on a page is chance. A row is marked where `clean --for ocr` reads less than 95 %, or `clean`
less than 90 %, of the best of the others. What was read is kept in the cache by the bytes of the page, so that a later
run reads only what came out differently. --before PROGRAM adds the columns of another build.
"""

import argparse
import concurrent.futures
import hashlib
import os
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

import pages as drawn  # noqa: E402
import peers  # noqa: E402

LETTERS, CONFIDENCE = 3, 80
CLEAN_SHARE, OCR_SHARE = 0.90, 0.95


def sure_words(image, cache):
    """The number of words that are read surely on the page in the file `image`."""
    kept = cache / (hashlib.sha256(image.read_bytes()).hexdigest()[:32] + ".tsv")
    if not kept.exists():
        command = ["nice", "-n", "10", "tesseract", str(image), "-", "--psm", "3", "-l", "eng", "tsv"]
        kept.write_bytes(subprocess.run(command, env={**os.environ, "OMP_THREAD_LIMIT": "1"}, check=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout)
    count = 0
    for line in kept.read_text(encoding="utf-8").splitlines()[1:]:
        *_, confidence, word = line.split("\t")
        count += float(confidence) >= CONFIDENCE and sum(letter.isalpha() for letter in word) >= LETTERS
    return count


def cleaned(program, *options):
    def make(source, target):
        subprocess.run([program, "clean", "-q", "--overwrite", *options, str(source), "-o", str(target)], check=True)
    return make


def as_it_is(source, target):
    target.write_bytes(source.read_bytes())


def columns(program, before):
    made = {"as it is": as_it_is, "Leptonica Sauvola": peers.leptonica_sauvola, "Leptonica Otsu": peers.leptonica_otsu}
    if before:
        made["clean before"], made["--for ocr before"] = cleaned(before), cleaned(before, "--for", "ocr")
    made["clean"], made["clean --for ocr"] = cleaned(program), cleaned(program, "--for", "ocr")
    return made


def measure(source, made, folder):
    counts = {}
    for heading, make in made.items():
        suffix = source.suffix if make is as_it_is else ".tif"
        target = folder / f"{source.stem}.{heading.replace(' ', '-')}.{os.getpid()}{suffix}"
        try:
            make(source, target)
            counts[heading] = sure_words(target, folder)
        except subprocess.CalledProcessError:
            counts[heading] = 0
        finally:
            target.unlink(missing_ok=True)
    return counts


def verdict(counts):
    others = [counts[heading] for heading in ("as it is", "Leptonica Sauvola", "Leptonica Otsu")]
    marks = []
    if counts["clean"] < CLEAN_SHARE * max(others):
        marks.append("clean")
    if counts["clean --for ocr"] < OCR_SHARE * max(*others, counts["clean"]):
        marks.append("ocr")
    return ", ".join(marks)


def print_row(name, counts, mark):
    print(f"| {name} |", " | ".join(str(count) for count in counts.values()), f"| {mark} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("pages", nargs="*", type=pathlib.Path)
    parser.add_argument("--program", required=True)
    parser.add_argument("--before")
    parser.add_argument("--cache", default=os.path.expanduser("~/.cache/vemoprepro-reading"))
    given = parser.parse_args()
    folder = pathlib.Path(given.cache) / "words"
    folder.mkdir(parents=True, exist_ok=True)
    pages = given.pages or [drawn.draw(name, index, folder.parent)[0]
                            for name in drawn.PAGES for index in range(len(drawn.PAGES[name]))]
    made = columns(given.program, given.before)
    print("| page |", " | ".join(made), "| short |")
    print("|---|" + "---:|" * len(made) + "---|")
    total, best = dict.fromkeys(made, 0), 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for source, counts in zip(pages, pool.map(lambda page: measure(page, made, folder), pages)):
            print_row(source.name, counts, verdict(counts))
            total = {heading: total[heading] + counts[heading] for heading in made}
    print_row("all", total, "")
    best = max(total[heading] for heading in ("as it is", "Leptonica Sauvola", "Leptonica Otsu"))
    print(f"\n--for ocr against the best of the others in all: {total['clean --for ocr'] / max(best, 1):.3f}")


if __name__ == "__main__":
    main()
