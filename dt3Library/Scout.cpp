// SPDX-License-Identifier: MIT
// A cavity that is found before its insertion.
#include "Scout.h"
#include "ArdoTest3.h"
#include "FacetLanes.h"
#include "Prefetch.h"
#include "StartFinder.h"
#include "vectors.h"

#include <cfloat>

namespace TULO3D {

void Scout::setOut(Claims claim, std::size_t i, const StartFinder& startFinder)
{
	myClaim = claim;
	pFinder = &startFinder;
	position = i;
	pVtx = &startFinder.vertex(i);
	prefetchVertex<Cache::kSecond>(pVtx);
	startFinder.prefetchNeighbours(i);
	step = Step::kLookUp;
}

void Scout::startFrom(Tet3* pEnd, const Point3& vtx)
{
	giveUp(); // what an exception has left
	myClaim = kLoneClaim;
	pVtx = &vtx;
	pTet = pEnd;
	enterCavity();
}

void Scout::giveUp()
{
	// All that is claimed is next to the cavity. What has just been removed still knows its neighbours;
	// it is claimed by nobody, and neither is what has come instead.
	for (const CavityTet& found : vCavity) {
		release(*found.pTet);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = found.pTet->getOppTet(i);
			if (pNeigh != nullptr) release(*pNeigh);
		}
	}
	rest();
}

void Scout::advance(const BatchTests& tests, const ArdoTest3& predicates)
{
	switch (step) {
	case Step::kLookUp:
		near = pFinder->neighbours(position);
		for (const Point3* p : near) {
			if (p != nullptr) prefetchVertex<Cache::kSecond>(p);
		}
		step = Step::kChooseVertex;
		return;
	case Step::kChooseVertex:
		chooseVertex();
		return;
	case Step::kLookAtTet:
		prefetchCorners<Cache::kSecond>(*pTet);
		step = Step::kWalk;
		return;
	case Step::kWalk:
		walk(tests.facets);
		return;
	case Step::kMeetNeighbours:
		meetNeighbours();
		return;
	case Step::kTestNeighbours:
		if (tests.bAvx2) {
			testNeighboursAvx2(tests, predicates);
		} else {
			testNeighboursPortable(tests, predicates);
		}
		if (isOnItsWay()) prefetchNew();
		return;
	case Step::kFound:
	case Step::kGivenUp:
		return;
	}
}

void Scout::chooseVertex()
{
	const auto distance = [this](const Point3* p) {
		return p == nullptr ? DBL_MAX : squaredDistance(*pVtx, *p);
	};
	const Point3* pNearer = near[distance(near[1]) < distance(near[0])];
	pTet = pNearer == nullptr ? nullptr : pNearer->getOneTet();
	if (pTet == nullptr) return giveUp();
	prefetchTet<Cache::kSecond>(pTet);
	numWalked = 0;
	step = Step::kLookAtTet;
}

void Scout::walk(FacetTest facetTest)
{
	constexpr int kMaxWalked = 100; // through what is dead the walk need not end at all
	const Point3* const corner[4] = {
	    pTet->getCorner(0), pTet->getCorner(1), pTet->getCorner(2), pTet->getCorner(3)};
	const FacetSides sides = facetTest(corner, *pVtx);
	for (int i = 0; i < 4; ++i) {
		if ((sides.negative >> i & 1U) == 0) continue;
		pTet = pTet->getOppTet(i);
		if (pTet == nullptr || ++numWalked > kMaxWalked) return giveUp();
		prefetchTet<Cache::kSecond>(pTet);
		step = Step::kLookAtTet;
		return;
	}
	// A dead tetrahedron stays visited until its record is used again, for some other place.
	if (sides.positive != 0xFU || pTet->hasBeenVisited) return giveUp();
	enterCavity();
}

void Scout::enterCavity()
{
	vCavity.add({pTet, pTet->getCorner(0)}); // before the claim: it may run out of memory
	pTet->claims |= myClaim;
	numTested = 0;
	bPositive = true;
	prefetchNew();
}

void Scout::meetNeighbours()
{
	for (std::size_t n = numTested; n < vCavity.size(); ++n) {
		const Tet3& tet = *vCavity.begin()[n].pTet;
		const std::uintptr_t corners = mixOfCorners(tet);
		for (int i = 0; i < 4; ++i) {
			const Tet3* pNeigh = tet.getOppTet(i);
			// What comes in from beyond the hull would remove nothing that is claimed. Once all
			// neighbours are there, no facet of a claimed tetrahedron comes to the hull again.
			if (pNeigh == nullptr) return giveUp();
			const std::uintptr_t facet = corners ^ addressOf(tet.getCorner(i));
			prefetchVertex<Cache::kSecond>(
			    reinterpret_cast<const Point3*>(facet ^ mixOfCorners(*pNeigh)));
		}
	}
	step = Step::kTestNeighbours;
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE void Scout::testNeighbours(
    const BatchTests& tests, const ArdoTest3& predicates)
{
	const std::size_t size = vCavity.size();
	for (; numTested < size; ++numTested) {
		const CavityBorder border =
		    lookAround<Lanes>(vCavity.begin()[numTested].pTet, *pVtx, tests, predicates);
		// A mark that a host has left; the insertion itself refuses it.
		if (border.open != 0xFU) return giveUp();
		bPositive &= (border.conflict | border.positive) == 0xFU;
		auto joining = vCavity.writer(4);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = border.pNeigh[i];
			const bool bInside = (border.conflict >> i & 1U) != 0;
			const bool bNew = (pNeigh->claims & myClaim) == 0;
			pNeigh->claims |= myClaim;
			joining.pushIf(bNew & bInside, {pNeigh, border.pApex[i]});
		}
		vCavity.accept(joining);
	}
}

void Scout::testNeighboursPortable(const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighbours<HalfBatches>(tests, predicates);
}

#if defined(TULO3D_AVX2)
TULO3D_AVX2 void Scout::testNeighboursAvx2(const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighbours<WholeBatch>(tests, predicates);
}
#else
void Scout::testNeighboursAvx2(const BatchTests& tests, const ArdoTest3& predicates)
{
	testNeighboursPortable(tests, predicates);
}
#endif

void Scout::prefetchNew()
{
	for (std::size_t n = numTested; n < vCavity.size(); ++n) {
		prefetchNeighbours<Cache::kSecond>(*vCavity.begin()[n].pTet);
	}
	step = numTested < vCavity.size() ? Step::kMeetNeighbours : Step::kFound;
}

} // namespace TULO3D
