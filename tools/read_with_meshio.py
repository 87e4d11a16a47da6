#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads meshes with meshio and prints as JSON what is in them: read_with_meshio.py FILE..."""
import contextlib
import json
import sys

import meshio
import numpy


def contents(file):
    with contextlib.redirect_stdout(sys.stderr):
        mesh = meshio.read(file)
    volume = 0.0
    for block in mesh.cells:
        if block.type == "tetra":
            corners = mesh.points[block.data]
            volume += numpy.linalg.det(corners[:, 1:] - corners[:, :1]).sum() / 6
        elif block.type == "triangle":
            volume += numpy.linalg.det(mesh.points[block.data] - mesh.points[0]).sum() / 6
    return {
        "points": mesh.points.tolist(),
        "cells": {block.type: len(block.data) for block in mesh.cells},
        "pointData": {name: values.ravel().tolist() for name, values in mesh.point_data.items()},
        "cellData": {name: values[0].ravel().tolist() for name, values in mesh.cell_data.items()},
        "volume": float(volume),
    }


json.dump([contents(file) for file in sys.argv[1:]], sys.stdout)
