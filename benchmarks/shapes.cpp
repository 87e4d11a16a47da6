// SPDX-License-Identifier: MIT
// Hull, alpha shapes and Voronoi cells beside CGAL's: the same points, the time of each and what comes out.
// Usage: tulo3d_shapes_bench FILE... with x, y, z in each line
#include "shapes/Shapes.h"
#include "Tulo_3D.h"

#include <CGAL/Alpha_shape_3.h>
#include <CGAL/Alpha_shape_cell_base_3.h>
#include <CGAL/Alpha_shape_vertex_base_3.h>
#include <CGAL/Delaunay_triangulation_3.h>
#include <CGAL/Delaunay_triangulation_cell_base_with_circumcenter_3.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/measure.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/convex_hull_3.h>
#include <CGAL/convex_hull_3_to_face_graph.h>

#include <cmath>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <memory>
#include <numeric>
#include <unordered_map>
#include <vector>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_3;
using Surface = CGAL::Surface_mesh<Point>;
using AlphaVertex = CGAL::Alpha_shape_vertex_base_3<Kernel>;
using AlphaCell = CGAL::Alpha_shape_cell_base_3<Kernel>;
using AlphaDelaunay = CGAL::Delaunay_triangulation_3<Kernel,
    CGAL::Triangulation_data_structure_3<AlphaVertex, AlphaCell>>;
using Alpha = CGAL::Alpha_shape_3<AlphaDelaunay>;
using VoronoiCell = CGAL::Delaunay_triangulation_cell_base_with_circumcenter_3<Kernel>;
using VoronoiDelaunay = CGAL::Delaunay_triangulation_3<Kernel,
    CGAL::Triangulation_data_structure_3<CGAL::Triangulation_vertex_base_3<Kernel>, VoronoiCell>>;

/// The CPU time of a call, and its result.
template <class F>
auto timed(F f, double& seconds)
{
	const std::clock_t start = std::clock();
	auto result = f();
	seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
	return result;
}

/// One row: times in seconds, and one number of each library that should agree.
template <class Ours, class Theirs>
void compare(const char* name, Ours ours, Theirs theirs)
{
	double ourTime = 0, theirTime = 0;
	const double a = timed(ours, ourTime), b = timed(theirs, theirTime);
	std::cout << std::left << std::setw(40) << name << std::right << std::setw(10) << ourTime
	          << std::setw(10) << theirTime << std::setw(24) << a << std::setw(24) << b
	          << std::endl;
}

/// The volumes of the bounded Voronoi cells, summed, as CGAL's user would compute them.
double boundedVolume(const VoronoiDelaunay& mesh)
{
	std::unordered_map<VoronoiDelaunay::Vertex_handle, double> volumes;
	for (auto edge = mesh.finite_edges_begin(); edge != mesh.finite_edges_end(); ++edge) {
		const auto v = edge->first->vertex(edge->second), w = edge->first->vertex(edge->third);
		auto cell = mesh.incident_cells(*edge);
		const auto first = cell;
		bool bBounded = true;
		do bBounded = bBounded && !mesh.is_infinite(cell);
		while (++cell != first);
		if (!bBounded) {
			volumes[v] = volumes[w] = NAN;
			continue;
		}
		const Point& origin = first->circumcenter();
		double volume = 0; // of both pyramids over the face
		for (auto next = ++cell; ++next != first; cell = next)
			volume += CGAL::volume(v->point(), origin, cell->circumcenter(), next->circumcenter());
		volumes[v] += std::abs(volume);
		volumes[w] += std::abs(volume);
	}
	double sum = 0;
	for (const auto& entry : volumes) sum += std::isnan(entry.second) ? 0 : entry.second;
	return sum;
}

double finiteSum(const std::vector<double>& v)
{
	return std::accumulate(v.begin(), v.end(), 0.0,
	    [](double sum, double x) { return std::isfinite(x) ? sum + x : sum; });
}

std::vector<Point> readPoints(const char* name)
{
	std::vector<Point> v;
	std::ifstream file(name);
	for (double x, y, z; file >> x >> y >> z;) v.emplace_back(x, y, z);
	return v;
}

