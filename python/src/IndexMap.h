// SPDX-License-Identifier: MIT
// Numbers a few indices out of many in the order of their arrival: a small hash table, used again and
// again.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace binding {

class IndexMap
{
public:
	IndexMap() : vSlots(kFewSlots, kFree) {}

	std::size_t size() const { return vKeys.size(); }
	/// The key with this number.
	std::int32_t key(std::size_t number) const { return vKeys[number]; }

	/// The number of `key`; a new key gets the next one.
	std::size_t numberOf(std::int32_t key)
	{
		std::size_t slot = find(key);
		if (vSlots[slot] != kFree) return static_cast<std::size_t>(vSlots[slot]);
		if (2 * (vKeys.size() + 1) > vSlots.size()) {
			rehash(2 * vSlots.size());
			slot = find(key);
		}
		vSlots[slot] = static_cast<std::int32_t>(vKeys.size());
		vKeys.push_back(key);
		return vKeys.size() - 1;
	}

	void clear()
	{
		std::fill(vSlots.begin(), vSlots.end(), kFree);
		vKeys.clear();
	}

private:
	static constexpr std::size_t kFewSlots = 256;
	static constexpr std::int32_t kFree = -1;

	std::size_t find(std::int32_t key) const
	{
		const std::size_t mask = vSlots.size() - 1;
		std::size_t slot = (static_cast<std::uint32_t>(key) * 2654435769U >> 8U) & mask;
		while (vSlots[slot] != kFree && vKeys[static_cast<std::size_t>(vSlots[slot])] != key) {
			slot = (slot + 1) & mask;
		}
		return slot;
	}

	void rehash(std::size_t numSlots)
	{
		vSlots.assign(numSlots, kFree);
		for (std::size_t n = 0; n < vKeys.size(); ++n) {
			vSlots[find(vKeys[n])] = static_cast<std::int32_t>(n);
		}
	}

	std::vector<std::int32_t> vSlots; // the numbers; a power of two of them
	std::vector<std::int32_t> vKeys;
};

} // namespace binding
