// SPDX-License-Identifier: MIT
// The ordered set behind the vertex store.
#include "VertexItems.h"

#include <algorithm>
#include <iterator>

namespace TULO3D {

VertexItems::Position VertexItems::next(Position at) const
{
	if (at.offset + 1 < chunks[at.chunk]->count) return {at.chunk, at.offset + 1};
	return {at.chunk + 1, 0};
}

VertexItems::Position VertexItems::previous(Position at) const
{
	if (at.offset > 0) return {at.chunk, at.offset - 1};
	return {at.chunk - 1, chunks[at.chunk - 1]->count - 1};
}

VertexItems::Position VertexItems::lowerBound(const IdxVtx& probe) const
{
	const Func_ltIdxVtxPtr less;
	const auto chunkIsBefore = [&less](const std::unique_ptr<Chunk>& pChunk, const IdxVtx* pProbe) {
		return less(pChunk->items[pChunk->count - 1], pProbe);
	};
	const auto itChunk = std::lower_bound(chunks.begin(), chunks.end(), &probe, chunkIsBefore);
	const auto chunk = static_cast<std::size_t>(itChunk - chunks.begin());
	if (itChunk == chunks.end()) return {chunk, 0};
	IdxVtx* const* pFirst = (*itChunk)->items;
	IdxVtx* const* pFound = std::lower_bound(pFirst, pFirst + (*itChunk)->count, &probe, less);
	return {chunk, static_cast<std::size_t>(pFound - pFirst)};
}

VertexItems::Position VertexItems::insertAt(Position at, IdxVtx* pItem)
{
	if (isEnd(at)) {
		append(pItem, kCapacity);
		return {chunks.size() - 1, chunks.back()->count - 1};
	}
	if (chunks[at.chunk]->count == kCapacity) {
		std::unique_ptr<Chunk> pUpper(new Chunk);
		Chunk& lower = *chunks[at.chunk];
		constexpr std::size_t half = kCapacity / 2;
		std::copy(lower.items + half, lower.items + kCapacity, pUpper->items);
		pUpper->count = kCapacity - half;
		chunks.insert(
		    chunks.begin() + static_cast<std::ptrdiff_t>(at.chunk) + 1, std::move(pUpper));
		lower.count = half;
		if (at.offset > half) at = {at.chunk + 1, at.offset - half};
	}
	Chunk& chunk = *chunks[at.chunk];
	std::copy_backward(
	    chunk.items + at.offset, chunk.items + chunk.count, chunk.items + chunk.count + 1);
	chunk.items[at.offset] = pItem;
	++chunk.count;
	++numItems;
	return at;
}

void VertexItems::merge(const std::vector<IdxVtx*>& vSorted)
{
	if (numItems == 0) return assign(vSorted);
	// A few items find their places one by one; many are worth a pass over the whole set.
	if (vSorted.size() < numItems / 16) {
		for (IdxVtx* pItem : vSorted) insertAt(lowerBound(*pItem), pItem);
		return;
	}
	std::vector<IdxVtx*> vOld;
	list(vOld);
	std::vector<IdxVtx*> vMerged;
	vMerged.reserve(vOld.size() + vSorted.size());
	std::merge(vOld.begin(), vOld.end(), vSorted.begin(), vSorted.end(),
	    std::back_inserter(vMerged), Func_ltIdxVtxPtr());
	assign(vMerged);
}

void VertexItems::assign(const std::vector<IdxVtx*>& vSorted)
{
	// Built aside, so that running out of memory leaves the set as it was. The chunks are not filled
	// to the brim, or single items still to come would split every one of them at once.
	constexpr std::size_t fill = kCapacity - kCapacity / 8;
	VertexItems filled;
	filled.chunks.reserve(vSorted.size() / fill + 1);
	for (IdxVtx* pItem : vSorted) filled.append(pItem, fill);
	chunks.swap(filled.chunks);
	numItems = filled.numItems;
}

void VertexItems::list(std::vector<IdxVtx*>& vOut) const
{
	vOut.reserve(vOut.size() + numItems);
	for (const auto& pChunk : chunks) {
		vOut.insert(vOut.end(), pChunk->items, pChunk->items + pChunk->count);
	}
}

void VertexItems::append(IdxVtx* pItem, std::size_t fill)
{
	if (chunks.empty() || chunks.back()->count >= fill) {
		chunks.push_back(std::unique_ptr<Chunk>(new Chunk));
	}
	Chunk& chunk = *chunks.back();
	chunk.items[chunk.count++] = pItem;
	++numItems;
}

} // namespace TULO3D
