// SPDX-License-Identifier: MIT
// The choice between the output formats.
#include "Writer.h"

#include "Failure.h"
#include "OutputFile.h"
#include "read/LineReader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace app {

namespace {

struct Format
{
	const char* name;
	std::vector<const char*> vExtensions;
	bool bAttributes;
	/// Values of tetrahedra have room, too.
	bool bTetValues;
	void (*writeMesh)(const Result&, const Path&);
	/// In place of it, for formats of surfaces.
	void (*writeSurface)(const Result&, const Triangles&, const Path&);
};

const std::vector<Format>& getFormats()
{
	static const std::vector<Format> vFormats = {
	    {"vtu", {".vtu"}, true, true, writeVtu, nullptr},
	    {"vtk", {".vtk"}, true, true, writeVtk, nullptr},
	    {"msh", {".msh"}, true, true, writeMsh, nullptr},
	    {"tetgen", {".node", ".ele", ".neigh"}, true, false, writeTetgen, nullptr},
	    {"ply", {".ply"}, true, false, nullptr, writePly},
	    {"stl", {".stl"}, false, false, nullptr, writeStl},
	    {"obj", {".obj"}, false, false, nullptr, writeObj},
	    {"off", {".off"}, false, false, nullptr, writeOff},
	    {"list", {".list", ".oogl"}, false, false, writeOogl, nullptr},
	};
	return vFormats;
}

const Format* findByName(const std::string& name)
{
	for (const auto& format : getFormats())
		if (name == format.name) return &format;
	return nullptr;
}

// The extension decides, whether it is written in capitals or not.
const Format& findFormat(const Path& output, const std::string& stdoutFormat)
{
	if (output == kStdout) {
		if (const auto* pFormat = findByName(stdoutFormat)) return *pFormat;
		throw Failure(kWrongUse, "-o -: the format of standard output is missing (--to)");
	}
	std::string known;
	const std::string extension = lowerCase(output.extension().string());
	for (const auto& format : getFormats())
		for (const char* other : format.vExtensions) {
			if (extension == other) return format;
			known += (known.empty() ? "" : " ") + std::string(other);
		}
	throw Failure(kWrongUse,
	    output.string() + ": no output format has this extension (known: " + known + ")");
}

const Triangles& surfaceOf(const Result& result)
{
	const Shape& shape = result.shape;
	return shape.kind == ShapeKind::kMesh ? result.mesh.vHullCorners : shape.solid.vTriangles;
}

// The largest change of a coordinate of the triangles when it becomes a float, as a part of their largest extent.
double floatRounding(const Mesh& mesh, const Triangles& vTriangles)
{
	double change = 0, extent = 0;
	for (std::size_t axis = 0; axis < 3; ++axis) {
		double low = std::numeric_limits<double>::infinity(), high = -low;
		for (const auto corner : vTriangles) {
			const double value = mesh.vCoordinates[3 * static_cast<std::size_t>(corner) + axis];
			low = std::min(low, value);
			high = std::max(high, value);
			change =
			    std::max(change, std::fabs(value - static_cast<double>(static_cast<float>(value))));
		}
		extent = std::max(extent, high - low);
	}
	return change / extent;
}

// The digits of the numbers below `num`, and a blank.
std::size_t numberWidth(std::size_t num)
{
	return std::to_string(num).size() + 1;
}

// The bytes of a format that is text, roughly; 0 for the others.
std::size_t textSize(const Result& result, const Format& format)
{
	constexpr std::size_t kPoint = 55; // three coordinates of 17 digits
	const std::size_t numVertices = result.mesh.numVertices(), tets = numTets(result);
	const std::size_t vertex = numberWidth(numVertices), tet = numberWidth(tets);
	if (format.writeMesh == writeOogl)
		return 2 * numVertices * kPoint + tets * 4 * (3 * vertex + 15);
	if (format.writeMesh == writeTetgen)
		return numVertices * (kPoint + vertex) + tets * (4 * vertex + 6 * tet);
	if (format.writeSurface == writeOff || format.writeSurface == writeObj)
		return surfaceOf(result).size() / 3 * (kPoint / 2 + 3 * vertex + 2);
	return 0;
}

} // namespace

std::int32_t Result::inputIndex(std::size_t vertex) const
{
	const auto& vLeftOut = input.vLeftOut;
	const auto before = std::upper_bound(vLeftOut.begin(), vLeftOut.end(), firstInput(vertex));
	return static_cast<std::int32_t>(mesh.vFirstInput[vertex] + (before - vLeftOut.begin()));
}

void writeBinary(OutputFile& file, const Attribute& attribute, std::size_t point, bool bBigEndian)
{
	std::visit(
	    [&](const auto& values) {
		    const auto value = values[point];
		    if constexpr (std::is_integral_v<decltype(value)> && sizeof(value) == 8)
			    file.binary(static_cast<double>(value), bBigEndian);
		    else
			    file.binary(value, bBigEndian);
	    },
	    attribute.values);
}

