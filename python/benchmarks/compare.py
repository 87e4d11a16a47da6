#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures the package beside insertion in C++, SciPy and PyVista, each run in a process of its own.

Usage: python/benchmarks/compare.py BENCHMARK [WORKLOAD]...

BENCHMARK is tulo3d_bench of a release build. Libraries take turns, so that a change of the machine's speed
meets all of them; those that take long get one turn. Prints a table of medians: seconds of the processor
from an array to simplices and neighbours (in C++: to the engine's mesh; all use one thread), the ratio to
the first library in the same turn, and the peak of the memory in MB above that before the points were made. What takes
longer than LIMIT is ended. The workloads "find in" are a million random queries in a mesh.
"""

import json
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np

DATA = Path(__file__).parents[2] / "data"
WORKLOADS = {
    "uniform 10k": lambda: np.random.default_rng(1).random((10_000, 3)),
    "uniform 100k": lambda: np.random.default_rng(1).random((100_000, 3)),
    "uniform 1M": lambda: np.random.default_rng(1).random((1_000_000, 3)),
    "bunny scan 2k": lambda: np.loadtxt(DATA / "bunny_2k.xyz")[:, :3],
    "rock scan 22k": lambda: np.loadtxt(DATA / "lidar_rock_22k.xyz")[:, :3],
    "lattice 100^3": lambda: np.array(np.meshgrid(*3 * [np.arange(100.0)])).reshape(3, -1).T.copy(),
}
QUERIES = {"find in 100k": "uniform 100k", "find in 1M": "uniform 1M"}
LIMIT = 900  # seconds of the clock
LONG = 20  # seconds of the processor
TURNS = 7


def make(library, points):
    """Return a mesh whose simplices and neighbours are there, and how many tetrahedra it has."""
    if library == "pyvista":  # has no neighbours
        import pyvista

        grid = pyvista.PolyData(points).delaunay_3d()
        return grid, len(grid.cells_dict[pyvista.CellType.TETRA])
    import scipy.spatial

    import tulo3d

    mesh = {"tulo3d": tulo3d, "scipy": scipy.spatial}[library].Delaunay(points)
    return mesh, min(len(mesh.simplices), len(mesh.neighbors))


def peak_kilobytes():
    """Return the peak of this process alone; that of getrusage() starts with the parent's."""
    status = Path("/proc/self/status").read_text()
    return int(status.split("VmHWM:")[1].split()[0])


def triangulate(library, workload):
    before = peak_kilobytes()
    points = WORKLOADS[workload]()
    start = time.process_time()
    _mesh, num = make(library, points)
    seconds = time.process_time() - start
    return seconds, num, peak_kilobytes() - before


def locate(library, workload):
    mesh, _ = make(library, WORKLOADS[QUERIES[workload]]())
    queries = np.random.default_rng(2).random((1_000_000, 3))
    start = time.process_time()
    found = mesh.find_simplex(queries)
    return time.process_time() - start, int((found >= 0).sum()), 0


def run(library, workload, program, file):
    """Return seconds, tetrahedra or points found, and kilobytes; None after LIMIT or a failure."""
    command = [sys.executable, __file__, "--work", library, workload]
    if library == "C++":
        command = [program, "--file", file]
    try:
        output = subprocess.run(command, capture_output=True, check=True, timeout=LIMIT).stdout
    except (subprocess.TimeoutExpired, subprocess.CalledProcessError):
        return None
    report = json.loads(output.splitlines()[-1])
    if library == "C++":
        return report["user"] + report["system"], report["tets"], report["peak_kb"] - report["resident_before_kb"]
    return report


def compare(workload, program):
    libraries = ["tulo3d", "scipy"] if workload in QUERIES else ["C++", "tulo3d", "scipy", "pyvista"]
    runs = {library: [] for library in libraries}
    with tempfile.NamedTemporaryFile("w", suffix=".xyz") as file:
        if workload in WORKLOADS:
            file.writelines(f"{x!r} {y!r} {z!r}\n" for x, y, z in WORKLOADS[workload]().tolist())
            file.flush()
        for _ in range(TURNS):
            for library, done in runs.items():
                if not done or done[-1] is not None and done[-1][0] < LONG:
                    done.append(run(library, workload, program, file.name))
    for library, done in runs.items():
        if None in done:
            print(f"{workload:15} {library:8} not done after {LIMIT} s, or failed", flush=True)
            continue
        seconds, num, kilobytes = (statistics.median(column) for column in zip(*done))
        ratio = statistics.median(mine[0] / first[0] for mine, first in zip(done, runs[libraries[0]]))
        line = f"{seconds:9.4f} {ratio:7.2f} {num:11,.0f} {kilobytes / 1024:6.0f} {len(done):5}"
        print(f"{workload:15} {library:8} {line}", flush=True)


if __name__ == "__main__":
    if sys.argv[1] == "--work":
        library, workload = sys.argv[2:]
        make(library, np.random.default_rng(2).random((100, 3)))  # imports
        print(json.dumps((locate if workload in QUERIES else triangulate)(library, workload)))
    else:
        print(f"{'':15} {'library':8} {'seconds':>9} {'ratio':>7} {'number':>11} {'MB':>6} {'turns':>5}")
        for workload in sys.argv[2:] or [*WORKLOADS, *QUERIES]:
            compare(workload, sys.argv[1])
