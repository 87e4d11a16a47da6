// SPDX-License-Identifier: MIT
// Vector arithmetic in plain floating point, for normals, circumcentres and distances.
#pragma once

#include "Point3.h"
#include "Vector3.h"

namespace TULO3D {

/// `other` at unit length. A vector without a length is reported on standard output and becomes
/// (0, 0, 0).
Vector3 normalize(const Vector3& other);

inline double dot(const Vector3& a, const Vector3& b)
{
	return a.x() * b.x() + a.y() * b.y() + a.z() * b.z();
}

inline double squaredDistance(const Point3& p, const Point3& q)
{
	const Vector3 v = p - q;
	return dot(v, v);
}

/// The right-handed cross product a x b.
inline Vector3 cross(const Vector3& a, const Vector3& b)
{
	return Vector3(a.y() * b.z() - a.z() * b.y(), a.z() * b.x() - a.x() * b.z(),
	    a.x() * b.y() - a.y() * b.x());
}

} // namespace TULO3D
