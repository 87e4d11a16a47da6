// SPDX-License-Identifier: MIT
// Writing a mesh: one function for each format, chosen by the extension of the output's name.
#pragma once

#include "Mesh.h"
#include "Shape.h"
#include "read/Reader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace app {

/// What there is to write, and how.
struct Result
{
	const Mesh& mesh;
	/// What was read, but for the points: the mesh has them.
	const Input& input;
	/// What was made of the mesh.
	const Shape& shape;
	/// The format of standard output; empty when it is no output.
	std::string stdoutFormat;
	/// TetGen's files have each vertex once, with numbers of its own, and not each input point.
	bool bCompact = false;

	/// The first input point of a vertex, among all that were read; counted from 0.
	std::int32_t inputIndex(std::size_t vertex) const;
	/// The value of an attribute is that of this point.
	std::size_t firstInput(std::size_t vertex) const
	{
		return static_cast<std::size_t>(mesh.vFirstInput[vertex]);
	}
};

inline std::size_t numTets(const Result& result)
{
	return numTets(result.mesh, result.shape);
}

/// The tetrahedra that are written.
template <class Visit>
void forEachTet(const Result& result, Visit visit)
{
	forEachTet(result.mesh, result.shape, visit);
}

/// The name of standard output.
constexpr const char* kStdout = "-";

/// The formats that can go to standard output.
std::vector<std::string> getStdoutFormats();

/// The files that an output stands for: itself, or those of TetGen for any one of them. Throws
/// when the extension says no format.
std::vector<std::filesystem::path> getOutputFiles(
    const std::filesystem::path& output, bool bCompact);

/// True for the files of TetGen.
bool isTetgen(const std::filesystem::path& output);

/// True when the format of the output has room for attributes.
bool hasAttributes(const std::filesystem::path& output, const std::string& stdoutFormat);

/// The names of the values that the outputs have themselves.
std::vector<std::string> getOwnNames(const ShapeRequest& request);

/// Throws when one of the outputs cannot hold what was asked for.
void checkShapeOutputs(const ShapeRequest& request, const std::vector<std::string>& vOutputs,
    const std::string& stdoutFormat);

/// What there is to say before an output is written; empty when there is nothing. Throws when its format has no room
/// for the coordinates.
std::string outputWarning(const Result& result, const std::filesystem::path& output);

/// Writes `output` whole, or leaves what was there and throws.
void writeMesh(const Result& result, const std::filesystem::path& output);

// Each writes files that appear only once they are complete.
using Path = std::filesystem::path;
void writeVtu(const Result& result, const Path& output);
void writeVoronoi(const Result& result, const Path& output);
void writeVtk(const Result& result, const Path& output);
void writeMsh(const Result& result, const Path& output);
void writeTetgen(const Result& result, const Path& output);
void writeOogl(const Result& result, const Path& output);

class OutputFile;

/// The bytes of the attribute's value at a point; whole numbers of 64 bits become doubles.
void writeBinary(OutputFile& file, const Attribute& attribute, std::size_t point, bool bBigEndian);

/// Triangles, three vertices each, counter-clockwise from outside.
using Triangles = std::vector<std::int32_t>;
void writeOff(const Result& result, const Triangles& vTriangles, const Path& output);
void writeObj(const Result& result, const Triangles& vTriangles, const Path& output);
void writePly(const Result& result, const Triangles& vTriangles, const Path& output);
void writeStl(const Result& result, const Triangles& vTriangles, const Path& output);

} // namespace app
