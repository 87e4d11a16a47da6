// SPDX-License-Identifier: MIT
// A displacement: the difference of two points, or a normal.
#pragma once

#include "tulo3dExport.h"

namespace TULO3D {

class Point3;

/// A vector of three coordinates, in the unit of the points it was made from.
class TULO3D_API Vector3
{
public:
	/// Any doubles; nothing is checked.
	Vector3(double x, double y, double z) : vx(x), vy(y), vz(z) {}

	///@{
	/// A coordinate.
	double x() const { return vx; }
	double y() const { return vy; }
	double z() const { return vz; }
	///@}

private:
	double vx;
	double vy;
	double vz;
};

/// The unit normal of the triangle (p0, p1, p2): seen from its tip, the corners run
/// counter-clockwise.
///
/// The two edges are brought to unit length before their cross product is taken. Collinear or
/// coincident corners have no normal: the result is (0, 0, 0), and each vector without a length
/// prints one warning line to standard output.
TULO3D_API Vector3 getNormalVector(const Point3& p0, const Point3& p1, const Point3& p2);

} // namespace TULO3D
