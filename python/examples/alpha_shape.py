# SPDX-License-Identifier: MIT
"""The surface of scanned points: the facets of their alpha shape.

A facet belongs to the shape from that radius on for which an empty sphere passes through its corners, and
lies inside of it when the tetrahedra on both sides do. H. Edelsbrunner and E. P. Muecke, Three-dimensional
alpha shapes, ACM Transactions on Graphics 13 (1994).
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture
OUTSIDE = np.array([[1, 2, 3], [0, 3, 2], [0, 1, 3], [0, 2, 1]])  # facet k, seen from outside


def alpha_shape(mesh, radius):
    """Return the facets that the surface has for a radius."""
    radii = np.append(mesh.circumradii, np.inf)  # neighbour -1, outside, is the last one
    tet, k = np.nonzero(mesh.neighbors < np.arange(mesh.nsimplex)[:, np.newaxis])  # each facet once
    beyond = mesh.neighbors[tet, k]
    facets = mesh.simplices[tet[:, np.newaxis], OUTSIDE[k]]

    a, b, c = (mesh.points[facets[:, i]] for i in range(3))
    b, c = b - a, c - a
    normal = np.cross(b, c)
    squares = (b**2).sum(1)[:, np.newaxis] * c - (c**2).sum(1)[:, np.newaxis] * b
    center = np.cross(squares, normal) / (2 * (normal**2).sum(1)[:, np.newaxis])
    least = np.linalg.norm(center, axis=1)  # the smallest sphere through the corners, if it is empty
    apex = mesh.simplices[tet, k]
    back = (mesh.neighbors[beyond] == tet[:, np.newaxis]).argmax(axis=1)
    other_apex = np.where(beyond < 0, apex, mesh.simplices[beyond, back])
    for corner in apex, other_apex:
        inside = np.linalg.norm(mesh.points[corner] - a - center, axis=1) < least
        least = np.where(inside, np.minimum(radii[tet], radii[beyond]), least)
    return facets[(least <= radius) & (radius < np.maximum(radii[tet], radii[beyond]))]


def main(folder):
    scan = Path(__file__).parents[2] / "data" / "bunny_2k.xyz"
    mesh = tulo3d.Delaunay(np.loadtxt(scan))
    indptr, indices = mesh.vertex_neighbor_vertices
    arms = mesh.points[indices] - np.repeat(mesh.points, np.diff(indptr), axis=0)
    spacing = np.median(np.minimum.reduceat(np.linalg.norm(arms, axis=1), indptr[:-1]))
    surface = alpha_shape(mesh, 2 * spacing)

    edges = np.sort(surface[:, [[0, 1], [1, 2], [2, 0]]].reshape(-1, 2), axis=1)
    _, counts = np.unique(edges, axis=0, return_counts=True)
    print(f"{len(surface)} facets; {(counts > 1).mean():.1%} of the edges join facets")
    assert (counts > 1).mean() > 0.9 and len(np.unique(surface)) > 0.95 * mesh.npoints

    if folder is not None:
        import pyvista

        faces = pyvista.PolyData.from_regular_faces(np.array(mesh.points), surface)
        faces.plot(
            color="tan", off_screen=True, window_size=SIZE, cpos="xy", screenshot=folder / "alpha_shape.png"
        )


if __name__ == "__main__":
    main(Path(sys.argv[1]) if len(sys.argv) > 1 else None)
