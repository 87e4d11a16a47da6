// SPDX-License-Identifier: MIT
// Coplanar triangles of the hull become polygons.
#include "shapes/ConvexHull.h"

#include "Coplanar.h"
#include "Mesh.h"

#include <stdexcept>

namespace TULO3D::shapes {

namespace {

/// Numbers the sides: the connected sets of coplanar triangles. Coplanarity goes on from neighbour to neighbour,
/// as no triangle is degenerate.
std::vector<Index> findSides(const Mesh& mesh, const ConvexHull& hull)
{
	std::vector<Index> vSide(hull.vTets.size(), -1), vStack;
	Index numSides = 0;
	for (std::size_t first = 0; first < vSide.size(); ++first) {
		if (vSide[first] >= 0) continue;
		vSide[first] = numSides;
		vStack.push_back(static_cast<Index>(first));
		while (!vStack.empty()) {
			const Index triangle = vStack.back();
			vStack.pop_back();
			const Index* p = &hull.vTriangles[3 * at(triangle)];
			for (std::size_t k = 0; k < 3; ++k) {
				const Index next = hull.vNeighbours[3 * at(triangle) + k];
				if (vSide[at(next)] >= 0) continue;
				const Index* q = &hull.vTriangles[3 * at(next)];
				const Index apex = q[0] ^ q[1] ^ q[2] ^ p[(k + 1) % 3] ^ p[(k + 2) % 3];
				if (!areCoplanar(
				        mesh.point(p[0]), mesh.point(p[1]), mesh.point(p[2]), mesh.point(apex)))
					continue;
				vSide[at(next)] = numSides;
				vStack.push_back(next);
			}
		}
		++numSides;
	}
	return vSide;
}

/// An edge of a triangle, the one without corner k, from corner k + 1 to corner k + 2.
struct HalfEdge
{
	std::size_t triangle, k;
};

/// The borders of the sides, as half-edges with their side on the left.
class Borders
{
public:
	Borders(const ConvexHull& theHull, const std::vector<Index>& vTheSides)
	    : hull(theHull), vSide(vTheSides)
	{
	}

	bool isBorder(const HalfEdge& edge) const
	{
		return vSide[across(edge)] != vSide[edge.triangle];
	}
	Index start(const HalfEdge& edge) const
	{
		return hull.vTriangles[3 * edge.triangle + (edge.k + 1) % 3];
	}
	/// The next half-edge of the border: turns around the end of `edge`, within the side.
	HalfEdge next(HalfEdge edge) const
	{
		for (;;) {
			edge.k = (edge.k + 1) % 3; // begins where the last one ended
			if (isBorder(edge)) return edge;
			const Index end = start(edge);
			edge.triangle = across(edge);
			const Index* p = &hull.vTriangles[3 * edge.triangle];
			edge.k = p[0] == end ? 1U : p[1] == end ? 2U : 0U; // ends there
		}
	}

	/// A half-edge of each border, in the order of the sides.
	std::vector<HalfEdge> firstOfEachSide() const
	{
		std::vector<HalfEdge> vFirst;
		for (std::size_t i = 3 * vSide.size(); i-- > 0;) {
			const std::size_t side = at(vSide[i / 3]);
			if (vFirst.size() <= side) vFirst.resize(side + 1);
			if (isBorder({i / 3, i % 3})) vFirst[side] = {i / 3, i % 3};
		}
		return vFirst;
	}

private:
	std::size_t across(const HalfEdge& edge) const
	{
		return at(hull.vNeighbours[3 * edge.triangle + edge.k]);
	}

	const ConvexHull& hull;
	const std::vector<Index>& vSide;
};

/// How many sides meet in each vertex: two where it is inside of an edge of the hull, more at a corner.
std::vector<Index> countSides(
    const Borders& borders, const ConvexHull& hull, std::size_t numVertices)
{
	std::vector<Index> vNum(numVertices, 0);
	for (std::size_t i = 0; i < hull.vTriangles.size(); ++i) {
		const HalfEdge edge{i / 3, i % 3};
		if (borders.isBorder(edge)) ++vNum[at(borders.start(edge))];
	}
	return vNum;
}

} // namespace

HullPolygons mergeCoplanar(const MeshView& view, const ConvexHull& hull)
{
	const Mesh mesh(view);
	if (hull.vTriangles.size() != 3 * hull.vTets.size() ||
	    hull.vNeighbours.size() != hull.vTriangles.size()) {
		throw std::invalid_argument("The hull is not one that convexHull has made.");
	}
	HullPolygons polygons{{0}, {}, findSides(mesh, hull)};
	const Borders borders(hull, polygons.vPolygonOfTriangle);
	const std::vector<Index> vNumSides = countSides(borders, hull, mesh.numVertices);
	for (const HalfEdge& first : borders.firstOfEachSide()) {
		HalfEdge edge = first;
		do {
			const Index corner = borders.start(edge);
			if (vNumSides[at(corner)] > 2) polygons.vCorners.push_back(corner);
			edge = borders.next(edge);
		} while (edge.triangle != first.triangle || edge.k != first.k);
		polygons.vBegins.push_back(static_cast<std::int64_t>(polygons.vCorners.size()));
	}
	return polygons;
}

} // namespace TULO3D::shapes
