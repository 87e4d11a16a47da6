// SPDX-License-Identifier: MIT
// Clips Voronoi cells to the convex hull, by the planes of those hull facets that a cell reaches.
#pragma once

#include "Polyhedron.h"
#include "Star.h"
#include "shapes/ConvexHull.h"

#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

namespace TULO3D::shapes {

/// Whatever of a cell lies outside of the hull is beyond the plane of a facet that meets the cell: the segment from there
/// to the cell's vertex stays in the cell, as this is convex, and passes through the facet. So the pairs of a facet
/// and a cell that meet are found once, from the corners of each facet on: the cells cut the facet into
/// polygons, and each leads to the cells across its edges.
///
/// This is the restricted Voronoi diagram of the hull; D.-M. Yan, B. Levy, Y. Liu, F. Sun and W. Wang, Isotropic
/// remeshing with fast and exact computation of restricted Voronoi diagram, Computer Graphics Forum 28 (2009).
class HullClip
{
public:
	/// `star` is only a tool here.
	HullClip(const Mesh& theMesh, Star& star);

	/// Clips the cell of `vertex`; `cell` is relative to it. The new faces have the label kHullSide.
	void clip(Index vertex, Polyhedron& cell) const;
	/// Sets what belongs to the vertices whose cells a facet meets.
	void mark(std::vector<bool>& vMarks) const;

private:
	struct Pair
	{
		Index vertex, triangle;
	};
	void addPair(Index vertex, Index triangle);
	void visit(std::size_t pair, const std::vector<Index>& vNeighbours);

	const Mesh& mesh;
	ConvexHull hull;
	std::vector<Pair> vPairs; // by their vertices, in the end
	std::unordered_set<std::uint64_t> known;
};

} // namespace TULO3D::shapes
