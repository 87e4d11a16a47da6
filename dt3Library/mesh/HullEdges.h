// SPDX-License-Identifier: MIT
// From one hull facet to the next, across an edge.
#pragma once

#include "Edge3.h"
#include "Facet3.h"
#include "ardo_tools/ScratchArray.h"
#include "mesh/VertexPair.h"

#include <array>
#include <cstddef>
#include <unordered_map>

namespace TULO3D {

/// Finds the other hull facet at an edge of a hull facet, by circulating around the edge.
///
/// Thousands of tetrahedra may meet in an edge, as with points on a moment curve or on two lines, and then every
/// insertion beyond the hull circulates around many such edges. So where this has taken long, and at a new vertex with
/// many tetrahedra and few hull facets, the two facets are remembered. What is remembered may be out of date, but it
/// proves itself: two hull facets meet in an edge, so a facet that is on the hull, has the edge and is not the one that
/// is left must be the other one.
class HullEdges
{
public:
	/// The hull facet beyond `edge`, which is named through the facet that is left: its opp3 index.
	Facet3 across(const Edge3& edge);

	/// The star of a vertex that was inserted on the hull, its tetrahedra's corner 0. At the edges opposite that corner the
	/// new hull facets have taken the place of others; and a hull facet opposite it has another tetrahedron behind it.
	void update(const ScratchArray<Tet3*>& vStar);

private:
	using Facets = std::array<Facet3, 2>;

	/// An edge by its ends, in whatever tetrahedra it is: the lower address first.
	using Ends = VertexPair;

	static Ends endsOf(const Tet3& tet, int opp3, int opp2);
	static bool isOnHullAt(const Facet3& facet, const Ends& ends);
	/// If the edge is remembered, the facet is now one of its two.
	void noteAt(const Ends& ends, const Facet3& facet);

	/// So that there is little to look up where most edges with many tetrahedra have left the hull. After four updates
	/// for each edge kept last time: a few steps an update.
	void forgetInnerEdges();

	std::size_t numUpdates = 0;                             ///< since edges were forgotten
	std::size_t numKept = 0;                                ///< edges that were not
	std::unordered_map<Ends, Facets, VertexPairHash> found; ///< at the edges with many tetrahedra
	struct FacetOfStar
	{
		Tet3* pTet;
		int index;
	};
	ScratchArray<FacetOfStar> vNew; ///< the hull facets of the star
};

} // namespace TULO3D
