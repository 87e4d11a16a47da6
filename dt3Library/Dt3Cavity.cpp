// SPDX-License-Identifier: MIT
// A vertex enters the mesh. Inside the hull the tetrahedra whose spheres contain it leave a cavity,
// which is filled with new ones around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3.h"
#include "Dt3Inline.h"
#include "FacetLanes.h"

namespace TULO3D {

namespace {

/// A tetrahedron that was made before so many others is some three hundred insertions old, and nothing
/// has changed around its corner since: hardly any of it is in the cache.
constexpr unsigned kColdAge = 1U << 13U;

} // namespace

void Dt3::expectNothingPending()
{
	CONDITION_CHECK(numStoredTCS==0);
	CONDITION_CHECK(vHashCollisions.empty());
	twoTetPool.reset();
}

Tet3* Dt3::insertVertex(Point3** ppVtx, Tet3* pStartTet)
{
	Tet3* pCurTet = pStartTet;
	CONDITION_CHECK(!pCurTet->hasBeenVisited);
	expectNothingPending();

	const bool bCold = pStartTet->age() > kColdAge;
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
	return bCold ? replaceColdCavity(*ppVtx, pCurTet) : replaceCavity(*ppVtx, pCurTet);
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE void Dt3::carve(const Point3* pVtx, Tet3* pStartTet)
{
	vCavityFacets.clear();
	vCavityStack.clear();
	vCavityStack.makeRoom(1);
	vCavityStack.push({pStartTet, pStartTet->getCorner(0)}); // the walk has ended in it
	for (int i = 1; i < 4; ++i) star.vCorners.add(pStartTet->getCorner(i));
	// The mark is never cleared on a dead record; setProperties does that when it is reused.
	pStartTet->hasBeenVisited = true;

	// Depth first and facets 3 to 0: this fixes the order in which the new tetrahedra are made.
	while (!vCavityStack.empty()) {
		const auto [pTet, pApex] = vCavityStack.pop();
		markTetDead(pTet);
		star.vCorners.add(pApex);
		const CavityBorder border = lookAround<Lanes>(pTet, *pVtx, batchTests, predicates);
		auto joining = vCavityStack.writer(4);
		auto facets = vCavityFacets.writer(4);
		for (unsigned i = 4; i-- > 0;) {
			const bool bJoins = (border.conflict >> i & 1U) != 0;
			border.pNeigh[i]->hasBeenVisited |= bJoins;
			joining.pushIf(bJoins, {border.pNeigh[i], border.pApex[i]});
			facets.pushIf((border.boundary() >> i & 1U) != 0, {pTet, i | border.positive << 2U});
		}
		vCavityStack.accept(joining);
		vCavityFacets.accept(facets);
	}
}

void Dt3::carvePortable(const Point3* pVtx, Tet3* pStartTet)
{
	carve<HalfBatches>(pVtx, pStartTet);
}

#if defined(TULO3D_AVX2)
TULO3D_AVX2 void Dt3::carveAvx2(const Point3* pVtx, Tet3* pStartTet)
{
	carve<WholeBatch>(pVtx, pStartTet);
}
#else
void Dt3::carveAvx2(const Point3* pVtx, Tet3* pStartTet)
{
	carvePortable(pVtx, pStartTet);
}
#endif

void Dt3::carveFound(const Scout& scout)
{
	Tet3* const pStartTet = scout.cavity().begin()->pTet;
	for (int i = 1; i < 4; ++i) star.vCorners.add(pStartTet->getCorner(i));
	for (const CavityTet& found : scout.cavity()) {
		star.vCorners.add(found.pApex);
		found.pTet->hasBeenVisited = true;
	}

	// In the same order as above. What is still claimed has not been on the stack.
	const unsigned positive = scout.seesPositive() ? 0xFU << 2U : 0;
	vCavityFacets.clear();
	vCavityStack.clear();
	vCavityStack.makeRoom(1);
	vCavityStack.push({pStartTet, nullptr});
	scout.release(*pStartTet);
	while (!vCavityStack.empty()) {
		Tet3* const pTet = vCavityStack.pop().pTet;
		markTetDead(pTet);
		auto joining = vCavityStack.writer(4);
		auto facets = vCavityFacets.writer(4);
		for (unsigned i = 4; i-- > 0;) {
			Tet3* const pNeigh = pTet->getOppTet(static_cast<int>(i));
			const bool bInside = pNeigh->hasBeenVisited;
			joining.pushIf(scout.release(*pNeigh) & bInside, {pNeigh, nullptr});
			facets.pushIf(!bInside, {pTet, i | positive});
		}
		vCavityStack.accept(joining);
		vCavityFacets.accept(facets);
	}
}

inline Tet3* Dt3::closeFacet(const CavityFacet& facet, Point3* pVtx)
{
	const unsigned ith = facet.code & 3U;
	const bool bPositive = (facet.code >> 2U >> ith & 1U) != 0;
	const auto& [a, b, c] = kOutside[ith];
	const Tet3* pTet = facet.pTet;
	Tet3* pNewTet = bPositive
	    ? makePositiveTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c))
	    : createTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c));
	Tet3* pNeigh = pTet->getOppTet(static_cast<int>(ith));
	if (pNeigh != nullptr) registerTets(pNewTet, 0, pNeigh, pNeigh->getIntraTetIndex(pTet));
	star.vTets.add(pNewTet);
	return pNewTet;
}

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	swapDeadAndRecycled();
	star.clear();
	if (batchTests.bAvx2) {
		carveAvx2(pVtx, pStartTet);
	} else {
		carvePortable(pVtx, pStartTet);
	}
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceCavity(Point3* pVtx, const Scout& scout)
{
	swapDeadAndRecycled();
	star.clear();
	carveFound(scout);
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceColdCavity(Point3* pVtx, Tet3* pStartTet)
{
	loneScout.enter(Scout::kLoneClaim, *pVtx, pStartTet);
	cavitySearch.run(&loneScout, 1, batchTests, predicates);
	if (!loneScout.hasFound()) return replaceCavity(pVtx, pStartTet);
	Tet3* pLastTet = replaceCavity(pVtx, loneScout);
	loneScout.rest();
	return pLastTet;
}

Tet3* Dt3::fillCavity(Point3* pVtx)
{
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
