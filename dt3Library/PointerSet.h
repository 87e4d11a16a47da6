// SPDX-License-Identifier: MIT
// Remembers which tetrahedra a small traversal has seen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A set of non-null pointers with open addressing. It starts with room for an ordinary star of a
/// vertex and doubles for the few large ones.
class PointerSet
{
public:
	PointerSet() : slots(kFirstSize, nullptr) {}

	/// Adds `p`; false when it was there already.
	bool add(const void* p)
	{
		if (2 * (count + 1) > slots.size()) grow();
		const void*& slot = findSlot(p);
		if (slot == p) return false;
		slot = p;
		++count;
		return true;
	}

private:
	static constexpr std::size_t kFirstSize = 128;

	const void*& findSlot(const void* p)
	{
		// Records are far apart in memory; a multiplication spreads what differs over the top bits.
		const auto hash =
		    (reinterpret_cast<std::uintptr_t>(p) >> 4U) * std::uint64_t{0x9E3779B97F4A7C15};
		std::size_t i = static_cast<std::size_t>(hash >> 32U) & (slots.size() - 1);
		while (slots[i] != nullptr && slots[i] != p) i = (i + 1) & (slots.size() - 1);
		return slots[i];
	}

	void grow()
	{
		std::vector<const void*> old(2 * slots.size(), nullptr);
		old.swap(slots);
		for (const void* p : old) {
			if (p != nullptr) findSlot(p) = p;
		}
	}

	std::vector<const void*> slots;
	std::size_t count = 0;
};

} // namespace TULO3D
