// SPDX-License-Identifier: MIT
// Triangles as OFF, OBJ, PLY and STL. The vertices that they have are written in the order of the mesh.
#include "OutputFile.h"
#include "Writer.h"

#include <cmath>

namespace app {

namespace {

// The vertices of the triangles, and their numbers in the file.
struct UsedVertices
{
	std::vector<std::size_t> vVertices;
	std::vector<std::int32_t> vNumbers;

	UsedVertices(const Mesh& mesh, const Triangles& vTriangles)
	    : vNumbers(numberVertices(mesh, vTriangles))
	{
		for (std::size_t vertex = 0; vertex < vNumbers.size(); ++vertex)
			if (vNumbers[vertex] != -1) vVertices.push_back(vertex);
	}
};

// A line for each triangle: what it begins with, and the numbers of its corners from `base` on.
void writeFacets(OutputFile& file, const char* start, const Triangles& vTriangles,
    const std::vector<std::int32_t>& vNumbers, std::int32_t base)
{
	for (std::size_t i = 0; i < vTriangles.size(); ++i) {
		file.text(i % 3 == 0 ? start : " ");
		file.number(vNumbers[static_cast<std::size_t>(vTriangles[i])] + base);
		if (i % 3 == 2) file.text("\n");
	}
}

} // namespace

void writeOff(const Result& result, const Triangles& vTriangles, const Path& output)
{
	const UsedVertices used(result.mesh, vTriangles);
	OutputFile file(output);
	file.text("OFF\n" + std::to_string(used.vVertices.size()) + " " +
	    std::to_string(vTriangles.size() / 3) + " 0\n");
	for (const auto vertex : used.vVertices) {
		for (std::size_t axis = 0; axis < 3; ++axis) {
			file.number(result.mesh.vCoordinates[3 * vertex + axis]);
			file.text(" ");
		}
		file.text("\n");
	}
	writeFacets(file, "3 ", vTriangles, used.vNumbers, 0);
	file.commit();
}

void writeObj(const Result& result, const Triangles& vTriangles, const Path& output)
{
	const UsedVertices used(result.mesh, vTriangles);
	OutputFile file(output);
	for (const auto vertex : used.vVertices) {
		file.text("v");
		for (std::size_t axis = 0; axis < 3; ++axis) {
			file.text(" ");
			file.number(result.mesh.vCoordinates[3 * vertex + axis]);
		}
		file.text("\n");
	}
	writeFacets(file, "f ", vTriangles, used.vNumbers, 1);
	file.commit();
}

void writePly(const Result& result, const Triangles& vTriangles, const Path& output)
{
	const UsedVertices used(result.mesh, vTriangles);
	OutputFile file(output);
	file.text("ply\nformat binary_");
	file.text(isBigEndianMachine() ? "big" : "little");
	file.text("_endian 1.0\nelement vertex " + std::to_string(used.vVertices.size()) +
	    "\nproperty double x\nproperty double y\nproperty double z\n");
	for (const auto& attribute : result.input.vAttributes) {
		file.text("property ");
		file.text(typeOf(attribute).ply);
		file.text(" " + wordOf(attribute.name) + "\n");
	}
	file.text("property int inputIndex\nelement face " + std::to_string(vTriangles.size() / 3) +
	    "\nproperty list uchar int vertex_indices\nend_header\n");
	for (const auto vertex : used.vVertices) {
		for (std::size_t axis = 0; axis < 3; ++axis)
			file.binary(result.mesh.vCoordinates[3 * vertex + axis]);
		for (const auto& attribute : result.input.vAttributes)
			writeBinary(file, attribute, result.firstInput(vertex), isBigEndianMachine());
		file.binary(result.inputIndex(vertex));
	}
	for (std::size_t i = 0; i < vTriangles.size(); ++i) {
		if (i % 3 == 0) file.binary(std::uint8_t{3});
		file.binary(used.vNumbers[static_cast<std::size_t>(vTriangles[i])]);
	}
	file.commit();
}

void writeStl(const Result& result, const Triangles& vTriangles, const Path& output)
{
	constexpr bool bBig = false;
	OutputFile file(output);
	std::string title = "written by tulo3d";
	title.resize(80, ' ');
	file.text(title);
	file.binary(static_cast<std::uint32_t>(vTriangles.size() / 3), bBig);
	for (std::size_t i = 0; i < vTriangles.size(); i += 3) {
		const auto corner = [&](std::size_t k) {
			return result.mesh.point(static_cast<std::size_t>(vTriangles[i + k]));
		};
		const auto a = corner(1) - corner(0), b = corner(2) - corner(0);
		const double x = a.y() * b.z() - a.z() * b.y(), y = a.z() * b.x() - a.x() * b.z(),
		             z = a.x() * b.y() - a.y() * b.x();
		const double length = std::hypot(x, y, z);
		for (const double value : {x, y, z})
			file.binary(static_cast<float>(length > 0 ? value / length : 0), bBig);
		for (std::size_t k = 0; k < 3; ++k) {
			const auto p = corner(k);
			for (const double value : {p.x(), p.y(), p.z()})
				file.binary(static_cast<float>(value), bBig);
		}
		file.binary(std::uint16_t{0}, bBig);
	}
	file.commit();
}

} // namespace app
