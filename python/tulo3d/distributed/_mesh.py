# SPDX-License-Identifier: MIT
"""A mesh in a folder, one file a tile."""

from __future__ import annotations

import json
from collections.abc import Callable, Iterator
from dataclasses import asdict, dataclass
from functools import cached_property, partial
from pathlib import Path
from typing import IO, TYPE_CHECKING, Any, TypeVar

import numpy as np
import numpy.typing as npt

from .._input import FloatArray, Int32Array, Int64Array
from .._mesh import _OUTSIDE, Mesh
from .._pictures import to_meshio
from . import _files
from ._sources import AnyPath

if TYPE_CHECKING:
    from distributed import Client

Result = TypeVar("Result")

INDEX = "mesh.json"
_FORMAT = 1


@dataclass(frozen=True, eq=False)
class Tile:
    """The tetrahedra of one tile, with all that is needed to work on them alone.

    Attributes
    ----------
    points : ndarray, shape (n, 3)
        The tile's own vertices, then those of other tiles that its tetrahedra have.
    index : ndarray of int64, shape (n,)
        The input index of each of them: that of the first point with these coordinates.
    num_own : int
        How many are the tile's own. Each vertex of the mesh is the own one of one tile.
    simplices : ndarray of int32, shape (m, 4)
        The vertices of each tetrahedron, in positive order. Each tetrahedron of the mesh is in one tile.
    neighbors : ndarray of int32 or int64, shape (m, 4)
        The numbers, in the whole mesh, of the tetrahedra beyond each facet; -1 on the hull.
    first_simplex : int
        The number of this tile's first tetrahedron in the whole mesh.
    duplicates : ndarray of int64, shape (k, 2)
        The input index of each point that repeats an earlier one, and that one's.
    """

    points: FloatArray
    index: Int64Array
    num_own: int
    simplices: Int32Array
    neighbors: npt.NDArray[Any]
    first_simplex: int
    duplicates: Int64Array

    @cached_property
    def _mesh(self) -> Mesh:
        local = self.neighbors - self.neighbors.dtype.type(self.first_simplex)
        local[(local < 0) | (local >= len(self.simplices))] = -1
        vertices = np.arange(len(self.points), dtype=np.int32)
        return Mesh(self.points, self.simplices, local.astype(np.int32, copy=False), vertices)

    @property
    def volumes(self) -> FloatArray:
        """The volume of each tetrahedron."""
        return self._mesh.volumes

    @property
    def quality(self) -> FloatArray:
        """As `Delaunay.quality`: 1 for a regular tetrahedron, near 0 for a flat one."""
        return self._mesh.quality

    @property
    def dihedral_angles(self) -> FloatArray:
        """As `Delaunay.dihedral_angles`."""
        return self._mesh.dihedral_angles

    @property
    def hull(self) -> Int32Array:
        """The triangles of this tile on the hull of all points, shape (h, 3), counter-clockwise from outside."""
        tet, facet = np.nonzero(self.neighbors < 0)
        triangles: Int32Array = self.simplices[tet[:, np.newaxis], _OUTSIDE[facet]]
        return triangles

    def save(self, file: IO[bytes]) -> None:
        """Write the arrays as NumPy's npz."""
        arrays: dict[str, Any] = {name: value for name, value in vars(self).items() if name != "_mesh"}
        np.savez(file, **arrays)

    @classmethod
    def load(cls, path: AnyPath) -> Tile:
        """Read what `save` has written."""
        with np.load(path) as arrays:
            values = {name: arrays[name] for name in arrays.files}
        for name in ("num_own", "first_simplex"):
            values[name] = int(values[name])
        return cls(**values)


@dataclass(frozen=True)
class TileInfo:
    """What the index tells of a tile."""

    num_vertices: int
    num_simplices: int
    num_hull_facets: int
    num_duplicates: int
    volume: float
    hull_volume: float  # its part of that, between the hull's triangles and one point

    @classmethod
    def of(cls, tile: Tile, origin: FloatArray) -> TileInfo:
        """Measure a tile; parts of the hull's volume reach from its triangles to the origin given."""
        hull = tile.points[tile.hull] - origin
        parts = np.einsum("ij,ij->i", hull[:, 0], np.cross(hull[:, 1], hull[:, 2])) / 6
        return cls(
            tile.num_own,
            len(tile.simplices),
            len(hull),
            len(tile.duplicates),
            float(tile.volumes.sum()),
            float(parts.sum()),
        )

    @staticmethod
    def file_name(number: int) -> str:
        """Return the name of a tile's file."""
        return f"tile_{number:06}.npz"


