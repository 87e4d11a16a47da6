// SPDX-License-Identifier: MIT
// Morton order, for points that the nine levels of the vertex store do not tell apart.
#pragma once

#include "Point3.h"

#include <cstdint>
#include <vector>

namespace TULO3D {

/// The positions of the points, of which there is at least one, in Morton (Z-curve) order: 21 bits per axis
/// of a cube around the bulk of the points, whatever lies far out.
std::vector<std::uint32_t> mortonOrder(const std::vector<const Point3*>& vPoints);

} // namespace TULO3D
