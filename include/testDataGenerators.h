// SPDX-License-Identifier: MIT
// Random input, the same on every platform for the same seed.
#pragma once

#include "Point3.h"

#include <cstddef>
#include <vector>

namespace TULO3D {

/// Appends `num` numbers, uniformly spread over [min, max), to `vOut`.
///
/// The generator is a 15-bit one that belongs to the library: the same seed gives the same numbers
/// everywhere, and the host's own `rand` is left alone. Seed 0 gives different numbers on every
/// call. Throws `TuloException` unless min < max.
TULO3D_API void generateRandomNumbers(
    std::size_t num, double min, double max, std::vector<double>& vOut, unsigned int seed);

/// Appends random points of the cube [min, max)^3 to `vOut`.
///
/// Deliberate: it appends 2 * num / 3 points, rounded up, not `num`. Throws `TuloException` unless
/// min < max.
TULO3D_API void generateRandomPoints(
    std::size_t num, double min, double max, std::vector<Point3>& vOut, unsigned int seed);

} // namespace TULO3D
