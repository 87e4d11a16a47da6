// SPDX-License-Identifier: MIT
// Circumspheres and normals, also where a tetrahedron or a triangle is nearly degenerate.
#pragma once

#include "Mesh.h"

namespace TULO3D::shapes {

struct Circumsphere
{
	/// From corner 0 to the centre; where the radius is infinite, a unit vector towards the centre.
	Vec arm;
	double radius;
};

/// Computed from differences of coordinates. The error of the arm is below 2^-35 of its length or of the longest edge,
/// however flat the tetrahedron is; unless products of differences underflow, as with coordinates near the
/// smallest doubles. The radius is infinite where it is no finite double.
Circumsphere circumsphere(const Mesh& mesh, Index tet);

/// The normal of a triangle, of length 1, towards where its corners run counter-clockwise; with the same care.
Vec unitNormal(const Mesh& mesh, Index a, Index b, Index c);

} // namespace TULO3D::shapes
