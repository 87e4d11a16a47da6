# SPDX-License-Identifier: MIT
"""What workers do: functions of numbers and of files that never change, so that any of them can be done again.

Chunks are parts of the input; tiles are ranges of the space-filling curve. A vertex has two names: its place along the
curve, without gaps, from which its rank follows; and its position, where every tile begins at a multiple of `BLOCK`.
"""

from __future__ import annotations

from bisect import bisect_left
from dataclasses import dataclass
from typing import Any

import numpy as np
import numpy.typing as npt

from .. import _core
from .._input import FloatArray, Int64Array, as_points
from . import _files
from ._files import Scratch
from ._mesh import Tile, TileInfo
from ._sources import Chunk

Splitter = tuple[int, float, float, float]
"""The least key and coordinates of a tile."""

Positions = npt.NDArray[np.uint32]

SAMPLES_PER_TILE = 200


@dataclass(frozen=True)
class ChunkInfo:
    size: int
    low: FloatArray
    high: FloatArray
    may_underflow: bool


@dataclass(frozen=True)
class TilePoints:
    """What is known of the distinct points of a tile."""

    size: int
    num_duplicates: int
    first_key: int
    last_key: int


@dataclass(frozen=True)
class Layout:
    """The tiles as all tasks see them."""

    sizes: list[int]
    keys: list[tuple[int, int]]  # the first and last of each
    has_duplicates: bool
    may_underflow: bool

    @property
    def first_places(self) -> Int64Array:
        return sums(np.array(self.sizes, dtype=np.int64))

    @property
    def first_positions(self) -> Int64Array:
        return sums(-(-np.array(self.sizes, dtype=np.int64) // _core.BLOCK) * _core.BLOCK)

    def tile_of(self, positions: Positions) -> Int64Array:
        return np.searchsorted(self.first_positions, positions, side="right") - 1

    def sharing(self, key: int) -> list[int]:
        """List the tiles with points of a cell of the curve."""
        return [tile for tile, (first, last) in enumerate(self.keys) if first <= key <= last]


def sums(counts: Int64Array) -> Int64Array:
    """Return what comes before each, and the sum of all at the end."""
    sums: Int64Array = np.concatenate([np.zeros(1, dtype=np.int64), np.cumsum(counts)])
    return sums


def read(scratch: Scratch, number: int, chunk: Chunk) -> ChunkInfo:
    """Read a chunk, check it, and keep it."""
    try:
        points = as_points(chunk.read())
    except (ImportError, MemoryError):
        raise
    except Exception as error:
        raise ValueError(f"{chunk.name}: {error}") from error
    scratch.save("chunk", number, points)
    empty = np.full(3, np.inf)
    low = points.min(axis=0) if len(points) > 0 else empty
    high = points.max(axis=0) if len(points) > 0 else -empty
    return ChunkInfo(len(points), low, high, _core.may_underflow(points))


@dataclass(frozen=True)
class Samples:
    """Points of a sorted chunk that stand for so many others each."""

    keys: npt.NDArray[np.uint32]
    points: FloatArray
    weight: float


def sort(scratch: Scratch, number: int, corners: FloatArray, step: int) -> Samples:
    """Sort a chunk along the curve, and return every so many-th of its points."""
    points = np.ascontiguousarray(scratch.load("chunk", number))
    order, keys = _core.curve_order(points, corners)
    points = points[order]
    scratch.save("sorted", number, points)
    scratch.save("sortedkeys", number, keys)
    scratch.save("sortedindex", number, order)
    some = slice(None, None, step)
    return Samples(keys[some].copy(), points[some].copy(), len(points) / max(len(points[some]), 1))


def choose_splitters(samples: list[Samples], num_tiles: int) -> list[Splitter]:
    """Choose where tiles begin; with whole cells of the curve if possible."""
    keys = np.concatenate([part.keys for part in samples])
    points = np.concatenate([part.points for part in samples])
    weights = np.repeat([part.weight for part in samples], [len(part.keys) for part in samples])
    order = np.lexsort((points[:, 2], points[:, 1], points[:, 0], keys))
    keys, points, weights = keys[order], points[order], weights[order]
    before = np.cumsum(weights) - weights
    splitters: list[Splitter] = [(0, -np.inf, -np.inf, -np.inf)]
    lowest: Splitter = (int(keys[0]), *points[0].tolist())  # sample of the last tile: so none is empty
    for i in range(len(keys)):
        if before[i] < len(splitters) * (before[-1] + weights[-1]) / num_tiles:
            continue
        splitter: Splitter = (int(keys[i]), *points[i].tolist())
        if splitter > lowest:
            in_new_cell = splitter[0] > lowest[0]
            splitters.append((splitter[0], -np.inf, -np.inf, -np.inf) if in_new_cell else splitter)
            lowest = splitter
    return splitters


def _place_in(keys: npt.NDArray[np.uint32], points: FloatArray, splitter: Splitter) -> int:
    key, *point = splitter
    first, last = (int(np.searchsorted(keys, key, side)) for side in ("left", "right"))
    return bisect_left(range(last), point, first, last, key=lambda i: points[i].tolist())


def collect(
    scratch: Scratch,
    tile: int,
    corners: FloatArray,
    first_indices: Int64Array,
    splitters: list[Splitter],
) -> TilePoints:
    """Gather the points of a tile from all chunks, and leave out those that repeat an earlier one."""
    parts, indices = [np.empty((0, 3))], [np.empty(0, dtype=np.int64)]
    for chunk, first_index in enumerate(first_indices[:-1]):
        keys, points = scratch.load("sortedkeys", chunk), scratch.load("sorted", chunk)
        first = _place_in(keys, points, splitters[tile])
        last = _place_in(keys, points, splitters[tile + 1]) if tile + 1 < len(splitters) else len(keys)
        parts.append(np.array(points[first:last]))  # a copy, so that the file is closed
        indices.append(scratch.load("sortedindex", chunk)[first:last] + first_index)
    points, index = np.concatenate(parts), np.concatenate(indices)
    order, keys = _core.curve_order(points, corners)
    points, index = points[order], index[order]
    repeats = np.zeros(len(points), dtype=bool)
    repeats[1:] = (points[1:] == points[:-1]).all(axis=1)
    first_of = index[np.maximum.accumulate(np.where(repeats, 0, np.arange(len(points))))]
    points, keys = points[~repeats], keys[~repeats]
    scratch.save("points", tile, points)
    scratch.save("keys", tile, keys)
    scratch.save("index", tile, index[~repeats])
    scratch.save("duplicates", tile, np.stack([index[repeats], first_of[repeats]], axis=1))
    if len(points) == 0:
        return TilePoints(0, int(repeats.sum()), 0, 0)
    return TilePoints(len(points), int(repeats.sum()), int(keys[0]), int(keys[-1]))


def first_four(scratch: Scratch, num_tiles: int) -> list[tuple[int, int]]:
    """Find the first four vertices along the curve that span space, as tile and place; fewer if all are flat."""
    found: list[tuple[int, int]] = []
    coordinates = np.empty((0, 3))
    for tile in range(num_tiles):
        points = scratch.load("points", tile)
        size = 64
        first = 0
        while first < len(points):
            tried = np.concatenate([coordinates, points[first : first + size]])
            names = [*found, *((tile, first + i) for i in range(len(tried) - len(found)))]
            chosen = _core.first_four(tried)
            found, coordinates = [names[i] for i in chosen], tried[chosen]
            if len(found) == 4:
                return found
            first, size = first + size, min(2 * size, 1 << 20)
    return found


def _made_places(scratch: Scratch, tile: int, layout: Layout) -> Int64Array:
    """Return at which place along the curve each point of a tile becomes a vertex.

    Without duplicates in the input, the points of a cell do so in the order of the input.
    """
    first_place = layout.first_places[tile]
    places: Int64Array = first_place + np.arange(layout.sizes[tile])
    if layout.has_duplicates:
        return places
    keys, index = scratch.load("keys", tile), scratch.load("index", tile)
    made = np.empty_like(places)
    made[np.lexsort((index, keys))] = places
    for key in {*layout.keys[tile]}:
        tiles = layout.sharing(key)
        if len(tiles) == 1:
            continue
        # The points of this cell in all tiles; places follow one another.
        members = []
        for other in tiles:
            other_keys = scratch.load("keys", other)
            first, last = (int(np.searchsorted(other_keys, key, side)) for side in ("left", "right"))
            members.append(scratch.load("index", other)[first:last])
            if other == tiles[0]:
                first_of_cell = layout.first_places[other] + first
            if other == tile:
                own, before = slice(first, last), sum(map(len, members[:-1]))
        rank_in_cell = np.argsort(np.argsort(np.concatenate(members)))
        made[own] = first_of_cell + rank_in_cell[before : before + own.stop - own.start]
    return made


def _insertion_places(scratch: Scratch, tile: int, layout: Layout) -> Int64Array:
    made = _made_places(scratch, tile, layout).astype(np.uint32)
    places: Int64Array = _core.insertion_places(made, sum(layout.sizes)).astype(np.int64)
    return places


def insertion_places_of(scratch: Scratch, tile: int, places: list[int], layout: Layout) -> list[int]:
    """Return the places of some points of a tile in the order of insertion, before the first four go to its front."""
    return [int(place) for place in _insertion_places(scratch, tile, layout)[places]]


def rank(
    scratch: Scratch, tile: int, layout: Layout, four: list[tuple[int, int]], places_of_four: list[int]
) -> list[tuple[int, int]]:
    """Rank the points of a tile, and box them. Return the lowest ranks with the positions."""
    places = _insertion_places(scratch, tile, layout)
    ranks = places + 4 - np.searchsorted(np.sort(places_of_four), places)
    for i, (tile_of_vertex, place) in enumerate(four):
        if tile_of_vertex == tile:
            ranks[place] = i
    scratch.save("ranks", tile, ranks.astype(np.int32))
    points = np.ascontiguousarray(scratch.load("points", tile))
    scratch.save("boxes", tile, _core.boxes(points).reshape(-1, 6))
    first = int(layout.first_positions[tile])
    return [(int(ranks[i]), first + int(i)) for i in np.flatnonzero(ranks < _core.NUM_LOWEST)]


@dataclass(frozen=True)
class TileMesh:
    """What is known of the tetrahedra of a tile."""

    num_tets: int
    num_received: int
    num_rounds: int
    num_edges: int
    checksums: npt.NDArray[np.uint64]
    destinations: list[int]  # tiles that have to hear of facets


def mesh(
    scratch: Scratch, tile: int, layout: Layout, lowest: Positions, count_edges: bool
) -> TileMesh:
    """Make the tetrahedra that the points of a tile own."""
    _files.allow_many_open_files()
    points, ranks, boxes = (
        [scratch.load(name, other) for other in range(len(layout.sizes))]
        for name in ("points", "ranks", "boxes")
    )
    tiles = _core.Tiles(points, ranks, boxes, lowest, layout.may_underflow)
    first_of_owner, corners, neighbors, links, checksums, received, rounds, edges = (
        tiles.triangulate(tile, count_edges, lambda *_: scratch.expect())
    )
    links = links.reshape(-1, 9)
    destinations = layout.tile_of(links[:, 0])
    order = np.argsort(destinations, kind="stable")
    ends = np.searchsorted(destinations[order], np.arange(len(layout.sizes) + 1))
    scratch.save("firstofowner", tile, first_of_owner)
    scratch.save("corners", tile, corners.reshape(-1, 4))
    scratch.save("neighbors", tile, neighbors.reshape(-1, 4))
    scratch.save("links", tile, links[order])
    scratch.save("linkends", tile, ends)
    return TileMesh(
        len(corners) // 4, received, rounds, edges, checksums, np.unique(destinations).tolist()
    )


def finish(
    scratch: Scratch,
    tile: int,
    layout: Layout,
    first_tets: Int64Array,
    sources: list[int],
    origin: FloatArray,
) -> TileInfo:
    """Link a tile to the others, and write its file beside the scratch ones."""
    neighbors = _link(scratch, tile, layout, first_tets, sources)
    first = int(layout.first_positions[tile])
    own = scratch.load("points", tile)
    corners = np.array(scratch.load("corners", tile)).view(np.uint32)
    foreign = (corners < first) | (corners >= first + len(own))
    others = np.unique(corners[foreign])
    points, index = [own], [scratch.load("index", tile)]
    tiles = layout.tile_of(others)
    for other in np.unique(tiles):
        rows = others[tiles == other] - int(layout.first_positions[other])
        points.append(scratch.load("points", other)[rows])
        index.append(scratch.load("index", other)[rows])
    simplices = (corners - np.uint32(first)).astype(np.int32)
    simplices[foreign] = len(own) + np.searchsorted(others, corners[foreign])
    result = Tile(
        points=np.concatenate(points),
        index=np.concatenate(index),
        num_own=len(own),
        simplices=simplices,
        neighbors=neighbors,
        first_simplex=int(first_tets[tile]),
        duplicates=np.array(scratch.load("duplicates", tile)),
    )
    info = TileInfo.of(result, origin)
    _files.write(scratch.folder / info.file_name(tile), result.save)
    return info


def _link(
    scratch: Scratch, tile: int, layout: Layout, first_tets: Int64Array, sources: list[int]
) -> npt.NDArray[Any]:
    """Return the neighbours of a tile's tetrahedra by their numbers in the whole mesh."""
    local = scratch.load("neighbors", tile)
    small = first_tets[-1] <= np.iinfo(np.int32).max
    neighbors: npt.NDArray[Any] = local.astype(np.int32 if small else np.int64)
    neighbors[local >= 0] += first_tets[tile]
    parts = [np.empty((0, 9), dtype=np.uint32)]
    for source in sources:
        ends = scratch.load("linkends", source)
        parts.append(scratch.load("links", source)[ends[tile] : ends[tile + 1]])
    links = np.concatenate(parts)
    numbers = _numbers(scratch, tile, layout, links[:, :4])
    beyond = np.full(len(links), -1, dtype=np.int64)
    tiles = layout.tile_of(links[:, 5])
    is_hull = links[:, 5] == np.iinfo(np.uint32).max
    for other in np.unique(tiles[~is_hull]):
        which = np.flatnonzero((tiles == other) & ~is_hull)
        beyond[which] = first_tets[other] + _numbers(scratch, int(other), layout, links[which, 5:])
    neighbors[numbers, links[:, 4]] = beyond
    if (neighbors < -1).any():
        raise _core.InternalError(f"tile {tile} has facets that no tile has linked")
    return neighbors


def _numbers(scratch: Scratch, tile: int, layout: Layout, wanted: Positions) -> npt.NDArray[np.int32]:
    """Return the numbers, in their tile, of tetrahedra by the positions of their corners."""
    found: npt.NDArray[np.int32] = _core.find_owned(
        np.ascontiguousarray(wanted),
        int(layout.first_positions[tile]),
        scratch.load("firstofowner", tile),
        scratch.load("corners", tile),
    )
    if (found < 0).any():
        raise _core.InternalError(f"tile {tile} lacks a tetrahedron that another one has found")
    return found
