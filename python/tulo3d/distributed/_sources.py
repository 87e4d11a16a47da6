# SPDX-License-Identifier: MIT
"""Where points come from: in chunks, each read by one task."""

from __future__ import annotations

from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from os import PathLike, fspath
from pathlib import Path
from typing import Any, Union, cast

import numpy as np
import numpy.typing as npt

from ._files import needs

AnyPath = Union[str, "PathLike[str]"]


@dataclass(frozen=True)
class Chunk:
    """A part of the input; `read` returns its points, in any form that `Delaunay` takes."""

    name: str
    read: Callable[[], npt.ArrayLike]


def chunks_of(points: Any, num_chunks: int | None, chunk_size: int) -> list[Any]:
    """List the chunks of an input as `Chunk`s, or as Dask's delayed ones."""
    if callable(points):
        if num_chunks is None:
            raise TypeError("a function of a chunk's number needs num_chunks")
        function = cast("Callable[[int], npt.ArrayLike]", points)
        return [Chunk(f"chunk {i}", _Call(function, i)) for i in range(num_chunks)]
    if num_chunks is not None:
        raise TypeError("num_chunks goes with a function of a chunk's number")
    if hasattr(points, "to_delayed") and hasattr(points, "rechunk"):
        return _chunks_of_dask_array(points)
    if isinstance(points, (str, PathLike)):
        points = [points]
    if isinstance(points, Sequence) and all(isinstance(path, (str, PathLike)) for path in points):
        return [chunk for path in points for chunk in _chunks_of_file(path, chunk_size)]
    raise TypeError(
        "points are a dask array, the path of a file or a list of them, or a function of a chunk's number; "
        f"not {type(points).__name__}: an array in memory becomes one by dask.array.from_array"
    )


@dataclass(frozen=True)
class _Call:
    function: Callable[[int], npt.ArrayLike]
    number: int

    def __call__(self) -> npt.ArrayLike:
        return self.function(self.number)


def _chunks_of_dask_array(array: Any) -> list[Any]:
    from dask.delayed import delayed

    if array.ndim != 2 or array.shape[1] != 3:
        raise ValueError(f"points must have the shape (n, 3), not {array.shape}")
    rows = array.rechunk({1: 3}).to_delayed()[:, 0]
    return [delayed(_given)(f"chunk {i}", part) for i, part in enumerate(rows)]


def _given(name: str, points: npt.ArrayLike) -> Chunk:
    return Chunk(name, lambda: points)


@dataclass(frozen=True)
class _Rows:
    """Some rows of a file of a format."""

    reader: Callable[[str, int, int], npt.ArrayLike]
    path: str
    first: int
    last: int

    def __call__(self) -> npt.ArrayLike:
        return self.reader(self.path, self.first, self.last)


def _chunks_of_file(path: AnyPath, chunk_size: int) -> Iterator[Chunk]:
    name = fspath(Path(path).absolute())
    suffix = Path(name).suffix.lower()
    if suffix not in _FORMATS:
        raise ValueError(f"{name}: files of points are {', '.join(sorted(_FORMATS))}; others by a function")
    count, reader = _FORMATS[suffix]
    try:
        num_points = count(name)
    except ImportError as error:
        raise needs(error, f"reading {suffix} files") from None
    except Exception as error:
        raise ValueError(f"{name} cannot be read: {error}") from error
    for first in range(0, num_points, chunk_size):
        last = min(first + chunk_size, num_points)
        yield Chunk(f"{name}, points {first} to {last}", _Rows(reader, name, first, last))


def _count_npy(path: str) -> int:
    return len(np.load(path, mmap_mode="r"))


def _read_npy(path: str, first: int, last: int) -> npt.ArrayLike:
    rows: npt.NDArray[Any] = np.load(path, mmap_mode="r")[first:last]
    return rows


def _count_las(path: str) -> int:
    import laspy

    with laspy.open(path) as file:
        return int(file.header.point_count)


def _read_las(path: str, first: int, last: int) -> npt.ArrayLike:
    import laspy

    with laspy.open(path) as file:
        file.seek(first)
        points = file.read_points(last - first)
        return np.stack([points.x, points.y, points.z], axis=1)


def _count_parquet(path: str) -> int:
    import pyarrow.parquet

    return int(pyarrow.parquet.ParquetFile(path).metadata.num_rows)


def _read_parquet(path: str, first: int, last: int) -> npt.ArrayLike:
    import pyarrow.parquet

    # A row group may be larger than a chunk: only the rows of this one are kept.
    parts = []
    begin = 0
    for batch in pyarrow.parquet.ParquetFile(path).iter_batches(columns=["x", "y", "z"]):
        rows = batch.slice(max(first - begin, 0), max(last - max(first, begin), 0))
        parts.append(np.stack([rows.column(axis).to_numpy() for axis in ("x", "y", "z")], axis=1))
        begin += batch.num_rows
        if begin >= last:
            break
    return np.concatenate(parts)


def _count_ply(path: str) -> int:
    return len(_load_ply(path))


def _load_ply(path: str) -> npt.NDArray[np.float64]:
    import meshio

    return np.asarray(meshio.read(path).points)


def _read_ply(path: str, first: int, last: int) -> npt.ArrayLike:
    return _load_ply(path)[first:last]


_FORMATS: dict[str, tuple[Callable[[str], int], Callable[[str, int, int], npt.ArrayLike]]] = {
    ".las": (_count_las, _read_las),
    ".laz": (_count_las, _read_las),
    ".npy": (_count_npy, _read_npy),
    ".parquet": (_count_parquet, _read_parquet),
    ".ply": (_count_ply, _read_ply),
}
