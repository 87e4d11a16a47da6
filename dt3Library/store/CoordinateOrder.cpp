// SPDX-License-Identifier: MIT
// The order of the points within one cell of the curve.
#include "store/CoordinateOrder.h"
#include "ardo_tools/RadixSort.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace TULO3D {

namespace {

/// The first bits of a number, in the order of the numbers.
std::uint64_t orderedBits(double x, unsigned numBits)
{
	constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
	x += 0.0; // no negative zero
	std::uint64_t bits = 0;
	std::memcpy(&bits, &x, sizeof bits);
	bits ^= (bits & kSign) != 0 ? ~std::uint64_t{0} : kSign;
	return bits >> (64 - numBits);
}

} // namespace

void sortByCoordinates(std::vector<std::uint32_t>& vPositions, const std::vector<Point3>& vPoints)
{
	constexpr std::size_t kMany = 512;
	constexpr unsigned kBits = 36; // four passes
	using KeyedPosition = Keyed<std::uint64_t, std::uint32_t>;
	const auto byCoordinates = [&vPoints](std::uint32_t i, std::uint32_t j) {
		return vPoints[i] < vPoints[j];
	};
	if (vPositions.size() < kMany) {
		if (vPositions.size() > 1) {
			std::stable_sort(vPositions.begin(), vPositions.end(), byCoordinates);
		}
		return;
	}
	std::vector<KeyedPosition> vKeyed;
	vKeyed.reserve(vPositions.size());
	for (const std::uint32_t i : vPositions) {
		vKeyed.push_back({orderedBits(vPoints[i].x(), kBits), i});
	}
	sortByKey(vKeyed, kBits, [&byCoordinates](const KeyedPosition& a, const KeyedPosition& b) {
		return byCoordinates(a.value, b.value);
	});
	for (std::size_t i = 0; i < vKeyed.size(); ++i) vPositions[i] = vKeyed[i].value;
}

} // namespace TULO3D
