// SPDX-License-Identifier: MIT
// The order of the points within one cell of the curve.
#pragma once

#include "Point3.h"

#include <cstdint>
#include <vector>

namespace TULO3D {

/// Brings positions into the order of the coordinates of their points; equal ones keep their order.
void sortByCoordinates(std::vector<std::uint32_t>& vPositions, const std::vector<Point3>& vPoints);

} // namespace TULO3D
