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

constexpr std::size_t kUsualStar = 48;

/// The place of each is the number of those below it. For a star of ordinary size counting them all,
/// without a branch, is quicker than a sort that takes a wrong turn at every third comparison.
void sortByAddress(std::vector<Tet3*>& vTet)
{
	constexpr std::size_t kFew = 40;
	const std::size_t size = vTet.size();
	if (size > kFew) {
		std::sort(vTet.begin(), vTet.end(), std::less<Tet3*>());
		return;
	}
	// Filled up to rounds of eight, which the compiler unrolls: short loops end where the CPU expects.
	std::uintptr_t addresses[kFew];
	std::fill(addresses, addresses + kFew, std::numeric_limits<std::uintptr_t>::max());
	for (std::size_t i = 0; i < size; ++i) {
		addresses[i] = reinterpret_cast<std::uintptr_t>(vTet[i]);
	}
	for (std::size_t i = 0; i < size; ++i) {
		std::size_t numBelow = 0;
		for (std::size_t round = 0; round < size; round += 8) {
			for (std::size_t j = round; j < round + 8; ++j) {
				numBelow += addresses[j] < addresses[i];
			}
		}
		vTet[numBelow] = reinterpret_cast<Tet3*>(addresses[i]);
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
	if (pVtx->getOneTet() == nullptr) {
		vTet.clear();
		printError("Dt3::getTetsAroundVertex()", "pVtx does not belong to the triangulation");
		return;
	}

	// Every neighbour but the one opposite the vertex has the vertex too; vTet is the queue. Two in
	// three have been seen already, but which ones no CPU can guess: so each of them is written down,
	// and the queue only grows for the new ones.
	PointerSet seen;
	seen.add(pVtx->getOneTet());
	if (vTet.size() < kUsualStar) vTet.resize(kUsualStar);
	vTet[0] = pVtx->getOneTet();
	std::size_t size = 1;
	for (std::size_t n = 0; n < size; ++n) {
		if (size + 3 > vTet.size()) vTet.resize(2 * size);
		seen.makeRoom(size + 3);
		Tet3** const pQueue = vTet.data();
		const Tet3* pTet = pQueue[n];
		const int i = pTet->getIntraTetIndex(pVtx);
		prefetchTet(pTet->getOppTet(i)); // one of the star that a host will probably ask for next
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
