// SPDX-License-Identifier: MIT
// Stars, by a search across facets at the vertex.
#include "Star.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace TULO3D::shapes {

Star::Star(const Mesh& theMesh)
    : mesh(theMesh),
      vTetOfVertex(mesh.numVertices, -1),
      vPlace(mesh.numTets, 0),
      vStarOf(mesh.numVertices, 0)
{
	for (std::size_t i = 4 * mesh.numTets; i-- > 0;) {
		vTetOfVertex[at(mesh.pCorners[i])] = static_cast<Index>(i / 4);
	}
}

bool Star::contains(Index tet) const
{
	const std::size_t place = at(vPlace[at(tet)]);
	return place < vTets.size() && vTets[place] == tet;
}

void Star::collect(Index vertex)
{
	centre = vertex;
	cursor = 0;
	if (++starNumber == std::numeric_limits<Index>::max()) {
		std::fill(vStarOf.begin(), vStarOf.end(), 0);
		starNumber = 1;
	}
	vTets.clear();
	const auto add = [&](Index tet) {
		vPlace[at(tet)] = static_cast<Index>(vTets.size());
		vTets.push_back(tet);
	};
	if (vTetOfVertex[at(vertex)] >= 0) add(vTetOfVertex[at(vertex)]);
	for (std::size_t i = 0; i < vTets.size();) { // it grows meanwhile
		const Index tet = vTets[i++];
		const int self = mesh.indexOf(tet, vertex);
		for (const int k : kOutside[self]) {
			const Index neighbour = mesh.neighbours(tet)[k];
			if (neighbour >= 0 && !contains(neighbour)) add(neighbour);
		}
	}
}

bool Star::nextRing(Ring& ring)
{
	for (; cursor < 4 * vTets.size(); ++cursor) {
		const Index tet = vTets[cursor / 4], end = mesh.corners(tet)[cursor % 4];
		if (end == centre || vStarOf[at(end)] == starNumber) continue;
		vStarOf[at(end)] = starNumber;
		ring.end = end;
		// With the corners (centre, end, c, d) in positive order, the way is counter-clockwise opposite to c.
		const int* pRow = kOutside[mesh.indexOf(tet, centre)];
		const int j = static_cast<int>(cursor % 4);
		const int c = j == pRow[0] ? pRow[1] : j == pRow[1] ? pRow[2] : pRow[0];
		fill(ring, tet, mesh.corners(tet)[c]);
		return true;
	}
	return false;
}

/// Goes once around, or from the hull to the hull. `tet` leads on across the facet opposite to `pivot`.
void Star::fill(Ring& ring, Index tet, Index pivot) const
{
	const auto walk = [&](AtEdge place) {
		ring.vPlaces.clear();
		do {
			ring.vPlaces.push_back(place);
			if (ring.vPlaces.size() > vTets.size())
				throw std::invalid_argument("The neighbours of the mesh contradict each other.");
			place = mesh.next(place, centre, ring.end);
		} while (place.tet >= 0 && place.tet != ring.vPlaces.front().tet);
		ring.bClosed = place.tet >= 0;
	};
	walk({tet, pivot});
	if (ring.bClosed) return;
	walk({tet, mesh.otherPivot({tet, pivot}, centre, ring.end)}); // back to where the hull begins
	const AtEdge last = ring.vPlaces.back();
	walk({last.tet, mesh.otherPivot(last, centre, ring.end)});
}

} // namespace TULO3D::shapes
