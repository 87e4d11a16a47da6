// SPDX-License-Identifier: MIT
// What TULO3D::shapes makes of a mesh, as tuples of arrays. No array is copied.
#include "Shapes.h"

#include "Arrays.h"
#include "shapes/AlphaShapes.h"
#include "shapes/ConvexHull.h"
#include "shapes/Quality.h"
#include "shapes/Voronoi.h"

#include <nanobind/stl/array.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>

#include <array>
#include <optional>
#include <string>
#include <tuple>

using namespace nanobind::literals;

namespace binding {

namespace {

namespace shapes = TULO3D::shapes;

using Doubles = NewArray<double>;
using Indices32 = NewArray<std::int32_t>;
using Indices64 = NewArray<std::int64_t>;

shapes::MeshView viewOf(const Mesh& mesh)
{
	return {mesh.pPoints, mesh.numPoints, mesh.pCorners, mesh.pNeighbors, mesh.numTets};
}

std::tuple<Indices32, Indices32, double, double, Indices64, Indices32> hull(const Mesh& mesh)
{
	auto [found, polygons] = unlocked([&] {
		shapes::ConvexHull triangles = shapes::convexHull(viewOf(mesh));
		shapes::HullPolygons merged = shapes::mergeCoplanar(viewOf(mesh), triangles);
		return std::pair(std::move(triangles), std::move(merged));
	});
	return std::make_tuple(toArray(std::move(found.vTriangles)),
	    toArray(std::move(found.vNeighbours)), found.area, found.volume,
	    toArray(std::move(polygons.vBegins)), toArray(std::move(polygons.vCorners)));
}

/// For the radius, or the one that `choice` names: "all" or "one".
std::tuple<double, Indices32, Indices32, Doubles, Indices32, double, double, Indices32, Indices32>
alphaShape(const Mesh& mesh, double radius, const std::string& choice, bool bSingular)
{
	shapes::SingularParts parts;
	shapes::AlphaShape shape = unlocked([&] {
		const shapes::AlphaShapes all(viewOf(mesh));
		if (choice == "all") radius = all.radiusThatKeepsEveryPoint();
		if (choice == "one") radius = all.radiusOfOneComponent();
		if (bSingular) parts = all.singularParts(radius);
		return all.shape(radius);
	});
	return std::make_tuple(shape.radius, toArray(std::move(shape.vTets)),
	    toArray(std::move(shape.vComponents)), toArray(std::move(shape.vVolumes)),
	    toArray(std::move(shape.vTriangles)), shape.area, shape.volume,
	    toArray(std::move(parts.vFacets)), toArray(std::move(parts.vEdges)));
}

using Corner = std::array<double, 3>;

std::tuple<Doubles, Indices64, Indices32, Indices64, Indices32, Doubles> voronoi(const Mesh& mesh,
    const std::optional<Corner>& low, const std::optional<Corner>& high, bool bHull)
{
	std::vector<double> vertices;
	shapes::VoronoiCells cells = unlocked([&] {
		shapes::Voronoi diagram = [&] {
			if (bHull) return shapes::Voronoi::clippedToHull(viewOf(mesh));
			if (!low || !high) return shapes::Voronoi(viewOf(mesh));
			const Corner &a = *low, &b = *high;
			return shapes::Voronoi(viewOf(mesh), {{a[0], a[1], a[2]}, {b[0], b[1], b[2]}});
		}();
		shapes::VoronoiCells found = diagram.cells();
		vertices = diagram.circumcentres();
		vertices.insert(vertices.end(), found.vMade.begin(), found.vMade.end());
		return found;
	});
	return std::make_tuple(toArray(std::move(vertices)), toArray(std::move(cells.vCellBegins)),
	    toArray(std::move(cells.vNeighbours)), toArray(std::move(cells.vFaceBegins)),
	    toArray(std::move(cells.vCorners)), toArray(std::move(cells.vVolumes)));
}

/// Writes one number, or several, for each tetrahedron.
template <double* shapes::QualityArrays::*Which, nb::ssize_t... Extents>
void measure(const Mesh& mesh, const Array<double, -1, Extents...>& results)
{
	expectLength(results, mesh.numTets);
	unlocked([&] {
		shapes::QualityArrays arrays;
		arrays.*Which = results.data();
		shapes::measureQuality(viewOf(mesh), arrays);
	});
}

void circumspheres(
    const Mesh& mesh, const Array<double, -1, 3>& centers, const Array<double, -1>& radii)
{
	expectLength(centers, mesh.numTets);
	expectLength(radii, mesh.numTets);
	unlocked([&] {
		shapes::QualityArrays arrays;
		arrays.pCircumcentres = centers.data();
		arrays.pCircumradii = radii.data();
		shapes::measureQuality(viewOf(mesh), arrays);
	});
}

} // namespace

void bindShapes(nb::module_& m)
{
	m.def("hull", &hull, "mesh"_a);
	m.def("alpha_shape", &alphaShape, "mesh"_a, "radius"_a, "choice"_a, "singular"_a);
	m.def("voronoi", &voronoi, "mesh"_a, "low"_a.none(), "high"_a.none(), "hull"_a);
	using Quality = shapes::QualityArrays;
	const auto results = nb::arg("results").noconvert();
	m.def("volumes", &measure<&Quality::pVolumes>, "mesh"_a, results);
	m.def("qualities", &measure<&Quality::pRadiusRatios>, "mesh"_a, results);
	m.def("dihedral_angles", &measure<&Quality::pDihedralAngles, 6>, "mesh"_a, results);
	m.def("circumspheres", &circumspheres, "mesh"_a, nb::arg("centers").noconvert(),
	    nb::arg("radii").noconvert());
}

} // namespace binding
