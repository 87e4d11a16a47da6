// SPDX-License-Identifier: MIT
// The ordered set behind the vertex store: items along the curve, in sorted chunks.
#pragma once

#include "Point3.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace TULO3D {

/// Sort record (an item): a vertex and its position on the curve. During a lookup the vertex may be the
/// caller's point, or null.
struct IdxVtx
{
	std::uint32_t key;
	Point3* pVtx;
};

/// The order of the listing: key; null before any vertex; then x, y, z. Because a key is a function
/// of the coordinates, two items are equivalent exactly when their coordinates are equal.
struct Func_ltIdxVtxPtr
{
	bool operator()(const IdxVtx* a, const IdxVtx* b) const
	{
		if (a->key != b->key) return a->key < b->key;
		if (a->pVtx == nullptr || b->pVtx == nullptr)
			return a->pVtx == nullptr && b->pVtx != nullptr;
		return *a->pVtx < *b->pVtx;
	}
};

/// An ordered set of item pointers. The items are not owned.
///
/// It is a sequence of sorted chunks, like the leaves of a B-tree, dense enough to be read at memory speed.
/// The items of the first batch are consecutive in memory in curve order, and a chunk of such items stores
/// only the first; any other chunk stores 12 to 24 bytes an item, where a tree of nodes takes 48.
class VertexOrder
{
public:
	class Iterator;

	std::size_t size() const { return numItems; }

	Iterator begin() const;
	Iterator end() const;

	/// The first item that is not before `probe`.
	Iterator lowerBound(const IdxVtx& probe) const;

	/// Inserts an item at its position, found by `lowerBound`, and returns where it is then.
	Iterator insertAt(const Iterator& at, IdxVtx* pItem);

	/// Inserts an item that comes after all others.
	void append(IdxVtx* pItem);

	/// Inserts all items of `others`, none of which is equivalent to any in the set.
	void merge(VertexOrder&& others);

	/// Replaces all items by these, which are sorted.
	void assign(const std::vector<IdxVtx*>& vSorted);

private:
	static constexpr std::size_t kCapacity = 512;

	/// Up to kCapacity items, at least one.
	class Chunk
	{
	public:
		explicit Chunk(IdxVtx* pItem) : pFirst(pItem), lastKey(pItem->key) {}

		std::size_t size() const { return count; }
		IdxVtx* operator[](std::size_t i) const { return list ? list->items[i] : pFirst + i; }

		/// True when item `i` comes before the probe.
		bool isBefore(std::size_t i, const IdxVtx& probe) const
		{
			return isBefore(list ? list->keys[i] : pFirst[i].key, i, probe);
		}
		/// True when all of them do.
		bool isBefore(const IdxVtx& probe) const { return isBefore(lastKey, count - 1, probe); }

		void insert(std::size_t i, IdxVtx* pItem);
		/// The items from the n-th on.
		Chunk from(std::size_t n) const;
		/// Leaves the first `n` items, at least one.
		void cut(std::size_t n);

	private:
		// A search reads keys alone, until two are equal: it touches a few cache lines instead of one item
		// after the other.
		struct List
		{
			std::uint32_t keys[kCapacity];
			IdxVtx* items[kCapacity];
		};

		bool isBefore(std::uint32_t key, std::size_t i, const IdxVtx& probe) const
		{
			return key != probe.key ? key < probe.key : Func_ltIdxVtxPtr()((*this)[i], &probe);
		}
		void makeList();

		IdxVtx* pFirst; // of consecutive items, as long as there is no list
		std::unique_ptr<List> list;
		std::size_t count = 1;
		std::uint32_t lastKey;
	};

	void swap(VertexOrder& other);

	std::vector<Chunk> chunks;
	std::size_t numItems = 0;
};

/// Runs through the items in their order, both ways. Any insertion makes it invalid.
class VertexOrder::Iterator
{
public:
	using iterator_category = std::bidirectional_iterator_tag;
	using value_type = IdxVtx*;
	using difference_type = std::ptrdiff_t;
	using pointer = void;
	using reference = IdxVtx*;

	Iterator(const VertexOrder& theOrder, std::size_t theChunk, std::size_t theOffset)
	    : pOrder(&theOrder), chunk(theChunk), offset(theOffset)
	{
	}

	IdxVtx* operator*() const { return pOrder->chunks[chunk][offset]; }
	Iterator& operator++()
	{
		if (++offset == pOrder->chunks[chunk].size()) {
			++chunk;
			offset = 0;
		}
		return *this;
	}
	Iterator& operator--()
	{
		if (offset == 0) offset = pOrder->chunks[--chunk].size();
		--offset;
		return *this;
	}
	bool operator==(const Iterator& other) const
	{
		return chunk == other.chunk && offset == other.offset;
	}
	bool operator!=(const Iterator& other) const { return !(*this == other); }

private:
	friend class VertexOrder;

	const VertexOrder* pOrder;
	std::size_t chunk; // behind the last one, with offset 0, at the end
	std::size_t offset;
};

inline VertexOrder::Iterator VertexOrder::begin() const
{
	return {*this, 0, 0};
}

inline VertexOrder::Iterator VertexOrder::end() const
{
	return {*this, chunks.size(), 0};
}

} // namespace TULO3D
