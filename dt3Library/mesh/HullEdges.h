// SPDX-License-Identifier: MIT
// From one hull facet to the next, across an edge.
#pragma once

#include "Edge3.h"
#include "Facet3.h"

#include <array>
#include <map>

namespace TULO3D {

/// Finds the other hull facet at an edge of a hull facet, by circulating around the edge.
///
/// Thousands of tetrahedra may meet in an edge, as with points on a moment curve or on two lines, and then every
/// insertion beyond the hull circulates around many such edges. So where this has taken long, the two facets are
/// remembered. What is remembered may be out of date, but it proves itself: two hull facets meet in an edge, so a facet
/// that is on the hull, has the edge and is not the one that is left must be the other one.
class HullEdges
{
public:
	/// The hull facet beyond `edge`, which is named through the facet that is left: its opp3 index.
	Facet3 across(const Edge3& edge);

	/// A new tetrahedron, whose corner 0 is the vertex inserted: its hull facets have taken the place of others at
	/// the edges opposite that corner.
	void update(Tet3& newTet);

private:
	using Facets = std::array<Facet3, 2>;

	std::map<Edge3, Facets> found; ///< at the edges with many tetrahedra
};

} // namespace TULO3D
