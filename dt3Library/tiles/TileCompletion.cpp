// SPDX-License-Identifier: MIT
// The part of a mesh around one range of the curve: the vertices that it lacks.
#include "geometry/vectors.h"
#include "lookahead/InsertionOrder.h"
#include "mesh/LiveTets.h"
#include "mesh/Prefetch.h"
#include "predicates/RankRule.h"
#include "tiles/Tile.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <functional>

namespace TULO3D {

namespace {

/// Up to so many diagonals of a leaf the distance to unknown vertices is measured from the leaf itself. Nearly all balls
/// are smaller than that.
constexpr double kFarthest = 1;

// Distances of prefetching, in tetrahedra.
constexpr std::ptrdiff_t kTetsAhead = 32;
constexpr std::ptrdiff_t kVerticesAhead = 16;

} // namespace

double Tile::squaredDistanceToUnknown(const Box& box) const
{
	double least = DBL_MAX;
	std::vector<std::uint32_t> vNone;
	gatherUnknownLeaves(vNone, [&](const BoxNode& node) {
		const double here = squaredDistance(box, tree.box(node));
		if (here >= least) return false;
		// Boxes that are small as seen from here are not looked into.
		const bool bOpen = node.level > 0 && squaredDiagonal(tree.box(node)) > here;
		if (!bOpen) least = here;
		return bOpen;
	});
	return least;
}

void Tile::measureClearance()
{
	constexpr double kRoundDown = 1 - 0x1p-48; // to the safe side
	vClearance.reserve(own.size() / BoxTree::kLeafSize + 1);
	std::vector<std::uint32_t> vNear;
	forEachOwnGroup([&](const Box& box, std::uint32_t firstLeaf, std::uint32_t lastLeaf) {
		double farthest = 0;
		for (std::uint32_t leaf = firstLeaf; leaf < lastLeaf; ++leaf) {
			farthest = std::max(farthest, squaredDiagonal(tree.box({0, leaf})));
		}
		farthest *= kFarthest * kFarthest;
		const double fromGroup = squaredDistanceToUnknown(box);
		if (fromGroup >= farthest) {
			vClearance.insert(vClearance.end(), lastLeaf - firstLeaf, fromGroup * kRoundDown);
			return;
		}
		gatherUnknownLeaves(vNear,
		    [&](const BoxNode& node) { return squaredDistance(box, tree.box(node)) < farthest; });
		for (std::uint32_t leaf = firstLeaf; leaf < lastLeaf; ++leaf) {
			double least = farthest;
			for (const std::uint32_t other : vNear) {
				least = std::min(least, squaredDistance(tree.box({0, leaf}), tree.box({0, other})));
			}
			vClearance.push_back(least * kRoundDown);
		}
	});
}

double Tile::clearance(const Point3& vtx) const
{
	if (!isOwn(vtx)) return 0;
	return vClearance[(position(vtx) - own.first) / BoxTree::kLeafSize];
}

bool Tile::mayHoldUnknown(const Tet3& tet) const
{
	for (int i = 0; i < 4; ++i) {
		const Point3& vtx = *tet.getCorner(i);
		const double limit = clearance(vtx) - DBL_MIN;
		bool bNear = true;
		for (int j = 0; j < 4; ++j) bNear &= squaredDistance(vtx, *tet.getCorner(j)) < limit;
		if (bNear) return false;
	}
	return true;
}

bool Tile::hasClearBall(const Tet3& tet) const
{
	double most = 0;
	for (int i = 0; i < 4; ++i) most = std::max(most, clearance(*tet.getCorner(i)));
	return ConflictRegion::ofTet(tet).hasRadiusBelow(0.25 * most);
}

Tile::Doubt Tile::doubtOf(const Tet3& tet) const
{
	int numForeign = 0;
	bool bHull = false;
	for (int i = 0; i < 4; ++i) {
		numForeign += !isOwn(*tet.getCorner(i));
		bHull |= tet.getOppTet(i) == nullptr;
	}
	if (numForeign == 4) return Doubt::kNone;
	return bHull || numForeign == 3 ? Doubt::kConflict : Doubt::kInside;
}

void Tile::consider(Tet3* pTet)
{
	const Doubt doubt = doubtOf(*pTet);
	if (doubt == Doubt::kNone || (doubt == Doubt::kInside && !mayHoldUnknown(*pTet))) return;
	vDoubtful.push_back(pTet);
}

template <typename Region, typename Test>
std::uint32_t Tile::findUnknown(const Region& region, Test test)
{
	std::uint32_t found = kNone;
	double least = 0;
	vSearch.assign(1, {tree.root(), region.leastIn(tree.box(tree.root()))});
	while (!vSearch.empty()) {
		const Searched next = vSearch.back();
		vSearch.pop_back();
		if (next.least >= least) continue;
		if (next.node.level > 0) {
			const auto numBefore = static_cast<std::ptrdiff_t>(vSearch.size());
			tree.forEachChild(next.node, [&](const BoxNode& child) {
				if (isKnown(child)) return;
				const double leastInChild = region.leastIn(tree.box(child));
				if (leastInChild < least) vSearch.push_back({child, leastInChild});
			});
			// The most promising one comes first.
			std::sort(vSearch.begin() + numBefore, vSearch.end(),
			    [](const Searched& a, const Searched& b) { return a.least > b.least; });
			continue;
		}
		unsigned cost = BoxTree::kLeafSize;
		tree.forEachPoint(next.node.index, [&](std::uint32_t position) {
			const double leastHere = region.leastAt(points.point(position));
			if (leastHere >= least || isIn(position)) return;
			cost += kCostOfExactTest;
			if (!test(position)) return;
			found = position;
			least = leastHere;
		});
		std::uint16_t& spent = vSpent[next.node.index];
		spent = static_cast<std::uint16_t>(std::min(spent + cost, kPatience));
		if (spent == kPatience) takeLeaf(next.node.index);
	}
	return found;
}

std::uint32_t Tile::findInside(const Tet3& tet)
{
	return findUnknown(TetRegion(tet), [&](std::uint32_t position) {
		for (int i = 0; i < 4; ++i) {
			const Point3 p = points.point(position);
			if (engine.predicates.getOrientation3(&tet, i, &p) == ORIENTATION3_NEGATIVE)
				return false;
		}
		return true;
	});
}

std::uint32_t Tile::findInConflict(const Tet3& tet)
{
	if (!hasClearBall(tet)) {
		RankedTest ranked = rankedTest(tet);
		const std::uint32_t found =
		    findUnknown(ConflictRegion::ofTet(tet), [&](std::uint32_t position) {
			    const Point3 query = points.point(position);
			    ranked.pQuery = &query;
			    ranked.rank[4] = points.rank(position);
			    return isInConflictByRank(engine.predicates, ranked);
		    });
		if (found != kNone) return found;
	}
	for (int i = 0; i < 4; ++i) {
		if (tet.getOppTet(i) != nullptr) continue;
		const std::uint32_t found =
		    findUnknown(ConflictRegion::beyondFacet(tet, i), [&](std::uint32_t position) {
			    const Point3 p = points.point(position);
			    return engine.predicates.getOrientation3(&tet, i, &p) == ORIENTATION3_NEGATIVE;
		    });
		if (found != kNone) return found;
	}
	return kNone;
}

std::uint32_t Tile::findMissing(const Tet3& tet)
{
	switch (doubtOf(tet)) {
	case Doubt::kNone:
		return kNone;
	case Doubt::kInside:
		return findInside(tet);
	case Doubt::kConflict:
		return findInConflict(tet);
	}
	return kNone;
}

void Tile::takeLeaf(std::uint32_t leaf)
{
	tree.forEachPoint(leaf, [this](std::uint32_t position) { vMissing.push_back(position); });
	vKnown[0][leaf] = 1;
	for (BoxNode node{1, leaf / BoxTree::kFanOut}; node.level < tree.numLevels();
	     node = {node.level + 1, node.index / BoxTree::kFanOut}) {
		markIfKnown(node);
	}
}

void Tile::insertMissing()
{
	++rounds;
	std::sort(vMissing.begin(), vMissing.end());
	vMissing.erase(std::unique(vMissing.begin(), vMissing.end()), vMissing.end());
	const auto isHere = [this](std::uint32_t position) { return isIn(position); };
	vMissing.erase(std::remove_if(vMissing.begin(), vMissing.end(), isHere), vMissing.end());
	std::vector<Point3*> vNew;
	for (const std::uint32_t position : vMissing) {
		vNew.push_back(createVertex(position));
		foreign.insert(position);
	}
	vMissing.clear();
	engine.insertInOrder(
	    vNew, InsertionOrder(static_cast<std::uint32_t>(vNew.size())), pFirstOwn->getOneTet());

	std::vector<Tet3*> vStar;
	for (Point3* pVtx : vNew) {
		Dt3::getTetsAroundVertex(pVtx, vStar);
		for (Tet3* pTet : vStar) consider(pTet);
	}
	// Once each: a tetrahedron may have several of the new vertices.
	std::sort(vDoubtful.begin(), vDoubtful.end(), std::less<>());
	vDoubtful.erase(std::unique(vDoubtful.begin(), vDoubtful.end()), vDoubtful.end());
}

void Tile::complete()
{
	if (isKnown(tree.root())) return;
	measureClearance();
	vSpent.assign(tree.numLeaves(), 0);
	// From now on vertices do not come by ascending rank.
	engine.batchTests = *engine.batchTests.pByRank;

	const LiveTets live = engine.liveTets();
	live.forEachRun(0, live.size(), [this](Tet3* pFirst, Tet3* pLast) {
		for (Tet3* pTet = pFirst; pTet != pLast; ++pTet) {
			if (pLast - pTet > kVerticesAhead) {
				prefetchTet(pTet + kTetsAhead);
				prefetchCorners(pTet[kVerticesAhead]);
			}
			consider(pTet);
		}
	});
	while (!vDoubtful.empty()) {
		std::vector<Tet3*> vStays;
		for (Tet3* pTet : vDoubtful) {
			const std::uint32_t position = findMissing(*pTet);
			if (position == kNone) continue;
			vMissing.push_back(position);
			vStays.push_back(pTet);
		}
		vDoubtful.clear();
		if (vMissing.empty()) break;
		insertMissing();
		// Beyond a hull facet of such a one there may be more.
		for (Tet3* pTet : vStays) {
			if (!pTet->hasBeenVisited) consider(pTet);
		}
	}
}

} // namespace TULO3D
