// SPDX-License-Identifier: MIT
// The cavities of the next few vertices, searched together.
#include "lookahead/CavityQueue.h"

#include "ardo_tools/Bits.h"
#include "geometry/vectors.h"
#include "lookahead/WalkStart.h"
#include "mesh/Prefetch.h"

#include <cfloat>

namespace TULO3D {

CavityQueue::CavityQueue(const InsertionOrder& next, const WalkStart& walkStart,
    const BatchTests& batchTests, const ArdoTest3& adaptiveTests)
    : starts(walkStart), tests(batchTests), predicates(adaptiveTests), ahead(next)
{
}

CavityQueue::~CavityQueue()
{
	for (Reservation& reservation : reservations) reservation.abort();
}

void CavityQueue::fill()
{
	// In passes over all vertices: each pass prefetches what the next one reads.
	QueuedWalk walks[kSize];
	for (numQueued = 0; numQueued < kSize && !ahead.isAtEnd(); ++numQueued, ++ahead) {
		QueuedWalk& walk = walks[numQueued];
		walk.place = numQueued;
		walk.position = *ahead;
		walk.pVtx = &starts.vertex(walk.position);
		prefetchVertex<Cache::kSecond>(walk.pVtx);
		starts.prefetchNeighbours(walk.position);
	}
	for (std::size_t i = 0; i < numQueued; ++i) {
		walks[i].near = starts.neighbours(walks[i].position);
		for (const Point3* p : walks[i].near) {
			if (p != nullptr) prefetchVertex<Cache::kSecond>(p);
		}
	}

	// Compacts the walks that have not ended.
	std::size_t numLeft = 0;
	for (std::size_t i = 0; i < numQueued; ++i) {
		walks[numLeft] = walks[i];
		numLeft += start(walks[numLeft]);
	}
	while (numLeft > 0) {
		const std::size_t numWalks = numLeft;
		for (std::size_t i = 0; i < numWalks; ++i) {
			prefetchCorners<Cache::kSecond>(*walks[i].pTet);
		}
		numLeft = 0;
		for (std::size_t i = 0; i < numWalks; ++i) {
			walks[numLeft] = walks[i];
			numLeft += takeStep(walks[numLeft]);
		}
	}
	search.run(reservations, numQueued, tests, predicates);
}

bool CavityQueue::start(QueuedWalk& walk)
{
	const auto distance = [&walk](const Point3* p) {
		return p == nullptr ? DBL_MAX : squaredDistance(*walk.pVtx, *p);
	};
	const Point3* pNearer = walk.near[distance(walk.near[1]) < distance(walk.near[0])];
	walk.pTet = pNearer == nullptr ? nullptr : pNearer->getOneTet();
	prefetchTet<Cache::kSecond>(walk.pTet);
	return walk.pTet != nullptr;
}

bool CavityQueue::takeStep(QueuedWalk& walk)
{
	// No watchdog: a speculative walk may simply end. Among cospherical vertices, where the Delaunay mesh is
	// not unique, a visibility walk may run in a cycle.
	constexpr int kMaxSteps = 100;
	const Tet3& tet = *walk.pTet;
	const Point3* const corner[4] = {
	    tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3)};
	const FacetSides sides = tests.facets(corner, *walk.pVtx);
	if (sides.negative != 0) {
		walk.pTet = tet.getOppTet(static_cast<int>(lowestBit(sides.negative)));
		prefetchTet<Cache::kSecond>(walk.pTet);
		return walk.pTet != nullptr && ++walk.numSteps <= kMaxSteps;
	}
	if (sides.positive == 0xFU) {
		const auto bit = static_cast<Reservation::Bits>(1U << walk.place);
		reservations[walk.place].begin(bit, *walk.pVtx, walk.pTet);
	}
	return false;
}

const Reservation& CavityQueue::next()
{
	if (numInserted == numQueued) {
		numInserted = 0;
		fill();
	}
	return reservations[numInserted];
}

void CavityQueue::afterInsertion(Reservation::Bits disturbed)
{
	Reservation& first = reservations[numInserted++];
	++numTried;
	numSucceeded += first.isComplete();
	if (numTried == kTrial) {
		bWorthwhile = numSucceeded >= kTrial / 8;
		numTried = numSucceeded = 0;
	}
	first.clear();
	if (disturbed == 0) return;
	for (std::size_t i = numInserted; i < numQueued; ++i) reservations[i].abortIfAmong(disturbed);
}

} // namespace TULO3D
