// SPDX-License-Identifier: MIT
// Axis-aligned boxes around points.
#pragma once

#include "Point3.h"

#include <array>

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
Box boxOf(const Point3& p);

/// Grows a box to contain another.
void widen(Box& box, const Box& other);

/// The squared length of the diagonal.
double squaredDiagonal(const Box& box);

/// The squared distance between two boxes; zero where they meet.
double squaredDistance(const Box& a, const Box& b);

} // namespace TULO3D
