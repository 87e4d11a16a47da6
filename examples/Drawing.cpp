// SPDX-License-Identifier: MIT
// Drawing: a mesh as a file for Geomview, with one vertex marked.
#include "Tulo_3D.h"

#include <fstream>
#include <iostream>

int main()
{
	std::vector<TULO3D::Point3> points;
	TULO3D::generateRandomPoints(60, 0, 1, points, 1); // 40 points, two thirds of the number given
	TULO3D::Tulo_3D mesh;
	std::vector<TULO3D::Point3*> handles;
	mesh.insert(points, handles);

	mesh.show("drawing.list", handles.front()); // then: geomview drawing.list

	std::vector<TULO3D::Tet3*> tets;
	mesh.getTetrahedra(tets);
	std::size_t numFacets = 0;
	std::ifstream file("drawing.list");
	for (std::string line; std::getline(file, line);) numFacets += line == "OFF" ? 1U : 0U;
	std::cout << points.size() << " points, " << numFacets << " facets drawn" << std::endl;
	return points.size() == 40 && numFacets == 4 * tets.size() ? 0 : 1;
}
