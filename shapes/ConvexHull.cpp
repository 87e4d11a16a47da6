// SPDX-License-Identifier: MIT
// The facets of the hull, and the way around their edges to their neighbours.
#include "shapes/ConvexHull.h"

#include "HullFacets.h"

namespace TULO3D::shapes {

namespace {

void collectTriangles(const Mesh& mesh, ConvexHull& hull)
{
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		for (int i = 0; i < 4; ++i) {
			if (mesh.neighbours(tet)[i] >= 0) continue;
			const auto facet = mesh.facet(tet, i);
			hull.vTriangles.insert(hull.vTriangles.end(), facet.begin(), facet.end());
			hull.vTets.push_back(tet);
		}
	}
}

/// Turns around the edge (a, b) of a hull facet, `tet` being behind it and `c` its third corner, through
/// the mesh to the other hull facet with this edge. Over all edges the steps are at most twice as many as the edges
/// of all tetrahedra.
Index triangleAcross(
    const Mesh& mesh, const HullFacets& facets, Index tet, Index a, Index b, Index c)
{
	AtEdge place{tet, c};
	for (AtEdge next = place; next.tet >= 0; next = mesh.next(place, a, b)) place = next;
	return facets.numberOf(place.tet, mesh.indexOf(place.tet, place.pivot));
}

void linkTriangles(const Mesh& mesh, ConvexHull& hull)
{
	const HullFacets facets(mesh);
	hull.vNeighbours.reserve(hull.vTriangles.size());
	for (std::size_t i = 0; i < hull.vTets.size(); ++i) {
		const Index* p = &hull.vTriangles[3 * i];
		for (int k = 0; k < 3; ++k) {
			hull.vNeighbours.push_back(
			    triangleAcross(mesh, facets, hull.vTets[i], p[(k + 1) % 3], p[(k + 2) % 3], p[k]));
		}
	}
}

/// All pyramids over the triangles have their apex in one vertex of the mesh, so none is negative.
void measure(const Mesh& mesh, ConvexHull& hull)
{
	for (auto p = hull.vTriangles.begin(); p != hull.vTriangles.end(); p += 3) {
		const Vec normal = cross(mesh.between(p[0], p[1]), mesh.between(p[0], p[2]));
		hull.area += norm(normal) / 2;
		hull.volume += dot(normal, mesh.between(hull.vTriangles[0], p[0])) / 6;
	}
}

} // namespace

ConvexHull convexHull(const MeshView& view)
{
	const Mesh mesh(view);
	ConvexHull hull;
	collectTriangles(mesh, hull);
	linkTriangles(mesh, hull);
	measure(mesh, hull);
	return hull;
}

} // namespace TULO3D::shapes
