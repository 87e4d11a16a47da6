// SPDX-License-Identifier: MIT
// Exact signs where coordinates are so small that products of them underflow: the same test at another scale, or
// in big integers.
//
// Error bounds are relative to the computed magnitudes. Where a product underflows to zero or to a denormal
// number, such a bound is too small, and expansions are no longer exact.
#pragma once

#include "Point3.h"
#include "predicates/Bounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

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

/// One scale for all axes, or one for each.
enum class Scales { kCommon, kPerAxis };

/// Copies of points, multiplied by powers of two so that the largest coordinate, or the largest on each axis, is near
/// the limit. Where all of them are tiny, this makes an ordinary test of it: no sign of a determinant changes, with a
/// scale per axis as long as no column adds axes.
template <std::size_t n>
class ScaledPoints
{
public:
	ScaledPoints(const std::array<const Point3*, n>& original, Scales scales)
	{
		double x = 0, y = 0, z = 0; // the largest ones
		for (const Point3* p : original) {
			x = std::max(x, std::abs(p->x()));
			y = std::max(y, std::abs(p->y()));
			z = std::max(z, std::abs(p->z()));
		}
		if (scales == Scales::kCommon) x = y = z = std::max({x, y, z});
		x = scaleFor(x);
		y = scaleFor(y);
		z = scaleFor(z);
		for (std::size_t i = 0; i < n; ++i) {
			points[i] = Point3(x * original[i]->x(), y * original[i]->y(), z * original[i]->z());
			bSafe &= !mayUnderflow(points[i]);
		}
	}

	/// False when a coordinate is tiny even so.
	bool areSafe() const { return bSafe; }

	Point3& operator[](std::size_t i) { return points[i]; }

private:
	static double scaleFor(double largest)
	{
		constexpr int kTop = 199; // 2^199 < kMaxCoordinate
		constexpr int kMax = 1000;
		int exponent = 0;
		std::frexp(largest, &exponent); // largest < 2^exponent
		return std::ldexp(
		    1.0, std::clamp(kTop - exponent, 0, kMax)); // never down: that might round
	}

	std::array<Point3, n> points;
	bool bSafe = true;
};

/// The sign of orient3d, negative for a positive order of the corners. Exact whatever underflows.
int orient3dSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d);

/// The sign of insphere, positive for e outside. Exact whatever underflows.
int insphereSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e);

} // namespace TULO3D
