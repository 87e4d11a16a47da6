// SPDX-License-Identifier: MIT
// The mesh of a batch, made in tiles.
#include "tiles/TiledMesh.h"
#include "tiles/BoxTree.h"
#include "tiles/CurveOrder.h"
#include "tiles/Tile.h"
#include "tiles/TileArrays.h"
#include "tiles/TileProgress.h"
#include "tiles/parallel.h"
#include "tools.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

namespace TULO3D {

namespace {

/// Ranges of whole leaves, even in count.
std::vector<PositionRange> cut(const BoxTree& tree, std::uint32_t numPoints, std::size_t numTiles)
{
	const std::size_t numLeaves = tree.numLeaves();
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

void expectAgreement(const std::vector<std::unique_ptr<TileArrays>>& vArrays,
    const std::vector<PositionRange>& vTiles)
{
	std::vector<std::vector<std::uint64_t>> vSums;
	vSums.reserve(vArrays.size());
	for (const auto& pArrays : vArrays) vSums.push_back(pArrays->checksums(vTiles));
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
	const CurveOrder order(pCoordinates, numPoints);
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

	const BoxTree tree(order.points());
	const std::vector<PositionRange> vRanges = cut(tree, order.size(), numTiles);
	std::vector<std::unique_ptr<Tile>> vTiles(vRanges.size());
	std::vector<std::unique_ptr<TileArrays>> vArrays(vRanges.size());
	TileProgress tileProgress(progress, numPoints);
	SharedArrays shared{mesh.tetOfVertex.get(), nullptr, nullptr, {}};
	shared.vFirstOfOwner.assign(order.size() + std::size_t{1}, 0);
	inParallel(vRanges.size(), numThreads, [&](std::size_t i) {
		vTiles[i] = std::make_unique<Tile>(order, tree, vRanges[i], bestTests());
		vTiles[i]->setProgress(tileProgress.ofTile(vRanges[i]));
		vTiles[i]->begin();
		vTiles[i]->complete();
		vArrays[i] = std::make_unique<TileArrays>(*vTiles[i], order);
		vArrays[i]->count(shared);
	});
	std::size_t numTets = 0;
	for (std::uint32_t& count : shared.vFirstOfOwner) {
		numTets += count;
		count = static_cast<std::uint32_t>(numTets);
	}
	CONDITION_CHECK_AS(numTets <= std::numeric_limits<std::int32_t>::max(),
	    "at most 2147483647 tetrahedra have numbers");
	mesh.numTets = numTets;
	mesh.corners.reset(new std::int32_t[4 * numTets]);
	mesh.neighbours.reset(new std::int32_t[4 * numTets]);
	shared.pCorners = mesh.corners.get();
	shared.pNeighbours = mesh.neighbours.get();
	inParallel(
	    vRanges.size(), numThreads, [&](std::size_t i) { vArrays[i]->writeCorners(shared); });
	expectAgreement(vArrays, vRanges);
	inParallel(vRanges.size(), numThreads, [&](std::size_t i) {
		vArrays[i]->writeNeighbours(shared);
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
