// SPDX-License-Identifier: MIT
// A view with its questions: corners, facets, and the way around an edge.
#pragma once

#include "Vec.h"
#include "shapes/MeshView.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace TULO3D::shapes {

using Index = std::int32_t;

inline std::size_t at(Index i)
{
	return static_cast<std::size_t>(i);
}

/// Facet i, counter-clockwise from outside. Index and row together are an even permutation of 0 1 2 3.
constexpr int kOutside[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};

/// A place on the way around an edge: a tetrahedron at the edge, and its corner off the edge whose opposite
/// facet leads to the next one.
struct AtEdge
{
	Index tet;
	Index pivot;
};

/// A view that has been checked, see there.
class Mesh : public MeshView
{
public:
	explicit Mesh(const MeshView& view);

	const Index* corners(Index tet) const { return pCorners + 4 * at(tet); }
	const Index* neighbours(Index tet) const { return pNeighbours + 4 * at(tet); }
	const double* point(Index vertex) const { return pCoordinates + 3 * at(vertex); }
	/// From vertex `from` to vertex `to`.
	Vec between(Index from, Index to) const { return shapes::between(point(from), point(to)); }

	/// The index of corner `vertex` in `tet`.
	int indexOf(Index tet, Index vertex) const
	{
		const Index* pCorner = corners(tet);
		return pCorner[0] == vertex ? 0 : pCorner[1] == vertex ? 1 : pCorner[2] == vertex ? 2 : 3;
	}
	/// The corners of facet i of `tet`, counter-clockwise from outside.
	std::array<Index, 3> facet(Index tet, int i) const
	{
		const Index* pCorner = corners(tet);
		return {pCorner[kOutside[i][0]], pCorner[kOutside[i][1]], pCorner[kOutside[i][2]]};
	}

	/// The place behind the facet opposite to the pivot, with the edge (a, b); its `tet` is negative beyond
	/// the hull. Steps go on in one direction around the edge.
	AtEdge next(const AtEdge& place, Index a, Index b) const
	{
		return {neighbours(place.tet)[indexOf(place.tet, place.pivot)], otherPivot(place, a, b)};
	}
	/// The fourth corner: with it as the pivot, steps go on in the other direction.
	Index otherPivot(const AtEdge& place, Index a, Index b) const
	{
		const Index* pCorner = corners(place.tet);
		return pCorner[0] ^ pCorner[1] ^ pCorner[2] ^ pCorner[3] ^ a ^ b ^ place.pivot;
	}
};

} // namespace TULO3D::shapes
