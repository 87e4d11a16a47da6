# SPDX-License-Identifier: MIT
"""One mesh by many processes or machines: the tetrahedra of one engine, never in one memory.

`triangulate` reads points in chunks, and leaves a folder with one file a tile; `open_mesh` opens such a folder
again. The workers are those of a Dask cluster, which all see the folder: on one machine, or on many with a
file system in common.
"""

from ._mesh import Tile, TiledMesh, open_mesh, tetrahedra_checksum
from ._triangulate import triangulate

__all__ = ["Tile", "TiledMesh", "open_mesh", "tetrahedra_checksum", "triangulate"]
