// SPDX-License-Identifier: MIT
// A drawing of the mesh for Geomview: each tetrahedron in a colour, the vertices green.
//
// All facets are one object, and each object has braces of its own: the memory that Geomview takes for a list
// grows with the square of its members, and a member without braces takes those that follow for its own, one
// within the other, until Geomview's stack ends.
#include "OutputFile.h"
#include "Writer.h"

namespace app {

namespace {

// Half transparent; those of the library's drawings, in their order.
constexpr const char* kColours[] = {" 0 .749 1 .5\n", " 0 .1 .803 .5\n", " 1 1 0 .5\n",
    " 1 .411 .705 .5\n", " .1 .1 .1 .5\n", " .823 .705 .549 .5\n", " .545 .271 .074 .5\n",
    " 1 .627 0 .5\n", " .627 .125 .941 .5\n", " .745 .745 .745 .5\n", " .445 .445 .445 .5\n",
    " 1 0 0 .5\n", " 0 1 0 .5\n", " 1 1 1 .5\n"};

void writeVertices(OutputFile& file, const Mesh& mesh)
{
	for (std::size_t i = 0; i < mesh.vCoordinates.size(); ++i) {
		file.number(mesh.vCoordinates[i]);
		file.text(i % 3 == 2 ? "\n" : " ");
	}
}

void writeFacets(OutputFile& file, const Result& result)
{
	std::size_t tet = 0;
	forEachTet(result, [&](const std::int32_t* pCorners) {
		const char* const colour = kColours[tet++ % std::size(kColours)];
		for (const auto& facet : kOutside) {
			file.text("3");
			for (const int corner : facet) {
				file.text(" ");
				file.number(pCorners[corner]);
			}
			file.text(colour);
		}
	});
}

// Each point is a line of one vertex; only the first one has a colour, which the others take.
void writeDots(OutputFile& file, const Mesh& mesh)
{
	const auto num = std::to_string(mesh.numVertices());
	file.text("{ appearance { linewidth 5 }\nVECT\n" + num + " " + num + " 1\n");
	for (std::size_t i = 0; i < mesh.numVertices(); ++i) file.text("1\n");
	for (std::size_t i = 0; i < mesh.numVertices(); ++i) file.text(i == 0 ? "1\n" : "0\n");
	writeVertices(file, mesh);
	file.text("0 1 0 .5\n}\n");
}

} // namespace

void writeOogl(const Result& result, const Path& output)
{
	const Mesh& mesh = result.mesh;
	OutputFile file(output);
	file.text("LIST\n{ OFF\n" + std::to_string(mesh.numVertices()) + " " +
	    std::to_string(4 * numTets(result)) + " 0\n");
	writeVertices(file, mesh);
	writeFacets(file, result);
	file.text("}\n");
	writeDots(file, mesh);
	file.commit();
}

} // namespace app
