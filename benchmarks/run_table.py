#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares this library with CGAL and, where they are installed, TetGen and Qhull.

Every measurement is a process of its own, pinned to one core. The libraries of a row take turns,
forwards and backwards, and a ratio is made of two neighbouring measurements, so that a machine that
slows down affects both. Before each measurement, memory is touched and freed again: the host of a virtual
machine may take back unused memory, and otherwise the measurement that comes first, or needs more than the
one before, would include the cost of getting it again. All measurements go to a CSV file; the table shows
medians: of the processor's time, but in the rows of several threads, which have as many cores, of the wall
time.
"""
import argparse
import collections
import csv
import datetime
import json
import mmap
import os
import pathlib
import platform
import resource
import statistics
import subprocess
import sys

REFERENCE = "cgal"
BUILDERS = ["ours", "cgal", "tetgen", "qhull"]
LOCATORS = ["ours", "cgal", "cgal-fast"]
READERS = ["ours", "cgal"]
ENGINE = "engine"  # what one object of ours takes for the arrays that `parallel` makes
THREADED = ["ours", "cgal", ENGINE]

# operation, workload, number of points, libraries, the most that we may take as a multiple of CGAL
Row = collections.namedtuple("Row", "operation workload n libraries goal repeat", defaults=[1])
TABLE = [
    Row("build", "uniform", 1000000, BUILDERS, 0.50),
    Row("build", "clusters", 1000000, BUILDERS, 0.62),
    Row("build", "outliers", 1000000, BUILDERS, 0.73),
    Row("build", "terrain", 1000000, BUILDERS, 0.75),
    Row("build", "helix", 100000, BUILDERS, 0.75),
    Row("build", "FILE", 0, BUILDERS, 0.70),
    Row("build", "sphere", 1000000, BUILDERS, 0.80),
    Row("build", "grid", 1000000, BUILDERS, 0.60),
    Row("single", "uniform", 100000, LOCATORS, 0.50),
    Row("ordered", "laser", 100000, LOCATORS, 0.80),
    Row("locate", "uniform", 100000, LOCATORS, 0.24),
    Row("list", "uniform", 100000, READERS, None, 20),
    Row("stars", "uniform", 100000, READERS, 1.0, 5),
    # Their seconds are to be compared with those of "build", too: at most a quarter of them.
    Row("check", "uniform", 1000000, READERS, None),
    Row("check", "sphere", 1000000, READERS, None),
    Row("check", "grid", 1000000, READERS, None),
    Row("check", "outliers", 1000000, READERS, None),
    # Hard on the curve that orders the vertices.
    Row("build", "pipe", 100000, BUILDERS, None),
    Row("build", "box", 100000, BUILDERS, None),
    Row("build", "flat", 100000, BUILDERS, None),
    Row("build", "twoclusters", 100000, BUILDERS, None),
    # Points at many scales, and far below 1.
    Row("build", "scales8", 1000000, READERS, 0.80),
    Row("build", "scales12", 300000, READERS, 0.80),
    Row("build", "scales30", 200000, READERS, 0.80),
    Row("build", "decades", 10000, READERS, 0.80),
    Row("build", "tiny", 100000, READERS, 1.50),
    Row("build", "Denormals", 10000, READERS, 1.50),
    Row("build", "bump", 10000, READERS, 1.50),
    # Many tetrahedra at each edge.
    Row("single", "moment", 1000, READERS, 3.0),
    Row("single", "TwoSkewLines", 1000, READERS, 3.0),
    Row("build", "MomentCurve", 1000, READERS, 1.0),
    Row("build", "lines", 4000, READERS, 1.0),
    Row("build", "Cylinder", 200000, READERS, 1.0),
    # In several threads; CGAL's needs oneTBB.
    Row("parallel", "uniform", 1000000, THREADED, 0.50),
    Row("parallel", "uniform", 5000000, THREADED, 0.50),
    Row("parallel", "clusters", 1000000, THREADED, 0.50),
    Row("parallel", "terrain", 1000000, THREADED, 0.50),
    Row("parallel", "grid", 1000000, THREADED, 0.50),
]
SIZES = [m * 10**e for e in range(3, 7) for m in (1, 3)] + [5 * 10**6, 10**7]
SWEEP = [Row("build", "uniform", n, BUILDERS, None) for n in SIZES]
# Where an insertion might cost more, the more points there are: points at many scales, and thousands of
# tetrahedra around an edge of the hull (then n points have n^2 / 4 or n^2 / 2 tetrahedra).
GROWTH = [Row("build", workload, n, READERS, None)
          for workload in ("scales8", "scales12", "scales30") for n in SIZES if n <= 10**6]
GROWTH += [Row("ordered", workload, n, READERS, None)
           for workload in ("MomentCurve", "TwoSkewLines") for n in (125, 250, 500, 1000, 2000)]
BYTES_PER_POINT = 800  # what we, CGAL and their points need, and some more
QHULL_LIMIT = 10**6  # above, Qhull needs more memory than most machines have


def machine():
    """The processor's name."""
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def touch_memory(num_bytes):
    """Makes the host really provide this much memory, or half of what there is, and leaves it free."""
    available = os.sysconf("SC_AVPHYS_PAGES") * mmap.PAGESIZE
    flags = mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS | mmap.MAP_POPULATE  # Linux, Python 3.10
    mmap.mmap(-1, min(num_bytes, available // 2), flags=flags).close()


def measure(options, row, library, cpu_limit=None):
    """One measurement as a dictionary; None when the library fails or takes too long."""
    num_points = max(min(row.n, 1000), int(row.n * options.scale))
    cores = str(options.core)
    if row.operation == "parallel":
        cores = f"{options.core - options.threads + 1}-{options.core}"
    command = ["taskset", "-c", cores, options.bench,
               "--library", "ours" if library == ENGINE else library,
               "--operation", "arrays" if library == ENGINE else row.operation,
               "--threads", str(options.threads), "--seed", str(options.seed),
               "--repeat", str(row.repeat)]
    if row.workload == "FILE":
        command += ["--file", options.file]
    else:
        command += ["--workload", row.workload, "--n", str(num_points)]

    touch_memory(max(BYTES_PER_POINT * num_points, 1 << 30))

    def limit():
        if cpu_limit:
            seconds = int(cpu_limit) + 2
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))

    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          check=False, preexec_fn=limit)
    lines = [line for line in done.stdout.splitlines() if line.startswith("{")]
    if done.returncode != 0 or not lines:
        sys.stderr.write(f"  {library}: no result ({done.returncode}) {done.stderr[-200:]}\n")
        return None
    return json.loads(lines[-1])


