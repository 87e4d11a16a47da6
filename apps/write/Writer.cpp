// SPDX-License-Identifier: MIT
// The choice between the output formats, and the two small ones: the hull as OFF, the OOGL drawing.
#include "Writer.h"

#include "Failure.h"
#include "OutputFile.h"
#include "read/LineReader.h"

#include <algorithm>
#include <cstdio>
#include <memory>

using Path = std::filesystem::path;

namespace app {

namespace {

// As it decides the format, whether it is written in capitals or not.
std::string extensionOf(const Path& output)
{
	return lowerCase(output.extension().string());
}

bool isTetgen(const std::string& extension)
{
	return extension == ".node" || extension == ".ele" || extension == ".neigh";
}

bool isOogl(const std::string& extension)
{
	return extension == ".list" || extension == ".oogl";
}

// The library does not say when its file could not be written to the end, but then the brace that
// opens the file is never closed.
bool isCompleteOogl(const Path& file)
{
	const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pFile(
	    std::fopen(file.string().c_str(), "rb"), std::fclose);
	if (!pFile) return false;
	long depth = 0, numClosed = 0;
	for (int c = std::getc(pFile.get()); c != EOF; c = std::getc(pFile.get())) {
		if (c == '{') ++depth;
		if (c == '}' && --depth == 0) ++numClosed;
	}
	return depth == 0 && numClosed == 1;
}

} // namespace

std::vector<Path> getOutputFiles(const Path& output)
{
	const std::string extension = extensionOf(output);
	if (isTetgen(extension)) {
		std::vector<Path> vFiles(3, output);
		vFiles[0].replace_extension(".node");
		vFiles[1].replace_extension(".ele");
		vFiles[2].replace_extension(".neigh");
		return vFiles;
	}
	if (extension == ".vtu" || extension == ".off" || isOogl(extension)) return {output};
	throw Failure(kWrongUse,
	    output.string() +
	        ": no output format has this extension (.vtu, .node, "
	        ".ele, .neigh, .off, .list and .oogl have)");
}

void writeMesh(const Mesh& mesh, const Path& output)
{
	const std::string extension = extensionOf(output);
	if (isTetgen(extension)) return writeTetgen(mesh, output);
	if (extension == ".off") return writeHullOff(mesh, output);
	if (isOogl(extension)) return writeOogl(mesh, output);
	writeVtu(mesh, output);
}

void writeHullOff(const Mesh& mesh, const Path& output)
{
	const auto vHullNumbers = numberHullVertices(mesh);
	const auto numVertices = 1 + *std::max_element(vHullNumbers.begin(), vHullNumbers.end());
	OutputFile file(output);
	file.text("OFF\n" + std::to_string(numVertices) + " " + std::to_string(mesh.numHullFacets()) +
	    " 0\n");
	for (std::size_t vertex = 0; vertex < vHullNumbers.size(); ++vertex) {
		if (vHullNumbers[vertex] == -1) continue;
		for (std::size_t axis = 0; axis < 3; ++axis) {
			file.number(mesh.vCoordinates[3 * vertex + axis]);
			file.text(" ");
		}
		file.text("\n");
	}
	for (std::size_t i = 0; i < mesh.vHullCorners.size(); ++i) {
		file.text(i % 3 == 0 ? "3 " : " ");
		file.number(vHullNumbers[static_cast<std::size_t>(mesh.vHullCorners[i])]);
		if (i % 3 == 2) file.text("\n");
	}
	file.commit();
}

void writeOogl(const Mesh& mesh, const Path& output)
{
	OutputFile file(output);
	file.close();
	mesh.triangulation.show(file.getTemporaryName().string(), nullptr);
	if (!isCompleteOogl(file.getTemporaryName()))
		throw Failure(kNotWritten, output.string() + ": cannot be written to its end");
	file.commit();
}

} // namespace app
