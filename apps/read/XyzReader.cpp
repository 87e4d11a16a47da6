// SPDX-License-Identifier: MIT
// Points as plain text, one on a line: XYZ, CSV, TXT, PTS.
//
// Separators are blanks, or commas, or semicolons, decided for each line; or tabs, one between two fields, where a
// header has them: then fields and names may be empty, and have blanks within them. The first line may be a
// header that names the columns, or a lone count; a comment before it may be a header, too.
#include "ColumnValues.h"
#include "Failure.h"
#include "PointNumbers.h"
#include "Progress.h"
#include "TextColumns.h"

#include <algorithm>
#include <limits>

namespace app {

namespace {

constexpr const char* kAxes[3] = {"x", "y", "z"};

bool isDigit(char c)
{
	return c >= '0' && c <= '9';
}

// True when each comma of a line stands between digits, and no word has two of them: with such numbers the
// fields are separated by blanks.
bool hasDecimalCommas(std::string_view line)
{
	bool bBlank = false, bCommaInWord = false;
	for (std::size_t i = 0; i < line.size(); ++i) {
		if (line[i] == ' ' || line[i] == '\t') {
			bBlank = true;
			bCommaInWord = false;
		} else if (line[i] == ',') {
			if (bCommaInWord || i == 0 || i + 1 == line.size() || !isDigit(line[i - 1]) ||
			    !isDigit(line[i + 1]))
				return false;
			bCommaInWord = true;
		}
	}
	return bBlank;
}

char separatorOf(std::string_view line)
{
	if (findUnquoted(line, ';') != std::string_view::npos) return ';';
	if (findUnquoted(line, ',') == std::string_view::npos) return ' ';
	return hasDecimalCommas(line) ? ' ' : ',';
}

// Reads one text; the members are what is known of it so far.
class XyzReader
{
public:
	XyzReader(const Source& wholeSource, PointList& pointList)
	    : source(wholeSource),
	      vList(wholeSource.options.vColumns),
	      points(pointList),
	      lines(wholeSource)
	{
		lines.skip(source.options.numSkippedLines);
		vComments = leadingComments(std::string_view(source.text).substr(lines.getOffset()));
	}

	void read()
	{
		while (lines.next()) {
			if (lines.getLine().substr(0, 2) == "//") continue;
			lines.setSeparator(bTabs ? '\t' : separatorOf(lines.getLine()));
			if (numLines++ == 0 && readFirstLine()) continue;
			if (bAnnounced && points.numRead() == announced)
				lines.fail("more points than the " + std::to_string(announced) + " announced");
			if (points.numRead() == 0) prepare();
			if (lines.isOpenEnded() && countFields() < numFields)
				lines.fail("the file is cut short: this line has fewer fields than the first one");
			watchFirstColumn();
			readPoint();
		}
		if (bAnnounced && points.numRead() != announced)
			lines.fail("the file is cut short: " + std::to_string(points.numRead()) + " of " +
			    std::to_string(announced) + " points");
		refuseNumbers();
		addAttributes();
	}

private:
	// True when the first line is a header or a count, and not a point.
	bool readFirstLine()
	{
		const auto line = lines.getLine();
		if (line.find('\t') != std::string_view::npos &&
		    readHeader(splitHeader(lines.getWholeLine(), '\t'))) {
			bTabs = true;
			header = lines.getWholeLine();
			return true;
		}
		const auto vNames = splitHeader(line, separatorOfHeader(line));
		if (readHeader(vNames)) return true;
		if (vList.empty() && isAllNames(vNames))
			lines.fail("these names do not say which columns are x, y and z; --columns does");
		bAnnounced = parse(lines.field(), announced) && lines.atLineEnd();
		lines.rewind();
		return bAnnounced;
	}

	// True when the names are a header, which says alone or with the list of the user which columns are read.
	bool readHeader(const std::vector<std::string>& vNames)
	{
		if (isHeader(vNames)) return true;
		if (vList.empty() || !isAllNames(vNames)) return false;
		setColumns(chooseColumns(vList, vNames, lines));
		return true;
	}

	// True for two or more names, none of which is a number.
	bool isAllNames(const std::vector<std::string>& vNames) const
	{
		return vNames.size() >= 2 &&
		    std::none_of(
		        vNames.begin(), vNames.end(), [&](const auto& name) { return isValue(name); });
	}

