# SPDX-License-Identifier: MIT
"""From boreholes to a block model: copper grades known along a few lines, wanted everywhere between.

Rock changes faster downwards than sideways, and so do the samples: every two metres along holes that are
fifty metres apart. So depths count ten times: without that, a block has some seventy natural neighbours
above and below it in each hole around, and three times the error.
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


STRETCH = [1, 1, 10]


def grade(p):
    """The truth: a lens of copper that dips to the east, in grams per tonne."""
    x, y, z = np.moveaxis(p, -1, 0)
    return 5 * np.exp(-(((z + 60 + 0.2 * x) / 25) ** 2) - ((x - 200) / 150) ** 2 - ((y - 150) / 120) ** 2)


def main(folder):
    rng = np.random.default_rng(1)
    collars = np.array(np.meshgrid(np.arange(0, 401, 50), np.arange(0, 301, 50))).reshape(2, -1).T
    depths = np.arange(0, 201, 2.0)
    drift = rng.normal(scale=0.05, size=(len(collars), 1, 2)) * depths[:, np.newaxis]  # holes bend
    holes = np.concatenate(
        [
            collars[:, np.newaxis] + drift,
            np.broadcast_to(-depths[:, np.newaxis], (len(collars), len(depths), 1)),
        ],
        axis=2,
    ).reshape(-1, 3)

    mesh = tulo3d.Delaunay(holes * STRETCH)
    axes = np.arange(20, 381, 10), np.arange(20, 281, 10), np.arange(-190, -9, 10)
    blocks = np.stack(np.meshgrid(*axes, indexing="ij"), axis=-1)
    truth = grade(blocks)
    for interpolator in (tulo3d.LinearInterpolator, tulo3d.NaturalNeighborInterpolator):
        model = interpolator(mesh, grade(holes), fill_value=0)(blocks * STRETCH)
        error = np.sqrt(((model - truth) ** 2).mean())
        print(f"{interpolator.__name__}: error {error:.3f} g/t (root mean square)")
        assert error < 0.1

    if folder is not None:
        import pyvista

        grid = pyvista.ImageData(dimensions=blocks.shape[:3], spacing=(10, 10, 10), origin=(20, 20, -190))
        grid["grade"] = model.ravel(order="F")
        plotter = pyvista.Plotter(off_screen=True, window_size=SIZE)
        plotter.add_mesh(grid.threshold(1.0), scalars="grade")
        plotter.add_mesh(pyvista.PolyData(holes), color="gray", point_size=2)
        plotter.screenshot(folder / "boreholes.png")


if __name__ == "__main__":
    main(Path(sys.argv[1]) if len(sys.argv) > 1 else None)
