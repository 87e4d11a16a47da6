// SPDX-License-Identifier: MIT
// The two traversals that give the host the mesh.
#include "Dt3.h"
#include "PointerSet.h"
#include "Prefetch.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <numeric>

namespace TULO3D {

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

	// Every neighbour but the one opposite the vertex has the vertex too; vTet is the queue.
	PointerSet seen;
	seen.add(pVtx->getOneTet());
	vTet.push_back(pVtx->getOneTet());
	for (std::size_t n = 0; n < vTet.size(); ++n) {
		const Tet3* pTet = vTet[n];
		const int i = pTet->getIntraTetIndex(pVtx);
		for (int step = 1; step < 4; ++step) {
			Tet3* pNeigh = pTet->getOppTet((i + step) & 3);
			if (pNeigh == nullptr || !seen.add(pNeigh)) continue;
			prefetchTet(pNeigh); // its turn comes when the queue has moved on
			vTet.push_back(pNeigh);
		}
	}
	std::sort(vTet.begin(), vTet.end(), std::less<Tet3*>());
}

} // namespace TULO3D
