// SPDX-License-Identifier: MIT
// Where a point would be in conflict with a tetrahedron, or see a hull facet.
#include "tiles/ConflictRegion.h"
#include "geometry/TetIndices.h"
#include "predicates/Bounds.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace TULO3D {

namespace {

/// The error of a value is at most this part of the sum of its terms' magnitudes. A term of f has five factors,
/// each a rounded difference, and fewer than 20 further operations: less than 32 u.
constexpr double kRelativeError = 32 * 0x1p-53;

Box boxOf(std::initializer_list<const Point3*> points)
{
	Box box = boxOf(**points.begin());
	for (const Point3* p : points) widen(box, boxOf(*p));
	return box;
}

bool meet(const Box& a, const Box& b)
{
	bool bMeet = true;
	for (std::size_t i = 0; i < 3; ++i) bMeet &= a.low[i] <= b.high[i] && b.low[i] <= a.high[i];
	return bMeet;
}

} // namespace

ConflictRegion::Vector ConflictRegion::from(const Point3& origin, const Point3& p)
{
	return {p.x() - origin.x(), p.y() - origin.y(), p.z() - origin.z()};
}

ConflictRegion ConflictRegion::ofTet(const Tet3& tet)
{
	const Point3& a = *tet.getCorner(0);
	const Vector b = from(a, *tet.getCorner(1));
	const Vector c = from(a, *tet.getCorner(2));
	const Vector d = from(a, *tet.getCorner(3));
	const auto lift = [](const Vector& p) { return p[0] * p[0] + p[1] * p[1] + p[2] * p[2]; };
	const double liftB = lift(b), liftC = lift(c), liftD = lift(d);

	ConflictRegion region;
	region.origin = {a.x(), a.y(), a.z()};
	for (std::size_t i = 0; i < 3; ++i) {
		const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
		const double cd[2] = {c[j] * d[k], c[k] * d[j]};
		const double db[2] = {d[j] * b[k], d[k] * b[j]};
		const double bc[2] = {b[j] * c[k], b[k] * c[j]};
		const auto sum = [](const double(&p)[2]) { return std::abs(p[0]) + std::abs(p[1]); };
		region.v += b[i] * (cd[0] - cd[1]);
		region.vMagnitude += std::abs(b[i]) * sum(cd);
		region.n[i] = liftB * (cd[0] - cd[1]) + liftC * (db[0] - db[1]) + liftD * (bc[0] - bc[1]);
		region.nMagnitude[i] = liftB * sum(cd) + liftC * sum(db) + liftD * sum(bc);
	}
	for (std::size_t i = 0; i < 3; ++i) region.centre[i] = region.n[i] / (2 * region.v);
	return region;
}

ConflictRegion ConflictRegion::beyondFacet(const Tet3& tet, int ith)
{
	const auto [p, q, r] = insideFacet(ith); // counter-clockwise as seen from corner ith
	const Point3& a = *tet.getCorner(p);
	const Vector b = from(a, *tet.getCorner(q));
	const Vector c = from(a, *tet.getCorner(r));
	ConflictRegion region;
	region.origin = {a.x(), a.y(), a.z()};
	for (std::size_t i = 0; i < 3; ++i) {
		const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
		region.n[i] = b[j] * c[k] - b[k] * c[j];
		region.nMagnitude[i] = std::abs(b[j] * c[k]) + std::abs(b[k] * c[j]);
		region.n[i] = -region.n[i];
	}
	const Box plane = boxOf({&a, tet.getCorner(q), tet.getCorner(r)});
	for (std::size_t i = 0; i < 3; ++i) {
		if (plane.low[i] == plane.high[i] && region.n[i] != 0) region.axis = i;
	}
	return region;
}

double ConflictRegion::leastIn(const Box& box) const
{
	// Exactly in a plane is not beyond it: there may be thousands of points.
	if (axis != kNoAxis) {
		const bool bBeyond =
		    n[axis] > 0 ? box.high[axis] > origin[axis] : box.low[axis] < origin[axis];
		if (!bBeyond) return 1;
	}
	double least = 0;
	double magnitude = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		const double low = box.low[i] - origin[i];
		const double high = box.high[i] - origin[i];
		const auto f = [this, i](double x) { return (v * x - n[i]) * x; };
		least += v > 0 ? f(std::clamp(centre[i], low, high)) : std::min(f(low), f(high));
		const double farthest = std::max(std::abs(low), std::abs(high));
		magnitude += (vMagnitude * farthest + nMagnitude[i]) * farthest;
	}
	return least - kRelativeError * magnitude - kLostInInsphere;
}

double ConflictRegion::leastAt(const Point3& p) const
{
	return leastIn(boxOf(p));
}

bool ConflictRegion::holds(const Box& box) const
{
	double most = 0;
	double magnitude = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		const double low = box.low[i] - origin[i];
		const double high = box.high[i] - origin[i];
		most += std::max(-n[i] * low, -n[i] * high);
		magnitude += nMagnitude[i] * std::max(std::abs(low), std::abs(high));
	}
	return most + kRelativeError * magnitude + kLostInInsphere < 0;
}

TetRegion::TetRegion(const Tet3& tet)
    : around(boxOf({tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3)}))
{
	for (int i = 0; i < 4; ++i) {
		beyond[static_cast<std::size_t>(i)] = ConflictRegion::beyondFacet(tet, i);
	}
}

double TetRegion::leastIn(const Box& box) const
{
	const bool bOutside = !meet(box, around) ||
	    std::any_of(beyond.begin(), beyond.end(),
	        [&box](const ConflictRegion& region) { return region.holds(box); });
	return bOutside ? 1 : -1;
}

double TetRegion::leastAt(const Point3& p) const
{
	return leastIn(boxOf(p));
}

bool ConflictRegion::hasRadiusBelow(double squaredRadius) const
{
	// The radius is |n| / 2v. Compared by their squares, products of eight coordinates: what overflows or is nearly
	// zero is not certain.
	constexpr double kLeast = 1e-290;
	const double leastV = v - kRelativeError * vMagnitude;
	if (!(leastV > 0)) return false;
	double squaredN = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		const double most = std::abs(n[i]) + kRelativeError * nMagnitude[i];
		squaredN += most * most;
	}
	const double limit = 4 * leastV * leastV * squaredRadius;
	return squaredN * (1 + kRelativeError) + kLeast < limit;
}

} // namespace TULO3D
