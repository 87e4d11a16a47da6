// SPDX-License-Identifier: MIT
// Exact signs where coordinates are so small that products of them underflow.
//
// Error bounds are relative to the computed magnitudes. Where a product underflows to zero or to a denormal
// number, such a bound is too small, and expansions are no longer exact.
#pragma once

#include "Point3.h"
#include "predicates/Bounds.h"

#include <cmath>

namespace TULO3D {

/// True when products of the coordinates may underflow in an exact test.
inline bool mayUnderflow(const Point3& p)
{
	const auto isTiny = [](double v) { return int{std::abs(v) < kLeastSafe} & int{v != 0.0}; };
	return (isTiny(p.x()) | isTiny(p.y()) | isTiny(p.z())) != 0;
}

/// The same for several points; all are tested, which costs less than a misprediction.
template <typename... Points>
bool mayUnderflow(const Point3& p, const Points&... others)
{
	return (int{mayUnderflow(p)} | ... | int{mayUnderflow(others)}) != 0;
}

/// The sign of orient3d, negative for a positive order of the corners. Exact whatever underflows.
int orient3dSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d);

/// The sign of insphere, positive for e outside. Exact whatever underflows.
int insphereSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e);

} // namespace TULO3D
