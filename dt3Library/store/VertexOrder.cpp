// SPDX-License-Identifier: MIT
// The ordered set behind the vertex store.
#include "store/VertexOrder.h"

#include <algorithm>
#include <iterator>

namespace TULO3D {

void VertexOrder::Chunk::makeList()
{
	std::unique_ptr<List> made(new List);
	for (std::size_t i = 0; i < count; ++i) {
		made->keys[i] = pFirst[i].key;
		made->items[i] = pFirst + i;
	}
	list = std::move(made);
}

void VertexOrder::Chunk::insert(std::size_t i, IdxVtx* pItem)
{
	const auto insertInto = [i, this](auto* pArray, auto value) {
		std::copy_backward(pArray + i, pArray + count, pArray + count + 1);
		pArray[i] = value;
	};
	const bool bFollows = i == count && pItem == pFirst + count;
	if (!list && !bFollows) makeList();
	if (list) {
		insertInto(list->keys, pItem->key);
		insertInto(list->items, pItem);
	}
	if (i == count) lastKey = pItem->key;
	++count;
}

VertexOrder::Chunk VertexOrder::Chunk::from(std::size_t n) const
{
	Chunk rest((*this)[n]);
	for (std::size_t i = n + 1; i < count; ++i) rest.insert(i - n, (*this)[i]);
	return rest;
}

void VertexOrder::Chunk::cut(std::size_t n)
{
	count = n;
	lastKey = (*this)[n - 1]->key;
}

VertexOrder::Iterator VertexOrder::lowerBound(const IdxVtx& probe) const
{
	const auto itChunk = std::partition_point(chunks.begin(), chunks.end(),
	    [&probe](const Chunk& chunk) { return chunk.isBefore(probe); });
	const auto chunk = static_cast<std::size_t>(itChunk - chunks.begin());
	if (itChunk == chunks.end()) return end();
	std::size_t first = 0;
	std::size_t last = itChunk->size() - 1; // the chunk's last item is not before the probe
	while (first < last) {
		const std::size_t middle = first + (last - first) / 2;
		if (itChunk->isBefore(middle, probe)) {
			first = middle + 1;
		} else {
			last = middle;
		}
	}
	return {*this, chunk, first};
}

VertexOrder::Iterator VertexOrder::insertAt(const Iterator& at, IdxVtx* pItem)
{
	if (at == end()) {
		append(pItem);
		return {*this, chunks.size() - 1, chunks.back().size() - 1};
	}
	std::size_t chunk = at.chunk;
	std::size_t offset = at.offset;
	if (chunks[chunk].size() == kCapacity) {
		constexpr std::size_t half = kCapacity / 2;
		chunks.insert(
		    chunks.begin() + static_cast<std::ptrdiff_t>(chunk) + 1, chunks[chunk].from(half));
		chunks[chunk].cut(half);
		if (offset > half) {
			++chunk;
			offset -= half;
		}
	}
	chunks[chunk].insert(offset, pItem);
	++numItems;
	return {*this, chunk, offset};
}

void VertexOrder::append(IdxVtx* pItem)
{
	// A load factor of 7/8: full chunks would all be split by the next few single insertions.
	constexpr std::size_t kFill = kCapacity - kCapacity / 8;
	if (chunks.empty() || chunks.back().size() >= kFill) {
		chunks.emplace_back(pItem);
	} else {
		chunks.back().insert(chunks.back().size(), pItem);
	}
	++numItems;
}

void VertexOrder::merge(VertexOrder&& others)
{
	if (numItems == 0) return swap(others);
	// A few items are inserted one by one; for many, a merge of the whole set is faster.
	if (others.numItems < numItems / 16) {
		for (IdxVtx* pItem : others) insertAt(lowerBound(*pItem), pItem);
		return;
	}
	std::vector<IdxVtx*> vMerged;
	vMerged.reserve(numItems + others.numItems);
	std::merge(begin(), end(), others.begin(), others.end(), std::back_inserter(vMerged),
	    Func_ltIdxVtxPtr());
	assign(vMerged);
}

void VertexOrder::assign(const std::vector<IdxVtx*>& vSorted)
{
	VertexOrder filled; // built aside, so that running out of memory leaves the set as it was
	for (IdxVtx* pItem : vSorted) filled.append(pItem);
	swap(filled);
}

void VertexOrder::swap(VertexOrder& other)
{
	chunks.swap(other.chunks);
	std::swap(numItems, other.numItems);
}

} // namespace TULO3D
