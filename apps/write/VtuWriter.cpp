// SPDX-License-Identifier: MIT
// The mesh as a VTK unstructured grid with its arrays appended raw, which ParaView reads fastest.
#include "Bytes.h"
#include "OutputFile.h"
#include "Writer.h"

namespace app {

namespace {

// Describes the arrays and keeps the place of the next one: each is its size and then its bytes.
class Appended
{
public:
	std::string array(const std::string& typeAndName, std::uint64_t numBytes)
	{
		const std::string place = std::to_string(next);
		next += sizeof(std::uint64_t) + numBytes;
		return "<DataArray " + typeAndName + R"( format="appended" offset=")" + place + "\"/>\n";
	}

private:
	std::uint64_t next = 0;
};

constexpr std::uint8_t kTetrahedron = 10; // VTK's number of this kind of cell

} // namespace

void writeVtu(const Mesh& mesh, const std::filesystem::path& output)
{
	const std::uint64_t numVertices = mesh.numVertices(), numTets = mesh.numTets();
	OutputFile file(output);
	Appended appended;
	file.text("<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" "
	          "byte_order=\"");
	file.text(isBigEndianMachine() ? "BigEndian" : "LittleEndian");
	file.text("\" header_type=\"UInt64\">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\"");
	file.text(
	    std::to_string(numVertices) + "\" NumberOfCells=\"" + std::to_string(numTets) + "\">\n");
	file.text("<Points>\n");
	file.text(
	    appended.array(R"(type="Float64" Name="Points" NumberOfComponents="3")", 24 * numVertices));
	file.text("</Points>\n<Cells>\n");
	file.text(appended.array(R"(type="Int64" Name="connectivity")", 32 * numTets));
	file.text(appended.array(R"(type="Int64" Name="offsets")", 8 * numTets));
	file.text(appended.array(R"(type="UInt8" Name="types")", numTets));
	// The index carries over what the input said about a point, such as its colour or its class.
	file.text("</Cells>\n<PointData>\n");
	file.text(appended.array(R"(type="Int64" Name="inputIndex")", 8 * numVertices));
	file.text("</PointData>\n");
	file.text("</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_");

	file.binary(24 * numVertices);
	for (const double value : mesh.vCoordinates) file.binary(value);
	file.binary(32 * numTets);
	forEachTet(mesh, [&](const std::int32_t* pCorners) {
		for (int i = 0; i < 4; ++i) file.binary(std::int64_t{pCorners[i]});
	});
	file.binary(8 * numTets);
	for (std::uint64_t end = 4; end <= 4 * numTets; end += 4) file.binary(end);
	file.binary(numTets);
	for (std::uint64_t i = 0; i < numTets; ++i) file.binary(kTetrahedron);
	file.binary(8 * numVertices);
	for (const auto first : mesh.vFirstInput) file.binary(std::int64_t{first});
	file.text("\n</AppendedData>\n</VTKFile>\n");
	file.commit();
}

} // namespace app
