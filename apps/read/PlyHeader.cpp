// SPDX-License-Identifier: MIT
// Reading the header of a PLY file.
#include "PlyHeader.h"

#include "Bytes.h"

#include <algorithm>
#include <type_traits>

namespace app {

namespace {

template <class T>
double load(const char* pBytes, bool bBigEndian)
{
	return static_cast<double>(loadNumber<T>(pBytes, bBigEndian));
}

template <class T>
AttributeValues makeValues()
{
	return std::vector<T>();
}

template <class T>
constexpr PlyType makeType(std::string_view name, std::string_view sizedName)
{
	return {name, sizedName, sizeof(T), std::is_integral_v<T>, load<T>, makeValues<T>};
}

const PlyType* readType(LineReader& lines, std::string_view word)
{
	static constexpr PlyType aTypes[] = {makeType<std::int8_t>("char", "int8"),
	    makeType<std::uint8_t>("uchar", "uint8"), makeType<std::int16_t>("short", "int16"),
	    makeType<std::uint16_t>("ushort", "uint16"), makeType<std::int32_t>("int", "int32"),
	    makeType<std::uint32_t>("uint", "uint32"), makeType<std::int64_t>("int64", "int64"),
	    makeType<std::uint64_t>("uint64", "uint64"), makeType<float>("float", "float32"),
	    makeType<double>("double", "float64")};
	for (const auto& type : aTypes)
		if (word == type.name || word == type.sizedName) return &type;
	lines.fail(quoted(word) + " is not a type of a property");
}

PlyHeader::Format readFormat(LineReader& lines)
{
	const auto word = lines.field();
	if (word == "ascii") return PlyHeader::Format::kAscii;
	if (word == "binary_little_endian") return PlyHeader::Format::kLittleEndian;
	if (word == "binary_big_endian") return PlyHeader::Format::kBigEndian;
	lines.fail(quoted(word) + " is not a format of a PLY file");
}

PlyProperty readProperty(LineReader& lines, const PlyElement& element)
{
	PlyProperty property{nullptr, nullptr, {}, -1, {}};
	auto word = lines.field();
	const bool bList = word == "list";
	if (bList) {
		property.pCountType = readType(lines, lines.field());
		if (!property.pCountType->bInteger) lines.fail("the length of a list is no integer");
		word = lines.field();
	}
	property.pType = readType(lines, word);
	const std::string name(lines.field());
	if (name.empty()) lines.fail("the name of the property is missing");
	property.name = name;
	const bool bCoordinate = name == "x" || name == "y" || name == "z";
	if (element.name == "vertex" && !bList && bCoordinate) property.axis = name[0] - 'x';
	return property;
}

void requireCoordinates(LineReader& lines, const PlyHeader& header)
{
	for (const auto& element : header.vElements) {
		if (element.name != "vertex") continue;
		int aSeen[3] = {0, 0, 0};
		for (const auto& property : element.vProperties)
			if (property.axis >= 0) ++aSeen[property.axis];
		if (std::count(aSeen, aSeen + 3, 1) == 3) return;
		lines.fail("a vertex needs one property each named x, y and z");
	}
	lines.fail("there is no element named vertex");
}

} // namespace

PlyHeader readPlyHeader(LineReader& lines)
{
	lines.require("the word ply is");
	if (lines.field() != "ply") lines.fail("this is not a PLY file");
	lines.require("the line with the format is");
	if (lines.field() != "format") lines.fail("the line with the format is missing");
	PlyHeader header{readFormat(lines), {}};

	for (;;) {
		lines.require("the line end_header is");
		const auto word = lines.field();
		if (word == "end_header") break;
		if (word == "comment" || word == "obj_info") continue;
		if (word == "element") {
			const std::string name(lines.field());
			header.vElements.push_back({name, lines.count("the number of elements"), {}});
		} else if (word == "property" && !header.vElements.empty()) {
			auto& element = header.vElements.back();
			element.vProperties.push_back(readProperty(lines, element));
		} else {
			lines.fail(quoted(word) + " is not expected in the header");
		}
	}
	requireCoordinates(lines, header);
	return header;
}

} // namespace app
