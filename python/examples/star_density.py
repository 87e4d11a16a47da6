# SPDX-License-Identifier: MIT
"""How dense is a star cluster? Each star's density is one over the volume of its Voronoi cell.

Voronoi cells need no scale to be chosen: they are small where stars are close together. A cell at the hull is
unbounded; its star has density 0.
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


def main(folder):
    rng = np.random.default_rng(1)
    n = 20_000
    # A Plummer sphere: half of the stars lie within 1.3 units of its centre.
    radius = 1 / np.sqrt(rng.uniform(0.01, 0.99, n) ** (-2 / 3) - 1)
    direction = rng.normal(size=(n, 3))
    stars = radius[:, np.newaxis] * direction / np.linalg.norm(direction, axis=1)[:, np.newaxis]

    mesh = tulo3d.Delaunay(stars)
    density = 1 / mesh.voronoi().volumes
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
