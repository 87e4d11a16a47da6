# SPDX-License-Identifier: MIT
"""Exact Delaunay tetrahedralization of points in space.

`Delaunay` makes the mesh, `LinearInterpolator` and `NaturalNeighborInterpolator` find values between
points. All decisions are exact: coplanar, cospherical and repeated points need no care.
"""

from ._core import InternalError
from ._core import version as __version__
from ._delaunay import Delaunay
from ._input import FlatError
from ._interpolation import LinearInterpolator, NaturalNeighborInterpolator

__all__ = [
    "Delaunay",
    "FlatError",
    "InternalError",
    "LinearInterpolator",
    "NaturalNeighborInterpolator",
    "__version__",
]