	// True when the first point has a field between tabs for each of the names. It may have fewer fields, if none
	// that is x, y or z, unless more than one tab in the header stands between two names, to align them.
	bool fitsTabs(const std::vector<std::string>& vNames) const
	{
		const auto vFields = splitHeader(lines.getWholeLine(), '\t');
		std::size_t num = vFields.size();
		while (num > 0 && vFields[num - 1].empty()) --num;
		const auto& axes = columns.axes;
		const bool bAligned = std::count(vNames.begin(), vNames.end(), "") > 0;
		return num <= vNames.size() &&
		    (vFields.size() >= vNames.size() ||
		        (!bAligned && num > *std::max_element(axes.begin(), axes.end())));
	}

	// Tabs that only align what blanks separate, too, are not one between two fields.
	void keepTabsIfTheyFit()
	{
		if (!bTabs || fitsTabs(splitHeader(header, '\t'))) return;
		bTabs = bKnown = false;
		numNames = 0;
		if (!readHeader(splitHeader(header, separatorOfHeader(header))))
			lines.fail("not as many fields between tabs as the header has names");
		lines.setSeparator(separatorOf(lines.getLine()));
	}

	// True when the names say which columns are read: then no line may have more fields than these.
	bool isHeader(const std::vector<std::string>& vNames)
	{
		if (!vList.empty() && hasNames(vNames, vList))
			setColumns(chooseColumns(vList, vNames, lines));
		else if (vList.empty())
			if (const auto found = findColumns(vNames, lines)) setColumns(*found);
		if (bKnown) numNames = vNames.size();
		return bKnown;
	}

	void setColumns(const TextColumns& chosen)
	{
		columns = chosen;
		bKnown = true;
	}

	bool isValue(const std::string& name) const
	{
		double value = 0;
		return parse(std::string_view(name), value) || parseDecimalComma(name, value) ||
		    (source.options.bSkipInvalid && isNoValue(name));
	}

	// Before the first point: the number of its fields tells a header from other comments.
	void prepare()
	{
		keepTabsIfTheyFit();
		for (std::size_t i = 0; i < vComments.size() && !bKnown; ++i) readTabComment(vComments[i]);
		numFields = countFields();
		for (std::size_t i = 0; i < vComments.size() && !bKnown; ++i) {
			const auto vNames = splitHeader(vComments[i], separatorOfHeader(vComments[i]));
			if (vNames.size() == numFields)
				isHeader(vNames);
			else if (vNames.size() == 3 && numFields > 3 && isHeader(vNames))
				numNames = 0; // only the coordinates have names
			else if (vList.empty())
				refuseOtherOrder(vNames);
		}
		if (!vList.empty() && !bKnown) setColumns(chooseColumns(vList, {}, lines));
		if (bAnnounced && !bKnown) nameScannerColumns();
		assignRoles();
		bNumbers = vList.empty() && columns.vNames.empty() && numFields >= 4;
	}

	// A comment is a header with tabs when there is a name for each field between tabs of the first point.
	void readTabComment(std::string_view comment)
	{
		const auto vNames = splitHeader(comment, '\t');
		if (vNames.size() < 3 || vNames.size() != splitHeader(lines.getWholeLine(), '\t').size() ||
		    !isHeader(vNames))
			return;
		bTabs = true;
		lines.setSeparator('\t');
	}

	// A comment with more or fewer words than there are columns is prose, unless it starts with another order.
	void refuseOtherOrder(std::vector<std::string> vNames)
	{
		if (vNames.size() > numFields) vNames.resize(numFields);
		const auto found = findColumns(vNames, lines);
		if (found && found->axes != TextColumns().axes)
			lines.fail("a comment before may name the columns, but not as many as there are; "
			           "--columns says which are x, y and z");
	}

	// What laser scanners write after a count.
	void nameScannerColumns()
	{
		if (numFields != 4 && numFields != 6 && numFields != 7) return;
		columns.vNames.resize(3);
		if (numFields != 6) columns.vNames.emplace_back("intensity");
		if (numFields != 4)
			for (const char* colour : {"red", "green", "blue"}) columns.vNames.emplace_back(colour);
	}

	// Empty fields at the end do not count.
	std::size_t countFields()
	{
		std::size_t num = 0;
		lines.rewind();
		for (std::size_t i = 1; !lines.atLineEnd(); ++i)
			if (!lines.field().empty()) num = i;
		lines.rewind();
		return num;
	}

	void watchFirstColumn()
	{
		if (!bNumbers) return;
		numbers.add(lines.field());
		lines.rewind();
	}

	// Points with such an x are rare, numbered points are not.
	void refuseNumbers() const
	{
		if (!bNumbers || !numbers.areLikely()) return;
		throw Failure(kBadInput,
		    source.name + ": the first column has " + numbers.describe() +
		        ": if these are numbers of points, say --columns id,x,y,z; if they are "
		        "coordinates, --columns x,y,z");
	}

