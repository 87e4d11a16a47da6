# SPDX-License-Identifier: MIT
"""Point location and interpolation."""

import numpy as np
import pytest
import scipy.interpolate
import scipy.spatial
import tulo3d
from families import FAMILIES

RNG = np.random.default_rng(1)
POINTS = RNG.random((400, 3))
QUERIES = RNG.uniform(-0.1, 1.1, (3000, 3))
INTERPOLATORS = [tulo3d.LinearInterpolator, tulo3d.NaturalNeighborInterpolator]


def test_the_simplex_found_has_no_negative_barycentric_coordinate():
    mesh = tulo3d.Delaunay(POINTS)
    found = mesh.find_simplex(QUERIES)
    maps = mesh.transform[found]
    first = np.einsum("nij,nj->ni", maps[:, :3], QUERIES - maps[:, 3])
    least = np.append(first, 1 - first.sum(axis=1, keepdims=True), axis=1).min(axis=1)
    assert (least[found >= 0] > -1e-9).all()
    hull = scipy.spatial.ConvexHull(POINTS)
    distance = (QUERIES @ hull.equations[:, :3].T + hull.equations[:, 3]).max(axis=1)
    np.testing.assert_array_equal(found >= 0, distance <= 0)
    assert 500 < (found < 0).sum() < 2500


def test_queries_may_have_any_shape():
    mesh = tulo3d.Delaunay(POINTS)
    expected = mesh.find_simplex(QUERIES)
    for shape in ((3000, 3), (30, 100, 3), (2, 3, 500, 3)):
        found = mesh.find_simplex(QUERIES.reshape(shape))
        assert found.shape == shape[:-1] and found.dtype == np.int32
        assert ((found.ravel() < 0) == (expected < 0)).all()
    assert mesh.find_simplex(QUERIES[0], bruteforce=True, tol=1e-9).shape == ()
    assert mesh.find_simplex(np.empty((0, 3))).shape == (0,)
    far = [[np.nan, 0.5, 0.5], [np.inf, 0.5, 0.5], [0.5, 1e300, 0.5], [0.5, 0.5, 0.5]]
    assert (mesh.find_simplex(far) >= 0).tolist() == [False, False, False, True]


def test_points_on_the_hull_are_inside():
    # Exactly on facets, edges and corners: the coordinates are sums of few powers of two.
    mesh = tulo3d.Delaunay(np.indices((4, 4, 4)).reshape(3, -1).T / 4)
    queries = np.array(np.meshgrid(*3 * [np.arange(-1, 14) / 16])).reshape(3, -1).T
    inside = ((queries >= 0) & (queries <= 0.75)).all(axis=1)
    np.testing.assert_array_equal(mesh.find_simplex(queries) >= 0, inside)
    next_out = np.nextafter(np.where(queries == 0.75, queries, 0), 2)
    outside = np.where(queries == 0.75, next_out, queries)[(queries == 0.75).any(axis=1)]
    assert (mesh.find_simplex(outside) < 0).all()


@pytest.mark.parametrize("family", sorted(FAMILIES.keys() - {"DenormalsOnly"}))  # its slopes would be infinite
def test_linear_functions_are_found_again_in_hard_meshes(family):
    points = FAMILIES[family]
    mesh = tulo3d.Delaunay(points)
    scale = abs(points - points.mean(axis=0)).max()
    slope = np.array([[3, -2, 1], [0.5, 0.25, -4]]) / scale
    values = (points - points.mean(axis=0)) @ slope.T
    some = RNG.integers(mesh.nsimplex, size=300)
    queries = np.einsum("ni,nij->nj", RNG.dirichlet(np.ones(4), 300), points[mesh.simplices[some]])
    queries = np.concatenate([queries, points[:100], points[mesh.convex_hull[:100]].mean(axis=1)])
    queries = queries[mesh.find_simplex(queries) >= 0]
    expected = (queries - points.mean(axis=0)) @ slope.T
    for interpolator in INTERPOLATORS:
        np.testing.assert_allclose(interpolator(mesh, values)(queries), expected, atol=1e-11)


