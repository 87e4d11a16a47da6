# SPDX-License-Identifier: MIT
"""The mesh: its laws, on inputs that are hard and on such as hypothesis finds; its arrays beside SciPy's."""

from pathlib import Path

import numpy as np
import pytest
import scipy.spatial
import tulo3d
from families import FAMILIES, check_laws, sorted_rows
from hypothesis import assume, given
from hypothesis import strategies as st
from hypothesis.extra.numpy import arrays
from tulo3d import _core

BUNNY = np.loadtxt(Path(__file__).parents[2] / "data" / "bunny_2k.xyz")

# Few different coordinates: most points are coplanar, cospherical or equal to others.
small_numbers = st.integers(-4, 4)
degenerate_points = st.integers(4, 40).flatmap(lambda n: arrays(np.int64, (n, 3), elements=small_numbers))


@pytest.mark.parametrize("family", FAMILIES)
def test_hard_inputs_keep_the_laws(family):
    points = FAMILIES[family]
    mesh = tulo3d.Delaunay(points)
    check_laws(mesh)
    assert (mesh.find_simplex(points) >= 0).all()
    half = 1 + len(points) // 2
    if family not in ("FlatGridThenApex", "LineThenTwoPoints"):
        mesh = tulo3d.Delaunay(points[:half])
    mesh.add_points(points[half:])
    check_laws(mesh)


@given(degenerate_points, st.randoms(use_true_random=False))
def test_no_sphere_contains_a_point(points, random):
    assume(np.linalg.matrix_rank(points - points[0]) == 3)
    cut = random.randrange(4, len(points) + 1)
    try:
        mesh = tulo3d.Delaunay(points[:cut])
    except tulo3d.FlatError:
        mesh = tulo3d.Delaunay(points)
    else:
        mesh.add_points(points[cut:])
    check_laws(mesh)
    # In integers: the sign of the determinant of arms and their squares, for all tetrahedra and points.
    arms = points[mesh.simplices][:, np.newaxis] - points[np.newaxis, :, np.newaxis]
    a, b, c, d = np.moveaxis(arms, 2, 0)

    def det(u, v, w):
        return (u * np.cross(v, w)).sum(axis=-1)

    terms = det(b, c, d), -det(a, c, d), det(a, b, d), -det(a, b, c)
    sphere = sum((u * u).sum(axis=-1) * term for u, term in zip((a, b, c, d), terms, strict=True))
    assert (det(b - a, c - a, d - a) > 0).all() and (sphere <= 0).all()


@pytest.mark.parametrize("points", [np.random.default_rng(3).random((1500, 3)), BUNNY], ids=["random", "scan"])
def test_where_the_mesh_is_unique_it_is_that_of_scipy_whatever_the_order(points):
    theirs = scipy.spatial.Delaunay(points)
    ours = tulo3d.Delaunay(points)
    assert sorted_rows(ours.simplices) == sorted_rows(theirs.simplices)
    assert sorted_rows(ours.convex_hull) == sorted_rows(theirs.convex_hull)
    for name in ("min_bound", "max_bound", "npoints", "nsimplex", "ndim"):
        np.testing.assert_array_equal(getattr(ours, name), getattr(theirs, name))
    shuffled = np.random.default_rng(4).permutation(len(points))
    grown = tulo3d.Delaunay(points[shuffled[:10]])
    for part in np.array_split(shuffled[10:], 7):
        grown.add_points(points[part])
    assert sorted_rows(shuffled[grown.simplices]) == sorted_rows(ours.simplices)
    assert grown.npoints == len(points)


