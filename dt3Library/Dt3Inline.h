// SPDX-License-Identifier: MIT
// The innermost operations of an insertion, some thirty times a vertex each: here the compiler sees
// them where they are used.
#pragma once

#include "Dt3.h"
#include "Scout.h"

namespace TULO3D {

inline Tet3* Dt3::makePositiveTet(Point3* p0, Point3* p1, Point3* p2, Point3* p3)
{
	Tet3* ret = nullptr;
	if (vRecycledTets.empty()) {
		ret = tetPool.alloc();
		CONDITION_CHECK(ret!=0);
	} else {
		ret = vRecycledTets.back();
		vRecycledTets.pop_back();
	}
	ret->setProperties(p0, p1, p2, p3);
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
	pTet->setCustomIndex(-1);
	claimsOfDead |= Scout::takeClaims(*pTet);
	vDeadTets.push_back(pTet);
}

} // namespace TULO3D
