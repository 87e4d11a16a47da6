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

constexpr unsigned kFractionBits = 52;

std::uint64_t bitsOf(double x)
{
	x += 0.0; // no negative zero
	std::uint64_t bits = 0;
	std::memcpy(&bits, &x, sizeof bits);
	return bits;
}

int exponentOf(std::uint64_t bits)
{
	return static_cast<int>(bits << 1U >> (kFractionBits + 1));
}

/// The weight of the highest binary digit in which two coordinates differ, as an exponent; the sign counts as
/// the highest of all.
int leadingDifference(double a, double b)
{
	constexpr int kNone = -100;
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

/// The 21 lowest bits of `v`, two zeros behind each.
std::uint64_t spread(std::uint64_t v)
{
	v = (v | v << 32U) & 0x1f00000000ffffU;
	v = (v | v << 16U) & 0x1f0000ff0000ffU;
	v = (v | v << 8U) & 0x100f00f00f00f00fU;
	v = (v | v << 4U) & 0x10c30c30c30c30c3U;
	return (v | v << 2U) & 0x1249249249249249U;
}

/// A point and its position on the Morton curve.
struct KeyedPosition
{
	std::uint32_t key; // the leading bits of `place`: they tell most points apart
	std::uint32_t position;
	std::uint64_t place;
};

/// The order of `isBefore` as numbers, as far as they go: by octant; in it by the largest exponent of the three
/// coordinates, that is by scale; and then by the 21 binary digits of each coordinate from that exponent on.
KeyedPosition placeAtItsScale(const Point3& p, std::uint32_t position)
{
	constexpr std::uint64_t kDigits = (1U << kLevels) - 1;
	const std::uint64_t bits[3] = {bitsOf(p.x()), bitsOf(p.y()), bitsOf(p.z())};
	int scale = 0;
	for (const std::uint64_t b : bits) scale = std::max(scale, exponentOf(b));
	// Digits of denormal numbers have other weights: these few points remain in one place.
	if (scale <= static_cast<int>(kLevels)) scale = 0;

	std::uint32_t octant = 0;
	std::uint64_t place = 0;
	bool bAscending = false; // away from the origin, by the first of the largest coordinates
	for (unsigned axis = 3; axis-- > 0;) {
		const bool bPositive = bits[axis] >> 63U == 0;
		const int below = scale - exponentOf(bits[axis]);
		octant |= std::uint32_t{bPositive} << (2 - axis);
		if (below == 0) bAscending = bPositive;
		constexpr std::uint64_t kOne = std::uint64_t{1} << kFractionBits;
		std::uint64_t digits = 0;
		if (scale != 0 && below < static_cast<int>(kLevels)) {
			digits = ((bits[axis] & (kOne - 1)) | kOne) >>
			    (kFractionBits + 1 - kLevels + static_cast<unsigned>(below));
		}
		place |= spread(bPositive ? digits : digits ^ kDigits) << (2 - axis);
	}
	constexpr int kMiddle = 2048;
	const auto ordered = static_cast<std::uint32_t>(bAscending ? kMiddle + scale : kMiddle - scale);
	constexpr unsigned kPlaceBits = kKeyBits - 3 - 12;
	const auto leading = static_cast<std::uint32_t>(place >> (3 * kLevels - kPlaceBits));
	return {(octant << 12U | ordered) << kPlaceBits | leading, position, place};
}

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

using KeyedIterator = std::vector<KeyedPosition>::iterator;

/// Sorts points of one place by all their digits.
void sortTied(
    KeyedIterator itFirst, KeyedIterator itLast, const std::vector<const Point3*>& vPoints)
{
	std::vector<KeyedPosition> vTied;
	vTied.reserve(static_cast<std::size_t>(itLast - itFirst));
	for (auto it = itFirst; it != itLast; ++it) {
		if (itLast - it > 16) prefetchObject(vPoints[it[16].position]);
		vTied.push_back(placeAtItsScale(*vPoints[it->position], it->position));
	}
	sortByKey(vTied, kKeyBits, [&vPoints](const KeyedPosition& a, const KeyedPosition& b) {
		return a.place != b.place ? a.place < b.place
		                          : isBefore(*vPoints[a.position], *vPoints[b.position]);
	});
	std::copy(vTied.begin(), vTied.end(), itFirst);
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
	sortByKey(vKeyed, kKeyBits,
	    [](const KeyedPosition& a, const KeyedPosition& b) { return a.place < b.place; });
	// Points at many scales share cells of the last level around the densest ones.
	for (auto itFirst = vKeyed.begin(); itFirst != vKeyed.end();) {
		const auto itLast = std::find_if(itFirst + 1, vKeyed.end(),
		    [itFirst](const KeyedPosition& other) { return other.place != itFirst->place; });
		if (itLast - itFirst > 1) sortTied(itFirst, itLast, vPoints);
		itFirst = itLast;
	}
	std::vector<std::uint32_t> vAlong;
	vAlong.reserve(vKeyed.size());
	for (const KeyedPosition& keyed : vKeyed) vAlong.push_back(keyed.position);
	return vAlong;
}

} // namespace TULO3D
