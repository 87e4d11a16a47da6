#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads a mesh with Gmsh and prints as JSON what is in it: read_with_gmsh.py FILE"""
import json
import sys

import gmsh

gmsh.initialize()
gmsh.option.setNumber("General.Terminal", 0)
gmsh.open(sys.argv[1])
tets = gmsh.model.mesh.getElements()[1][0]
data = {}
for view in gmsh.view.getTags():
    values = gmsh.view.getModelData(view, 0)[2]
    data[gmsh.view.option.getString(view, "Name")] = [float(value[0]) for value in values]
print(json.dumps({
    "nodes": gmsh.model.mesh.getNodes()[0].tolist(),
    "tets": len(tets),
    "volume": float(sum(gmsh.model.mesh.getElementQualities(tets, "volume"))),
    "nodeData": data,
}))
