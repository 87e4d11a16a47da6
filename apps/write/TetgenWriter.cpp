// SPDX-License-Identifier: MIT
// The files of TetGen: .node (points), .ele (corners) and .neigh (neighbours, -1 on the hull). Neighbour i
// lies opposite corner i, as in the mesh itself.
//
// Points are numbered as in the input, so that what is known of them stays right; duplicates have no
// tetrahedra. Or, on demand, only vertices are written, and a .map names the vertex of each point.
#include "OutputFile.h"
#include "Writer.h"

#include <algorithm>
#include <memory>

namespace app {

namespace {

// The nodes of the file: the points of the input, or only the vertices of the mesh.
class Nodes
{
public:
	explicit Nodes(const Result& wholeResult)
	    : mesh(wholeResult.mesh),
	      bCompact(wholeResult.bCompact),
	      base(static_cast<std::int64_t>(wholeResult.input.firstNumber))
	{
	}

	std::size_t numPoints() const
	{
		return mesh.vVertexOfInput.empty() ? mesh.numVertices() : mesh.vVertexOfInput.size();
	}
	std::size_t size() const { return bCompact ? mesh.numVertices() : numPoints(); }
	std::size_t vertexOfPoint(std::size_t point) const
	{
		return mesh.vVertexOfInput.empty() ? point
		                                   : static_cast<std::size_t>(mesh.vVertexOfInput[point]);
	}
	std::size_t vertexOf(std::size_t node) const { return bCompact ? node : vertexOfPoint(node); }
	std::size_t pointOf(std::size_t node) const
	{
		return bCompact ? static_cast<std::size_t>(mesh.vFirstInput[node]) : node;
	}
	/// The number of the node of a vertex.
	std::int64_t numberOf(std::int32_t vertex) const
	{
		return base + (bCompact ? vertex : mesh.vFirstInput[static_cast<std::size_t>(vertex)]);
	}

	const Mesh& mesh;
	const bool bCompact;
	const std::int64_t base;
};

template <class T>
void writeNumber(OutputFile& file, T value)
{
	file.text(" ");
	if constexpr (sizeof(T) == 1)
		file.number(int{value});
	else
		file.number(value);
}

void writeValue(OutputFile& file, const Attribute& attribute, std::size_t point)
{
	std::visit([&](const auto& values) { writeNumber(file, values[point]); }, attribute.values);
}

// TetGen has whole numbers as markers, and one of each node at most.
bool isMarker(const Attribute& attribute)
{
	return attribute.name == kMarkerName && attribute.values.index() < 6;
}

void writeNodes(OutputFile& file, const Nodes& nodes, const std::vector<Attribute>& vAttributes)
{
	const auto numMarkers = std::count_if(vAttributes.begin(), vAttributes.end(), isMarker);
	file.text(std::to_string(nodes.size()) + " 3 " +
	    std::to_string(vAttributes.size() - static_cast<std::size_t>(numMarkers)) + " " +
	    std::to_string(numMarkers) + "\n");
	for (std::size_t node = 0; node < nodes.size(); ++node) {
		file.number(nodes.base + static_cast<std::int64_t>(node));
		const double* pPoint = &nodes.mesh.vCoordinates[3 * nodes.vertexOf(node)];
		for (int i = 0; i < 3; ++i) writeNumber(file, pPoint[i]);
		for (const bool bMarkers : {false, true})
			for (const auto& attribute : vAttributes)
				if (isMarker(attribute) == bMarkers)
					writeValue(file, attribute, nodes.pointOf(node));
		file.text("\n");
	}
}

void writeTets(
    OutputFile& elements, OutputFile& neighbours, const Nodes& nodes, const Result& result)
{
	elements.text(std::to_string(numTets(result)) + " 4 0\n");
	neighbours.text(std::to_string(numTets(result)) + " 4\n");
	std::int64_t tet = nodes.base;
	forEachTet(result, [&](const std::int32_t* pCorners, const std::int32_t* pNeighbours) {
		elements.number(tet);
		neighbours.number(tet);
		for (int i = 0; i < 4; ++i) {
			writeNumber(elements, nodes.numberOf(pCorners[i]));
			writeNumber(neighbours, pNeighbours[i] == -1 ? -1 : nodes.base + pNeighbours[i]);
		}
		elements.text("\n");
		neighbours.text("\n");
		++tet;
	});
}

void writeMap(OutputFile& file, const Nodes& nodes)
{
	file.text(std::to_string(nodes.numPoints()) + "\n");
	for (std::size_t point = 0; point < nodes.numPoints(); ++point) {
		file.number(nodes.base + static_cast<std::int64_t>(point));
		writeNumber(file, nodes.base + static_cast<std::int64_t>(nodes.vertexOfPoint(point)));
		file.text("\n");
	}
}

} // namespace

void writeTetgen(const Result& result, const Path& output)
{
	const Nodes nodes(result);
	std::vector<std::unique_ptr<OutputFile>> vFiles;
	for (const auto& name : getOutputFiles(output, result.bCompact))
		vFiles.push_back(std::make_unique<OutputFile>(name));
	writeNodes(*vFiles[0], nodes, result.input.vAttributes);
	writeTets(*vFiles[1], *vFiles[2], nodes, result);
	if (result.bCompact) writeMap(*vFiles[3], nodes);

	// None takes its name before all are complete.
	for (auto& pFile : vFiles) pFile->close();
	for (auto& pFile : vFiles) pFile->commit();
}

} // namespace app
