// SPDX-License-Identifier: MIT
// Insertion of one vertex, wherever it lies: the walk to it, and what follows from where the walk has ended.
#include "Dt3.h"

namespace TULO3D {

void Dt3::expectUnmarked(const Tet3& tet, const char* text)
{
	bUnfinished = bUnfinished && !tet.hasBeenVisited;
	CONDITION_CHECK_AS(!tet.hasBeenVisited, text);
}

void Dt3::beginInsertion()
{
	CONDITION_CHECK(numStoredTCS==0);
	CONDITION_CHECK(vHashCollisions.empty());
	twoTetPool.reset();
}

Tet3* Dt3::insertVertex(Point3** ppVtx, Tet3* pStartTet, bool bByCurve)
{
	Tet3* pCurTet = pStartTet;
	expectUnmarked(*pCurTet, "!pCurTet->hasBeenVisited");
	beginInsertion();

	const auto age = static_cast<unsigned>(Tet3::loadLabel(*pNextLabel)) -
	    static_cast<unsigned>(pStartTet->label);
	Tet3* pTetAtLast = bByCurve ? tetAtLastPoint(**ppVtx) : nullptr;
	const bool bCold = bLooksAhead && age > ColdCavity::kAge && pTetAtLast == nullptr;
	const int locateResult = bByCurve ? locateByCurve(**ppVtx, pCurTet, pTetAtLast)
	                                  : locatePersistently(**ppVtx, pCurTet);
	CONDITION_CHECK(locateResult!=-99);
	if (locateResult == -2) return resolveDuplicate(ppVtx, pCurTet, locateResult);
	if (locateResult >= 0) {
		Tet3* pRet = insertAtHull(ppVtx, pCurTet, locateResult);
		CONDITION_CHECK(pRet!=0);
		CONDITION_CHECK(!pRet->hasBeenVisited);
		return pRet;
	}
	CONDITION_CHECK(locateResult==-1);
	return bCold ? replaceColdCavity(*ppVtx, pCurTet) : replaceCavity(*ppVtx, pCurTet);
}

Tet3* Dt3::resolveDuplicate(Point3** ppVtx, Tet3* pTet, int locateResult)
{
	CONDITION_CHECK(locateResult==-2);
	for (int i = 0; i < 4; ++i) {
		if (*pTet->getCorner(i) == **ppVtx) {
			*ppVtx = pTet->getCorner(i);
			return pTet;
		}
	}
	printError("insertVertex()", "Proxy not found");
	return nullptr;
}

} // namespace TULO3D
