// SPDX-License-Identifier: MIT
// The mesh as a legacy file of VTK, version 3.0: binary, which is always big-endian there.
#include "OutputFile.h"
#include "Writer.h"

namespace app {

namespace {

constexpr bool kBig = true;
constexpr std::int32_t kTetrahedron = 10; // VTK's number of this kind of cell

void writeCells(OutputFile& file, const Result& result)
{
	const auto num = std::to_string(numTets(result));
	file.text("\nCELLS " + num + " " + std::to_string(5 * numTets(result)) + "\n");
	forEachTet(result, [&](const std::int32_t* pCorners) {
		file.binary(std::int32_t{4}, kBig);
		for (int i = 0; i < 4; ++i) file.binary(pCorners[i], kBig);
	});
	file.text("\nCELL_TYPES " + num + "\n");
	for (std::size_t i = 0; i < numTets(result); ++i) file.binary(kTetrahedron, kBig);
}

void beginScalars(OutputFile& file, const std::string& name, const char* type)
{
	file.text("\nSCALARS " + wordOf(name) + " " + type + " 1\nLOOKUP_TABLE default\n");
}

} // namespace

void writeVtk(const Result& result, const Path& output)
{
	const Mesh& mesh = result.mesh;
	const auto numVertices = std::to_string(mesh.numVertices());
	OutputFile file(output);
	file.text("# vtk DataFile Version 3.0\nwritten by tulo3d\nBINARY\nDATASET UNSTRUCTURED_GRID\n"
	          "POINTS " +
	    numVertices + " double\n");
	for (const double value : mesh.vCoordinates) file.binary(value, kBig);
	writeCells(file, result);
	file.text("\nPOINT_DATA " + numVertices);
	beginScalars(file, "inputIndex", "int");
	for (std::size_t i = 0; i < mesh.numVertices(); ++i) file.binary(result.inputIndex(i), kBig);
	for (const auto& attribute : result.input.vAttributes) {
		beginScalars(file, attribute.name, typeOf(attribute).vtk);
		for (std::size_t i = 0; i < mesh.numVertices(); ++i)
			writeBinary(file, attribute, result.firstInput(i), kBig);
	}
	const auto& vTetValues = result.shape.vTetValues;
	if (!vTetValues.empty()) file.text("\nCELL_DATA " + std::to_string(numTets(result)));
	for (const auto& values : vTetValues) {
		beginScalars(file, values.name, typeOf(values).vtk);
		for (std::size_t i = 0; i < numTets(result); ++i) writeBinary(file, values, i, kBig);
	}
	file.text("\n");
	file.commit();
}

} // namespace app
