// SPDX-License-Identifier: MIT
// Offers a near start to the walk where the curve of the vertex store cannot.
#include "StartFinder.h"
#include "KeySort.h"
#include "Prefetch.h"
#include "vectors.h"

#include <algorithm>
#include <cmath>

namespace TULO3D {

namespace {

constexpr unsigned kLevels = 21;

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

/// A vertex of the batch and its place on the finer curve.
struct KeyedPosition
{
	std::uint64_t key;
	std::uint32_t position;
};

/// A range along one axis that holds all but the outermost of the points.
struct Range
{
	double low;
	double high;
};

Range bulkOf(const std::vector<Point3*>& vVertices, double (Point3::*coordinate)() const)
{
	constexpr std::size_t kSamples = 1024;
	const std::size_t step = vVertices.size() / kSamples + 1;
	std::vector<double> v;
	for (std::size_t i = 0; i < vVertices.size(); i += step)
		v.push_back((vVertices[i]->*coordinate)());
	std::sort(v.begin(), v.end());
	const std::size_t outer = v.size() / 64;
	const double low = v[outer], high = v[v.size() - 1 - outer];
	return {low - (high - low), high + (high - low)}; // what is outside shares the outermost cells
}

/// The 21 lowest bits of `v`, two zeros behind each.
std::uint64_t spread(std::uint64_t v)
{
	v = (v | v << 32U) & 0x1f00000000ffffU;
	v = (v | v << 16U) & 0x1f0000ff0000ffU;
	v = (v | v << 8U) & 0x100f00f00f00f00fU;
	v = (v | v << 4U) & 0x10c30c30c30c30c3U;
	return (v | v << 2U) & 0x1249249249249249U;
}

/// The batch along a Morton curve through cubes: isotropic, and as fine as the bulk needs.
std::vector<std::uint32_t> alongFinerCurve(const std::vector<Point3*>& vVertices)
{
	const Range x = bulkOf(vVertices, &Point3::x);
	const Range y = bulkOf(vVertices, &Point3::y);
	const Range z = bulkOf(vVertices, &Point3::z);
	const double side = std::max({x.high - x.low, y.high - y.low, z.high - z.low});
	constexpr double kCells = static_cast<double>(1U << kLevels);
	const double scale = side > 0.0 ? kCells / side : 0.0;
	const auto cell = [scale](double coordinate, const Range& range) {
		const double c = (coordinate - range.low) * scale;
		return spread(static_cast<std::uint64_t>(c > 0.0 ? std::min(c, kCells - 1.0) : 0.0));
	};

	std::vector<KeyedPosition> vKeyed;
	vKeyed.reserve(vVertices.size());
	for (const Point3* p : vVertices) {
		const auto position = static_cast<std::uint32_t>(vKeyed.size());
		vKeyed.push_back(
		    {cell(p->x(), x) << 2U | cell(p->y(), y) << 1U | cell(p->z(), z), position});
	}
	sortByKey(vKeyed, 3 * kLevels);
	std::vector<std::uint32_t> vByRank;
	vByRank.reserve(vKeyed.size());
	for (const KeyedPosition& keyed : vKeyed) vByRank.push_back(keyed.position);
	return vByRank;
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

StartFinder::StartFinder(const std::vector<Point3*>& vBatch)
    : vVertices(vBatch),
      vByRank(alongFinerCurve(vBatch)),
      vRank(vBatch.size()),
      inMesh(vBatch.size())
{
	for (std::size_t rank = 0; rank < vByRank.size(); ++rank) {
		vRank[vByRank[rank]] = static_cast<std::uint32_t>(rank);
		if (vVertices[vByRank[rank]]->getOneTet() != nullptr) inMesh.add(rank);
	}
}

const Point3* StartFinder::neighbourOf(std::uint32_t i) const
{
	std::size_t rank = inMesh.below(vRank[i]);
	if (rank == RankSet::kNone) rank = inMesh.above(vRank[i]);
	return rank == RankSet::kNone ? nullptr : vVertices[vByRank[rank]];
}

void StartFinder::lookAhead(const std::vector<std::uint32_t>& vStage, std::size_t n)
{
	// Each step needs what the one before it has asked for two insertions ago.
	if (n + 6 < vStage.size()) {
		aheadVertex[(n + 6) % kAhead] = neighbourOf(vStage[n + 6]);
		prefetch(aheadVertex[(n + 6) % kAhead]);
	}
	const Point3* pVtx = aheadVertex[(n + 4) % kAhead];
	const Tet3* pTet = pVtx == nullptr ? nullptr : pVtx->getOneTet();
	aheadTet[(n + 4) % kAhead] = pTet;
	prefetchTet(pTet);

	const Tet3* pNext = aheadTet[(n + 2) % kAhead];
	if (pNext != nullptr) {
		prefetchNeighbours(*pNext);
		prefetchCorners(*pNext);
	}
	const Tet3* pNow = aheadTet[(n + 1) % kAhead];
	for (int j = 0; pNow != nullptr && j < 4; ++j) {
		const Tet3* pNeigh = pNow->getOppTet(j);
		if (pNeigh == nullptr) continue;
		prefetchNeighbours(*pNeigh);
		prefetchCorners(*pNeigh);
	}
}

Tet3* StartFinder::nearerStart(std::size_t i, Tet3* pLastTet) const
{
	const Point3& target = *vVertices[i];
	Tet3* pNearest = pLastTet;
	double least = squaredDistance(target, *pLastTet->getCorner(0));
	for (const std::size_t rank : {inMesh.below(vRank[i]), inMesh.above(vRank[i])}) {
		if (rank == RankSet::kNone) continue;
		const Point3& candidate = *vVertices[vByRank[rank]];
		const double distance = squaredDistance(target, candidate);
		if (distance >= least || candidate.getOneTet() == nullptr) continue;
		least = distance;
		pNearest = candidate.getOneTet();
	}
	return pNearest;
}

} // namespace TULO3D
