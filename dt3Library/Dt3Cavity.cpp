// SPDX-License-Identifier: MIT
// A vertex enters the mesh. Inside the hull the tetrahedra whose spheres contain it leave a cavity,
// which is filled with new ones around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3.h"

namespace TULO3D {

Tet3* Dt3::insertVertex(Point3** ppVtx, Tet3* pStartTet)
{
	Tet3* pCurTet = pStartTet;
	CONDITION_CHECK(!pCurTet->hasBeenVisited);
	CONDITION_CHECK(numStoredTCS==0);
	CONDITION_CHECK(vHashCollisions.empty());
	twoTetPool.reset();

	const int locateResult = locatePersistently(*ppVtx, pCurTet);
	CONDITION_CHECK(locateResult!=-99);
	if (locateResult == -2) return resolveDuplicate(ppVtx, pCurTet, locateResult);
	if (locateResult >= 0) {
		Tet3* pRet = insertAtHull(ppVtx, pCurTet, locateResult);
		CONDITION_CHECK(pRet!=0);
		CONDITION_CHECK(!pRet->hasBeenVisited);
		return pRet;
	}
	CONDITION_CHECK(locateResult==-1);
	return replaceCavity(*ppVtx, pCurTet);
}

void Dt3::joinCavity(Tet3* pTet)
{
	// The mark is never cleared on a dead record; setProperties does that when it is reused.
	pTet->hasBeenVisited = true;
	markTetDead(pTet);
}

void Dt3::lookAround(const Tet3* pTet, const Point3* pVtx, CavityBorder& border) const
{
	NeighbourBatch batch;
	for (int i = 0; i < 4; ++i) {
		batch.corner[i] = pTet->getCorner(i);
		batch.opposite[i] = batch.corner[i];
		Tet3* pNeigh = pTet->getOppTet(i);
		border.pNeigh[i] = pNeigh;
		if (pNeigh == nullptr || pNeigh->hasBeenVisited) continue;
		border.backICI[i] = pNeigh->getIntraTetIndex(pTet);
		batch.opposite[i] = pNeigh->getCorner(border.backICI[i]);
	}
	neighbourTest(batch, *pVtx, border.verdicts);
}

Tet3* Dt3::closeFacet(Tet3* pTet, int i, const CavityBorder& border, Point3* pVtx)
{
	const auto& [a, b, c] = kOutside[i];
	Tet3* pNewTet = border.verdicts.isPositive(i)
	    ? makePositiveTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c))
	    : createTetReplacingCorner(pTet, i, pVtx);
	if (border.pNeigh[i] != nullptr) registerTets(pNewTet, 0, border.pNeigh[i], border.backICI[i]);
	star.add(pNewTet);
	return pNewTet;
}

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	swapDeadAndRecycled();
	star.clear();
	joinCavity(pStartTet); // the walk has seen that the vertex lies in it
	vCavityStack.push_back(pStartTet);

	// Depth first and facets 3 to 0: this fixes the order in which the new tetrahedra are made.
	Tet3* pLastTet = nullptr;
	CavityBorder border;
	while (!vCavityStack.empty()) {
		Tet3* pTet = vCavityStack.back();
		vCavityStack.pop_back();
		lookAround(pTet, pVtx, border);
		for (int i = 3; i >= 0; --i) {
			Tet3* pNeigh = border.pNeigh[i];
			if (pNeigh != nullptr && pNeigh->hasBeenVisited) continue;
			if (pNeigh != nullptr && isInConflict(border, i, pVtx)) {
				joinCavity(pNeigh);
				vCavityStack.push_back(pNeigh);
			} else {
				pLastTet = closeFacet(pTet, i, border, pVtx);
			}
		}
	}

	linkClosedStar();
	return pLastTet;
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
