# SPDX-License-Identifier: MIT
"""How much rock is there? The volume under scanned terrain, down to a level.

The mesh joins the surface to a base of corners far below; the tetrahedra whose centre lies under the
surface and above the level are the rock.
"""

import sys
from pathlib import Path

import numpy as np

import tulo3d

SIZE = (600, 400)  # of the picture


def hills(xy):
    """Heights in metres over a square of 100 m."""
    x, y = np.moveaxis(xy, -1, 0) / 100
    return 20 + 8 * np.sin(6 * x) * np.cos(5 * y) + 4 * x


def main(folder):
    rng = np.random.default_rng(1)
    frame = [0, 0], [0, 100], [100, 0], [100, 100]
    edge = np.linspace(0, 100, 41)[1:-1]
    sides = [
        np.stack(np.broadcast_arrays(*s), axis=1) for s in ((edge, 0), (edge, 100), (0, edge), (100, edge))
    ]
    xy = np.concatenate([frame, *sides, rng.uniform(0, 100, (6000, 2))])
    surface = np.column_stack([xy, hills(xy)])
    below = surface - [0, 0, 1.5]  # a second layer keeps the tetrahedra of the ground apart from the air
    base = np.column_stack([xy, np.zeros(len(xy))])
    mesh = tulo3d.Delaunay(np.concatenate([surface, below, base]))

    centers = mesh.points[mesh.simplices].mean(axis=1)
    rock = centers[:, 2] < hills(centers[:, :2])
    volume = mesh.volumes[rock].sum()

    grid = np.stack(np.meshgrid(*2 * [np.arange(0.25, 100, 0.5)]), axis=-1)
    expected = hills(grid).mean() * 100**2
    print(f"{volume:,.0f} cubic metres of rock; by the formula of the hills {expected:,.0f}")
    assert abs(volume / expected - 1) < 0.01

    if folder is not None:
        shown = mesh.to_pyvista().extract_cells(rock)
        shown["height"] = shown.points[:, 2]
        shown.plot(
            scalars="height",
            off_screen=True,
            window_size=SIZE,
            screenshot=folder / "terrain_volume.png",
        )


if __name__ == "__main__":
    main(Path(sys.argv[1]) if len(sys.argv) > 1 else None)
