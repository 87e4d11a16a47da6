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

/// The neighbours of one tetrahedron of the cavity, before and after the test. In the bit sets, bit i is facet i
/// and the neighbour beyond it.
struct Surroundings
{
	Tet3* pNeigh[4];   ///< the tetrahedron itself where there is none, so that no pointer is null
	Point3* pApex[4];  ///< the corners beyond the facets; on the hull its own corner i
	unsigned hull;     ///< there is no neighbour
	unsigned open;     ///< the neighbour is not in the cavity yet, or there is none
	unsigned conflict; ///< not in the cavity yet, and in conflict: it joins the cavity
	unsigned positive; ///< the vertex is known to lie strictly on the tetrahedron's side

	/// Not in the cavity yet: conflict or not is the question.
	unsigned toTest() const { return open & ~hull; }

	// Once `conflict` and `positive` are known:
	CavityTet neighbour(unsigned i) const { return {pNeigh[i], pApex[i]}; }
	bool joins(unsigned i) const { return (conflict >> i & 1U) != 0; }
	/// Facet i is on the cavity boundary, on the hull or not.
	bool isBoundary(unsigned i) const { return ((open & ~conflict) >> i & 1U) != 0; }
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

/// The neighbours of pTet, not tested yet.
TULO3D_ALWAYS_INLINE Surroundings gatherNeighbours(Tet3* pTet)
{
	Surroundings around;
	const std::uintptr_t mix = xorOfCorners(*pTet);
	around.hull = 0;
	unsigned inCavity = 0; // where there is no neighbour, too: pTet is in the cavity itself
	for (int i = 0; i < 4; ++i) {
		Tet3* pNeigh = pTet->getOppTet(i);
		around.hull |= static_cast<unsigned>(pNeigh == nullptr) << i;
		pNeigh = pNeigh == nullptr ? pTet : pNeigh;
		inCavity |= static_cast<unsigned>(CavityMark::isSet(*pNeigh)) << i;
		around.pNeigh[i] = pNeigh;
		around.pApex[i] = apexBeyond(*pTet, mix, i, *pNeigh);
	}
	around.open = (~inCavity & 0xFU) | around.hull;
	around.conflict = around.positive = 0;
	return around;
}

/// What the tests compare with a vertex: the corners of the tetrahedron and of its neighbours.
TULO3D_ALWAYS_INLINE NeighbourBatch batchOf(const Tet3& tet, const Surroundings& around)
{
	NeighbourBatch batch;
	for (int i = 0; i < 4; ++i) {
		batch.corner[i] = tet.getCorner(i);
		batch.opposite[i] = around.pApex[i];
	}
	return batch;
}

/// Decides neighbours that the first stage has left undecided, by all stages of the in-sphere test.
NeighbourVerdicts decideRest(Tet3* pTet, unsigned undecided, const Point3& vtx,
    const BatchTests& tests, const ArdoTest3& predicates);

/// Gathers the neighbours of pTet and tests them together, exactly. The first stage is that of Variant, inlined,
/// which nearly always decides all four. It is evaluated for all of them, also where there is none or it is in
/// the cavity already: that is cheaper than a misprediction.
template <typename Variant>
TULO3D_ALWAYS_INLINE Surroundings classifyNeighbours(
    Tet3* pTet, const Point3& vtx, const BatchTests& tests, const ArdoTest3& predicates)
{
	Surroundings around = gatherNeighbours(pTet);
	NeighbourVerdicts verdicts = Variant::verdicts(batchOf(*pTet, around), vtx);
	const unsigned undecided = around.toTest() & ~(verdicts.inside | verdicts.outside);
	if (undecided != 0) {
		// Not given `around`: it stays in registers as long as no other function can see it.
		const NeighbourVerdicts rest = decideRest(pTet, undecided, vtx, tests, predicates);
		verdicts.inside |= rest.inside;
		verdicts.positive |= rest.positive;
	}
	around.conflict = verdicts.inside & around.toTest();
	around.positive = verdicts.positive;
	return around;
}

} // namespace TULO3D
