// SPDX-License-Identifier: MIT
// Coplanarity: a filter in doubles, then the determinant without rounding.
#include "Coplanar.h"

#include "Precise.h"

namespace TULO3D::shapes {

namespace {

/// The sum of the magnitudes of all products of the determinant.
double permanent(const Vec& a, const Vec& b, const Vec& c)
{
	const Vec p{std::abs(a.x), std::abs(a.y), std::abs(a.z)};
	const Vec q{std::abs(b.x), std::abs(b.y), std::abs(b.z)};
	const Vec r{std::abs(c.x), std::abs(c.y), std::abs(c.z)};
	return p.x * (q.y * r.z + q.z * r.y) + p.y * (q.z * r.x + q.x * r.z) +
	    p.z * (q.x * r.y + q.y * r.x);
}

} // namespace

bool areCoplanar(const double* a, const double* b, const double* c, const double* d)
{
	const Vec ab = between(a, b), ac = between(a, c), ad = between(a, d);
	const double size = std::max({largest(ab), largest(ac), largest(ad)});
	// Most room for small numbers: the product of three differences is up to 2^900.
	const double scale = 0x1p300 * std::min(unitScale(size), 0x1p700);
	constexpr double kBound = 0x1p-49; // Shewchuk's bound A is below 8 * 2^-53
	const Vec u = scale * ab, v = scale * ac, w = scale * ad;
	if (std::abs(dot(u, cross(v, w))) > kBound * permanent(u, v, w)) return false;
	const auto exact = [&](const double* p) { return preciseBetween<Expansion>(a, p, scale); };
	return dot(exact(b), cross(exact(c), exact(d))).isZero();
}

} // namespace TULO3D::shapes
