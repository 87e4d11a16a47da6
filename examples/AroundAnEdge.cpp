// SPDX-License-Identifier: MIT
// Around an edge: visit the tetrahedra that share it, inside the mesh and on its hull.
#include "shared.h"

#include <algorithm>
#include <iostream>
#include <map>

using TULO3D::Edge3;
using TULO3D::TetAroundEdgeIterator;

/// All tetrahedra around the edge, each once.
static std::vector<TULO3D::Tet3*> tetsAround(const Edge3& edge)
{
	std::vector<TULO3D::Tet3*> ring{edge.getTet()};
	const TetAroundEdgeIterator start(edge);
	TetAroundEdgeIterator it = start;
	while (!it.nextIsNull()) {
		++it;
		if (it == start) return ring; // an inner edge: all the way round
		ring.push_back(*it);
	}
	// A hull edge: the other tetrahedra are reached in the other direction. Swapped indices reverse the edge.
	const Edge3 reversed(edge.getTet(), edge.getOpp2Index(), edge.getOpp3Index());
	TetAroundEdgeIterator back(reversed);
	while (!back.nextIsNull()) {
		++back;
		ring.push_back(*back);
	}
	return ring;
}

int main(int argc, char** argv)
{
	std::vector<TULO3D::Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	// The same the slow way: every tetrahedron has six edges.
	std::vector<TULO3D::Tet3*> tets;
	mesh.getTetrahedra(tets);
	std::map<Edge3, std::size_t> numTetsAtEdge;
	for (TULO3D::Tet3* tet : tets) {
		for (int opp3 = 1; opp3 < 4; ++opp3) {
			for (int opp2 = 0; opp2 < opp3; ++opp2) ++numTetsAtEdge[tet->getEdge(opp3, opp2)];
		}
	}
	std::size_t most = 0;
	for (const auto& [edge, num] : numTetsAtEdge) {
		if (tetsAround(edge).size() != num) return 1;
		most = std::max(most, num);
	}
	std::cout << numTetsAtEdge.size() << " edges, up to " << most << " tetrahedra around one\n";
	return numTetsAtEdge.empty() ? 1 : 0;
}
