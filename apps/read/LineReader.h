// SPDX-License-Identifier: MIT
// Walks over a text line by line and field by field, and names the line of whatever is wrong.
#pragma once

#include "Reader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace app {

/// Lines that are blank or hold nothing but a comment are passed over; '#' starts a comment
/// anywhere but between quotation marks. Numbers are read with `std::from_chars`, so no locale changes what a file means.
class LineReader
{
public:
	explicit LineReader(const Source& source);

	/// Steps over the next `num` lines, whatever they hold.
	void skip(std::size_t num);

	/// Steps to the next line with content; false at the end of the text.
	bool next();
	/// `next`, where the text must not end: "the file is cut short: " and what is missing.
	void require(const std::string& missing);

	/// Fields are separated by blanks and tabs, unless a character is set here: then by exactly that
	/// one, and blanks around a field are dropped. A field may stand between quotation marks, and then have
	/// separators within it. Goes back to the first field.
	void setSeparator(char c)
	{
		separator = c;
		rewind();
	}

	bool isSeparatedByBlanks() const { return separator == ' '; }

	/// The current line, without its comment.
	std::string_view getLine() const { return line; }
	/// The next field of the line; empty when there is none.
	std::string_view field();
	/// Goes back to the first field.
	void rewind() { rest = separator == '\t' ? wholeLine : line; }
	/// The current line, without its comment, with the blanks and tabs around it.
	std::string_view getWholeLine() const { return wholeLine; }
	bool atLineEnd() const;
	/// True when the text ends without ending this line: it may have been cut here.
	bool isOpenEnded() const { return offset == source.text.size() && source.text.back() != '\n'; }

	/// The next field as a number or a count; `what` names it when it is missing or wrong. Where the separator
	/// is no comma, a number may have a decimal comma, but not in a text with decimal points as well.
	double number(const char* what) { return toNumber(field(), what); }
	double toNumber(std::string_view text, const char* what);
	std::size_t count(const char* what);
	/// Reads the next three fields as a point.
	void point(PointList& points);
	void add(PointList& points, double x, double y, double z) const;

	/// Throws a failure that names file and line.
	[[noreturn]] void fail(const std::string& reason) const;

	/// Where the text after the current line starts.
	std::size_t getOffset() const { return offset; }

private:
	bool step();
	std::string_view fieldInQuotes(std::string_view before, std::string_view found);
	std::string where() const;

	const Source& source;
	std::string_view line;
	std::string_view wholeLine; // a tab in front may end an empty field
	std::string_view rest;
	std::size_t offset = 0;
	std::size_t lineNumber = 0;
	char separator = ' ';
	bool bDecimalPoint = false; // one, or a comma, has been read so far
	bool bDecimalComma = false;
};

/// The text without blanks around it.
std::string_view trimmed(std::string_view text);
/// Where `c` stands first outside of fields in quotation marks; npos where it does not.
std::size_t findUnquoted(std::string_view text, char c);
/// The text with capital letters of ASCII made small.
std::string lowerCase(std::string_view text);
/// The field as it may be shown in a message: printable and not too long.
std::string quoted(std::string_view field);
/// Reads the whole of `field` as a number or a count; false when it is none.
bool parse(std::string_view field, double& value);
bool parse(std::string_view field, std::size_t& value);
bool parse(std::string_view field, std::int64_t& value);
/// Reads the whole of `field` as a number with a decimal comma; with a point in it, too, it is none.
bool parseDecimalComma(std::string_view field, double& value);

} // namespace app
