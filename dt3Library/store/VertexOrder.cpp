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

VertexOrder::Position VertexOrder::next(Position at) const
{
	if (at.offset + 1 < chunks[at.chunk].size()) return {at.chunk, at.offset + 1};
	return {at.chunk + 1, 0};
}

VertexOrder::Position VertexOrder::previous(Position at) const
{
	if (at.offset > 0) return {at.chunk, at.offset - 1};
	return {at.chunk - 1, chunks[at.chunk - 1].size() - 1};
}

VertexOrder::Position VertexOrder::lowerBound(const IdxVtx& probe) const
{
	const auto itChunk = std::partition_point(chunks.begin(), chunks.end(),
	    [&probe](const Chunk& chunk) { return chunk.isBefore(probe); });
	const auto chunk = static_cast<std::size_t>(itChunk - chunks.begin());
	if (itChunk == chunks.end()) return {chunk, 0};
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
	return {chunk, first};
}

VertexOrder::Position VertexOrder::insertAt(Position at, IdxVtx* pItem)
{
	if (isEnd(at)) {
		append(pItem);
		return {chunks.size() - 1, chunks.back().size() - 1};
	}
	if (chunks[at.chunk].size() == kCapacity) {
		constexpr std::size_t half = kCapacity / 2;
		const auto itNext = chunks.begin() + static_cast<std::ptrdiff_t>(at.chunk) + 1;
		chunks.insert(itNext, chunks[at.chunk].from(half));
		chunks[at.chunk].cut(half);
		if (at.offset > half) at = {at.chunk + 1, at.offset - half};
	}
	chunks[at.chunk].insert(at.offset, pItem);
	++numItems;
	return at;
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
	std::vector<IdxVtx*> vNew;
	others.list(vNew);
	// A few items are inserted one by one; for many, a merge of the whole set is faster.
	if (vNew.size() < numItems / 16) {
		for (IdxVtx* pItem : vNew) insertAt(lowerBound(*pItem), pItem);
		return;
	}
	std::vector<IdxVtx*> vOld;
	list(vOld);
	std::vector<IdxVtx*> vMerged;
	vMerged.reserve(vOld.size() + vNew.size());
	std::merge(vOld.begin(), vOld.end(), vNew.begin(), vNew.end(), std::back_inserter(vMerged),
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

void VertexOrder::list(std::vector<IdxVtx*>& vOut) const
{
	vOut.reserve(vOut.size() + numItems);
	for (const Chunk& chunk : chunks) {
		for (std::size_t i = 0; i < chunk.size(); ++i) vOut.push_back(chunk[i]);
	}
}

} // namespace TULO3D
