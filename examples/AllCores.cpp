// SPDX-License-Identifier: MIT
// All cores: the mesh of a batch as arrays, made in several threads. It is the same with one thread.
#include "ParallelMesh.h"
#include "shared.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

int main(int argc, char** argv)
{
	std::vector<double> coordinates; // x, y, z, x, y, z, ...
	for (const TULO3D::Point3& p : readPoints(argc, argv, "data/lidar_rock_22k.xyz")) {
		coordinates.insert(coordinates.end(), {p.x(), p.y(), p.z()});
	}

	const std::size_t numPoints = coordinates.size() / 3;
	const TULO3D::ParallelMesh mesh = TULO3D::triangulateInParallel(coordinates.data(), numPoints);
	const std::int32_t* const corners = mesh.corners.get(); // 4 a tetrahedron
	std::cout << mesh.numVertices << " vertices, " << mesh.numTets << " tetrahedra" << std::endl;

	const TULO3D::ParallelMesh same =
	    TULO3D::triangulateInParallel(coordinates.data(), numPoints, 1);
	const bool bSame = mesh.numTets == same.numTets &&
	    std::equal(corners, corners + 4 * mesh.numTets, same.corners.get());
	return mesh.numTets > 0 && bSame ? 0 : 1;
}
