// SPDX-License-Identifier: MIT
// Insertion of a vertex inside the hull: the tetrahedra whose circumspheres contain the vertex are
// removed, and the cavity is filled with new tetrahedra around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3.h"
#include "Dt3Inline.h"
#include "predicates/BatchTestsSimd.h"

namespace TULO3D {

namespace {

/// A tetrahedron that was made before so many others is some three hundred insertions old. If a walk
/// starts there, no insertion since has touched the neighbourhood: it is cold, that is, not in the cache.
constexpr unsigned kColdAge = 1U << 13U;

} // namespace

void Dt3::beginInsertion()
{
	CONDITION_CHECK(numStoredTCS==0);
	CONDITION_CHECK(vHashCollisions.empty());
	twoTetPool.reset();
}

Tet3* Dt3::insertVertex(Point3** ppVtx, Tet3* pStartTet, bool bByCurve)
{
	Tet3* pCurTet = pStartTet;
	expectWholeIfMarked(*pCurTet);
	CONDITION_CHECK(!pCurTet->hasBeenVisited);
	beginInsertion();

	const auto age = static_cast<unsigned>(Tet3::loadLabel(*pNextLabel)) -
	    static_cast<unsigned>(pStartTet->label);
	const bool bCold = bLooksAhead && age > kColdAge;
	const int locateResult =
	    bByCurve ? locateByCurve(*ppVtx, pCurTet) : locatePersistently(*ppVtx, pCurTet);
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
	startCavity(pStartTet); // the walk ended inside it, so it is in conflict without a test
	CavityMark::set(*pStartTet);
	for (int i = 1; i < 4; ++i) star.vCorners.add(pStartTet->getCorner(i));

	// A neighbour gets its cavity mark and its place in vDeadTets when it joins the cavity, not when its
	// turn comes: the mark keeps it from joining twice. Depth first, facets 3 to 0: this fixes the order in
	// which tetrahedra die and new ones are made, and with it which record becomes which tetrahedron.
	while (!vCavityStack.empty()) {
		const auto [pTet, pApex] = vCavityStack.pop();
		retire(pTet);
		star.vCorners.add(pApex);
		const Surroundings border = lookAround<Lanes>(pTet, *pVtx, batchTests, predicates);
		auto stack = vCavityStack.writer(4);
		auto dead = vDeadTets.writer(4);
		auto facets = vCavityFacets.writer(4);
		for (unsigned i = 4; i-- > 0;) {
			const bool bJoins = (border.conflict >> i & 1U) != 0;
			CavityMark::setIf(bJoins, *border.pNeigh[i]);
			stack.pushIf(bJoins, {border.pNeigh[i], border.pApex[i]});
			dead.pushIf(bJoins, border.pNeigh[i]);
			facets.pushIf((border.boundary() >> i & 1U) != 0, {pTet, i, border.positive});
		}
		vCavityStack.accept(stack);
		vDeadTets.accept(dead);
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

void Dt3::carveFound(const Reservation& reservation)
{
	Tet3* const pStartTet = reservation.cavity().begin()->pTet;
	startCavity(pStartTet);
	for (int i = 1; i < 4; ++i) star.vCorners.add(pStartTet->getCorner(i));
	for (const CavityTet& found : reservation.cavity()) {
		star.vCorners.add(found.pApex);
		CavityMark::set(*found.pTet);
	}

	// The same depth-first order as above. What is still reserved has not been on the stack yet.
	const unsigned positive = reservation.seesPositive() ? 0xFU : 0;
	reservation.release(*pStartTet);
	while (!vCavityStack.empty()) {
		Tet3* const pTet = vCavityStack.pop().pTet;
		retire(pTet);
		auto stack = vCavityStack.writer(4);
		auto dead = vDeadTets.writer(4);
		auto facets = vCavityFacets.writer(4);
		for (unsigned i = 4; i-- > 0;) {
			Tet3* const pNeigh = pTet->getOppTet(static_cast<int>(i));
			const bool bInside = CavityMark::isSet(*pNeigh);
			const bool bJoins = reservation.release(*pNeigh) & bInside;
			stack.pushIf(bJoins, {pNeigh, nullptr});
			dead.pushIf(bJoins, pNeigh);
			facets.pushIf(!bInside, {pTet, i, positive});
		}
		vCavityStack.accept(stack);
		vDeadTets.accept(dead);
		vCavityFacets.accept(facets);
	}
}

inline Tet3* Dt3::closeFacet(const CavityFacet& facet, Point3* pVtx)
{
	const auto [pTet, ith, positive] = facet;
	const bool bPositive = (positive >> ith & 1U) != 0;
	const auto& [a, b, c] = kOutside[ith];
	Tet3* pNewTet = bPositive
	    ? makePositiveTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c))
	    : createTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c));
	Tet3* pNeigh = pTet->getOppTet(static_cast<int>(ith));
	if (pNeigh != nullptr) registerTets(pNewTet, 0, pNeigh, pNeigh->getIntraTetIndex(pTet));
	star.vTets.add(pNewTet);
	return pNewTet;
}

void Dt3::startCavity(Tet3* pStartTet)
{
	swapDeadAndRecycled();
	star.clear();
	vDeadTets.add(pStartTet);
	vCavityStack.clear();
	vCavityStack.add({pStartTet, pStartTet->getCorner(0)});
	vCavityFacets.clear();
}

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	if (batchTests.bAvx2) {
		carveAvx2(pVtx, pStartTet);
	} else {
		carvePortable(pVtx, pStartTet);
	}
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceCavity(Point3* pVtx, const Reservation& reservation)
{
	carveFound(reservation);
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceColdCavity(Point3* pVtx, Tet3* pStartTet)
{
	singleReservation.begin(Reservation::kSingle, *pVtx, pStartTet);
	cavitySearch.run(&singleReservation, 1, batchTests, predicates);
	if (!singleReservation.isComplete()) return replaceCavity(pVtx, pStartTet);
	Tet3* pLastTet = replaceCavity(pVtx, singleReservation);
	singleReservation.clear();
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