def time_of(row, result):
    return result["wall" if row.operation == "parallel" else "seconds"]


def run_row(options, row, available, write):
    """All rounds of a row: for each library the list of (measurement, ratio to the reference)."""
    libraries = [name for name in row.libraries if name in available]
    results = {name: [] for name in libraries}
    gave_up = set()
    rounds = options.rounds * (4 if row.n and row.n * options.scale <= 10000 else 1)
    for number in range(rounds):
        order = libraries if number % 2 == 0 else libraries[::-1]
        # The two that the ratio is about stay neighbours, the reference first or second in turn.
        order = sorted(order, key=lambda name: name not in ("ours", REFERENCE))
        measured = {}
        for name in order:
            if name in gave_up or (name == "qhull" and row.n * options.scale > QHULL_LIMIT):
                continue
            reference = measured.get(REFERENCE)
            peer = name not in ("ours", REFERENCE)
            cpu_limit = options.give_up * time_of(row, reference) if peer and reference else None
            result = measure(options, row, name, cpu_limit)
            if result is None:
                gave_up.add(name)
                continue
            measured[name] = result
        for name, result in measured.items():
            ratio = None
            if REFERENCE in measured:
                ratio = time_of(row, result) / time_of(row, measured[REFERENCE])
            results[name].append((result, ratio))
            write(row, number, result, ratio)
    return results, gave_up


