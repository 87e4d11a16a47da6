// SPDX-License-Identifier: MIT
// Whether the first column of a text may number the points instead of being x.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace app {

/// Takes in the first field of each line: numbers of points are whole numbers that only rise, or only fall.
class PointNumbers
{
public:
	void add(std::string_view field);

	/// True for four numbers or more without a gap, and for eight or more with gaps: by chance, eight different
	/// numbers are sorted once in 20,000 times.
	bool areLikely() const { return bPossible && num >= (bConsecutive ? 4 : 8); }
	/// What the numbers are like.
	std::string describe() const;

private:
	bool bPossible = true;
	bool bConsecutive = true;
	std::size_t num = 0;
	std::int64_t first = 0, last = 0, step = 0;
};

} // namespace app
