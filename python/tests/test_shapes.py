# SPDX-License-Identifier: MIT
"""Hull, alpha shapes and Voronoi cells: beside SciPy's, and what their arrays say."""

import numpy as np
import pytest
import scipy.spatial
import tulo3d

POINTS = np.random.default_rng(5).random((500, 3))


def split(indptr, values):
    return np.split(values, indptr[1:-1])


def test_the_hull_is_that_of_scipy():
    ours, theirs = tulo3d.Delaunay(POINTS + 2e6).hull(), scipy.spatial.ConvexHull(POINTS)
    assert ours.volume == pytest.approx(theirs.volume, rel=1e-8)
    assert ours.area == pytest.approx(theirs.area, rel=1e-8)
    assert {frozenset(row) for row in ours.triangles} == {frozenset(row) for row in theirs.simplices}
    for triangle, neighbors in zip(ours.triangles, ours.triangles[ours.neighbors], strict=True):
        assert [len(set(triangle) & set(other)) for other in neighbors] == [2, 2, 2]


def test_whole_voronoi_cells_are_those_of_scipy():
    mesh, theirs = tulo3d.Delaunay(POINTS), scipy.spatial.Voronoi(POINTS)
    cells = mesh.voronoi()
    owner = np.repeat(np.arange(len(POINTS)), np.diff(cells.cell_indptr))
    pairs = {tuple(sorted(pair)) for pair in zip(owner, cells.neighbors, strict=True)}
    # Qhull leaves out some faces between points on the hull, where tetrahedra are flat.
    by_scipy = {tuple(sorted(pair)) for pair in theirs.ridge_points}
    assert by_scipy <= pairs and set().union(*(pairs - by_scipy)) <= set(mesh.convex_hull.ravel())
    for i, region in enumerate(theirs.regions[r] for r in theirs.point_region):
        expected = np.inf if -1 in region else scipy.spatial.ConvexHull(theirs.vertices[region]).volume
        assert cells.volumes[i] == pytest.approx(expected, rel=1e-8)
    unbounded = [-1 in face for face in split(cells.face_indptr, cells.corners)]
    assert set(owner[unbounded]) == set(mesh.convex_hull.ravel())


def test_clipped_voronoi_cells_fill_their_region_and_duplicate_points_have_none():
    mesh = tulo3d.Delaunay(np.concatenate([POINTS, POINTS[:3]]))
    for clip, volume in (([-1, -1, -1], [1, 2, 1]), 12), ("hull", mesh.hull().volume):
        cells = mesh.voronoi(clip)
        assert cells.volumes.sum() == pytest.approx(volume, rel=1e-12)
        assert (cells.volumes[-3:] == 0).all() and (np.diff(cells.cell_indptr)[-3:] == 0).all()
        assert cells.neighbors.min() == (-7 if clip == "hull" else -6) and cells.corners.min() >= 0
        assert np.isfinite(cells.vertices[cells.corners]).all()


def test_an_alpha_shape_is_its_tetrahedra():
    mesh = tulo3d.Delaunay(np.concatenate([POINTS, POINTS + 5]))
    shape = mesh.alpha_shape()
    np.testing.assert_array_equal(
        shape.simplices, np.flatnonzero(mesh.circumradii <= shape.radius * (1 + 1e-12))
    )
    assert np.bincount(shape.components, mesh.volumes[shape.simplices]) == pytest.approx(shape.volumes)
    assert len(np.unique(mesh.simplices[shape.simplices])) == mesh.npoints
    assert len(shape.volumes) == 2 and len(mesh.alpha_shape("one").volumes) == 1
    a, b, c = mesh.points[shape.triangles].swapaxes(0, 1) - mesh.points[0]
    assert (np.cross(a, b) * c).sum() / 6 == pytest.approx(shape.volume)
    few = mesh.alpha_shape(shape.radius / 2, singular=True)
    assert few.singular_facets.shape[1:] == (3,) and few.singular_edges.shape[1:] == (2,)
    assert len(few.singular_facets) > 0


def test_angles_are_those_of_each_tetrahedron():
    mesh = tulo3d.Delaunay(POINTS)
    corners = mesh.points[mesh.simplices]
    for k, (i, j) in enumerate(((0, 1), (0, 2), (0, 3), (1, 2), (1, 3), (2, 3))):
        edge = corners[:, j] - corners[:, i]
        edge /= np.linalg.norm(edge, axis=1)[:, np.newaxis]
        arms = (corners[:, m] - corners[:, i] for m in {0, 1, 2, 3} - {i, j})
        a, b = (arm - (arm * edge).sum(axis=1)[:, np.newaxis] * edge for arm in arms)
        cosines = (a * b).sum(axis=1) / np.linalg.norm(a, axis=1) / np.linalg.norm(b, axis=1)
        np.testing.assert_allclose(np.cos(mesh.dihedral_angles[:, k]), cosines, atol=1e-6)


@pytest.mark.parametrize("call", ["alpha_shape(-1)", "alpha_shape('two')", "voronoi('box')", "voronoi(([0], [1]))",
    "voronoi(([0, 0, 0], [1, 1, 0]))", "voronoi(([0, 0, 0], [1, 1, float('nan')]))"])  # fmt: skip
def test_bad_parameters_are_refused(call):
    with pytest.raises(ValueError, match="radius|box"):
        eval(
            call,
            {"float": float},
            {n: getattr(tulo3d.Delaunay(POINTS), n) for n in ("alpha_shape", "voronoi")},
        )
