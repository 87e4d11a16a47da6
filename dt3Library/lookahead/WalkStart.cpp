// SPDX-License-Identifier: MIT
// Walk starts from Morton order, for batches in which the curve of the vertex store has no locality.
#include "lookahead/WalkStart.h"
#include "mesh/Prefetch.h"
#include "store/MortonOrder.h"
#include "store/NearestStart.h"

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
	NearestStart nearest(vertex(i), pLastTet);
	for (const Point3* p : neighbours(i)) {
		if (p != nullptr) nearest.consider(*p);
	}
	return nearest.tet();
}

} // namespace TULO3D
