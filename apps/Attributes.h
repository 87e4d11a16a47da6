// SPDX-License-Identifier: MIT
// What an input says about its points beside their coordinates, such as colours and classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace app {

/// A value a point, all of the type that the input gives them.
using AttributeValues = std::variant<std::vector<std::int8_t>, std::vector<std::uint8_t>,
    std::vector<std::int16_t>, std::vector<std::uint16_t>, std::vector<std::int32_t>,
    std::vector<std::uint32_t>, std::vector<std::int64_t>, std::vector<std::uint64_t>,
    std::vector<float>, std::vector<double>>;

/// A named value of each point.
struct Attribute
{
	std::string name;
	AttributeValues values;
};

/// The name of the boundary markers of TetGen, which have a column of their own there.
constexpr const char* kMarkerName = "marker";

/// The name of red, green and blue as one array with three components.
constexpr const char* kColoursName = "RGB";

/// The type of the values, as the file formats call it.
struct AttributeType
{
	const char* vtu;
	/// For the formats without whole numbers of 64 bits, which have a double in their place.
	const char* vtk;
	const char* ply;
};
const AttributeType& typeOf(const Attribute& attribute);

/// Appends the value that is stored at `pBytes`.
void appendBytes(AttributeValues& values, const char* pBytes, bool bBigEndian);
/// Appends the value that a text shows, also one like "7.0" where whole numbers are stored; false when it shows
/// none, or one that is too large.
bool appendText(AttributeValues& values, std::string_view text);
/// Appends a value of any type; it is converted as C++ does.
void appendNumber(AttributeValues& values, double value);
void dropLast(AttributeValues& values);

double valueAt(const Attribute& attribute, std::size_t point);

/// The name as one word of printable ASCII, as some formats want it.
std::string wordOf(std::string name);

/// The attributes red, green and blue, when they are there in one type; otherwise none.
std::vector<const Attribute*> findColours(const std::vector<Attribute>& vAttributes);

/// Makes the names valid UTF-8 and, also as words, different from each other and from those that the outputs use
/// themselves: what comes later gets a number at its end. Returns a note for each of these.
std::vector<std::string> makeNamesDistinct(
    std::vector<Attribute>& vAttributes, const std::vector<std::string>& vReserved);

/// The attribute of that name; null when there is none.
const Attribute* findAttribute(const std::vector<Attribute>& vAttributes, std::string_view name);

} // namespace app
