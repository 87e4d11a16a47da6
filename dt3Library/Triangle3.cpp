// SPDX-License-Identifier: MIT
// Looking up corners and edges of a triangle, its barycentre and its print.
#include "Triangle3.h"

#include "Message.h"
#include "geometry/printing.h"

namespace TULO3D {

namespace {

constexpr int kNotFound = -999;

} // namespace

int Triangle3::getIntraTriangleIndex(const Point3* p) const
{
	for (int i = 0; i < 3; ++i) {
		if (aCorners[i] == p) return i;
	}
	Message::ofErrors() << "Triangle3::getIntraTriangleIndex(): invalid (p)" << std::endl;
	return kNotFound;
}

int Triangle3::getIntraTriangleIndex(const Point3* p1, const Point3* p2) const
{
	for (int i = 0; i < 3; ++i) {
		const Point3* pFirst = aCorners[(i + 1) % 3];
		const Point3* pSecond = aCorners[(i + 2) % 3];
		if ((pFirst == p1 && pSecond == p2) || (pFirst == p2 && pSecond == p1)) return i;
	}
	Message::ofErrors() << "Triangle3::getIntraTriangleIndex(): invalid (p1,p2)" << std::endl;
	Message() << "Have searched for " << p1 << " and " << p2 << " in " << *this;
	return kNotFound;
}

Point3 Triangle3::getBarycenter() const
{
	const Point3 &a = *aCorners[0], &b = *aCorners[1], &c = *aCorners[2];
	return Point3(
	    (a.x() + b.x() + c.x()) / 3, (a.y() + b.y() + c.y()) / 3, (a.z() + b.z() + c.z()) / 3);
}

std::ostream& operator<<(std::ostream& stream, const Triangle3& triangle)
{
	stream << "Triangle: " << std::endl;
	for (int i = 0; i < 3; ++i) {
		const Point3* pCorner = triangle.getCorner(i);
		const Triangle3* pNeig = triangle.getNeig(i);
		stream << "ith=" << i << ", vertex (" << pCorner << "): " << *pCorner
		       << "  oppTet=" << pNeig << (pNeig ? "" : " (NULL)") << std::endl;
	}
	return stream;
}

} // namespace TULO3D
