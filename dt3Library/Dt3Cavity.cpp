// SPDX-License-Identifier: MIT
// Insertion of a vertex inside the hull: the tetrahedra whose circumspheres contain the vertex are
// removed, and the cavity is filled with new tetrahedra around the vertex.
//
// A. Bowyer: Computing Dirichlet tessellations, and D. F. Watson: Computing the n-dimensional
// Delaunay tessellation, both The Computer Journal 24, 1981.
#include "Dt3Cavity.h"
#include "Dt3.h"
#include "Dt3Inline.h"
#include "predicates/BatchTestsSimd.h"

namespace TULO3D {

void Cavity::begin()
{
	star.clear();
	vStack.clear();
	vFacets.clear();
}

void Cavity::join(Tet3* pTet)
{
	CavityMark::set(*pTet);
	vDeadTets.add(pTet);
	vStack.add({pTet, pTet->getCorner(0)}); // which enters star.vCorners like other apices
	for (int i = 1; i < 4; ++i) star.vCorners.add(pTet->getCorner(i));
}

template <Cavity::FacetOrder order, typename Classify>
TULO3D_ALWAYS_INLINE void Cavity::grow(Classify classify)
{
	// A neighbour gets its cavity mark and its place in vDeadTets when it joins the cavity, not when its
	// turn comes: the mark keeps it from joining twice. Depth first, in a fixed order of the facets: this
	// decides in which order tetrahedra die and new ones are made, and so which record becomes which
	// tetrahedron.
	while (!vStack.empty()) {
		const CavityTet tet = vStack.pop();
		retire(tet.pTet);
		const auto around = classify(tet);
		auto stack = vStack.writer(4);
		auto dead = vDeadTets.writer(4);
		auto facets = vFacets.writer(4);
		for (unsigned n = 0; n < 4; ++n) {
			const unsigned i = order == FacetOrder::kDescending ? 3 - n : n;
			const CavityTet neighbour = around.neighbour(i);
			const bool bJoins = around.joins(i);
			facets.pushIf(around.isBoundary(i), {tet.pTet, i, around.positive});
			CavityMark::setIf(bJoins, *neighbour.pTet);
			stack.pushIf(bJoins, neighbour);
			dead.pushIf(bJoins, neighbour.pTet);
		}
		vStack.accept(stack);
		vDeadTets.accept(dead);
		vFacets.accept(facets);
	}
}

template <Cavity::FacetOrder order>
void Cavity::carve(const Point3& vtx)
{
	runLoop(tests, [this, &vtx](auto variant) TULO3D_INLINE_LAMBDA {
		grow<order>([this, &vtx](const CavityTet& tet) TULO3D_INLINE_LAMBDA {
			star.vCorners.add(tet.pApex);
			return classifyNeighbours<decltype(variant)>(tet.pTet, vtx, tests, predicates);
		});
	});
}

template void Cavity::carve<Cavity::FacetOrder::kAscending>(const Point3&); // for insertAtHull

void Cavity::carve(const Reservation& reservation)
{
	for (const CavityTet& found : reservation.cavity()) {
		CavityMark::set(*found.pTet);
		star.vCorners.add(found.pApex);
	}
	Tet3* const pStartTet = reservation.cavity().begin()->pTet;
	reservation.release(*pStartTet);
	join(pStartTet);
	grow<FacetOrder::kDescending>(
	    [&](const CavityTet& tet) { return Reservation::Neighbours(reservation, *tet.pTet); });
}

void Dt3::beginCavity()
{
	swapDeadAndRecycled();
	cavity.begin();
}

Tet3* Dt3::replaceCavity(Point3* pVtx, Tet3* pStartTet)
{
	beginCavity();
	cavity.join(pStartTet); // the walk ended inside it, so it is in conflict without a test
	cavity.carve<Cavity::FacetOrder::kDescending>(*pVtx);
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceCavity(Point3* pVtx, const Reservation& reservation)
{
	beginCavity();
	cavity.carve(reservation);
	return fillCavity(pVtx);
}

Tet3* Dt3::replaceColdCavity(Point3* pVtx, Tet3* pStartTet)
{
	const Reservation* pFound = coldCavity.find(*pVtx, pStartTet, batchTests, predicates);
	if (pFound == nullptr) return replaceCavity(pVtx, pStartTet);
	Tet3* pLastTet = replaceCavity(pVtx, *pFound);
	coldCavity.clear();
	return pLastTet;
}

Tet3* Dt3::fillCavity(Point3* pVtx)
{
	Tet3* pLastTet = nullptr;
	for (const CavityFacet& facet : cavity.facets()) pLastTet = closeFacet(facet, pVtx);
	linkClosedStar();
	return pLastTet;
}

} // namespace TULO3D
