// SPDX-License-Identifier: MIT
// The tetrahedra of a tile, written to arrays.
#include "tiles/TileArrays.h"
#include "ardo_tools/prefault.h"
#include "ardo_tools/prefetch.h"
#include "mesh/Prefetch.h"
#include "tools.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace TULO3D {

namespace {

/// The even permutations: kTurns[3 k + r] brings corner k to the front, and turns the others by r.
constexpr std::array<std::array<std::uint8_t, 4>, 12> kTurns{
    {{0, 1, 2, 3}, {0, 2, 3, 1}, {0, 3, 1, 2}, {1, 0, 3, 2}, {1, 3, 2, 0}, {1, 2, 0, 3},
        {2, 3, 0, 1}, {2, 0, 1, 3}, {2, 1, 3, 0}, {3, 2, 1, 0}, {3, 1, 0, 2}, {3, 0, 2, 1}}};

/// A position, and in the last two bits which corner has it.
using Indexed = std::uint64_t;

/// Without a branch, which could not be predicted.
Indexed lesser(Indexed a, Indexed b)
{
	return b ^ ((a ^ b) & (0 - Indexed{a < b}));
}

using Corners = std::array<std::int32_t, 4>;

// Distances of prefetching, in tetrahedra.
constexpr std::ptrdiff_t kTetsAhead = 32;
constexpr std::ptrdiff_t kAhead = 16;

/// Tetrahedra in the order of their owners, where the corners will be: until they are written, there is room for two
/// pointers a tetrahedron.
class TetList
{
public:
	explicit TetList(std::int32_t* pCorners) : pBytes(reinterpret_cast<unsigned char*>(pCorners)) {}
	const Tet3* operator[](std::size_t i) const
	{
		const Tet3* pTet = nullptr;
		std::memcpy(&pTet, pBytes + i * kEntry, kEntry);
		return pTet;
	}
	void prefetchPlace(std::size_t i) const { prefetch(pBytes + i * kEntry); }
	void set(std::size_t i, const Tet3* pTet) { std::memcpy(pBytes + i * kEntry, &pTet, kEntry); }

private:
	static constexpr std::size_t kEntry = sizeof(void*);
	unsigned char* pBytes;
};

std::uint64_t mixed(std::uint64_t h)
{
	// The finalizer of SplitMix64 (G. Steele, D. Lea, C. Flood: Fast Splittable Pseudorandom Number Generators,
	// OOPSLA 2014).
	h = (h ^ h >> 30U) * 0xbf58476d1ce4e5b9U;
	h = (h ^ h >> 27U) * 0x94d049bb133111ebU;
	return h ^ h >> 31U;
}

} // namespace

TileArrays::TileArrays(const Tile& theTile)
    : tile(theTile), own(tile.ownRange()), live(tile.mesh().liveTets())
{
	CONDITION_CHECK_AS(live.size() <= std::numeric_limits<std::int32_t>::max(),
	    "at most 2147483647 tetrahedra have numbers");
}

inline CanonicalTet TileArrays::canonical(const Tet3& tet) const
{
	TetPositions p{};
	for (int i = 0; i < 4; ++i) p[static_cast<std::size_t>(i)] = tile.position(*tet.getCorner(i));
	const auto indexed = [](std::uint32_t position, std::uint64_t i) {
		return Indexed{position} << 2U | i;
	};
	const Indexed owner = lesser(
	    lesser(indexed(p[0], 0), indexed(p[1], 1)), lesser(indexed(p[2], 2), indexed(p[3], 3)));
	const auto& first = kTurns[3 * (owner & 3U)];
	const Indexed second =
	    lesser(lesser(indexed(p[first[1]], 0), indexed(p[first[2]], 1)), indexed(p[first[3]], 2));
	const auto turn = static_cast<unsigned>(3 * (owner & 3U) + (second & 3U));
	const auto& t = kTurns[turn];
	return {{p[t[0]], p[t[1]], p[t[2]], p[t[3]]}, turn};
}

bool TileArrays::isInside(const Tet3& tet) const
{
	bool bInside = true;
	for (int i = 0; i < 4; ++i) bInside &= tile.isOwn(*tet.getCorner(i));
	return bInside;
}

template <typename Visit>
void TileArrays::forEachEntry(Visit visit)
{
	std::int32_t* pEntry = vNumbers.data();
	live.forEachRun(0, live.size(), [&](const Tet3* pTet, const Tet3* pLast) {
		for (; pTet != pLast; ++pTet, ++pEntry) visit(*pTet, pEntry, pLast - pTet);
	});
}

