#!/usr/bin/python3
"""The program beside unpaper: processor seconds and peak memory per page.

    bench/whole_program.py [--program build/release/vemoprepro] [--runs 5] [PAGE.jpg ...]

`vemoprepro clean` gets the colour JPEG pages as they are. unpaper reads no JPEG: it gets grey PGM pages of
the same size, so decoding and conversion to grey are done for it and not counted, and it writes PBM. Both
use one thread and run once per page, in turn, so that a machine that changes its speed meets both alike; the
medians of the runs are printed. Exit status 1 when a program fails.
"""

import argparse
import glob
import os
import statistics
import subprocess
import sys
import tempfile

from PIL import Image

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# Runs a command as its only child, so that the peak memory of all children is the command's.
RUN_ALONE = """
import resource, subprocess, sys
status = subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode
used = resource.getrusage(resource.RUSAGE_CHILDREN)
print(status, used.ru_utime + used.ru_stime, used.ru_maxrss)
"""


def measure(command):
    """Processor seconds and peak KiB of one run."""
    output = subprocess.run([sys.executable, "-c", RUN_ALONE, *command], check=True, capture_output=True).stdout
    status, seconds, peak = output.split()
    if int(status) != 0:
        sys.exit(f"failed with status {int(status)}: {' '.join(command)}")
    return float(seconds), int(peak)


def measure_page(program, page, folder, runs):
    grey = os.path.join(folder, "page.pgm")
    Image.open(page).convert("L").save(grey)
    result = os.path.join(folder, "result")
    # Files in the way are removed outside of the measured time: both refuse to write over them.
    outputs = {"vemoprepro": f"{result}.tif", "unpaper": f"{result}.pbm"}
    commands = {
        "vemoprepro": [program, "clean", "-j1", page, "-o", outputs["vemoprepro"]],
        "unpaper": ["unpaper", "--type", "pbm", grey, outputs["unpaper"]],
    }
    figures = {name: [] for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            if os.path.exists(outputs[name]):
                os.remove(outputs[name])
            figures[name].append(measure(command))
    return [[statistics.median(column) for column in zip(*figures[name])] for name in commands]


def row(name, ours, theirs):
    times = theirs[0] / ours[0]
    return f"| {name} | {ours[0]:.3f} | {theirs[0]:.3f} | {times:.1f} | {ours[1] / 1024:.1f} | {theirs[1] / 1024:.1f} |"


def main():
    parser = argparse.ArgumentParser(description="The program beside unpaper, page by page.")
    parser.add_argument("--program", default=os.path.join(ROOT, "build/release/vemoprepro"))
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("pages", nargs="*", default=sorted(glob.glob(os.path.join(ROOT, "examples/pages/*.jpg"))))
    options = parser.parse_args()

    print("| page | vemoprepro s | unpaper s | times faster | vemoprepro MiB | unpaper MiB |")
    print("|---|---:|---:|---:|---:|---:|")
    all_figures = []
    with tempfile.TemporaryDirectory() as folder:
        for page in options.pages:
            all_figures.append(measure_page(options.program, page, folder, options.runs))
            print(row(os.path.basename(page), *all_figures[-1]), flush=True)
    mean = [[statistics.mean(figures[side][k] for figures in all_figures) for k in (0, 1)] for side in (0, 1)]
    print(row("mean", *mean))


if __name__ == "__main__":
    main()
