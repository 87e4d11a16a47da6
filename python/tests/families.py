# SPDX-License-Identifier: MIT
"""Inputs that are hard for a mesh, each as a function of a number of points, and the laws of a mesh."""

import numpy as np
import tulo3d


def _random(seed=1):
    return np.random.default_rng(seed)


def _lattice(n):
    side = round(n ** (1 / 3))
    return np.array(np.meshgrid(*3 * [np.arange(side)], indexing="ij")).reshape(3, -1).T


def _sphere(n):
    p = _random().normal(size=(n, 3))
    return p / np.linalg.norm(p, axis=1)[:, np.newaxis]


def _curve(n):
    t = np.arange(min(n, 300))
    return np.stack([t, t**2, t**3], axis=1)


FAMILIES = {
    "uniform": lambda n: _random().random((n, 3)),
    "lattice": _lattice,
    "nudged lattice": lambda n: _lattice(n) + 1e-13 * _random().normal(size=_lattice(n).shape),
    "tenths": lambda n: _lattice(n) * 0.1,
    "sphere": _sphere,
    "repeated": lambda n: _random().random((n // 3, 3))[_random(2).integers(n // 3, size=n)],
    "flat then apex": lambda n: np.append(_random().integers(30, size=(n, 3)) * [1, 1, 0], [[3, 4, 5]], 0),
    "two lines": lambda n: np.concatenate(
        [np.outer(np.arange(60), [1, 0, 0]), np.outer(np.arange(60), [0, 1, 0]) + [3, -7, 5]]
    ),
    "moment curve": _curve,
    "far out": lambda n: np.append(_random().random((n, 3)), [[1e9, 1e9, 1e9]], 0),
    "needle": lambda n: _random().random((n, 3)) * [1, 1, 1e6],
    "huge": lambda n: _random().uniform(-1e60, 1e60, (n, 3)),
    "tiny": lambda n: _random().random((n, 3)) * 1e-150,
    "distant": lambda n: _random().random((n, 3)) + [4e5, 5e6, 100],
}


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
