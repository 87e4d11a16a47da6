// SPDX-License-Identifier: MIT
// The four neighbours of a tetrahedron of the cavity, classified against the vertex being inserted.
#pragma once

#include "Tet3.h"
#include "ardo_tools/Inline.h"
#include "predicates/BatchTests.h"

#include <cstdint>

namespace TULO3D {

class ArdoTest3;

/// The mark of tetrahedra in the cavity of the insertion under way. It is not `hasBeenVisited`, because
/// a host may have set that on any tetrahedron, and a search that stopped there would leave a hole.
class CavityMark
{
public:
	static bool isSet(const Tet3& tet) { return tet.bInCavity; }
	/// Never cleared by itself: every tetrahedron of a cavity is removed, and the reuse of a record clears
	/// its mark.
	static void set(Tet3& tet) { tet.bInCavity = true; }
	static void setIf(bool bSet, Tet3& tet) { tet.bInCavity |= bSet; }
};

/// A tetrahedron of the cavity.
struct CavityTet
{
	Tet3* pTet;
	Point3* pApex; ///< its corner beyond the facet through which it was found
};

/// The neighbours of one tetrahedron of the cavity. In the bit sets, bit i is facet i and the neighbour
/// beyond it.
struct Surroundings
{
	Tet3* pNeigh[4];    ///< the tetrahedron itself where there is none, so that no pointer is null
	Point3* pApex[4];   ///< the corners beyond the facets
	unsigned hull;      ///< there is no neighbour
	unsigned open;      ///< the neighbour is not in the cavity yet, or there is none
	unsigned conflict;  ///< not in the cavity yet, and in conflict: it joins the cavity
	unsigned undecided; ///< not in the cavity yet, and not decided by the test
	unsigned positive;  ///< the vertex is known to lie strictly on the tetrahedron's side

	/// Facets of the cavity boundary, on the hull or not, once nothing is undecided.
	unsigned boundary() const { return open & ~conflict; }
};

inline std::uintptr_t addressOf(const Point3* p)
{
	return reinterpret_cast<std::uintptr_t>(p);
}

/// The exclusive or of the corners' addresses.
inline std::uintptr_t xorOfCorners(const Tet3& tet)
{
	return addressOf(tet.getCorner(0)) ^ addressOf(tet.getCorner(1)) ^ addressOf(tet.getCorner(2)) ^
	    addressOf(tet.getCorner(3));
}

/// The corner of `neigh` beyond facet i of `tet`, given the exclusive or of the latter's corners. The three
/// of the facet occur in both tetrahedra and cancel out. No search: it would mispredict three times in four.
inline Point3* apexBeyond(const Tet3& tet, std::uintptr_t mix, int i, const Tet3& neigh)
{
	const std::uintptr_t facet = mix ^ addressOf(tet.getCorner(i));
	return reinterpret_cast<Point3*>(facet ^ xorOfCorners(neigh));
}

/// Gathers the neighbours of pTet and tests them together. `test` is a NeighbourTest, or its first stage
/// alone; either may leave facets undecided. The test is evaluated for all four neighbours, also where there
/// is none or it is in the cavity already: that is cheaper than a misprediction.
template <typename Test>
TULO3D_ALWAYS_INLINE Surroundings lookAround(Tet3* pTet, const Point3& vtx, Test test)
{
	Surroundings border;
	NeighbourBatch batch;
	const std::uintptr_t mix = xorOfCorners(*pTet);
	border.hull = 0;
	unsigned inside = 0;
	for (int i = 0; i < 4; ++i) {
		Tet3* pNeigh = pTet->getOppTet(i);
		border.hull |= static_cast<unsigned>(pNeigh == nullptr) << i;
		pNeigh = pNeigh == nullptr ? pTet : pNeigh;
		inside |= static_cast<unsigned>(CavityMark::isSet(*pNeigh)) << i;
		border.pNeigh[i] = pNeigh;
		border.pApex[i] = apexBeyond(*pTet, mix, i, *pNeigh);
		batch.corner[i] = pTet->getCorner(i);
		batch.opposite[i] = border.pApex[i];
	}
	const NeighbourVerdicts verdicts = test(batch, vtx);
	const unsigned toTest = ~(inside | border.hull) & 0xFU;
	border.open = toTest | border.hull;
	border.conflict = verdicts.inside & toTest;
	border.undecided = toTest & ~(verdicts.inside | verdicts.outside);
	border.positive = verdicts.positive;
	return border;
}

/// With all stages of the in-sphere test: nothing is left undecided.
Surroundings classifyExactly(
    Tet3* pTet, const Point3& vtx, const BatchTests& tests, const ArdoTest3& predicates);

/// The same result. Tries the first stage of Lanes alone, inlined, which nearly always decides all four.
template <typename Lanes>
TULO3D_ALWAYS_INLINE Surroundings lookAround(
    Tet3* pTet, const Point3& vtx, const BatchTests& tests, const ArdoTest3& predicates)
{
	Surroundings border = lookAround(pTet, vtx, Lanes::verdicts);
	if (border.undecided != 0) {
		const Surroundings thorough = classifyExactly(pTet, vtx, tests, predicates);
		border.conflict = thorough.conflict;
		border.positive = thorough.positive;
	}
	return border;
}

} // namespace TULO3D
