# SPDX-License-Identifier: MIT
"""The order in which tasks run, and what passes between them."""

from __future__ import annotations

import os
import shutil
import sys
import time
import uuid
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager, suppress
from pathlib import Path
from typing import TYPE_CHECKING, Any

import numpy as np

from .. import _core
from .._input import FlatError, FloatArray, Int64Array
from . import _stages
from ._files import Scratch
from ._mesh import Statistics, TiledMesh, TileInfo
from ._sources import AnyPath, chunks_of

if TYPE_CHECKING:
    from distributed import Client

Progress = Callable[[str, int, int], object]

_MAX_POINTS = 2**31 - 1


def triangulate(
    points: Any,
    folder: AnyPath,
    *,
    client: Client | None = None,
    tile_size: int = 1_000_000,
    num_chunks: int | None = None,
    count_edges: bool = False,
    progress: Progress | bool | None = None,
) -> TiledMesh:
    """Make the mesh of points that need not fit into one memory.

    The tetrahedra are those that one `Delaunay` of all points has, whatever the tiles and workers, also where points
    are on common spheres: with `workers` other than 1, or as the first mesh of its process. A worker needs about 1 KB
    a point of a tile, and so many bytes again for points near to it.

    Parameters
    ----------
    points : dask array of shape (n, 3), path, list of paths, or callable
        Files are `.npy`, `.las`, `.laz` (laspy), `.parquet` with columns x, y, z (pyarrow) or `.ply` (meshio). A
        callable returns the points of a chunk by its number. The order of chunks is that of the input.
    folder : path
        Where the mesh goes, with scratch files in the meantime; all workers see it under this path. It is new or
        empty.
    client : distributed.Client, optional
        Whose workers do it. None stands for the current client, and if there is none, for a cluster on this machine,
        one process a core, which ends with the work.
    tile_size : int, optional
        About so many points a tile.
    num_chunks : int, optional
        The number of chunks of a callable.
    count_edges : bool, optional
        Count the edges of the mesh, too, for `TiledMesh.euler_characteristic`.
    progress : callable or bool, optional
        Called as ``progress(stage, num_done, num_tasks)``; an exception that it raises ends the work. True shows
        a bar.

    Returns
    -------
    TiledMesh

    Raises
    ------
    ValueError
        For points of another shape, type or range, a file that cannot be read, or fewer than four points.
    FlatError
        A `ValueError`: all points are in one plane.
    FileExistsError
        The folder is not empty.

    Notes
    -----
    After an exception the folder is as it was. A worker that dies costs the time of the tasks that it was at, and those are
    done again by others. Where the caller itself is killed, a folder ``scratch-...`` is left to be removed.
    """
    if tile_size < 1:
        raise ValueError(f"tile_size is positive, not {tile_size}")
    target = Path(folder).absolute()
    chunks = chunks_of(points, num_chunks, tile_size)
    report = _bar if progress is True else progress or None
    with _scratch_in(target) as scratch, _workers(client) as workers:
        _Work(workers, scratch, target, report).run(chunks, tile_size, count_edges)
    return TiledMesh(target)


