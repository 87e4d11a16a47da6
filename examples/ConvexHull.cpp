// SPDX-License-Identifier: MIT
// Convex hull: its triangles, and its volume, which is that of all tetrahedra.
#include "shapes/ConvexHull.h"
#include "shapes/MeshCopy.h"
#include "shapes/Quality.h"
#include "shared.h"

#include <cmath>
#include <iostream>
#include <numeric>
#include <set>

int main(int argc, char** argv)
{
	std::vector<TULO3D::Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	const TULO3D::shapes::MeshCopy copy(mesh);
	const TULO3D::shapes::ConvexHull hull = TULO3D::shapes::convexHull(copy.view());
	const std::set<std::int32_t> corners(hull.vTriangles.begin(), hull.vTriangles.end());
	const std::size_t numFacets = hull.vTets.size();
	std::cout << numFacets << " facets, " << corners.size() << " corners, volume " << hull.volume
	          << std::endl;

	std::vector<double> volumes(mesh.getNumTetrahedra());
	TULO3D::shapes::QualityArrays arrays;
	arrays.pVolumes = volumes.data();
	measureQuality(copy.view(), arrays);
	const double volumeOfTets = std::accumulate(volumes.begin(), volumes.end(), 0.0);
	const bool bClosed = corners.size() > 3 && numFacets == 2 * corners.size() - 4;
	return bClosed && std::abs(hull.volume - volumeOfTets) < 1e-9 * hull.volume ? 0 : 1;
}