@dataclass(frozen=True)
class Statistics:
    """What it took to make a mesh.

    `num_received` counts, over all tiles, the vertices of others that they have inserted, and `num_rounds` how often
    the tile with most of that has searched and found some; `num_edges` is None unless it was asked for.
    """

    num_received: int
    num_rounds: int
    num_edges: int | None
    seconds: dict[str, float]


class TiledMesh:
    """A mesh in a folder.

    Nothing is loaded but what is asked for. Functions of single tiles run where the mesh is, one after another, or in
    the workers of a Dask client.

    Attributes
    ----------
    folder : Path
    npoints : int
        The number of input points.
    min_bound, max_bound : ndarray, shape (3,)
    tiles : list of TileInfo
    statistics : Statistics
    """

    def __init__(self, folder: AnyPath) -> None:
        self.folder = Path(folder).absolute()
        try:
            index = json.loads((self.folder / INDEX).read_text(encoding="utf-8"))
        except FileNotFoundError:
            raise FileNotFoundError(f"{self.folder} holds no mesh: there is no {INDEX}") from None
        if index["format"] != _FORMAT:
            raise ValueError(f"{self.folder}: format {index['format']}, known is {_FORMAT}")
        self.tiles = [TileInfo(**values) for values in index["tiles"]]
        self.npoints: int = index["npoints"]
        self.min_bound = np.array(index["min_bound"])
        self.max_bound = np.array(index["max_bound"])
        self.statistics = Statistics(**index["statistics"])

    @staticmethod
    def _create(
        folder: Path,
        tiles: list[TileInfo],
        npoints: int,
        bounds: tuple[FloatArray, FloatArray],
        statistics: Statistics,
    ) -> None:
        index = {
            "format": _FORMAT,
            "npoints": npoints,
            "min_bound": bounds[0].tolist(),
            "max_bound": bounds[1].tolist(),
            "statistics": asdict(statistics),
            "tiles": [asdict(tile) for tile in tiles],
        }
        text = json.dumps(index, indent=1).encode()
        _files.write(folder / INDEX, lambda file: file.write(text))

    @property
    def ntiles(self) -> int:
        """The number of tiles."""
        return len(self.tiles)

    @property
    def nvertices(self) -> int:
        """The number of distinct points."""
        return sum(tile.num_vertices for tile in self.tiles)

    @property
    def nsimplex(self) -> int:
        """The number of tetrahedra."""
        return sum(tile.num_simplices for tile in self.tiles)

    @property
    def nduplicates(self) -> int:
        """The number of points that repeat an earlier one."""
        return sum(tile.num_duplicates for tile in self.tiles)

    @property
    def num_hull_facets(self) -> int:
        """The number of triangles of the convex hull."""
        return sum(tile.num_hull_facets for tile in self.tiles)

    @property
    def volume(self) -> float:
        """The sum of the volumes of all tetrahedra."""
        return sum(tile.volume for tile in self.tiles)

    @property
    def hull_volume(self) -> float:
        """The volume within the triangles of the hull, for comparison; each part reaches from the middle of the box."""
        return sum(tile.hull_volume for tile in self.tiles)

    @property
    def euler_characteristic(self) -> int | None:
        """Vertices - edges + facets - tetrahedra: 1 for a ball. None unless edges were counted."""
        if self.statistics.num_edges is None:
            return None
        num_facets = (4 * self.nsimplex + self.num_hull_facets) // 2
        return self.nvertices - self.statistics.num_edges + num_facets - self.nsimplex

    def tile(self, number: int) -> Tile:
        """Load a tile."""
        if not 0 <= number < self.ntiles:
            raise IndexError(f"there are {self.ntiles} tiles, and none of number {number}")
        return Tile.load(self.folder / TileInfo.file_name(number))

    def __iter__(self) -> Iterator[Tile]:
        """Load one tile after another."""
        return (self.tile(number) for number in range(self.ntiles))

    def __len__(self) -> int:
        """Return the number of tiles."""
        return self.ntiles

    def map_tiles(self, function: Callable[[Tile], Result], *, client: Client | None = None) -> list[Result]:
        """Return function(tile) of each tile: by the workers of a client, or without one here, one after another."""
        if client is None:
            return [function(tile) for tile in self]
        paths = [self.folder / TileInfo.file_name(number) for number in range(self.ntiles)]
        futures = client.map(_call_on_tile, paths, function=function, pure=False)
        results: list[Result] = client.gather(futures)
        return results

    def hull(self, *, client: Client | None = None) -> Int64Array:
        """Return the triangles of the convex hull by input indices, counter-clockwise from outside."""
        return np.concatenate(self.map_tiles(_hull_of, client=client))

    def quality_histogram(
        self, bins: int = 50, *, client: Client | None = None
    ) -> tuple[Int64Array, FloatArray]:
        """Return how many tetrahedra have a quality in each bin from 0 to 1, and the edges of the bins."""
        edges = np.linspace(0, 1, bins + 1)
        parts = self.map_tiles(partial(_quality_histogram, edges), client=client)
        return np.sum(parts, axis=0), edges

    def checksum(self, *, client: Client | None = None) -> int:
        """Return the `tetrahedra_checksum` of all tetrahedra by input indices, whatever the tiles."""
        return sum(self.map_tiles(_checksum_of, client=client)) % (1 << 64)

    def write_vtu(self, folder: AnyPath, *, client: Client | None = None) -> Path:
        """Write each tile as a `.vtu` with zlib, and `mesh.pvtu`, which ParaView opens. Needs meshio."""
        target = Path(folder).absolute()
        target.mkdir(parents=True, exist_ok=True)
        paths = [self.folder / TileInfo.file_name(number) for number in range(self.ntiles)]
        if client is None:
            for path in paths:
                _write_vtu(path, folder=target)
        else:
            client.gather(client.map(_write_vtu, paths, folder=target, pure=False))
        pieces = "".join(f'    <Piece Source="{path.stem}.vtu"/>\n' for path in paths)
        text = _PVTU.format(pieces=pieces)
        _files.write(target / "mesh.pvtu", lambda file: file.write(text.encode()))
        return target / "mesh.pvtu"

    def __repr__(self) -> str:
        return (
            f"<TiledMesh of {self.npoints} points: {self.nsimplex} tetrahedra in {self.ntiles} tiles,"
            f" {self.folder}>"
        )


