// SPDX-License-Identifier: MIT
// Point location: for each of a stream of queries, interpolate between the vertices around it.
#include "shared.h"

#include <cmath>
#include <iostream>

using TULO3D::Point3;

/// What is to be interpolated. It is linear, so that the result can be checked.
static double valueAt(const Point3& p)
{
	return 2 * p.x() + 3 * p.y() - p.z();
}

int main(int argc, char** argv)
{
	std::vector<Point3> points = readPoints(argc, argv, "data/lidar_rock_22k.xyz");
	const TULO3D::Vector3 toOrigin(-2230800, -252000, 0); // keeps digits for plain arithmetic
	for (Point3& point : points) point = point + toOrigin;
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	const TULO3D::Bbox3 box(points);
	std::vector<double> random;
	TULO3D::generateRandomNumbers(30000, 0, 1, random, 7);
	std::size_t numInside = 0, numOutside = 0;
	for (std::size_t i = 0; i < random.size(); i += 3) {
		const Point3 query(box.getMinX() + random[i] * box.getRangeX(),
		    box.getMinY() + random[i + 1] * box.getRangeY(),
		    box.getMinZ() + random[i + 2] * box.getRangeZ());
		const TULO3D::Tet3* tet = mesh.locate(query);
		++(tet == nullptr ? numOutside : numInside);
		if (tet == nullptr) continue;

		// A corner weighs as much as the part of the tetrahedron between the query and its facet.
		Point3 *a, *b, *c, *d;
		tet->getCorners(a, b, c, d);
		const double wA = volume(query, *b, *c, *d), wB = volume(*a, query, *c, *d),
		             wC = volume(*a, *b, query, *d), wD = volume(*a, *b, *c, query);
		if (wA < 0 || wB < 0 || wC < 0 || wD < 0) return 1; // the query is not in there
		const double sum =
		    wA * valueAt(*a) + wB * valueAt(*b) + wC * valueAt(*c) + wD * valueAt(*d);
		if (std::abs(sum / (wA + wB + wC + wD) - valueAt(query)) > 1e-6) return 1;
	}
	std::cout << numInside << " queries inside, " << numOutside << " outside" << std::endl;
	return numInside > 0 && numOutside > 0 ? 0 : 1;
}
