// SPDX-License-Identifier: MIT
// How points arrive: one, or a batch in stages from coarse to fine.
#include "Dt3.h"
#include "InsertionOrder.h"
#include "Scouts.h"
#include "StartFinder.h"
#include "Underflow.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <optional>
#include <utility>

namespace TULO3D {

namespace {

/// The largest magnitude for which no product of an exact test can overflow.
constexpr double kMaxCoordinate = 1e60;
constexpr const char* kRangeText = "coordinates are finite and at most 1e60 in magnitude";

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

	std::optional<StartFinder> finder;
	std::optional<Scouts> scouts;
	std::size_t numInserted = 0;
	numFacetTests = 0;
	InsertionOrder order(static_cast<std::uint32_t>(vVertices.size()));
	while (!order.isAtEnd()) {
		const std::uint32_t i = *order;
		++order;
		Point3* pVtx = vVertices[i];
		const Scout* pScout = scouts ? &scouts->next() : nullptr;
		if (pScout != nullptr && pScout->hasFound()) {
			expectNothingPending();
			pLastTet = replaceCavity(pVtx, *pScout);
		} else {
			if (finder) pLastTet = finder->nearestStart(i, pLastTet);
			pLastTet = insertVertex(&pVtx, pLastTet);
		}
		if (finder) finder->add(i);
		if (scouts) scouts->goOn(std::exchange(claimsOfDead, Scout::Claims{0}));

		if (++numInserted % kWhile != 0) continue;
		if (scouts && !scouts->pay()) scouts.reset();
		if (!finder && numFacetTests > kWhile * kLongWalk) {
			finder.emplace(vVertices);
			if (finder->orderJumps()) scouts.emplace(order, *finder, batchTests, predicates);
		}
		numFacetTests = 0;
	}
}

} // namespace TULO3D
