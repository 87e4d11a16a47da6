// SPDX-License-Identifier: MIT
// A set of numbers with predecessor and successor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A set of numbers below a limit that finds the next member on either side of any number.
///
/// A hierarchical bitset: a bit for each number, a bit for each word of bits that is not zero, and so on.
/// A query reads a word or two on each of a few levels.
class BitsetTree
{
public:
	static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

	explicit BitsetTree(std::size_t limit);

	void add(std::size_t number);
	/// The largest member below `number`, or kNone.
	std::size_t below(std::size_t number) const;
	/// The smallest member above `number`, or kNone.
	std::size_t above(std::size_t number) const;

private:
	std::vector<std::vector<std::uint64_t>> levels; // the bits, then the words that are not zero
};

} // namespace TULO3D
