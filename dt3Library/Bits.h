// SPDX-License-Identifier: MIT
// Where the bits of a word are.
#pragma once

#include <cstdint>

namespace TULO3D {

/// The number of the lowest bit that is set in `word`, which must not be zero.
inline unsigned lowestBit(std::uint64_t word)
{
#if defined(__GNUC__)
	return static_cast<unsigned>(__builtin_ctzll(word));
#else
	unsigned n = 0;
	for (unsigned half = 32; half > 0; half /= 2) {
		const std::uint64_t low = word & ((std::uint64_t{1} << half) - 1);
		if (low == 0) n += half;
		word = low == 0 ? word >> half : low;
	}
	return n;
#endif
}

/// The number of the highest bit that is set in `word`, which must not be zero.
inline unsigned highestBit(std::uint64_t word)
{
#if defined(__GNUC__)
	return 63U - static_cast<unsigned>(__builtin_clzll(word));
#else
	unsigned n = 0;
	for (unsigned half = 32; half > 0; half /= 2) {
		if (word >> half == 0) continue;
		n += half;
		word >>= half;
	}
	return n;
#endif
}

} // namespace TULO3D
