// SPDX-License-Identifier: MIT
// A hierarchy of boxes over points in the order of the curve.
#include "tiles/BoxTree.h"

#include <algorithm>
#include <limits>

namespace TULO3D {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Box kEmpty{{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}};

/// The boxes of runs of `length` elements.
template <typename Element, typename BoxOfElement>
std::vector<Box> boxesOfRuns(
    const std::vector<Element>& vElements, std::size_t length, BoxOfElement boxOfElement)
{
	std::vector<Box> vBoxes((vElements.size() + length - 1) / length, kEmpty);
	for (std::size_t i = 0; i < vElements.size(); ++i) {
		widen(vBoxes[i / length], boxOfElement(vElements[i]));
	}
	return vBoxes;
}

} // namespace

Box boxOf(const Point3& p)
{
	return {{p.x(), p.y(), p.z()}, {p.x(), p.y(), p.z()}};
}

void widen(Box& box, const Box& other)
{
	for (std::size_t i = 0; i < 3; ++i) {
		box.low[i] = std::min(box.low[i], other.low[i]);
		box.high[i] = std::max(box.high[i], other.high[i]);
	}
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

BoxTree::BoxTree(const std::vector<Point3>& vAlongCurve) : vPoints(vAlongCurve)
{
	vLevels.push_back(boxesOfRuns(vPoints, kLeafSize, boxOf));
	while (vLevels.back().size() > 1) {
		vLevels.push_back(boxesOfRuns(vLevels.back(), kFanOut, [](const Box& box) { return box; }));
	}
}

} // namespace TULO3D
