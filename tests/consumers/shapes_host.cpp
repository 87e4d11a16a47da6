// SPDX-License-Identifier: MIT
// A host of the add-on library: the volume of a cube from its hull.
#include "shapes/Shapes.h"

#include <cmath>
#include <iostream>

int main()
{
	std::vector<TULO3D::Point3> vPoints;
	for (int i = 0; i < 8; ++i) vPoints.emplace_back(i % 2, i / 2 % 2, i / 4);
	TULO3D::Tulo_3D mesh;
	mesh.insert(vPoints);
	const TULO3D::shapes::MeshCopy copy(mesh);
	const double volume = TULO3D::shapes::convexHull(copy.view()).volume;
	std::cout << "The volume of the hull is " << volume << std::endl;
	return std::abs(volume - 1) < 1e-12 ? 0 : 1;
}
