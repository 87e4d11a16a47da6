// SPDX-License-Identifier: MIT
// The tetrahedra of a tile, written to arrays.
#pragma once

#include "mesh/LiveTets.h"
#include "tiles/Tile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace TULO3D {

/// A tetrahedron by the positions of its corners, the owner first, then the lowest of the others.
using TetPositions = std::array<std::uint32_t, 4>;

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
	static constexpr std::int32_t kForeign = -1;

	/// The tile must outlive it.
	explicit TileArrays(const Tile& tile);

	/// Counts the tetrahedra of each own vertex into the entry behind that of the vertex.
	void count(std::uint32_t* pCounts) const;
	/// Once counts have become numbers. Writes the corners.
	void writeCorners(const OwnedArrays& to);

	/// Writes the neighbours in all facets whose three corners are own, if the tile owns both tetrahedra or it is
	/// the hull; all others with an own lowest corner go to `link`: the first is to have the second as neighbour i.
	/// The second is null on the hull.
	using Link = std::function<void(const FacetSide&, int i, const FacetSide*)>;
	void writeNeighbours(const OwnedArrays& to, const Link& link);

	/// Calls visit(positions) for the tetrahedra with an own corner that other tiles own.
	template <typename Visit>
	void forEachForeign(Visit visit) const
	{
		std::size_t record = 0;
		live.forEach([&](const Tet3* pTet) {
			const bool bInside = vTurns[record] != kAtBorder;
			const bool bOwned = vNumbers[record++] != kForeign;
			if (bInside || bOwned) return;
			const TetPositions p = canonical(*pTet).position;
			if (hasOwn(p)) visit(p);
		});
	}
	/// Once corners are written: the lowest tetrahedron at each own vertex, of those that the tile owns and those noted.
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
	/// `turn` is which of the twelve even permutations brings the corners into that order.
	struct Canonical
	{
		TetPositions position;
		unsigned turn;
	};
	static Canonical canonical(const Tet3& tet);
	static int cornerAt(unsigned turn, int i);
	/// Calls visit(canonical, record) for all tetrahedra of the tile.
	template <typename Visit>
	void forEachCanonical(Visit visit) const;
	bool hasOwn(const TetPositions& position) const
	{
		return own.contains(position[0]) || own.contains(position[1]) ||
		    own.contains(position[2]) || own.contains(position[3]);
	}
	FacetSide sideOf(const Tet3& tet, const TetPositions& position) const;
	void linkInside(
	    const Tet3& tet, std::size_t record, const OwnedArrays& to, const Link& link) const;
	void linkAtBorder(const Tet3& tet, const Link& link) const;

	const PositionRange own;
	const LiveTets live;
	static constexpr std::uint8_t kAtBorder = 0xFF;
	std::vector<std::int32_t> vTetOfOwn; ///< the lowest tetrahedron at each own vertex
	std::vector<std::int32_t>
	    vNumbers; ///< of each tetrahedron of the tile, kForeign for those of others
	std::vector<std::uint8_t>
	    vTurns; ///< of each tetrahedron; kAtBorder where a corner is not an own one
};

} // namespace TULO3D
