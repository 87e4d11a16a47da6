// SPDX-License-Identifier: MIT
// A work array with branch-free conditional append.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace TULO3D {

/// A growable array of plain values that outlives its contents: clearing keeps the memory, as the
/// work of one insertion is followed by that of the next.
///
/// A `Writer` appends conditionally without a branch: an unconditional store, a conditional increment. In a
/// cavity one neighbour in two is taken, which is unpredictable; a wasted store costs far less than a
/// misprediction.
template <typename T>
class ScratchArray
{
public:
	/// A cursor that keeps the end of an array in a register for a few writes. Otherwise the compiler would
	/// reload the end after each write, because the write may alias the array's own members.
	class Writer
	{
	public:
		explicit Writer(T* pEnd) : pNext(pEnd) {}

		void pushIf(bool bTake, const T& value)
		{
			*pNext = value;
			pNext += bTake;
		}

	private:
		friend class ScratchArray;
		T* pNext;
	};

	/// For up to `count` more elements, which belong to the array after `accept`.
	Writer writer(std::size_t count)
	{
		makeRoom(count);
		return Writer(pEnd);
	}

	void accept(const Writer& writer) { pEnd = writer.pNext; }

	/// Makes sure that `count` more elements fit; `push` relies on it.
	void makeRoom(std::size_t count)
	{
		if (static_cast<std::size_t>(pLimit - pEnd) < count) grow(2 * (size() + count));
	}

	void push(const T& value) { *pEnd++ = value; }

	/// With room for itself.
	void add(const T& value)
	{
		makeRoom(1);
		push(value);
	}

	T pop() { return *--pEnd; }
	void clear() { pEnd = elements.get(); }

	bool empty() const { return pEnd == elements.get(); }
	std::size_t size() const { return static_cast<std::size_t>(pEnd - elements.get()); }
	const T* begin() const { return elements.get(); }
	const T* end() const { return pEnd; }

private:
	void grow(std::size_t capacity)
	{
		std::unique_ptr<T[]> larger(new T[capacity]);
		std::copy(begin(), end(), larger.get());
		pEnd = larger.get() + size();
		pLimit = larger.get() + capacity;
		elements = std::move(larger);
	}

	std::unique_ptr<T[]> elements;
	T* pEnd = nullptr;
	T* pLimit = nullptr;
};

} // namespace TULO3D
