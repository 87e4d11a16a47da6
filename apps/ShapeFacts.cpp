// SPDX-License-Identifier: MIT
// Areas, volumes and numbers of shapes; the range, mean and histogram of each measure of quality.
#include "ShapeFacts.h"

#include <algorithm>
#include <numeric>
#include <shapes/Quality.h>

namespace app {

namespace {

// The measures of --quality, as a person calls them, with the range of their histogram if they have one.
struct Measure
{
	const char* label;
	const char* unit;
	double low, high;
	std::size_t numBins;
};
constexpr Measure kMeasures[] = {{"tetrahedron volume", "", 0, 0, 0},
    {"smallest dihedral angle", " degrees", 0, 80, 8},
    {"largest dihedral angle", " degrees", 70, 180, 11}, {"radius ratio", "", 0, 1, 10},
    {"shortest edge", "", 0, 0, 0}, {"longest edge", "", 0, 0, 0}};

// Of one measure: least, mean and most in the object `json`, and text lines, those of the histogram after the first.
void addMeasure(
    const Measure& measure, const Attribute& values, std::string& json, std::vector<Fact>& vFacts)
{
	const auto& v = std::get<std::vector<double>>(values.values);
	const auto [least, most] = std::minmax_element(v.begin(), v.end());
	const double mean = std::accumulate(v.begin(), v.end(), 0.0) / static_cast<double>(v.size());
	json += (json.empty() ? "\"" : ", \"") + values.name + R"(": {"min": )" + jsonNumber(*least) +
	    R"(, "mean": )" + jsonNumber(mean) + R"(, "max": )" + jsonNumber(*most);
	vFacts.push_back({"", measure.label, "",
	    shortNumber(*least) + " to " + shortNumber(*most) + ", mean " + shortNumber(mean) +
	        measure.unit});
	if (measure.numBins > 0) {
		const auto vCounts = TULO3D::shapes::histogram(
		    v.data(), v.size(), measure.low, measure.high, measure.numBins);
		const double width = (measure.high - measure.low) / static_cast<double>(measure.numBins);
		std::string counts;
		for (std::size_t i = 0; i < vCounts.size(); ++i) {
			const double low = measure.low + width * static_cast<double>(i);
			auto fact = count("", "", vCounts[i]);
			counts += (i == 0 ? "" : ", ") + fact.json;
			fact.label = "  " + shortNumber(low) + " to " + shortNumber(low + width) + measure.unit;
			fact.json.clear();
			vFacts.push_back(std::move(fact));
		}
		json += R"(, "histogram": {"low": )" + decimal(measure.low) + R"(, "high": )" +
		    decimal(measure.high) + R"(, "counts": [)" + counts + "]}";
	}
	json += "}";
}

void addQuality(const Shape& shape, std::vector<Fact>& vFacts)
{
	if (!shape.hasQuality()) return;
	std::string json;
	for (std::size_t i = 0; i < std::size(kMeasures); ++i)
		addMeasure(kMeasures[i],
		    shape.vTetValues[shape.vTetValues.size() - std::size(kMeasures) + i], json, vFacts);
	vFacts.push_back({"quality", "", "{" + json + "}", ""});
}

} // namespace

std::vector<Fact> shapeFacts(const Mesh& mesh, const Shape& shape, double shapeSeconds)
{
	std::vector<Fact> vFacts;
	const auto name = [&](const char* json, const char* text) {
		vFacts.push_back({"shape", "shape", jsonText(json), text});
	};
	const auto& solid = shape.solid;
	switch (shape.kind) {
	case ShapeKind::kMesh:
		break;
	case ShapeKind::kHull:
		name("hull", "convex hull");
		break;
	case ShapeKind::kAlpha:
		name("alpha", "alpha shape");
		vFacts.push_back(
		    {"alphaRadius", "alpha radius", jsonNumber(shape.limit), decimal(shape.limit)});
		break;
	case ShapeKind::kMaxEdge:
		name("maxEdge", "tetrahedra by their longest edges");
		vFacts.push_back(
		    {"maxEdge", "longest edge allowed", jsonNumber(shape.limit), decimal(shape.limit)});
		break;
	case ShapeKind::kVoronoi: {
		name("voronoi", "Voronoi cells, clipped to the hull");
		const auto& vVolumes = shape.cells.vVolumes;
		vFacts.push_back(count("cells", "cells", vVolumes.size()));
		vFacts.push_back(count("unboundedCells", "unbounded cells", numHullVertices(mesh)));
		vFacts.push_back(
		    number("volume", "volume", std::accumulate(vVolumes.begin(), vVolumes.end(), 0.0)));
	}
	}
	if (shape.isPart()) {
		vFacts.push_back(count("tetrahedraLeft", "tetrahedra left", solid.vTets.size()));
		vFacts.push_back(count("components", "components", solid.vVolumes.size()));
	}
	if (shape.isPart() || shape.kind == ShapeKind::kHull) {
		vFacts.push_back(count("triangles", "triangles", solid.vTriangles.size() / 3));
		vFacts.push_back(number("area", "area", solid.area));
		vFacts.push_back(number("volume", "volume", solid.volume));
	}
	addQuality(shape, vFacts);
	if (!vFacts.empty())
		vFacts.push_back(seconds("shapeSeconds", "seconds to compute", shapeSeconds));
	return vFacts;
}

} // namespace app
