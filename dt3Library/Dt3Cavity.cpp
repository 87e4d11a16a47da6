// SPDX-License-Identifier: MIT
// A vertex enters the mesh. Inside the hull the tetrahedra whose spheres contain it leave a cavity,
// which is filled with new ones around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3.h"
#include "Dt3Inline.h"
#include "Prefetch.h"

#include <cstdint>

namespace TULO3D {

namespace {

/// The exclusive or of the corners' addresses.
std::uintptr_t mixOfCorners(const Tet3& tet)
{
	return addressOf(tet.getCorner(0)) ^ addressOf(tet.getCorner(1)) ^ addressOf(tet.getCorner(2)) ^
	    addressOf(tet.getCorner(3));
}

/// The corner of `tet` that is left when the three of a facet, given by their mix, drop out: it is
/// there at once, where a search would guess wrong three times in four.
const Point3* cornerBeyond(std::uintptr_t mixOfFacet, const Tet3& tet)
{
	return reinterpret_cast<const Point3*>(mixOfFacet ^ mixOfCorners(tet));
}

} // namespace

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

void Dt3::lookAround(Tet3* pTet, const Point3* pVtx, CavityBorder& border) const
{
	NeighbourBatch& batch = border.batch;
	const std::uintptr_t corners = mixOfCorners(*pTet);
	unsigned exists = 0;
	unsigned visited = 0;
	for (int i = 0; i < 4; ++i) {
		Tet3* pNeigh = pTet->getOppTet(i);
		batch.corner[i] = pTet->getCorner(i);
		batch.opposite[i] = batch.corner[i];
		border.pNeigh[i] = pTet;
		if (pNeigh == nullptr) continue;
		// A visited neighbour is tested along: that is cheaper than guessing which ones are.
		border.pNeigh[i] = pNeigh;
		batch.opposite[i] = cornerBeyond(corners ^ addressOf(pTet->getCorner(i)), *pNeigh);
		exists |= 1U << i;
		visited |= static_cast<unsigned>(pNeigh->hasBeenVisited) << i;
	}
	const NeighbourVerdicts verdicts = neighbourTest(batch, *pVtx);
	const unsigned toTest = exists & ~visited;
	border.conflict = verdicts.inside & toTest;
	border.positive = verdicts.positive;
	const unsigned undecided = toTest & ~(verdicts.inside | verdicts.outside);
	for (int i = 0; undecided >> i != 0; ++i) {
		if ((undecided >> i & 1U) == 0) continue;
		if (predicates.sphereInclusionTest(border.pNeigh[i], pVtx) == SIC_OUTSIDE) continue;
		border.conflict |= 1U << i;
	}
	border.boundary = ~visited & ~border.conflict;
}

void Dt3::carveCavity(const Point3* pVtx, Tet3* pStartTet)
{
	vCavityFacets.clear();
	vCavityStack.clear();
	vCavityStack.makeRoom(1);
	vCavityStack.push({pStartTet, pStartTet->getCorner(0)}); // the walk has ended in it
	for (int i = 1; i < 4; ++i) star.announce(pStartTet->getCorner(i));
	// The mark is never cleared on a dead record; setProperties does that when it is reused.
	pStartTet->hasBeenVisited = true;

	// Depth first and facets 3 to 0: this fixes the order in which the new tetrahedra are made.
	CavityBorder border;
	while (!vCavityStack.empty()) {
		const auto [pTet, pApex] = vCavityStack.pop();
		markTetDead(pTet);
		star.announce(pApex);
		if (!vCavityStack.empty()) prefetchNeighbours(*vCavityStack.top().pTet);
		lookAround(pTet, pVtx, border);
		vCavityStack.makeRoom(4);
		vCavityFacets.makeRoom(4);
		for (int i = 3; i >= 0; --i) {
			const bool bJoins = (border.conflict >> i & 1U) != 0;
			const bool bStays = (border.boundary >> i & 1U) != 0;
			border.pNeigh[i]->hasBeenVisited |= bJoins;
			vCavityStack.pushIf(bJoins, {border.pNeigh[i], border.batch.opposite[i]});
			vCavityFacets.pushIf(bStays, {pTet, i, (border.positive >> i & 1U) != 0});
		}
	}
}

Tet3* Dt3::closeFacet(const CavityFacet& facet, Point3* pVtx)
{
	const auto& [a, b, c] = kOutside[facet.ith];
	const Tet3* pTet = facet.pTet;
	Tet3* pNewTet = facet.bPositive
	    ? makePositiveTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c))
	    : createTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c));
	Tet3* pNeigh = pTet->getOppTet(facet.ith);
	if (pNeigh != nullptr) registerTets(pNewTet, 0, pNeigh, pNeigh->getIntraTetIndex(pTet));
	star.add(pNewTet);
	return pNewTet;
}

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	swapDeadAndRecycled();
	star.clear();
	carveCavity(pVtx, pStartTet);
	Tet3* pLastTet = nullptr;
	for (const CavityFacet& facet : vCavityFacets) pLastTet = closeFacet(facet, pVtx);
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
