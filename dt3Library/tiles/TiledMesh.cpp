// SPDX-License-Identifier: MIT
// The mesh of a batch, made in tiles.
#include "tiles/TiledMesh.h"
#include "tiles/BoxTree.h"
#include "tiles/CurveOrder.h"
#include "tiles/CurvePoints.h"
#include "tiles/Tile.h"
#include "tiles/TileArrays.h"
#include "tiles/TileProgress.h"
#include "tiles/parallel.h"
#include "tools.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

namespace TULO3D {

namespace {

using Corners = std::array<std::int32_t, 4>;

/// Ranges of whole leaves, even in count.
std::vector<PositionRange> cut(std::uint32_t numPoints, std::size_t numTiles)
{
	const std::size_t numLeaves = (numPoints + BoxTree::kLeafSize - 1) / BoxTree::kLeafSize;
	numTiles = std::clamp<std::size_t>(numTiles, 1, numLeaves);
	const auto firstOf = [=](std::size_t i) {
		const std::size_t leaf = i * numLeaves / numTiles;
		return static_cast<std::uint32_t>(
		    std::min<std::size_t>(leaf * BoxTree::kLeafSize, numPoints));
	};
	std::vector<PositionRange> vTiles;
	for (std::size_t i = 0; i < numTiles; ++i) vTiles.push_back({firstOf(i), firstOf(i + 1)});
	return vTiles;
}

/// Of each tile, its checksums with all tiles.
void expectAgreement(const std::vector<std::vector<std::uint64_t>>& vSums)
{
	for (std::size_t i = 0; i < vSums.size(); ++i) {
		for (std::size_t j = 0; j < i; ++j) {
			CONDITION_CHECK_AS(
			    vSums[i][j] == vSums[j][i], "two tiles have found the same tetrahedra");
		}
	}
}

template <typename T>
std::unique_ptr<T[]> copyOf(const std::vector<T>& v)
{
	std::unique_ptr<T[]> copy(new T[v.size()]);
	std::copy(v.begin(), v.end(), copy.get());
	return copy;
}

} // namespace

ParallelMesh triangulateInTiles(const double* pCoordinates, std::size_t numPoints,
    std::size_t numTiles, unsigned numThreads,
    const std::function<bool(std::size_t, std::size_t)>& progress)
{
	const CurveOrder order(pCoordinates, numPoints, numThreads);
	ParallelMesh mesh;
	mesh.numVertices = order.size();
	mesh.vertexOfPoint = copyOf(order.vertexOfPoint());
	mesh.tetOfVertex.reset(new std::int32_t[order.size()]);
	if (order.isFlat()) {
		mesh.corners.reset(new std::int32_t[0]);
		mesh.neighbours.reset(new std::int32_t[0]);
		std::fill_n(mesh.tetOfVertex.get(), order.size(), -1);
		return mesh;
	}

	const CurvePoints points = order.points();
	const BoxTree tree(points);
	const std::vector<PositionRange> vRanges = cut(order.size(), numTiles);
	std::vector<std::unique_ptr<Tile>> vTiles(vRanges.size());
	std::vector<std::unique_ptr<TileArrays>> vArrays(vRanges.size());
	TileProgress tileProgress(progress, numPoints);
	std::vector<std::uint32_t> vFirstOfOwner(order.size() + std::size_t{1}, 0);
	inParallel(vRanges.size(), numThreads, [&](std::size_t i) {
		vTiles[i] = std::make_unique<Tile>(points, tree, vRanges[i], bestTests());
		vTiles[i]->setProgress(tileProgress.ofTile(vRanges[i]));
		vTiles[i]->begin();
		vTiles[i]->complete();
		vArrays[i] = std::make_unique<TileArrays>(*vTiles[i]);
		vArrays[i]->count(vFirstOfOwner.data() + vRanges[i].first);
	});
	std::size_t numTets = 0;
	for (std::uint32_t& count : vFirstOfOwner) {
		numTets += count;
		count = static_cast<std::uint32_t>(numTets);
	}
	CONDITION_CHECK_AS(numTets <= std::numeric_limits<std::int32_t>::max(),
	    "at most 2147483647 tetrahedra have numbers");
	mesh.numTets = numTets;
	mesh.corners.reset(new std::int32_t[4 * numTets]);
	mesh.neighbours.reset(new std::int32_t[4 * numTets]);
	const auto arraysOf = [&](std::size_t i) {
		return OwnedArrays{vFirstOfOwner.data() + vRanges[i].first, mesh.corners.get(),
		    mesh.neighbours.get(), order.numbers().data()};
	};
	std::vector<std::vector<std::uint64_t>> vSums(vRanges.size());
	inParallel(vRanges.size(), numThreads, [&](std::size_t i) {
		vArrays[i]->write(arraysOf(i));
		vSums[i] = vArrays[i]->checksums(vRanges);
	});
	expectAgreement(vSums);

	const auto numberOf = [&](const FacetSide& side) {
		if (!side.isForeign()) return side.number;
		Corners corners{};
		for (std::size_t i = 0; i < 4; ++i) corners[i] = order.numbers()[side.position[i]];
		const std::int32_t number =
		    TileArrays::find(corners, &vFirstOfOwner[side.position[0]], mesh.corners.get());
		CONDITION_CHECK_AS(number >= 0, "two tiles have found the same tetrahedron");
		return number;
	};
	inParallel(vRanges.size(), numThreads, [&](std::size_t i) {
		TileArrays& arrays = *vArrays[i];
		arrays.linkForeign([&](const FacetSide& side, int facet, const FacetSide* pOther) {
			mesh.neighbours[4 * std::size_t(numberOf(side)) + std::size_t(facet)] =
			    pOther == nullptr ? TileArrays::kHull : numberOf(*pOther);
		});
		arrays.forEachForeign([&](const TetPositions& position) {
			arrays.noteAtVertices(position, numberOf({position, TileArrays::kForeign}));
		});
		// Only now, and once: vertices of several tiles share the cache lines of this array.
		for (std::uint32_t j = 0; j < vRanges[i].size(); ++j) {
			mesh.tetOfVertex[std::size_t(order.numbers()[vRanges[i].first + j])] =
			    arrays.tetOfOwn()[j];
		}
		vArrays[i].reset(); // here, where a large pool says nothing about its end
		vTiles[i].reset();
	});
	CONDITION_CHECK_AS(
	    !progress || progress(numPoints, numPoints), "the progress handler lets it go on");
	return mesh;
}

ParallelMesh triangulateInParallel(const double* pCoordinates, std::size_t numPoints,
    unsigned numThreads, const std::function<bool(std::size_t, std::size_t)>& progress)
{
	if (numThreads == 0) numThreads = std::max(1U, std::thread::hardware_concurrency());
	constexpr std::size_t kLeastPerTile = 4096;
	const std::size_t numTiles = std::clamp<std::size_t>(numPoints / kLeastPerTile, 1, numThreads);
	return triangulateInTiles(pCoordinates, numPoints, numTiles, numThreads, progress);
}

} // namespace TULO3D
