// SPDX-License-Identifier: MIT
// The queries of a host, except point location.
#include "Dt3.h"
#include "Message.h"
#include "ardo_tools/SmallPointerSet.h"
#include "ardo_tools/prefault.h"
#include "mesh/LiveTets.h"
#include "mesh/Prefetch.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>

namespace TULO3D {

namespace {

constexpr std::size_t kUsualStar = 48;

/// A rank sort for stars of ordinary size: the place of each is the number of those below it. Branch-free,
/// where std::sort mispredicts every third comparison.
void sortByAddress(std::vector<Tet3*>& vTet)
{
	constexpr std::size_t kFew = 40;
	const std::size_t size = vTet.size();
	if (size > kFew) {
		std::sort(vTet.begin(), vTet.end(), std::less<Tet3*>());
		return;
	}
	// Padded to multiples of eight: fixed trip counts, which the compiler unrolls.
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
	expectFinished();
	CONDITION_CHECK(vTet.empty());
	const LiveTets live = listedTets();
	vTet.reserve(live.size());
	live.forEach([&vTet](Tet3* pTet) { vTet.push_back(pTet); });
}

LiveTets Dt3::listedTets() const
{
	const auto isEntry = [](const IdxVtx* pItem) {
		const Tet3* pTet = pItem->pVtx->getOneTet();
		return pTet != nullptr && !pTet->hasBeenVisited;
	};
	if (std::any_of(hc3.items.begin(), hc3.items.end(), isEntry)) return liveTets();
	Message() << "Dt3::getAllTetrahedra(), oneTet==NULL" << std::endl;
	return LiveTets({}, {});
}

LiveTets Dt3::liveTets() const
{
	std::vector<Tet3*> vDead(vDeadTets.begin(), vDeadTets.end());
	vDead.insert(vDead.end(), vRecycledTets.begin(), vRecycledTets.end());
	std::sort(vDead.begin(), vDead.end(), std::less<Tet3*>());
	return LiveTets(tetPool.usedBlocks(), vDead);
}

std::size_t Dt3::getNumVertices() const
{
	expectFinished();
	return hc3.size();
}

std::size_t Dt3::getNumTetrahedra() const
{
	expectFinished();
	return tetPool.numUsed() - vDeadTets.size() - vRecycledTets.size();
}

// Distances of prefetching in copyTo, in tetrahedra.
constexpr std::ptrdiff_t kTetsAhead = 32;
constexpr std::ptrdiff_t kVerticesAhead = 16;

void Dt3::copyTo(const MeshArrays& arrays) const
{
	expectFinished();
	const LiveTets live = liveTets();
	// Corners and coordinates are those of a larger mesh, too: vertices have numbers always.
	const bool bNumbersTets = arrays.pTetOfVertex != nullptr || arrays.pNeighbours != nullptr;
	CONDITION_CHECK_AS(!bNumbersTets || live.size() <= std::numeric_limits<std::int32_t>::max(),
	    "at most 2147483647 tetrahedra have numbers");
	if (arrays.pCoordinates != nullptr || arrays.pTetOfVertex != nullptr) {
		for (const auto& [pFirst, count] : hc3.vertexPool.usedBlocks()) {
			for (const Point3* pVtx = pFirst; pVtx != pFirst + count; ++pVtx) {
				const auto number = static_cast<std::size_t>(pVtx->getNumber());
				if (arrays.pCoordinates != nullptr) {
					double* const p = arrays.pCoordinates + 3 * number;
					pVtx->xyz(p[0], p[1], p[2]);
				}
				if (arrays.pTetOfVertex != nullptr) {
					arrays.pTetOfVertex[number] = live.numberOf(pVtx->getOneTet());
				}
			}
		}
	}
	const std::size_t numLeft = live.size() - std::min(arrays.firstTet, live.size());
	const std::size_t numTets = std::min(arrays.numTets, numLeft);
	const std::size_t numBytes = 4 * numTets * sizeof(std::int32_t);
	std::int32_t* pCorner = arrays.pCorners;
	std::int32_t* pNeighbour = arrays.pNeighbours;
	if (pCorner != nullptr) prefault(pCorner, numBytes);
	if (pNeighbour != nullptr) prefault(pNeighbour, numBytes);
	live.forEachRun(arrays.firstTet, numTets, [&](const Tet3* pFirst, const Tet3* pLast) {
		for (const Tet3* pTet = pFirst; pTet != pLast; ++pTet) {
			// The records are read in their order, the vertices out of order: those need a prefetch of their own,
			// for which the record must have come.
			if (pLast - pTet > kVerticesAhead) {
				prefetchTet(pTet + kTetsAhead);
				if (pCorner != nullptr) prefetchCorners(pTet[kVerticesAhead]);
			}
			if (pCorner != nullptr) {
				for (int i = 0; i < 4; ++i) *pCorner++ = pTet->getCorner(i)->getNumber();
			}
			if (pNeighbour != nullptr) {
				for (int i = 0; i < 4; ++i) *pNeighbour++ = live.numberOf(pTet->getOppTet(i));
			}
		}
	});
}

void Dt3::getVertices(std::vector<Point3*>& vVertices) const
{
	expectFinished();
	hc3.getVertices(vVertices);
}

bool Dt3::is3D() const
{
	expectFinished();
	return bFullDimensional;
}

void Dt3::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTet)
{
	if (pVtx->getOneTet() == nullptr) {
		vTet.clear();
		printError("Dt3::getTetsAroundVertex()", "pVtx does not belong to the triangulation");
		return;
	}

	// Every neighbour but the one opposite the vertex has the vertex too; vTet is the queue. Two in three
	// have been seen already, unpredictably: each is stored, and the end advances only for new ones.
	SmallPointerSet seen;
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
		prefetchTet(pTet->getOppTet(i)); // in a star that a host will probably read next
		for (int step = 1; step < 4; ++step) {
			Tet3* pNeigh = pTet->getOppTet((i + step) & 3);
			if (pNeigh == nullptr) continue;
			prefetchTet(pNeigh); // read when its turn in the queue comes
			pQueue[size] = pNeigh;
			size += seen.add(pNeigh);
		}
	}
	vTet.resize(size);
	sortByAddress(vTet);
}

} // namespace TULO3D
