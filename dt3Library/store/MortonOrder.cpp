// SPDX-License-Identifier: MIT
// Morton order, for points that the nine levels of the vertex store do not tell apart.
#include "store/MortonOrder.h"
#include "ardo_tools/Bits.h"
#include "ardo_tools/RadixSort.h"
#include "ardo_tools/prefetch.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

namespace TULO3D {

namespace {

constexpr unsigned kLevels = 21;
constexpr unsigned kKeyBits = 27;

/// The weight of the highest binary digit in which two coordinates differ, as an exponent; the sign counts as
/// the highest of all.
int leadingDifference(double a, double b)
{
	constexpr int kNone = -100;
	constexpr unsigned kFractionBits = 52;
	const auto bitsOf = [](double x) {
		x += 0.0; // no negative zero
		std::uint64_t bits = 0;
		std::memcpy(&bits, &x, sizeof bits);
		return bits;
	};
	const auto exponentOf = [](std::uint64_t bits) {
		return static_cast<int>(bits << 1U >> (kFractionBits + 1));
	};
	const std::uint64_t bitsA = bitsOf(a), bitsB = bitsOf(b);
	const std::uint64_t difference = bitsA ^ bitsB;
	if (difference == 0) return kNone;
	if (difference >> 63U != 0) return INT_MAX;
	if (difference >> kFractionBits != 0) return std::max(exponentOf(bitsA), exponentOf(bitsB));
	return exponentOf(bitsA) + static_cast<int>(highestBit(difference)) - int{kFractionBits};
}

/// Morton order by all binary digits that the coordinates have, without a box and without a last level.
///
/// M. Connor, P. Kumar: Fast construction of k-nearest neighbor graphs for point clouds, IEEE Transactions on
/// Visualization and Computer Graphics 16, 2010.
bool isBefore(const Point3& p, const Point3& q)
{
	const int x = leadingDifference(p.x(), q.x());
	const int y = leadingDifference(p.y(), q.y());
	const int z = leadingDifference(p.z(), q.z());
	if (x >= y && x >= z) return p.x() < q.x();
	return y >= z ? p.y() < q.y() : p.z() < q.z();
}

/// A point and its position on the Morton curve.
struct KeyedPosition
{
	std::uint32_t key; // the leading bits of `place`: they tell most points apart
	std::uint32_t position;
	std::uint64_t place;
};

/// The interquantile range of the points along one axis, from 1/64 to 63/64, enlarged to three times.
struct Range
{
	double low;
	double high;
};

Range bulkOf(const std::vector<const Point3*>& vPoints, double (Point3::*coordinate)() const)
{
	constexpr std::size_t kSamples = 1024;
	const std::size_t step = vPoints.size() / kSamples + 1;
	std::vector<double> v;
	for (std::size_t i = 0; i < vPoints.size(); i += step) {
		v.push_back((vPoints[i]->*coordinate)());
	}
	std::sort(v.begin(), v.end());
	const std::size_t outer = v.size() / 64;
	const double low = v[outer], high = v[v.size() - 1 - outer];
	return {low - (high - low), high + (high - low)}; // what is outside shares the outermost cells
}

/// The 21 lowest bits of `v`, two zeros behind each.
std::uint64_t spread(std::uint64_t v)
{
	v = (v | v << 32U) & 0x1f00000000ffffU;
	v = (v | v << 16U) & 0x1f0000ff0000ffU;
	v = (v | v << 8U) & 0x100f00f00f00f00fU;
	v = (v | v << 4U) & 0x10c30c30c30c30c3U;
	return (v | v << 2U) & 0x1249249249249249U;
}

} // namespace

std::vector<std::uint32_t> mortonOrder(const std::vector<const Point3*>& vPoints)
{
	const Range x = bulkOf(vPoints, &Point3::x);
	const Range y = bulkOf(vPoints, &Point3::y);
	const Range z = bulkOf(vPoints, &Point3::z);
	const double side = std::max({x.high - x.low, y.high - y.low, z.high - z.low});
	constexpr double kCells = static_cast<double>(1U << kLevels);
	const double scale = side > 0.0 ? kCells / side : 0.0;
	const auto cell = [scale](double coordinate, const Range& range) {
		const double c = (coordinate - range.low) * scale;
		return spread(static_cast<std::uint64_t>(c > 0.0 ? std::min(c, kCells - 1.0) : 0.0));
	};

	std::vector<KeyedPosition> vKeyed;
	vKeyed.reserve(vPoints.size());
	for (std::size_t i = 0; i < vPoints.size(); ++i) {
		prefetchObject(vPoints[placeAhead(i, vPoints.size())]);
		const Point3* p = vPoints[i];
		const std::uint64_t place = cell(p->x(), x) << 2U | cell(p->y(), y) << 1U | cell(p->z(), z);
		const auto key = static_cast<std::uint32_t>(place >> (3 * kLevels - kKeyBits));
		vKeyed.push_back({key, static_cast<std::uint32_t>(i), place});
	}
	// Points at many scales share cells of the last level around the densest ones.
	sortByKey(vKeyed, kKeyBits, [&vPoints](const KeyedPosition& a, const KeyedPosition& b) {
		return a.place != b.place ? a.place < b.place
		                          : isBefore(*vPoints[a.position], *vPoints[b.position]);
	});
	std::vector<std::uint32_t> vAlong;
	vAlong.reserve(vKeyed.size());
	for (const KeyedPosition& keyed : vKeyed) vAlong.push_back(keyed.position);
	return vAlong;
}

} // namespace TULO3D
