// SPDX-License-Identifier: MIT
// How points arrive: one, or a batch in stages from coarse to fine.
#include "Dt3.h"
#include "StartFinder.h"
#include "Underflow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <optional>

namespace TULO3D {

namespace {

/// The largest magnitude for which no product of an exact test can overflow.
constexpr double kMaxCoordinate = 1e60;
constexpr const char* kRangeText = "coordinates are finite and at most 1e60 in magnitude";

/// Positions in the list of vertices.
using Stages = std::vector<std::vector<std::uint32_t>>;

/// Appends the middle of [lo, hi) to the stage of this depth and its halves to the deeper stages;
/// at the last depth, everything that is left.
void distribute(std::uint32_t lo, std::uint32_t hi, std::size_t depth, Stages& stages)
{
	while (hi - lo >= 2 && depth + 1 < stages.size()) {
		const std::uint32_t mid = lo + (hi - lo) / 2;
		stages[depth].push_back(mid);
		++depth;
		distribute(lo, mid, depth, stages);
		lo = mid + 1;
	}
	for (; lo < hi; ++lo) stages[depth].push_back(lo);
}

/// A walk from the last vertex of the curve takes some ten facet tests. Several times as many, over
/// a while, and the curve does not lead from vertex to vertex.
constexpr std::size_t kWhile = 256;
constexpr std::size_t kLongWalk = 40;

} // namespace

bool Dt3::accepts(const Point3& p)
{
	const bool bAccepted = std::abs(p.x()) <= kMaxCoordinate && std::abs(p.y()) <= kMaxCoordinate &&
	    std::abs(p.z()) <= kMaxCoordinate; // false for NaN
	if (bAccepted && mayUnderflow(p)) predicates.expectUnderflow();
	return bAccepted;
}

Point3* Dt3::insert(Point3& p)
{
	CONDITION_CHECK_AS(accepts(p), kRangeText);
	Tet3* pLastTet = nullptr;
	Point3* pVtx = hc3.insertPoint(p, pLastTet);
	if (bFullDimensional) {
		// The neighbour on the curve may be a vertex that never entered the mesh.
		if (pLastTet == nullptr) pLastTet = hc3.findNearbyTet(*pVtx);
		CONDITION_CHECK(!pLastTet->hasBeenVisited);
		insertVertex(&pVtx, hc3.nearerTet(*pVtx, pLastTet));
		return pVtx;
	}
	pLastTet = startUp();
	if (pLastTet != nullptr && hc3.size() > 4) {
		// Deliberate: an empty list. Coplanar vertices that came one by one stay out of the mesh.
		std::vector<Point3*> vNothing;
		triangulate(vNothing, pLastTet);
	}
	return pVtx;
}

void Dt3::insert(std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles)
{
	if (bVerbose) {
		std::cout << std::endl << "Dt3::insert(vector,vector) has been called" << std::endl;
	}
	if (!vUserHandles.empty()) {
		printWarning("Dt3::insert()", "vUserHandles is not empty as it should be");
		vUserHandles.clear();
	}
	std::cout << "numPoints=" << vInputPoints.size() << std::endl;
	if (vInputPoints.empty()) return;
	const auto isAccepted = [this](const Point3& p) { return accepts(p); };
	const bool bInRange = std::all_of(vInputPoints.begin(), vInputPoints.end(), isAccepted);
	CONDITION_CHECK_AS(bInRange, kRangeText);

	std::vector<Point3*> vNewVertices;
	hc3.insertPoints(vInputPoints, vUserHandles, vNewVertices);
	if (bFullDimensional) {
		if (vNewVertices.empty()) return;
		triangulate(vNewVertices, hc3.findNearbyTet(*vNewVertices.front()));
		return;
	}

	Tet3* pFirstTet = startUp();
	if (pFirstTet == nullptr) return;
	// Vertices of earlier calls wait for their turn. Equal counts alone do not tell: an earlier point
	// that is repeated in this batch balances one that is not.
	const std::size_t numInput = vInputPoints.size();
	if (hc3.size() != numInput || vNewVertices.size() != numInput) {
		vNewVertices.clear();
		hc3.getVertices(vNewVertices);
	}
	triangulate(vNewVertices, pFirstTet);
}

void Dt3::triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet)
{
	if (pLastTet == nullptr) goToHell("pLastTet==NULL in Dt3::triangulate");
	if (vVertices.empty()) {
		std::cout << "Attention: triangulate has got an empty vector" << std::endl;
		return;
	}

	// Along the curve each walk is short; stages of growing density keep the mesh balanced meanwhile.
	const auto numVertices = static_cast<double>(vVertices.size());
	const int brioLevels = static_cast<int>(std::ceil(std::log(numVertices) / std::log(2.0)) - 4.0);
	Stages stages(static_cast<std::size_t>(brioLevels > 0 ? brioLevels : 0) + 1);
	distribute(0, static_cast<std::uint32_t>(vVertices.size()), 0, stages);

	std::optional<StartFinder> finder;
	std::size_t numInserted = 0;
	numFacetTests = 0;
	bool bForward = false;
	for (std::vector<std::uint32_t>& vStage : stages) {
		if (!bForward) std::reverse(vStage.begin(), vStage.end());
		if (finder) finder->beginStage(vStage, 0);
		for (std::size_t n = 0; n < vStage.size(); ++n) {
			const std::uint32_t i = vStage[n];
			Point3* pVtx = vVertices[i];
			if (finder) pLastTet = finder->nextStart(pLastTet);
			pLastTet = insertVertex(&pVtx, pLastTet);
			if (finder) finder->add(i);

			if (++numInserted % kWhile != 0) continue;
			if (!finder && numFacetTests > kWhile * kLongWalk) {
				finder.emplace(vVertices, batchTests.facets);
				finder->beginStage(vStage, n + 1);
			}
			numFacetTests = 0;
		}
		bForward = !bForward;
	}
}

} // namespace TULO3D