void TileArrays::count(std::uint32_t* pCounts)
{
	vNumbers.resize(live.size());
	forEachEntry([&](const Tet3& tet, std::int32_t* pOwner, std::ptrdiff_t) {
		prefetchTet(&tet + kTetsAhead);
		if (isInside(tet)) {
			const Point3* const pFirst = std::min(std::min(tet.getCorner(0), tet.getCorner(1)),
			    std::min(tet.getCorner(2), tet.getCorner(3)));
			*pOwner = static_cast<std::int32_t>(tile.position(*pFirst) - own.first);
		} else {
			*pOwner = ownerAtBorder(tet);
			if (*pOwner == kForeign) return;
		}
		++pCounts[*pOwner + 1];
	});
}

std::int32_t TileArrays::ownerAtBorder(const Tet3& tet)
{
	const auto p = canonical(tet).position;
	const auto isOwn = [this](std::uint32_t position) { return own.contains(position); };
	if (std::none_of(p.begin(), p.end(), isOwn)) return kForeign;
	vAtBorder.push_back(&tet);
	return isOwn(p[0]) ? static_cast<std::int32_t>(p[0] - own.first) : kForeign;
}

void TileArrays::gatherByOwner(const OwnedArrays& to)
{
	const std::uint32_t first = to.pFirstOfOwner[0];
	TetList tets(to.pCorners + 4 * std::size_t{first});
	std::vector<std::uint32_t> vNext(to.pFirstOfOwner, to.pFirstOfOwner + own.size());
	const auto next = [&](std::int32_t owner) -> std::uint32_t& {
		return vNext[static_cast<std::size_t>(owner)];
	};
	forEachEntry([&](const Tet3& tet, const std::int32_t* pOwner, std::ptrdiff_t numLeft) {
		if (numLeft > kAhead && pOwner[kAhead] != kForeign)
			tets.prefetchPlace(next(pOwner[kAhead]) - first);
		if (*pOwner != kForeign) tets.set(next(*pOwner)++ - first, &tet);
	});
}

inline void TileArrays::writeOne(
    const Tet3& tet, const CanonicalTet& self, std::int32_t number, const OwnedArrays& to)
{
	vNumbers[recordOf(tet)] = number;
	const auto& turn = kTurns[self.turn];
	const auto recordBeyond = [&](int i) {
		return live.numberOf(tet.getOppTet(turn[static_cast<std::size_t>(i)]));
	};
	// Beyond the facet without the owner, the tile is right only when it has another own corner.
	const Corners beyond{own.contains(self.position[1]) ? recordBeyond(0) : kForeign,
	    recordBeyond(1), recordBeyond(2), recordBeyond(3)};
	const auto cornerAt = [range = own, number, pTetOfOwn = vTetOfOwn.data(),
	                          pNumbers = to.pNumbers](std::uint32_t position) {
		if (range.contains(position)) pTetOfOwn[position - range.first] = number;
		return pNumbers != nullptr ? pNumbers[position] : static_cast<std::int32_t>(position);
	};
	const auto& p = self.position;
	const Corners corners{cornerAt(p[0]), cornerAt(p[1]), cornerAt(p[2]), cornerAt(p[3])};
	const auto place = 4 * static_cast<std::ptrdiff_t>(number);
	std::copy(beyond.begin(), beyond.end(), to.pNeighbours + place);
	std::copy(corners.begin(), corners.end(), to.pCorners + place);
}

void TileArrays::write(const OwnedArrays& to)
{
	const std::uint32_t* const pFirst = to.pFirstOfOwner;
	const std::size_t first = pFirst[0];
	const std::size_t num = pFirst[own.size()] - first;
	prefault(to.pCorners + 4 * first, 4 * num * sizeof(std::int32_t));
	prefault(to.pNeighbours + 4 * first, 4 * num * sizeof(std::int32_t));
	gatherByOwner(to);

	const TetList tets(to.pCorners + 4 * first);
	vTetOfOwn.assign(own.size(), kHull);
	OwnedStar star;
	// Backwards, so that no corner is written where a tetrahedron is still to be read, and each vertex is left
	// with its lowest tetrahedron.
	std::size_t next = first + num;
	for (std::uint32_t i = own.size(); i-- > 0;) {
		star.clear();
		for (std::size_t t = pFirst[i] - first; t < pFirst[i + 1] - first; ++t) {
			if (t >= kTetsAhead) prefetchTet(tets[t - kTetsAhead]);
			star.add(tets[t], canonical(*tets[t]));
		}
		star.forEachBackwards([&](const Tet3& tet, const CanonicalTet& self) {
			writeOne(tet, self, static_cast<std::int32_t>(--next), to);
		});
	}

	// Neighbours have been written by their records.
	const std::int32_t* const pNumbers = vNumbers.data();
	std::int32_t* const pLast = to.pNeighbours + 4 * (first + num);
	for (std::int32_t* p = to.pNeighbours + 4 * first; p != pLast; ++p) {
		if (*p >= 0) *p = pNumbers[*p];
	}
}

