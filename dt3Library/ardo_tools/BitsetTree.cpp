// SPDX-License-Identifier: MIT
// A set of numbers with predecessor and successor.
#include "ardo_tools/BitsetTree.h"

#include "ardo_tools/Bits.h"

namespace TULO3D {

BitsetTree::BitsetTree(std::size_t limit)
{
	do {
		limit = (limit + 63) / 64;
		levels.emplace_back(limit, 0);
	} while (limit > 1);
}

void BitsetTree::add(std::size_t number)
{
	for (auto& level : levels) {
		level[number / 64] |= std::uint64_t{1} << (number % 64);
		number /= 64;
	}
}

std::size_t BitsetTree::below(std::size_t number) const
{
	for (std::size_t n = 0; n < levels.size(); ++n, number /= 64) {
		const std::uint64_t mask = (std::uint64_t{1} << (number % 64)) - 1;
		std::uint64_t word = number / 64 < levels[n].size() ? levels[n][number / 64] & mask : 0;
		if (word == 0) continue;
		std::size_t found = number / 64 * 64 + highestBit(word);
		while (n-- > 0) found = found * 64 + highestBit(levels[n][found]);
		return found;
	}
	return kNone;
}

std::size_t BitsetTree::above(std::size_t number) const
{
	for (std::size_t n = 0; n < levels.size(); ++n, number /= 64) {
		const std::uint64_t mask = number % 64 == 63 ? 0 : ~std::uint64_t{0} << (number % 64 + 1);
		const std::uint64_t word = levels[n][number / 64] & mask;
		if (word == 0) continue;
		std::size_t found = number / 64 * 64 + lowestBit(word);
		while (n-- > 0) found = found * 64 + lowestBit(levels[n][found]);
		return found;
	}
	return kNone;
}

} // namespace TULO3D
