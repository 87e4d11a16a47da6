// SPDX-License-Identifier: MIT
// Computing shapes by the add-on library, from arrays of the mesh.
#include "Shape.h"

#include "Failure.h"

#include <shapes/AlphaShapes.h>
#include <shapes/ConvexHull.h>
#include <shapes/Quality.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace shapes = TULO3D::shapes;

namespace app {

namespace {

// The tetrahedra whose value is at most the limit.
shapes::Solid solidWithin(const shapes::MeshView& view, const std::vector<double>& vValues,
    double limit, const char* measure, ShapeKind kind)
{
	std::vector<bool> vKept(vValues.size());
	for (std::size_t i = 0; i < vKept.size(); ++i) vKept[i] = vValues[i] <= limit;
	auto solid = shapes::solidOf(view, vKept);
	if (!solid.vTets.empty()) return solid;
	char aLeast[32];
	const auto end = std::to_chars(
	    aLeast, aLeast + sizeof(aLeast), *std::min_element(vValues.begin(), vValues.end()))
	                     .ptr;
	throw Failure(kNoMesh,
	    std::string(optionOf(kind)) + ": no tetrahedron is left; " + measure + " is " +
	        std::string(aLeast, end) + ", give at least that");
}

shapes::Solid alphaSolid(const shapes::MeshView& view, double& radius)
{
	const shapes::AlphaShapes alphaShapes(view);
	if (radius == 0) radius = alphaShapes.radiusThatKeepsEveryPoint();
	return solidWithin(
	    view, alphaShapes.radii(), radius, "the smallest circumradius", ShapeKind::kAlpha);
}

shapes::Solid shortEdgedSolid(const shapes::MeshView& view, double limit)
{
	std::vector<double> vLongest(view.numTets);
	shapes::QualityArrays arrays;
	arrays.pLongestEdges = vLongest.data();
	shapes::measureQuality(view, arrays);
	return solidWithin(
	    view, vLongest, limit, "the shortest of their longest edges", ShapeKind::kMaxEdge);
}

void computeHull(const shapes::MeshView& view, Shape& shape)
{
	auto hull = shapes::convexHull(view);
	shape.solid.vTriangles = std::move(hull.vTriangles);
	shape.solid.area = hull.area;
	shape.solid.volume = hull.volume;
}

void computeCells(const shapes::MeshView& view, Shape& shape)
{
	auto voronoi = shapes::Voronoi::clippedToHull(view);
	shape.cells = voronoi.cells();
	shape.vCircumcentres = voronoi.circumcentres();
}

// Measures some thousand tetrahedra at a time, since the six angles of all would take more memory than the mesh.
class Measurement
{
public:
	explicit Measurement(const Mesh& theMesh) : mesh(theMesh), vNoNeighbours(4 * kPiece, -1) {}

	void add(const std::int32_t* pCorners)
	{
		vCorners.insert(vCorners.end(), pCorners, pCorners + 4);
		if (vCorners.size() == 4 * kPiece) measure();
	}
	void measure();
	std::vector<Attribute> take()
	{
		return {{"volume", std::move(vVolumes)}, {"minDihedralAngle", std::move(vMinAngles)},
		    {"maxDihedralAngle", std::move(vMaxAngles)}, {"radiusRatio", std::move(vRatios)},
		    {"shortestEdge", std::move(vShortest)}, {"longestEdge", std::move(vLongest)}};
	}

private:
	static constexpr std::size_t kPiece = 8192;
	using Values = std::vector<double>;

	const Mesh& mesh;
	std::vector<std::int32_t> vCorners;
	const std::vector<std::int32_t> vNoNeighbours; // no measure depends on them
	Values vVolumes, vMinAngles, vMaxAngles, vRatios, vShortest, vLongest;
};

void Measurement::measure()
{
	const std::size_t num = vCorners.size() / 4, start = vVolumes.size();
	for (auto* pValues : {&vVolumes, &vRatios, &vShortest, &vLongest}) pValues->resize(start + num);
	Values vAngles(6 * num);
	shapes::QualityArrays arrays{};
	arrays.pVolumes = vVolumes.data() + start;
	arrays.pDihedralAngles = vAngles.data();
	arrays.pRadiusRatios = vRatios.data() + start;
	arrays.pShortestEdges = vShortest.data() + start;
	arrays.pLongestEdges = vLongest.data() + start;
	shapes::measureQuality(
	    {mesh.vCoordinates.data(), mesh.numVertices(), vCorners.data(), vNoNeighbours.data(), num},
	    arrays);
	constexpr double kDegrees = 180 / 3.14159265358979323846;
	for (auto p = vAngles.begin(); p != vAngles.end(); p += 6) {
		const auto [least, most] = std::minmax_element(p, p + 6);
		vMinAngles.push_back(*least * kDegrees);
		vMaxAngles.push_back(*most * kDegrees);
	}
	vCorners.clear();
}

} // namespace

const char* optionOf(ShapeKind kind)
{
	static const char* const aOptions[] = {"", "--hull", "--alpha", "--max-edge", "--voronoi"};
	return aOptions[static_cast<int>(kind)];
}

Shape computeShape(const Mesh& mesh, const ShapeRequest& request)
{
	Shape shape;
	shape.kind = request.kind;
	shape.limit = request.limit;
	if (request.kind != ShapeKind::kMesh) {
		const TetArrays arrays(mesh);
		const shapes::MeshView view{mesh.vCoordinates.data(), mesh.numVertices(), arrays.pCorners,
		    arrays.pNeighbours, mesh.numTets()};
		if (request.kind == ShapeKind::kHull) computeHull(view, shape);
		if (request.kind == ShapeKind::kVoronoi) computeCells(view, shape);
		if (request.kind == ShapeKind::kAlpha) shape.solid = alphaSolid(view, shape.limit);
		if (request.kind == ShapeKind::kMaxEdge) shape.solid = shortEdgedSolid(view, shape.limit);
	}
	if (shape.isPart()) shape.vTetValues.push_back({"component", shape.solid.vComponents});
	if (request.bQuality) {
		Measurement measurement(mesh);
		forEachTet(mesh, shape, [&](const std::int32_t* p) { measurement.add(p); });
		measurement.measure();
		for (auto& values : measurement.take()) shape.vTetValues.push_back(std::move(values));
	}
	return shape;
}

} // namespace app