def test_derived_arrays_agree_with_their_definitions():
    points = np.random.default_rng(5).random((300, 3))
    mesh = tulo3d.Delaunay(points)
    corners = points[mesh.simplices]
    a, b, c = (corners[:, i] - corners[:, 0] for i in (1, 2, 3))
    np.testing.assert_allclose(mesh.volumes, np.einsum("ij,ij->i", np.cross(a, b), c) / 6)
    distances = np.linalg.norm(corners - mesh.circumcenters[:, np.newaxis], axis=2)
    np.testing.assert_allclose(distances.T, np.tile(mesh.circumradii, (4, 1)))
    inverse = np.linalg.inv(np.moveaxis(corners[:, :3] - corners[:, 3:], 1, 2))
    np.testing.assert_allclose(mesh.transform[:, :3], inverse, rtol=1e-6, atol=1e-6 * abs(inverse).max())
    np.testing.assert_array_equal(mesh.transform[:, 3], corners[:, 3])
    lists = mesh.stars, mesh.vertex_neighbor_vertices
    for i in range(0, 300, 10):
        star, near = (indices[first[i] : first[i + 1]] for first, indices in lists)
        np.testing.assert_array_equal(star, np.nonzero(mesh.simplices == i)[0])
        np.testing.assert_array_equal(near, np.setdiff1d(mesh.simplices[star], i))
    assert 0 < mesh.quality.min() and mesh.quality.max() <= 1
    tiny = tulo3d.Delaunay(points * 2.0**-400)  # the squares of its coordinates underflow
    np.testing.assert_allclose(np.sort(tiny.quality), np.sort(mesh.quality))
    np.testing.assert_allclose(np.sort(tiny.circumradii) * 2.0**400, np.sort(mesh.circumradii))
    regular = tulo3d.Delaunay([[1, 1, 1], [1, -1, -1], [-1, 1, -1], [-1, -1, 1]])
    assert regular.quality == pytest.approx([1]) and regular.volumes == pytest.approx([8 / 3])


def test_duplicate_points_are_told_apart_from_corners():
    mesh = tulo3d.Delaunay([[0, 0, 0], [1, 0, 0], [0, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, -0.0]])
    assert mesh.vertex_of_point.tolist() == [0, 1, 0, 3, 4, 1]
    assert mesh.coplanar.tolist() == [[2, 0, 0], [5, 0, 1]]
    assert mesh.vertex_to_simplex.tolist() == [0] * 6
    assert np.diff(mesh.stars[0]).tolist() == [1, 1, 0, 1, 1, 0]
    mesh.add_points([[1, 0, 0], [2, 2, 2], [2, 2, 2]])
    assert mesh.vertex_of_point.tolist() == [0, 1, 0, 3, 4, 1, 1, 7, 7]
    assert set(mesh.simplices.ravel().tolist()) == {0, 1, 3, 4, 7}


def test_a_broken_mesh_is_not_valid():
    mesh = tulo3d.Delaunay(np.random.default_rng(6).random((50, 3)))
    points, simplices, neighbors = mesh.points, mesh.simplices, mesh.neighbors

    def changed(array, place, value):
        array = array.copy()
        array[place] = value
        return array

    inner = 5, neighbors[5].argmax()
    at_hull = np.flatnonzero((neighbors < 0).sum(axis=1) == 1)[0]
    left = np.delete(np.arange(mesh.nsimplex), at_hull)
    renumbered = changed(np.full(mesh.nsimplex + 1, -1, np.int32), left, range(len(left)))
    for what, *arrays in (
        ("nothing", points, simplices, neighbors),
        ("a point moved", changed(points, 17, points[18] + 1e-3), simplices, neighbors),
        ("spheres that are not empty", points * [1, 1, 4], simplices, neighbors),
        ("a tetrahedron turned", points, changed(simplices, 5, simplices[5, [1, 0, 2, 3]]), neighbors),
        ("a neighbour lost", points, simplices, changed(neighbors, inner, -1)),
        ("its own neighbour", points, simplices, changed(neighbors, inner, 5)),
        ("a dent in the hull", points, simplices[left], renumbered[neighbors[left]]),
    ):
        assert _core.is_valid(_core.Mesh(*arrays)) == (what == "nothing"), what


@pytest.mark.parametrize("family", FAMILIES)
def test_workers_make_one_mesh_however_many_they_are(family):
    points = FAMILIES[family]
    mesh = tulo3d.Delaunay(points, workers=2)
    check_laws(mesh)
    np.testing.assert_array_equal(mesh.simplices, tulo3d.Delaunay(points, workers=5).simplices)
    mesh.add_points(points[:1] + np.float64(1))
    check_laws(mesh)


def test_workers_are_a_number_and_are_stopped_by_what_the_callback_raises():
    points = np.random.default_rng(5).random((60_000, 3))
    for workers, error in [(0, ValueError), (-2, ValueError), (1.5, TypeError), ("2", TypeError)]:
        with pytest.raises(error):
            tulo3d.Delaunay(points, workers=workers)

    def stop(done, total):
        raise KeyError(total)

    with pytest.raises(KeyError):
        tulo3d.Delaunay(points, workers=2, progress=stop)
    with pytest.raises(tulo3d.FlatError):
        tulo3d.Delaunay(points * [1, 1, 0], workers=2)
    assert tulo3d.Delaunay(points, workers=-1).is_valid()
