// SPDX-License-Identifier: MIT
// Splitting a text into lines, fields and numbers.
#include "LineReader.h"

#include "Failure.h"
#include "Progress.h"

#include <charconv>
#include <system_error>

namespace app {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

template <class T>
bool parseWhole(std::string_view field, T& value, std::errc& problem)
{
	const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
	problem = ec;
	return ec == std::errc() && end == field.data() + field.size();
}

// Where the text between quotation marks ends that starts at `first`; two of them stand for one within it.
std::size_t endOfQuotes(std::string_view text, std::size_t first)
{
	auto end = text.find('"', first + 1);
	while (end < text.size() && text.substr(end + 1, 1) == "\"") end = text.find('"', end + 2);
	return end;
}

// A plus sign is common in data and unknown to from_chars.
std::string_view withoutPlus(std::string_view field)
{
	const bool bPlus = field.size() > 1 && field[0] == '+' && field[1] != '-';
	return bPlus ? field.substr(1) : field;
}

} // namespace

bool parse(std::string_view field, double& value)
{
	std::errc problem;
	return parseWhole(withoutPlus(field), value, problem);
}

bool parse(std::string_view field, std::size_t& value)
{
	std::errc problem;
	return parseWhole(field, value, problem);
}

bool parse(std::string_view field, std::int64_t& value)
{
	std::errc problem;
	return parseWhole(withoutPlus(field), value, problem);
}

bool parseDecimalComma(std::string_view field, double& value)
{
	const auto comma = field.find(',');
	if (comma == std::string_view::npos || field.find('.') != std::string_view::npos) return false;
	std::string withPoint(field);
	withPoint[comma] = '.';
	return parse(std::string_view(withPoint), value);
}

std::size_t findUnquoted(std::string_view text, char c)
{
	const auto found = text.find(c);
	if (found == std::string_view::npos || text.find('"') > found) return found;
	for (std::size_t i = 0; i < text.size(); ++i) {
		if (text[i] == c) return i;
		const bool bFieldStarts = i == 0 || kBlanks.find(text[i - 1]) != std::string_view::npos ||
		    text[i - 1] == ',' || text[i - 1] == ';';
		const auto end =
		    text[i] == '"' && bFieldStarts ? endOfQuotes(text, i) : std::string_view::npos;
		if (end != std::string_view::npos) i = end;
	}
	return std::string_view::npos;
}

std::string_view trimmed(std::string_view text)
{
	const auto first = text.find_first_not_of(kBlanks);
	if (first == std::string_view::npos) return {};
	return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string lowerCase(std::string_view text)
{
	std::string lower(text);
	for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
	return lower;
}

std::string quoted(std::string_view field)
{
	std::string text = "'";
	for (const char c : field.substr(0, 40)) text += c >= ' ' && c <= '~' ? c : '?';
	return text + (field.size() > 40 ? "...'" : "'");
}

LineReader::LineReader(const Source& wholeSource) : source(wholeSource)
{
	if (source.text.compare(0, 3, "\xEF\xBB\xBF") == 0) offset = 3; // byte order mark
}

void LineReader::skip(std::size_t num)
{
	while (num > 0 && step()) --num;
}

bool LineReader::step()
{
	const std::string_view text = source.text;
	if (offset >= text.size()) return false;
	const auto end = std::min(text.find('\n', offset), text.size());
	line = text.substr(offset, end - offset);
	offset = std::min(end + 1, text.size());
	if (++lineNumber % 65536 == 0) source.progress.update("reading", offset, text.size());
	return true;
}

bool LineReader::next()
{
	while (step()) {
		wholeLine = line;
		line = trimmed(line);
		// All lines would pass for one, whose first three fields are a point, or which is a comment.
		if (line.find('\r') != std::string_view::npos)
			fail("lines end with carriage returns alone; convert them, as with tr '\\r' '\\n'");
		wholeLine = wholeLine.substr(0, findUnquoted(wholeLine, '#'));
		line = trimmed(wholeLine);
		rewind();
		if (line.empty()) continue;
		// A number that was cut in its middle still looks like a number.
		if (isOpenEnded())
			source.progress.warn(where() +
			    "the last line has no line end; if the file was cut short, "
			    "the last number is wrong");
		return true;
	}
	return false;
}

void LineReader::require(const std::string& missing)
{
	if (!next()) fail("the file is cut short: " + missing + " missing");
}

std::string_view LineReader::field()
{
	const std::string_view before = rest;
	std::string_view found;
	if (separator == ' ') {
		rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
		found = rest.substr(0, rest.find_first_of(kBlanks));
		rest.remove_prefix(found.size());
	} else {
		found = rest.substr(0, rest.find(separator));
		rest.remove_prefix(std::min(found.size() + 1, rest.size()));
		found = trimmed(found);
	}
	return !found.empty() && found[0] == '"' ? fieldInQuotes(before, found) : found;
}

// Goes back to `before`, where the field starts; `found` is what it is without regard to the quotation marks.
// Text behind the closing mark belongs to the field: then the marks are no quotation, and it is no number.
std::string_view LineReader::fieldInQuotes(std::string_view before, std::string_view found)
{
	const auto first = before.find('"'), end = endOfQuotes(before, first);
	if (end == std::string_view::npos) return found;
	const auto next = std::min(
	    separator == ' ' ? before.find_first_of(kBlanks, end + 1) : before.find(separator, end + 1),
	    before.size());
	rest = before.substr(std::min(next + (separator == ' ' ? 0 : 1), before.size()));
	const bool bWhole = trimmed(before.substr(end + 1, next - end - 1)).empty();
	return trimmed(
	    bWhole ? before.substr(first + 1, end - first - 1) : before.substr(first, next - first));
}

bool LineReader::atLineEnd() const
{
	return rest.find_first_not_of(kBlanks) == std::string_view::npos;
}

double LineReader::toNumber(std::string_view text, const char* what)
{
	if (text.empty()) fail(std::string(what) + " is missing");
	double value = 0;
	std::errc problem;
	if (!parseWhole(withoutPlus(text), value, problem)) {
		bDecimalComma = separator != ',' && parseDecimalComma(text, value);
		const bool bRange = problem == std::errc::result_out_of_range;
		if (!bDecimalComma)
			fail(
			    quoted(text) + (bRange ? " is outside the range of a double" : " is not a number"));
	}
	if (bDecimalPoint && !bDecimalComma) return value;
	if (text.find('.') != std::string_view::npos) bDecimalPoint = true;
	if (bDecimalPoint && bDecimalComma)
		fail(quoted(text) + ": some numbers have a decimal point and others a decimal comma");
	return value;
}

std::size_t LineReader::count(const char* what)
{
	const auto text = field();
	if (text.empty()) fail(std::string(what) + " is missing");
	std::size_t value = 0;
	if (!parse(text, value)) fail(quoted(text) + " is not a count (" + what + ")");
	return value;
}

void LineReader::point(PointList& points)
{
	const double x = number("x"), y = number("y"), z = number("z");
	add(points, x, y, z);
}

void LineReader::add(PointList& points, double x, double y, double z) const
{
	if (const char* reason = points.add(x, y, z)) fail(reason);
}

void LineReader::fail(const std::string& reason) const
{
	throw Failure(kBadInput, where() + reason);
}

std::string LineReader::where() const
{
	return source.name + ":" + std::to_string(lineNumber) + ": ";
}

} // namespace app
