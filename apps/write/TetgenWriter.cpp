// SPDX-License-Identifier: MIT
// The three files of TetGen: .node (vertices), .ele (corners) and .neigh (neighbours, -1 on the
// hull). Numbering starts at 0; neighbour i lies opposite corner i, as in the mesh itself.
#include "OutputFile.h"
#include "Writer.h"

namespace app {

namespace {

template <class T>
void writeRow(OutputFile& file, std::size_t index, const T* pValues, int num)
{
	file.number(index);
	for (int i = 0; i < num; ++i) {
		file.text(" ");
		file.number(pValues[i]);
	}
	file.text("\n");
}

} // namespace

void writeTetgen(const Mesh& mesh, const std::filesystem::path& output)
{
	const auto vFiles = getOutputFiles(output);
	OutputFile nodes(vFiles[0]), elements(vFiles[1]), neighbours(vFiles[2]);
	nodes.text(std::to_string(mesh.numVertices()) + " 3 0 0\n");
	for (std::size_t vertex = 0; vertex < mesh.numVertices(); ++vertex)
		writeRow(nodes, vertex, &mesh.vCoordinates[3 * vertex], 3);

	elements.text(std::to_string(mesh.numTets()) + " 4 0\n");
	neighbours.text(std::to_string(mesh.numTets()) + " 4\n");
	std::size_t tet = 0;
	forEachTet(mesh, [&](const std::int32_t* pCorners, const std::int32_t* pNeighbours) {
		writeRow(elements, tet, pCorners, 4);
		writeRow(neighbours, tet, pNeighbours, 4);
		++tet;
	});

	// None takes its name before all three are complete.
	for (auto* pFile : {&nodes, &elements, &neighbours}) pFile->close();
	for (auto* pFile : {&nodes, &elements, &neighbours}) pFile->commit();
}

} // namespace app
