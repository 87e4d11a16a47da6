// SPDX-License-Identifier: MIT
// Convex hull: its facets are those without a neighbour.
#include "shared.h"

#include <cmath>
#include <iostream>
#include <set>

using TULO3D::Point3;

int main(int argc, char** argv)
{
	std::vector<Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	std::vector<TULO3D::Tet3*> tets;
	mesh.getTetrahedra(tets);
	std::size_t numFacets = 0;
	std::set<const Point3*> corners;
	double volumeInHull = 0, volumeOfTets = 0;
	for (const TULO3D::Tet3* tet : tets) {
		Point3 *p0, *p1, *p2, *p3;
		tet->getCorners(p0, p1, p2, p3);
		volumeOfTets += volume(*p0, *p1, *p2, *p3);
		for (int i = 0; i < 4; ++i) {
			if (tet->getOppTet(i) != nullptr) continue;
			int i0 = 0, i1 = 0, i2 = 0;
			tet->getFacetIndices(i, i0, i1, i2); // counter-clockwise from outside
			const Point3 *a = tet->getCorner(i0), *b = tet->getCorner(i1), *c = tet->getCorner(i2);
			corners.insert({a, b, c});
			volumeInHull -=
			    volume(*a, *b, *c, points[0]); // which lies inside, so the sign is minus
			++numFacets;
		}
	}
	std::cout << numFacets << " facets, " << corners.size() << " corners, volume " << volumeInHull
	          << std::endl;
	const bool bClosed = corners.size() > 3 && numFacets == 2 * corners.size() - 4;
	return bClosed && std::abs(volumeInHull - volumeOfTets) < 1e-9 * volumeInHull ? 0 : 1;
}
