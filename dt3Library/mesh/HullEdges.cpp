// SPDX-License-Identifier: MIT
// From one hull facet to the next, across an edge.
#include "mesh/HullEdges.h"
#include "Tet3.h"

namespace TULO3D {

namespace {

/// An ordinary edge has five tetrahedra.
constexpr int kManyTets = 16;

/// True for a facet of the hull that has the edge. The record may have become another tetrahedron since.
bool isOnHullAt(const Facet3& facet, const Edge3& edge)
{
	const Tet3& tet = *facet.getTet();
	const int h = facet.getOpp3Index();
	const auto isInFacet = [&](const Point3* pVtx) {
		return tet.hasVertex(pVtx) && tet.getCorner(h) != pVtx;
	};
	const bool bRemoved = tet.hasBeenVisited; // or marked by a host, which then costs time only
	return !bRemoved && tet.getOppTet(h) == nullptr && isInFacet(edge.getSourceVtx()) &&
	    isInFacet(edge.getTargetVtx());
}

} // namespace

Facet3 HullEdges::across(const Edge3& edge)
{
	// Each step leaves through the facet that has the edge and the corner beyond the facet of entry.
	Tet3* pTet = edge.getTet();
	const Facet3 left(pTet, edge.getOpp3Index());
	const Point3* pThird = pTet->getCorner(edge.getOpp3Index());
	int exit = edge.getOpp2Index();
	int numTets = 1;
	for (; Tet3* pNext = pTet->getOppTet(exit); ++numTets) {
		const int entry = pNext->getIntraTetIndex(pTet);
		exit = pNext->getIntraTetIndex(pThird);
		pThird = pNext->getCorner(entry);
		pTet = pNext;
		if (numTets != kManyTets) continue;
		const auto known = found.find(edge);
		if (known == found.end()) continue;
		for (const Facet3& facet : known->second) {
			if (isOnHullAt(facet, edge) && facet != left) return facet;
		}
	}
	const Facet3 facet(pTet, exit);
	if (numTets > kManyTets) found.insert_or_assign(edge, Facets{left, facet});
	return facet;
}

void HullEdges::update(Tet3& newTet)
{
	for (int h = 1; h < 4 && !found.empty(); ++h) {
		if (newTet.getOppTet(h) != nullptr) continue;
		const Edge3 edge = newTet.getEdge(h, 0);
		const auto known = found.find(edge);
		if (known == found.end()) continue;
		auto& [a, b] = known->second;
		(isOnHullAt(a, edge) ? b : a) = Facet3(&newTet, h);
	}
}

} // namespace TULO3D
