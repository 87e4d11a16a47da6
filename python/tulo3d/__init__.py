# SPDX-License-Identifier: MIT
"""Exact Delaunay tetrahedralization of points in space.

`Delaunay` makes the mesh, and of it hull, alpha shapes and Voronoi cells; `LinearInterpolator` and
`NaturalNeighborInterpolator` find values between points. All decisions are exact: coplanar, cospherical and
duplicate points need no care.
"""

from ._core import InternalError
from ._core import version as __version__
from ._delaunay import Delaunay
from ._input import FlatError
from ._interpolation import LinearInterpolator, NaturalNeighborInterpolator
from ._shapes import AlphaShape, Hull, VoronoiCells

__all__ = [
    "AlphaShape",
    "Delaunay",
    "FlatError",
    "Hull",
    "InternalError",
    "LinearInterpolator",
    "NaturalNeighborInterpolator",
    "VoronoiCells",
    "__version__",
]
