// SPDX-License-Identifier: MIT
// The tetrahedra of a tile, written to arrays.
#pragma once

#include "mesh/LiveTets.h"
#include "tiles/OwnedStar.h"
#include "tiles/Tile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace TULO3D {

/// Where a tile writes the tetrahedra that its vertices own.
struct OwnedArrays
{
	/// The number of the first tetrahedron that each vertex of the tile owns, with one more entry behind the last.
	const std::uint32_t* pFirstOfOwner;
	/// Four corners and four neighbours a tetrahedron, by its number.
	std::int32_t* pCorners;
	std::int32_t* pNeighbours;
	/// What to write for the vertex at each position; null: the position.
	const std::int32_t* pNumbers;
};

/// One of two tetrahedra that share a facet.
struct FacetSide
{
	TetPositions position;
	std::int32_t number; ///< TileArrays::kForeign when the tile does not own it

	bool isForeign() const { return number < 0; }
};

/// A tetrahedron belongs to the corner with the lowest position, its owner, and is written by the tile of that
/// vertex. The tetrahedra of an owner are in the order of their other corners: so whoever knows a tetrahedron by its
/// positions finds its number. Who are neighbours in a facet is known to the tile of the facet's lowest corner, which
/// may own neither of the two.
class TileArrays
{
public:
	static constexpr std::int32_t kHull = -1;
	static constexpr std::int32_t kForeign = -2;

	/// The tile must outlive it.
	explicit TileArrays(const Tile& theTile);

	/// Counts the tetrahedra of each own vertex into the entry behind that of the vertex.
	void count(std::uint32_t* pCounts);
	/// Once, after `count`, when counts have become numbers. Writes corners and neighbours; kForeign for neighbours that the tile does not own
	/// or cannot know.
	void write(const OwnedArrays& to);

	/// Calls link(side, i, other) for the facets whose lowest corner is own, of whose tetrahedra the tile does not own
	/// all: the first is to have the second as neighbour i. The second is null on the hull.
	using Link = std::function<void(const FacetSide&, int i, const FacetSide*)>;
	void linkForeign(const Link& link) const;

	/// Calls visit(positions) for the tetrahedra with an own corner that other tiles own.
	void forEachForeign(const std::function<void(const TetPositions&)>& visit) const;
	/// Once written: the lowest tetrahedron at each own vertex, of those that the tile owns and those noted.
	const std::vector<std::int32_t>& tetOfOwn() const { return vTetOfOwn; }
	/// Notes a tetrahedron at own vertices.
	void noteAtVertices(const TetPositions& position, std::int32_t number);

	/// For each tile, a checksum of the tetrahedra that have a corner in this one and a corner there. Of two tiles,
	/// each must have the same for the other.
	std::vector<std::uint64_t> checksums(const std::vector<PositionRange>& vTiles) const;

	/// The number of a tetrahedron, of those that its owner's tile has written; or kForeign. `pFirstOfOwner` is at
	/// the owner's entry; `wanted` are the corners as they have been written.
	static std::int32_t find(const std::array<std::int32_t, 4>& wanted,
	    const std::uint32_t* pFirstOfOwner, const std::int32_t* pCorners);

private:
	CanonicalTet canonical(const Tet3& tet) const;
	bool isInside(const Tet3& tet) const;
	/// Calls visit(tet, pEntry, numLeft) for all tetrahedra of the tile, with the entry of vNumbers. The next
	/// numLeft - 1 follow in memory, as their entries do.
	template <typename Visit>
	void forEachEntry(Visit visit);
	/// The entry of a tetrahedron in vNumbers.
	std::size_t recordOf(const Tet3& tet) const
	{
		return static_cast<std::size_t>(live.numberOf(&tet));
	}
	/// Calls visit(pTet, canonical) for the tetrahedra at the border.
	template <typename Visit>
	void forEachAtBorder(Visit visit) const;
	std::int32_t ownerAtBorder(const Tet3& tet);
	void gatherByOwner(const OwnedArrays& to);
	void writeOne(
	    const Tet3& tet, const CanonicalTet& self, std::int32_t number, const OwnedArrays& to);
	FacetSide sideOf(const Tet3& tet, const TetPositions& position) const;

	const Tile& tile;
	const PositionRange own;
	const LiveTets live;
	std::vector<const Tet3*> vAtBorder;  ///< the tetrahedra with own corners and others
	std::vector<std::int32_t> vTetOfOwn; ///< the lowest tetrahedron at each own vertex
	/// Of each tetrahedron of the tile: first the owner, as a place among own vertices, then the number; kForeign for
	/// those of others.
	std::vector<std::int32_t> vNumbers;
};

} // namespace TULO3D
