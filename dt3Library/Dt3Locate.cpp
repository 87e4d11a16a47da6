// SPDX-License-Identifier: MIT
// The walk: from tetrahedron to tetrahedron, across any facet that has the point beyond it.
#include "Dt3.h"
#include "TetAroundEdgeIterator.h"

#include <iostream>

namespace TULO3D {

namespace {

constexpr std::size_t kMaxFacetTests = 10000;
constexpr int kMaxWalks = 1000;

} // namespace

int Dt3::locateConflictTet(Point3* pVtx, Tet3*& pStartTet)
{
	if (pStartTet == nullptr) goToHell("locateConflictTet");

	int f = 0;       // the facet to test next
	int numLeft = 4; // facets of this tetrahedron still to test
	const std::size_t lastTest = numFacetTests + kMaxFacetTests;
	while (numLeft > 0) {
		if (++numFacetTests > lastTest) {
			// Deliberate: a random step, so that a caller who tries again starts somewhere else.
			Tet3* pElsewhere = pStartTet->getOppTet(watchdogRandom.next() % 4);
			if (pElsewhere != nullptr) pStartTet = pElsewhere;
			std::cout << "watchDog: bad point" << std::endl;
			return -99;
		}

		switch (predicates.getOrientation3(pStartTet, f, pVtx)) {
		case ORIENTATION3_NEGATIVE: {
			Tet3* pNext = pStartTet->getOppTet(f);
			if (pNext == nullptr) return f;
			// The point is known to be on this side of the facet through which the walk enters.
			f = nextIndex(pNext->getIntraTetIndex(pStartTet));
			numLeft = 3;
			pStartTet = pNext;
			continue;
		}
		case ORIENTATION3_COPLANAR: {
			if (pStartTet->hasVertex(*pVtx)) return -2;
			const FacetSides sides = classifyFacets(pStartTet, f, pVtx);
			if (sides.numNegative > 0) break;
			if (sides.numPositive == 3) return sides.outIndex;
			CONDITION_CHECK_AS(sides.numPositive == 2, "numPositive==2");
			CONDITION_CHECK_AS(sides.numCoplanar == 2, "numCoplanar==2");
			CONDITION_CHECK_AS(sides.opp2ICI >= 0, "opp2ICI>=0");
			return stopAtHullEdge(pStartTet, f, sides.opp2ICI);
		}
		case ORIENTATION3_POSITIVE:
			break;
		}
		f = nextIndex(f);
		--numLeft;
	}

	CONDITION_CHECK(predicates.getOrientation3(pStartTet,0,pVtx)==ORIENTATION3_POSITIVE);
	CONDITION_CHECK(predicates.getOrientation3(pStartTet,1,pVtx)==ORIENTATION3_POSITIVE);
	CONDITION_CHECK(predicates.getOrientation3(pStartTet,2,pVtx)==ORIENTATION3_POSITIVE);
	CONDITION_CHECK(predicates.getOrientation3(pStartTet,3,pVtx)==ORIENTATION3_POSITIVE);
	CONDITION_CHECK(predicates.sphereInclusionTest(pStartTet,pVtx)==SIC_INSIDE);
	return -1;
}

FacetSides Dt3::classifyFacets(const Tet3* pTet, int f, const Point3* pVtx) const
{
	FacetSides sides;
	for (int i = 0; i < 4; ++i) {
		switch (predicates.getOrientation3(pTet, i, pVtx)) {
		case ORIENTATION3_POSITIVE:
			++sides.numPositive;
			break;
		case ORIENTATION3_NEGATIVE:
			++sides.numNegative;
			break;
		case ORIENTATION3_COPLANAR:
			++sides.numCoplanar;
			if (pTet->getOppTet(i) == nullptr) sides.outIndex = i;
			if (i != f) sides.opp2ICI = i;
			break;
		}
	}
	return sides;
}

int Dt3::stopAtHullEdge(Tet3*& pTet, int f, int opp2ICI) const
{
	const TetAroundEdgeIterator itStart(Edge3(pTet, f, opp2ICI));
	TetAroundEdgeIterator it(itStart);
	while (!it.nextIsNull()) {
		++it;
		if (it == itStart) return -1; // an inner edge
	}
	pTet = *it;
	const int outIndex = it.getOpp2Index();
	CONDITION_CHECK_AS(pTet != nullptr, "pStartTet!=0");
	CONDITION_CHECK_AS(pTet->getOppTet(outIndex) == nullptr, "pStartTet->getOppTet(outIndex)==0");
	return outIndex;
}

int Dt3::locatePersistently(Point3* pVtx, Tet3*& pStartTet)
{
	// Thin and long meshes make walks of more steps than the watchdog allows.
	int result = -99;
	for (int walk = 0; walk < kMaxWalks && result == -99; ++walk) {
		result = locateConflictTet(pVtx, pStartTet);
	}
	return result;
}

Tet3* Dt3::locate(const Point3& p)
{
	if (!hc3.bValid || !isInRange(p)) return nullptr;
	Point3 copy(p);
	Tet3* pTet = hc3.findNearbyTet(copy);
	if (pTet == nullptr) return nullptr;
	pTet = hc3.nearerTet(copy, pTet);
	const int result = locatePersistently(&copy, pTet);
	return result == -1 || result == -2 ? pTet : nullptr;
}

} // namespace TULO3D
