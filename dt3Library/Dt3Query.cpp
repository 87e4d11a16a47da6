// SPDX-License-Identifier: MIT
// The two traversals that give the host the mesh.
#include "Dt3.h"
#include "PointerSet.h"
#include "Prefetch.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <limits>
#include <numeric>

namespace TULO3D {

namespace {

constexpr std::size_t kUsualStar = 64;

/// The place of each is the number of those below it. For a star of ordinary size counting them all,
/// side by side and without a branch, is quicker than a sort that takes a wrong turn at every third
/// comparison. 32 bits of the addresses will do where the rest is the same.
void sortByAddress(std::vector<Tet3*>& vTet)
{
	constexpr std::size_t kFew = 48;
	const std::size_t size = vTet.size();
	const auto addressOf = [&vTet](std::size_t i) {
		return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(vTet[i]));
	};
	std::uint64_t differing = 0;
	for (std::size_t i = 0; i < size; ++i) differing |= addressOf(i) ^ addressOf(0);
	static_assert(alignof(Tet3) >= 8, "an address has three bits that say nothing");
	if (size > kFew || differing >> 34U != 0) {
		std::sort(vTet.begin(), vTet.end(), std::less<Tet3*>());
		return;
	}
	std::int32_t keys[kFew];
	Tet3* unsorted[kFew];
	std::fill(keys, keys + kFew, std::numeric_limits<std::int32_t>::max());
	for (std::size_t i = 0; i < size; ++i) {
		unsorted[i] = vTet[i];
		keys[i] = static_cast<std::int32_t>(addressOf(i) >> 3U & 0x7fffffffU);
	}
	const std::size_t compared = (size + 15) / 16 * 16;
	for (std::size_t i = 0; i < size; ++i) {
		std::int32_t numBelow = 0;
		for (std::size_t j = 0; j < compared; ++j) numBelow += keys[j] < keys[i];
		vTet[static_cast<std::size_t>(numBelow)] = unsorted[i];
	}
}

} // namespace

void Dt3::getAllTetrahedra(std::vector<Tet3*>& vTet) const
{
	CONDITION_CHECK(vTet.empty());
	const auto isEntry = [](const Point3* pVtx) {
		return pVtx->getOneTet() != nullptr && !pVtx->getOneTet()->hasBeenVisited;
	};
	std::vector<Point3*> vVertices;
	getVertices(vVertices);
	if (std::none_of(vVertices.begin(), vVertices.end(), isEntry)) {
		std::cout << "Dt3::getAllTetrahedra(), oneTet==NULL" << std::endl;
		return;
	}

	// The mesh hangs together, so a flood from any tetrahedron would reach all that live; and these
	// are the records of the pool less the dead ones. Reading them off in address order is a hundred
	// times faster than jumping from neighbour to neighbour.
	std::vector<const Tet3*> vDead(vDeadTets.begin(), vDeadTets.end());
	vDead.insert(vDead.end(), vRecycledTets.begin(), vRecycledTets.end());
	std::sort(vDead.begin(), vDead.end(), std::less<const Tet3*>());
	const auto blocks = tetPool.usedBlocks();
	const auto addCount = [](std::size_t sum, const auto& block) { return sum + block.second; };
	vTet.reserve(
	    std::accumulate(blocks.begin(), blocks.end(), std::size_t{0}, addCount) - vDead.size());
	auto itDead = vDead.begin();
	for (const auto& [pFirst, count] : blocks) {
		for (Tet3* pTet = pFirst; pTet != pFirst + count; ++pTet) {
			if (itDead != vDead.end() && *itDead == pTet) {
				++itDead;
			} else {
				vTet.push_back(pTet);
			}
		}
	}
}

void Dt3::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTet)
{
	vTet.clear();
	if (pVtx->getOneTet() == nullptr) {
		printError("Dt3::getTetsAroundVertex()", "pVtx does not belong to the triangulation");
		return;
	}

	// Every neighbour but the one opposite the vertex has the vertex too; vTet is the queue. Two in
	// three have been seen already, but which ones no CPU can guess: so each of them is written down,
	// and the queue only grows for the new ones.
	PointerSet seen;
	seen.add(pVtx->getOneTet());
	vTet.resize(kUsualStar);
	vTet[0] = pVtx->getOneTet();
	std::size_t size = 1;
	for (std::size_t n = 0; n < size; ++n) {
		if (size + 3 > vTet.size()) vTet.resize(2 * size);
		Tet3** const pQueue = vTet.data();
		const Tet3* pTet = pQueue[n];
		const int i = pTet->getIntraTetIndex(pVtx);
		for (int step = 1; step < 4; ++step) {
			Tet3* pNeigh = pTet->getOppTet((i + step) & 3);
			if (pNeigh == nullptr) continue;
			prefetchTet(pNeigh); // its turn comes when the queue has moved on
			pQueue[size] = pNeigh;
			size += seen.add(pNeigh);
		}
	}
	vTet.resize(size);
	sortByAddress(vTet);
}

} // namespace TULO3D