std::int32_t TileArrays::find(const std::array<std::int32_t, 4>& wanted,
    const std::uint32_t* pFirstOfOwner, const std::int32_t* pCorners)
{
	for (std::uint32_t t = pFirstOfOwner[0]; t < pFirstOfOwner[1]; ++t) {
		if (std::equal(wanted.begin(), wanted.end(), pCorners + 4 * std::size_t{t})) {
			return static_cast<std::int32_t>(t);
		}
	}
	return kForeign;
}

FacetSide TileArrays::sideOf(const Tet3& tet, const TetPositions& position) const
{
	return {position, vNumbers[recordOf(tet)]};
}

template <typename Visit>
void TileArrays::forEachAtBorder(Visit visit) const
{
	for (std::size_t i = 0; i < vAtBorder.size(); ++i) {
		if (i + kTetsAhead < vAtBorder.size()) {
			prefetchTet(vAtBorder[i + kTetsAhead]);
			prefetchCorners(*vAtBorder[i + kAhead]);
		}
		visit(vAtBorder[i], canonical(*vAtBorder[i]));
	}
}

void TileArrays::linkForeign(const Link& link) const
{
	forEachAtBorder([&](const Tet3* pTet, const CanonicalTet& self) {
		const FacetSide side = sideOf(*pTet, self.position);
		for (int i = 0; i < 4; ++i) {
			// The lowest corner of the facet.
			if (!own.contains(self.position[i == 0 ? 1 : 0])) continue;
			const Tet3* pNeigh = pTet->getOppTet(kTurns[self.turn][static_cast<std::size_t>(i)]);
			if (pNeigh == nullptr) {
				if (side.isForeign()) link(side, i, nullptr);
				continue;
			}
			const CanonicalTet beyond = canonical(*pNeigh);
			const FacetSide other = sideOf(*pNeigh, beyond.position);
			if (!side.isForeign() && !other.isForeign()) continue;
			link(side, i, &other);
			if (!isInside(*pNeigh)) continue; // its turn comes
			for (int j = 0; j < 4; ++j) {
				if (pNeigh->getOppTet(kTurns[beyond.turn][static_cast<std::size_t>(j)]) == pTet)
					link(other, j, &side);
			}
		}
	});
}

void TileArrays::forEachForeign(const std::function<void(const TetPositions&)>& visit) const
{
	forEachAtBorder([&](const Tet3*, const CanonicalTet& self) {
		if (!own.contains(self.position[0])) visit(self.position);
	});
}

void TileArrays::noteAtVertices(const TetPositions& position, std::int32_t number)
{
	for (const std::uint32_t p : position) {
		if (!own.contains(p)) continue;
		std::int32_t& lowest = vTetOfOwn[p - own.first];
		if (lowest < 0 || number < lowest) lowest = number;
	}
}

std::vector<std::uint64_t> TileArrays::checksums(const std::vector<PositionRange>& vTiles) const
{
	std::vector<std::uint64_t> vSums(vTiles.size(), 0);
	const auto tileOf = [&vTiles](std::uint32_t position) {
		const auto isBehind = [](std::uint32_t p, const PositionRange& range) {
			return p < range.first;
		};
		return std::upper_bound(vTiles.begin(), vTiles.end(), position, isBehind) - vTiles.begin() -
		    1;
	};
	forEachAtBorder([&](const Tet3*, const CanonicalTet& self) {
		std::uint64_t hash = 0;
		std::array<std::ptrdiff_t, 4> tiles{};
		for (std::size_t i = 0; i < 4; ++i) {
			hash = mixed(hash + self.position[i] + 1);
			tiles[i] = tileOf(self.position[i]);
		}
		std::sort(tiles.begin(), tiles.end());
		const auto itLast = std::unique(tiles.begin(), tiles.end());
		for (auto it = tiles.begin(); it != itLast; ++it) vSums[std::size_t(*it)] += hash;
	});
	return vSums;
}

} // namespace TULO3D
