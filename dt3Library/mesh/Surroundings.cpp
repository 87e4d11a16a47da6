// SPDX-License-Identifier: MIT
// The neighbours of a tetrahedron, classified by all stages of the in-sphere test.
#include "mesh/Surroundings.h"
#include "ArdoTest3.h"

namespace TULO3D {

Surroundings classifyExactly(
    Tet3* pTet, const Point3& vtx, const BatchTests& tests, const ArdoTest3& predicates)
{
	Surroundings border = lookAround(pTet, vtx, tests.neighbours);
	for (int i = 0; border.undecided >> i != 0; ++i) {
		if ((border.undecided >> i & 1U) == 0) continue;
		if (predicates.sphereInclusionTest(border.pNeigh[i], &vtx) == SIC_OUTSIDE) continue;
		border.conflict |= 1U << i;
	}
	border.undecided = 0;
	return border;
}

} // namespace TULO3D
