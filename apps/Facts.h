// SPDX-License-Identifier: MIT
// Facts about a run, each in both of the forms in which it can be printed.
#pragma once

#include <charconv>
#include <cstddef>
#include <string>

namespace app {

/// A fact with its JSON name, its label for a person, and its value as each of them reads it; what is empty is
/// not printed.
struct Fact
{
	const char* key;
	std::string label;
	std::string json;
	std::string text;
};

template <class... Format>
std::string decimal(double value, Format... format)
{
	char aText[400];
	const auto end = std::to_chars(aText, aText + sizeof(aText), value, format...).ptr;
	return {aText, end};
}

/// Null where JSON has no such number.
std::string jsonNumber(double value);
/// Six digits, for a person.
std::string shortNumber(double value);
/// In quotation marks.
std::string jsonText(const std::string& text);

Fact count(const char* key, const char* label, std::size_t value);
Fact seconds(const char* key, const char* label, double value);
Fact number(const char* key, const char* label, double value);

} // namespace app
