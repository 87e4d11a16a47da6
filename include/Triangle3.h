// SPDX-License-Identifier: MIT
// A triangle of three vertices that may know its neighbours.
#pragma once

#include "Point3.h"

#include <cassert>
#include <iosfwd>

namespace TULO3D {

/// A triangle of three vertex pointers and three neighbour pointers.
///
/// Neighbour i lies opposite corner i. Nothing is owned.
class TULO3D_API Triangle3
{
public:
	/// Corners as given; the neighbours are null.
	Triangle3(Point3* p0, Point3* p1, Point3* p2) : aCorners{p0, p1, p2}, aNeigs{} {}

	/// Corner i, 0..2.
	Point3* getCorner(int i) const
	{
		assert(i>-1 && i<3);
		return aCorners[i];
	}

	/// Neighbour i, 0..2; may be null.
	Triangle3* getNeig(int i) const
	{
		assert(i>-1 && i<3);
		return aNeigs[i];
	}

	/// Sets neighbour i, which may be null; the neighbour's own link stays as it is.
	void setNeig(int i, Triangle3* pT)
	{
		assert(i>-1 && i<3);
		aNeigs[i] = pT;
	}

	/// The index 0..2 of a corner. For any other point: a line on standard error, and -999.
	int getIntraTriangleIndex(const Point3* p) const;

	/// The index of the corner opposite the edge (p1, p2), in either order. For any other pair: a
	/// line on standard error, the triangle on standard output, and -999.
	int getIntraTriangleIndex(const Point3* p1, const Point3* p2) const;

	/// The mean of the three corners.
	Point3 getBarycenter() const;

private:
	Point3* aCorners[3];
	Triangle3* aNeigs[3];
};

/// Prints address and coordinates of each corner, and the address of the neighbour opposite it.
TULO3D_API std::ostream& operator<<(std::ostream& stream, const Triangle3& triangle);

} // namespace TULO3D
