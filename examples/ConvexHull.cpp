// SPDX-License-Identifier: MIT
// Convex hull: its facets are those without a neighbour.
#include "Tulo_3D.h"

#include <cmath>
#include <fstream>
#include <iostream>
#include <set>

using TULO3D::Point3;

/// Positive when a, b, c run counter-clockwise, seen from d.
static double volume(const Point3& a, const Point3& b, const Point3& c, const Point3& d)
{
	const TULO3D::Vector3 u = b - a, v = c - a, w = d - a;
	const double det = u.x() * (v.y() * w.z() - v.z() * w.y()) +
	    u.y() * (v.z() * w.x() - v.x() * w.z()) + u.z() * (v.x() * w.y() - v.y() * w.x());
	return det / 6;
}

int main(int argc, char** argv)
{
	std::vector<Point3> points;
	std::ifstream file(argc > 1 ? argv[1] : "data/bunny_2k.xyz");
	for (double x, y, z; file >> x >> y >> z;) points.emplace_back(x, y, z);
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
