// SPDX-License-Identifier: MIT
// Insertion of a vertex inside the hull: the tetrahedra whose circumspheres contain the vertex are
// removed, and the cavity is filled with new tetrahedra around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3.h"
#include "Dt3Inline.h"
#include "predicates/BatchTestsSimd.h"

namespace TULO3D {

void Dt3::beginCavity()
{
	swapDeadAndRecycled();
	star.clear();
	vCavityStack.clear();
	vCavityFacets.clear();
}

void Dt3::joinCavity(Tet3* pTet)
{
	CavityMark::set(*pTet);
	vDeadTets.add(pTet);
	vCavityStack.add({pTet, pTet->getCorner(0)}); // which enters star.vCorners like other apices
	for (int i = 1; i < 4; ++i) star.vCorners.add(pTet->getCorner(i));
}

template <Dt3::FacetOrder order, typename Classify>
TULO3D_ALWAYS_INLINE void Dt3::growCavity(Classify classify)
{
	// A neighbour gets its cavity mark and its place in vDeadTets when it joins the cavity, not when its
	// turn comes: the mark keeps it from joining twice. Depth first, in a fixed order of the facets: this
	// decides in which order tetrahedra die and new ones are made, and so which record becomes which
	// tetrahedron.
	while (!vCavityStack.empty()) {
		const CavityTet tet = vCavityStack.pop();
		retire(tet.pTet);
		const auto around = classify(tet);
		auto stack = vCavityStack.writer(4);
		auto dead = vDeadTets.writer(4);
		auto facets = vCavityFacets.writer(4);
		for (unsigned n = 0; n < 4; ++n) {
			const unsigned i = order == FacetOrder::kDescending ? 3 - n : n;
			const CavityTet neighbour = around.neighbour(i);
			const bool bJoins = around.joins(i);
			facets.pushIf(around.isBoundary(i), {tet.pTet, i, around.positive});
			CavityMark::setIf(bJoins, *neighbour.pTet);
			stack.pushIf(bJoins, neighbour);
			dead.pushIf(bJoins, neighbour.pTet);
		}
		vCavityStack.accept(stack);
		vDeadTets.accept(dead);
		vCavityFacets.accept(facets);
	}
}

template <Dt3::FacetOrder order>
void Dt3::carve(const Point3& vtx)
{
	runLoop(batchTests, [this, &vtx](auto variant) TULO3D_INLINE_LAMBDA {
		growCavity<order>([this, &vtx](const CavityTet& tet) TULO3D_INLINE_LAMBDA {
			star.vCorners.add(tet.pApex);
			return classifyNeighbours<decltype(variant)>(tet.pTet, vtx, batchTests, predicates);
		});
	});
}

template void Dt3::carve<Dt3::FacetOrder::kAscending>(const Point3&); // for insertAtHull

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	beginCavity();
	joinCavity(pStartTet); // the walk ended inside it, so it is in conflict without a test
	carve<FacetOrder::kDescending>(*pVtx);
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceCavity(Point3* pVtx, const Reservation& reservation)
{
	beginCavity();
	for (const CavityTet& found : reservation.cavity()) {
		CavityMark::set(*found.pTet);
		star.vCorners.add(found.pApex);
	}
	Tet3* const pStartTet = reservation.cavity().begin()->pTet;
	reservation.release(*pStartTet);
	joinCavity(pStartTet);
	growCavity<FacetOrder::kDescending>(
	    [&](const CavityTet& tet) { return Reservation::Neighbours(reservation, *tet.pTet); });
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceColdCavity(Point3* pVtx, Tet3* pStartTet)
{
	singleReservation.begin(Reservation::kSingle, *pVtx, pStartTet);
	cavitySearch.run(&singleReservation, 1, batchTests, predicates);
	if (!singleReservation.isComplete()) return replaceCavity(pVtx, pStartTet);
	Tet3* pLastTet = replaceCavity(pVtx, singleReservation);
	singleReservation.clear();
	return pLastTet;
}

Tet3* Dt3::fillCavity(Point3* pVtx)
{
	Tet3* pLastTet = nullptr;
	for (const CavityFacet& facet : vCavityFacets) pLastTet = closeFacet(facet, pVtx);
	linkClosedStar();
	return pLastTet;
}

} // namespace TULO3D
