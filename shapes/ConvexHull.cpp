// SPDX-License-Identifier: MIT
// The facets of the hull, and the way around their edges to their neighbours.
#include "shapes/ConvexHull.h"

#include "Mesh.h"

#include <algorithm>

namespace TULO3D::shapes {

namespace {

/// The hull facets, as 4 times their tetrahedron plus their index: ascending.
std::vector<std::int64_t> collectTriangles(const Mesh& mesh, ConvexHull& hull)
{
	std::vector<std::int64_t> vFacets;
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		const Index* p = mesh.neighbours(tet);
		if ((p[0] | p[1] | p[2] | p[3]) >= 0) continue; // none is negative
		for (int i = 0; i < 4; ++i) {
			if (p[i] >= 0) continue;
			vFacets.push_back(4 * static_cast<std::int64_t>(tet) + i);
			hull.vTets.push_back(tet);
			const auto facet = mesh.facet(tet, i);
			hull.vTriangles.insert(hull.vTriangles.end(), facet.begin(), facet.end());
		}
	}
	return vFacets;
}

/// Turns around the edge (a, b) of a hull facet, `tet` being behind it and `c` its third corner, through
/// the mesh to the other hull facet with this edge. Over all edges the steps are at most twice as many as the edges
/// of all tetrahedra.
std::int64_t facetAcross(const Mesh& mesh, Index tet, Index a, Index b, Index c)
{
	AtEdge place{tet, c};
	for (AtEdge next = place; next.tet >= 0; next = mesh.next(place, a, b)) place = next;
	return 4 * static_cast<std::int64_t>(place.tet) + mesh.indexOf(place.tet, place.pivot);
}

void linkTriangles(const Mesh& mesh, const std::vector<std::int64_t>& vFacets, ConvexHull& hull)
{
	hull.vNeighbours.reserve(hull.vTriangles.size());
	for (std::size_t i = 0; i < hull.vTets.size(); ++i) {
		const Index* p = &hull.vTriangles[3 * i];
		for (int k = 0; k < 3; ++k) {
			const std::int64_t facet =
			    facetAcross(mesh, hull.vTets[i], p[(k + 1) % 3], p[(k + 2) % 3], p[k]);
			const auto place = std::lower_bound(vFacets.begin(), vFacets.end(), facet);
			hull.vNeighbours.push_back(static_cast<Index>(place - vFacets.begin()));
		}
	}
}

/// All pyramids over the triangles have their apex in one vertex of the mesh, so none is negative.
void measure(const Mesh& mesh, ConvexHull& hull)
{
	for (auto p = hull.vTriangles.begin(); p != hull.vTriangles.end(); p += 3) {
		const Vec normal = cross(mesh.between(p[0], p[1]), mesh.between(p[0], p[2]));
		hull.area += norm(normal);
		hull.volume += dot(normal, mesh.between(hull.vTriangles[0], p[0]));
	}
	hull.area /= 2; // last, so that integers stay exact as long as they are
	hull.volume /= 6;
}

} // namespace

ConvexHull convexHull(const MeshView& view)
{
	const Mesh mesh(view);
	ConvexHull hull;
	const std::vector<std::int64_t> vFacets = collectTriangles(mesh, hull);
	linkTriangles(mesh, vFacets, hull);
	measure(mesh, hull);
	return hull;
}

} // namespace TULO3D::shapes
