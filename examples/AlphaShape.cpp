// SPDX-License-Identifier: MIT
// Alpha shape: the hull, hollowed out as far as a ball of radius alpha gets without swallowing a
// point. The points are on the surface of a figure; the shape is its body.
#include "shared.h"

#include <iostream>
#include <map>
#include <set>

using TULO3D::Tet3;

namespace {

/// True when the circumsphere is smaller than the ball, which therefore cannot pass.
bool staysInShape(const Tet3& tet, double alpha)
{
	const TULO3D::Vector3 r = *tet.getCorner(0) - tet.getCircumcenter();
	return r.x() * r.x() + r.y() * r.y() + r.z() * r.z() < alpha * alpha;
}

} // namespace

int main(int argc, char** argv)
{
	std::vector<TULO3D::Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	constexpr double kAlpha = 3; // the figure is 10 high
	std::vector<Tet3*> tets;
	mesh.getTetrahedra(tets);
	for (Tet3* tet : tets) tet->setCustomIndex(staysInShape(*tet, kAlpha) ? 1 : 0);

	// The surface: facets with the shape on one side only.
	std::size_t numFacets = 0;
	std::set<const TULO3D::Point3*> corners;
	std::map<TULO3D::Edge3, int> facetsAtEdge; // an edge is the same through whichever tetrahedron
	for (Tet3* tet : tets) {
		for (int i = 0; i < 4 && tet->getCustomIndex() == 1; ++i) {
			if (tet->getOppTet(i) != nullptr && tet->getOppTet(i)->getCustomIndex() == 1) continue;
			const TULO3D::Facet3 facet = tet->getFacet(i);
			for (int j = 0; j < 3; ++j) {
				corners.insert(tet->getCorner(facet.getIntraTetIndex(j)));
				++facetsAtEdge[facet.getEdge(j)];
			}
			++numFacets;
		}
	}
	std::cout << numFacets << " facets, " << corners.size() << " corners" << std::endl;
	for (const auto& entry : facetsAtEdge) {
		if (entry.second != 2) return 1; // torn, or touching itself
	}
	return corners.size() > 3 && numFacets == 2 * corners.size() - 4 ? 0 : 1; // a single piece
}
