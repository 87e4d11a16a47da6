// SPDX-License-Identifier: MIT
// The vertices of the mesh formats that are text: OBJ, OFF and TetGen .node.
#include "LineReader.h"

namespace app {

namespace {

void requireOne(LineReader& lines, const char* what, std::size_t index, std::size_t num)
{
	lines.require(
	    std::string(what) + std::to_string(index + 1) + " of " + std::to_string(num) + " is");
}

// The fields of the whole line; the next one is then the second.
std::size_t countFields(LineReader& lines)
{
	std::size_t num = 0;
	for (lines.rewind(); !lines.field().empty();) ++num;
	lines.rewind();
	lines.field();
	return num;
}

// True when each vertex of the file has a colour directly after its coordinates.
bool readOffHeader(LineReader& lines)
{
	lines.require("the word OFF is");
	const std::string_view word = lines.field();
	if (word.size() < 3 || word.substr(word.size() - 3) != "OFF")
		lines.fail("this is not an OFF file: it starts with " + quoted(word));
	if (word.find_first_of("4n") != std::string_view::npos)
		lines.fail("only points of three coordinates are read, not " + quoted(word));
	if (lines.getLine().find("BINARY") != std::string_view::npos)
		lines.fail("binary OFF is not read");
	const bool bColours =
	    word.find('C') != std::string_view::npos && word.find('N') == std::string_view::npos;
	if (lines.atLineEnd()) lines.require("the line with the counts is");
	return bColours;
}

void addColours(PointList& points)
{
	for (const char* name : {"red", "green", "blue"})
		points.addAttribute(name, std::vector<double>());
}

void readColouredPoint(LineReader& lines, PointList& points)
{
	const double x = lines.number("x"), y = lines.number("y"), z = lines.number("z");
	for (std::size_t i = 0; i < 3; ++i)
		appendNumber(points.valuesOf(i), lines.number("a part of the colour"));
	lines.add(points, x, y, z);
}

void addNodeAttributes(std::size_t numAttributes, std::size_t numMarkers, PointList& points)
{
	for (std::size_t i = 0; i < numAttributes; ++i)
		points.addAttribute("attribute" + std::to_string(i + 1), std::vector<double>());
	for (std::size_t i = 0; i < numMarkers; ++i)
		points.addAttribute(kMarkerName, std::vector<std::int32_t>());
}

} // namespace

// Colours are no part of the format, but many programs write them after the coordinates. Faces, normals, groups and materials say nothing about where the points are.
void readObj(const Source& source, PointList& points)
{
	LineReader lines(source);
	bool bColours = false;
	while (lines.next()) {
		if (lines.field() != "v") continue;
		if (points.numRead() == 0 && points.wantsAttributes()) {
			bColours = countFields(lines) == 7;
			if (bColours) addColours(points);
		}
		if (bColours)
			readColouredPoint(lines, points);
		else
			lines.point(points);
	}
}

// The faces are read too, because only they show that nothing is cut.
void readOff(const Source& source, PointList& points)
{
	LineReader lines(source);
	const bool bColours = readOffHeader(lines) && points.wantsAttributes();
	if (bColours) addColours(points);
	const std::size_t numVertices = lines.count("the number of vertices");
	const std::size_t numFaces = lines.count("the number of faces");
	for (std::size_t i = 0; i < numVertices; ++i) {
		requireOne(lines, "vertex ", i, numVertices);
		if (bColours)
			readColouredPoint(lines, points);
		else
			lines.point(points);
	}
	for (std::size_t i = 0; i < numFaces; ++i) {
		requireOne(lines, "face ", i, numFaces);
		for (std::size_t left = lines.count("the number of corners"); left > 0; --left)
			if (lines.count("a corner") >= numVertices) lines.fail("a corner names no vertex");
	}
}

void readNode(const Source& source, PointList& points)
{
	LineReader lines(source);
	lines.require("the line with the counts is");
	const std::size_t num = lines.count("the number of points");
	if (lines.count("the dimension") != 3) lines.fail("the dimension is not 3");
	const std::size_t numAttributes =
	    lines.atLineEnd() ? 0 : lines.count("the number of attributes");
	const std::size_t numMarkers = lines.atLineEnd() ? 0 : lines.count("the number of markers");
	if (points.wantsAttributes()) addNodeAttributes(numAttributes, numMarkers, points);
	for (std::size_t i = 0, firstIndex = 0; i < num; ++i) {
		requireOne(lines, "point ", i, num);
		const std::size_t index = lines.count("the index of a point");
		if (i == 0) points.setFirstNumber(firstIndex = index);
		if (index != firstIndex + i) lines.fail("the indices of the points are not consecutive");
		const double x = lines.number("x"), y = lines.number("y"), z = lines.number("z");
		for (std::size_t k = 0; k < numAttributes + numMarkers; ++k) {
			const double value = lines.number("an attribute or a boundary marker");
			if (points.wantsAttributes()) appendNumber(points.valuesOf(k), value);
		}
		lines.add(points, x, y, z);
	}
	if (lines.next()) lines.fail("more points than the " + std::to_string(num) + " announced");
}

} // namespace app
