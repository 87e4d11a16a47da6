// SPDX-License-Identifier: MIT
// Axis-aligned boxes around points.
#include "tiles/Box.h"

#include <algorithm>
#include <limits>

namespace TULO3D {

Box emptyBox()
{
	constexpr double kInfinity = std::numeric_limits<double>::infinity();
	return {{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}};
}

double squaredDiagonal(const Box& box)
{
	double sum = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		const double d = box.high[i] - box.low[i];
		sum += d * d;
	}
	return sum;
}

double squaredDistance(const Box& a, const Box& b)
{
	double sum = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		const double d = std::max({0.0, a.low[i] - b.high[i], b.low[i] - a.high[i]});
		sum += d * d;
	}
	return sum;
}

} // namespace TULO3D
