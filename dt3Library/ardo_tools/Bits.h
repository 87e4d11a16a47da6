// SPDX-License-Identifier: MIT
// Where the bits of a word are, without a branch.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace TULO3D {

/// No six bits in a row occur twice in this word; so after a shift by n its first six tell n.
///
/// C. E. Leiserson, H. Prokop, K. H. Randall: Using de Bruijn Sequences to Index a 1 in a Computer Word,
/// 1998.
inline constexpr std::uint64_t kDeBruijn = 0x022fdd63cc95386d;

inline constexpr auto kShiftOf = [] {
	std::array<std::uint8_t, 64> shiftOf{};
	for (unsigned n = 0; n < 64; ++n) shiftOf[kDeBruijn << n >> 58U] = static_cast<std::uint8_t>(n);
	return shiftOf;
}();

/// The number of the lowest bit that is set in `word`, which must not be zero.
inline unsigned lowestBit(std::uint64_t word)
{
	return kShiftOf[static_cast<std::size_t>(kDeBruijn * (word & (0 - word)) >> 58U)];
}

/// The number of the highest bit that is set in `word`, which must not be zero.
inline unsigned highestBit(std::uint64_t word)
{
	for (unsigned n = 1; n < 64; n *= 2) word |= word >> n; // and all below
	return lowestBit(word - word / 2);
}

} // namespace TULO3D
