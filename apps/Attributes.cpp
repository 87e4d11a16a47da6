// SPDX-License-Identifier: MIT
// Values of ten types, one visitor for each thing that is done with them.
#include "Attributes.h"

#include "Bytes.h"
#include "Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <type_traits>

namespace app {

namespace {

template <class Values>
using ValueOf = typename std::decay_t<Values>::value_type;

template <class T>
bool parseWhole(std::string_view text, T& value)
{
	const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
	return ec == std::errc() && end == text.data() + text.size();
}

template <class T>
bool parseWholeNumber(std::string_view text, T& value)
{
	if (parseWhole(text, value)) return true;
	double real = 0;
	if (!parseWhole(text, real) || real != std::floor(real) || std::fabs(real) > 1e15) return false;
	if (real < static_cast<double>(std::numeric_limits<T>::min()) ||
	    real > static_cast<double>(std::numeric_limits<T>::max()))
		return false;
	value = static_cast<T>(real);
	return true;
}

} // namespace

const AttributeType& typeOf(const Attribute& attribute)
{
	static const AttributeType aTypes[] = {{"Int8", "char", "char"},
	    {"UInt8", "unsigned_char", "uchar"}, {"Int16", "short", "short"},
	    {"UInt16", "unsigned_short", "ushort"}, {"Int32", "int", "int"},
	    {"UInt32", "unsigned_int", "uint"}, {"Int64", "double", "double"},
	    {"UInt64", "double", "double"}, {"Float32", "float", "float"},
	    {"Float64", "double", "double"}};
	static_assert(std::size(aTypes) == std::variant_size_v<AttributeValues>);
	return aTypes[attribute.values.index()];
}

void appendBytes(AttributeValues& values, const char* pBytes, bool bBigEndian)
{
	std::visit([&](auto& v) { v.push_back(loadNumber<ValueOf<decltype(v)>>(pBytes, bBigEndian)); },
	    values);
}

bool appendText(AttributeValues& values, std::string_view text)
{
	if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
	return std::visit(
	    [&](auto& v) {
		    using T = ValueOf<decltype(v)>;
		    T value{};
		    bool bRead = false;
		    if constexpr (std::is_integral_v<T>)
			    bRead = parseWholeNumber(text, value);
		    else
			    bRead = parseWhole(text, value);
		    if (bRead) v.push_back(value);
		    return bRead;
	    },
	    values);
}

void appendNumber(AttributeValues& values, double value)
{
	std::visit([&](auto& v) { v.push_back(static_cast<ValueOf<decltype(v)>>(value)); }, values);
}

void dropLast(AttributeValues& values)
{
	std::visit([](auto& v) { v.pop_back(); }, values);
}

double valueAt(const Attribute& attribute, std::size_t point)
{
	return std::visit(
	    [&](const auto& v) { return static_cast<double>(v[point]); }, attribute.values);
}

std::string wordOf(std::string name)
{
	for (char& c : name) c = c > ' ' && c <= '~' ? c : '_';
	return name;
}

std::vector<const Attribute*> findColours(const std::vector<Attribute>& vAttributes)
{
	std::vector<const Attribute*> vFound;
	for (const char* name : {"red", "green", "blue"}) {
		vFound.push_back(findAttribute(vAttributes, name));
		if (!vFound.back() || vFound.back()->values.index() != vFound[0]->values.index()) return {};
	}
	return vFound;
}

std::vector<std::string> makeNamesDistinct(
    std::vector<Attribute>& vAttributes, const std::vector<std::string>& vReserved)
{
	std::set<std::string> taken(vReserved.begin(), vReserved.end());
	if (!findColours(vAttributes).empty()) taken.insert(kColoursName);
	std::vector<std::string> vNotes;
	for (auto& attribute : vAttributes) {
		const std::string name = validUtf8(attribute.name);
		attribute.name = name;
		for (int i = 2; !taken.insert(wordOf(attribute.name)).second; ++i)
			attribute.name = name + "_" + std::to_string(i);
		if (attribute.name != name)
			vNotes.push_back("the attribute '" + name + "' is written as '" + attribute.name +
			    "', as the outputs have another one of that name");
	}
	return vNotes;
}

const Attribute* findAttribute(const std::vector<Attribute>& vAttributes, std::string_view name)
{
	const auto found = std::find_if(vAttributes.begin(), vAttributes.end(),
	    [&](const Attribute& attribute) { return attribute.name == name; });
	return found == vAttributes.end() ? nullptr : &*found;
}

} // namespace app
