// SPDX-License-Identifier: MIT
// Cavities that are found ahead of their insertion, several at a time.
#include "Scouts.h"
#include "Bits.h"
#include "Prefetch.h"
#include "StartFinder.h"
#include "vectors.h"

#include <cfloat>

namespace TULO3D {

Scouts::Scouts(const InsertionOrder& next, const StartFinder& startFinder,
    const BatchTests& batchTests, const ArdoTest3& adaptiveTests)
    : finder(startFinder), tests(batchTests), predicates(adaptiveTests), ahead(next)
{
}

Scouts::~Scouts()
{
	for (Scout& scout : scouts) scout.giveUp();
}

void Scouts::sendOut()
{
	Way ways[kNumScouts];
	for (numSent = 0; numSent < kNumScouts && !ahead.isAtEnd(); ++numSent, ++ahead) {
		Way& way = ways[numSent];
		way.place = numSent;
		way.position = *ahead;
		way.pVtx = &finder.vertex(way.position);
		prefetchVertex<Cache::kSecond>(way.pVtx);
		finder.prefetchNeighbours(way.position);
	}
	for (std::size_t i = 0; i < numSent; ++i) {
		ways[i].near = finder.neighbours(ways[i].position);
		for (const Point3* p : ways[i].near) {
			if (p != nullptr) prefetchVertex<Cache::kSecond>(p);
		}
	}

	// Those who are still on their way move up to the front.
	std::size_t numOut = 0;
	for (std::size_t i = 0; i < numSent; ++i) {
		ways[numOut] = ways[i];
		numOut += start(ways[numOut]);
	}
	while (numOut > 0) {
		for (std::size_t i = 0; i < numOut; ++i) prefetchCorners<Cache::kSecond>(*ways[i].pTet);
		std::size_t numLeft = 0;
		for (std::size_t i = 0; i < numOut; ++i) {
			ways[numLeft] = ways[i];
			numLeft += takeStep(ways[numLeft]);
		}
		numOut = numLeft;
	}
	search.run(scouts, numSent, tests, predicates);
}

bool Scouts::start(Way& way)
{
	const auto distance = [&way](const Point3* p) {
		return p == nullptr ? DBL_MAX : squaredDistance(*way.pVtx, *p);
	};
	const Point3* pNearer = way.near[distance(way.near[1]) < distance(way.near[0])];
	way.pTet = pNearer == nullptr ? nullptr : pNearer->getOneTet();
	prefetchTet<Cache::kSecond>(way.pTet);
	return way.pTet != nullptr;
}

bool Scouts::takeStep(Way& way)
{
	constexpr int kMaxWalked = 100; // among cospherical vertices the walk need not end at all
	const Tet3& tet = *way.pTet;
	const Point3* const corner[4] = {
	    tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3)};
	const FacetSides sides = tests.facets(corner, *way.pVtx);
	if (sides.negative != 0) {
		way.pTet = tet.getOppTet(static_cast<int>(lowestBit(sides.negative)));
		prefetchTet<Cache::kSecond>(way.pTet);
		return way.pTet != nullptr && ++way.numWalked <= kMaxWalked;
	}
	if (sides.positive == 0xFU) {
		scouts[way.place].enter(static_cast<Scout::Claims>(1U << way.place), *way.pVtx, way.pTet);
	}
	return false;
}

const Scout& Scouts::next()
{
	if (numIn == numSent) {
		numIn = 0;
		sendOut();
	}
	return scouts[numIn];
}

void Scouts::goOn(Scout::Claims disturbed)
{
	Scout& first = scouts[numIn++];
	++numDone;
	numFound += first.hasFound();
	if (numDone == kTrial) {
		bPays = numFound >= kTrial / 8;
		numDone = numFound = 0;
	}
	first.rest();
	if (disturbed == 0) return;
	for (std::size_t i = numIn; i < numSent; ++i) scouts[i].giveUpIfAmong(disturbed);
}

} // namespace TULO3D
