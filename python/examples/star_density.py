# SPDX-License-Identifier: MIT
"""How dense is a star cluster? Each star's density is one over the volume of its Voronoi cell.

Voronoi cells need no scale to be chosen: they are small where stars are close together. The cell of a
vertex is made of its tetrahedra's circumcentres; a cell at the hull has no end.
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


def voronoi_volumes(mesh):
    """Return the volumes of the Voronoi cells of all points; infinite on the hull."""
    # Around each edge (u, v) the circumcentres of the tetrahedra form a face, half-way between the two. Its
    # piece at facet k of tetrahedron t is a triangle: the edge's middle and the centres of t and of its
    # neighbour. Each piece and u make a tetrahedron of u's cell, and one as large of v's.
    volumes = np.zeros(mesh.npoints)
    tet, k = np.nonzero((mesh.neighbors >= 0) & (mesh.neighbors < np.arange(mesh.nsimplex)[:, np.newaxis]))
    facets = np.array([[1, 2, 3], [0, 3, 2], [0, 1, 3], [0, 2, 1]])[k]
    corners = mesh.simplices[tet[:, np.newaxis], facets]
    c = mesh.circumcenters[tet]
    d = mesh.circumcenters[mesh.neighbors[tet, k]]
    for i in range(3):
        u, v = corners[:, i], corners[:, (i + 1) % 3]
        half = (mesh.points[v] - mesh.points[u]) / 2
        piece = np.einsum("ij,ij->i", half, np.cross(c - mesh.points[u], d - mesh.points[u])) / 6
        np.add.at(volumes, u, piece)
        np.add.at(volumes, v, piece)
    volumes[mesh.convex_hull] = np.inf
    return volumes


def main(folder):
    rng = np.random.default_rng(1)
    n = 20_000
    # A Plummer sphere: half of the stars lie within 1.3 units of its centre.
    radius = 1 / np.sqrt(rng.uniform(0.01, 0.99, n) ** (-2 / 3) - 1)
    direction = rng.normal(size=(n, 3))
    stars = radius[:, np.newaxis] * direction / np.linalg.norm(direction, axis=1)[:, np.newaxis]

    mesh = tulo3d.Delaunay(stars)
    density = 1 / voronoi_volumes(mesh)
    expected = 3 * n / (4 * np.pi) * (1 + radius**2) ** -2.5
    for low, high in ((0, 0.5), (0.5, 1), (1, 2), (2, 4)):
        shell = (low <= radius) & (radius < high)
        found = shell.sum() / (1 / density[shell]).sum()
        ratio = found / (shell.sum() / (1 / expected[shell]).sum())
        print(f"{low} to {high}: {found:8.1f} stars a cubic unit, {ratio:.2f} of what was put in")
        assert 0.7 < ratio < 1.4

    if folder is not None:
        import pyvista

        inner = radius < 4
        cloud = pyvista.PolyData(stars[inner])
        cloud["log10(density)"] = np.log10(density[inner])
        cloud.plot(
            point_size=3,
            off_screen=True,
            window_size=SIZE,
            screenshot=folder / "star_density.png",
        )


if __name__ == "__main__":
    main(Path(sys.argv[1]) if len(sys.argv) > 1 else None)
