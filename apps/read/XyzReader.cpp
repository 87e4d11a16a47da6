// SPDX-License-Identifier: MIT
// Points as plain text, one on a line: XYZ, CSV, TXT, PTS.
//
// Separators are blanks, or commas, or semicolons, decided for each line. Further columns are
// ignored. The first line may be a header that names the columns x, y and z, or a lone count.
#include "LineReader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace app {

namespace {

constexpr const char* kAxes[3] = {"x", "y", "z"};

// The places of x, y and z among the fields of a line.
using Columns = std::array<std::size_t, 3>;

// A comma is a separator only where the whole line uses it, so that "1,5 2,5 3,5" is refused
// instead of being read as other numbers than it shows.
char separatorOf(std::string_view line)
{
	if (line.find(';') != std::string_view::npos) return ';';
	return line.find(',') != std::string_view::npos ? ',' : ' ';
}

std::string columnName(std::string_view field)
{
	std::string name = lowerCase(field);
	name.erase(std::remove(name.begin(), name.end(), '"'), name.end());
	return name;
}

// True when the line names the columns x, y and z; then `columns` are theirs.
bool isHeader(LineReader& lines, Columns& columns)
{
	std::array<bool, 3> found{};
	Columns named{};
	std::size_t index = 0;
	for (auto field = lines.field(); !field.empty(); field = lines.field(), ++index) {
		const std::string name = columnName(field);
		for (std::size_t axis = 0; axis < 3; ++axis) {
			if (name != kAxes[axis]) continue;
			found[axis] = true;
			named[axis] = index;
		}
	}
	lines.rewind();
	if (!found[0] || !found[1] || !found[2]) return false;
	columns = named;
	return true;
}

// True when the line is a number of points and nothing else.
bool isCount(LineReader& lines, std::size_t& count)
{
	const bool bCount = parse(lines.field(), count) && lines.atLineEnd();
	lines.rewind();
	return bCount;
}

std::size_t countFields(LineReader& lines)
{
	std::size_t num = 0;
	while (!lines.field().empty()) ++num;
	lines.rewind();
	return num;
}

void readColumns(LineReader& lines, const Columns& columns, PointList& points)
{
	std::array<double, 3> values{};
	const std::size_t last = *std::max_element(columns.begin(), columns.end());
	for (std::size_t i = 0; i <= last; ++i) {
		const auto axis = static_cast<std::size_t>(
		    std::find(columns.begin(), columns.end(), i) - columns.begin());
		if (axis < 3)
			values[axis] = lines.number(kAxes[axis]);
		else
			lines.field();
	}
	lines.add(points, values[0], values[1], values[2]);
}

} // namespace

void readXyz(const Source& source, PointList& points)
{
	LineReader lines(source);
	Columns columns{0, 1, 2};
	std::size_t announced = 0;
	bool bAnnounced = false, bFirst = true;
	std::size_t numFields = 0;
	while (lines.next()) {
		if (lines.getLine().substr(0, 2) == "//") continue;
		lines.setSeparator(separatorOf(lines.getLine()));
		if (std::exchange(bFirst, false)) {
			if (isHeader(lines, columns)) continue;
			bAnnounced = isCount(lines, announced);
			if (bAnnounced) continue;
		}
		if (bAnnounced && points.size() == announced)
			lines.fail("more points than the " + std::to_string(announced) + " announced");
		if (points.size() == 0) numFields = countFields(lines);
		if (lines.isOpenEnded() && countFields(lines) < numFields)
			lines.fail("the file is cut short: this line has fewer fields than the first one");
		readColumns(lines, columns, points);
	}
	if (bAnnounced && points.size() != announced)
		lines.fail("the file is cut short: " + std::to_string(points.size()) + " of " +
		    std::to_string(announced) + " points");
}

} // namespace app
