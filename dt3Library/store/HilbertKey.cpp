// SPDX-License-Identifier: MIT
// The Hilbert key: the position of a point on the curve through nine levels of octants of the box.
#include "HC3.h"

namespace TULO3D {

namespace {

// The curve runs through the eight octants of a cell in the order of their digits, 0 to 7, from one to the next
// across a face; within each octant runs a rotated copy of it. Its twelve states are the rotations that occur: one for
// each edge of the cube as the way from first to last octant. kDigit tells the digit of an octant, kNext the state of
// the copy within it. A listing and every mesh depend on these very tables, beside the general properties of the
// curve.
//
// clang-format off
// Row: octant, 4 * x + 2 * y + z. Column: which way the curve runs through the cell.
constexpr std::uint8_t kDigit[8][12] = {
	{0, 0, 0, 2, 4, 6, 4, 6, 2, 2, 4, 6},
	{1, 7, 3, 3, 3, 5, 7, 7, 5, 1, 5, 1},
	{3, 1, 7, 1, 5, 1, 3, 5, 3, 5, 7, 7},
	{2, 6, 4, 0, 2, 2, 0, 4, 4, 6, 6, 0},
	{7, 3, 1, 5, 7, 7, 5, 1, 1, 3, 3, 5},
	{6, 4, 2, 4, 0, 4, 6, 0, 6, 0, 2, 2},
	{4, 2, 6, 6, 6, 0, 2, 2, 0, 4, 0, 4},
	{5, 5, 5, 7, 1, 3, 1, 3, 7, 7, 1, 3},
};
constexpr std::uint8_t kNext[8][12] = {
	{1, 2, 0, 6, 11, 4, 5, 6, 10, 4, 7, 10},
	{2, 6, 9, 0, 11, 4, 7, 1, 3, 4, 2, 3},
	{3, 0, 10, 6, 0, 8, 5, 6, 1, 8, 11, 2},
	{2, 7, 9, 11, 7, 8, 3, 10, 1, 8, 2, 6},
	{4, 8, 1, 9, 5, 0, 1, 9, 10, 2, 7, 10},
	{5, 8, 1, 0, 9, 6, 1, 4, 3, 7, 5, 3},
	{3, 0, 11, 9, 0, 10, 11, 9, 5, 2, 8, 4},
	{5, 7, 11, 8, 7, 6, 11, 10, 9, 3, 5, 4},
};
// clang-format on

} // namespace

std::uint32_t HC3::hilbertIndex(const Point3& point) const
{
	assert(bValid);
	double dx = point.x() - bbox.getMinX();
	double dy = point.y() - bbox.getMinY();
	double dz = point.z() - bbox.getMinZ();
	double hx = extentX;
	double hy = extentY;
	double hz = extentZ;
	unsigned state = 0;
	std::uint32_t key = 0;
	for (unsigned level = 0; level < numBits / 3; ++level) {
		hx *= 0.5;
		hy *= 0.5;
		hz *= 0.5;
		// Deliberate: y and z are compared with half the extent in x, too. Another rule would change the insertion
		// order. Where the box is no cube, the curve separates fewer points.
		const bool bx = dx >= hx;
		const bool by = dy >= hx;
		const bool bz = dz >= hx;
		dx -= bx * hx; // branch-free: the bit is random
		dy -= by * hy;
		dz -= bz * hz;
		const unsigned octant = 4U * bx + 2U * by + 1U * bz;
		key = (key << 3U) | kDigit[octant][state];
		state = kNext[octant][state];
	}
	return key;
}

} // namespace TULO3D
