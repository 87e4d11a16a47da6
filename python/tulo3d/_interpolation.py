# SPDX-License-Identifier: MIT
"""Values between points."""

from __future__ import annotations

from collections.abc import Callable

import numpy as np
import numpy.typing as npt

from . import _core
from ._delaunay import Delaunay
from ._input import FloatArray, as_doubles, as_queries

_Compute = Callable[[_core.Mesh, FloatArray, FloatArray, float, FloatArray], None]


def _joined(xi: tuple[npt.ArrayLike, ...]) -> npt.ArrayLike:
    """Return as one array what comes as one, as three arguments, or as a tuple of three arrays."""
    given = xi[0] if len(xi) == 1 else xi
    if not isinstance(given, tuple):
        return given
    return np.stack(np.broadcast_arrays(*(as_doubles(x, "xi") for x in given)), axis=-1)


class _Interpolator:
    """Values at the points of a mesh; a subclass says how to go between them."""

    _compute: _Compute

    def __init__(
        self, points: npt.ArrayLike | Delaunay, values: npt.ArrayLike, fill_value: float = np.nan
    ) -> None:
        given = as_doubles(values, "values")
        self.mesh = points if isinstance(points, Delaunay) else Delaunay(points, incremental=False)
        self.fill_value = float(fill_value)
        self._mesh = self.mesh._mesh
        if given.ndim == 0 or len(given) != len(self._mesh.points):
            raise ValueError(
                f"values must have the shape ({len(self._mesh.points)}, ...), "
                f"one row for each point, not {given.shape}"
            )
        self._shape = given.shape[1:]
        self._values = np.array(given, order="C").reshape(len(given), -1)

    def __call__(self, *xi: npt.ArrayLike) -> FloatArray:
        """Interpolate.

        Parameters
        ----------
        *xi : array_like
            Where, in the unit of the points: one array of shape (..., 3), or the coordinates x, y, z, as
            three arguments or one tuple of three, broadcast together to the shape (...).

        Returns
        -------
        ndarray, shape (..., *values.shape[1:])
            `fill_value` outside of the convex hull of the points and for NaN.
        """
        queries, shape = as_queries(_joined(xi))
        results = np.empty((len(queries), self._values.shape[1]))
        type(self)._compute(self._mesh.flat, self._values, queries, self.fill_value, results)
        return results.reshape(shape + self._shape)


class LinearInterpolator(_Interpolator):
    """Interpolation that is linear in each tetrahedron of the Delaunay mesh.

    As `scipy.interpolate.LinearNDInterpolator` in space. What is linear in the coordinates is found again
    up to rounding, in the flattest tetrahedra, too.

    Parameters
    ----------
    points : array_like, shape (n, 3), or Delaunay
        Where values are known. A mesh is taken as it is now: points added later do not count.
    values : array_like, shape (n, ...)
        Any number of real values for each point. Of equal points the first one counts.
    fill_value : float, optional
        The result outside of the hull.

    Attributes
    ----------
    mesh : Delaunay
        The mesh that the interpolator works on.
    fill_value : float
        As given.

    Raises
    ------
    ValueError
        As `Delaunay` does, and for values of another shape or type.

    Examples
    --------
    >>> import tulo3d
    >>> corners = [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]]
    >>> temperature = tulo3d.LinearInterpolator(corners, [10, 20, 30, 40])
    >>> float(temperature([0.5, 0.1, 0.1]))
    20.0
    >>> temperature.gradient([0.5, 0.1, 0.1])
    array([10., 20., 30.])
    """

    _compute = staticmethod(_core.interpolate_linearly)

    def gradient(self, *xi: npt.ArrayLike) -> FloatArray:
        """Return the gradients of the interpolant.

        Parameters
        ----------
        *xi : array_like
            Where, as for a call.

        Returns
        -------
        ndarray, shape (..., *values.shape[1:], 3)
            The gradient in a tetrahedron that contains the point; NaN outside of the hull. In the flattest
            tetrahedra it is mostly rounding, whatever the values.
        """
        queries, shape = as_queries(_joined(xi))
        results = np.empty((len(queries), 3 * self._values.shape[1]))
        _core.interpolate_gradients(self._mesh.flat, self._values, queries, results)
        return results.reshape((*shape, *self._shape, 3))


class NaturalNeighborInterpolator(_Interpolator):
    """Natural neighbour interpolation: smooth everywhere but at the points themselves.

    A query point, were it inserted, would take its Voronoi cell from those of its neighbours. The
    volume taken from each one is the weight of its value [1]_.

    Parameters
    ----------
    points : array_like, shape (n, 3), or Delaunay
        Where values are known. A mesh is taken as it is now: points added later do not count.
    values : array_like, shape (n, ...)
        Any number of real values for each point. Of equal points the first one counts.
    fill_value : float, optional
        The result outside of the hull.

    Attributes
    ----------
    mesh : Delaunay
        The mesh that the interpolator works on.
    fill_value : float
        As given.

    Raises
    ------
    ValueError
        As `Delaunay` does, and for values of another shape or type.

    Notes
    -----
    What is linear in the coordinates is found again up to rounding: weights are corrected by what rounding
    has changed. On facets of the hull, where the volumes have no bound, and where rounding errors leave
    nothing of them, the result is that of `LinearInterpolator`.

    References
    ----------
    .. [1] R. Sibson, A brief description of natural neighbour interpolation, in: V. Barnett (ed.),
       Interpreting Multivariate Data, Wiley (1981).

    Examples
    --------
    >>> import numpy as np
    >>> import tulo3d
    >>> points = np.random.default_rng(1).random((100, 3))
    >>> field = tulo3d.NaturalNeighborInterpolator(points, points @ [1, 2, 3])
    >>> round(float(field([0.5, 0.5, 0.5])), 12)
    3.0
    """

    _compute = staticmethod(_core.interpolate_naturally)
