// SPDX-License-Identifier: MIT
// A handle of a facet: a tetrahedron and the corner opposite the facet.
#pragma once

#include "Tet3.h"

namespace TULO3D {

/// Names a facet through one of the two tetrahedra that have it. Copied by value.
class TULO3D_API Facet3
{
public:
	/// Facet opp3 (0..3, not checked) of `pT`.
	Facet3(Tet3* pT, int opp3) : pTet(pT), opp3ICI(opp3) {}

	/// The tetrahedron through which the facet is named: one of the two that have it.
	Tet3* getTet() const { return pTet; }
	/// The index of the corner opposite the facet.
	int getOpp3Index() const { return opp3ICI; }

	/// The index in the tetrahedron of the facet's corner ith, 0..2, counter-clockwise seen from
	/// inside: the reverse of `Tet3::getFacetIndices`.
	int getIntraTetIndex(int ith) const;

	/// The edge of the facet opposite its corner ith, 0..2.
	Edge3 getEdge(int ith) const;

	/// A facet equals itself named from the other side; a hull facet only itself.
	bool operator==(const Facet3& other) const;
	/// True for different facets.
	bool operator!=(const Facet3& other) const { return !(*this == other); }

private:
	Tet3* pTet;
	int opp3ICI;
};

} // namespace TULO3D
