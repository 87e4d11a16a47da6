// SPDX-License-Identifier: MIT
// Insertion of a vertex on or beyond the hull: the tetrahedra in conflict with the vertex are removed,
// and the vertex is joined to the cavity and to the hull facets that are visible from it.
//
// clang-format off
//
//                 pVtx                  in the plane; the hull runs through a, b, c
//               .' |  `.
//             .'   |    `.              pCHTet      in vCHTets, stays: over its visible hull facet ab
//           .'     |      `.                        the cone has pLastTet = (pVtx, insideFacet(i))
//         .'       |        `.
//        a---------b . . . . .c         pDoomedTet  in conflict, dies, with its facet bc: for each facet
//         \ pCHTet / \pDoomed/                      towards a pOppTet that stays, be and ec, pVtx
//          \      /   \ Tet /                       replaces the opposite corner: pNewTet
//           \    /     \   /
//            \  /       \ /             open star   the facets (pVtx, a) and (pVtx, c) have no second
//             d----------e                          half: they are the new hull
//
// clang-format on
#include "Dt3.h"
#include "Dt3Inline.h"
#include "Message.h"
#include "ardo_tools/SmallPointerSet.h"

namespace TULO3D {

Tet3* Dt3::insertAtHull(Point3** ppVtx, Tet3* pCurTet, int outIndex)
{
	CONDITION_CHECK(pCurTet!=0);
	CONDITION_CHECK_AS(outIndex > -1, "opp3ICI>-1");
	CONDITION_CHECK(numStoredTCS==0);
	Point3* pVtx = *ppVtx;

	const std::vector<Tet3*> vVisible = gatherVisibleTets(pVtx, pCurTet, outIndex);
	std::vector<Tet3*> vCHTets;
	std::vector<Tet3*> vInConflict;
	vCHTets.reserve(vVisible.size());
	vInConflict.reserve(vVisible.size());
	for (Tet3* pTet : vVisible) {
		const bool bStays = !batchTests.conflict(predicates, *pTet, *pVtx);
		if (bStays) expectUnmarked(*pTet, "!pCHTet->hasBeenVisited");
		(bStays ? vCHTets : vInConflict).push_back(pTet);
	}

	beginCavity();
	const std::size_t numDead = vDeadTets.size(); // records that the last insertion has not reused
	for (Tet3* pTet : vInConflict) cavity.join(pTet);
	// From the visible tetrahedra the search finds all in conflict. Take a segment from inside a tetrahedron in
	// conflict to the vertex: from each tetrahedron to the next the power of the vertex with respect to the
	// circumsphere does not grow, so the segment crosses only tetrahedra in conflict. It leaves the hull through a
	// visible facet, whose tetrahedron has joined above.
	cavity.carve<Cavity::FacetOrder::kAscending>(*pVtx);
	// Not by cavity.facets(): the new tetrahedra come in the order in which the doomed ones were found, which
	// decides their labels and records.
	const std::vector<Tet3*> vDoomedTets(vDeadTets.begin() + numDead, vDeadTets.end());
	Tet3* pNewTet1 = createConeTets(vCHTets, pVtx);
	Tet3* pNewTet2 = vDoomedTets.empty() ? nullptr : retriangulateDoomedTets(vDoomedTets, pVtx);

	linkOpenStar();
	hullEdges.update(star.vTets);
	if (pNewTet1 == nullptr) pNewTet1 = pNewTet2;
	CONDITION_CHECK(pNewTet1!=0);
	return pNewTet1;
}

std::vector<Tet3*> Dt3::gatherVisibleTets(const Point3* pVtx, Tet3* pCurTet, int outIndex)
{
	// A search over the hull surface, from facet to facet around their common edges: the visible facets
	// are connected, because the hull is convex. A tetrahedron is gathered with all its facets that are
	// visible from the vertex, so it needs to be gathered only once.
	SmallPointerSet gathered;
	std::vector<Tet3*> vGathered;
	std::vector<Edge3> vEdges;
	vGathered.reserve(32);
	vEdges.reserve(32);
	const auto gather = [&](Tet3* pTet, int knownFacet) {
		vGathered.push_back(pTet);
		for (int f = 0; f < 4; ++f) {
			if (pTet->getOppTet(f) != nullptr) continue;
			const bool bFaces = f == knownFacet ||
			    predicates.getOrientation3(pTet, f, pVtx) == ORIENTATION3_NEGATIVE;
			for (int j = 0; bFaces && j < 4; ++j) {
				if (j != f) vEdges.push_back(pTet->getEdge(f, j));
			}
		}
	};

	gathered.add(pCurTet);
	gather(pCurTet, outIndex);
	while (!vEdges.empty()) {
		const Facet3 facet = hullEdges.across(vEdges.back());
		vEdges.pop_back();
		Tet3* pHullTet = facet.getTet();
		const int h = facet.getOpp3Index();
		CONDITION_CHECK_AS(pHullTet->getOppTet(h) == nullptr, "pCurTet->getOppTet(opp2ICI)==0");
		if (gathered.contains(pHullTet)) continue;
		if (predicates.getOrientation3(pHullTet, h, pVtx) != ORIENTATION3_NEGATIVE) continue;
		gathered.makeRoom(vGathered.size() + 1);
		gathered.add(pHullTet);
		gather(pHullTet, h);
	}
	return vGathered;
}

Tet3* Dt3::createConeTets(const std::vector<Tet3*>& vCHTets, Point3* pVtx)
{
	Tet3* pLastTet = nullptr;
	for (Tet3* pCHTet : vCHTets) {
		CONDITION_CHECK(!pCHTet->hasBeenVisited);
		for (int i = 0; i < 4; ++i) {
			if (pCHTet->getOppTet(i) != nullptr) continue;
			// A facet in whose plane the vertex lies is not visible. (The sphere of its tetrahedron contains the whole
			// facet: if the vertex is in it, the tetrahedron is in conflict and not among these.)
			const Orientation3 orient = predicates.getOrientation3(pCHTet, i, pVtx);
			if (orient == ORIENTATION3_POSITIVE || orient == ORIENTATION3_COPLANAR) continue;
			CONDITION_CHECK(orient==ORIENTATION3_NEGATIVE);
			const auto [a, b, c] = insideFacet(i);
			pLastTet = makePositiveTet(
			    pVtx, pCHTet->getCorner(a), pCHTet->getCorner(b), pCHTet->getCorner(c));
			registerTets(pLastTet, 0, pCHTet, i);
			star.addWithCorners(pLastTet);
		}
	}
	return pLastTet;
}

Tet3* Dt3::retriangulateDoomedTets(const std::vector<Tet3*>& vDoomedTets, Point3* pVtx)
{
	if (vDoomedTets.empty()) {
		Message() << "Warning: vDoomedTets() without input tets, returning NULL" << std::endl;
		return nullptr;
	}
	Tet3* pNewTet = nullptr;
	vDoomedFacets.clear();
	for (Tet3* pDoomedTet : vDoomedTets) {
		CONDITION_CHECK(pDoomedTet->hasBeenVisited);
		auto facets = vDoomedFacets.writer(4);
		for (unsigned i = 0; i < 4; ++i) {
			const Tet3* pOppTet = pDoomedTet->getOppTet(static_cast<int>(i));
			const bool bHull = pOppTet == nullptr;
			const bool bOpen = !CavityMark::isSet(bHull ? *pDoomedTet : *pOppTet);
			facets.pushIf(bHull | bOpen, {pDoomedTet, i, unsigned{bOpen} << i});
		}
		vDoomedFacets.accept(facets);
	}
	for (const auto& [pDoomedTet, i, positive] : vDoomedFacets) {
		// A hull facet that the vertex sees, or in whose plane it lies, disappears. Any other facet has the vertex on
		// its inner side, without a test: in its plane the powers with respect to the two circumspheres are equal;
		// beyond it that of the tetrahedron which stays is the smaller one, and this would be in conflict, too.
		if (positive == 0 &&
		    predicates.getOrientation3(pDoomedTet, static_cast<int>(i), pVtx) !=
		        ORIENTATION3_POSITIVE) {
			continue;
		}
		pNewTet = closeFacet({pDoomedTet, i, 1U << i}, pVtx);
		CONDITION_CHECK(pNewTet!=0);
		CONDITION_CHECK(!pNewTet->hasBeenVisited);
	}
	return pNewTet;
}

} // namespace TULO3D
