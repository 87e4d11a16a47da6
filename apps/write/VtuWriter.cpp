// SPDX-License-Identifier: MIT
// The tetrahedra as a VTK unstructured grid.
#include "VtuFile.h"

#include <numeric>

namespace app {

namespace {

constexpr std::uint8_t kTetrahedron = 10; // VTK's number of this kind of cell

template <class T>
void addIndices(VtuFile& file, const char* type, const Result& result)
{
	file.begin(file.cells, type, "connectivity");
	forEachTet(result, [&](const std::int32_t* pCorners) {
		for (int i = 0; i < 4; ++i) file.value(static_cast<T>(pCorners[i]));
	});
	file.end();
	file.add(file.cells, type, "offsets", file.numCells,
	    [](std::size_t i) { return static_cast<T>(4 * (i + 1)); });
}

} // namespace

void writeVtu(const Result& result, const Path& output)
{
	VtuFile file;
	file.numPoints = result.mesh.numVertices();
	file.numCells = numTets(result);
	file.begin(file.points, "Float64", "Points", 3);
	for (const double value : result.mesh.vCoordinates) file.value(value);
	file.end();
	if (4 * file.numCells <= INT32_MAX)
		addIndices<std::int32_t>(file, "Int32", result);
	else
		addIndices<std::int64_t>(file, "Int64", result);
	file.add(file.cells, "UInt8", "types", file.numCells, [](std::size_t) { return kTetrahedron; });
	std::vector<std::size_t> vVertices(file.numPoints);
	std::iota(vVertices.begin(), vVertices.end(), std::size_t{0});
	file.addVertexData(file.pointData, result, vVertices);
	for (const auto& tetValues : result.shape.vTetValues)
		std::visit(
		    [&](const auto& values) {
			    file.add(file.cellData, typeOf(tetValues).vtu, tetValues.name, values.size(),
			        [&](std::size_t i) { return values[i]; });
		    },
		    tetValues.values);
	file.write(output);
}

} // namespace app
