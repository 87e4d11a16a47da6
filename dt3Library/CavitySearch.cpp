// SPDX-License-Identifier: MIT
// Several cavities are found at once.
#include "CavitySearch.h"
#include "ArdoTest3.h"
#include "FacetLanes.h"
#include "Prefetch.h"
#include "Scout.h"

#include <utility>

namespace TULO3D {

namespace {

/// The corners beyond the facets.
void prefetchApices(const Tet3& tet)
{
	const std::uintptr_t mix = mixOfCorners(tet);
	for (int i = 0; i < 4; ++i) {
		const Tet3* pNeigh = tet.getOppTet(i);
		if (pNeigh != nullptr) prefetchVertex<Cache::kSecond>(apexBeyond(tet, mix, i, *pNeigh));
	}
}

} // namespace

void CavitySearch::run(
    Scout* pFirst, std::size_t count, const BatchTests& tests, const ArdoTest3& predicates)
{
	vNew.clear();
	for (Scout* pScout = pFirst; pScout != pFirst + count; ++pScout) {
		if (pScout->bInside) vNew.add({pScout, pScout->vCavity.begin()->pTet});
	}
	while (!vNew.empty()) {
		for (const Member& member : vNew) prefetchNeighbours<Cache::kSecond>(*member.pTet);
		for (const Member& member : vNew) prefetchApices(*member.pTet);
		vJoining.clear();
		if (tests.bAvx2) {
			testNeighboursAvx2(tests, predicates);
		} else {
			testNeighboursPortable(tests, predicates);
		}
		std::swap(vNew, vJoining);
	}
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE void CavitySearch::testNeighbours(
    const BatchTests& tests, const ArdoTest3& predicates)
{
	for (const auto& [pScout, pTet] : vNew) {
		if (!pScout->bInside) continue; // it has given up in this round
		const CavityBorder border = lookAround<Lanes>(pTet, *pScout->pVtx, tests, predicates);
		// What comes in from beyond the hull would remove nothing that is claimed. Once all neighbours are
		// there, no facet of a claimed tetrahedron comes to the hull again.
		if (border.hull != 0) {
			pScout->giveUp();
			continue;
		}
		pScout->bPositive &= (border.conflict | border.positive) == 0xFU;
		const Scout::Claims mine = pScout->myClaim;
		auto cavity = pScout->vCavity.writer(4);
		auto joining = vJoining.writer(4);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = border.pNeigh[i];
			const bool bConflict = (border.conflict >> i & 1U) != 0;
			const bool bJoins = Scout::claim(*pNeigh, mine) & bConflict;
			cavity.pushIf(bJoins, {pNeigh, border.pApex[i]});
			joining.pushIf(bJoins, {pScout, pNeigh});
		}
		pScout->vCavity.accept(cavity);
		vJoining.accept(joining);
	}
}

void CavitySearch::testNeighboursPortable(const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighbours<HalfBatches>(tests, predicates);
}

#if defined(TULO3D_AVX2)
TULO3D_AVX2 void CavitySearch::testNeighboursAvx2(
    const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighbours<WholeBatch>(tests, predicates);
}
#else
void CavitySearch::testNeighboursAvx2(const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighboursPortable(tests, predicates);
}
#endif

} // namespace TULO3D
