// SPDX-License-Identifier: MIT
// The Voronoi cells as polyhedra of a VTK unstructured grid, with the attributes of their points as cell data.
#include "VtuFile.h"

#include <algorithm>

namespace app {

namespace {

constexpr std::uint8_t kPolyhedron = 42; // VTK's number of this kind of cell

using Numbers = std::vector<std::int32_t>;
using Ends = std::vector<std::int64_t>;

std::size_t at(std::int64_t i)
{
	return static_cast<std::size_t>(i);
}

// The cells that have faces, in the numbers of the file: its points are those corners that a cell has.
struct Polyhedra
{
	std::vector<std::size_t> vVertices; // of each cell
	std::vector<std::size_t> vPoints;   // the corner that each point is
	Numbers vCorners;                   // of each cell, each once
	Numbers vFaces; // of each cell the number of faces, for each that of its corners, and these
	Ends vCornerEnds, vFaceEnds; // where those of each cell end
};

Numbers numberCorners(const Shape& shape, std::vector<std::size_t>& vPoints)
{
	Numbers vNumbers((shape.vCircumcentres.size() + shape.cells.vMade.size()) / 3, -1);
	for (const auto corner : shape.cells.vCorners) vNumbers[at(corner)] = 0;
	for (std::size_t corner = 0; corner < vNumbers.size(); ++corner) {
		if (vNumbers[corner] < 0) continue;
		vNumbers[corner] = static_cast<std::int32_t>(vPoints.size());
		vPoints.push_back(corner);
	}
	return vNumbers;
}

Polyhedra makePolyhedra(const Shape& shape)
{
	Polyhedra polyhedra;
	const auto& cells = shape.cells;
	const Numbers vNumbers = numberCorners(shape, polyhedra.vPoints);
	for (std::size_t vertex = 0; vertex + 1 < cells.vCellBegins.size(); ++vertex) {
		const auto begin = cells.vCellBegins[vertex], end = cells.vCellBegins[vertex + 1];
		if (begin == end) continue; // of no volume
		Numbers vUsed;
		polyhedra.vVertices.push_back(vertex);
		polyhedra.vFaces.push_back(static_cast<std::int32_t>(end - begin));
		for (auto face = begin; face < end; ++face) {
			const auto first = cells.vFaceBegins[at(face)], last = cells.vFaceBegins[at(face + 1)];
			polyhedra.vFaces.push_back(static_cast<std::int32_t>(last - first));
			for (auto i = first; i < last; ++i) {
				vUsed.push_back(vNumbers[at(cells.vCorners[at(i)])]);
				polyhedra.vFaces.push_back(vUsed.back());
			}
		}
		std::sort(vUsed.begin(), vUsed.end());
		vUsed.erase(std::unique(vUsed.begin(), vUsed.end()), vUsed.end());
		polyhedra.vCorners.insert(polyhedra.vCorners.end(), vUsed.begin(), vUsed.end());
		polyhedra.vCornerEnds.push_back(static_cast<std::int64_t>(polyhedra.vCorners.size()));
		polyhedra.vFaceEnds.push_back(static_cast<std::int64_t>(polyhedra.vFaces.size()));
	}
	return polyhedra;
}

void addPoints(VtuFile& file, const Shape& shape, const std::vector<std::size_t>& vPoints)
{
	file.begin(file.points, "Float64", "Points", 3);
	const std::size_t numCentres = shape.vCircumcentres.size();
	for (const auto corner : vPoints)
		for (std::size_t i = 3 * corner; i < 3 * corner + 3; ++i)
			file.value(
			    i < numCentres ? shape.vCircumcentres[i] : shape.cells.vMade[i - numCentres]);
	file.end();
}

} // namespace

void writeVoronoi(const Result& result, const Path& output)
{
	const Polyhedra polyhedra = makePolyhedra(result.shape);
	VtuFile file;
	file.numPoints = polyhedra.vPoints.size();
	file.numCells = polyhedra.vVertices.size();
	addPoints(file, result.shape, polyhedra.vPoints);
	const auto add = [&](const char* name, const auto& vValues) {
		if (polyhedra.vFaces.size() <= INT32_MAX) // the longest of all
			file.add(file.cells, "Int32", name, vValues.size(),
			    [&](std::size_t i) { return static_cast<std::int32_t>(vValues[i]); });
		else
			file.add(file.cells, "Int64", name, vValues.size(),
			    [&](std::size_t i) { return std::int64_t{vValues[i]}; });
	};
	add("connectivity", polyhedra.vCorners);
	add("offsets", polyhedra.vCornerEnds);
	file.add(file.cells, "UInt8", "types", file.numCells, [](std::size_t) { return kPolyhedron; });
	add("faces", polyhedra.vFaces);
	add("faceoffsets", polyhedra.vFaceEnds);
	file.add(file.cellData, "Float64", "volume", file.numCells,
	    [&](std::size_t i) { return result.shape.cells.vVolumes[polyhedra.vVertices[i]]; });
	const auto vHullNumbers = numberVertices(result.mesh, result.mesh.vHullCorners);
	file.add(file.cellData, "UInt8", "unbounded", file.numCells, [&](std::size_t i) {
		return static_cast<std::uint8_t>(vHullNumbers[polyhedra.vVertices[i]] != -1);
	});
	file.addVertexData(file.cellData, result, polyhedra.vVertices);
	file.write(output);
}

} // namespace app