def _bar(stage: str, num_done: int, num_tasks: int) -> None:
    width = 40
    filled = "#" * (width * num_done // num_tasks)
    end = "\n" if num_done == num_tasks else ""
    print(f"\r{stage:20} [{filled:{width}}] {num_done}/{num_tasks}", end=end, file=sys.stderr, flush=True)


@contextmanager
def _scratch_in(folder: Path) -> Iterator[Scratch]:
    """Make a folder, and in it one for scratch files whose name no other run has: tasks of one that was stopped
    may still be at work."""
    existed = folder.exists()
    if existed and (not folder.is_dir() or any(folder.iterdir())):
        raise FileExistsError(f"{folder} is not an empty folder")
    scratch = folder / f"scratch-{uuid.uuid4().hex}"
    scratch.mkdir(parents=True)
    try:
        yield Scratch(scratch)
    finally:
        for _ in range(100):  # tasks that have been cancelled may be at their last file
            shutil.rmtree(scratch, ignore_errors=True)
            if not scratch.exists():
                break
            time.sleep(0.1)
        if not existed and not any(folder.iterdir()):
            folder.rmdir()


@contextmanager
def _workers(client: Client | None) -> Iterator[Client]:
    try:
        from distributed import Client, LocalCluster, default_client
    except ImportError:
        raise ImportError('this needs Dask: pip install "tulo3d[distributed]"') from None
    if client is None:
        with suppress(ValueError):  # there is none
            client = default_client()
    if client is not None:
        yield client
        return
    with (
        LocalCluster(threads_per_worker=1, dashboard_address=":0") as cluster,
        Client(cluster) as own,
    ):
        yield own


class _Work:
    """One call of `triangulate`: tasks go to the client, stage by stage."""

    def __init__(
        self, client: Client, scratch: Scratch, folder: Path, progress: Progress | None
    ) -> None:
        self.client = client
        self.scratch = scratch
        self.folder = folder
        self.progress = progress
        self.seconds: dict[str, float] = {}

    def _each(self, function: Callable[..., Any], arguments: Iterable[tuple[Any, ...]]) -> list[Any]:
        """Return function(scratch, *arguments) for each of the arguments."""
        tasks = [
            self.client.submit(function, self.scratch, *each, pure=False, retries=2)
            for each in arguments
        ]
        return self._results(function.__name__, tasks)

    def _results(self, stage: str, tasks: list[Any]) -> list[Any]:
        from distributed import as_completed

        begin = time.perf_counter()
        results: list[Any] = [None] * len(tasks)
        place = {task.key: i for i, task in enumerate(tasks)}
        try:
            for num_done, task in enumerate(as_completed(tasks), 1):
                results[place[task.key]] = task.result()  # the first failure ends it
                task.release()  # what is known here is not done again when its worker dies
                if self.progress is not None:
                    self.progress(stage, num_done, len(tasks))
        except BaseException:
            self.client.cancel(tasks, force=True)
            raise
        self.seconds[stage] = time.perf_counter() - begin
        return results

    def run(self, chunks: list[Any], tile_size: int, count_edges: bool) -> None:
        """Do all stages, and write the index."""
        scratch = self.scratch
        chunk_infos = self._read(chunks)
        sizes = np.array([info.size for info in chunk_infos], dtype=np.int64)
        num_points = int(sizes.sum())
        if num_points < 4:
            raise ValueError(f"a tetrahedralization takes at least 4 points, not {num_points}")
        if num_points > _MAX_POINTS:
            raise ValueError(f"a mesh has at most {_MAX_POINTS} points, not {num_points}")
        low = np.min([info.low for info in chunk_infos], axis=0)
        high = np.max([info.high for info in chunk_infos], axis=0)
        corners = np.array([low, high])

        num_tiles = max(1, round(num_points / tile_size))
        step = max(1, num_points // (num_tiles * _stages.SAMPLES_PER_TILE))
        samples = self._each(_stages.sort, ((i, corners, step) for i in range(len(chunks))))
        scratch.remove("chunk")
        splitters = _stages.choose_splitters(samples, num_tiles)
        first_indices = _stages.sums(sizes)
        found = self._each(
            _stages.collect, ((i, corners, first_indices, splitters) for i in range(len(splitters)))
        )
        scratch.remove("sorted", "sortedkeys", "sortedindex")
        layout = _stages.Layout(
            [tile.size for tile in found],
            [(tile.first_key, tile.last_key) for tile in found],
            any(tile.num_duplicates > 0 for tile in found),
            any(info.may_underflow for info in chunk_infos),
        )
        tiles = range(len(found))
        lowest = self._rank(layout, tiles, num_points)

        meshes = self._each(_stages.mesh, ((i, layout, lowest, count_edges) for i in tiles))
        self._expect_agreement(meshes)
        first_tets = _stages.sums(np.array([mesh.num_tets for mesh in meshes], dtype=np.int64))
        infos = self._finish(layout, meshes, first_tets, low / 2 + high / 2)
        for i in tiles:
            name = TileInfo.file_name(i)
            os.replace(scratch.folder / name, self.folder / name)
        statistics = Statistics(
            sum(mesh.num_received for mesh in meshes),
            max(mesh.num_rounds for mesh in meshes),
            sum(mesh.num_edges for mesh in meshes) if count_edges else None,
            self.seconds,
        )
        TiledMesh._create(self.folder, infos, num_points, (low, high), statistics)

    def _read(self, chunks: list[Any]) -> list[Any]:
        """Read each chunk where it is computed, so that no worker has to hold several."""
        from dask.delayed import Delayed, delayed

        if chunks and isinstance(chunks[0], Delayed):
            read = delayed(_stages.read, pure=False)
            tasks = self.client.compute([read(self.scratch, i, chunk) for i, chunk in enumerate(chunks)])
            return self._results("read", tasks)
        return self._each(_stages.read, enumerate(chunks))

    def _rank(self, layout: _stages.Layout, tiles: range, num_points: int) -> _stages.Positions:
        """Rank all vertices, and return the positions of the lowest."""
        four = _stages.first_four(self.scratch, len(tiles))
        if len(four) < 4:
            raise FlatError(f"all {num_points} points are in one plane: no tetrahedra")
        wanted = {tile: [place for other, place in four if other == tile] for tile, _ in four}
        places = self._each(
            _stages.insertion_places_of, ((tile, places, layout) for tile, places in wanted.items())
        )
        places_of_four = [place for part in places for place in part]
        lowest = self._each(_stages.rank, ((i, layout, four, places_of_four) for i in tiles))
        ordered = sorted(pair for part in lowest for pair in part)
        return np.array([position for _, position in ordered], dtype=np.uint32)

    @staticmethod
    def _expect_agreement(meshes: list[_stages.TileMesh]) -> None:
        """Two tiles have found the same tetrahedra between them."""
        sums = np.array([mesh.checksums for mesh in meshes])
        if (sums != sums.T).any():
            one, other = np.argwhere(sums != sums.T)[0]
            raise _core.InternalError(f"tiles {one} and {other} have found different tetrahedra")

    def _finish(
        self,
        layout: _stages.Layout,
        meshes: list[_stages.TileMesh],
        first_tets: Int64Array,
        origin: FloatArray,
    ) -> list[Any]:
        sources: list[list[int]] = [[] for _ in meshes]
        for source, mesh in enumerate(meshes):
            for destination in mesh.destinations:
                sources[destination].append(source)
        return self._each(
            _stages.finish,
            ((i, layout, first_tets, sources[i], origin) for i in range(len(meshes))),
        )
