#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures the package beside insertion in C++, SciPy and PyVista, each in a process of its own.

Usage: python/benchmarks/compare.py BENCHMARK [WORKLOAD]...

BENCHMARK is tulo3d_bench of a release build. Prints a table: seconds of the processor from an array to
simplices and neighbours (in C++: to the engine's mesh; all use one thread), the least of several runs, and
the peak of the memory in MB above that before the points were made. What takes longer than LIMIT is ended. The
workload "find_simplex" is a million random queries of the mesh "uniform 1M".
"""

import json
import resource
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
LIMIT = 900  # seconds of the clock
LIBRARIES = ["tulo3d", "tulo3d C++", "scipy", "pyvista"]


def make(library, points):
    """Return simplices and neighbours, or how many tetrahedra there are."""
    if library == "tulo3d":
        import tulo3d

        mesh = tulo3d.Delaunay(points)
        return len(mesh.simplices) if mesh.neighbors is not None else 0
    if library == "scipy":
        import scipy.spatial

        mesh = scipy.spatial.Delaunay(points)
        return len(mesh.simplices) if mesh.neighbors is not None else 0
    import pyvista

    return len(pyvista.PolyData(points).delaunay_3d().cells_dict[pyvista.CellType.TETRA])  # no neighbours


def run_benchmark(program, points):
    """Return what the C++ benchmark reports of one insertion."""
    with tempfile.NamedTemporaryFile("w", suffix=".xyz") as file:
        file.writelines(f"{x!r} {y!r} {z!r}\n" for x, y, z in points.tolist())
        file.flush()
        output = subprocess.run([program, "--file", file.name], capture_output=True, check=True).stdout
    return json.loads(output.splitlines()[-1])


def work(library, workload, program):
    if library != "tulo3d C++":
        make(library, np.random.default_rng(2).random((100, 3)))  # imports
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    points = WORKLOADS[workload]()
    least, started = np.inf, time.perf_counter()
    for _ in range(7):
        if library == "tulo3d C++":
            report = run_benchmark(program, points)
            seconds, num = report["user"] + report["system"], report["tets"]
            peak = report["peak_kb"] - report["resident_before_kb"]
        else:
            start = time.process_time()
            num = make(library, points)
            seconds = time.process_time() - start
            peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before
        least = min(least, seconds)
        if time.perf_counter() - started > 20:
            break
    print(json.dumps({"seconds": least, "tetrahedra": num, "megabytes": peak / 1024}))


def locate(library):
    """Time a million queries of a mesh of as many points."""
    import scipy.spatial

    import tulo3d

    mesh = {"tulo3d": tulo3d, "scipy": scipy.spatial}[library].Delaunay(WORKLOADS["uniform 1M"]())
    queries = np.random.default_rng(2).random((1_000_000, 3))
    start = time.process_time()
    found = mesh.find_simplex(queries)
    print(json.dumps({"seconds": time.process_time() - start, "found": int((found >= 0).sum())}))


def in_own_process(*arguments):
    command = [sys.executable, __file__, "--work", *arguments]
    try:
        run = subprocess.run(command, capture_output=True, check=False, timeout=LIMIT)
    except subprocess.TimeoutExpired:
        return f"     over {LIMIT} s"
    if run.returncode != 0:
        return "     failed"
    result = json.loads(run.stdout)
    if "found" in result:
        return f"{result['seconds']:9.4f} {result['found']:11,} found"
    return f"{result['seconds']:9.4f} {result['tetrahedra']:11,} {result['megabytes']:6.0f}"


def main(program, workloads):
    print(f"{'':15} {'library':11} {'seconds':>9} {'tetrahedra':>11} {'MB':>6}")
    for workload in workloads or [*WORKLOADS, "find_simplex"]:
        for library in LIBRARIES if workload in WORKLOADS else ["tulo3d", "scipy"]:
            line = in_own_process(library, workload, program)
            print(f"{workload:15} {library:11} {line}", flush=True)


if __name__ == "__main__":
    if sys.argv[1] == "--work":
        locate(sys.argv[2]) if sys.argv[3] == "find_simplex" else work(*sys.argv[2:])
    else:
        main(sys.argv[1], sys.argv[2:])
