# SPDX-License-Identifier: MIT
"""What callers hand in: taken as it was meant, or refused with a sentence that helps."""

import numpy as np
import pytest
import tulo3d
from families import sorted_rows

GOOD = np.random.default_rng(1).integers(0, 1000, (40, 3))
BAD_POINTS = [
    (GOOD[:, :2], r"shape \(n, 3\), not \(40, 2\); for points in the plane"),
    (GOOD.ravel(), r"shape \(n, 3\), not \(120,\)"),
    (GOOD[np.newaxis], r"shape \(n, 3\)"),
    ([], r"shape \(n, 3\), not \(0,\)"),
    (GOOD[:3], "at least 4 points, not 3"),
    ([[1, 2, 3], [4, 5]], "rows of equal length"),
    (GOOD.astype(str), "real numbers, not <U"),
    (GOOD.astype("M8[s]"), "real numbers, not datetime64"),
    ([[None, 0, 0]] * 5, r"point 0 is \[nan, 0.0, 0.0\], and 4 more"),
    ([[object(), 0, 0]] * 5, "real numbers: float"),
    ([[0, 0, np.nan], *GOOD], r"finite and at most 1e\+60.*point 0 is \[0.0, 0.0, nan\], and 0 more"),
    ([*GOOD, [np.inf, 0, 0]], "point 40 is"),
    ([*GOOD, [10**400, 0, 0]], "real numbers: int too large"),
    ([*GOOD, [0, -2e60, 0], [2e60, 0, 0]], "point 40 is .*, and 1 more are"),
    (np.ma.masked_greater(GOOD, 900), "masked"),
    (np.zeros((9, 3)), "all 9 points are in one plane"),
    (np.outer(range(8), [1, 2, 3]), "all 8 points are in one plane"),
    (GOOD * [1, 1, 0], "all 40 points are in one plane"),
    (GOOD[:, [0, 1, 1]] * 0.1, "all 40 points are in one plane"),
]


@pytest.mark.parametrize("points, message", BAD_POINTS)
def test_bad_points_are_refused_with_a_sentence(points, message):
    with pytest.raises(ValueError, match=message) as raised:
        tulo3d.Delaunay(points)
    assert (raised.type is tulo3d.FlatError) == ("one plane" in message)
    mesh = tulo3d.Delaunay(GOOD)
    if "at least" not in message and "one plane" not in message:
        with pytest.raises(ValueError, match=message):
            mesh.add_points(points)
        mesh.add_points(np.empty((0, 3)))
        assert mesh.npoints == 40


@pytest.mark.parametrize(
    "form",
    [
        lambda p: p.astype(np.float32),
        lambda p: p.astype(">f8"),
        lambda p: p.astype(object),
        lambda p: p.tolist(),
        lambda p: np.asfortranarray(p, dtype=float),
        lambda p: np.repeat(p.astype(float), 2, axis=1)[:, ::2],
        lambda p: np.ma.array(p),
        lambda p: np.frombuffer(p.astype(float).tobytes()).reshape(-1, 3),  # read-only
    ],
)
def test_numbers_in_any_form_make_the_same_mesh(form):
    expected = tulo3d.Delaunay(GOOD.astype(float))
    mesh = tulo3d.Delaunay(form(GOOD))
    np.testing.assert_array_equal(mesh.points, GOOD)
    assert sorted_rows(mesh.simplices) == sorted_rows(expected.simplices)
    assert (mesh.find_simplex(form(GOOD)) >= 0).all()


def test_what_the_caller_changes_later_changes_nothing():
    points = GOOD.astype(float)
    mesh = tulo3d.Delaunay(points)
    points[:] = 0
    assert mesh.is_valid()
    for array in (mesh.points, mesh.simplices, mesh.neighbors, mesh.volumes, *mesh.stars):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 1


def test_bad_queries_and_values_are_refused():
    mesh = tulo3d.Delaunay(GOOD)
    for xi in (GOOD[:, :2], 1, "here", [["a", "b", "c"]]):
        with pytest.raises(ValueError, match="xi must"):
            mesh.find_simplex(xi)
    for values in (GOOD[:5], 1, np.full(40, "a"), np.full(40, 1j), np.ma.masked_less(np.arange(40), 3)):
        with pytest.raises(ValueError, match="values must"):
            tulo3d.LinearInterpolator(GOOD, values)
