// SPDX-License-Identifier: MIT
// An axis-aligned box that grows with the points added to it.
#pragma once

#include "Point3.h"

#include <cfloat>
#include <vector>

namespace TULO3D {

/// An axis-aligned bounding box, in the unit of its points; empty until a first point is added.
class TULO3D_API Bbox3
{
public:
	/// An empty box.
	Bbox3() = default;

	/// The box of `vPoints`; empty when there are none.
	explicit Bbox3(const std::vector<Point3>& vPoints);

	/// Grows the box to contain `p`; true when that changed it. A coordinate that is not a number
	/// changes nothing, unless it is the first.
	bool add(const Point3& p);

	/// Grows the box to contain every point; true when that changed it, or when it was empty and there
	/// is a point.
	bool add(const std::vector<Point3>& vPoints);

	/// Widens every side by `factor` times its length, half of it at either end.
	void enlargeBounds(double factor);

	/// Deliberate: widens this box itself to contain `other`, and returns a copy of the result.
	Bbox3 operator+(Bbox3& other);

	///@{
	/// Two opposite corners, made of the bounds.
	Point3 getMinPoint() const { return Point3(minX, minY, minZ); }
	Point3 getMaxPoint() const { return Point3(maxX, maxY, maxZ); }
	///@}

	///@{
	/// A bound of one axis; of an empty box `DBL_MAX` for a minimum, `-DBL_MAX` for a maximum.
	double getMinX() const { return minX; }
	double getMinY() const { return minY; }
	double getMinZ() const { return minZ; }
	double getMaxX() const { return maxX; }
	double getMaxY() const { return maxY; }
	double getMaxZ() const { return maxZ; }
	///@}

	///@{
	/// The length of one side; minus infinity for an empty box.
	double getRangeX() const { return maxX - minX; }
	double getRangeY() const { return maxY - minY; }
	double getRangeZ() const { return maxZ - minZ; }
	///@}

	/// The length of the longest side; minus infinity for an empty box.
	double getMaxRange() const;
	/// The smallest of the three minima.
	double getMinCoord() const;
	/// The largest of the three maxima.
	double getMaxCoord() const;

	/// True when at least one point has been added.
	bool isValid() const { return minX < DBL_MAX; }

	/// Prints the box on a line of standard output.
	void debug() const;

protected:
	/// Grows a box that is known not to be empty.
	void treatPointForValidBox(const Point3& p);

private:
	/// The same; true when that changed it.
	bool widen(const Point3& p);

	double minX = DBL_MAX;
	double minY = DBL_MAX;
	double minZ = DBL_MAX;
	double maxX = -DBL_MAX;
	double maxY = -DBL_MAX;
	double maxZ = -DBL_MAX;
};

} // namespace TULO3D
