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
	/// The values in the smallest of int32, int64 and double that has all of them; colours up to 255 as bytes.
	AttributeValues take();

private:
	bool isColour() const;

	std::string name;
	std::vector<std::int64_t> vWhole;
	std::vector<double> vReal;
	bool bWhole = true;
	bool bNumbers = true;
};

/// True for what programs write where there is no number, and for nothing at all.
bool isNoValue(std::string_view field);

} // namespace app
