// SPDX-License-Identifier: MIT
// A work array that can be appended to without a branch.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace TULO3D {

/// A growable array of plain values that outlives its contents: clearing keeps the memory, as the
/// work of one insertion is followed by that of the next.
///
/// `pushIf` always writes and only moves the end when told so. In a cavity one neighbour in two is
/// taken, and no CPU predicts which; a wasted write costs far less than a wrong guess.
template <typename T>
class ScratchArray
{
public:
	/// Makes sure that `count` more elements fit; `push` and `pushIf` rely on it.
	void makeRoom(std::size_t count)
	{
		if (static_cast<std::size_t>(pLimit - pEnd) < count) grow(2 * (size() + count));
	}

	void push(const T& value) { *pEnd++ = value; }

	void pushIf(bool bTake, const T& value)
	{
		*pEnd = value;
		pEnd += bTake;
	}

	T pop() { return *--pEnd; }
	const T& top() const { return pEnd[-1]; }
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
