// SPDX-License-Identifier: MIT
// Arrays: points come in as plain numbers, and the mesh goes out as arrays of numbers. The volume in its
// hull is the same from the tetrahedra and from the facets of the hull.
#include "shared.h"

#include <cmath>
#include <cstdint>
#include <iostream>

int main(int argc, char** argv)
{
	std::vector<double> coordinates; // x, y, z, x, y, z, ...
	for (const TULO3D::Point3& p : readPoints(argc, argv, "data/bunny_2k.xyz")) {
		coordinates.insert(coordinates.end(), {p.x(), p.y(), p.z()});
	}

	TULO3D::Tulo_3D mesh;
	mesh.insert(coordinates.data(), coordinates.size() / 3);
	std::vector<double> xyz(3 * mesh.getNumVertices());
	std::vector<std::int32_t> corners(4 * mesh.getNumTetrahedra()), neighbours(corners.size());
	TULO3D::MeshArrays arrays;
	arrays.pCoordinates = xyz.data();
	arrays.pCorners = corners.data();
	arrays.pNeighbours = neighbours.data();
	mesh.copyTo(arrays);

	constexpr std::size_t kOutside[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
	const auto corner = [&](std::size_t i) {
		const double* p = &xyz[3 * static_cast<std::size_t>(corners[i])];
		return TULO3D::Point3(p[0], p[1], p[2]);
	};
	double volumeOfTets = 0, volumeInHull = 0;
	for (std::size_t t = 0; t < corners.size(); t += 4) {
		volumeOfTets += volume(corner(t), corner(t + 1), corner(t + 2), corner(t + 3));
		for (std::size_t i = 0; i < 4; ++i) {
			if (neighbours[t + i] != -1) continue;
			const auto [a, b, c] = kOutside[i]; // counter-clockwise from outside
			// Seen from inside it is clockwise, so the sign is minus.
			volumeInHull -= volume(corner(t + a), corner(t + b), corner(t + c), corner(0));
		}
	}
	std::cout << xyz.size() / 3 << " vertices, " << corners.size() / 4 << " tetrahedra, volume "
	          << volumeInHull << std::endl;
	const bool bSame = std::abs(volumeInHull - volumeOfTets) < 1e-9 * volumeInHull;
	return volumeInHull > 0 && bSame && xyz == coordinates ? 0 : 1; // there is no duplicate point
}
