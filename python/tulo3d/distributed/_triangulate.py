# SPDX-License-Identifier: MIT
"""The order in which tasks run, and what passes between them."""

from __future__ import annotations

import shutil
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import TYPE_CHECKING, Any

import numpy as np

from .. import _core
from .._input import FlatError, FloatArray, Int64Array
from . import _stages
from ._files import Scratch
from ._mesh import INDEX, Statistics, TiledMesh
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
    progress: Progress | None = None,
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
        Whose workers do it; None starts a cluster on this machine, one process a core.
    tile_size : int, optional
        About so many points a tile.
    num_chunks : int, optional
        The number of chunks of a callable.
    count_edges : bool, optional
        Count the edges of the mesh, too, for `TiledMesh.euler_characteristic`.
    progress : callable, optional
        Called as ``progress(stage, num_done, num_tasks)``; an exception that it raises ends the work.

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
    After an exception the folder is as it was. A worker that dies costs the time of its tasks: they are done again by
    others.
    """
    if tile_size < 1:
        raise ValueError(f"tile_size is positive, not {tile_size}")
    target = Path(folder).absolute()
    chunks = chunks_of(points, num_chunks, tile_size)
    with _new_folder(target), _workers(client) as workers:
        scratch_folder = target / "scratch"
        scratch_folder.mkdir()
        _Work(workers, Scratch(scratch_folder), target, progress).run(chunks, tile_size, count_edges)
        shutil.rmtree(scratch_folder)
    return TiledMesh(target)


@contextmanager
def _new_folder(folder: Path) -> Iterator[None]:
    """Leave nothing behind after an exception."""
    existed = folder.exists()
    if existed and (not folder.is_dir() or any(folder.iterdir())):
        raise FileExistsError(f"{folder} is not an empty folder")
    folder.mkdir(parents=True, exist_ok=True)
    try:
        yield
    except BaseException:
        for _ in range(100):  # tasks that have been cancelled may be at their last file
            shutil.rmtree(folder, ignore_errors=True)
            if not folder.exists():
                break
            time.sleep(0.1)
        if existed:
            folder.mkdir(exist_ok=True)
        raise


@contextmanager
def _workers(client: Client | None) -> Iterator[Client]:
    if client is not None:
        yield client
        return
    from distributed import Client, LocalCluster

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

    def _each(self, function: Callable[..., Any], numbers: range, *arguments: Any) -> list[Any]:
        """Return function(scratch, number, *arguments) of each number."""
        tasks = [
            self.client.submit(function, self.scratch, number, *arguments, pure=False)
            for number in numbers
        ]
        return self._results(function.__name__, tasks)

    def _results(self, stage: str, tasks: list[Any]) -> list[Any]:
        from distributed import as_completed

        begin = time.perf_counter()
        try:
            for number, task in enumerate(as_completed(tasks), 1):
                task.result()  # the first failure ends it
                if self.progress is not None:
                    self.progress(stage, number, len(tasks))
            results: list[Any] = self.client.gather(tasks)
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

        samples = self._each(_stages.sort, range(len(chunks)), corners)
        scratch.remove("chunk")
        weighted = [(size / max(len(part), 1), part) for size, part in zip(sizes, samples)]
        num_tiles = max(1, round(num_points / tile_size))
        splitters = _stages.choose_splitters(weighted, num_tiles)
        first_indices = _stages._sums(sizes)
        found = self._each(
            _stages.collect, range(len(splitters)), corners, first_indices, splitters
        )
        scratch.remove("sorted", "sortedkeys", "sortedindex")
        layout = _stages.Layout(
            [tile.size for tile in found],
            [(tile.first_key, tile.last_key) for tile in found],
            any(tile.num_duplicates > 0 for tile in found),
            any(info.may_underflow for info in chunk_infos),
        )
        tiles = range(len(found))
        lowest = self._rank(layout, tiles)

        meshes = self._each(_stages.mesh, tiles, layout, lowest, count_edges)
        self._expect_agreement(meshes)
        first_tets = _stages._sums(np.array([mesh.num_tets for mesh in meshes], dtype=np.int64))
        infos = self._finish(layout, meshes, first_tets, low / 2 + high / 2)
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
        else:
            tasks = [
                self.client.submit(_stages.read, self.scratch, i, chunk, pure=False)
                for i, chunk in enumerate(chunks)
            ]
        return self._results("read", tasks)

    def _rank(self, layout: _stages.Layout, tiles: range) -> _stages.Positions:
        """Rank all vertices, and return the positions of the lowest."""
        four = _stages.first_four(self.scratch, len(tiles))
        if len(four) < 4:
            raise FlatError(f"all {sum(layout.sizes)} points are in one plane: no tetrahedra")
        places_of_four: list[int] = []
        for tile in {tile: None for tile, _ in four}:
            places = [place for other, place in four if other == tile]
            task = self.client.submit(
                _stages.insertion_places_of, self.scratch, tile, places, layout, pure=False
            )
            places_of_four += task.result()
        lowest = self._each(_stages.rank, tiles, layout, four, places_of_four)
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
        tasks = [
            self.client.submit(
                _stages.finish,
                self.scratch,
                self.folder,
                tile,
                layout,
                first_tets,
                sources[tile],
                origin,
                pure=False,
            )
            for tile in range(len(meshes))
        ]
        return self._results("finish", tasks)
