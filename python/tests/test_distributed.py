# SPDX-License-Identifier: MIT
"""One mesh by many processes: that of one engine, whatever the chunks, tiles, workers and their deaths."""

import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import dask.array
import laspy
import meshio
import numpy as np
import pyarrow
import pyarrow.parquet
import pytest
import pyvista
import tulo3d
from distributed import Client, LocalCluster
from families import FAMILIES, sorted_rows
from tulo3d.distributed import open_mesh, tetrahedra_checksum, triangulate

POINTS = np.random.default_rng(3).random((3000, 3))
LATTICE = np.stack(np.meshgrid(*[np.arange(12.0)] * 3), axis=-1).reshape(-1, 3)
# In no order of the curve, so that the rank of a vertex has to come from its place in the input.
CROWDED = np.concatenate([np.random.default_rng(4).permutation(LATTICE) * 1e-6, [[1, 1, 1], [-1, -1, -1]]])

HALVES = {"north": slice(0, 1700), "south": slice(1700, None)}


@pytest.fixture(scope="module")
def client():
    with (
        LocalCluster(n_workers=1, threads_per_worker=2, processes=False, dashboard_address=":0") as cluster,
        Client(cluster) as client,
    ):
        yield client


def chunks(points, num=4):
    """A callable of a chunk's number, and their number; one chunk is empty."""
    parts = [*np.array_split(points, num - 1), np.empty((0, 3))]
    return parts.__getitem__, num


def whole(mesh):
    """All tetrahedra by input indices, and their neighbours."""
    tiles = list(mesh)
    return (
        np.concatenate([tile.index[tile.simplices] for tile in tiles]),
        np.concatenate([tile.neighbors for tile in tiles]),
    )


def expect_same(mesh, points):
    one = tulo3d.Delaunay(points, workers=2)
    simplices, neighbors = whole(mesh)
    assert len(simplices) == mesh.nsimplex == one.nsimplex
    assert sorted_rows(simplices) == sorted_rows(one.simplices)
    own = np.concatenate([tile.index[: tile.num_own] for tile in mesh])
    assert sorted(own) == np.unique(one.vertex_of_point).tolist()
    duplicates = np.concatenate([tile.duplicates for tile in mesh])
    assert (one.vertex_of_point[duplicates[:, 0]] == duplicates[:, 1]).all()
    assert len(points) == mesh.npoints == len(own) + len(duplicates)
    # Facet k is shared with neighbour k, or is on the hull.
    tet, k = np.nonzero(neighbors >= 0)
    facets = np.sort(np.stack([np.delete(simplices, i, axis=1) for i in range(4)], axis=1), axis=2)
    beyond = neighbors[tet, k]
    back = (neighbors[beyond] == tet[:, np.newaxis]).argmax(axis=1)
    assert (facets[tet, k] == facets[beyond, back]).all()
    assert sorted_rows(mesh.hull()) == sorted_rows(one.convex_hull)
    assert mesh.euler_characteristic == 1


@pytest.mark.parametrize("name", FAMILIES)
@pytest.mark.parametrize("tile_size", [130, 20])
def test_hard_inputs_have_the_mesh_of_one_engine(name, tile_size, client, tmp_path):
    points = FAMILIES[name]
    read, num = chunks(points)
    mesh = triangulate(
        read, tmp_path / "m", client=client, num_chunks=num, tile_size=tile_size, count_edges=True
    )
    expect_same(mesh, points)


@pytest.mark.parametrize("points", [POINTS, LATTICE, CROWDED, np.concatenate([CROWDED, CROWDED[::3]])])
def test_neither_chunks_nor_tiles_decide_the_mesh(points, client, tmp_path):
    sums = []
    for tile_size, num in (10**6, 2), (400, 9), (100, 3):
        read, num = chunks(points, num)
        mesh = triangulate(
            read,
            tmp_path / f"m{num}",
            client=client,
            num_chunks=num,
            tile_size=tile_size,
            count_edges=True,
        )
        expect_same(mesh, points)
        assert mesh.volume == pytest.approx(mesh.hull_volume, rel=1e-3)
        assert all(tile.num_own > 0 for tile in mesh)
        sums.append(mesh.checksum(client=client))
    assert len(set(sums)) == 1


def test_a_worker_that_dies_in_any_stage_changes_nothing(tmp_path):
    read, num = chunks(POINTS)
    killed = []

    def kill_one(stage, num_done, num_tasks):
        if stage in killed:
            return
        killed.append(stage)
        os.kill(next(iter(client.run(os.getpid).values())), signal.SIGKILL)

    with (
        LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=":0", silence_logs=60) as cluster,
        Client(cluster) as client,
    ):
        mesh = triangulate(
            read,
            tmp_path / "m",
            client=client,
            num_chunks=num,
            tile_size=400,
            count_edges=True,
            progress=kill_one,
        )
    expect_same(mesh, POINTS)
    assert killed == ["read", "sort", "collect", "insertion_places_of", "rank", "mesh", "finish"]
    expect_only_a_mesh(tmp_path / "m", mesh)


