# SPDX-License-Identifier: MIT
"""Meshes for other packages, which are imported when they are needed."""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, Any, Literal

import numpy as np

if TYPE_CHECKING:
    import meshio
    import pyvista

    from ._delaunay import Delaunay
    from .distributed import Tile

Clip = Literal["x", "-x", "y", "-y", "z", "-z"] | tuple[Sequence[float], Sequence[float]] | None


def to_pyvista(mesh: Delaunay) -> pyvista.UnstructuredGrid:
    try:
        import pyvista
    except ImportError as error:
        raise ImportError("this takes PyVista: pip install pyvista") from error
    grid = pyvista.UnstructuredGrid({pyvista.CellType.TETRA: mesh.simplices}, np.array(mesh.points))
    grid.cell_data["quality"] = mesh.quality
    return grid


def plot(mesh: Delaunay, clip: Clip, **options: Any) -> Any:
    grid = to_pyvista(mesh)
    if isinstance(clip, str):
        grid = grid.clip(clip, crinkle=True)
    elif clip is not None:
        grid = grid.clip(clip[0], clip[1], crinkle=True)
    return grid.plot(**{"scalars": "quality", "show_edges": True, **options})


def to_meshio(mesh: Delaunay | Tile) -> meshio.Mesh:
    try:
        import meshio
    except ImportError as error:
        raise ImportError("this takes meshio: pip install meshio") from error
    return meshio.Mesh(mesh.points, [("tetra", mesh.simplices)])
