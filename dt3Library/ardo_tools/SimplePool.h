// SPDX-License-Identifier: MIT
// An arena: storage for millions of records that are freed together.
#pragma once

#include "Message.h"
#include "ardo_tools/prefault.h"
#include "tools.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace TULO3D {

/// Hands out uninitialised storage for one T at a time from large blocks.
///
/// A single record is never given back; `reset` and the destructor give back all. No constructor or
/// destructor of a record is ever called.
template <typename T>
class SimplePool
{
public:
	SimplePool() = default;
	SimplePool(const SimplePool&) = delete;
	SimplePool& operator=(const SimplePool&) = delete;

	~SimplePool()
	{
		if (blockList.size() > 50) {
			try {
				Message() << "SimplePool::~SimplePool: Number of containers to release: "
				          << blockList.size() << std::endl;
			} catch (...) { // a host's stream that throws must not end the process here
			}
		}
		releaseAll();
	}

	/// The largest automatic block of T: 100 MB.
	static constexpr int kMaxBlock = static_cast<int>(100000000 / sizeof(T));

	/// Opens the first block. Further ones have `growth` records each; a negative `growth` halves
	/// once, then doubles up to `maxBlock`. Exactly once for each pool.
	void init(int firstBlock, int growth, int maxBlock)
	{
		if (initialized) {
			printAndStop(StopReason::kWrongUse,
			    "SimplePool::init(..), ERROR: This pool is already initialized");
		}
		maxBlockSize = maxBlock;
		firstBlockSize = firstBlock;
		growthSize = growth;
		addBlock(firstBlockSize);
		initialized = true;
	}

	T* alloc()
	{
		assert(initialized);
		++lastIndex;
		if (lastIndex < numReady) return currentBlock + lastIndex;
		return allocUnready();
	}

	/// Opens a block of `requested` records, or of the next automatic size when that is negative.
	void addBlock(int requested)
	{
		const int size = requested < 0 ? nextAutomaticSize() : requested;
		// First what may throw, so that no block is lost and the lists never differ.
		makeRoom(vSizes);
		makeRoom(blockList);
		T* pBlock = static_cast<T*>(std::malloc(static_cast<std::size_t>(size) * sizeof(T)));
		if (pBlock == nullptr) {
			printAndStop(
			    StopReason::kOutOfMemory, "SimplePool::alloc(..), ERROR: Out of memory, sorry");
		}
		vSizes.push_back(size);
		blockList.push_back(pBlock);
		currentBlock = pBlock;
		currentBlockSize = size;
		lastIndex = -1;
		numReady = size < kAhead ? size : 0;
	}

	/// The next `num` records will follow one another in memory. For a pool that is never reset.
	void reserveRun(int num)
	{
		if (num < currentBlockSize - lastIndex) return;
		const std::size_t before = vSizes.size() - 1;
		const int numUsedBefore = lastIndex + 1;
		addBlock(num);
		vSizes[before] = numUsedBefore; // what is left of that block is never handed out
		pristine = false;
	}

	/// Makes all records available again; only the first block is kept.
	void reset()
	{
		lastIndex = -1;
		if (pristine) return;
		for (std::size_t i = 1; i < blockList.size(); ++i) std::free(blockList[i]);
		blockList.resize(1);
		currentBlock = blockList[0];
		currentBlockSize = firstBlockSize;
		numReady = firstBlockSize;
		pristine = true;
		// Deliberate: vSizes stays, so automatic growth goes on from the last size.
	}

	/// Gives every block back.
	void releaseAll()
	{
		for (T* pBlock : blockList) std::free(pBlock);
		pristine = true;
		blockList.clear();
	}

	/// How many records have been handed out. For a pool that is never reset.
	std::size_t numUsed() const
	{
		const auto numBefore = std::accumulate(vSizes.begin(), vSizes.end(), std::size_t{0});
		return numBefore - static_cast<std::size_t>(currentBlockSize - lastIndex - 1);
	}

	/// The records handed out so far, by address: for each block its first and their number. For a
	/// pool that is never reset.
	std::vector<std::pair<T*, std::size_t>> usedBlocks() const
	{
		std::vector<std::pair<T*, std::size_t>> used;
		for (std::size_t i = 0; i < blockList.size(); ++i) {
			const int count = blockList[i] == currentBlock ? lastIndex + 1 : vSizes[i];
			used.emplace_back(blockList[i], static_cast<std::size_t>(count));
		}
		std::sort(used.begin(), used.end(),
		    [](const auto& a, const auto& b) { return std::less<T*>()(a.first, b.first); });
		return used;
	}

	std::vector<T*> blockList; ///< the blocks owned, in the order obtained
	std::vector<int> vSizes;   ///< the record counts of every block ever obtained
	T* currentBlock = nullptr;
	int lastIndex = -1; ///< the last record handed out of the current block
	int currentBlockSize = -1;
	int firstBlockSize = -1;
	int growthSize = -1;
	bool initialized = false;
	bool pristine = true; ///< no block beyond the first in use
	int maxBlockSize = -1;

private:
	/// The number of records that are pre-faulted at a time: 1 MB.
	static constexpr int kAhead = static_cast<int>((1U << 20U) / sizeof(T)) + 1;

	T* allocUnready()
	{
		if (lastIndex >= currentBlockSize) {
			lastIndex = currentBlockSize - 1; // which stays so when there is no memory
			addBlock(growthSize);
			++lastIndex;
			pristine = false;
			if (lastIndex < numReady) return currentBlock;
		}
		const int count = std::min(kAhead, currentBlockSize - lastIndex);
		prefault(currentBlock + lastIndex, static_cast<std::size_t>(count) * sizeof(T));
		numReady = lastIndex + count;
		return currentBlock + lastIndex;
	}

	/// For one more element, which can then be added without fail.
	template <typename V>
	static void makeRoom(std::vector<V>& v)
	{
		if (v.size() == v.capacity()) v.reserve(2 * v.size() + 1);
	}

	int numReady = 0; ///< the records of the current block that are pre-faulted

	// Deliberate: half the first block, then double. A small engine stays small.
	int nextAutomaticSize() const
	{
		assert(!vSizes.empty());
		assert(vSizes.back()>0);
		const int last = vSizes.empty() ? 0 : vSizes.back();
		if (vSizes.size() == 1) return std::min(last / 2, maxBlockSize);
		return last > maxBlockSize / 2 ? maxBlockSize : 2 * last;
	}
};

} // namespace TULO3D
