// SPDX-License-Identifier: MIT
// The mesh for Gmsh: format 4.1, binary in the order of bytes of this machine. Attributes are node data and
// values of tetrahedra element data, which are always doubles there.
//
// Nodes are numbered without gaps, from 1 on: not every reader of node data takes other numbers. Where these
// are not those of the input points, node data names the points.
#include "OutputFile.h"
#include "Writer.h"

#include <algorithm>

namespace app {

namespace {

using std::int32_t;
using std::uint64_t;

constexpr int32_t kVolume = 3, kTag = 1; // the one entity that all nodes and elements belong to
constexpr int32_t kTetrahedron = 4;      // Gmsh's number of this type of element

// The numbers of blocks and of items, and the least and the largest tag; then what the one block holds.
void beginBlock(OutputFile& file, uint64_t num, int32_t kind)
{
	for (const uint64_t number : {uint64_t{1}, num, uint64_t{1}, num}) file.binary(number);
	for (const int32_t number : {kVolume, kTag, kind}) file.binary(number);
	file.binary(num);
}

void writeNodes(OutputFile& file, const Mesh& mesh)
{
	constexpr int32_t kNotParametric = 0;
	const uint64_t num = mesh.numVertices();
	file.text("$Nodes\n");
	beginBlock(file, num, kNotParametric);
	for (uint64_t tag = 1; tag <= num; ++tag) file.binary(tag);
	for (const double value : mesh.vCoordinates) file.binary(value);
	file.text("\n$EndNodes\n");
}

void writeElements(OutputFile& file, const Result& result)
{
	file.text("$Elements\n");
	beginBlock(file, numTets(result), kTetrahedron);
	uint64_t element = 0;
	forEachTet(result, [&](const int32_t* pCorners) {
		file.binary(++element);
		for (int i = 0; i < 4; ++i) file.binary(uint64_t{1} + static_cast<uint64_t>(pCorners[i]));
	});
	file.text("\n$EndElements\n");
}

// Values of all nodes or of all elements; `valueOf(i)` is a double.
template <class ValueOf>
void writeData(OutputFile& file, const std::string& section, std::string name, std::size_t num,
    ValueOf valueOf)
{
	std::replace(name.begin(), name.end(), '"', '\'');
	file.text(
	    "$" + section + "\n1\n\"" + name + "\"\n1\n0\n3\n0\n1\n" + std::to_string(num) + "\n");
	for (std::size_t i = 0; i < num; ++i) {
		file.binary(static_cast<int32_t>(i + 1));
		file.binary(valueOf(i));
	}
	file.text("\n$End" + section + "\n");
}

} // namespace

void writeMsh(const Result& result, const Path& output)
{
	const Mesh& mesh = result.mesh;
	const std::size_t num = mesh.numVertices();
	OutputFile file(output);
	file.text("$MeshFormat\n4.1 1 8\n");
	file.binary(int32_t{1}); // shows the order of bytes
	file.text("\n$EndMeshFormat\n");
	writeNodes(file, mesh);
	writeElements(file, result);
	if (result.inputIndex(num - 1) != static_cast<int32_t>(num - 1))
		writeData(file, "NodeData", "inputIndex", num,
		    [&](std::size_t vertex) -> double { return result.inputIndex(vertex); });
	for (const auto& attribute : result.input.vAttributes)
		writeData(file, "NodeData", attribute.name, num,
		    [&](std::size_t vertex) { return valueAt(attribute, result.firstInput(vertex)); });
	for (const auto& values : result.shape.vTetValues)
		writeData(file, "ElementData", values.name, numTets(result),
		    [&](std::size_t tet) { return valueAt(values, tet); });
	file.commit();
}

} // namespace app
