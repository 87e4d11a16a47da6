// SPDX-License-Identifier: MIT
// The vertices of a PLY file, as text or in either byte order. All other elements are read
// too, to their end, because a file that ends inside one of them is truncated.
#include "Failure.h"
#include "PlyHeader.h"

#include <algorithm>

namespace app {

namespace {

std::string ordinal(const PlyElement& element, std::size_t i)
{
	return element.name + " " + std::to_string(i + 1) + " of " + std::to_string(element.count);
}

bool isVertex(const PlyElement& element)
{
	return element.name == "vertex";
}

void readAttribute(LineReader& lines, const PlyProperty& property, PointList& points)
{
	const auto field = lines.field();
	if (!appendText(points.valuesOf(*property.attribute), field))
		lines.fail(quoted(field) + " is no " + std::string(property.pType->name) + " (" +
		    property.name + ")");
}

// One element a line, as every writer does it.
void readAsciiElement(LineReader& lines, const PlyElement& element, PointList& points)
{
	for (std::size_t i = 0; i < element.count && !element.vProperties.empty(); ++i) {
		lines.require(ordinal(element, i) + " is");
		double aValue[3] = {0, 0, 0};
		for (const auto& property : element.vProperties) {
			if (property.axis >= 0) {
				static const char* const aNames[3] = {"x", "y", "z"};
				aValue[property.axis] = lines.number(aNames[property.axis]);
				continue;
			}
			if (property.attribute) {
				readAttribute(lines, property, points);
				continue;
			}
			for (auto left = property.pCountType ? lines.count("the length of a list") : 1;
			     left > 0; --left)
				if (lines.field().empty())
					lines.fail("a property of the " + element.name + " is missing");
		}
		if (!lines.atLineEnd()) lines.fail("more fields than the header names");
		if (isVertex(element)) lines.add(points, aValue[0], aValue[1], aValue[2]);
	}
}

// The elements of a binary file, from the byte after the header on.
class BinaryBody
{
public:
	BinaryBody(const Source& wholeSource, std::size_t start, bool bBig)
	    : source(wholeSource), offset(start), bBigEndian(bBig)
	{
	}

	void readElement(const PlyElement& element, PointList& points)
	{
		// The file must be able to hold the announced number before room is made for it.
		std::size_t smallest = 0;
		for (const auto& property : element.vProperties)
			smallest += (property.pCountType ? property.pCountType : property.pType)->size;
		if (smallest == 0) return;
		const std::size_t present = (source.text.size() - offset) / smallest;
		if (present < element.count)
			fail("the file is cut short: " + ordinal(element, present) + " is missing");
		if (isVertex(element)) points.reserve(element.count);
		for (std::size_t i = 0; i < element.count; ++i) readOne(element, i, points);
	}

private:
	void readOne(const PlyElement& element, std::size_t i, PointList& points)
	{
		double aValue[3] = {0, 0, 0};
		for (const auto& property : element.vProperties) {
			if (const auto* pCount = property.pCountType) {
				const double num = pCount->load(take(pCount->size, element, i), bBigEndian);
				if (num < 0) fail(ordinal(element, i) + ": the length of a list is negative");
				// More than the whole file cannot be there; and the product must not overflow.
				const auto most = static_cast<double>(source.text.size());
				take(static_cast<std::size_t>(std::min(num, most)) * property.pType->size, element,
				    i);
				continue;
			}
			const char* pBytes = take(property.pType->size, element, i);
			if (property.axis >= 0)
				aValue[property.axis] = property.pType->load(pBytes, bBigEndian);
			else if (property.attribute)
				appendBytes(points.valuesOf(*property.attribute), pBytes, bBigEndian);
		}
		if (!isVertex(element)) return;
		if (const char* reason = points.add(aValue[0], aValue[1], aValue[2]))
			fail(ordinal(element, i) + ": " + reason);
	}

	const char* take(std::size_t num, const PlyElement& element, std::size_t i)
	{
		if (source.text.size() - offset < num)
			fail("the file is cut short: " + ordinal(element, i) + " is missing");
		offset += num;
		return source.text.data() + offset - num;
	}

	[[noreturn]] void fail(const std::string& reason) const
	{
		throw Failure(kBadInput, source.name + ": " + reason);
	}

	const Source& source;
	std::size_t offset;
	const bool bBigEndian;
};

// Each scalar of the vertices that is no coordinate.
void addAttributes(PlyHeader& header, PointList& points)
{
	if (!points.wantsAttributes()) return;
	for (auto& element : header.vElements)
		for (auto& property : element.vProperties)
			if (isVertex(element) && property.axis < 0 && !property.pCountType)
				property.attribute =
				    points.addAttribute(property.name, property.pType->makeValues());
}

} // namespace

void readPly(const Source& source, PointList& points)
{
	LineReader lines(source);
	PlyHeader header = readPlyHeader(lines);
	addAttributes(header, points);
	if (header.format == PlyHeader::Format::kAscii) {
		for (const auto& element : header.vElements) readAsciiElement(lines, element, points);
		if (lines.next()) lines.fail("more lines than the header announces");
		return;
	}
	BinaryBody body(source, lines.getOffset(), header.format == PlyHeader::Format::kBigEndian);
	for (const auto& element : header.vElements) body.readElement(element, points);
}

} // namespace app