def expect_only_a_mesh(folder, mesh):
    assert sorted(path.name for path in folder.iterdir()) == [
        "mesh.json",
        *(f"tile_{i:06}.npz" for i in range(mesh.ntiles)),
    ]


def test_tasks_of_a_stopped_run_do_not_reach_the_next_one(client, tmp_path):
    parts = np.array_split(POINTS, 3)
    stopped = tmp_path / "stopped"

    def slow(i):
        while i == 0 and not stopped.exists():
            time.sleep(0.01)
        time.sleep(0.5 if i == 0 else 0)
        return parts[i] + 7

    def stop(*_):
        stopped.touch()
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        triangulate(slow, tmp_path / "m", client=client, num_chunks=3, tile_size=400, progress=stop)
    assert not (tmp_path / "m").exists()

    def last_is_late(i):
        time.sleep(1 if i == 2 else 0)
        return parts[i]

    mesh = triangulate(
        last_is_late,
        tmp_path / "m",
        client=client,
        num_chunks=3,
        tile_size=400,
        count_edges=True,
        progress=False,
    )
    expect_same(mesh, POINTS)
    expect_only_a_mesh(tmp_path / "m", mesh)


@pytest.mark.parametrize(("tile_size", "num"), [(20, 3), (2000, 400)])
def test_more_tiles_and_chunks_than_files_may_be_open(tile_size, num, client, tmp_path):
    resource = pytest.importorskip("resource")
    limits = resource.getrlimit(resource.RLIMIT_NOFILE)
    read, num = chunks(POINTS, num)
    resource.setrlimit(resource.RLIMIT_NOFILE, (256, limits[1]))
    try:
        mesh = triangulate(
            read, tmp_path / "m", client=client, num_chunks=num, tile_size=tile_size, count_edges=True
        )
    finally:
        resource.setrlimit(resource.RLIMIT_NOFILE, limits)
    expect_same(mesh, POINTS)


def write_las(path, points):
    las = laspy.LasData(laspy.LasHeader())
    las.header.scales = [2.0**-20] * 3
    las.x, las.y, las.z = np.rint(points.T * 2**20) / 2**20
    las.write(path)
    return np.stack([las.x, las.y, las.z], axis=1)


def allow_more_memory(num_bytes):
    import resource

    now = int(re.search(r"VmData:\s+(\d+) kB", Path("/proc/self/status").read_text())[1]) * 1024
    resource.setrlimit(resource.RLIMIT_DATA, (now + num_bytes, resource.RLIM_INFINITY))


def random_points(i, num=20_000):
    return np.random.default_rng(i).random((num, 3))


def one_engine(num_chunks):
    return tulo3d.Delaunay(np.concatenate([random_points(i) for i in range(num_chunks)])).nsimplex


@pytest.mark.skipif(sys.platform != "linux", reason="the limit and the memory in use are those of Linux")
def test_a_worker_needs_the_memory_of_a_tile_and_not_that_of_all_points(tmp_path):
    num_chunks = 20
    with (
        LocalCluster(n_workers=1, threads_per_worker=1, dashboard_address=":0", silence_logs=60) as cluster,
        Client(cluster) as client,
    ):
        client.submit(one_engine, 1).result()  # so that all is loaded
        client.run(allow_more_memory, 180_000_000)  # the process itself needs some, too
        with pytest.raises(MemoryError):
            client.submit(one_engine, num_chunks).result()
        mesh = triangulate(
            random_points, tmp_path / "m", client=client, num_chunks=num_chunks, tile_size=20_000
        )
    assert mesh.nvertices == 20_000 * num_chunks
    assert mesh.volume == pytest.approx(mesh.hull_volume, rel=1e-12)


