# SPDX-License-Identifier: MIT
"""The arrays of a mesh that does not change, and what is derived from them."""

from __future__ import annotations

from collections.abc import Callable
from functools import cached_property
from typing import Any, TypeVar

import numpy as np
import numpy.typing as npt

from . import _core
from ._input import FloatArray, Int32Array, Int64Array

AnyArray = TypeVar("AnyArray", bound=npt.NDArray[np.generic])

# Facet k, counter-clockwise from outside.
_OUTSIDE = np.array([[1, 2, 3], [0, 3, 2], [0, 1, 3], [0, 2, 1]])


def _frozen(array: AnyArray) -> AnyArray:
    array.flags.writeable = False
    return array


class Mesh:
    """Each derived array is made once, on demand; all are documented as properties of `Delaunay`."""

    def __init__(
        self,
        points: FloatArray,
        simplices: Int32Array,
        neighbors: Int32Array,
        vertex_of_point: Int32Array,
    ) -> None:
        self.points = _frozen(points)
        self.simplices = _frozen(simplices)
        self.neighbors = _frozen(neighbors)
        self.vertex_of_point = _frozen(vertex_of_point)
        self.flat = _core.Mesh(points, simplices, neighbors)

    @classmethod
    def of_unknown_origin(
        cls,
        points: FloatArray,
        simplices: Int32Array,
        neighbors: Int32Array,
        vertex_of_point: Int32Array,
    ) -> Mesh:
        """Make a mesh of arrays that somebody may have changed: no index leads out of an array."""
        for indices, least, end in (
            (simplices, 0, len(points)),
            (neighbors, -1, len(simplices)),
            (vertex_of_point, 0, len(points)),
        ):
            if indices.dtype != np.int32 or indices.min() < least or indices.max() >= end:
                raise ValueError("these arrays are not those of a mesh")
        return cls(points, simplices, neighbors, vertex_of_point)

    def __reduce__(self) -> tuple[Callable[..., Mesh], tuple[npt.NDArray[Any], ...]]:
        arrays = self.points, self.simplices, self.neighbors, self.vertex_of_point
        return Mesh.of_unknown_origin, arrays

    @cached_property
    def convex_hull(self) -> Int32Array:
        tet, facet = np.nonzero(self.neighbors < 0)
        return _frozen(self.simplices[tet[:, np.newaxis], _OUTSIDE[facet]])

    @cached_property
    def vertex_to_simplex(self) -> Int32Array:
        found = np.empty(len(self.points), dtype=np.int32)
        found[self.simplices] = np.arange(len(self.simplices), dtype=np.int32)[:, np.newaxis]
        return _frozen(found[self.vertex_of_point])

    @cached_property
    def coplanar(self) -> Int32Array:
        index = np.arange(len(self.points), dtype=np.int32)
        repeated = index[self.vertex_of_point != index]
        columns = repeated, self.vertex_to_simplex[repeated], self.vertex_of_point[repeated]
        return _frozen(np.stack(columns, axis=1))

    @cached_property
    def stars(self) -> tuple[Int64Array, Int32Array]:
        indptr = np.empty(len(self.points) + 1, dtype=np.int64)
        indices = np.empty(self.simplices.size, dtype=np.int32)
        _core.stars(self.flat, indptr, indices)
        return _frozen(indptr), _frozen(indices)

    @cached_property
    def vertex_neighbor_vertices(self) -> tuple[Int64Array, Int32Array]:
        indptr = np.empty(len(self.points) + 1, dtype=np.int64)
        indices = _core.adjacency(self.flat, *self.stars, indptr)
        return _frozen(indptr), _frozen(indices)

    @cached_property
    def volumes(self) -> FloatArray:
        volumes = np.empty(len(self.simplices))
        _core.volumes(self.flat, volumes)
        return _frozen(volumes)

    @cached_property
    def circumspheres(self) -> tuple[FloatArray, FloatArray]:
        centers, radii = np.empty((len(self.simplices), 3)), np.empty(len(self.simplices))
        _core.circumspheres(self.flat, centers, radii)
        return _frozen(centers), _frozen(radii)

    @cached_property
    def quality(self) -> FloatArray:
        quality = np.empty(len(self.simplices))
        _core.qualities(self.flat, quality)
        return _frozen(quality)

    @cached_property
    def dihedral_angles(self) -> FloatArray:
        angles = np.empty((len(self.simplices), 6))
        _core.dihedral_angles(self.flat, angles)
        return _frozen(angles)

    @cached_property
    def transform(self) -> FloatArray:
        transform = np.empty((len(self.simplices), 4, 3))
        _core.transforms(self.flat, transform)
        return _frozen(transform)
