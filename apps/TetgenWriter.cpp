// SPDX-License-Identifier: MIT
// The three files of TetGen: .node (vertices), .ele (corners) and .neigh (neighbours, -1 on the
// hull). Numbering starts at 0; neighbour i lies opposite corner i, as in the mesh itself.
#include "OutputFile.h"
#include "Writer.h"

namespace app {

namespace {

void writeIndex(OutputFile& file, int index)
{
	file.text(" ");
	if (index < 0)
		file.text("-1");
	else
		file.number(static_cast<std::uint64_t>(index));
}

} // namespace

void writeTetgen(const Mesh& mesh, const std::filesystem::path& output)
{
	const auto vFiles = getOutputFiles(output);
	OutputFile nodes(vFiles[0]), elements(vFiles[1]), neighbours(vFiles[2]);
	nodes.text(std::to_string(mesh.vVertices.size()) + " 3 0 0\n");
	for (const auto* pVtx : mesh.vVertices) {
		nodes.number(static_cast<std::uint64_t>(pVtx->customIndex));
		for (const double value : {pVtx->x(), pVtx->y(), pVtx->z()}) {
			nodes.text(" ");
			nodes.number(value);
		}
		nodes.text("\n");
	}

	elements.text(std::to_string(mesh.vTets.size()) + " 4 0\n");
	neighbours.text(std::to_string(mesh.vTets.size()) + " 4\n");
	for (const auto* pTet : mesh.vTets) {
		const auto index = static_cast<std::uint64_t>(pTet->getCustomIndex());
		elements.number(index);
		neighbours.number(index);
		for (int i = 0; i < 4; ++i) {
			const auto* pNeigh = pTet->getOppTet(i);
			writeIndex(elements, pTet->getCorner(i)->customIndex);
			writeIndex(neighbours, pNeigh ? pNeigh->getCustomIndex() : -1);
		}
		elements.text("\n");
		neighbours.text("\n");
	}

	// None takes its name before all three are complete.
	for (auto* pFile : {&nodes, &elements, &neighbours}) pFile->close();
	for (auto* pFile : {&nodes, &elements, &neighbours}) pFile->commit();
}

} // namespace app
