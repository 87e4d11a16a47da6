// SPDX-License-Identifier: MIT
// Watching the first column from line to line.
#include "PointNumbers.h"

#include "LineReader.h"

#include <cmath>

namespace app {

namespace {

// As a whole number first: from 2^53 on, neighbours may be one double.
bool parseWholeNumber(std::string_view field, std::int64_t& number)
{
	if (parse(field, number)) return true;
	double real = 0;
	if (!(parse(field, real) || parseDecimalComma(field, real))) return false;
	if (real != std::floor(real) || std::fabs(real) > 1e18) return false;
	number = static_cast<std::int64_t>(real);
	return true;
}

} // namespace

void PointNumbers::add(std::string_view field)
{
	if (!bPossible) return;
	std::int64_t number = 0;
	bPossible = parseWholeNumber(field, number) && number >= 0;
	if (!bPossible) return;
	if (num++ == 0) {
		first = last = number;
		return;
	}
	const std::int64_t newStep = number - last;
	bPossible = newStep != 0 && (step == 0 || (step > 0) == (newStep > 0));
	bConsecutive = bConsecutive && (newStep == 1 || newStep == -1);
	step = newStep;
	last = number;
}

std::string PointNumbers::describe() const
{
	return std::string("whole numbers that only ") + (step > 0 ? "rise" : "fall") + ", from " +
	    std::to_string(first) + " to " + std::to_string(last);
}

} // namespace app
