// SPDX-License-Identifier: MIT
// Collecting the facts of a run, each once, in both of the forms in which it can be printed.
#include "Report.h"

#include "Facts.h"
#include "ShapeFacts.h"

#include <algorithm>
#include <charconv>
#include <vector>

#ifndef _WIN32
#  include <sys/resource.h>
#endif

using TULO3D::Point3;

namespace app {

namespace {

// The most memory that the program has had so far.
Fact peakMemory()
{
#ifdef _WIN32
	return {"peakMemoryBytes", "", "null", ""};
#else
	struct rusage usage = {};
	getrusage(RUSAGE_SELF, &usage);
	auto bytes = static_cast<std::size_t>(usage.ru_maxrss);
#  ifndef __APPLE__
	bytes *= 1024;
#  endif
	return {"peakMemoryBytes", "peak memory", std::to_string(bytes),
	    std::to_string(bytes >> 20) + " MB"};
#endif
}

Fact corner(const char* key, const char* label, const Point3& p)
{
	const std::string x = decimal(p.x()), y = decimal(p.y()), z = decimal(p.z());
	return {key, label, "[" + x + ", " + y + ", " + z + "]", x + " " + y + " " + z};
}

Fact leftOut(const Measured& measured)
{
	auto fact = count("invalidPoints", "invalid, left out", measured.numLeftOut);
	if (measured.numLeftOut == 0) fact.text.clear();
	return fact;
}

// Of one engine nothing is said.
Fact threads(const Measured& measured)
{
	if (measured.numThreads == 0) return {"threads", "threads", "", ""};
	return count("threads", "threads", measured.numThreads);
}

Fact validity(const Measured& measured)
{
	if (!measured.bChecked) return {"valid", "valid", "null", "not checked"};
	return {"valid", "valid", measured.bValid ? "true" : "false", measured.bValid ? "yes" : "no"};
}

double volume(const Mesh& mesh, const std::int32_t* pCorners)
{
	const auto corner = [&](int i) { return mesh.point(static_cast<std::size_t>(pCorners[i])); };
	const auto a = corner(1) - corner(0), b = corner(2) - corner(0), c = corner(3) - corner(0);
	return ((a.y() * b.z() - a.z() * b.y()) * c.x() + (a.z() * b.x() - a.x() * b.z()) * c.y() +
	           (a.x() * b.y() - a.y() * b.x()) * c.z()) /
	    6;
}

// Duplicate points share a vertex, but need not agree.
Fact attributes(const Measured& measured, const Mesh& mesh)
{
	std::string json, text;
	for (const auto& name : measured.vAttributes) {
		json += (json.empty() ? "" : ", ") + jsonText(name);
		text += (text.empty() ? "" : " ") + name;
	}
	if (!text.empty() && mesh.numVertices() < measured.numPoints)
		text += " (of duplicate points, those of the first one)";
	return {"attributes", "attributes", "[" + json + "]", text};
}

std::vector<Fact> basicFacts(const Measured& measured, const Mesh& mesh)
{
	const auto points = static_cast<double>(measured.numPoints);
	const double rate = measured.insertSeconds > 0 ? points / measured.insertSeconds : 0;
	return {{"version", "", jsonText(TULO3D_VERSION), ""},
	    {"file", "file", jsonText(measured.file), measured.file},
	    count("points", "points", measured.numPoints), leftOut(measured),
	    attributes(measured, mesh),
	    count("distinctVertices", "distinct vertices", mesh.numVertices()),
	    count("tetrahedra", "tetrahedra", mesh.numTets()),
	    count("hullFacets", "hull facets", mesh.numHullFacets()), threads(measured),
	    seconds("insertSeconds", "seconds to insert", measured.insertSeconds),
	    count("pointsPerSecond", "points per second", static_cast<std::size_t>(rate)),
	    validity(measured)};
}

std::vector<Fact> statistics(const Measured& measured, const Mesh& mesh)
{
	TULO3D::Bbox3 box;
	for (std::size_t i = 0; i < mesh.numVertices(); ++i) box.add(mesh.point(i));
	double total = 0;
	forEachTet(mesh, [&](const std::int32_t* pCorners) { total += volume(mesh, pCorners); });
	const double ratio =
	    static_cast<double>(mesh.numTets()) / static_cast<double>(mesh.numVertices());
	return {count("duplicatePoints", "duplicate points", measured.numPoints - mesh.numVertices()),
	    count("hullVertices", "hull vertices", numHullVertices(mesh)),
	    count("facets", "facets", mesh.numFacets()),
	    number("tetrahedraOverVertices", "tetrahedra / distinct vertices", ratio),
	    number("meanIncidentTetrahedra", "mean tetrahedra incident to a vertex",
	        4 * ratio), // each has four corners
	    number("hullVolume", "hull volume", total), corner("boxMin", "box from", box.getMinPoint()),
	    corner("boxMax", "box to", box.getMaxPoint()),
	    seconds("readSeconds", "seconds to read", measured.readSeconds),
	    seconds("checkSeconds", "seconds to check", measured.checkSeconds),
	    seconds("writeSeconds", "seconds to write", measured.writeSeconds),
	    seconds("totalSeconds", "seconds in total", measured.totalSeconds), peakMemory()};
}

} // namespace

std::string reportText(
    const Measured& measured, const Mesh& mesh, const Shape& shape, bool bStatistics)
{
	auto vFacts = basicFacts(measured, mesh);
	for (auto& fact : shapeFacts(mesh, shape, measured.shapeSeconds))
		vFacts.push_back(std::move(fact));
	if (bStatistics)
		for (auto& fact : statistics(measured, mesh)) vFacts.push_back(std::move(fact));
	std::size_t width = 20;
	for (const auto& fact : vFacts) width = std::max(width, fact.label.size());
	std::string text;
	for (const auto& fact : vFacts) {
		if (fact.text.empty()) continue; // for JSON alone
		text += fact.label + std::string(width + 1 - fact.label.size(), ' ') + fact.text + "\n";
	}
	return text;
}

std::string reportJson(const Measured& measured, const Mesh& mesh, const Shape& shape)
{
	auto vFacts = basicFacts(measured, mesh);
	for (auto& fact : shapeFacts(mesh, shape, measured.shapeSeconds))
		vFacts.push_back(std::move(fact));
	for (auto& fact : statistics(measured, mesh)) vFacts.push_back(std::move(fact));
	std::string json;
	for (const auto& fact : vFacts) {
		if (fact.json.empty()) continue; // for the text alone
		json += (json.empty() ? "{\n  \"" : ",\n  \"") + std::string(fact.key) + "\": " + fact.json;
	}
	return json + "\n}\n";
}

} // namespace app
