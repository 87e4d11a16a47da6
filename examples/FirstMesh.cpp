// SPDX-License-Identifier: MIT
// First mesh: insert points, then read vertices and tetrahedra.
#include "Tulo_3D.h"

#include <iostream>

int main()
{
	// Six points, but the last one repeats the first.
	std::vector<TULO3D::Point3> points{
	    {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {2, 2, 2}, {0, 0, 0}};

	TULO3D::Tulo_3D mesh;
	std::vector<TULO3D::Point3*> handles; // handles[i] becomes the vertex of points[i]
	mesh.insert(points, handles);

	std::vector<TULO3D::Tet3*> tets;
	mesh.getTetrahedra(tets);
	for (const TULO3D::Tet3* tet : tets) {
		std::cout << "corners:";
		for (int i = 0; i < 4; ++i) std::cout << ' ' << tet->getCorner(i)->getNumber();
		std::cout << "  hull facets opposite:";
		for (int i = 0; i < 4; ++i) {
			const bool bHull = tet->getOppTet(i) == nullptr;
			if (bHull) std::cout << ' ' << tet->getCorner(i)->getNumber();
		}
		std::cout << std::endl;
	}

	std::vector<TULO3D::Point3*> vertices;
	mesh.getVertices(vertices);
	const bool bFolded = handles[0] == handles[5];
	const bool bValid = mesh.checkValidity("first mesh", true);
	return mesh.is3D() && bValid && bFolded && vertices.size() == 5 && tets.size() == 2 ? 0 : 1;
}
