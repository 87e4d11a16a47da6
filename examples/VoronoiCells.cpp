// SPDX-License-Identifier: MIT
// Voronoi cells: their corners are the circumcentres around a vertex. The points are the atoms of a
// body-centred cubic crystal with cubes of side 2; a cell inside has half the volume of a cube.
#include "shared.h"

#include <cmath>
#include <iostream>
#include <set>

using TULO3D::Point3;

/// Infinite for a vertex on the hull.
static double cellVolume(TULO3D::Tulo_3D& mesh, Point3* vertex)
{
	std::vector<TULO3D::Tet3*> star;
	mesh.getTetsAroundVertex(vertex, star);
	std::set<TULO3D::Edge3> edges; // each once, named by two corners that are not on it
	for (TULO3D::Tet3* tet : star) {
		const int self = tet->getIntraTetIndex(vertex);
		for (int i = 1; i < 4; ++i) {
			edges.insert(tet->getEdge((self + i) % 4, (self + i % 3 + 1) % 4));
		}
	}
	double sum = 0;
	for (const TULO3D::Edge3& edge : edges) {
		// The edge pierces one face of the cell; going round it gives the face's corners in order.
		const Point3 first = edge.getTet()->getCircumcenter();
		for (TULO3D::TetAroundEdgeIterator it(edge); it.previewNextTet() != edge.getTet(); ++it) {
			if (it.nextIsNull()) return INFINITY;
			const Point3 from = (*it)->getCircumcenter();
			sum += std::abs(volume(*vertex, first, from, it.previewNextTet()->getCircumcenter()));
		}
	}
	return sum;
}

int main()
{
	std::vector<Point3> points;
	for (int i = 0; i < 8 * 8 * 8; ++i) {
		const int x = i % 8, y = i / 8 % 8, z = i / 64;
		for (const int k : {0, 1}) points.emplace_back(2 * x + k, 2 * y + k, 2 * z + k);
	}
	TULO3D::Tulo_3D mesh;
	std::vector<Point3*> handles;
	mesh.insert(points, handles);

	const double inside = cellVolume(mesh, handles[438]); // the cube corner at (6, 6, 6)
	std::cout << "The volume of a cell inside is " << inside << std::endl;
	return std::abs(inside - 4) < 1e-9 && std::isinf(cellVolume(mesh, handles[0])) ? 0 : 1;
}
