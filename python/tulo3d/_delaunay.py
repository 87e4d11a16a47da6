# SPDX-License-Identifier: MIT
"""The mesh of a set of points."""

from __future__ import annotations

import threading
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from operator import index
from typing import TYPE_CHECKING, Any, Literal, cast

import numpy as np
import numpy.typing as npt

from . import _core, _pictures, _shapes
from ._input import FlatError, FloatArray, Int32Array, Int64Array, as_points, as_queries
from ._mesh import AnyArray, Mesh

if TYPE_CHECKING:
    import meshio
    import pyvista

Progress = Callable[[int, int], object]


def _joined(parts: list[AnyArray]) -> AnyArray:
    return parts[0] if len(parts) == 1 else cast(AnyArray, np.concatenate(parts))


class Delaunay:
    """Delaunay tetrahedralization of points in space.

    Shaped as `scipy.spatial.Delaunay`; the page "From SciPy" in the documents lists what differs.

    Parameters
    ----------
    points : array_like, shape (n, 3)
        At least four points that are not all in one plane, in any one unit. Real numbers of any type
        are converted to doubles; coordinates are finite and at most 1e60 in magnitude. Duplicate points
        are welcome.
    incremental : bool, optional
        Keep what `add_points` needs, about 600 bytes a point.
    workers : int, optional
        So many threads make the mesh; -1 stands for one for each core. Pays from some ten thousand points
        on, and not for points of surfaces. The mesh does not depend on it, but on points of common
        spheres it may be another one than with one worker; the next `add_points` triangulates again.
    progress : callable, optional
        Called as ``progress(num_inserted, num_vertices)``, at most some twenty times a second and once
        at the end; while points are still being sorted, with 0 and their number. An exception that it
        raises ends the insertion.

    Raises
    ------
    ValueError
        For points of another shape, type or range, or fewer than four.
    FlatError
        A `ValueError`: all points are in one plane.
    MemoryError
        When memory runs out.

    See Also
    --------
    LinearInterpolator, NaturalNeighborInterpolator

    Notes
    -----
    Every decision is exact, by adaptive-precision arithmetic [1]_; points enter along a space-filling
    curve in rounds of growing density [2]_ by the cavity method [3]_ [4]_. Where more than four vertices
    lie on a common empty sphere, the mesh is one of those possible.

    All arrays are read-only and never change: `add_points` makes new ones. So any number of threads may
    read one object and ask it at the same time; `add_points` and `close` need it for themselves and raise
    `RuntimeError` when another thread is at it, as do arrays that have not been made since. While the
    C++ part is at work, other Python threads run. Ctrl-C ends insertion, `find_simplex` and interpolation,
    not `is_valid` or an array in the making; a constructor then leaves nothing behind, and an object whose
    `add_points` was ended is as it was before.

    Pickles and copies hold the arrays; nothing is triangulated again until the next `add_points`.

    References
    ----------
    .. [1] J. R. Shewchuk, Adaptive precision floating-point arithmetic and fast robust geometric
       predicates, Discrete & Computational Geometry 18 (1997).
    .. [2] N. Amenta, S. Choi and G. Rote, Incremental constructions con BRIO, Symposium on
       Computational Geometry (2003).
    .. [3] A. Bowyer, Computing Dirichlet tessellations, The Computer Journal 24 (1981).
    .. [4] D. F. Watson, Computing the n-dimensional Delaunay tessellation with application to Voronoi
       polytopes, The Computer Journal 24 (1981).

    Examples
    --------
    >>> import numpy as np
    >>> import tulo3d
    >>> cube = np.array(np.meshgrid([0, 1], [0, 1], [0, 1])).reshape(3, -1).T
    >>> mesh = tulo3d.Delaunay(cube)
    >>> round(float(mesh.volumes.sum()), 12)
    1.0
    >>> mesh.find_simplex([[0.5, 0.2, 0.1], [2, 2, 2]]) >= 0
    array([ True, False])
    >>> mesh.add_points([[0.5, 0.5, 2]])
    >>> mesh.npoints
    9
    """

    ndim = 3
    """The number of coordinates of a point."""

    def __init__(
        self,
        points: npt.ArrayLike,
        *,
        incremental: bool = True,
        workers: int = 1,
        progress: Progress | None = None,
    ) -> None:
        own = as_points(points)
        if len(own) < 4:
            raise ValueError(f"a tetrahedralization takes at least 4 points, not {len(own)}")
        workers = index(workers)
        if workers < 1 and workers != -1:
            raise ValueError(f"workers is a positive number, or -1 for all cores, not {workers}")
        self._begin()
        if workers == 1:
            self._insert(own, progress)
        else:
            self._triangulate(own, max(workers, 0), progress)
        if not incremental:
            self.close()

    # The points, in batches, are the truth; engine and mesh are made of them on demand: each is None or
    # holds exactly these points.
    def _begin(self) -> None:
        self._incremental = True
        self._batches: list[FloatArray] = []
        self._numbers: list[Int32Array] = []  # of their vertices in the engine
        self._engine: _core.Engine | None = None
        self._current: Mesh | None = None
        self._engine_lock = threading.Lock()
        self._mesh_lock = threading.RLock()

    @contextmanager
    def _alone(self) -> Iterator[None]:
        if not self._engine_lock.acquire(blocking=False):
            raise RuntimeError("this Delaunay is at work, in another thread or around this callback")
        try:
            yield
        finally:
            self._engine_lock.release()

    def _insert(self, points: FloatArray, progress: Progress | None = None) -> None:
        batches = [*self._batches, points]
        engine, numbers, to_do = self._engine, self._numbers, batches[-1:]
        if engine is None:
            engine, numbers, to_do = _core.Engine(), [], batches
        self._engine = None  # should an exception leave it incomplete
        for batch in to_do:
            vertices = np.empty(len(batch), dtype=np.int32)
            engine.insert(batch, vertices, progress)
            numbers = [*numbers, vertices]
        if not engine.is_3d:
            raise FlatError(f"all {sum(map(len, batches))} points are in one plane: no tetrahedra")
        self._batches, self._numbers, self._engine, self._current = batches, numbers, engine, None

    def _triangulate(self, points: FloatArray, num_threads: int, progress: Progress | None) -> None:
        numbers, simplices, neighbors = _core.triangulate(points, num_threads, progress)
        if len(simplices) == 0:
            raise FlatError(f"all {len(points)} points are in one plane: no tetrahedra")
        self._set_mesh(points, numbers, simplices, neighbors)

    @property
    def _mesh(self) -> Mesh:
        current = self._current
        if current is None:
            with self._mesh_lock:  # whoever reads waits for one that copies, not for one that inserts
                if self._current is None:
                    with self._alone():
                        self._copy_mesh()
                current = self._current
                assert current is not None
        return current

    def _copy_mesh(self) -> None:
        if self._engine is None:
            self._insert(np.empty((0, 3)))
        engine = self._engine
        assert engine is not None
        points: FloatArray = _joined(self._batches)
        numbers: Int32Array = _joined(self._numbers)
        self._set_mesh(points, numbers, *engine.arrays())

    def _set_mesh(
        self, points: FloatArray, numbers: Int32Array, simplices: Int32Array, neighbors: Int32Array
    ) -> None:
        # Vertices are numbered in the order in which they first come among the points.
        vertex_of_point = numbers
        if numbers.max() + 1 < len(points):
            is_first = np.diff(np.maximum.accumulate(numbers), prepend=-1) > 0
            point_of_vertex = np.flatnonzero(is_first).astype(np.int32)
            simplices = point_of_vertex[simplices]
            vertex_of_point = point_of_vertex[numbers]
        self._current = Mesh(points, simplices, neighbors, vertex_of_point)
        self._batches, self._numbers = [points], [numbers]

    def add_points(
        self, points: npt.ArrayLike, restart: bool = False, *, progress: Progress | None = None
    ) -> None:
        """Insert more points.

        The arrays of the mesh are made anew when one of them is next asked for, so that many calls may
        follow one another.

        Parameters
        ----------
        points : array_like, shape (m, 3)
            As for the constructor, but any number of them.
        restart : bool, optional
            Triangulate all points from the beginning.
        progress : callable, optional
            As for the constructor.

        Raises
        ------
        RuntimeError
            When the object is not, or no longer, incremental, or is used by another thread.
        ValueError, MemoryError
            As for the constructor. The object is as before; after `MemoryError`, an interrupt or an
            exception of `progress`, the next call triangulates all points again.
        """
        own = as_points(points)
        with self._alone():
            if not self._incremental:
                raise RuntimeError("this Delaunay is closed, or was made with incremental=False")
            if restart:
                self._engine = None
            if restart or len(own) > 0:
                self._insert(own, progress)

    def close(self) -> None:
        """Give back what only `add_points` needs; everything else still works."""
        with self._alone():
            if self._current is None:
                self._copy_mesh()
            self._engine = None
            self._incremental = False

    @property
    def points(self) -> FloatArray:
        """All points, shape (npoints, 3), in the order in which they came."""
        return self._mesh.points

    @property
    def simplices(self) -> Int32Array:
        """Indices of the corners of the tetrahedra, shape (nsimplex, 4).

        Of equal points the first one is the corner. The order is positive: for corners a, b, c, d,
        ``np.dot(np.cross(b - a, c - a), d - a) > 0``; SciPy promises none in space.
        """
        return self._mesh.simplices

    @property
    def neighbors(self) -> Int32Array:
        """Indices of the neighbours of the tetrahedra, shape (nsimplex, 4).

        Neighbour k is opposite corner k; -1 stands for the outside of the hull.
        """
        return self._mesh.neighbors

    @property
    def npoints(self) -> int:
        """The number of points, duplicates included."""
        return sum(map(len, self._batches))

    @property
    def nsimplex(self) -> int:
        """The number of tetrahedra."""
        return len(self._mesh.simplices)

    @property
    def min_bound(self) -> FloatArray:
        """The least coordinates of the points, shape (3,)."""
        bound: FloatArray = self._mesh.points.min(axis=0)
        return bound

    @property
    def max_bound(self) -> FloatArray:
        """The largest coordinates of the points, shape (3,)."""
        bound: FloatArray = self._mesh.points.max(axis=0)
        return bound

    @property
    def convex_hull(self) -> Int32Array:
        """Corners of the facets of the hull, shape (nfacets, 3), counter-clockwise from outside."""
        return self._mesh.convex_hull

    @property
    def vertex_of_point(self) -> Int32Array:
        """For each point the index under which it is a corner, shape (npoints,).

        Its own, unless an equal point came before; then the index of the first such point.
        """
        return self._mesh.vertex_of_point

    @property
    def vertex_to_simplex(self) -> Int32Array:
        """For each point, duplicates included, a tetrahedron that has it as a corner, shape (npoints,)."""
        return self._mesh.vertex_to_simplex

    @property
    def coplanar(self) -> Int32Array:
        """Points that are no corners, shape (m, 3): the index, a tetrahedron there, and the corner there.

        These are the duplicate points and no others.
        """
        return self._mesh.coplanar

    @property
    def stars(self) -> tuple[Int64Array, Int32Array]:
        """The tetrahedra around each point: ``(indptr, indices)``.

        Those around point i are ``indices[indptr[i]:indptr[i + 1]]``, ascending; none for a point that
        repeats an earlier one.
        """
        return self._mesh.stars

    @property
    def vertex_neighbor_vertices(self) -> tuple[Int64Array, Int32Array]:
        """The points that share an edge with each point, ascending: ``(indptr, indices)`` as in `stars`."""
        return self._mesh.vertex_neighbor_vertices

    @property
    def volumes(self) -> FloatArray:
        """The volumes of the tetrahedra, shape (nsimplex,), in the unit of the points to the third power.

        Zero where the volume is less than the smallest double, with edges of about 1e-108.
        """
        return self._mesh.volumes

    @property
    def circumcenters(self) -> FloatArray:
        """The centres of the circumspheres, shape (nsimplex, 3): the corners of the Voronoi diagram.

        Right for slivers, too; infinite where a centre is beyond the range of doubles.
        """
        return self._mesh.circumspheres[0]

    @property
    def circumradii(self) -> FloatArray:
        """The radii of the circumspheres, shape (nsimplex,), in the unit of the points."""
        return self._mesh.circumspheres[1]

    @property
    def quality(self) -> FloatArray:
        """Three times the radius of the inscribed over that of the circumscribed sphere, shape (nsimplex,).

        1 for a regular tetrahedron, 0 for one that is flat up to rounding.
        """
        return self._mesh.quality

    @property
    def dihedral_angles(self) -> FloatArray:
        """The dihedral angles of the tetrahedra, shape (nsimplex, 6), in radians.

        At the edges between corners 0 1, 0 2, 0 3, 1 2, 1 3 and 2 3.
        """
        return self._mesh.dihedral_angles

    @property
    def transform(self) -> FloatArray:
        """The maps to barycentric coordinates, shape (nsimplex, 4, 3), laid out as SciPy's.

        For point x and tetrahedron t, ``b = transform[t, :3] @ (x - transform[t, 3])`` are the
        coordinates that belong to corners 0, 1 and 2; that of corner 3 is ``1 - b.sum()``. NaN where a
        tetrahedron is flat up to rounding.
        """
        return self._mesh.transform

    def find_simplex(
        self, xi: npt.ArrayLike, bruteforce: bool = False, tol: float | None = None
    ) -> Int32Array:
        """Find the tetrahedra that contain points.

        Parameters
        ----------
        xi : array_like, shape (..., 3)
            Points to look for, in the unit of the mesh.
        bruteforce, tol : optional
            For calls written for SciPy; without effect, as the search is exact.

        Returns
        -------
        ndarray of int32, shape (...)
            Index of a tetrahedron that contains the point, inside or on its boundary; -1 outside of the
            hull and for NaN. A point on the hull is found.

        Raises
        ------
        ValueError
            For queries of another shape or type.

        Notes
        -----
        Walks through the mesh [1]_, from query to query along a space-filling curve.

        References
        ----------
        .. [1] O. Devillers, S. Pion and M. Teillaud, Walking in a triangulation, Symposium on
           Computational Geometry (2001).
        """
        queries, shape = as_queries(xi)
        found = np.empty(len(queries), dtype=np.int32)
        _core.find_simplex(self._mesh.flat, queries, found)
        return found.reshape(shape)

    def hull(self) -> _shapes.Hull:
        """Make the convex hull: triangles, flat sides, area and volume.

        Returns
        -------
        Hull
            A named tuple; `help` on it says what its fields are.

        Examples
        --------
        >>> import numpy as np
        >>> import tulo3d
        >>> cube = np.array(np.meshgrid([0, 1, 2], [0, 1, 2], [0, 1, 2])).reshape(3, -1).T
        >>> hull = tulo3d.Delaunay(cube).hull()
        >>> hull.volume, len(hull.triangles), len(hull.indptr) - 1, len(hull.polygons)
        (8.0, 48, 6, 24)
        """
        return _shapes.hull(self._mesh.flat)

    def alpha_shape(
        self, radius: float | Literal["all", "one"] = "all", *, singular: bool = False
    ) -> _shapes.AlphaShape:
        """Make an alpha shape [1]_: the tetrahedra whose circumradius is at most a radius, and their boundary.

        Parameters
        ----------
        radius : float, "all" or "one", optional
            In the unit of the points, not its square. "all": the least with which each point is a corner; "one": the
            least not below that with which the shape is connected across facets.
        singular : bool, optional
            List singular facets and edges as well.

        Returns
        -------
        AlphaShape
            A named tuple; `help` on it says what its fields are.

        Raises
        ------
        ValueError
            For a radius that is negative or not a number.

        References
        ----------
        .. [1] H. Edelsbrunner and E. P. Muecke, Three-dimensional alpha shapes, ACM Transactions on
           Graphics 13 (1994).
        """
        return _shapes.alpha_shape(self._mesh.flat, radius, singular)

    def voronoi(self, clip: _shapes.Clip = None) -> _shapes.VoronoiCells:
        """Make the Voronoi cells of all points.

        Parameters
        ----------
        clip : None, "hull" or (low, high), optional
            Clip the cells to the convex hull, or to a box with these two corners; otherwise those at the hull are
            unbounded.

        Returns
        -------
        VoronoiCells
            A named tuple; `help` on it says what its fields are.

        Raises
        ------
        ValueError
            For a box that is not finite, or whose low corner is not below the high one in each coordinate.

        Notes
        -----
        Volumes are rounded relative to the distance of a cell's corners, which are far away where points are
        nearly in one plane.
        """
        return _shapes.voronoi(self._mesh.flat, clip)

    def is_valid(self) -> bool:
        """Check the mesh from its arrays alone, by exact arithmetic.

        Returns
        -------
        bool
            True when neighbours agree, all tetrahedra are in positive order, no circumsphere has the
            opposite corner of a neighbour inside, and the hull is convex; together these make it a
            Delaunay mesh.
        """
        return _core.is_valid(self._mesh.flat)

    def to_pyvista(self) -> pyvista.UnstructuredGrid:
        """Return the mesh as a grid of PyVista, with the cell array "quality".

        Needs PyVista: ``pip install pyvista``.
        """
        return _pictures.to_pyvista(self)

    def plot(self, clip: _pictures.Clip = None, **options: Any) -> Any:
        """Show the mesh, coloured by `quality`.

        Needs PyVista: ``pip install pyvista``.

        Parameters
        ----------
        clip : str or (normal, origin), optional
            Cut the mesh open: "x", "-x", "y", ... through its middle, or a plane by a normal and an origin.
            The tetrahedra on the side to which the normal points are left out, the others stay whole.
        **options
            Passed to the `plot` of PyVista's grid, such as ``screenshot="mesh.png"`` or
            ``off_screen=True``.

        Returns
        -------
        object
            What PyVista returns.
        """
        return _pictures.plot(self, clip, **options)

    def to_meshio(self) -> meshio.Mesh:
        """Return the mesh for meshio, which writes it to files of some forty formats.

        Needs meshio: ``pip install meshio``.
        """
        return _pictures.to_meshio(self)

    def __repr__(self) -> str:
        return f"<tulo3d.Delaunay of {self.npoints} points>"

    def __getstate__(self) -> tuple[bool, Mesh]:
        return self._incremental, self._mesh

    def __setstate__(self, state: tuple[bool, Mesh]) -> None:
        self._begin()
        self._incremental, self._current = state
        self._batches = [self._current.points]
