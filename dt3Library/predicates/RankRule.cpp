// SPDX-License-Identifier: MIT
// Whether a point on a sphere is in conflict, when vertices come in any order.
#include "predicates/RankRule.h"
#include "ArdoTest3.h"

#include <algorithm>

namespace TULO3D {

bool isInConflictByRank(const ArdoTest3& predicates, const RankedTest& test)
{
	const auto& [a, b, c, d] = test.corner;
	const Point3* q = test.pQuery;
	if (predicates.sphereInclusionTest(*a, *b, *c, *d, *q) == SIC_INSIDE) return true;
	// With two corners exchanged, inside and outside are (S4): only what is on the sphere is outside again.
	if (predicates.sphereInclusionTest(*b, *a, *c, *d, *q) == SIC_INSIDE) return false;

	constexpr std::size_t kQuery = 4;
	std::array<std::size_t, 5> byRank{0, 1, 2, 3, kQuery};
	std::sort(byRank.begin(), byRank.end(),
	    [&test](std::size_t i, std::size_t j) { return test.rank[i] > test.rank[j]; });
	for (const std::size_t i : byRank) {
		if (i == kQuery) break;
		auto corner = test.corner;
		corner[i] = q;
		const Orientation3 side =
		    predicates.getOrientation3(corner[0], corner[1], corner[2], corner[3]);
		if (side != ORIENTATION3_COPLANAR) return side == ORIENTATION3_POSITIVE;
	}
	return false;
}

RankedTest rankedTest(const Tet3& tet)
{
	RankedTest test{};
	for (std::size_t i = 0; i < 4; ++i) {
		test.corner[i] = tet.getCorner(static_cast<int>(i));
		test.rank[i] = test.corner[i]->getNumber();
	}
	return test;
}

bool isInConflictByRank(const ArdoTest3& predicates, const Tet3& tet, const Point3& vtx)
{
	RankedTest test = rankedTest(tet);
	test.pQuery = &vtx;
	test.rank[4] = vtx.getNumber();
	return isInConflictByRank(predicates, test);
}

} // namespace TULO3D
