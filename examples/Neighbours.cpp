// SPDX-License-Identifier: MIT
// Neighbours: from a vertex to those that share an edge with it. The nearest of all points is one.
#include "shared.h"

#include <algorithm>
#include <cfloat>
#include <iostream>
#include <set>

using TULO3D::Point3;

static double squaredDistance(const Point3& p, const Point3& q)
{
	const TULO3D::Vector3 d = p - q;
	return d.x() * d.x() + d.y() * d.y() + d.z() * d.z();
}

int main(int argc, char** argv)
{
	std::vector<Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	std::vector<Point3*> handles;
	mesh.insert(points, handles);

	std::size_t numEnds = 0;
	std::vector<TULO3D::Tet3*> star; // one vector for all calls: each replaces its contents
	for (Point3* vertex : handles) {
		mesh.getTetsAroundVertex(vertex, star);
		std::set<const Point3*> neighbours;
		for (const TULO3D::Tet3* tet : star) {
			for (int i = 0; i < 4; ++i) neighbours.insert(tet->getCorner(i));
		}
		neighbours.erase(vertex);
		numEnds += neighbours.size();

		double nearest = DBL_MAX, nearestOfAll = DBL_MAX;
		for (const Point3* p : neighbours)
			nearest = std::min(nearest, squaredDistance(*p, *vertex));
		for (const Point3* p : handles) {
			if (p != vertex) nearestOfAll = std::min(nearestOfAll, squaredDistance(*p, *vertex));
		}
		if (nearest != nearestOfAll) return 1;
	}
	std::cout << handles.size() << " vertices, " << numEnds / 2 << " edges" << std::endl;
	return numEnds > 0 ? 0 : 1;
}
