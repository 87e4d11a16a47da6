// SPDX-License-Identifier: MIT
// The innermost operations of an insertion, each called some 25 times per vertex: in a header, so that the
// compiler can inline them.
#pragma once

#include "Dt3.h"
#include "geometry/TetIndices.h"

namespace TULO3D {

inline Tet3* Dt3::makePositiveTet(Point3* p0, Point3* p1, Point3* p2, Point3* p3)
{
	Tet3* ret = nullptr;
	if (vRecycledTets.empty()) {
		ret = tetPool.alloc();
		CONDITION_CHECK(ret!=0);
	} else {
		ret = vRecycledTets.pop();
	}
	ret->initialize(Tet3::takeLabels(1, *pNextLabel), p0, p1, p2, p3);
	return ret;
}

inline void Dt3::registerTets(Tet3* fromTet, int ith, Tet3* toTet, int jth)
{
	CONDITION_CHECK(range03(ith));
	CONDITION_CHECK(range03(jth));
	CONDITION_CHECK(toTet!=0);
	if (fromTet == toTet) refuseSelfLink(fromTet);
	CONDITION_CHECK(fromTet!=toTet);
	toTet->setOppTet(jth, fromTet);
	fromTet->setOppTet(ith, toTet);
}

inline void Dt3::markTetDead(Tet3* pTet)
{
	cavity.retire(pTet);
	vDeadTets.add(pTet);
}

inline Tet3* Dt3::closeFacet(const CavityFacet& facet, Point3* pVtx)
{
	const auto [pTet, place, positive] = facet;
	const int ith = static_cast<int>(place);
	const auto& [a, b, c] = kOutside[ith];
	Tet3* pNewTet = (positive >> place & 1U) != 0
	    ? makePositiveTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c))
	    : createTetReplacingCorner(pTet, ith, pVtx);
	Tet3* pNeigh = pTet->getOppTet(ith);
	if (pNeigh != nullptr) registerTets(pNewTet, 0, pNeigh, pNeigh->getIntraTetIndex(pTet));
	star.vTets.add(pNewTet);
	return pNewTet;
}

} // namespace TULO3D
