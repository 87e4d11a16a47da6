// SPDX-License-Identifier: MIT
// Walk starts from Morton order, for batches in which the curve of the vertex store has no locality.
#include "lookahead/WalkStart.h"
#include "geometry/vectors.h"
#include "mesh/Prefetch.h"
#include "store/MortonOrder.h"

#include <algorithm>

namespace TULO3D {

WalkStart::WalkStart(const std::vector<Point3*>& vBatch)
    : vVertices(vBatch), vRank(vBatch.size()), inMesh(vBatch.size())
{
	vMorton.reserve(vBatch.size());
	for (const std::uint32_t i : mortonOrder({vBatch.begin(), vBatch.end()})) {
		vRank[i] = static_cast<std::uint32_t>(vMorton.size());
		vMorton.push_back(vBatch[i]);
		if (vBatch[i]->getOneTet() != nullptr) add(i);
	}
}

const Point3* WalkStart::vertexAt(std::size_t rank) const
{
	return rank == BitsetTree::kNone ? nullptr : vMorton[rank];
}

std::array<const Point3*, 2> WalkStart::neighbours(std::size_t i) const
{
	return {vertexAt(inMesh.below(vRank[i])), vertexAt(inMesh.above(vRank[i]))};
}

void WalkStart::prefetchNeighbours(std::size_t i) const
{
	prefetch<Cache::kSecond>(&vMorton[vRank[i]]);
}

bool WalkStart::orderJumps() const
{
	// So many vertices, with the tetrahedra around them, fit into the L2 cache.
	constexpr std::uint32_t kCached = 4096;
	std::size_t numJumps = 0;
	for (std::size_t i = 1; i < vRank.size(); ++i) {
		const auto [low, high] = std::minmax(vRank[i - 1], vRank[i]);
		numJumps += high - low > kCached;
	}
	return numJumps > vRank.size() / 2;
}

Tet3* WalkStart::nearest(std::size_t i, Tet3* pLastTet) const
{
	const Point3& target = vertex(i);
	Tet3* pNearest = pLastTet;
	double least = squaredDistance(target, *pLastTet->getCorner(0));
	for (const Point3* p : neighbours(i)) {
		// A tetrahedron that the host has left marked would be refused as a start.
		if (p == nullptr || p->getOneTet() == nullptr || p->getOneTet()->hasBeenVisited) continue;
		const double distance = squaredDistance(target, *p);
		if (distance >= least) continue;
		least = distance;
		pNearest = p->getOneTet();
	}
	return pNearest;
}

} // namespace TULO3D