def test_points_come_from_arrays_and_from_files(client, tmp_path):
    paths = [tmp_path / f"points.{suffix}" for suffix in ("npy", "parquet", "ply", "las")]
    np.save(paths[0], POINTS)
    table = pyarrow.table({axis: POINTS[:, i] for i, axis in enumerate("xyz")})
    pyarrow.parquet.write_table(table, paths[1], row_group_size=700)
    meshio.write_points_cells(paths[2], POINTS, {}, file_format="ply")
    rounded = write_las(paths[3], POINTS)
    sources = [dask.array.from_array(POINTS, chunks=(900, 2)), *paths[:3]]
    meshes = [
        triangulate(source, tmp_path / f"m{i}", client=client, tile_size=1000)
        for i, source in enumerate(sources)
    ]
    assert len({mesh.checksum() for mesh in meshes}) == 1
    empty = [tmp_path / f"empty.{suffix}" for suffix in ("npy", "parquet", "las")]
    np.save(empty[0], np.empty((0, 3)))
    pyarrow.parquet.write_table(table.slice(0, 0), empty[1])
    laspy.LasData(laspy.LasHeader()).write(empty[2])
    two = triangulate([*empty, paths[3], paths[0]], tmp_path / "two", client=client, tile_size=1000, count_edges=True)
    expect_same(two, np.concatenate([rounded, POINTS]))


def test_what_is_wrong_is_told_and_nothing_is_left(client, tmp_path):
    bad = POINTS.copy()
    bad[2500, 1] = np.nan
    torn = tmp_path / "torn.npy"
    np.save(torn, POINTS)
    torn.write_bytes(torn.read_bytes()[:-8])
    np.save(tmp_path / "wide.npy", np.zeros((9, 4)))
    flat = POINTS * [1, 1, 0]
    for source, num, error, text in (
        (*chunks(bad, 7), ValueError, r"chunk 5: coordinates must be finite.*point 0 "),
        (lambda i: POINTS if i > 0 else 1 // i, 2, ValueError, "chunk 0: integer division"),
        (torn, None, ValueError, r"torn.npy"),
        (tmp_path / "wide.npy", None, ValueError, r"wide.npy, points 0 to 9: points must have the shape"),
        (tmp_path / "none.npy", None, ValueError, "none.npy cannot be read: .*No such file"),
        (tmp_path / "points.xyz", None, ValueError, "files of points are"),
        (POINTS, None, TypeError, "dask.array.from_array"),
        (lambda i: POINTS, None, TypeError, "num_chunks"),
        (*chunks(flat), tulo3d.FlatError, "all 3000 points are in one plane"),
        (*chunks(POINTS[:3]), ValueError, "at least 4 points, not 3"),
    ):
        with pytest.raises(error, match=text):
            triangulate(source, tmp_path / "m", client=client, num_chunks=num, tile_size=1000)
        assert not (tmp_path / "m").exists()
    (tmp_path / "kept").write_text("mine")
    with pytest.raises(FileExistsError):
        triangulate(*chunks(POINTS)[:1], tmp_path, client=client, num_chunks=4)
    assert (tmp_path / "kept").read_text() == "mine"
    with pytest.raises(FileNotFoundError, match=r"holds no mesh"):
        open_mesh(tmp_path)


def test_the_first_lines_of_the_document_make_a_mesh_by_processes_of_their_own(tmp_path):
    text = (Path(__file__).parents[2] / "docs" / "distributed.md").read_text()
    (tmp_path / "example.py").write_text(text.split("```python\n")[1].split("```")[0])
    rounded = [write_las(tmp_path / f"{name}.las", POINTS[half]) for name, half in HALVES.items()]
    one = tulo3d.Delaunay(np.concatenate(rounded), workers=2)
    result = subprocess.run(
        [sys.executable, "example.py"], cwd=tmp_path, capture_output=True, text=True, check=False
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.split()[::2] == [str(one.nsimplex), str(len(POINTS) - len(np.unique(one.vertex_of_point)))]
    assert open_mesh(tmp_path / "terrain.mesh").checksum() == tetrahedra_checksum(one.simplices)
    assert (tmp_path / "terrain.vtu" / "mesh.pvtu").exists()


def test_results_need_no_gathering(client, tmp_path):
    read, num = chunks(np.concatenate([POINTS, POINTS[:50]]))
    told = []
    mesh = triangulate(
        read,
        tmp_path / "m",
        client=client,
        num_chunks=num,
        tile_size=700,
        progress=lambda *state: told.append(state),
    )
    assert told[-1] == ("finish", mesh.ntiles, mesh.ntiles)
    again = open_mesh(tmp_path / "m")
    one = tulo3d.Delaunay(POINTS)
    assert (again.nvertices, again.nduplicates, again.nsimplex) == (3000, 50, one.nsimplex)
    assert again.volume == pytest.approx(one.volumes.sum())
    counts, edges = again.quality_histogram(20, client=client)
    np.testing.assert_array_equal(counts, np.histogram(one.quality, edges)[0])
    assert sum(again.map_tiles(lambda tile: len(tile.simplices), client=client)) == one.nsimplex
    pieces = pyvista.read(again.write_vtu(tmp_path / "vtu", client=client))
    assert pieces.n_cells == one.nsimplex
    assert pieces.compute_cell_sizes()["Volume"].sum() == pytest.approx(one.volumes.sum())
