// SPDX-License-Identifier: MIT
// The tetrahedra of the mesh as the records of their pool, without the dead ones.
#include "mesh/LiveTets.h"

#include <algorithm>
#include <functional>

namespace TULO3D {

namespace {

std::uintptr_t addressOf(const Tet3* pTet)
{
	return reinterpret_cast<std::uintptr_t>(pTet);
}

} // namespace

LiveTets::LiveTets(
    const std::vector<std::pair<Tet3*, std::size_t>>& blocks, const std::vector<Tet3*>& vDead)
{
	auto itDead = vDead.begin();
	for (const auto& [pBlock, count] : blocks) {
		Tet3* pFirst = pBlock;
		Tet3* const pEnd = pBlock + count;
		for (; itDead != vDead.end() && std::less<>()(*itDead, pEnd); ++itDead) {
			addRun(pFirst, *itDead);
			pFirst = *itDead + 1;
		}
		addRun(pFirst, pEnd);
	}
	if (!runs.empty()) makeTable();
}

void LiveTets::addRun(Tet3* pFirst, Tet3* pLast)
{
	if (pFirst == pLast) return;
	runs.push_back({pFirst, pLast, addressOf(pFirst) - numTets * sizeof(Tet3)});
	numTets += static_cast<std::size_t>(pLast - pFirst);
}

void LiveTets::makeTable()
{
	// Of the runs near the longest one. A system may keep smaller blocks far away from large ones.
	constexpr std::uintptr_t kNear = std::uintptr_t{1} << (sizeof(std::uintptr_t) > 4 ? 39U : 31U);
	constexpr std::uintptr_t kMaxPages = 2048;
	const auto isShorter = [](const Run& a, const Run& b) {
		return a.pLast - a.pFirst < b.pLast - b.pFirst;
	};
	const std::uintptr_t centre =
	    addressOf(std::max_element(runs.begin(), runs.end(), isShorter)->pFirst);
	const auto isNear = [&](const Run& run) {
		return addressOf(run.pFirst) - centre + kNear < 2 * kNear;
	};
	const auto itFirst = std::find_if(runs.begin(), runs.end(), isNear);
	const auto itLast = std::find_if_not(itFirst, runs.end(), isNear);

	lowest = addressOf(itFirst->pFirst);
	const std::uintptr_t length = addressOf((itLast - 1)->pLast) - lowest;
	while (length >> pageBits >= kMaxPages) ++pageBits;
	numPages = length >> pageBits;
	vOrigins.assign(numPages, 0);
	for (auto it = itFirst; it != itLast; ++it) {
		const std::uintptr_t first = addressOf(it->pFirst) - lowest;
		const std::uintptr_t last = addressOf(it->pLast) - lowest;
		const std::uintptr_t firstFull = (first + (std::uintptr_t{1} << pageBits) - 1) >> pageBits;
		for (auto page = firstFull; page < last >> pageBits; ++page) vOrigins[page] = it->origin;
	}
}

std::int32_t LiveTets::numberBySearch(const Tet3* pTet) const
{
	if (pTet == nullptr) return -1;
	const auto isBehind = [](const Tet3* pWanted, const Run& run) {
		return std::less<const Tet3*>()(pWanted, run.pFirst);
	};
	const Run& run = *(std::upper_bound(runs.begin(), runs.end(), pTet, isBehind) - 1);
	return static_cast<std::int32_t>((addressOf(pTet) - run.origin) / sizeof(Tet3));
}

} // namespace TULO3D
