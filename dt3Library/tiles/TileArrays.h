// SPDX-License-Identifier: MIT
// The tetrahedra of a tile, written to the arrays of the whole mesh.
#pragma once

#include "mesh/LiveTets.h"
#include "tiles/CurveOrder.h"
#include "tiles/Tile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace TULO3D {

/// Where the tiles write, and what they have to know of each other.
struct SharedArrays
{
	std::int32_t* pTetOfVertex;
	std::int32_t* pCorners;
	std::int32_t* pNeighbours;
	/// The first tetrahedron that each vertex owns, by position; with one more entry behind the last.
	std::vector<std::uint32_t> vFirstOfOwner;
};

/// A tetrahedron belongs to the corner with the lowest position, its owner, and is written by the tile of that
/// vertex. The tetrahedra of an owner are in the order of their other corners: so a tile that knows a tetrahedron
/// of another tile finds its number without asking. A facet is written by the tile of its lowest corner, on both sides.
class TileArrays
{
public:
	/// The tile must outlive it.
	TileArrays(const Tile& tile, const CurveOrder& curveOrder);

	/// Counts the tetrahedra of each own vertex into the entry behind that of the vertex.
	void count(SharedArrays& shared);
	/// Once vFirstOfOwner holds sums. Writes the corners.
	void writeCorners(const SharedArrays& shared);
	/// Once all tiles have written their corners. Writes the neighbours and a tetrahedron for each own vertex.
	void writeNeighbours(const SharedArrays& shared);

	/// For each tile, a checksum of the tetrahedra that have a corner in this one and a corner there. Of two tiles,
	/// each must have the same for the other.
	std::vector<std::uint64_t> checksums(const std::vector<PositionRange>& vTiles) const;

private:
	/// A tetrahedron by the positions of its corners, the owner first, then the lowest of the others. `turn` is which of
	/// the twelve even permutations that is.
	struct Canonical
	{
		std::array<std::uint32_t, 4> position;
		unsigned turn;
	};
	static Canonical canonical(const Tet3& tet);
	static int cornerAt(unsigned turn, int i);
	std::int32_t numberOf(const Tet3& tet, const SharedArrays& shared) const;
	std::int32_t find(const Tet3& tet, const SharedArrays& shared) const;
	void writeAtBorder(const Tet3& tet, const SharedArrays& shared);
	/// A tetrahedron at own vertices; the lowest counts.
	void noteAtVertices(const std::array<std::uint32_t, 4>& position, std::int32_t number);

	const CurveOrder& order;
	const PositionRange own;
	const LiveTets live;
	static constexpr std::int32_t kForeign = -1;
	static constexpr std::uint8_t kAtBorder = 0xFF;
	/// Of each tetrahedron its canonical positions, until the corners are written.
	std::unique_ptr<std::array<std::uint32_t, 4>[]> pPositions;
	std::vector<std::int32_t> vTetOfOwn; ///< the lowest tetrahedron at each own vertex
	std::vector<std::int32_t>
	    vNumbers; ///< of each tetrahedron of the tile, kForeign for those of others
	std::vector<std::uint8_t>
	    vTurns; ///< of each tetrahedron; kAtBorder where a corner is not an own one
};

} // namespace TULO3D
