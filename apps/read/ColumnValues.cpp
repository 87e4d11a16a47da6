// SPDX-License-Identifier: MIT
// From the fields of a column to values of one type.
#include "ColumnValues.h"

#include "LineReader.h"

#include <algorithm>
#include <limits>

namespace app {

bool isNoValue(std::string_view field)
{
	static constexpr const char* aWords[] = {
	    "", "-", "na", "n/a", "null", "none", "nodata", "1.#qnan", "-1.#ind"};
	const auto word = lowerCase(field);
	return std::any_of(
	    std::begin(aWords), std::end(aWords), [&](const char* noValue) { return word == noValue; });
}

void ColumnValues::append(std::string_view field)
{
	if (!bNumbers) return;
	std::int64_t whole = 0;
	if (bWhole && parse(field, whole)) return vWhole.push_back(whole);
	double real = std::numeric_limits<double>::quiet_NaN();
	bNumbers = isNoValue(field) || parse(field, real) || parseDecimalComma(field, real);
	if (std::exchange(bWhole, false)) vReal.assign(vWhole.begin(), vWhole.end());
	vReal.push_back(real);
}

void ColumnValues::dropLast()
{
	if (bNumbers && bWhole) vWhole.pop_back();
	if (bNumbers && !bWhole) vReal.pop_back();
}

bool ColumnValues::isColour() const
{
	const auto word = lowerCase(name);
	return word == "red" || word == "green" || word == "blue";
}

AttributeValues ColumnValues::take()
{
	if (!bWhole) return std::move(vReal);
	if (vWhole.empty()) return std::move(vWhole);
	const auto [least, most] = std::minmax_element(vWhole.begin(), vWhole.end());
	if (isColour() && *least >= 0 && *most <= 255)
		return std::vector<std::uint8_t>(vWhole.begin(), vWhole.end());
	using Small = std::numeric_limits<std::int32_t>;
	if (*least < Small::min() || *most > Small::max()) return std::move(vWhole);
	return std::vector<std::int32_t>(vWhole.begin(), vWhole.end());
}

} // namespace app
