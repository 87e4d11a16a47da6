# SPDX-License-Identifier: MIT
"""Shapes made of a mesh: hull, alpha shape, Voronoi cells. Methods of `Delaunay` make them."""

from __future__ import annotations

from typing import Literal, NamedTuple

import numpy as np
import numpy.typing as npt

from . import _core
from ._input import FloatArray, Int32Array, Int64Array


class Hull(NamedTuple):
    """The convex hull of a mesh; all indices are those of points."""

    triangles: Int32Array
    """Corners, shape (n, 3), counter-clockwise from outside."""
    neighbors: Int32Array
    """Triangles, shape (n, 3): k is across the edge without corner k."""
    area: float
    """In the square of the unit of the points."""
    volume: float
    """In its cube."""
    indptr: Int64Array
    """Polygon i, a flat side of the hull, has the corners ``polygons[indptr[i]:indptr[i + 1]]``."""
    polygons: Int32Array
    """Counter-clockwise from outside, without points inside of edges; coplanarity is decided exactly."""


class AlphaShape(NamedTuple):
    """The part of a mesh that remains for a radius."""

    radius: float
    """A tetrahedron belongs to the shape when its circumradius is at most this."""
    simplices: Int32Array
    """The indices of these tetrahedra, ascending."""
    components: Int32Array
    """The component of each of them; they are connected across facets."""
    volumes: FloatArray
    """The volume of each component."""
    triangles: Int32Array
    """The boundary, shape (n, 3): indices of points, counter-clockwise from outside."""
    area: float
    """Of the boundary."""
    volume: float
    """Of all components."""
    singular_facets: Int32Array
    """Facets that bound no tetrahedron of the shape, shape (m, 3); empty unless asked for."""
    singular_edges: Int32Array
    """Edges that bound no such facet either, shape (m, 2); empty unless asked for."""


class VoronoiCells(NamedTuple):
    """The Voronoi cells of all points.

    Cell i has the faces ``cell_indptr[i]`` to ``cell_indptr[i + 1] - 1``, face f the corners
    ``corners[face_indptr[f]:face_indptr[f + 1]]``, indices into `vertices`, counter-clockwise from outside.
    """

    vertices: FloatArray
    """Shape (n, 3): the circumcentres of all tetrahedra, then corners that clipping has made."""
    cell_indptr: Int64Array
    """Shape (npoints + 1,). A point that repeats an earlier one has no faces."""
    neighbors: Int32Array
    """For each face the point whose cell is behind it; -1 to -6 for a side of the box, low x, high x, low y and so
    on; -7 for the hull."""
    face_indptr: Int64Array
    """One more than there are faces."""
    corners: Int32Array
    """-1, at infinity, is the first corner of each unbounded face."""
    volumes: FloatArray
    """Shape (npoints,): infinite for an unbounded cell, 0 for a point that repeats an earlier one."""


Clip = Literal["hull"] | tuple[npt.ArrayLike, npt.ArrayLike] | None


def hull(mesh: _core.Mesh) -> Hull:
    """Make the hull of arrays that form a mesh."""
    triangles, neighbors, area, volume, indptr, polygons = _core.hull(mesh)
    return Hull(triangles.reshape(-1, 3), neighbors.reshape(-1, 3), area, volume, indptr, polygons)


def alpha_shape(mesh: _core.Mesh, radius: float | Literal["all", "one"], singular: bool) -> AlphaShape:
    """Make the alpha shape of arrays that form a mesh."""
    choice = radius if isinstance(radius, str) else ""
    if choice not in ("", "all", "one"):
        raise ValueError(f"radius must be a number, 'all' or 'one', not {radius!r}")
    number = 0.0 if isinstance(radius, str) else float(radius)
    found, simplices, components, volumes, triangles, area, volume, facets, edges = _core.alpha_shape(
        mesh, number, choice, singular
    )
    return AlphaShape(
        found,
        simplices,
        components,
        volumes,
        triangles.reshape(-1, 3),
        area,
        volume,
        facets.reshape(-1, 3),
        edges.reshape(-1, 2),
    )


def voronoi(mesh: _core.Mesh, clip: Clip) -> VoronoiCells:
    """Make the Voronoi cells of arrays that form a mesh."""
    low = high = None
    if clip is not None and not isinstance(clip, str):
        box = np.asarray(clip, dtype=np.float64)
        if box.shape != (2, 3):
            raise ValueError("clip must be None, 'hull', or the low and the high corner of a box")
        low, high = box.tolist()
    elif clip not in (None, "hull"):
        raise ValueError(f"clip must be None, 'hull', or the low and the high corner of a box, not {clip!r}")
    vertices, cell_indptr, neighbors, face_indptr, corners, volumes = _core.voronoi(
        mesh, low, high, isinstance(clip, str)
    )
    return VoronoiCells(vertices.reshape(-1, 3), cell_indptr, neighbors, face_indptr, corners, volumes)
