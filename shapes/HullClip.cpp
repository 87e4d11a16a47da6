// SPDX-License-Identifier: MIT
// The pairs of a hull facet and a cell that meet, and the planes for a cell.
#include "HullClip.h"

#include "Constructions.h"
#include "shapes/Voronoi.h"

#include <algorithm>

namespace TULO3D::shapes {

namespace {

/// A convex polygon whose edges know behind which vertex' bisector they came about: -1 for the facet's own.
class LabelledPolygon
{
public:
	void addCorner(const Vec& p) { vCorners.push_back({p, -1}); }

	/// Keeps what is nearer to the origin than to `end`, the place of the vertex `label`.
	void keepNearer(const Vec& end, Index label)
	{
		const Vec normal = unit(end);
		const double distance = norm(end) / 2;
		vKept.clear();
		for (std::size_t i = 0; i < vCorners.size(); ++i) {
			const Corner &a = vCorners[i], &b = vCorners[i + 1 < vCorners.size() ? i + 1 : 0];
			const double ha = distance - dot(normal, a.p), hb = distance - dot(normal, b.p);
			if (ha >= 0) vKept.push_back(a);
			if ((ha >= 0) == (hb >= 0)) continue;
			const Vec p = a.p + ha / (ha - hb) * (b.p - a.p);
			vKept.push_back({p, ha >= 0 ? label : a.behind});
		}
		vCorners.swap(vKept);
	}

	template <typename F>
	void forEachLabel(F f) const
	{
		for (const Corner& corner : vCorners) {
			if (corner.behind >= 0) f(corner.behind);
		}
	}

private:
	struct Corner
	{
		Vec p;
		Index behind; // the edge from here to the next corner
	};
	std::vector<Corner> vCorners, vKept;
};

} // namespace

HullClip::HullClip(const Mesh& theMesh, Star& star) : mesh(theMesh), hull(convexHull(mesh))
{
	const auto byVertex = [](const Pair& a, const Pair& b) {
		return a.vertex != b.vertex ? a.vertex < b.vertex : a.triangle < b.triangle;
	};
	for (std::size_t i = 0; i < hull.vTriangles.size(); ++i) {
		addPair(hull.vTriangles[i], static_cast<Index>(i / 3));
	}
	Ring ring;
	std::vector<Index> vNeighbours;
	Index vertex = -1;
	for (std::size_t begin = 0; begin < vPairs.size();) {
		const std::size_t end = vPairs.size();
		// What has been found since is sorted, to look at each star once.
		std::sort(vPairs.begin() + static_cast<std::ptrdiff_t>(begin), vPairs.end(), byVertex);
		for (; begin < end; ++begin) {
			if (vertex != vPairs[begin].vertex) {
				vertex = vPairs[begin].vertex;
				star.collect(vertex);
				vNeighbours.clear();
				while (star.nextRing(ring)) vNeighbours.push_back(ring.end);
			}
			visit(begin, vNeighbours);
		}
	}
	known.clear();
	std::sort(vPairs.begin(), vPairs.end(), byVertex);
}

void HullClip::addPair(Index vertex, Index triangle)
{
	const auto key =
	    static_cast<std::uint64_t>(vertex) << 32U | static_cast<std::uint64_t>(triangle);
	if (known.insert(key).second) vPairs.push_back({vertex, triangle});
}

/// Cuts the facet's polygon in the cell out of it, and goes on to the cells behind its edges.
void HullClip::visit(std::size_t pair, const std::vector<Index>& vNeighbours)
{
	const Index vertex = vPairs[pair].vertex, triangle = vPairs[pair].triangle;
	LabelledPolygon polygon;
	for (std::size_t k = 0; k < 3; ++k) {
		polygon.addCorner(mesh.between(vertex, hull.vTriangles[3 * at(triangle) + k]));
	}
	for (const Index end : vNeighbours) polygon.keepNearer(mesh.between(vertex, end), end);
	polygon.forEachLabel([&](Index end) { addPair(end, triangle); });
}

void HullClip::clip(Index vertex, Polyhedron& cell) const
{
	auto pair = std::lower_bound(
	    vPairs.begin(), vPairs.end(), vertex, [](const Pair& p, Index v) { return p.vertex < v; });
	for (; pair != vPairs.end() && pair->vertex == vertex; ++pair) {
		const Index* p = &hull.vTriangles[3 * at(pair->triangle)];
		const Vec normal = unitNormal(mesh, p[0], p[1], p[2]);
		cell.cut(normal, dot(normal, mesh.between(vertex, p[0])), kHullSide);
	}
}

void HullClip::mark(std::vector<bool>& vMarks) const
{
	for (const Pair& pair : vPairs) vMarks[at(pair.vertex)] = true;
}

} // namespace TULO3D::shapes
