// SPDX-License-Identifier: MIT
// Offers a near start to the walk where the curve of the vertex store cannot.
#include "StartFinder.h"
#include "Bits.h"
#include "FinerCurve.h"
#include "Prefetch.h"
#include "vectors.h"

#include <algorithm>

namespace TULO3D {

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

StartFinder::StartFinder(const std::vector<Point3*>& vBatch)
    : vVertices(vBatch), vRank(vBatch.size()), inMesh(vBatch.size())
{
	vAlong.reserve(vBatch.size());
	for (const std::uint32_t i : alongFinerCurve({vBatch.begin(), vBatch.end()})) {
		vRank[i] = static_cast<std::uint32_t>(vAlong.size());
		vAlong.push_back(vBatch[i]);
		if (vBatch[i]->getOneTet() != nullptr) add(i);
	}
}

const Point3* StartFinder::vertexAt(std::size_t rank) const
{
	return rank == RankSet::kNone ? nullptr : vAlong[rank];
}

std::array<const Point3*, 2> StartFinder::neighbours(std::size_t i) const
{
	return {vertexAt(inMesh.below(vRank[i])), vertexAt(inMesh.above(vRank[i]))};
}

void StartFinder::prefetchNeighbours(std::size_t i) const
{
	prefetch<Cache::kSecond>(&vAlong[vRank[i]]);
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

Tet3* StartFinder::nearestStart(std::size_t i, Tet3* pLastTet) const
{
	const Point3& target = vertex(i);
	Tet3* pNearest = pLastTet;
	double least = squaredDistance(target, *pLastTet->getCorner(0));
	for (const Point3* p : neighbours(i)) {
		if (p == nullptr || p->getOneTet() == nullptr || p->getOneTet()->hasBeenVisited) continue;
		const double distance = squaredDistance(target, *p);
		if (distance >= least) continue;
		least = distance;
		pNearest = p->getOneTet();
	}
	return pNearest;
}

} // namespace TULO3D
