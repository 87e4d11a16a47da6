// SPDX-License-Identifier: MIT
// What lies around a tetrahedron of the cavity.
#pragma once

#include "Tet3.h"
#include "ardo_tools/Inline.h"
#include "predicates/BatchTests.h"

#include <cstdint>

namespace TULO3D {

class ArdoTest3;

/// Whether a tetrahedron belongs to the cavity of the insertion under way. The engine keeps this apart
/// from `hasBeenVisited`, which a host may have set anywhere.
class CavityMark
{
public:
	static bool isSet(const Tet3& tet) { return tet.bInCavity; }
	/// Never taken back: a cavity dies, and a record loses its mark when it is reused.
	static void set(Tet3& tet) { tet.bInCavity = true; }
	static void setIf(bool bSet, Tet3& tet) { tet.bInCavity |= bSet; }
};

/// A tetrahedron of the cavity.
struct CavityTet
{
	Tet3* pTet;
	Point3* pApex; ///< its corner beyond the facet through which it was found
};

/// A tetrahedron of the cavity, seen from inside; in the sets, bit i stands for facet i and for the
/// neighbour beyond it.
struct Surroundings
{
	Tet3* pNeigh[4];    ///< the tetrahedron itself stands in where there is none
	Point3* pApex[4];   ///< the corners beyond the facets
	unsigned hull;      ///< there is no neighbour
	unsigned open;      ///< the neighbour is not in the cavity yet, or there is none
	unsigned conflict;  ///< not in the cavity yet, and to join it
	unsigned undecided; ///< not in the cavity yet, and the test was not certain of it
	unsigned positive;  ///< the vertex is known to lie strictly on the tetrahedron's side

	/// Facets between the cavity and what stays, or the hull, once nothing is undecided.
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

/// Looks around pTet. `test` is a NeighbourTest, or its first stage, which may leave facets undecided. It is
/// evaluated for all four neighbours, whether they exist and matter or not: that is cheaper than a
/// misprediction.
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

/// The same, by way of the first stage of Lanes, which nearly always settles everything.
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
