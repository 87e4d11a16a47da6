// SPDX-License-Identifier: MIT
// The later stages of the in-sphere test for the neighbours of a tetrahedron.
#include "mesh/Surroundings.h"

namespace TULO3D {

NeighbourVerdicts decideRest(Tet3* pTet, unsigned undecided, const Point3& vtx,
    const BatchTests& tests, const ArdoTest3& predicates)
{
	const Surroundings around = gatherNeighbours(pTet);
	NeighbourVerdicts verdicts = tests.neighbours(batchOf(*pTet, around), vtx, undecided);
	undecided &= ~(verdicts.inside | verdicts.outside);
	for (int i = 0; undecided >> i != 0; ++i) {
		if ((undecided >> i & 1U) == 0) continue;
		if (tests.conflict(predicates, *around.pNeigh[i], vtx)) verdicts.inside |= 1U << i;
	}
	return verdicts;
}

} // namespace TULO3D
