// SPDX-License-Identifier: MIT
// Unit vectors and normals.
#include "Vector3.h"

#include "Message.h"
#include "Point3.h"
#include "geometry/vectors.h"

#include <cmath>

namespace TULO3D {

Vector3 normalize(const Vector3& other)
{
	const double length = std::sqrt(dot(other, other));
	if (length > 0) return Vector3(other.x() / length, other.y() / length, other.z() / length);
	Message() << "warning: normalize(const Vector3& other), Null length vector!" << std::endl;
	return Vector3(0, 0, 0);
}

Vector3 getNormalVector(const Point3& p0, const Point3& p1, const Point3& p2)
{
	// Deliberate: the edges are normalised before the product. It decides the rounding, and how
	// often a degenerate triangle warns.
	const Vector3 u = normalize(p1 - p0);
	const Vector3 v = normalize(p2 - p0);
	return normalize(cross(u, v));
}

} // namespace TULO3D
