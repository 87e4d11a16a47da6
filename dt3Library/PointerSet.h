// SPDX-License-Identifier: MIT
// Remembers which tetrahedra a small traversal has seen.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A set of non-null pointers with open addressing. An ordinary star of a vertex fits in where it
/// stands, on the stack; it doubles for the few large ones.
class PointerSet
{
public:
	/// Adds `p`; false when it was there already.
	bool add(const void* p)
	{
		const auto address = reinterpret_cast<std::uintptr_t>(p);
		std::uintptr_t* pSlot = findSlot(address);
		const bool bNew = *pSlot == 0;
		*pSlot = address;
		count += bNew;
		if (2 * count > mask) grow();
		return bNew;
	}

private:
	static constexpr std::size_t kFirstSize = 256;

	/// Where `p` is, or a free slot where it belongs.
	std::uintptr_t* findSlot(std::uintptr_t p) const
	{
		// Fibonacci hashing: the product spreads what differs between two records over its top bits.
		const std::uint64_t product = std::uint64_t{p} * 0x9E3779B97F4A7C15U;
		auto i = static_cast<std::size_t>(product >> 40U) & mask;
		// Free or found: which of the two ends the search cannot be guessed, so it is one condition.
		while (std::min(slots[i], slots[i] ^ p) != 0) i = (i + 1) & mask;
		return slots + i;
	}

	void grow()
	{
		std::vector<std::uintptr_t> larger(2 * (mask + 1), 0);
		const std::uintptr_t* const pOld = slots;
		const std::size_t oldSize = mask + 1;
		slots = larger.data();
		mask = larger.size() - 1;
		for (std::size_t i = 0; i < oldSize; ++i) {
			if (pOld[i] != 0) *findSlot(pOld[i]) = pOld[i];
		}
		many.swap(larger);
	}

	std::uintptr_t few[kFirstSize] = {}; // addresses, 0 in a free slot
	std::vector<std::uintptr_t> many;
	std::uintptr_t* slots = few;
	std::size_t mask = kFirstSize - 1;
	std::size_t count = 0;
};

} // namespace TULO3D
