// SPDX-License-Identifier: MIT
// From one hull facet to the next, across an edge.
#include "mesh/HullEdges.h"
#include "Tet3.h"
#include "geometry/TetIndices.h"
#include "mesh/Surroundings.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace TULO3D {

namespace {

constexpr std::size_t kOrdinaryTets = 5; // an edge's
constexpr std::size_t kManyTets = 16;

} // namespace

HullEdges::Ends HullEdges::endsOf(const Tet3& tet, int opp3, int opp2)
{
	const Point3* pA = tet.getCorner(edgeSource(opp3, opp2));
	const Point3* pB = tet.getCorner(edgeTarget(opp3, opp2));
	return {std::min(pA, pB, std::less<>()), std::max(pA, pB, std::less<>())};
}

/// True for a facet of the hull that has the edge. The record may have become another tetrahedron since.
bool HullEdges::isOnHullAt(const Facet3& facet, const Ends& ends)
{
	const Tet3& tet = *facet.getTet();
	const int h = facet.getOpp3Index();
	const auto isInFacet = [&](const Point3* pVtx) {
		return tet.hasVertex(pVtx) && tet.getCorner(h) != pVtx;
	};
	return !CavityMark::isSet(tet) && tet.getOppTet(h) == nullptr && isInFacet(ends.first) &&
	    isInFacet(ends.second);
}

Facet3 HullEdges::across(const Edge3& edge)
{
	// Each step leaves through the facet that has the edge and the corner beyond the facet of entry.
	Tet3* pTet = edge.getTet();
	const Facet3 left(pTet, edge.getOpp3Index());
	const auto ends = [&edge] {
		return endsOf(*edge.getTet(), edge.getOpp3Index(), edge.getOpp2Index());
	};
	const Point3* pThird = pTet->getCorner(edge.getOpp3Index());
	int exit = edge.getOpp2Index();
	std::size_t numTets = 1;
	for (; Tet3* pNext = pTet->getOppTet(exit); ++numTets) {
		const int entry = pNext->getIntraTetIndex(pTet);
		exit = pNext->getIntraTetIndex(pThird);
		pThird = pNext->getCorner(entry);
		pTet = pNext;
		if (numTets != kOrdinaryTets) continue;
		const auto known = found.find(ends());
		if (known == found.end()) continue;
		for (const Facet3& facet : known->second) {
			if (isOnHullAt(facet, known->first) && facet != left) return facet;
		}
	}
	const Facet3 facet(pTet, exit);
	if (numTets > kManyTets) found.insert_or_assign(ends(), Facets{left, facet});
	return facet;
}

void HullEdges::update(const ScratchArray<Tet3*>& vStar)
{
	if (++numUpdates > 4 * numKept) forgetInnerEdges();
	if (found.empty() && vStar.size() < kManyTets) return;
	vNew.clear();
	auto onHull = vNew.writer(4 * vStar.size());
	for (Tet3* pTet : vStar) {
		for (int h = 0; h < 4; ++h) onHull.pushIf(pTet->getOppTet(h) == nullptr, {pTet, h});
	}
	vNew.accept(onHull);
	const bool bMany = vStar.size() > kManyTets * vNew.size();
	for (const auto& [pTet, h] : vNew) {
		const Facet3 facet(pTet, h);
		for (int i = 0; i < 4; ++i) {
			if (i == h) continue;
			const bool bNew = h != 0 && i != 0;
			if (bNew && !bMany) continue;
			const Ends ends = endsOf(*pTet, h, i);
			if (bNew) found.try_emplace(ends, Facets{facet, facet});
			noteAt(ends, facet);
		}
	}
}

void HullEdges::forgetInnerEdges()
{
	numUpdates = 0;
	for (auto it = found.begin(); it != found.end();) {
		const auto& [ends, facets] = *it;
		const bool bOnHull = isOnHullAt(facets[0], ends) || isOnHullAt(facets[1], ends);
		it = bOnHull ? std::next(it) : found.erase(it);
	}
	numKept = found.size();
}

void HullEdges::noteAt(const Ends& ends, const Facet3& facet)
{
	const auto known = found.find(ends);
	if (known == found.end()) return;
	auto& [a, b] = known->second;
	// The record of a may have been removed and come back as this facet.
	const bool bKeepA = isOnHullAt(a, ends) && a != facet;
	(bKeepA ? b : a) = facet;
}

} // namespace TULO3D
