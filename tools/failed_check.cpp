// SPDX-License-Identifier: MIT
// Breaks a mesh by moving a vertex, so that the validity check leaves a drawing of what it found.
#include "Tulo_3D.h"

int main()
{
	std::vector<TULO3D::Point3> vPoints{{3, 0, 0}, {-2, 2, 0}, {-1, -3, 0}, {0, 0, -5}, {0, 0, 5}};
	std::vector<TULO3D::Point3*> vVertices;
	TULO3D::Tulo_3D mesh;
	mesh.insert(vPoints, vVertices);

	// The upper vertex stays above its facet, but comes into the sphere of the lower tetrahedron.
	vVertices[4]->exchange(0.6, -0.5, 1);
	return mesh.checkValidity("failed_check", true) ? 1 : 0;
}
