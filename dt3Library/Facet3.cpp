// SPDX-License-Identifier: MIT
// A facet by its tetrahedron and opposite corner; either side names the same facet.
#include "Facet3.h"

#include "Edge3.h"
#include "geometry/TetIndices.h"

namespace TULO3D {

namespace {

[[maybe_unused]] bool range02(int i)
{
	return static_cast<unsigned>(i) < 3U;
}

} // namespace

int Facet3::getIntraTetIndex(int ith) const
{
	assert(range02(ith));
	// Deliberate: the inside order, where Tet3::getFacetIndices has the outside one.
	return insideFacet(opp3ICI)[static_cast<unsigned>(ith)];
}

Edge3 Facet3::getEdge(int ith) const
{
	return Edge3(pTet, opp3ICI, getIntraTetIndex(ith));
}

bool Facet3::operator==(const Facet3& other) const
{
	if (pTet == other.pTet && opp3ICI == other.opp3ICI) return true;
	const Tet3* pNeigh = pTet->getOppTet(opp3ICI);
	if (!pNeigh || pNeigh != other.pTet) return false;
	return pNeigh->getIntraTetIndex(pTet) == other.opp3ICI;
}

} // namespace TULO3D