def describe(row, results, gave_up, give_up):
    """The line of the table."""
    any_result = next(r for runs in results.values() for r, _ in runs)
    cells = [f"{row.operation} {any_result['workload']} {any_result['n']:,}"]
    for name in ("cgal", "ours", ENGINE, "cgal-fast", "tetgen", "qhull"):
        if name in gave_up:
            cells.append(f"gave up, or > {give_up:g}")
        elif not results.get(name):
            cells.append("")
        else:
            seconds = statistics.median(time_of(row, r) for r, _ in results[name])
            peak = statistics.median(r["peak_kb"] for r, _ in results[name]) / 1024
            ratios = [ratio for _, ratio in results[name] if ratio is not None]
            text = f"{seconds:.4g} s" if name in ("cgal", "ours", ENGINE) else ""
            if name != REFERENCE and ratios:
                text += f" {statistics.median(ratios):.2f}"
                if name == "ours":
                    text += f" ({min(ratios):.2f}-{max(ratios):.2f})"
            cells.append(f"{text.strip()}, {peak:.0f} MiB")
    if results.get(ENGINE):
        pairs = [(ours, one) for (ours, _), (one, _) in zip(results["ours"], results[ENGINE])]
        wall, spent = (statistics.median(ours[key] / one[key] for ours, one in pairs)
                       for key in ("wall", "seconds"))
        cells[2] += f"; of one engine {wall:.2f}, processor time {spent:.2f}"
    cells.append("" if row.goal is None else f"{row.goal:.2f}")
    counts = {name: runs[0][0]["tets"] for name, runs in results.items() if runs}
    cells.append(f"{any_result['tets']:,}" if len(set(counts.values())) == 1 else
                 " ".join(f"{name} {num:,}" for name, num in counts.items()))
    return "| " + " | ".join(cells) + " |"


def main():
    here = pathlib.Path(__file__).resolve().parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bench", default=str(here.parent / "build/release/benchmarks/tulo3d_bench"))
    parser.add_argument("--file", help="real points for the row that reads a file")
    parser.add_argument("--libraries", help="only these, with commas between")
    parser.add_argument("--rows", help="only rows with one of these words, commas between")
    parser.add_argument("--sweep", action="store_true",
                        help="instead of the table: uniform points, 1,000 to 10,000,000")
    parser.add_argument("--growth", action="store_true",
                        help="instead of the table: hard inputs, from few to many points")
    parser.add_argument("--threads", type=int, default=2, help="of the rows of several threads")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--core", type=int, default=os.cpu_count() - 1,
                        help="the one to use, the last of several")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--scale", type=float, default=1.0, help="multiplies the numbers of points")
    parser.add_argument("--give-up", type=float, default=40,
                        help="stop TetGen and Qhull at this multiple of CGAL's time")
    parser.add_argument("--csv", default="benchmark.csv")
    options = parser.parse_args()

    available = subprocess.run([options.bench, "--libraries"], stdout=subprocess.PIPE, text=True,
                               check=True).stdout.split()
    available.append(ENGINE)
    if options.libraries:
        available = [name for name in available if name in options.libraries.split(",")]
    rows = SWEEP if options.sweep else GROWTH if options.growth else TABLE
    if options.rows:
        words = options.rows.split(",")
        rows = [r for r in rows if any(w in (r.operation, r.workload) for w in words)]
    if not options.file:
        rows = [r for r in rows if r.workload != "FILE"]

    when = datetime.datetime.now().isoformat(timespec="seconds")
    with open(options.csv, "w", newline="", encoding="utf-8") as file:
        writer = None

        def write(row, number, result, ratio):
            nonlocal writer
            record = {"date": when, "machine": machine(), "kernel": platform.release(),
                      "round": number, "goal": row.goal, "ratio": ratio, **result}
            if writer is None:
                writer = csv.DictWriter(file, record.keys())
                writer.writeheader()
            writer.writerow(record)
            file.flush()

        print(f"{machine()}, core {options.core}, {when}, medians of {options.rounds} rounds\n")
        print("| workload | CGAL | ours | one engine | CGAL fast location | TetGen | Qhull | at most "
              "| tets |")
        print("| --- " * 9 + "|", flush=True)
        for row in rows:
            results, gave_up = run_row(options, row, available, write)
            if any(results.values()):
                print(describe(row, results, gave_up, options.give_up), flush=True)


if __name__ == "__main__":
    main()
