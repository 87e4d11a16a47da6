// SPDX-License-Identifier: MIT
// The star of a vertex, and the tetrahedra around each edge of it.
#pragma once

#include "Mesh.h"

#include <vector>

namespace TULO3D::shapes {

/// The tetrahedra around the edge from the star's vertex to `end`, counter-clockwise as seen from there. Each leads
/// to the next across the facet opposite to its pivot.
struct Ring
{
	Index end = -1;
	std::vector<AtEdge> vPlaces;
	bool bClosed =
	    false; ///< false at the hull: the first and the last have a hull facet at the edge
};

/// Reads one star after the other. Over all vertices its steps are 4 for each tetrahedron, and 12 for all rings.
class Star
{
public:
	explicit Star(const Mesh& theMesh);

	/// The star of `vertex`; empty for one that is in no tetrahedron.
	void collect(Index vertex);
	const std::vector<Index>& tets() const { return vTets; }
	/// The place of `tet` among `tets`; it must be one of them.
	Index placeOf(Index tet) const { return vPlace[at(tet)]; }

	/// Goes to an edge of the star that has not come up yet; false when there is none.
	bool nextRing(Ring& ring);

private:
	bool contains(Index tet) const;
	void fill(Ring& ring, Index tet, Index pivot) const;

	const Mesh& mesh;
	std::vector<Index> vTetOfVertex;
	std::vector<Index> vTets, vPlace; // vPlace[t] means something where vTets[vPlace[t]] is t
	std::vector<Index> vStarOf;       // the last star whose edge to a vertex has come up
	Index centre = -1, starNumber = 0;
	std::size_t cursor = 0; // 4 times a place, and a corner
};

} // namespace TULO3D::shapes