def open_mesh(folder: AnyPath) -> TiledMesh:
    """Open a mesh that `triangulate` has made."""
    return TiledMesh(folder)


def tetrahedra_checksum(simplices: npt.NDArray[Any]) -> int:
    """Return a number of 64 bits for tetrahedra by input indices, in whatever order they and their corners are."""
    corners = np.sort(simplices.astype(np.uint64), axis=1)
    state = np.zeros(len(corners), dtype=np.uint64)
    for column in corners.T:
        # The finalizer of SplitMix64 (G. Steele, D. Lea, C. Flood: Fast Splittable Pseudorandom Number
        # Generators, OOPSLA 2014).
        state = state + column + np.uint64(0x9E3779B97F4A7C15)
        state = (state ^ (state >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        state = (state ^ (state >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
        state = state ^ (state >> np.uint64(31))
    return int(state.sum(dtype=np.uint64))


def _call_on_tile(path: Path, function: Callable[[Tile], Result]) -> Result:
    return function(Tile.load(path))


def _hull_of(tile: Tile) -> Int64Array:
    return tile.index[tile.hull]


def _checksum_of(tile: Tile) -> int:
    return tetrahedra_checksum(tile.index[tile.simplices])


def _quality_histogram(edges: FloatArray, tile: Tile) -> Int64Array:
    return np.histogram(tile.quality, edges)[0]


def _write_vtu(path: Path, folder: Path) -> None:
    tile = Tile.load(path)
    mesh = to_meshio(tile)
    mesh.point_data["index"] = tile.index
    mesh.write(folder / f"{path.stem}.vtu")


_PVTU = """<?xml version="1.0"?>
<VTKFile type="PUnstructuredGrid" version="0.1" byte_order="LittleEndian">
  <PUnstructuredGrid GhostLevel="0">
    <PPoints>
      <PDataArray type="Float64" Name="Points" NumberOfComponents="3"/>
    </PPoints>
    <PPointData>
      <PDataArray type="Int64" Name="index"/>
    </PPointData>
{pieces}  </PUnstructuredGrid>
</VTKFile>
"""
