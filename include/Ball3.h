// SPDX-License-Identifier: MIT
// A sphere, kept as its centre and its squared radius.
#pragma once

#include "Point3.h"

namespace TULO3D {

/// A sphere given by its centre and its squared radius, in the unit of its points and its square.
/// Nothing is checked: a negative squared radius is kept.
class TULO3D_API Ball3
{
public:
	/// The fourth argument is the squared radius.
	Ball3(double x, double y, double z, double squaredRadius)
	    : center(x, y, z), sqRadius(squaredRadius)
	{
	}

	/// Copies the coordinates and the custom index of `rCenter`, not its tetrahedron.
	Ball3(const Point3& rCenter, double squaredRadius) : center(rCenter), sqRadius(squaredRadius) {}

	/// A copy, never part of a mesh.
	Point3 getCenter() const { return center; }
	/// As given.
	double getSqRadius() const { return sqRadius; }
	/// The square root of the squared radius, computed on each call; not a number when that is
	/// negative.
	double getRadius() const;

	/// Prints the sphere on a line of standard output.
	void debug() const;

private:
	Point3 center;
	double sqRadius;
};

} // namespace TULO3D
