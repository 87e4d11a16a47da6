// SPDX-License-Identifier: MIT
// Hull, alpha shapes and Voronoi cells of a laser scan against CGAL's, and what CGAL reads of files that the program
// has written.
#include "Tulo_3D.h"
#include "shapes/Shapes.h"

#include <CGAL/Alpha_shape_3.h>
#include <CGAL/Alpha_shape_cell_base_3.h>
#include <CGAL/Alpha_shape_vertex_base_3.h>
#include <CGAL/Delaunay_triangulation_3.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/measure.h>
#include <CGAL/Polygon_mesh_processing/orientation.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/Surface_mesh/IO.h>
#include <CGAL/convex_hull_3.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_3;
using Surface = CGAL::Surface_mesh<Point>;
using Delaunay = CGAL::Delaunay_triangulation_3<Kernel,
    CGAL::Triangulation_data_structure_3<CGAL::Alpha_shape_vertex_base_3<Kernel>,
        CGAL::Alpha_shape_cell_base_3<Kernel>>>;
using AlphaShape = CGAL::Alpha_shape_3<Delaunay>;
namespace shapes = TULO3D::shapes;
namespace measures = CGAL::Polygon_mesh_processing;

constexpr double kRounding = 1e-8; // relative

class Cgal : public testing::Test
{
protected:
	Cgal()
	{
		TULO3D::setMessageStream(nullptr);
		std::ifstream file(TULO3D_SCAN);
		std::vector<double> coordinates;
		for (double x, y, z; file >> x >> y >> z;) {
			vPoints.emplace_back(x, y, z);
			coordinates.insert(coordinates.end(), {x, y, z});
		}
		mesh.insert(coordinates.data(), vPoints.size());
	}
	std::vector<Point> vPoints;
	TULO3D::Tulo_3D mesh;
};

/// The volumes of the Voronoi cells, as pyramids over their faces; infinite where a cell is unbounded.
std::map<Point, double> cellVolumes(const Delaunay& delaunay)
{
	std::map<Point, double> volumes;
	for (auto edge = delaunay.finite_edges_begin(); edge != delaunay.finite_edges_end(); ++edge) {
		const Point p = edge->first->vertex(edge->second)->point(),
		            q = edge->first->vertex(edge->third)->point();
		auto cell = delaunay.incident_cells(*edge);
		const auto first = cell;
		bool bBounded = true;
		do bBounded = bBounded && !delaunay.is_infinite(cell);
		while (++cell != first);
		double volume = bBounded ? 0 : INFINITY;
		const auto centre = [&](const auto& c) { return delaunay.dual(c); };
		for (auto next = ++cell; bBounded && ++next != first; cell = next)
			volume += CGAL::volume(p, centre(first), centre(cell), centre(next));
		for (const auto& end : {p, q}) volumes[end] += std::abs(volume);
	}
	return volumes;
}

TEST_F(Cgal, HasTheSameHullAlphaShapesAndVoronoiCells)
{
	const shapes::MeshCopy copy(mesh);
	Surface surface;
	CGAL::convex_hull_3(vPoints.begin(), vPoints.end(), surface);
	const auto hull = shapes::convexHull(copy.view());
	EXPECT_NEAR(hull.volume / measures::volume(surface), 1, kRounding);
	EXPECT_NEAR(hull.area / measures::area(surface), 1, kRounding);

	Delaunay delaunay(vPoints.begin(), vPoints.end());
	EXPECT_EQ(mesh.getNumTetrahedra(), delaunay.number_of_finite_cells());
	const auto theirVolumes = cellVolumes(delaunay);
	const auto ourVolumes = shapes::Voronoi(copy.view()).volumes();
	for (std::size_t v = 0; v < ourVolumes.size(); ++v) {
		const double* p = copy.view().pCoordinates + 3 * v;
		const double theirs = theirVolumes.at({p[0], p[1], p[2]});
		if (std::isinf(theirs))
			EXPECT_EQ(ourVolumes[v], theirs);
		else
			EXPECT_NEAR(ourVolumes[v] / theirs, 1, 1e-6) << v;
	}

	const shapes::AlphaShapes ours(copy.view());
	AlphaShape theirs(delaunay, 0, AlphaShape::REGULARIZED);
	const double all = ours.radiusThatKeepsEveryPoint(), one = ours.radiusOfOneComponent();
	EXPECT_NEAR(all * all / theirs.find_alpha_solid(), 1, kRounding);
	// CGAL searches for this radius by bisection, which may miss it: the number is not monotone.
	EXPECT_EQ(theirs.number_of_solid_components(one * one * (1 + kRounding)), 1U);
	EXPECT_GT(theirs.number_of_solid_components(one * one * (1 - kRounding)), 1U);
	// Off all circumradii, as either library rounds those its own way.
	for (const double radius : {0.0317 * all, 0.2713 * all, 0.9173 * all, 1.0173 * one}) {
		SCOPED_TRACE(radius);
		const auto shape = ours.shape(radius);
		theirs.set_alpha(radius * radius);
		std::vector<AlphaShape::Cell_handle> vCells;
		std::vector<AlphaShape::Facet> vFacets;
		theirs.get_alpha_shape_cells(std::back_inserter(vCells), AlphaShape::INTERIOR);
		theirs.get_alpha_shape_facets(std::back_inserter(vFacets), AlphaShape::REGULAR);
		double volume = 0;
		for (const auto& cell : vCells) volume += theirs.tetrahedron(cell).volume();
		EXPECT_NEAR(shape.volume / volume, 1, kRounding);
		EXPECT_EQ(shape.vTets.size(), vCells.size());
		EXPECT_EQ(shape.vTetsOfTriangles.size(), vFacets.size());
		EXPECT_EQ(shape.vVolumes.size(), theirs.number_of_solid_components());
	}
}

TEST_F(Cgal, ReadsTheClosedSurfacesThatTheProgramWrites)
{
	const double volume = shapes::convexHull(shapes::MeshCopy(mesh).view()).volume;
	const std::string command = "\"" TULO3D_PROGRAM "\" \"" TULO3D_SCAN "\" -q --no-check --hull";
	ASSERT_EQ(std::system((command + " -o hull.off -o hull.ply").c_str()), 0);
	for (const char* name : {"hull.off", "hull.ply"}) {
		SCOPED_TRACE(name);
		Surface surface;
		ASSERT_TRUE(CGAL::IO::read_polygon_mesh(name, surface));
		EXPECT_TRUE(CGAL::is_closed(surface) && measures::is_outward_oriented(surface));
		EXPECT_NEAR(measures::volume(surface) / volume, 1, kRounding);
	}
}

} // namespace
