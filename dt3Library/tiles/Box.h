// SPDX-License-Identifier: MIT
// Axis-aligned boxes around points.
#pragma once

#include "Point3.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace TULO3D {

/// An axis-aligned box, closed. One without points has its high corner below the low one.
struct Box
{
	std::array<double, 3> low;
	std::array<double, 3> high;

	bool isEmpty() const { return low[0] > high[0]; }
};

/// The box without points.
Box emptyBox();

/// The box of one point.
inline Box boxOf(const Point3& p)
{
	return {{p.x(), p.y(), p.z()}, {p.x(), p.y(), p.z()}};
}

/// Grows a box to contain another.
inline void widen(Box& box, const Box& other)
{
	for (std::size_t i = 0; i < 3; ++i) {
		box.low[i] = std::min(box.low[i], other.low[i]);
		box.high[i] = std::max(box.high[i], other.high[i]);
	}
}

/// The squared length of the diagonal.
double squaredDiagonal(const Box& box);

/// The squared distance between two boxes; zero where they meet.
double squaredDistance(const Box& a, const Box& b);

} // namespace TULO3D
