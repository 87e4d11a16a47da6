// SPDX-License-Identifier: MIT
// A work array that can be appended to without a branch.
#pragma once

#include <cstddef>
#include <vector>

namespace TULO3D {

/// A growable array that outlives its contents: clearing keeps the memory, as the work of one
/// insertion is followed by that of the next.
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
		if (length + count > elements.size()) elements.resize(2 * (length + count));
	}

	void push(const T& value) { elements[length++] = value; }

	void pushIf(bool bTake, const T& value)
	{
		elements[length] = value;
		length += bTake;
	}

	T pop() { return elements[--length]; }
	void clear() { length = 0; }

	bool empty() const { return length == 0; }
	std::size_t size() const { return length; }
	const T* begin() const { return elements.data(); }
	const T* end() const { return elements.data() + length; }

private:
	std::vector<T> elements;
	std::size_t length = 0;
};

} // namespace TULO3D
