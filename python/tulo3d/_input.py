# SPDX-License-Identifier: MIT
"""What callers hand in, as arrays of doubles, or an error that says what is wrong with it."""

from __future__ import annotations

from typing import Any

import numpy as np
import numpy.typing as npt

FloatArray = npt.NDArray[np.float64]
Int32Array = npt.NDArray[np.int32]
Int64Array = npt.NDArray[np.int64]

MAX_COORDINATE = 1e60


class FlatError(ValueError):
    """All points are in one plane, so that there is no tetrahedron."""


def as_doubles(values: npt.ArrayLike, name: str) -> FloatArray:
    """Return real numbers in any form as an array of doubles, the same one where it is one already."""
    if np.ma.is_masked(values):
        raise ValueError(f"{name} must not be masked; leave out the masked rows first")
    try:
        array: npt.NDArray[Any] = np.asarray(values)
    except ValueError as error:
        raise ValueError(f"{name} must be numbers in rows of equal length") from error
    if array.dtype.kind not in "biufO":
        raise ValueError(f"{name} must be real numbers, not {array.dtype}")
    try:
        return np.asarray(array, dtype=np.float64)
    except (TypeError, ValueError, OverflowError) as error:
        raise ValueError(f"{name} must be real numbers: {error}") from error


def as_points(points: npt.ArrayLike) -> FloatArray:
    """Return points as a contiguous, read-only copy of shape (n, 3), with coordinates in range."""
    given = as_doubles(points, "points")
    if given.ndim != 2 or given.shape[1] != 3:
        hint = "; for points in the plane take scipy.spatial.Delaunay" if given.shape[1:] == (2,) else ""
        raise ValueError(f"points must have the shape (n, 3), not {given.shape}{hint}")
    # Not by np.array, which asks the system for large pages: clearing those takes 20 times the copying.
    array: FloatArray = np.frombuffer(given.tobytes()).reshape(given.shape)
    if array.size > 0 and not max(array.max(), -array.min()) <= MAX_COORDINATE:
        bad = np.flatnonzero(~(np.abs(array) <= MAX_COORDINATE).all(axis=1))
        raise ValueError(
            f"coordinates must be finite and at most {MAX_COORDINATE:g} in magnitude; "
            f"point {bad[0]} is {array[bad[0]].tolist()}, and {len(bad) - 1} more are out of range"
        )
    return array


def as_queries(xi: npt.ArrayLike) -> tuple[FloatArray, tuple[int, ...]]:
    """Return points to ask about as a contiguous array of shape (n, 3), and the shape they came in."""
    given = as_doubles(xi, "xi")
    if given.ndim == 0 or given.shape[-1] != 3:
        raise ValueError(f"xi must have the shape (..., 3), not {given.shape}")
    return np.ascontiguousarray(given).reshape(-1, 3), given.shape[:-1]
