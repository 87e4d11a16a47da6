# SPDX-License-Identifier: MIT
"""A mesh in its interpreter: copies, threads, signals, memory."""

import copy
import os
import pickle
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest
import tulo3d
from families import check_laws, sorted_rows

POINTS = np.random.default_rng(1).random((500, 3))
FEW = POINTS[:150]
MANY = np.random.default_rng(2).random((300_000, 3))


def test_copies_and_pickles_are_the_same_mesh_and_grow_on_their_own():
    points = np.append(POINTS, POINTS[7:9], axis=0)
    mesh = tulo3d.Delaunay(points[:300])
    mesh.add_points(points[300:])
    for other in (copy.copy(mesh), copy.deepcopy(mesh), pickle.loads(pickle.dumps(mesh))):
        for name in ("points", "simplices", "neighbors", "vertex_of_point", "vertex_to_simplex"):
            np.testing.assert_array_equal(getattr(other, name), getattr(mesh, name))
        np.testing.assert_array_equal(other.find_simplex(POINTS) >= 0, True)
        other.add_points([[2, 2, 2]])
        check_laws(other)
        assert (other.npoints, mesh.npoints) == (503, 502)
    make, arrays = mesh._mesh.__reduce__()
    simplices = mesh.simplices.copy()
    simplices[3, 1] = 502
    with pytest.raises(ValueError, match="not those of a mesh"):
        make(arrays[0], simplices, *arrays[2:])
    field = tulo3d.LinearInterpolator(mesh, points)
    np.testing.assert_array_equal(pickle.loads(pickle.dumps(field))(POINTS), field(POINTS))


def test_a_closed_mesh_can_be_read_but_not_grown():
    grown = tulo3d.Delaunay(POINTS)
    grown.close()
    for mesh in (grown, tulo3d.Delaunay(POINTS, incremental=False), copy.copy(grown)):
        with pytest.raises(RuntimeError, match="closed"):
            mesh.add_points(POINTS)
        check_laws(mesh)
        mesh.close()


class Stop(Exception):
    pass


def fail(done, total):
    raise Stop


def test_progress_is_told_and_its_exception_leaves_the_mesh_as_it_was():
    calls = []
    mesh = tulo3d.Delaunay(POINTS, progress=lambda *counts: calls.append(counts))
    assert calls[-1] == (500, 500)
    for scale in 1, 2:  # before anything is read, and afterwards
        with pytest.raises(Stop):
            mesh.add_points(scale * MANY, progress=fail)
        assert mesh.npoints == 500
        check_laws(mesh)
    before = mesh.simplices
    mesh.add_points(np.empty((0, 3)), restart=True)
    assert mesh.simplices is not before
    mesh.add_points(2 * POINTS)
    check_laws(mesh)


@pytest.mark.skipif(not hasattr(signal, "setitimer"), reason="a system without timers")
def test_signals_arrive_during_long_work():
    mesh = tulo3d.Delaunay(MANY)
    natural = tulo3d.NaturalNeighborInterpolator(mesh, MANY[:, 0])
    ticks = []

    def tick(*_):
        ticks.append(None)
        if len(ticks) == 4:  # were they held back until the end, there would be one
            raise Stop

    signal.signal(signal.SIGALRM, tick)
    signal.setitimer(signal.ITIMER_REAL, 0.02, 0.02)
    try:
        for work in (lambda: mesh.add_points(MANY + 0.5), lambda: natural(MANY + 1e-4)):
            ticks.clear()
            with pytest.raises(Stop):
                work()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
    assert mesh.npoints == len(MANY)


def test_other_threads_run_and_one_object_is_for_one_of_them():
    mesh = tulo3d.Delaunay(POINTS)
    inside, leave = threading.Event(), threading.Event()

    def wait(done, total):
        inside.set()
        leave.wait()

    busy = threading.Thread(target=mesh.add_points, args=(POINTS + 1,), kwargs={"progress": wait})
    busy.start()
    inside.wait()
    for use in (lambda: mesh.add_points(POINTS), lambda: mesh.simplices, mesh.close):
        with pytest.raises(RuntimeError, match="at work"):
            use()
    leave.set()
    busy.join()
    assert mesh.npoints == 1000
    check_laws(mesh)

    worker = threading.Thread(target=tulo3d.Delaunay, args=(MANY,))
    worker.start()
    turns = 0
    while worker.is_alive():
        turns += 1
    assert turns > 1000


def test_many_meshes_in_many_threads_are_those_of_one_thread():
    inputs = [np.random.default_rng(seed).random((1000 + 200 * seed, 3)) for seed in range(8)]
    expected = [tulo3d.Delaunay(points) for points in inputs]
    shared = tulo3d.Delaunay(MANY)  # copied once, by whichever thread reads it first
    outcomes, copies = [], set()

    def work(turn):
        copies.add(id(shared.simplices))
        for i in range(len(inputs)):
            j = (i + turn) % len(inputs)
            mesh = tulo3d.Delaunay(inputs[j][::2])
            mesh.add_points(inputs[j][1::2])
            order = np.r_[0 : len(inputs[j]) : 2, 1 : len(inputs[j]) : 2]
            same = sorted_rows(order[mesh.simplices]) == sorted_rows(expected[j].simplices)
            outcomes.append(same and (shared.find_simplex(inputs[0]) >= 0).all())

    threads = [threading.Thread(target=work, args=(turn,)) for turn in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert outcomes == [True] * 32 and len(copies) == 1


@pytest.mark.skipif(not sys.platform.startswith("linux"), reason="memory is read from /proc")
def test_a_thousand_meshes_leave_no_memory_behind():
    def resident():
        with open("/proc/self/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")

    def use():
        mesh = tulo3d.Delaunay(FEW)
        mesh.add_points(FEW + 0.5)
        _ = mesh.stars, mesh.vertex_neighbor_vertices, mesh.circumcenters, mesh.find_simplex(FEW)
        tulo3d.LinearInterpolator(mesh, np.zeros(300)).gradient(FEW[:9])
        with pytest.raises(Stop):
            mesh.add_points(FEW + 1, progress=fail)
        with pytest.raises(tulo3d.FlatError):
            tulo3d.Delaunay(FEW * [1, 1, 0])

    for _ in range(100):
        use()
    before = resident()
    for _ in range(1000):
        use()
    assert resident() - before < 20e6  # each holds some 300 kB


OUT_OF_MEMORY = """
import resource, sys, numpy as np, tulo3d
points = np.random.default_rng(1).random((100_000, 3))
mesh = tulo3d.Delaunay(points[:1000])
used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
numErrors = 0
for megabytes in range(2, 110, 6):
    for make in (lambda: tulo3d.Delaunay(points), lambda: mesh.add_points(points) or mesh):
        resource.setrlimit(resource.RLIMIT_AS, (used + megabytes * 2**20, resource.RLIM_INFINITY))
        try:
            make().simplices
        except MemoryError:
            numErrors += 1
        resource.setrlimit(resource.RLIMIT_AS, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
    assert mesh.npoints % 100_000 == 1000 and mesh.is_valid()
print(numErrors > 10)
"""


@pytest.mark.skipif(not sys.platform.startswith("linux"), reason="memory is limited by setrlimit")
def test_when_memory_runs_out_there_is_a_memory_error():
    environment = {**os.environ, "OPENBLAS_NUM_THREADS": "1"}
    run = subprocess.run(
        [sys.executable, "-c", OUT_OF_MEMORY], capture_output=True, text=True, env=environment, check=False
    )
    assert (run.returncode, run.stdout, run.stderr) == (0, "True\n", "")
