// SPDX-License-Identifier: MIT
// Singular facets and edges of alpha shapes. A simplex whose smallest circumscribed sphere has no point inside
// (a Gabriel simplex) belongs to the shape from the radius of that sphere on, any other one from that on with which
// a larger simplex at it does; so singular ones are Gabriel simplices.
#include "shapes/AlphaShapes.h"

#include "Star.h"

#include <algorithm>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

class SingularSearch
{
public:
	SingularSearch(const Mesh& theMesh, const std::vector<double>& vTheRadii, double theRadius)
	    : mesh(theMesh), vRadii(vTheRadii), radius(theRadius)
	{
	}
	/// True for a tetrahedron of the shape.
	bool isSolid(Index tet) const { return tet >= 0 && vRadii[at(tet)] <= radius; }
	bool isSingularFacet(Index tet, int i) const;
	bool isSingularEdge(Index vertex, const Ring& ring) const;

private:
	/// True when the vertex opposite to facet i of `tet` is not inside the sphere.
	bool isApexOutside(Index tet, int i, Index origin, const Vec& arm, double sphereRadius) const
	{
		const Vec apex = mesh.between(origin, mesh.corners(tet)[i]);
		return norm(apex - arm) >= sphereRadius;
	}

	const Mesh& mesh;
	const std::vector<double>& vRadii;
	double radius;
};

bool SingularSearch::isSingularFacet(Index tet, int i) const
{
	const Index beyond = mesh.neighbours(tet)[i];
	if (isSolid(tet) || isSolid(beyond)) return false;
	const auto [p, q, r] = mesh.facet(tet, i);
	Vec a = mesh.between(p, q), b = mesh.between(p, r);
	const double scale = unitScale(std::max(largest(a), largest(b)));
	a = scale * a;
	b = scale * b;
	const Vec normal = cross(a, b);
	const Vec num = cross(dot(a, a) * b - dot(b, b) * a, normal);
	const Vec arm = 0.5 / dot(normal, normal) / scale * num;
	const double own = norm(arm);
	if (!(own <= radius) || !isApexOutside(tet, i, p, arm, own)) return false;
	if (beyond < 0) return true;
	const Index apex = mesh.corners(tet)[i];
	int back = 0; // the corner of the neighbour that is not on the facet
	for (; back < 3; ++back) {
		const Index corner = mesh.corners(beyond)[back];
		if (corner != p && corner != q && corner != r && corner != apex) break;
	}
	return isApexOutside(beyond, back, p, arm, own);
}

bool SingularSearch::isSingularEdge(Index vertex, const Ring& ring) const
{
	const Vec edge = mesh.between(vertex, ring.end);
	if (norm(edge) / 2 > radius) return false;
	const auto isOutside = [&](Index other) { // of the sphere over the edge
		const Vec a = mesh.between(other, vertex), b = mesh.between(other, ring.end);
		const double scale = unitScale(std::max(largest(a), largest(b)));
		return dot(scale * a, scale * b) >= 0;
	};
	for (const AtEdge& place : ring.vPlaces) {
		const Index other = mesh.otherPivot(place, vertex, ring.end);
		if (isSolid(place.tet) || !isOutside(place.pivot) || !isOutside(other)) return false;
	}
	const AtEdge& first = ring.vPlaces.front();
	const Index other = mesh.otherPivot(first, vertex, ring.end);
	if (isSingularFacet(first.tet, mesh.indexOf(first.tet, other))) return false;
	return std::none_of(ring.vPlaces.begin(), ring.vPlaces.end(), [&](const AtEdge& place) {
		return isSingularFacet(place.tet, mesh.indexOf(place.tet, place.pivot));
	});
}

} // namespace

SingularParts AlphaShapes::singularParts(double radius) const
{
	if (!(radius >= 0)) throw std::invalid_argument("The radius of an alpha shape is negative.");
	const Mesh checked(mesh);
	const SingularSearch search(checked, vRadii, radius);
	SingularParts parts;
	std::vector<bool> vBeside(
	    mesh.numVertices, false); // whether a vertex has tetrahedra beside the shape
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (search.isSolid(tet)) continue;
		for (int i = 0; i < 4; ++i) {
			vBeside[at(checked.corners(tet)[i])] = true;
			const Index beyond = checked.neighbours(tet)[i];
			if (beyond > tet || !search.isSingularFacet(tet, i)) continue; // each facet once
			const auto facet = checked.facet(tet, i);
			parts.vFacets.insert(parts.vFacets.end(), facet.begin(), facet.end());
		}
	}
	Star star(checked);
	Ring ring;
	for (Index vertex = 0; at(vertex) < mesh.numVertices; ++vertex) {
		if (!vBeside[at(vertex)]) continue;
		star.collect(vertex);
		while (star.nextRing(ring)) {
			if (ring.end < vertex || !search.isSingularEdge(vertex, ring))
				continue; // each edge once
			parts.vEdges.insert(parts.vEdges.end(), {vertex, ring.end});
		}
	}
	return parts;
}

} // namespace TULO3D::shapes
