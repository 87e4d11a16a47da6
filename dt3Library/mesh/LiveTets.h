// SPDX-License-Identifier: MIT
// The tetrahedra of the mesh as the records of their pool, without the dead ones.
#pragma once

#include "Tet3.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TULO3D {

/// Numbers the tetrahedra by ascending address.
///
/// The engine keeps no list of its tetrahedra. They are connected, so a search from any one would reach
/// all; but reading the blocks of the pool sequentially is a hundred times faster than the scattered reads of
/// a search from neighbour to neighbour.
class LiveTets
{
public:
	/// The blocks of the pool, each its first record and how many are in use, and the dead records, both
	/// by ascending address.
	LiveTets(
	    const std::vector<std::pair<Tet3*, std::size_t>>& blocks, const std::vector<Tet3*>& vDead);

	std::size_t size() const { return numTets; }

	/// Calls visit(pTet) for each tetrahedron, in the order of the numbers.
	template <typename Visit>
	void forEach(Visit visit) const
	{
		forEachRun(0, numTets, [&visit](Tet3* pFirst, Tet3* pLast) {
			for (Tet3* pTet = pFirst; pTet != pLast; ++pTet) visit(pTet);
		});
	}

	/// Calls visit(pFirst, pLast) for ranges of records that together are `num` tetrahedra from number `first`
	/// on, as far as there are so many. `pLast` is behind the last one of its range.
	template <typename Visit>
	void forEachRun(std::size_t first, std::size_t num, Visit visit) const
	{
		for (const Run& run : runs) {
			const auto length = static_cast<std::size_t>(run.pLast - run.pFirst);
			const std::size_t numBefore = std::min(first, length);
			const std::size_t numHere = std::min(num, length - numBefore);
			if (numHere > 0) visit(run.pFirst + numBefore, run.pFirst + numBefore + numHere);
			first -= numBefore;
			num -= numHere;
		}
	}

	/// The number of a tetrahedron; -1 for null.
	std::int32_t numberOf(const Tet3* pTet) const
	{
		const auto address = reinterpret_cast<std::uintptr_t>(pTet);
		const std::uintptr_t page = (address - lowest) >> pageBits;
		if (page >= numPages || vOrigins[page] == 0) return numberBySearch(pTet);
		return static_cast<std::int32_t>((address - vOrigins[page]) / sizeof(Tet3));
	}

private:
	/// Records that follow one another, none of them dead.
	struct Run
	{
		Tet3* pFirst;
		Tet3* pLast;           ///< behind the last one
		std::uintptr_t origin; ///< where number 0 would be if the run began as early as that
	};

	void addRun(Tet3* pFirst, Tet3* pLast);
	void makeTable();
	std::int32_t numberBySearch(const Tet3* pTet) const;

	std::vector<Run> runs;
	std::size_t numTets = 0;

	// For each page of addresses from `lowest` on, the origin of the run that covers the whole page; 0 if
	// there is none. Nearly every look-up ends here, in a table that fits into the L1 cache.
	std::vector<std::uintptr_t> vOrigins;
	std::uintptr_t numPages = 0;
	std::uintptr_t lowest = 0;
	unsigned pageBits = 10;
};

} // namespace TULO3D
