#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Draws time and memory against the number of points from the CSV of `run_table.py --sweep`, or from that of
`--growth` the time per point or per tetrahedron."""
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


# Of the growth: operation, title, and what the time is divided by: its name and its column; and the colours.
GROWTH = [
    ("build", "Points at many scales, one batch", "point", "n"),
    ("ordered", "Long edges of the hull, single inserts", "tetrahedron", "tets"),
]
COLOURS = {"scales8": "C0", "scales12": "C1", "scales30": "C2",
           "MomentCurve": "C0", "TwoSkewLines": "C1"}


def read(file_name):
    """(operation, workload, library) -> n -> list of records"""
    records = collections.defaultdict(lambda: collections.defaultdict(list))
    with open(file_name, newline="", encoding="utf-8") as file:
        for record in csv.DictReader(file):
            key = record["operation"], record["workload"], record["library"]
            records[key][int(record["n"])].append(record)
    return records


def median(runs, value):
    return statistics.median(value(run) for run in runs)


def added_bytes(run):
    """What building takes beyond the points that were handed in."""
    return 1024 * (float(run["peak_kb"]) - float(run["resident_before_kb"]))


def draw_sweep(records, left, right):
    for library, label, colour, marker in STYLES:
        of_size = records["build", "uniform", library]
        sizes = sorted(of_size)
        if not sizes:
            continue
        style = {"label": label, "color": colour, "marker": marker, "markersize": 4}
        left.loglog(sizes, [median(of_size[n], lambda r: float(r["seconds"])) for n in sizes], **style)
        sizes = [n for n in sizes if n >= SMALLEST_FOR_MEMORY]
        right.semilogx(sizes, [median(of_size[n], added_bytes) / n for n in sizes], **style)
    left.set_ylabel("user + system time, s")
    left.set_title("Building from points in memory, one core")
    right.set_ylabel("bytes per point")
    right.set_title("Memory that building adds")
    for axes in (left, right):
        axes.set_xlabel("number of points (uniform in a cube)")


def draw_growth(records, *both):
    for axes, (operation, title, unit, count) in zip(both, GROWTH):
        for (of, workload, library), of_size in records.items():
            if of != operation:
                continue
            sizes = sorted(of_size)
            ours = library == "ours"
            axes.semilogx(sizes, [median(of_size[n], lambda r: 1e6 * float(r["seconds"]) / int(r[count]))
                                  for n in sizes], color=COLOURS[workload], marker="o" if ours else "s",
                          markersize=4, linestyle="-" if ours else "--",
                          label=f"{'Tulo3D' if ours else 'CGAL'}, {workload}")
        axes.set_ylabel(f"user + system time, µs per {unit}")
        axes.set_title(title, fontsize="medium")
        axes.set_xlabel("number of points")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--growth", action="store_true", help="from the CSV of --growth")
    parser.add_argument("csv")
    parser.add_argument("image", help="what to write: .svg, .png or .pdf")
    options = parser.parse_args()

    figure, both = pyplot.subplots(1, 2, figsize=(10, 4.2), layout="constrained")
    (draw_growth if options.growth else draw_sweep)(read(options.csv), *both)
    for axes in both:
        axes.set_ylim(bottom=0 if axes.get_yscale() == "linear" else None)
        axes.grid(True, which="major", alpha=0.3)
        axes.tick_params(axis="x", which="minor", labelsize="x-small")
        axes.legend(frameon=False)
    # No date inside: the same numbers give the same file.
    metadata = {"Date": None} if options.image.endswith(".svg") else None
    matplotlib.rcParams["svg.hashsalt"] = "tulo3d"
    figure.savefig(options.image, metadata=metadata)


if __name__ == "__main__":
    main()
