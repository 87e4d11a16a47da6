// SPDX-License-Identifier: MIT
// The part of a mesh around one range of the curve: what it begins with.
#include "tiles/Tile.h"
#include "ardo_tools/Bits.h"
#include "ardo_tools/RadixSort.h"
#include "lookahead/InsertionOrder.h"

#include <algorithm>
#include <array>

namespace TULO3D {

namespace {

/// Foreign leaves are known that are nearer than this part of their own diagonal.
constexpr double kNear = 0.4;

/// A vertex by its rank: the place where it is made.
using RankedPlace = Keyed<std::uint32_t, std::uint32_t>;

} // namespace

Tile::Tile(const CurvePoints& curvePoints, const BoxTree& boxTree, PositionRange ownRange,
    const BatchTests& tests)
    : points(curvePoints), tree(boxTree), own(ownRange), engine(nullptr, tests)
{
}

Point3* Tile::createVertex(std::uint32_t position)
{
	Point3* pVtx = engine.hc3.createVertex(points.point(position), points.rank(position));
	pVtx->setCustomIndex(static_cast<int>(position));
	return pVtx;
}

void Tile::chooseKnown()
{
	for (std::uint32_t level = 0; level < tree.numLevels(); ++level) {
		vKnown.emplace_back(tree.numNodes(level), std::uint8_t{0});
	}
	const std::uint32_t lastLeaf = (own.last + BoxTree::kLeafSize - 1) / BoxTree::kLeafSize;
	for (std::uint32_t i = own.first / BoxTree::kLeafSize; i < lastLeaf; ++i) vKnown[0][i] = 1;
	for (std::uint32_t i = 0; i < tree.numLeaves(); ++i) {
		if (points.lastOfLeaf(i) <= i * BoxTree::kLeafSize) vKnown[0][i] = 1; // it has no points
	}
	markKnownNodes();
	if (isKnown(tree.root())) return;
	markNear();
	markKnownNodes();
}

void Tile::markKnownNodes()
{
	for (std::uint32_t level = 1; level < tree.numLevels(); ++level) {
		for (std::uint32_t i = 0; i < tree.numNodes(level); ++i) markIfKnown({level, i});
	}
}

void Tile::markIfKnown(const BoxNode& node)
{
	bool bAll = true;
	tree.forEachChild(node, [&](const BoxNode& child) { bAll &= isKnown(child); });
	vKnown[node.level][node.index] = bAll;
}

void Tile::markNear()
{
	const auto isNear = [this](const Box& box, const BoxNode& node) {
		const Box& other = tree.box(node);
		return squaredDistance(box, other) <= kNear * kNear * squaredDiagonal(other);
	};
	std::vector<std::uint32_t> vNear;
	forEachOwnGroup([&](const Box& box, std::uint32_t firstLeaf, std::uint32_t lastLeaf) {
		gatherUnknownLeaves(vNear, [&](const BoxNode& node) { return isNear(box, node); });
		for (const std::uint32_t other : vNear) {
			for (std::uint32_t leaf = firstLeaf; leaf < lastLeaf && !vKnown[0][other]; ++leaf) {
				vKnown[0][other] = isNear(tree.box({0, leaf}), {0, other});
			}
		}
	});
}

std::vector<std::uint32_t> Tile::foreignToBeginWith() const
{
	// The vertices of the lowest ranks are spread over all.
	std::vector<std::uint32_t> vLowest = points.lowest();
	std::sort(vLowest.begin(), vLowest.end());
	std::vector<std::uint32_t> vPositions;
	auto itLowest = vLowest.begin();
	for (std::uint32_t leaf = 0; leaf < tree.numLeaves(); ++leaf) {
		const bool bKnown = isKnown({0, leaf});
		const bool bLowest = itLowest != vLowest.end() && *itLowest / BoxTree::kLeafSize == leaf;
		if (!bKnown && !bLowest) continue;
		tree.forEachPoint(leaf, [&](std::uint32_t position) {
			const bool bWanted = itLowest != vLowest.end() && *itLowest == position;
			itLowest += bWanted;
			if ((bKnown || bWanted) && !own.contains(position)) vPositions.push_back(position);
		});
	}
	return vPositions;
}

void Tile::begin()
{
	chooseKnown();
	// Vertices are made in one piece, in the order of the curve, so that what is near is near in memory, too.
	const std::vector<std::uint32_t> vForeign = foreignToBeginWith();
	foreign.insert(vForeign.begin(), vForeign.end());
	const std::size_t num = own.size() + vForeign.size();
	engine.hc3.vertexPool.reserveRun(static_cast<int>(num));
	std::vector<RankedPlace> vRanked;
	vRanked.reserve(num);
	Point3* pFirst = nullptr;
	const auto create = [&](std::uint32_t position) {
		Point3* pVtx = createVertex(position);
		if (vRanked.empty()) pFirst = pVtx;
		vRanked.push_back({static_cast<std::uint32_t>(points.rank(position)),
		    static_cast<std::uint32_t>(vRanked.size())});
	};
	for (std::uint32_t position = own.first; position < own.last; ++position) create(position);
	for (const std::uint32_t position : vForeign) create(position);
	pFirstOwn = pFirst;
	if (points.isTiny() && engine.batchTests.pForTiny != nullptr) {
		engine.batchTests = *engine.batchTests.pForTiny;
	}
	sortByKey(vRanked, highestBit(points.size()) + 1);
	std::array<Point3*, 4> first{};
	for (std::size_t i = 0; i < 4; ++i) first[i] = pFirst + vRanked[i].value;
	std::vector<Point3*> vVertices;
	vVertices.reserve(num);
	for (std::size_t i = num; i-- > 4;) vVertices.push_back(pFirst + vRanked[i].value);
	vRanked = {};
	Tet3* pFirstTet = engine.startWith(first);
	engine.insertInOrder(vVertices,
	    InsertionOrder::lastToFirst(static_cast<std::uint32_t>(vVertices.size())), pFirstTet);
}

} // namespace TULO3D
