// SPDX-License-Identifier: MIT
// A column of a text that becomes an attribute.
#pragma once

#include "Attributes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace app {

/// The types of columns; each has room for the values of those before it.
enum class ColumnType { kByte, kShort, kInt, kLong, kDouble };

/// The fields of a column, from line to line: whole numbers as long as all of them are, then doubles.
class ColumnValues
{
public:
	explicit ColumnValues(std::string columnName) : name(std::move(columnName)) {}

	/// A field that is empty, or stands for no value, is NaN.
	void append(std::string_view field);
	/// Takes back the last field.
	void dropLast();

	const std::string& getName() const { return name; }
	/// False when some field is neither a number nor missing: then there are no values.
	bool areNumbers() const { return bNumbers; }
	/// The first of the types that has all values; bytes and 16 bits, both without a sign, are for colours alone.
	ColumnType smallestType() const;
	/// The values in that type, or in the one that `uniteColours` has found.
	AttributeValues take();

	friend void uniteColours(std::vector<ColumnValues>& vColumns);

private:
	bool isColour() const;

	std::string name;
	ColumnType leastType = ColumnType::kByte;
	std::vector<std::int64_t> vWhole;
	std::vector<double> vReal;
	bool bWhole = true;
	bool bNumbers = true;
};

/// Gives columns named red, green and blue, or r, g and b, in any case, with or without a unit, these names in small
/// letters, and one type; no columns where two have one of these names.
void uniteColours(std::vector<ColumnValues>& vColumns);

/// True for what programs write where there is no number, and for nothing at all.
bool isNoValue(std::string_view field);

} // namespace app
