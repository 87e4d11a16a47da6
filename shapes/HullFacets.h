// SPDX-License-Identifier: MIT
// Numbers the facets of the convex hull, in the order of their tetrahedra.
#pragma once

#include "Mesh.h"

#include <vector>

namespace TULO3D::shapes {

class HullFacets
{
public:
	explicit HullFacets(const Mesh& theMesh) : mesh(theMesh), vFirst(mesh.numTets)
	{
		Index num = 0;
		for (std::size_t t = 0; t < mesh.numTets; ++t) {
			vFirst[t] = num;
			for (int i = 0; i < 4; ++i) num += mesh.pNeighbours[4 * t + at(i)] < 0;
		}
	}
	/// The number of hull facet i of `tet`.
	Index numberOf(Index tet, int i) const
	{
		Index number = vFirst[at(tet)];
		while (i-- > 0) number += mesh.neighbours(tet)[i] < 0;
		return number;
	}

private:
	const Mesh& mesh;
	std::vector<Index> vFirst; // of the facets of each tetrahedron
};

} // namespace TULO3D::shapes
