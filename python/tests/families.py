# SPDX-License-Identifier: MIT
"""The hard inputs of the C++ tests, by their names, and the laws of a mesh."""

import os
import subprocess
import tempfile
from pathlib import Path

import numpy as np
import tulo3d

ROOT = Path(__file__).parents[2]


def _families(size):
    sources = Path(__file__).with_suffix(".cpp"), ROOT / "inputs" / "points.cpp"
    folders = f"-I{ROOT / 'include'}", f"-I{ROOT / 'inputs'}"
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder) / "families"
        compiler = os.environ.get("CXX", "c++")
        subprocess.run([compiler, "-std=c++17", "-DTULO3D_STATIC", *folders, *sources, "-o", program], check=True)
        text = subprocess.run([program, str(size)], check=True, capture_output=True, text=True).stdout
    lines = iter(text.splitlines())
    for name, num in map(str.split, lines):
        rows = [list(map(float.fromhex, next(lines).split())) for _ in range(int(num))]
        if name not in ("FlatGrid", "FarPlane"):  # these have no tetrahedra
            yield name, np.array(rows)


FAMILIES = dict(_families(400))


def sorted_rows(simplices):
    """The tetrahedra as a set, whatever the order of their corners."""
    return set(map(tuple, np.sort(simplices, axis=1).tolist()))


def check_laws(mesh: tulo3d.Delaunay) -> None:
    """What holds for every mesh, decided without the library but for the exact check at the end."""
    tets, neighbors = mesh.simplices, mesh.neighbors
    assert set(np.unique(tets)) == set(np.unique(mesh.vertex_of_point))
    assert (mesh.points[mesh.vertex_of_point] == mesh.points).all()
    assert (mesh.vertex_of_point <= np.arange(mesh.npoints)).all()
    assert (tets[mesh.vertex_to_simplex] == mesh.vertex_of_point[:, np.newaxis]).any(axis=1).all()

    # Every facet belongs to two tetrahedra, which are neighbours there, or to the hull.
    facets = np.sort(np.stack([np.delete(tets, k, axis=1) for k in range(4)], axis=1), axis=2)
    distinct, counts = np.unique(facets.reshape(-1, 3), axis=0, return_counts=True)
    hull = distinct[counts == 1]
    assert counts.max() <= 2 and len(hull) == len(mesh.convex_hull) == (neighbors < 0).sum()
    assert sorted_rows(hull) == sorted_rows(mesh.convex_hull)
    tet, k = np.nonzero(neighbors >= 0)
    beyond = neighbors[tet, k]
    back = (neighbors[beyond] == tet[:, np.newaxis]).argmax(axis=1)
    assert (neighbors[beyond, back] == tet).all()
    assert (facets[tet, k] == facets[beyond, back]).all()

    # The tetrahedra fill the hull.
    center = mesh.points.mean(axis=0)
    a, b, c = (mesh.points[mesh.convex_hull[:, i]] - center for i in range(3))
    hull_volume = np.einsum("ij,ij->", a, np.cross(b, c)) / 6
    rounding = 1e-12 * np.prod(mesh.max_bound - mesh.min_bound).max()
    np.testing.assert_allclose(mesh.volumes.sum(), hull_volume, rtol=1e-6, atol=rounding)
    assert mesh.is_valid()
