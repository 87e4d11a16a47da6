// SPDX-License-Identifier: MIT
// The tetrahedra of a tile, written to arrays.
#include "tiles/TileArrays.h"
#include "ardo_tools/prefault.h"
#include "ardo_tools/prefetch.h"
#include "mesh/Prefetch.h"
#include "tools.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace TULO3D {

namespace {

/// The even permutations: kTurns[3 k + r] brings corner k to the front, and turns the others by r.
constexpr std::array<std::array<std::uint8_t, 4>, 12> kTurns{
    {{0, 1, 2, 3}, {0, 2, 3, 1}, {0, 3, 1, 2}, {1, 0, 3, 2}, {1, 3, 2, 0}, {1, 2, 0, 3},
        {2, 3, 0, 1}, {2, 0, 1, 3}, {2, 1, 3, 0}, {3, 2, 1, 0}, {3, 1, 0, 2}, {3, 0, 2, 1}}};

// Distances of prefetching, in tetrahedra: records are read in their order, what they lead to is not.
constexpr std::size_t kTetsAhead = 32;
constexpr std::size_t kAhead = 16;

/// A tetrahedron of an owner, where its corners will be: the positions of the other corners, and its record in the tile.
using TetRow = std::array<std::int32_t, 4>;

/// The order of the other corners.
bool isBefore(const TetRow& a, const TetRow& b)
{
	const auto firstTwo = [](const TetRow& row) {
		return std::uint64_t{static_cast<std::uint32_t>(row[0])} << 32U |
		    static_cast<std::uint32_t>(row[1]);
	};
	const std::uint64_t ofA = firstTwo(a), ofB = firstTwo(b);
	if (ofA != ofB) return ofA < ofB;
	return static_cast<std::uint32_t>(a[2]) < static_cast<std::uint32_t>(b[2]);
}

/// For a few tetrahedra, as an owner has.
void sort(TetRow* pFirst, TetRow* pLast)
{
	constexpr std::ptrdiff_t kFew = 32;
	if (pLast - pFirst > kFew) {
		std::sort(pFirst, pLast, isBefore);
		return;
	}
	for (TetRow* p = pFirst; p < pLast; ++p) {
		const TetRow inserted = *p;
		TetRow* pAt = p;
		for (; pAt > pFirst && isBefore(inserted, pAt[-1]); --pAt) *pAt = pAt[-1];
		*pAt = inserted;
	}
}

std::uint64_t mixed(std::uint64_t h)
{
	// The finalizer of SplitMix64 (G. Steele, D. Lea, C. Flood: Fast Splittable Pseudorandom Number Generators,
	// OOPSLA 2014).
	h = (h ^ h >> 30U) * 0xbf58476d1ce4e5b9U;
	h = (h ^ h >> 27U) * 0x94d049bb133111ebU;
	return h ^ h >> 31U;
}

} // namespace

TileArrays::TileArrays(const Tile& tile) : own(tile.ownRange()), live(tile.mesh().liveTets())
{
	CONDITION_CHECK_AS(live.size() <= std::numeric_limits<std::int32_t>::max(),
	    "at most 2147483647 tetrahedra have numbers");
}

int TileArrays::cornerAt(unsigned turn, int i)
{
	return kTurns[turn][static_cast<std::size_t>(i)];
}

TileArrays::Canonical TileArrays::canonical(const Tet3& tet)
{
	TetPositions p{};
	for (int i = 0; i < 4; ++i) {
		p[static_cast<std::size_t>(i)] = Tile::curvePosition(*tet.getCorner(i));
	}
	// Without branches: which corner is the lowest cannot be predicted.
	unsigned owner = p[1] < p[0] ? 1 : 0;
	owner = p[2] < p[owner] ? 2 : owner;
	owner = p[3] < p[owner] ? 3 : owner;
	const auto& first = kTurns[3 * std::size_t{owner}];
	const std::uint32_t b = p[first[1]], c = p[first[2]], d = p[first[3]];
	unsigned turn = c < b ? 1 : 0;
	turn = d < std::min(b, c) ? 2 : turn;
	turn += 3 * owner;
	const auto& t = kTurns[turn];
	return {{p[t[0]], p[t[1]], p[t[2]], p[t[3]]}, turn};
}

template <typename Visit>
void TileArrays::forEachCanonical(Visit visit) const
{
	std::uint32_t record = 0;
	live.forEachRun(0, live.size(), [&](const Tet3* pFirst, const Tet3* pLast) {
		for (const Tet3* pTet = pFirst; pTet != pLast; ++pTet) {
			if (static_cast<std::size_t>(pLast - pTet) > kAhead) {
				prefetchTet(pTet + kTetsAhead);
				for (int i = 0; i < 4; ++i) prefetchObject(pTet[kAhead].getCorner(i));
			}
			visit(canonical(*pTet), record++);
		}
	});
}

void TileArrays::count(std::uint32_t* pCounts) const
{
	forEachCanonical([&](const Canonical& tet, std::uint32_t) {
		const std::uint32_t owner = tet.position[0];
		if (own.contains(owner)) ++pCounts[owner - own.first + 1];
	});
}

