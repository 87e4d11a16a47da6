// SPDX-License-Identifier: MIT
// The interleaved breadth-first search of several cavities.
#include "lookahead/CavitySearch.h"

#include "ArdoTest3.h"
#include "lookahead/Reservation.h"
#include "mesh/Prefetch.h"
#include "predicates/BatchTestsSimd.h"

#include <utility>

namespace TULO3D {

namespace {

/// The corners beyond the facets.
void prefetchApices(const Tet3& tet)
{
	const std::uintptr_t mix = xorOfCorners(tet);
	for (int i = 0; i < 4; ++i) {
		const Tet3* pNeigh = tet.getOppTet(i);
		if (pNeigh != nullptr) prefetchVertex<Cache::kSecond>(apexBeyond(tet, mix, i, *pNeigh));
	}
}

} // namespace

template <typename Variant>
TULO3D_ALWAYS_INLINE void CavitySearch::testNeighbours(
    const BatchTests& tests, const ArdoTest3& predicates)
{
	for (const auto& [pReservation, pTet] : vNew) {
		if (!pReservation->bValid) continue; // aborted in this round
		const Surroundings around =
		    classifyNeighbours<Variant>(pTet, *pReservation->pVtx, tests, predicates);
		// At the hull, the insertion of a vertex beyond it could add a tetrahedron to this cavity without
		// removing a reserved one. Once all neighbours exist, no facet of the cavity can become a hull
		// facet: points are never removed.
		if (around.hull != 0) {
			pReservation->abort();
			continue;
		}
		pReservation->bPositive &= (around.conflict | around.positive) == 0xFU;
		const Reservation::Bits mine = pReservation->myBit;
		auto cavity = pReservation->vCavity.writer(4);
		auto joining = vJoining.writer(4);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = around.pNeigh[i];
			const bool bConflict = (around.conflict >> i & 1U) != 0;
			const bool bJoins = Reservation::reserve(*pNeigh, mine) & bConflict;
			cavity.pushIf(bJoins, {pNeigh, around.pApex[i]});
			joining.pushIf(bJoins, {pReservation, pNeigh});
		}
		pReservation->vCavity.accept(cavity);
		vJoining.accept(joining);
	}
}

void CavitySearch::run(
    Reservation* pFirst, std::size_t count, const BatchTests& tests, const ArdoTest3& predicates)
{
	vNew.clear();
	for (Reservation* pReservation = pFirst; pReservation != pFirst + count; ++pReservation) {
		if (pReservation->bValid) vNew.add({pReservation, pReservation->vCavity.begin()->pTet});
	}
	while (!vNew.empty()) {
		for (const Member& member : vNew) prefetchNeighbours<Cache::kSecond>(*member.pTet);
		for (const Member& member : vNew) prefetchApices(*member.pTet);
		vJoining.clear();
		runLoop(tests, [this, &tests, &predicates](auto variant) TULO3D_INLINE_LAMBDA {
			testNeighbours<decltype(variant)>(tests, predicates);
		});
		std::swap(vNew, vJoining);
	}
}

} // namespace TULO3D
