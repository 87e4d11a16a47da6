// SPDX-License-Identifier: MIT
// The mesh as a VTK unstructured grid with its arrays appended raw, compressed where there is zlib.
#include "AppendedArrays.h"
#include "OutputFile.h"
#include "Utf8.h"
#include "Writer.h"

namespace app {

namespace {

constexpr std::uint8_t kTetrahedron = 10; // VTK's number of this kind of cell

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

template <class T>
std::string indexArray(AppendedArrays& arrays, const char* type, const Mesh& mesh)
{
	std::string xml = arrays.begin(std::string(type) + "\" Name=\"connectivity");
	forEachTet(mesh, [&](const std::int32_t* pCorners) {
		for (int i = 0; i < 4; ++i) arrays.add(static_cast<T>(pCorners[i]));
	});
	arrays.end();
	xml += arrays.begin(std::string(type) + "\" Name=\"offsets");
	for (std::uint64_t end = 4; end <= 4 * mesh.numTets(); end += 4)
		arrays.add(static_cast<T>(end));
	arrays.end();
	return xml;
}

std::string cellArrays(AppendedArrays& arrays, const Mesh& mesh)
{
	const bool bSmall = 4 * mesh.numTets() <= INT32_MAX;
	std::string xml = bSmall ? indexArray<std::int32_t>(arrays, "Int32", mesh)
	                         : indexArray<std::int64_t>(arrays, "Int64", mesh);
	xml += arrays.begin("UInt8\" Name=\"types");
	for (std::size_t i = 0; i < mesh.numTets(); ++i) arrays.add(kTetrahedron);
	arrays.end();
	return xml;
}

std::string pointArray(AppendedArrays& arrays, const Mesh& mesh)
{
	std::string xml = arrays.begin(R"(Float64" Name="Points" NumberOfComponents="3)");
	for (const double value : mesh.vCoordinates) arrays.add(value);
	arrays.end();
	return xml;
}

std::string attributeArray(AppendedArrays& arrays, const Result& result, const Attribute& attribute)
{
	std::string xml =
	    arrays.begin(typeOf(attribute).vtu + std::string("\" Name=\"") + xmlText(attribute.name));
	std::visit(
	    [&](const auto& values) {
		    for (std::size_t i = 0; i < result.mesh.numVertices(); ++i)
			    arrays.add(values[result.firstInput(i)]);
	    },
	    attribute.values);
	arrays.end();
	return xml;
}

// The index carries over what else is known of the input's points.
std::string pointDataArrays(AppendedArrays& arrays, const Result& result)
{
	std::string xml = arrays.begin("Int32\" Name=\"inputIndex");
	for (std::size_t i = 0; i < result.mesh.numVertices(); ++i) arrays.add(result.inputIndex(i));
	arrays.end();
	for (const auto& attribute : result.input.vAttributes)
		xml += attributeArray(arrays, result, attribute);
	return xml;
}

} // namespace

void writeVtu(const Result& result, const Path& output)
{
	const Mesh& mesh = result.mesh;
	OutputFile file(output);
	AppendedArrays arrays;
	const std::string points = pointArray(arrays, mesh), cells = cellArrays(arrays, mesh),
	                  pointData = pointDataArrays(arrays, result);
	file.text("<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" "
	          "byte_order=\"");
	file.text(isBigEndianMachine() ? "BigEndian" : "LittleEndian");
	file.text(R"(" header_type="UInt64")");
	file.text(AppendedArrays::kCompressor);
	file.text(">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\"" +
	    std::to_string(mesh.numVertices()) + "\" NumberOfCells=\"" +
	    std::to_string(mesh.numTets()) + "\">\n");
	file.text("<Points>\n" + points + "</Points>\n<Cells>\n" + cells + "</Cells>\n<PointData>\n" +
	    pointData + "</PointData>\n");
	file.text("</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_");
	file.text(arrays.getBytes());
	file.text("\n</AppendedData>\n</VTKFile>\n");
	file.commit();
}

} // namespace app
