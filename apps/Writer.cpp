// SPDX-License-Identifier: MIT
// The choice between the output formats, and the two small ones: the hull as OFF, the OOGL drawing.
#include "Writer.h"

#include "Errors.h"
#include "LineReader.h"
#include "OutputFile.h"

#include <cstdio>
#include <memory>

using TULO3D::Point3;
using TULO3D::Tet3;
using TULO3D::Tulo_3D;
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

void writeMesh(Tulo_3D& triangulation, const Mesh& mesh, const Path& output)
{
	const std::string extension = extensionOf(output);
	if (isTetgen(extension)) return writeTetgen(mesh, output);
	if (extension == ".off") return writeHullOff(mesh, output);
	if (isOogl(extension)) return writeOogl(triangulation, output);
	writeVtu(mesh, output);
}

void writeHullOff(const Mesh& mesh, const Path& output)
{
	std::vector<const Point3*> vHullVertices;
	std::vector<std::uint64_t> vHullIndex(mesh.vVertices.size(), UINT64_MAX);
	const auto hullIndex = [&](const Point3* pVtx) -> std::uint64_t& {
		return vHullIndex[static_cast<std::size_t>(pVtx->customIndex)];
	};
	forEachHullFacet(mesh, [&](const Tet3* pTet, int ith) {
		for (const auto* pVtx : facetCorners(pTet, ith).aVtx) hullIndex(pVtx) = 0;
	});
	for (const auto* pVtx : mesh.vVertices) {
		if (hullIndex(pVtx) != 0) continue;
		hullIndex(pVtx) = vHullVertices.size();
		vHullVertices.push_back(pVtx);
	}

	OutputFile file(output);
	file.text("OFF\n" + std::to_string(vHullVertices.size()) + " " +
	    std::to_string(mesh.numHullFacets) + " 0\n");
	for (const auto* pVtx : vHullVertices) {
		for (const double value : {pVtx->x(), pVtx->y(), pVtx->z()}) {
			file.number(value);
			file.text(" ");
		}
		file.text("\n");
	}
	forEachHullFacet(mesh, [&](const Tet3* pTet, int ith) {
		file.text("3");
		for (const auto* pVtx : facetCorners(pTet, ith).aVtx) {
			file.text(" ");
			file.number(hullIndex(pVtx));
		}
		file.text("\n");
	});
	file.commit();
}

void writeOogl(Tulo_3D& triangulation, const Path& output)
{
	OutputFile file(output);
	file.close();
	triangulation.show(file.getTemporaryName().string(), nullptr);
	if (!isCompleteOogl(file.getTemporaryName()))
		throw Failure(kNotWritten, output.string() + ": cannot be written to its end");
	file.commit();
}

} // namespace app
