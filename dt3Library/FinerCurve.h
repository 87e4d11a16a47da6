// SPDX-License-Identifier: MIT
// A curve for points that the nine levels of the vertex store do not tell apart.
#pragma once

#include "Point3.h"

#include <cstdint>
#include <vector>

namespace TULO3D {

/// The positions of the points, not none, along a Morton curve through cubes: isotropic, and 21 levels
/// deep around the bulk of them, whatever lies far out.
std::vector<std::uint32_t> alongFinerCurve(const std::vector<const Point3*>& vPoints);

} // namespace TULO3D
