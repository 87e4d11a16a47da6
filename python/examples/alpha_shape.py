# SPDX-License-Identifier: MIT
"""The surface of scanned points: the facets of their alpha shape.

The points are only on the surface, so a small radius keeps few tetrahedra: most facets of the surface are singular,
those between no tetrahedra. H. Edelsbrunner and E. P. Muecke, Three-dimensional alpha shapes, ACM Transactions on
Graphics 13 (1994).
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


def main(folder):
    scan = Path(__file__).parents[2] / "data" / "bunny_2k.xyz"
    mesh = tulo3d.Delaunay(np.loadtxt(scan))
    indptr, indices = mesh.vertex_neighbor_vertices
    arms = mesh.points[indices] - np.repeat(mesh.points, np.diff(indptr), axis=0)
    spacing = np.median(np.minimum.reduceat(np.linalg.norm(arms, axis=1), indptr[:-1]))
    shape = mesh.alpha_shape(2 * spacing, singular=True)
    surface = np.concatenate([shape.triangles, shape.singular_facets])

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
