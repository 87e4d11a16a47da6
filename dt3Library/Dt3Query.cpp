// SPDX-License-Identifier: MIT
// The two traversals that give the host the mesh.
#include "Dt3.h"
#include "PointerSet.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace TULO3D {

namespace {

/// One bit for each record of the pool. The marks on the records belong to the host as well, so a
/// query leaves them alone.
class SeenTets
{
public:
	explicit SeenTets(const SimplePool<Tet3>& pool)
	{
		for (std::size_t i = 0; i < pool.blockList.size(); ++i) {
			// vSizes keeps what was ever obtained; a pool that is never reset still owns all of it.
			blocks.push_back({pool.blockList[i], static_cast<std::size_t>(pool.vSizes[i]), {}});
			blocks.back().seen.resize(blocks.back().count, false);
		}
		std::sort(blocks.begin(), blocks.end(),
		    [](const Block& a, const Block& b) { return a.pFirst < b.pFirst; });
	}

	/// Marks a tetrahedron; false when it was marked already.
	bool add(const Tet3* pTet)
	{
		if (pTet < blocks[last].pFirst || pTet >= blocks[last].pFirst + blocks[last].count) {
			last = blockOf(pTet);
		}
		const auto i = static_cast<std::size_t>(pTet - blocks[last].pFirst);
		if (blocks[last].seen[i]) return false;
		blocks[last].seen[i] = true;
		++numSeen;
		return true;
	}

	/// All marked ones in ascending address order.
	void list(std::vector<Tet3*>& vTet) const
	{
		vTet.reserve(numSeen);
		for (const Block& block : blocks) {
			for (std::size_t i = 0; i < block.count; ++i) {
				if (block.seen[i]) vTet.push_back(block.pFirst + i);
			}
		}
	}

private:
	struct Block
	{
		Tet3* pFirst;
		std::size_t count;
		std::vector<bool> seen;
	};

	std::size_t blockOf(const Tet3* pTet) const
	{
		const auto it = std::upper_bound(blocks.begin(), blocks.end(), pTet,
		    [](const Tet3* p, const Block& block) { return p < block.pFirst; });
		return static_cast<std::size_t>(it - blocks.begin()) - 1;
	}

	std::vector<Block> blocks;
	std::size_t last = 0; // neighbours mostly lie in the same block
	std::size_t numSeen = 0;
};

} // namespace

void Dt3::getAllTetrahedra(std::vector<Tet3*>& vTet) const
{
	CONDITION_CHECK(vTet.empty());
	std::vector<Point3*> vVertices;
	getVertices(vVertices);
	const auto isEntry = [](const Point3* pVtx) {
		return pVtx->getOneTet() != nullptr && !pVtx->getOneTet()->hasBeenVisited;
	};
	const auto itEntry = std::find_if(vVertices.begin(), vVertices.end(), isEntry);
	if (itEntry == vVertices.end()) {
		std::cout << "Dt3::getAllTetrahedra(), oneTet==NULL" << std::endl;
		return;
	}

	SeenTets seen(tetPool);
	std::vector<Tet3*> vStack{(*itEntry)->getOneTet()};
	seen.add(vStack.back());
	while (!vStack.empty()) {
		const Tet3* pCurrentTet = vStack.back();
		vStack.pop_back();
		CONDITION_CHECK(pCurrentTet!=0);
		for (int i = 0; i < 4; ++i) {
			Tet3* pNeigh = pCurrentTet->getOppTet(i);
			if (pNeigh != nullptr && seen.add(pNeigh)) vStack.push_back(pNeigh);
		}
	}
	seen.list(vTet);
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
		for (int j = 0; j < 4; ++j) {
			Tet3* pNeigh = pTet->getOppTet(j);
			if (j != i && pNeigh != nullptr && seen.add(pNeigh)) vTet.push_back(pNeigh);
		}
	}
	std::sort(vTet.begin(), vTet.end(), std::less<Tet3*>());
}

} // namespace TULO3D
