// SPDX-License-Identifier: MIT
// Recognising the names of columns.
#include "TextColumns.h"

#include <algorithm>

namespace app {

namespace {

using Names = std::vector<std::string>;

constexpr const char* kAxes[3] = {"x", "y", "z"};

constexpr std::size_t kMostColumns = 1000000;

// What surveys and other programs call the axes.
const Names& otherNames(std::size_t axis)
{
	static const Names aNames[3] = {
	    {"easting", "east", "e", "x-coordinate", "x_coordinate", "xcoord", "points:0", "points_0"},
	    {"northing", "north", "n", "y-coordinate", "y_coordinate", "ycoord", "points:1",
	        "points_1"},
	    {"height", "elevation", "elev", "altitude", "h", "z-coordinate", "z_coordinate", "zcoord",
	        "points:2", "points_2"}};
	return aNames[axis];
}

std::string trim(std::string_view text)
{
	const auto first = text.find_first_not_of(" \t\r\"");
	if (first == std::string_view::npos) return {};
	return std::string(text.substr(first, text.find_last_not_of(" \t\r\"") - first + 1));
}

bool contains(const Names& vNames, const std::string& name)
{
	return std::find(vNames.begin(), vNames.end(), name) != vNames.end();
}

bool isNumber(const std::string& name)
{
	return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

// The column of a name, with or without its unit; npos where there is none.
std::size_t findName(const Names& vNames, const std::string& name)
{
	const auto same = [&](const std::string& other) {
		return lowerCase(other) == lowerCase(name) || plainName(other) == lowerCase(name);
	};
	const auto found = std::find_if(vNames.begin(), vNames.end(), same);
	return found == vNames.end() ? std::string::npos
	                             : static_cast<std::size_t>(found - vNames.begin());
}

// The one column whose name `isMeant` accepts; nothing where there is none.
template <class IsMeant>
std::optional<std::size_t> findOnly(const Names& vNames, const LineReader& lines, IsMeant isMeant)
{
	std::optional<std::size_t> found;
	for (std::size_t i = 0; i < vNames.size(); ++i) {
		if (!isMeant(plainName(vNames[i]))) continue;
		if (found)
			lines.fail("both " + quoted(vNames[*found]) + " and " + quoted(vNames[i]) +
			    " may be meant; say with --columns which columns are x, y and z");
		found = i;
	}
	return found;
}

void requireDistinct(const TextColumns& columns, const LineReader& lines)
{
	const auto& axes = columns.axes;
	if (axes[0] == axes[1] || axes[1] == axes[2] || axes[2] == axes[0])
		lines.fail("--columns names one column twice");
}

} // namespace

std::string plainName(const std::string& name)
{
	return trim(lowerCase(std::string_view(name).substr(0, name.find_first_of("[("))));
}

char separatorOfHeader(std::string_view line)
{
	if (findUnquoted(line, ';') != std::string_view::npos) return ';';
	return findUnquoted(line, ',') != std::string_view::npos ? ',' : ' ';
}

std::vector<std::string> splitHeader(std::string_view line, char separator)
{
	const std::string_view separators =
	    separator == ' ' ? std::string_view(" \t\r") : std::string_view(&separator, 1);
	Names vNames;
	for (std::size_t begin = 0; begin <= line.size();) {
		auto end = begin;
		for (bool bQuoted = false; end < line.size(); ++end) {
			bQuoted ^= line[end] == '"';
			if (!bQuoted && separators.find(line[end]) != std::string_view::npos) break;
		}
		const std::string name = trim(line.substr(begin, end - begin));
		begin = end + 1;
		if (separator != ' ')
			vNames.push_back(name);
		else if (!name.empty() && (name[0] == '[' || name[0] == '(') && !vNames.empty())
			vNames.back() += " " + name;
		else if (!name.empty())
			vNames.push_back(name);
	}
	return vNames;
}

std::optional<TextColumns> findColumns(const Names& vNames, const LineReader& lines)
{
	const auto hasAxis = [&](std::size_t axis) {
		return std::any_of(vNames.begin(), vNames.end(),
		    [&](const std::string& name) { return plainName(name) == kAxes[axis]; });
	};
	// Where x, y and z are named so, other columns may have any names.
	const bool bPlain = hasAxis(0) && hasAxis(1) && hasAxis(2);
	TextColumns columns;
	columns.vNames = vNames;
	std::array<std::optional<std::size_t>, 3> found;
	for (std::size_t axis = 0; axis < 3; ++axis) {
		const auto isNamed = [&](const std::string& name) {
			return name == kAxes[axis] || (!bPlain && contains(otherNames(axis), name));
		};
		if (std::none_of(vNames.begin(), vNames.end(),
		        [&](const std::string& name) { return isNamed(plainName(name)); }))
			return std::nullopt;
		found[axis] = findOnly(vNames, lines, isNamed);
	}
	for (std::size_t axis = 0; axis < 3; ++axis) columns.axes[axis] = *found[axis];
	return columns;
}

TextColumns chooseColumns(const Names& vList, const Names& vNames, const LineReader& lines)
{
	TextColumns columns;
	columns.vNames = vNames;
	const bool bThree = vList.size() == 3;
	if (bThree && std::all_of(vList.begin(), vList.end(), isNumber)) {
		for (std::size_t axis = 0; axis < 3; ++axis) {
			std::size_t number = 0;
			if (!parse(std::string_view(vList[axis]), number) || number == 0 ||
			    number > kMostColumns)
				lines.fail("--columns: columns are counted from 1, and " + quoted(vList[axis]) +
				    " is none");
			columns.axes[axis] = number - 1;
		}
		requireDistinct(columns, lines);
		return columns;
	}

	std::array<std::size_t, 3> places{0, 1, 2}; // of x, y and z in the list
	bool bAxesListed = true;
	for (std::size_t axis = 0; axis < 3; ++axis) {
		const auto place = findName(vList, kAxes[axis]);
		bAxesListed = bAxesListed && place != std::string::npos;
		places[axis] = place;
	}
	if (!bAxesListed && !bThree)
		lines.fail("--columns names no x, y and z, nor three columns that hold them");
	if (!bAxesListed) places = {0, 1, 2};
	for (const char* axis : kAxes)
		if (std::count_if(vList.begin(), vList.end(),
		        [&](const std::string& name) { return plainName(name) == axis; }) > 1)
			lines.fail(std::string("--columns names ") + axis + " twice");

	if (hasNames(vNames, vList)) {
		for (std::size_t axis = 0; axis < 3; ++axis)
			columns.axes[axis] = findName(vNames, vList[places[axis]]);
		requireDistinct(columns, lines);
		return columns;
	}
	if (!bAxesListed)
		for (const auto& name : vList)
			if (findName(vNames, name) == std::string::npos)
				lines.fail("no column is named " + quoted(name) + " (--columns)");
	columns.axes = places;
	columns.vNames = vList;
	return columns;
}

bool hasNames(const Names& vNames, const Names& vList)
{
	return std::all_of(vList.begin(), vList.end(),
	    [&](const std::string& name) { return findName(vNames, name) != std::string::npos; });
}

std::vector<std::string_view> leadingComments(std::string_view text)
{
	std::vector<std::string_view> vComments;
	for (std::size_t begin = 0; begin < text.size();) {
		const auto end = std::min(text.find('\n', begin), text.size());
		auto line = text.substr(begin, end - begin);
		begin = end + 1;
		line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
		if (line.empty()) continue;
		if (line[0] != '#' && line.substr(0, 2) != "//") break;
		line.remove_prefix(std::min(line.find_first_not_of("#/ \t"), line.size()));
		vComments.push_back(line);
	}
	std::reverse(vComments.begin(), vComments.end());
	return vComments;
}

} // namespace app
