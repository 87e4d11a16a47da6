# SPDX-License-Identifier: MIT
"""A mesh walked by numpy: all tetrahedra that a straight line passes through, in order.

Each step leaves a tetrahedron through the facet that the line crosses next; `neighbors` says what is behind
it. The same loop finds the layers along a borehole, or the tissue along a beam.
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


def tetrahedra_along(mesh, start, end):
    """Return the tetrahedra between two points inside the hull, and how far on the line each one is left."""
    path, left_at = [int(mesh.find_simplex(start))], []
    while True:
        t = path[-1]
        # Barycentric coordinates change linearly along the line; the one that is zero first tells the facet.
        inverse, corner = mesh.transform[t, :3], mesh.transform[t, 3]
        at_start, at_end = (np.append(b, 1 - b.sum()) for b in (inverse @ (p - corner) for p in (start, end)))
        falls = at_end < at_start
        zero = np.full(4, np.inf)
        zero[falls] = at_start[falls] / (at_start - at_end)[falls]
        k = zero.argmin()
        if zero[k] >= 1:
            return path, [*left_at, 1.0]
        path.append(int(mesh.neighbors[t, k]))
        left_at.append(zero[k])


def main(folder):
    rng = np.random.default_rng(1)
    mesh = tulo3d.Delaunay(rng.random((5000, 3)))
    start, end = np.array([0.1, 0.2, 0.1]), np.array([0.9, 0.7, 0.8])
    path, left_at = tetrahedra_along(mesh, start, end)
    print(f"{len(path)} tetrahedra on the way")
    assert (np.diff(left_at) >= 0).all() and len(set(path)) == len(path)
    assert path[-1] == mesh.find_simplex(end)
    middle = (np.array([0, *left_at[:-1]]) + left_at) / 2
    assert (mesh.find_simplex(start + middle[:, np.newaxis] * (end - start)) == path).all()

    if folder is not None:
        import pyvista

        plotter = pyvista.Plotter(off_screen=True, window_size=SIZE)
        plotter.add_mesh(mesh.to_pyvista().extract_cells(path), scalars="quality", show_edges=True)
        plotter.add_mesh(pyvista.Line(start, end), color="red", line_width=4)
        plotter.camera_position = [(1.6, -0.9, 0.8), (0.5, 0.45, 0.45), (0, 0, 1)]
        plotter.screenshot(folder / "walk.png")


if __name__ == "__main__":
    main(Path(sys.argv[1]) if len(sys.argv) > 1 else None)