def test_the_linear_interpolant_is_that_of_scipy():
    values = np.sin(5 * POINTS)
    ours, theirs = (
        make(POINTS, values, fill_value=-7)
        for make in (tulo3d.LinearInterpolator, scipy.interpolate.LinearNDInterpolator)
    )
    np.testing.assert_allclose(ours(QUERIES), theirs(QUERIES), atol=1e-9)
    x, y, z = np.ix_([0.3, 0.5], [0.4, 0.6, 0.7], [0.5])
    for xi in ((x, y, z), ((x, y, z),), (0.5, 0.5, 0.5), ((QUERIES[:3], 0.5, 0.5),)):
        np.testing.assert_allclose(ours(*xi), theirs(*xi), atol=1e-9)
        assert ours.gradient(*xi).shape == (*ours(*xi).shape, 3)
    found = ours.mesh.find_simplex(QUERIES)
    inner, corners = QUERIES[found >= 0], ours.mesh.simplices[found[found >= 0]]
    arms = POINTS[corners] - inner[:, np.newaxis]
    at_corners = ours(inner)[:, np.newaxis] + np.einsum("nci,nki->nkc", ours.gradient(inner), arms)
    np.testing.assert_allclose(at_corners, values[corners], atol=1e-9)
    assert np.isnan(ours.gradient([5, 5, 5])).all() and ours.gradient([5, 5, 5]).shape == (3, 3)


def test_natural_weights_are_the_volumes_taken_from_voronoi_cells():
    points = np.random.default_rng(7).random((120, 3))
    values = np.eye(120)  # the results are the weights themselves
    natural = tulo3d.NaturalNeighborInterpolator(points, values)
    tiny = tulo3d.NaturalNeighborInterpolator(points * 2.0**-400, values)

    def cells(sites):
        voronoi = scipy.spatial.Voronoi(sites)
        corners = (voronoi.vertices[voronoi.regions[i]] for i in voronoi.point_region)
        bounded = (-1 not in voronoi.regions[i] for i in voronoi.point_region)
        volumes = (scipy.spatial.ConvexHull(v).volume if b else np.inf for v, b in zip(corners, bounded))
        return np.array(list(volumes))

    before = cells(points)
    for query in ([0.5, 0.5, 0.5], [0.4, 0.6, 0.5], [0.45, 0.45, 0.6], points[:4].mean(axis=0) / 2 + 0.25):
        after = cells([*points, query])
        with np.errstate(invalid="ignore"):
            taken = np.nan_to_num(before - after[:-1])
        assert np.isfinite(after[-1])
        np.testing.assert_allclose(natural(query), taken / after[-1], atol=1e-9)
        np.testing.assert_allclose(tiny(np.multiply(query, 2.0**-400)), natural(query), atol=1e-12)


def test_natural_interpolation_is_smooth_between_points():
    points = np.random.default_rng(8).random((200, 3))
    values = np.sin(7 * points).prod(axis=1)
    t = np.linspace(0.3, 0.7, 20001)[:, np.newaxis]
    line = t * [1, 1, 1] + [0.01, -0.02, 0.015]

    linear, natural = (abs(np.diff(make(points, values)(line), 2)).max() for make in INTERPOLATORS)
    assert 100 * natural < linear


def test_values_have_any_number_of_columns_and_points_may_come_as_a_mesh():
    mesh = tulo3d.Delaunay(POINTS)
    values = RNG.random((400, 2, 3))
    for make in INTERPOLATORS:
        whole = make(mesh, values)(QUERIES.reshape(30, 100, 3))
        assert whole.shape == (30, 100, 2, 3)
        single = make(POINTS, values[:, 1, 2], fill_value=0)(QUERIES)
        np.testing.assert_allclose(np.nan_to_num(whole[..., 1, 2].ravel()), single, atol=1e-12)
        before = make(mesh, values)
        np.testing.assert_allclose(before(POINTS), values, atol=1e-12)
    mesh.add_points([[2, 2, 2]])
    assert np.isnan(before([1.5, 1.5, 1.5])).all()
    with pytest.raises(ValueError, match="values must"):
        tulo3d.LinearInterpolator(mesh, values)
