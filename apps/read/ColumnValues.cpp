// SPDX-License-Identifier: MIT
// From the fields of a column to values of one type.
#include "ColumnValues.h"

#include "LineReader.h"
#include "TextColumns.h"

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

ColumnType ColumnValues::smallestType() const
{
	if (!bWhole) return ColumnType::kDouble;
	if (vWhole.empty()) return ColumnType::kInt;
	const auto [least, most] = std::minmax_element(vWhole.begin(), vWhole.end());
	using Small = std::numeric_limits<std::int32_t>;
	if (isColour() && *least >= 0 && *most <= 65535)
		return *most <= 255 ? ColumnType::kByte : ColumnType::kShort;
	const bool bSmall = *least >= Small::min() && *most <= Small::max();
	return bSmall ? ColumnType::kInt : ColumnType::kLong;
}

AttributeValues ColumnValues::take()
{
	switch (std::max(leastType, smallestType())) {
	case ColumnType::kByte:
		return std::vector<std::uint8_t>(vWhole.begin(), vWhole.end());
	case ColumnType::kShort:
		return std::vector<std::uint16_t>(vWhole.begin(), vWhole.end());
	case ColumnType::kInt:
		return std::vector<std::int32_t>(vWhole.begin(), vWhole.end());
	case ColumnType::kLong:
		return std::move(vWhole);
	case ColumnType::kDouble:
		break;
	}
	if (bWhole) vReal.assign(vWhole.begin(), vWhole.end());
	return std::move(vReal);
}

void uniteColours(std::vector<ColumnValues>& vColumns)
{
	constexpr const char* aNames[] = {"red", "green", "blue"};
	for (const bool bLetters : {false, true}) {
		ColumnValues* aFound[3] = {};
		std::size_t aNumFound[3] = {};
		for (std::size_t i = 0; i < 3; ++i) {
			const auto name =
			    std::string_view(aNames[i]).substr(0, bLetters ? 1 : std::string_view::npos);
			for (auto& column : vColumns) {
				if (!column.areNumbers() || plainName(column.name) != name) continue;
				aFound[i] = &column;
				++aNumFound[i];
			}
		}
		if (std::any_of(aNumFound, aNumFound + 3, [](std::size_t num) { return num != 1; }))
			continue;
		auto type = ColumnType::kByte;
		for (std::size_t i = 0; i < 3; ++i) {
			aFound[i]->name = aNames[i];
			type = std::max(type, aFound[i]->smallestType());
		}
		for (auto* pColumn : aFound) pColumn->leastType = type;
		return;
	}
}

} // namespace app
