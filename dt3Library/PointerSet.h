// SPDX-License-Identifier: MIT
// Remembers which tetrahedra a small traversal has seen.
#pragma once

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
		const void** pSlot = findSlot(p);
		const bool bNew = *pSlot == nullptr;
		*pSlot = p;
		count += bNew;
		if (2 * count > mask) grow();
		return bNew;
	}

private:
	static constexpr std::size_t kFirstSize = 128;

	const void** findSlot(const void* p)
	{
		// Fibonacci hashing: the product spreads what differs between two records over its top bits.
		const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(p));
		auto i = static_cast<std::size_t>((address * 0x9E3779B97F4A7C15U) >> 40U) & mask;
		while (slots[i] != nullptr && slots[i] != p) i = (i + 1) & mask;
		return slots + i;
	}

	void grow()
	{
		std::vector<const void*> larger(2 * (mask + 1), nullptr);
		const void** const pOld = slots;
		const std::size_t oldSize = mask + 1;
		slots = larger.data();
		mask = larger.size() - 1;
		for (std::size_t i = 0; i < oldSize; ++i) {
			if (pOld[i] != nullptr) *findSlot(pOld[i]) = pOld[i];
		}
		many.swap(larger);
	}

	const void* few[kFirstSize] = {};
	std::vector<const void*> many;
	const void** slots = few;
	std::size_t mask = kFirstSize - 1;
	std::size_t count = 0;
};

} // namespace TULO3D
