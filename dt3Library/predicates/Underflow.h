// SPDX-License-Identifier: MIT
// Signs where coordinates are so small that products of them underflow.
//
// Error bounds are relative to what was computed. Where a product comes out as zero, or loses bits at
// the end of the range of doubles, they promise too much, and expansions are no longer exact.
#pragma once

#include "Point3.h"

#include <cmath>

namespace TULO3D {

// What is lost when products underflow, in the fast stages: less than 2^-1022 in each, should the host
// have the processor flush small numbers to zero, times what it is multiplied with later on.
// Differences of coordinates are at most 2e60. In orient3d there are some 16 products, with one more
// difference each; in insphere less than 256, with three.
constexpr double kLostInOrient3d = 1e-244;
constexpr double kLostInInsphere = 1e-122;

constexpr double kLeastSafe =
    1e-45; // nonzero coordinates from here on: no term of a test underflows

/// True when products of the coordinates may underflow in an exact test.
inline bool mayUnderflow(const Point3& p)
{
	const auto isTiny = [](double v) { return (std::abs(v) < kLeastSafe) & (v != 0.0); };
	return isTiny(p.x()) | isTiny(p.y()) | isTiny(p.z());
}

/// The same for several points; every one is looked at, which costs less than a misprediction.
template <typename... Points>
bool mayUnderflow(const Point3& p, const Points&... others)
{
	return (mayUnderflow(p) | ... | mayUnderflow(others));
}

/// The sign of orient3d, negative for a positive order of the corners. Exact whatever underflows.
int orient3dSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d);

/// The sign of insphere, positive for e outside. Exact whatever underflows.
int insphereSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e);

} // namespace TULO3D
