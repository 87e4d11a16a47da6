// SPDX-License-Identifier: MIT
// Alpha shape: what is left of the hull without the balls of radius alpha that have no point inside. The
// points are on the surface of a figure; the shape is its body.
#include "shapes/AlphaShapes.h"
#include "shapes/MeshCopy.h"
#include "shared.h"

#include <iostream>
#include <map>
#include <set>

int main(int argc, char** argv)
{
	std::vector<TULO3D::Point3> points = readPoints(argc, argv, "data/bunny_2k.xyz");
	TULO3D::Tulo_3D mesh;
	mesh.insert(points);

	const TULO3D::shapes::MeshCopy copy(mesh);
	const TULO3D::shapes::AlphaShapes shapes(copy.view());
	const TULO3D::shapes::AlphaShape body = shapes.shape(3); // the figure is 10 high
	const std::vector<std::int32_t>& triangles = body.vTriangles;
	const std::set<std::int32_t> corners(triangles.begin(), triangles.end());
	const std::size_t numFacets = triangles.size() / 3;
	std::cout << numFacets << " facets, " << corners.size() << " corners" << std::endl;

	// The surface is whole: in each edge two triangles meet, in opposite directions.
	std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
	for (std::size_t i = 0; i < triangles.size(); ++i) {
		++edges[{triangles[i], triangles[i % 3 < 2 ? i + 1 : i - 2]}];
	}
	for (const auto& [edge, num] : edges) {
		if (num != 1 || edges.count({edge.second, edge.first}) != 1)
			return 1; // torn, or touching itself
	}
	const bool bOnePiece = corners.size() > 3 && numFacets == 2 * corners.size() - 4;
	return bOnePiece && body.vVolumes.size() == 1 ? 0 : 1;
}