void TileArrays::writeCorners(const OwnedArrays& to)
{
	const std::uint32_t* const pFirst = to.pFirstOfOwner;
	const std::uint32_t first = pFirst[0];
	const std::size_t numBytes = 4 * std::size_t{pFirst[own.size()] - first} * sizeof(std::int32_t);
	prefault(to.pCorners + 4 * std::size_t{first}, numBytes);
	prefault(to.pNeighbours + 4 * std::size_t{first}, numBytes);

	// Each owner's tetrahedra are gathered, and then sorted, where their corners will be.
	TetRow* const pRows = reinterpret_cast<TetRow*>(to.pCorners);
	std::vector<std::uint32_t> vNext(pFirst, pFirst + own.size());
	vTurns.resize(live.size());
	forEachCanonical([&](const Canonical& tet, std::uint32_t record) {
		const auto& p = tet.position;
		const bool bInside = own.contains(p[0]) && own.contains(std::max({p[1], p[2], p[3]}));
		vTurns[record] = bInside ? static_cast<std::uint8_t>(tet.turn) : kAtBorder;
		if (!own.contains(p[0])) return;
		pRows[vNext[p[0] - own.first]++] = {static_cast<std::int32_t>(p[1]),
		    static_cast<std::int32_t>(p[2]), static_cast<std::int32_t>(p[3]),
		    static_cast<std::int32_t>(record)};
	});

	vNumbers.assign(live.size(), kForeign);
	vTetOfOwn.assign(own.size(), kForeign);
	// Backwards, so that each vertex is left with its lowest tetrahedron.
	for (std::uint32_t i = own.size(); i-- > 0;) {
		sort(pRows + pFirst[i], pRows + pFirst[i + 1]);
		for (std::uint32_t t = pFirst[i + 1]; t-- > pFirst[i];) {
			if (t >= first + kAhead)
				prefetch(&vNumbers[static_cast<std::size_t>(pRows[t - kAhead][3])]);
			TetRow& row = pRows[t];
			const auto number = static_cast<std::int32_t>(t);
			vNumbers[static_cast<std::size_t>(row[3])] = number;
			row = {static_cast<std::int32_t>(own.first + i), row[0], row[1], row[2]};
			for (std::int32_t& corner : row) {
				const auto position = static_cast<std::uint32_t>(corner);
				if (own.contains(position)) vTetOfOwn[position - own.first] = number;
				if (to.pNumbers != nullptr) corner = to.pNumbers[position];
			}
		}
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

inline FacetSide TileArrays::sideOf(const Tet3& tet, const TetPositions& position) const
{
	return {position, vNumbers[static_cast<std::size_t>(live.numberOf(&tet))]};
}

void TileArrays::linkAtBorder(const Tet3& tet, const Link& link) const
{
	const Canonical self = canonical(tet);
	const auto& p = self.position;
	if (!hasOwn(p)) return;
	const FacetSide side = sideOf(tet, p);
	for (int i = 0; i < 4; ++i) {
		std::uint32_t lowest = UINT32_MAX;
		for (int j = 0; j < 4; ++j) {
			if (j != i) lowest = std::min(lowest, p[static_cast<std::size_t>(j)]);
		}
		if (!own.contains(lowest)) continue;
		const Tet3* pNeigh = tet.getOppTet(cornerAt(self.turn, i));
		if (pNeigh == nullptr) {
			link(side, i, nullptr);
		} else {
			const FacetSide other = sideOf(*pNeigh, canonical(*pNeigh).position);
			link(side, i, &other);
		}
	}
}

void TileArrays::writeNeighbours(const OwnedArrays& to, const Link& link)
{
	std::size_t record = 0;
	live.forEachRun(0, live.size(), [&](const Tet3* pFirst, const Tet3* pLast) {
		for (const Tet3* pTet = pFirst; pTet != pLast; ++pTet, ++record) {
			if (static_cast<std::size_t>(pLast - pTet) > kAhead) {
				prefetchTet(pTet + kTetsAhead);
				prefetch(
				    to.pNeighbours + 4 * static_cast<std::ptrdiff_t>(vNumbers[record + kAhead]));
			}
			if (vTurns[record] == kAtBorder) {
				linkAtBorder(*pTet, link);
			} else {
				linkInside(*pTet, record, to, link);
			}
		}
	});
}

void TileArrays::linkInside(
    const Tet3& tet, std::size_t record, const OwnedArrays& to, const Link& link) const
{
	const std::int32_t number = vNumbers[record];
	std::int32_t* const p = to.pNeighbours + 4 * std::size_t(number);
	for (int i = 0; i < 4; ++i) {
		const Tet3* pNeigh = tet.getOppTet(cornerAt(vTurns[record], i));
		p[i] = pNeigh == nullptr ? -1 : vNumbers[static_cast<std::size_t>(live.numberOf(pNeigh))];
		if (p[i] == kForeign && pNeigh != nullptr) {
			const FacetSide other = sideOf(*pNeigh, canonical(*pNeigh).position);
			link({canonical(tet).position, number}, i, &other);
		}
	}
}

void TileArrays::noteAtVertices(const TetPositions& position, std::int32_t number)
{
	for (const std::uint32_t p : position) {
		if (!own.contains(p)) continue;
		std::int32_t& lowest = vTetOfOwn[p - own.first];
		if (lowest == kForeign || number < lowest) lowest = number;
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
	std::size_t record = 0;
	live.forEach([&](const Tet3* pTet) {
		if (vTurns[record++] != kAtBorder) return;
		const auto p = canonical(*pTet).position;
		if (!hasOwn(p)) return;
		std::uint64_t hash = 0;
		for (const std::uint32_t position : p) hash = mixed(hash + position + 1);
		std::array<std::ptrdiff_t, 4> tiles{tileOf(p[0]), tileOf(p[1]), tileOf(p[2]), tileOf(p[3])};
		std::sort(tiles.begin(), tiles.end());
		const auto itLast = std::unique(tiles.begin(), tiles.end());
		for (auto it = tiles.begin(); it != itLast; ++it) vSums[std::size_t(*it)] += hash;
	});
	return vSums;
}

} // namespace TULO3D
