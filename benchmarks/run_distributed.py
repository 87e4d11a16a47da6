#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Triangulates uniform points on Dask workers of this machine, and prints one line of JSON.

Needs tulo3d[distributed]; peak memory is that of the worker with the most. The points are made by the workers.
"""
import argparse
import json
import resource
import time

import numpy as np
from distributed import Client, LocalCluster
from tulo3d.distributed import triangulate

CHUNK = 1_000_000


def points_of(chunk, num_points):
    """A chunk of CHUNK points, the last one of the rest."""
    num = min(CHUNK, num_points - chunk * CHUNK)
    return np.random.default_rng(chunk).random((num, 3))


def peak_gb():
    """The peak memory of this process."""
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1e6


def measure(options, client):
    """What one run gave and cost."""
    start = time.perf_counter()
    mesh = triangulate(lambda chunk: points_of(chunk, options.points), options.folder, client=client,
                       num_chunks=-(-options.points // CHUNK), tile_size=options.tile_size,
                       count_edges=True, progress=options.bar)
    return {"points": mesh.npoints, "tets": mesh.nsimplex, "tiles": mesh.ntiles,
            "wall": round(time.perf_counter() - start, 1),
            "stages": {stage: round(s, 1) for stage, s in mesh.statistics.seconds.items()},
            "peak_gb": round(max(client.run(peak_gb).values()), 2),
            "received": mesh.statistics.num_received, "rounds": mesh.statistics.num_rounds,
            "euler": mesh.euler_characteristic, "volume": mesh.volume, "hull_volume": mesh.hull_volume,
            "checksum": hex(mesh.checksum(client=client))}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", help="the mesh, some 260 bytes a point; twice as much on the way")
    parser.add_argument("--points", type=int, default=10_000_000)
    parser.add_argument("--tile-size", type=int, default=1_000_000)
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--memory", default="6GB", help="the limit of each worker")
    parser.add_argument("--bar", action="store_true", help="show progress")
    options = parser.parse_args()
    with LocalCluster(n_workers=options.workers, threads_per_worker=1, memory_limit=options.memory,
                      dashboard_address=None) as cluster, Client(cluster) as client:
        print(json.dumps(measure(options, client)))


if __name__ == "__main__":
    main()