std::vector<std::string> getStdoutFormats()
{
	std::vector<std::string> vNames;
	for (const auto& format : getFormats())
		if (format.writeMesh != writeTetgen)
			vNames.emplace_back(format.name); // that is several files
	return vNames;
}

std::vector<Path> getOutputFiles(const Path& output, bool bCompact)
{
	if (output == kStdout) return {};
	if (!isTetgen(output)) return {output};
	std::vector<Path> vFiles(bCompact ? 4 : 3, output);
	static const char* const aExtensions[] = {".node", ".ele", ".neigh", ".map"};
	for (std::size_t i = 0; i < vFiles.size(); ++i) vFiles[i].replace_extension(aExtensions[i]);
	return vFiles;
}

bool hasAttributes(const Path& output, const std::string& stdoutFormat)
{
	return findFormat(output, stdoutFormat).bAttributes;
}

std::vector<std::string> getOwnNames(const ShapeRequest& request)
{
	std::vector<std::string> vNames = {"inputIndex", "x", "y", "z"};
	const auto add = [&](std::initializer_list<const char*> more) {
		vNames.insert(vNames.end(), more.begin(), more.end());
	};
	if (request.kind == ShapeKind::kVoronoi) add({"volume", "unbounded"});
	if (request.kind == ShapeKind::kAlpha || request.kind == ShapeKind::kMaxEdge)
		add({"component"});
	if (request.bQuality)
		add({"volume", "minDihedralAngle", "maxDihedralAngle", "radiusRatio", "shortestEdge",
		    "longestEdge"});
	return vNames;
}

bool isTetgen(const Path& output)
{
	return output != kStdout && findFormat(output, "").writeMesh == writeTetgen;
}

void checkShapeOutputs(const ShapeRequest& request, const std::vector<std::string>& vOutputs,
    const std::string& stdoutFormat)
{
	if (request.bQuality &&
	    (request.kind == ShapeKind::kHull || request.kind == ShapeKind::kVoronoi))
		throw Failure(kWrongUse,
		    "--quality measures tetrahedra: use it alone, or with --alpha or --max-edge");
	bool bTetValues = vOutputs.empty();
	for (const auto& output : vOutputs) {
		const auto& format = findFormat(output, stdoutFormat);
		const auto name = output == kStdout ? "-o -" : output;
		bTetValues |= format.bTetValues;
		if (request.kind == ShapeKind::kHull && !format.writeSurface)
			throw Failure(kWrongUse,
			    name +
			        ": --hull makes a surface: write it as .ply, .stl, .obj or .off, or leave "
			        "--hull out to write the tetrahedra");
		if (request.kind == ShapeKind::kVoronoi && format.writeMesh != writeVtu)
			throw Failure(kWrongUse, name + ": --voronoi makes polyhedra: write them as .vtu");
	}
	if (request.bQuality && !bTetValues)
		throw Failure(kWrongUse,
		    "--quality: the outputs have no room for values of tetrahedra: add one as .vtu, .vtk "
		    "or .msh, or write none for the summary alone");
}

std::string outputWarning(const Result& result, const Path& output)
{
	const auto& format = findFormat(output, result.stdoutFormat);
	const auto name = output.string() + ": ";
	if (const auto gigabytes = textSize(result, format) / 1000000000; gigabytes > 0) {
		const auto size = name + "this text takes about " + std::to_string(gigabytes) + " GB";
		return size +
		    (format.writeMesh == writeOogl ? ", and Geomview several times as much memory"
		            : format.writeMesh     ? "; .vtu takes a fraction of it"
		                                   : "; .ply takes less");
	}
	if (format.writeSurface != writeStl) return {};
	const double rounding = floatRounding(result.mesh, surfaceOf(result));
	constexpr double kUseless = 0.1, kVisible = 1e-5;
	if (!(rounding < kUseless))
		throw Failure(kNotWritten,
		    name +
		        "STL has seven digits and no number beyond 3e38, which does not do for these "
		        "coordinates; write .ply, which keeps them, or shift or scale the points");
	if (rounding > kVisible)
		return name + "STL has seven digits, too few for these coordinates; .ply keeps them all";
	return {};
}

void writeMesh(const Result& result, const Path& output)
{
	const auto& format = findFormat(output, result.stdoutFormat);
	const Shape& shape = result.shape;
	if (shape.kind == ShapeKind::kVoronoi)
		writeVoronoi(result, output);
	else if (format.writeSurface)
		format.writeSurface(result, surfaceOf(result), output);
	else
		format.writeMesh(result, output);
}

} // namespace app
