// SPDX-License-Identifier: MIT
// Whether a point on a sphere is in conflict, when vertices come in any order.
#pragma once

#include "Point3.h"

#include <array>
#include <cstdint>

namespace TULO3D {

class ArdoTest3;
class Tet3;

/// A tetrahedron and a point with the ranks of all five: their places in one order of insertion.
struct RankedTest
{
	std::array<const Point3*, 4> corner; ///< in positive order
	const Point3* pQuery;
	std::array<std::int32_t, 5> rank; ///< of the corners, then of the query
};

/// The test of a tetrahedron whose corners have their ranks as numbers, still without a query.
RankedTest rankedTest(const Tet3& tet);

/// True when the query is in conflict with the tetrahedron in the mesh that grows by ascending ranks, whatever
/// the order in which the vertices come.
///
/// Inserted by ascending ranks, a point exactly on a sphere counts as outside (law S2). That is the Delaunay mesh
/// of the vertices each lifted from the paraboloid by a height of its own, infinitely small, and infinitely
/// larger than that of any earlier one: then a new vertex is above the hyperplane through earlier ones on
/// whose sphere it lies. The mesh of lifted points depends on no order. Where the in-sphere determinant is zero,
/// its sign is that of its derivative with respect to the largest height that matters; that is the
/// orientation of the other four points. So from the highest rank down:
///
///   the query      outside
///   a corner       the orientation of the tetrahedron with the query in place of the corner decides: positive is
///                  inside, negative is outside, coplanar leaves it to the next rank
///
/// H. Edelsbrunner, E. P. Muecke: Simulation of Simplicity, ACM Transactions on Graphics 9, 1990, describe
/// perturbations of this kind.
bool isInConflictByRank(const ArdoTest3& predicates, const RankedTest& test);

/// The same for vertices whose numbers are their ranks.
bool isInConflictByRank(const ArdoTest3& predicates, const Tet3& tet, const Point3& vtx);

} // namespace TULO3D
