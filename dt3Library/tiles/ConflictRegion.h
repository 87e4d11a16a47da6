// SPDX-License-Identifier: MIT
// Where a point would be in conflict with a tetrahedron, or see a hull facet.
#pragma once

#include "Tet3.h"
#include "tiles/BoxTree.h"

#include <array>

namespace TULO3D {

/// The ball of a tetrahedron, or the half-space beyond a hull facet, as the points where a quadratic
///
///   f(x) = v |x|^2 - n . x        x as seen from a corner
///
/// is not positive: v is six times the volume, and n / 2v the circumcentre, where f is least. No value of f needs a
/// division, so a nearly flat tetrahedron is no special case; for a half-space v is zero. All bounds hold with the
/// rounding errors of v, n and x.
class ConflictRegion
{
public:
	/// The closed ball of a tetrahedron, whose corners are in positive order.
	static ConflictRegion ofTet(const Tet3& tet);
	/// The closed half-space beyond facet `ith`.
	static ConflictRegion beyondFacet(const Tet3& tet, int ith);

	/// A lower bound of f over a box: where it is positive, no point of the box is in the region. Of two points
	/// in the ball, the one nearer to the centre has the smaller f.
	double leastIn(const Box& box) const;
	/// Of a half-space: true when the whole box is certainly in it.
	bool holds(const Box& box) const;
	double leastAt(const Point3& p) const;

	/// True when the ball is certainly smaller than one of this squared radius.
	bool hasRadiusBelow(double squaredRadius) const;

private:
	using Vector = std::array<double, 3>;
	static constexpr std::size_t kNoAxis = 3;
	static Vector from(const Point3& origin, const Point3& p);

	Vector origin{};
	double v = 0;
	double vMagnitude = 0; ///< of the terms of v
	Vector n{};
	Vector nMagnitude{};
	Vector centre{}; ///< where f is least, if v is positive
	/// Of a half-space: the axis that it is perpendicular to, where coordinates can be compared as they are, or kNoAxis.
	std::size_t axis = kNoAxis;
};

/// A closed tetrahedron, to be searched like the regions above.
class TetRegion
{
public:
	explicit TetRegion(const Tet3& tet);

	/// Positive when no point of the box is in the tetrahedron.
	double leastIn(const Box& box) const;
	double leastAt(const Point3& p) const;

private:
	Box around;
	std::array<ConflictRegion, 4> beyond;
};

} // namespace TULO3D
