#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Draws time and memory against the number of points from the CSV of `run_table.py --sweep`."""
import argparse
import collections
import csv
import statistics

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot  # pylint: disable=wrong-import-position

STYLES = [
    ("ours", "Tulo3D", "C3", "o"),
    ("cgal", "CGAL", "C0", "s"),
    ("tetgen", "TetGen", "C2", "^"),
    ("qhull", "Qhull", "C7", "v"),
]
SMALLEST_FOR_MEMORY = 10000  # below, the process itself is most of what is seen


def read(file_name):
    """library -> n -> list of records"""
    records = collections.defaultdict(lambda: collections.defaultdict(list))
    with open(file_name, newline="", encoding="utf-8") as file:
        for record in csv.DictReader(file):
            if record["operation"] == "build" and record["workload"] == "uniform":
                records[record["library"]][int(record["n"])].append(record)
    return records


def median(runs, value):
    return statistics.median(value(run) for run in runs)


def added_bytes(run):
    """What building takes beyond the points that were handed in."""
    return 1024 * (float(run["peak_kb"]) - float(run["resident_before_kb"]))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("csv")
    parser.add_argument("image", help="what to write: .svg, .png or .pdf")
    options = parser.parse_args()
    records = read(options.csv)

    figure, (left, right) = pyplot.subplots(1, 2, figsize=(10, 4.2), layout="constrained")
    for library, label, colour, marker in STYLES:
        sizes = sorted(records[library])
        if not sizes:
            continue
        style = {"label": label, "color": colour, "marker": marker, "markersize": 4}
        left.loglog(sizes, [median(records[library][n], lambda r: float(r["seconds"]))
                            for n in sizes], **style)
        sizes = [n for n in sizes if n >= SMALLEST_FOR_MEMORY]
        right.semilogx(sizes, [median(records[library][n], added_bytes) / n for n in sizes],
                       **style)
    left.set_ylabel("user + system time, s")
    left.set_title("Building from points in memory, one core")
    right.set_ylabel("bytes per point")
    right.set_title("Memory that building adds")
    right.set_ylim(bottom=0)
    for axes in (left, right):
        axes.set_xlabel("number of points (uniform in a cube)")
        axes.grid(True, which="major", alpha=0.3)
        axes.legend(frameon=False)
    # No date inside: the same numbers give the same file.
    metadata = {"Date": None} if options.image.endswith(".svg") else None
    matplotlib.rcParams["svg.hashsalt"] = "tulo3d"
    figure.savefig(options.image, metadata=metadata)


if __name__ == "__main__":
    main()
