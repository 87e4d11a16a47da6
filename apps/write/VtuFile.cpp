// SPDX-License-Identifier: MIT
// The XML of an unstructured grid; its arrays are appended raw, compressed where there is zlib.
#include "VtuFile.h"

#include "OutputFile.h"
#include "Utf8.h"

#include <algorithm>

namespace app {

namespace {

// As a value between quotation marks.
std::string xmlText(const std::string& text)
{
	std::string quoted;
	for (const char c : validUtf8(text)) {
		switch (c) {
		case '&':
			quoted += "&amp;";
			break;
		case '<':
			quoted += "&lt;";
			break;
		case '"':
			quoted += "&quot;";
			break;
		default:
			quoted += c >= 0 && c < ' ' ? ' ' : c;
		}
	}
	return quoted;
}

} // namespace

void VtuFile::begin(
    std::string& section, const std::string& type, const std::string& name, int numComponents)
{
	std::string typeAndName = type + "\" Name=\"" + xmlText(name);
	if (numComponents > 1)
		typeAndName += "\" NumberOfComponents=\"" + std::to_string(numComponents);
	section += arrays.begin(typeAndName);
}

void VtuFile::addVertexData(
    std::string& section, const Result& result, const std::vector<std::size_t>& vVertices)
{
	// The index carries over what else is known of the input's points.
	add(section, "Int32", "inputIndex", vVertices.size(),
	    [&](std::size_t i) { return result.inputIndex(vVertices[i]); });
	const auto addValue = [&](const Attribute& attribute, std::size_t vertex) {
		std::visit([&](const auto& values) { arrays.add(values[result.firstInput(vertex)]); },
		    attribute.values);
	};
	const auto vColours = findColours(result.input.vAttributes);
	if (!vColours.empty()) {
		begin(section, typeOf(*vColours[0]).vtu, kColoursName, 3);
		for (const auto vertex : vVertices)
			for (const auto* pColour : vColours) addValue(*pColour, vertex);
		end();
	}
	for (const auto& attribute : result.input.vAttributes) {
		if (std::count(vColours.begin(), vColours.end(), &attribute)) continue;
		begin(section, typeOf(attribute).vtu, attribute.name);
		for (const auto vertex : vVertices) addValue(attribute, vertex);
		end();
	}
}

void VtuFile::write(const Path& output) const
{
	OutputFile file(output);
	file.text("<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" "
	          "byte_order=\"");
	file.text(isBigEndianMachine() ? "BigEndian" : "LittleEndian");
	file.text(R"(" header_type="UInt64")");
	file.text(AppendedArrays::kCompressor);
	file.text(">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\"" + std::to_string(numPoints) +
	    "\" NumberOfCells=\"" + std::to_string(numCells) + "\">\n");
	file.text("<Points>\n" + points + "</Points>\n<Cells>\n" + cells + "</Cells>\n");
	if (!pointData.empty()) file.text("<PointData>\n" + pointData + "</PointData>\n");
	if (!cellData.empty()) file.text("<CellData>\n" + cellData + "</CellData>\n");
	file.text("</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_");
	file.text(arrays.getBytes());
	file.text("\n</AppendedData>\n</VTKFile>\n");
	file.commit();
}

} // namespace app
