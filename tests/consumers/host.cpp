// SPDX-License-Identifier: MIT
// A host as small as can be: a mesh of five points, and an exception from inside the library.
#include "Tulo_3D.h"

#include <iostream>
#include <limits>
#include <vector>

using namespace TULO3D;

int main()
{
	Tulo_3D mesh;
	std::vector<Point3> vPoints{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.25, 0.25, 0.25}};
	mesh.insert(vPoints);

	std::vector<Tet3*> vTets;
	mesh.getTetrahedra(vTets);
	std::cout << getTulo3DVersion() << ": " << vTets.size() << " tetrahedra" << std::endl;
	if (vTets.size() != 4 || !mesh.checkValidity("host", true)) return 1;

	try {
		Point3 nowhere(std::numeric_limits<double>::quiet_NaN(), 0, 0);
		mesh.insert(nowhere);
	} catch (const TuloException&) {
		return 0;
	}
	std::cout << "the exception of the library did not arrive" << std::endl;
	return 1;
}
