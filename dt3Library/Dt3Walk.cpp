// SPDX-License-Identifier: MIT
// Point location by a visibility walk.
#include "Dt3Walk.h"
#include "ArdoTest3.h"
#include "Message.h"
#include "TetAroundEdgeIterator.h"
#include "mesh/Prefetch.h"

#include <cstdint>

namespace TULO3D {

namespace {

/// How many facets come before the first one of the set, in cyclic order from facet f.
int firstFrom(int f, unsigned set)
{
	constexpr std::uint8_t kLowestBit[16] = {4, 0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0};
	return kLowestBit[(set >> f | set << (4 - f)) & 0xFU];
}

/// The set of the first `count` facets in cyclic order from facet f.
unsigned cyclicRun(int f, int count)
{
	const unsigned run = ((1U << count) - 1U) << f;
	return (run | run >> 4U) & 0xFU;
}

} // namespace

int Walk::run(const Point3& target, Tet3*& pTet, std::size_t maxFacetTests)
{
	int f = 0;         // the facet to test next
	int numToTest = 4; // facets of this tetrahedron
	const std::size_t lastTest = numFacetTests + maxFacetTests;
	for (;;) {
		prefetchNeighbours(*pTet); // for the next step; in the end, for the cavity
		// The four orientation tests together (SIMD) cost less than one after the other with a misprediction
		// for each. What counts is the first facet with the target beyond it, else the first one in its plane.
		const FacetSides sides = sidesOf(*pTet, target, f, numToTest);
		const unsigned stops = sides.negative != 0 ? sides.negative : ~sides.positive & 0xFU;
		const int passed = stops != 0 ? firstFrom(f, stops) : numToTest - 1;
		numFacetTests += static_cast<std::size_t>(passed) + 1;
		if (numFacetTests > lastTest) return stopEarly(pTet, maxFacetTests);
		if (stops == 0) return stopInside(pTet, sides, &target);
		f = (f + passed) & 3;
		if (sides.negative == 0) return stopInPlane(pTet, f, sides, target);

		Tet3* pNext = pTet->getOppTet(f);
		if (pNext == nullptr) return f;
		// The target is known to be on this side of the facet through which the walk enters.
		f = nextIndex(pNext->getIntraTetIndex(pTet));
		numToTest = 3;
		pTet = pNext;
	}
}

int Walk::stopEarly(Tet3*& pTet, std::size_t maxFacetTests)
{
	if (maxFacetTests < kMaxFacetTests) return kTooLong;
	// Deliberate: a random step, so that a caller who tries again starts somewhere else.
	Tet3* pElsewhere = pTet->getOppTet(watchdogRandom.next() % 4);
	if (pElsewhere != nullptr) pTet = pElsewhere;
	Message() << "watchDog: bad point" << std::endl;
	return kByWatchdog;
}

int Walk::stopInside(const Tet3* pStartTet, const FacetSides& sides, const Point3* pVtx) const
{
	// The walk has just made the first four tests. A vertex strictly inside a tetrahedron and outside of its sphere
	// would be a defect.
	const auto isPositive = [&sides](int i) { return (sides.positive >> i & 1U) != 0; };
	CONDITION_CHECK_AS(
	    isPositive(0), "predicates.getOrientation3(pStartTet,0,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(1), "predicates.getOrientation3(pStartTet,1,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(2), "predicates.getOrientation3(pStartTet,2,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(3), "predicates.getOrientation3(pStartTet,3,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK(predicates.sphereInclusionTest(pStartTet,pVtx)==SIC_INSIDE);
	return kInside;
}

FacetSides Walk::sidesOf(const Tet3& tet, const Point3& target, int f, int numToTest) const
{
	const Point3* const corner[4] = {
	    tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3)};
	FacetSides sides = tests.facets(corner, target);
	unsigned undecided = ~(sides.positive | sides.negative) & 0xFU;
	if (undecided == 0) return sides;
	sides.positive |= undecided & ~cyclicRun(f, numToTest);
	undecided &= cyclicRun(f, numToTest);
	// The walk takes the first facet with the target beyond it: what comes after one need not be known.
	if (sides.negative != 0) undecided &= cyclicRun(f, firstFrom(f, sides.negative));
	for (int i = 0; undecided >> i != 0; ++i) {
		if ((undecided >> i & 1U) == 0) continue;
		const Orientation3 side = predicates.getOrientation3(&tet, i, &target);
		sides.positive |= static_cast<unsigned>(side == ORIENTATION3_POSITIVE) << i;
		sides.negative |= static_cast<unsigned>(side == ORIENTATION3_NEGATIVE) << i;
	}
	return sides;
}

int Walk::stopInPlane(Tet3*& pTet, int f, const FacetSides& sides, const Point3& target) const
{
	if (pTet->hasVertex(target)) return kAtCorner;
	int numPositive = 0;
	int numCoplanar = 0;
	int opp2ICI = -1; // a coplanar facet other than f
	for (int i = 0; i < 4; ++i) {
		const bool bPositive = (sides.positive >> i & 1U) != 0;
		(bPositive ? numPositive : numCoplanar) += 1;
		if (!bPositive && i != f) opp2ICI = i;
	}
	if (numPositive == 3) return pTet->getOppTet(f) == nullptr ? f : kOnInnerFacetOrEdge;
	CONDITION_CHECK_AS(numPositive == 2, "numPositive==2");
	CONDITION_CHECK_AS(numCoplanar == 2, "numCoplanar==2");
	CONDITION_CHECK_AS(opp2ICI >= 0, "opp2ICI>=0");
	return stopAtEdge(pTet, f, opp2ICI);
}

int Walk::stopAtEdge(Tet3*& pTet, int f, int opp2ICI) const
{
	const TetAroundEdgeIterator itStart(Edge3(pTet, f, opp2ICI));
	TetAroundEdgeIterator it(itStart);
	while (!it.nextIsNull()) {
		++it;
		if (it == itStart) return kOnInnerFacetOrEdge; // an inner edge
	}
	pTet = *it;
	const int outIndex = it.getOpp2Index();
	CONDITION_CHECK_AS(pTet != nullptr, "pStartTet!=0");
	CONDITION_CHECK_AS(pTet->getOppTet(outIndex) == nullptr, "pStartTet->getOppTet(outIndex)==0");
	return outIndex;
}

} // namespace TULO3D
