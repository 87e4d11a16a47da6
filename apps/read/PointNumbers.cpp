// SPDX-License-Identifier: MIT
// Watching the first column from line to line.
#include "PointNumbers.h"

#include "LineReader.h"

#include <algorithm>
#include <cmath>

namespace app {

void PointNumbers::add(std::string_view field)
{
	if (!bPossible) return;
	double number = 0;
	bPossible = (parse(field, number) || parseDecimalComma(field, number)) && number >= 0 &&
	    number == std::floor(number);
	if (num++ == 0) {
		first = last = number;
		return;
	}
	const double newStep = number - last;
	bPossible = bPossible && newStep != 0 && step * newStep >= 0;
	bConsecutive = bConsecutive && std::fabs(newStep) == 1;
	step = newStep;
	last = number;
}

std::string PointNumbers::describe() const
{
	const auto text = [](double number) {
		return std::to_string(static_cast<std::uint64_t>(std::min(number, 1e18)));
	};
	return std::string("whole numbers that only ") + (step > 0 ? "rise" : "fall") + ", from " +
	    text(first) + " to " + text(last);
}

} // namespace app
