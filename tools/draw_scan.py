#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the mesh of the laser scan, cut open through its top. Usage: tools/draw_scan.py PICTURE.png

Needs the Python package with its extra `plot`: pip install .[plot]
"""

import sys
from pathlib import Path

import numpy as np
import pyvista

import tulo3d

points = np.loadtxt(Path(__file__).parents[1] / "data" / "lidar_rock_22k.xyz")
points -= points.mean(axis=0)
top = points[points[:, 2].argmax()]
mesh = tulo3d.Delaunay(points)
shown = mesh.to_pyvista().extract_cells(mesh.circumradii < 60)  # the others bridge the air
shown = shown.clip((0, -1, 0), origin=top, crinkle=True)

plotter = pyvista.Plotter(off_screen=True, window_size=(900, 480))
bar = {"title": "3 x inradius / circumradius", "width": 0.4, "position_x": 0.55, "position_y": 0.03}
plotter.add_mesh(
    shown, scalars="quality", clim=[0, 0.8], show_edges=True, line_width=0.5, scalar_bar_args=bar
)
plotter.camera_position = [top + [-45, -225, 50], top + [25, 0, -45], (0, 0, 1)]
plotter.enable_anti_aliasing("ssaa")
plotter.screenshot(sys.argv[1])