	void assignRoles()
	{
		const auto& axes = columns.axes;
		vRoles.assign(*std::max_element(axes.begin(), axes.end()) + 1, kIgnored);
		for (std::size_t axis = 0; axis < 3; ++axis) vRoles[axes[axis]] = axis;
		for (std::size_t i = 0; points.wantsAttributes() && i < columns.vNames.size(); ++i) {
			const auto& name = columns.vNames[i];
			vRoles.resize(std::max(vRoles.size(), i + 1), kIgnored);
			if (vRoles[i] != kIgnored || name.empty() || name == "_") continue;
			vRoles[i] = 3 + vOthers.size();
			vOthers.emplace_back(name);
		}
	}

	void readPoint()
	{
		std::array<double, 3> values{};
		const std::size_t numLeftOut = points.numLeftOut();
		for (const std::size_t role : vRoles) {
			const auto field = lines.field();
			if (role < 3)
				values[role] = toCoordinate(field, kAxes[role]);
			else if (role != kIgnored)
				vOthers[role - 3].append(field);
		}
		if (numNames > 0) compareWithHeader();
		lines.add(points, values[0], values[1], values[2]);
		if (points.numLeftOut() == numLeftOut) return;
		for (auto& column : vOthers) column.dropLast();
	}

	// A field too many may be a number of the point in front of the coordinates, or part of a number. Where blanks
	// separate the fields, nothing shows which of them is missing: then it must be behind the coordinates.
	void compareWithHeader()
	{
		std::size_t num = vRoles.size();
		bool bMore = false;
		for (; !lines.atLineEnd(); ++num) bMore |= !lines.field().empty() && num >= numNames;
		if (bMore && !endsWithText())
			lines.fail("more fields than the header has names, which are " +
			    std::to_string(numNames) +
			    "; say with --columns which columns are x, y and z, by numbers such as 2,3,4 where "
			    "a number of the point comes first");
		if (!lines.isSeparatedByBlanks() || areAxesFirst()) return;
		if (countFields() < numNames)
			lines.fail("fewer fields than the header has names, which are " +
			    std::to_string(numNames) +
			    ", and one before the coordinates may be missing; say with --columns which columns "
			    "are "
			    "x, y and z, by numbers such as 2,3,4");
	}

	// True when no column but those of x, y and z is before one of these.
	bool areAxesFirst() const
	{
		return *std::max_element(columns.axes.begin(), columns.axes.end()) == 2;
	}

	// True when blanks separate the fields and the last column is text of several words.
	bool endsWithText()
	{
		const auto& axes = columns.axes;
		if (!lines.isSeparatedByBlanks() ||
		    std::find(axes.begin(), axes.end(), numNames - 1) != axes.end())
			return false;
		lines.rewind();
		for (std::size_t i = 1; i < numNames; ++i) lines.field();
		const std::string word(lines.field());
		return !isValue(word) && !isNoValue(word);
	}

	void addAttributes()
	{
		uniteColours(vOthers);
		for (auto& values : vOthers) {
			if (values.areNumbers())
				points.addAttribute(values.getName(), values.take());
			else
				source.progress.warn(source.name + ": the column " + quoted(values.getName()) +
				    " is text and is not written");
		}
	}

	double toCoordinate(std::string_view field, const char* axis)
	{
		const bool bSkip = source.options.bSkipInvalid && isNoValue(field);
		return bSkip ? std::numeric_limits<double>::quiet_NaN() : lines.toNumber(field, axis);
	}

	const Source& source;
	const std::vector<std::string>& vList; // the columns that the user has listed
	PointList& points;
	LineReader lines;
	std::vector<std::string_view> vComments;
	TextColumns columns;
	bool bKnown = false; // the columns: the user or a header has named them
	// Of each column: 0, 1, 2 for x, y, z, from 3 on for one of vOthers.
	std::vector<std::size_t> vRoles;
	static constexpr std::size_t kIgnored = SIZE_MAX;
	std::vector<ColumnValues> vOthers;
	bool bTabs = false;      // a tab is between two fields
	std::string_view header; // the line that has them
	std::size_t numLines = 0;
	std::size_t numFields = 0; // of the first point
	std::size_t numNames = 0;  // of the header; 0 when there is none, or not for all columns
	bool bAnnounced = false;
	std::size_t announced = 0;
	bool bNumbers = false; // the first column may number the points
	PointNumbers numbers;
};

} // namespace

void readXyz(const Source& source, PointList& points)
{
	XyzReader(source, points).read();
}

} // namespace app
