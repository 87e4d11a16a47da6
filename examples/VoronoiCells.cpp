// SPDX-License-Identifier: MIT
// Voronoi cells, whole and clipped. The points are the atoms of a body-centred cubic crystal with cubes of
// side 2; a cell inside has half the volume of a cube.
#include "shapes/MeshCopy.h"
#include "shapes/Voronoi.h"
#include "shared.h"

#include <cmath>
#include <iostream>
#include <numeric>

int main()
{
	std::vector<TULO3D::Point3> points;
	for (int i = 0; i < 8 * 8 * 8; ++i) {
		const int x = i % 8, y = i / 8 % 8, z = i / 64;
		for (const int k : {0, 1}) points.emplace_back(2 * x + k, 2 * y + k, 2 * z + k);
	}
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	// There is no duplicate point, so cell i is that of points[i].
	const TULO3D::shapes::MeshCopy copy(mesh);
	const std::vector<double> volumes = TULO3D::shapes::Voronoi(copy.view()).volumes();
	const double inside = volumes[438]; // the cube corner at (6, 6, 6)
	std::cout << "The volume of a cell inside is " << inside << std::endl;
	if (std::abs(inside - 4) > 1e-9 || !std::isinf(volumes[0])) return 1; // unbounded at the hull

	// Clipped to a box, the cells fill it.
	const TULO3D::shapes::Box box{{-1, -1, -1}, {16, 16, 16}};
	const std::vector<double> clipped = TULO3D::shapes::Voronoi(copy.view(), box).volumes();
	const double sum = std::accumulate(clipped.begin(), clipped.end(), 0.0);
	return std::abs(sum - 17 * 17 * 17) < 1e-9 * sum ? 0 : 1;
}
