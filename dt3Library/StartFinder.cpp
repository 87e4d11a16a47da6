// SPDX-License-Identifier: MIT
// Offers a near start to the walk where the curve of the vertex store cannot.
#include "StartFinder.h"
#include "FinerCurve.h"
#include "Prefetch.h"
#include "vectors.h"

#include <algorithm>
#include <cfloat>

namespace TULO3D {

namespace {

unsigned lowestBit(std::uint64_t word)
{
	unsigned n = 0;
	for (unsigned half = 32; half > 0; half /= 2) {
		const std::uint64_t low = word & ((std::uint64_t{1} << half) - 1);
		if (low == 0) n += half;
		word = low == 0 ? word >> half : low;
	}
	return n;
}

unsigned highestBit(std::uint64_t word)
{
	unsigned n = 0;
	for (unsigned half = 32; half > 0; half /= 2) {
		if (word >> half == 0) continue;
		n += half;
		word >>= half;
	}
	return n;
}

} // namespace

RankSet::RankSet(std::size_t limit)
{
	do {
		limit = (limit + 63) / 64;
		levels.emplace_back(limit, 0);
	} while (limit > 1);
}

void RankSet::add(std::size_t rank)
{
	for (auto& level : levels) {
		level[rank / 64] |= std::uint64_t{1} << (rank % 64);
		rank /= 64;
	}
}

std::size_t RankSet::below(std::size_t rank) const
{
	for (std::size_t n = 0; n < levels.size(); ++n, rank /= 64) {
		const std::uint64_t mask = (std::uint64_t{1} << (rank % 64)) - 1;
		std::uint64_t word = rank / 64 < levels[n].size() ? levels[n][rank / 64] & mask : 0;
		if (word == 0) continue;
		std::size_t found = rank / 64 * 64 + highestBit(word);
		while (n-- > 0) found = found * 64 + highestBit(levels[n][found]);
		return found;
	}
	return kNone;
}

std::size_t RankSet::above(std::size_t rank) const
{
	for (std::size_t n = 0; n < levels.size(); ++n, rank /= 64) {
		const std::uint64_t mask = rank % 64 == 63 ? 0 : ~std::uint64_t{0} << (rank % 64 + 1);
		const std::uint64_t word = levels[n][rank / 64] & mask;
		if (word == 0) continue;
		std::size_t found = rank / 64 * 64 + lowestBit(word);
		while (n-- > 0) found = found * 64 + lowestBit(levels[n][found]);
		return found;
	}
	return kNone;
}

void Scout::start(const Point3* pTarget, const Point3* pBelow, const Point3* pAbove)
{
	pVtx = pTarget;
	pNear[0] = pBelow;
	pNear[1] = pAbove;
	pTet = nullptr;
	for (const Point3* p : {pVtx, pBelow, pAbove}) prefetch(p);
	step = Step::kChooseVertex;
}

unsigned Scout::facetsToCross(FacetTest facetTest) const
{
	const Point3* const corner[4] = {
	    pTet->getCorner(0), pTet->getCorner(1), pTet->getCorner(2), pTet->getCorner(3)};
	return facetTest(corner, *pVtx).negative;
}

Tet3* Scout::arrival(FacetTest facetTest) const
{
	// A dead tetrahedron stays visited until its record is used again, for some other place.
	if (pTet == nullptr || pTet->hasBeenVisited) return nullptr;
	return facetsToCross(facetTest) == 0 ? pTet : nullptr;
}

void Scout::advance(FacetTest facetTest)
{
	switch (step) {
	case Step::kChooseVertex: {
		const auto distance = [this](const Point3* p) {
			return p == nullptr ? DBL_MAX : squaredDistance(*pVtx, *p);
		};
		const Point3* p = pNear[distance(pNear[1]) < distance(pNear[0])];
		pTet = p == nullptr ? nullptr : p->getOneTet();
		prefetchTet(pTet);
		step = pTet == nullptr ? Step::kDone : Step::kLookAtTet;
		return;
	}
	case Step::kLookAtTet:
		prefetchCorners(*pTet);
		step = Step::kWalk;
		return;
	case Step::kWalk: {
		const unsigned beyond = facetsToCross(facetTest);
		for (int i = 0; i < 4; ++i) {
			if ((beyond >> i & 1U) == 0 || pTet->getOppTet(i) == nullptr) continue;
			pTet = pTet->getOppTet(i);
			prefetchTet(pTet);
			step = Step::kLookAtTet;
			return;
		}
		prefetchNeighbours(*pTet);
		step = Step::kFirstRing;
		return;
	}
	case Step::kFirstRing:
		for (int i = 0; i < 4; ++i) {
			const Tet3* pNeigh = pTet->getOppTet(i);
			if (pNeigh == nullptr) continue;
			prefetchNeighbours(*pNeigh);
			prefetchCorners(*pNeigh);
		}
		step = Step::kSecondRing;
		return;
	case Step::kSecondRing:
		for (int i = 0; i < 16; ++i) {
			const Tet3* pNeigh = pTet->getOppTet(i / 4);
			if (pNeigh == nullptr) continue;
			pNeigh = pNeigh->getOppTet(i % 4);
			if (pNeigh == nullptr) continue;
			prefetchNeighbours(*pNeigh);
			prefetchCorners(*pNeigh);
		}
		step = Step::kThirdRing;
		return;
	case Step::kThirdRing:
		for (int i = 0; i < 64; ++i) {
			const Tet3* pNeigh = pTet->getOppTet(i / 16);
			if (pNeigh == nullptr) continue;
			pNeigh = pNeigh->getOppTet(i / 4 % 4);
			if (pNeigh == nullptr || pNeigh == pTet) continue;
			pNeigh = pNeigh->getOppTet(i % 4);
			if (pNeigh == nullptr || pNeigh == pTet->getOppTet(i / 16)) continue;
			prefetchNeighbours(*pNeigh);
			prefetchCorners(*pNeigh);
		}
		step = Step::kDone;
		return;
	case Step::kDone:
		return;
	}
}

StartFinder::StartFinder(const std::vector<Point3*>& vBatch, FacetTest test)
    : vVertices(vBatch),
      facetTest(test),
      vByRank(alongFinerCurve({vBatch.begin(), vBatch.end()})),
      vRank(vBatch.size()),
      inMesh(vBatch.size())
{
	for (std::size_t rank = 0; rank < vByRank.size(); ++rank) {
		vRank[vByRank[rank]] = static_cast<std::uint32_t>(rank);
		if (vVertices[vByRank[rank]]->getOneTet() != nullptr) inMesh.add(rank);
	}
	bScouts = orderJumps();
}

const Point3* StartFinder::vertexAt(std::size_t rank) const
{
	return rank == RankSet::kNone ? nullptr : vVertices[vByRank[rank]];
}

bool StartFinder::orderJumps() const
{
	// So many vertices and what lies around them fit into the nearer caches.
	constexpr std::uint32_t kCached = 4096;
	std::size_t numJumps = 0;
	for (std::size_t i = 1; i < vRank.size(); ++i) {
		const auto [low, high] = std::minmax(vRank[i - 1], vRank[i]);
		numJumps += high - low > kCached;
	}
	return numJumps > vRank.size() / 2;
}

void StartFinder::beginStage(const std::vector<std::uint32_t>& vStage, std::size_t n)
{
	pStage = &vStage;
	next = n;
	if (!bScouts) return;
	for (Scout& scout : scouts) scout = Scout();
	for (std::size_t ahead = 0; ahead < kAhead; ++ahead) sendScout(next + ahead);
}

void StartFinder::sendScout(std::size_t n)
{
	if (n >= pStage->size()) return;
	const std::uint32_t i = (*pStage)[n];
	scouts[n % kAhead].start(
	    vVertices[i], vertexAt(inMesh.below(vRank[i])), vertexAt(inMesh.above(vRank[i])));
}

Tet3* StartFinder::nextStart(Tet3* pLastTet)
{
	const std::uint32_t i = (*pStage)[next];
	Tet3* pStart = bScouts ? scouts[next % kAhead].arrival(facetTest) : nullptr;
	if (pStart == nullptr) pStart = nearestStart(i, pLastTet);
	if (bScouts) {
		for (Scout& scout : scouts) scout.advance(facetTest);
		sendScout(next + kAhead); // its first step comes with the next insertion
	}
	++next;
	return pStart;
}

Tet3* StartFinder::nearestStart(std::uint32_t i, Tet3* pLastTet) const
{
	const Point3& target = *vVertices[i];
	Tet3* pNearest = pLastTet;
	double least = squaredDistance(target, *pLastTet->getCorner(0));
	for (const std::size_t rank : {inMesh.below(vRank[i]), inMesh.above(vRank[i])}) {
		const Point3* p = vertexAt(rank);
		if (p == nullptr || p->getOneTet() == nullptr) continue;
		const double distance = squaredDistance(target, *p);
		if (distance >= least) continue;
		least = distance;
		pNearest = p->getOneTet();
	}
	return pNearest;
}

} // namespace TULO3D
