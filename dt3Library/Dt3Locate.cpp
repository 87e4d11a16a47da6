// SPDX-License-Identifier: MIT
// Point location by a visibility walk: from tetrahedron to tetrahedron, across a facet that has the
// point strictly beyond it.
//
// O. Devillers, S. Pion, M. Teillaud: Walking in a Triangulation, Symposium on Computational Geometry,
// 2001.
#include "Dt3.h"
#include "Message.h"
#include "TetAroundEdgeIterator.h"
#include "mesh/Prefetch.h"

#include <cstdint>

namespace TULO3D {

namespace {

constexpr std::size_t kMaxFacetTests = 10000;
constexpr int kMaxFurtherWalks = 1000;
constexpr std::size_t kFacetTestsOfAShortWalk = 64;

// How a walk may end, beside the results of locateConflictTet.
constexpr int kInside = -1; // strictly inside, beyond no facet and in the plane of none
constexpr int kAtCorner = -2;
constexpr int kInInnerPlane = -3; // in an inner facet or on an inner edge
constexpr int kTooLong = -98;     // more tests than asked for, fewer than stop the watchdog
constexpr int kByWatchdog = -99;

/// The result as locateConflictTet has it: inner facets and edges count as inside.
int publicResult(int end)
{
	return end == kInInnerPlane ? kInside : end;
}

/// How many facets come before the first one of the set, in cyclic order from facet f.
int firstFrom(int f, unsigned set)
{
	constexpr std::uint8_t kLowestBit[16] = {4, 0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0};
	return kLowestBit[(set >> f | set << (4 - f)) & 0xFU];
}

} // namespace

int Dt3::locateConflictTet(Point3* pVtx, Tet3*& pStartTet)
{
	return publicResult(walk(*pVtx, pStartTet, kMaxFacetTests));
}

int Dt3::walk(const Point3& vtx, Tet3*& pStartTet, std::size_t maxFacetTests)
{
	if (pStartTet == nullptr) goToHell("locateConflictTet");

	int f = 0;       // the facet to test next
	int numLeft = 4; // facets of this tetrahedron still to test
	const std::size_t lastTest = numFacetTests + maxFacetTests;
	FacetSides sides;
	for (;;) {
		prefetchNeighbours(*pStartTet); // for the next step; in the end, for the cavity
		// The four orientation tests together (SIMD) cost less than one after the other with a misprediction
		// for each. What counts is the first facet with the point beyond it, else the first one in its plane.
		sides = sidesOf(*pStartTet, vtx);
		const unsigned stops = sides.negative != 0 ? sides.negative : ~sides.positive & 0xFU;
		const int passed = stops != 0 ? firstFrom(f, stops) : numLeft - 1;
		numFacetTests += static_cast<std::size_t>(passed) + 1;
		if (numFacetTests > lastTest) {
			if (maxFacetTests < kMaxFacetTests) return kTooLong;
			// Deliberate: a random step, so that a caller who tries again starts somewhere else.
			Tet3* pElsewhere = pStartTet->getOppTet(watchdogRandom.next() % 4);
			if (pElsewhere != nullptr) pStartTet = pElsewhere;
			Message() << "watchDog: bad point" << std::endl;
			return kByWatchdog;
		}
		if (stops == 0) break;
		f = (f + passed) & 3;
		if (sides.negative == 0) return stopInPlane(pStartTet, f, sides, vtx);

		Tet3* pNext = pStartTet->getOppTet(f);
		if (pNext == nullptr) return f;
		// The point is known to be on this side of the facet through which the walk enters.
		f = nextIndex(pNext->getIntraTetIndex(pStartTet));
		numLeft = 3;
		pStartTet = pNext;
	}

	// The walk has just made these tests; a walk that ends otherwise would be a defect.
	const auto isPositive = [&sides](int i) { return (sides.positive >> i & 1U) != 0; };
	CONDITION_CHECK_AS(
	    isPositive(0), "predicates.getOrientation3(pStartTet,0,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(1), "predicates.getOrientation3(pStartTet,1,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(2), "predicates.getOrientation3(pStartTet,2,pVtx)==ORIENTATION3_POSITIVE");
	CONDITION_CHECK_AS(
	    isPositive(3), "predicates.getOrientation3(pStartTet,3,pVtx)==ORIENTATION3_POSITIVE");
	const Point3* pVtx = &vtx;
	CONDITION_CHECK(predicates.sphereInclusionTest(pStartTet,pVtx)==SIC_INSIDE);
	return kInside;
}

FacetSides Dt3::sidesOf(const Tet3& tet, const Point3& vtx) const
{
	const Point3* const corner[4] = {
	    tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3)};
	FacetSides sides = batchTests.facets(corner, vtx);
	const unsigned undecided = ~(sides.positive | sides.negative) & 0xFU;
	for (int i = 0; undecided >> i != 0; ++i) {
		if ((undecided >> i & 1U) == 0) continue;
		const Orientation3 side = predicates.getOrientation3(&tet, i, &vtx);
		sides.positive |= static_cast<unsigned>(side == ORIENTATION3_POSITIVE) << i;
		sides.negative |= static_cast<unsigned>(side == ORIENTATION3_NEGATIVE) << i;
	}
	return sides;
}

int Dt3::stopInPlane(Tet3*& pTet, int f, const FacetSides& sides, const Point3& vtx) const
{
	if (pTet->hasVertex(vtx)) return kAtCorner;
	int numPositive = 0;
	int numCoplanar = 0;
	int opp2ICI = -1; // a coplanar facet other than f
	for (int i = 0; i < 4; ++i) {
		const bool bPositive = (sides.positive >> i & 1U) != 0;
		(bPositive ? numPositive : numCoplanar) += 1;
		if (!bPositive && i != f) opp2ICI = i;
	}
	if (numPositive == 3) return pTet->getOppTet(f) == nullptr ? f : kInInnerPlane;
	CONDITION_CHECK_AS(numPositive == 2, "numPositive==2");
	CONDITION_CHECK_AS(numCoplanar == 2, "numCoplanar==2");
	CONDITION_CHECK_AS(opp2ICI >= 0, "opp2ICI>=0");
	return stopAtEdge(pTet, f, opp2ICI);
}

int Dt3::stopAtEdge(Tet3*& pTet, int f, int opp2ICI) const
{
	const TetAroundEdgeIterator itStart(Edge3(pTet, f, opp2ICI));
	TetAroundEdgeIterator it(itStart);
	while (!it.nextIsNull()) {
		++it;
		if (it == itStart) return kInInnerPlane; // an inner edge
	}
	pTet = *it;
	const int outIndex = it.getOpp2Index();
	CONDITION_CHECK_AS(pTet != nullptr, "pStartTet!=0");
	CONDITION_CHECK_AS(pTet->getOppTet(outIndex) == nullptr, "pStartTet->getOppTet(outIndex)==0");
	return outIndex;
}

int Dt3::locatePersistently(Point3* pVtx, Tet3*& pStartTet)
{
	// Thin and long meshes make walks of more steps than the watchdog allows; and where more than four vertices
	// are cospherical, a visibility walk may run in a cycle, which the watchdog's random step leaves.
	int result = locateConflictTet(pVtx, pStartTet);
	for (int n = 0; n < kMaxFurtherWalks && result == kByWatchdog; ++n) {
		result = locateConflictTet(pVtx, pStartTet);
	}
	return result;
}

int Dt3::locateByCurve(Point3* pVtx, Tet3*& pStartTet)
{
	Tet3* pNearer = hc3.nearerTet(*pVtx, pStartTet);
	if (pNearer == pStartTet) return locatePersistently(pVtx, pStartTet);

	// The result is that of a walk from pStartTet, or of one from pNearer where that walk is longer than 64 facet
	// tests. Only one tetrahedron has a point strictly inside, whatever the start; so the walk from pNearer,
	// which saves cache misses, comes first. Only where it ends otherwise does the start decide what is found.
	Tet3* pTet = pNearer;
	if (walk(*pVtx, pTet, kFacetTestsOfAShortWalk) == kInside) {
		pStartTet = pTet;
		return kInside;
	}
	pTet = pStartTet;
	const int end = walk(*pVtx, pTet, kFacetTestsOfAShortWalk);
	pStartTet = end == kTooLong ? pNearer : pTet;
	if (end == kTooLong) return locatePersistently(pVtx, pStartTet);
	return publicResult(end);
}

Tet3* Dt3::locate(const Point3& p)
{
	expectFinished();
	if (!hc3.bValid || !isInRange(p)) return nullptr;
	Tet3* pTet = hc3.findNearbyTet(p);
	if (pTet == nullptr) return nullptr;
	Point3 copy(p);
	const int result = locateByCurve(&copy, pTet);
	return result == kInside || result == kAtCorner ? pTet : nullptr;
}

} // namespace TULO3D
