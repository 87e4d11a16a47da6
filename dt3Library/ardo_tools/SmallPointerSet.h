// SPDX-License-Identifier: MIT
// A set of the tetrahedra that a small traversal has visited.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A hash set of non-null pointers with open addressing. The star of an ordinary vertex fits into its
/// fixed array, on the stack; for the few large stars the set allocates and doubles.
class SmallPointerSet
{
public:
	SmallPointerSet() = default;
	SmallPointerSet(const SmallPointerSet&) = delete;
	SmallPointerSet& operator=(const SmallPointerSet&) = delete;

	/// Adds `p`, for which there must be room; false when it was there already.
	bool add(const void* p)
	{
		const void** const pSlot = findSlot(p);
		const bool bNew = *pSlot == nullptr;
		*pSlot = p;
		return bNew;
	}

	bool contains(const void* p) const { return *findSlot(p) != nullptr; }

	/// Makes room for `count` pointers altogether.
	void makeRoom(std::size_t count)
	{
		while (2 * count > mask) grow();
	}

private:
	static constexpr std::size_t kFirstSize = 256; // 2^8

	/// Where `p` is, or a free slot where it belongs.
	const void** findSlot(const void* p) const
	{
		// Fibonacci hashing: the product spreads what differs between two records over its top bits.
		const auto address = reinterpret_cast<std::uintptr_t>(p);
		const std::uint64_t product = std::uint64_t{address} * 0x9E3779B97F4A7C15U;
		auto i = static_cast<std::size_t>(product >> shift);
		// Free or found: one unpredictable branch instead of two.
		const auto isElsewhere = [&] {
			const auto found = reinterpret_cast<std::uintptr_t>(slots[i]);
			return std::min(found, found ^ address) != 0;
		};
		while (isElsewhere()) i = (i + 1) & mask;
		return slots + i;
	}

	void grow()
	{
		std::vector<const void*> larger(2 * (mask + 1), nullptr);
		const void** const pOld = slots;
		const std::size_t oldSize = mask + 1;
		slots = larger.data();
		mask = larger.size() - 1;
		--shift;
		for (std::size_t i = 0; i < oldSize; ++i) {
			if (pOld[i] != nullptr) *findSlot(pOld[i]) = pOld[i];
		}
		many.swap(larger);
	}

	const void* few[kFirstSize] = {}; // null in a free slot
	std::vector<const void*> many;
	const void** slots = few;
	std::size_t mask = kFirstSize - 1;
	unsigned shift = 64 - 8; ///< leaves as many bits of a product as the mask has
};

} // namespace TULO3D