void compareHulls(const TULO3D::shapes::MeshView& mesh, const std::vector<Point>& points)
{
	const VoronoiDelaunay delaunay(points.begin(), points.end());
	TULO3D::shapes::ConvexHull ours;
	Surface theirs, quick;
	compare(
	    "hull of the mesh: triangles",
	    [&] {
		    ours = TULO3D::shapes::convexHull(mesh);
		    return static_cast<double>(ours.vTets.size());
	    },
	    [&] {
		    CGAL::convex_hull_3_to_face_graph(delaunay, theirs);
		    return static_cast<double>(theirs.number_of_faces());
	    });
	compare(
	    "  its volume", [&] { return ours.volume; },
	    [&] { return CGAL::Polygon_mesh_processing::volume(theirs); });
	compare(
	    "  its area; CGAL: from the points", [&] { return ours.area; },
	    [&] {
		    CGAL::convex_hull_3(points.begin(), points.end(), quick);
		    return CGAL::Polygon_mesh_processing::area(quick);
	    });
	compare(
	    "bounded Voronoi cells: volume",
	    [&] { return finiteSum(TULO3D::shapes::Voronoi(mesh).volumes()); },
	    [&] { return boundedVolume(delaunay); });
}

void compareAlphaShapes(const TULO3D::shapes::MeshView& mesh, const std::vector<Point>& points)
{
	AlphaDelaunay delaunay(points.begin(), points.end());
	std::unique_ptr<TULO3D::shapes::AlphaShapes> ours;
	std::unique_ptr<Alpha> theirs;
	compare(
	    "alpha shapes: radius of all points",
	    [&] {
		    ours = std::make_unique<TULO3D::shapes::AlphaShapes>(mesh);
		    return ours->radiusThatKeepsEveryPoint();
	    },
	    [&] {
		    theirs = std::make_unique<Alpha>(delaunay, 0, Alpha::GENERAL);
		    return std::sqrt(theirs->find_alpha_solid());
	    });
	compare(
	    "  radius of one component", [&] { return ours->radiusOfOneComponent(); },
	    [&] { return std::sqrt(*theirs->find_optimal_alpha(1)); });
	const double joined = ours->radiusOfOneComponent();
	compare(
	    "  components with our radius",
	    [&] { return static_cast<double>(ours->shape(joined).vVolumes.size()); },
	    [&] {
		    const double square = joined * joined * (1 + 1e-12); // as CGAL rounds squares
		    return static_cast<double>(theirs->number_of_solid_components(square));
	    });
	// Off all circumradii, as either library rounds those its own way.
	const double radius = 0.9173 * ours->radiusThatKeepsEveryPoint();
	compare(
	    "  boundary triangles of a smaller one",
	    [&] { return static_cast<double>(ours->shape(radius).vTetsOfTriangles.size()); },
	    [&] {
		    theirs->set_alpha(radius * radius);
		    std::vector<Alpha::Facet> v;
		    theirs->get_alpha_shape_facets(std::back_inserter(v), Alpha::REGULAR);
		    return static_cast<double>(v.size());
	    });
	TULO3D::shapes::SingularParts parts;
	compare(
	    "  its singular facets (ours: and edges)",
	    [&] {
		    parts = ours->singularParts(radius);
		    return static_cast<double>(parts.vFacets.size() / 3);
	    },
	    [&] {
		    std::vector<Alpha::Facet> v;
		    theirs->get_alpha_shape_facets(std::back_inserter(v), Alpha::SINGULAR);
		    return static_cast<double>(v.size());
	    });
	compare(
	    "  its singular edges", [&] { return static_cast<double>(parts.vEdges.size() / 2); },
	    [&] {
		    std::vector<Alpha::Edge> v;
		    theirs->get_alpha_shape_edges(std::back_inserter(v), Alpha::SINGULAR);
		    return static_cast<double>(v.size());
	    });
}

} // namespace

int main(int argc, char** argv)
{
	TULO3D::setMessageStream(nullptr);
	for (int i = 1; i < argc; ++i) {
		const std::vector<Point> points = readPoints(argv[i]);
		TULO3D::Tulo_3D mesh;
		std::vector<double> coordinates;
		for (const Point& p : points) coordinates.insert(coordinates.end(), {p.x(), p.y(), p.z()});
		mesh.insert(coordinates.data(), points.size());
		const TULO3D::shapes::MeshCopy copy(mesh);
		std::cout << argv[i] << ": " << points.size() << " points" << std::endl
		          << std::setw(40) << "" << std::setw(10) << "ours s" << std::setw(10) << "CGAL s"
		          << std::setw(24) << "ours" << std::setw(24) << "CGAL" << std::endl
		          << std::setprecision(12);
		compareHulls(copy.view(), points);
		compareAlphaShapes(copy.view(), points);
	}
	return argc > 1 ? 0 : 2;
}
