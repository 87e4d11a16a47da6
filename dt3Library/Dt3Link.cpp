// SPDX-License-Identifier: MIT
// Tetrahedra are created, recycled and linked. In a star too large for the StarLinker, every facet
// between two new tetrahedra is offered twice: the first half waits until the second comes. It waits in the
// slot of its hash, vTwoTetSlots; where another facet has that slot, in the list vHashCollisions, which has
// an index once it is long.
#include "Dt3.h"
#include "Dt3Inline.h"
#include "Message.h"
#include "geometry/printing.h"

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <utility>

namespace TULO3D {

namespace {

/// Reports corners that are not in positive order.
void reportOrientation(
    Orientation3 ori, const Point3* p0, const Point3* p1, const Point3* p2, const Point3* p3)
{
	Message message;
	message << "Dt3::createTet(), ERROR: "
	        << (ori == ORIENTATION3_NEGATIVE ? "ORIENTATION3_NEGATIVE" : "ORIENTATION3_COPLANAR")
	        << " ORIENTATION OF: " << std::endl
	        << std::setprecision(15); // Deliberate: the stream keeps it.
	for (const Point3* p : {p0, p1, p2, p3}) message << *p << std::endl;
	if (ori == ORIENTATION3_COPLANAR) {
		message << "..probably a legal situaion but observe!" << std::endl;
	}
}

} // namespace

Tet3* Dt3::createTet(Point3* p0, Point3* p1, Point3* p2, Point3* p3)
{
	const Orientation3 ori = predicates.getOrientation3(p0, p1, p2, p3);
	if (ori != ORIENTATION3_POSITIVE) reportOrientation(ori, p0, p1, p2, p3);
	CONDITION_CHECK_AS(ori != ORIENTATION3_NEGATIVE, "false");
	return makePositiveTet(p0, p1, p2, p3);
}

Tet3* Dt3::createTetReplacingCorner(Tet3* pTet, int ith, Point3* pVtx)
{
	const auto& [a, b, c] = kOutside[range03(ith) ? ith : 3];
	return createTet(pVtx, pTet->getCorner(a), pTet->getCorner(b), pTet->getCorner(c));
}

void Dt3::refuseSelfLink(const Tet3* pTet)
{
	Message() << "register tets has been called with fromTet==toTet==" << pTet << std::endl
	          << *pTet << std::endl;
}

unsigned Dt3::facetHash(const Point3* key0, const Point3* key1)
{
	// Bits 5..9 of either address: the vertices of a star are often close in memory, so higher bits are
	// mostly equal; and the hash must take only a few operations.
	const auto low = static_cast<std::uint32_t>(addressOf(key0));
	const auto high = static_cast<std::uint32_t>(addressOf(key1));
	return ((low >> 5U) & 31U) ^ (high & 0x3E0U);
}

void Dt3::offerInnerFacets(Tet3* pNewTet)
{
	Point3* a = pNewTet->getCorner(1);
	Point3* b = pNewTet->getCorner(2);
	Point3* c = pNewTet->getCorner(3);
	int ia = 1;
	int ib = 2;
	int ic = 3;
	const auto sortPair = [](Point3*& p, int& ip, Point3*& q, int& iq) {
		if (addressOf(p) <= addressOf(q)) return;
		std::swap(p, q);
		std::swap(ip, iq);
	};
	sortPair(a, ia, b, ib);
	sortPair(b, ib, c, ic);
	sortPair(a, ia, b, ib);
	storeOrLinkFacet(facetHash(b, c), pNewTet, ia, b, c);
	storeOrLinkFacet(facetHash(a, c), pNewTet, ib, a, c);
	storeOrLinkFacet(facetHash(a, b), pNewTet, ic, a, b);
}

void Dt3::storeOrLinkFacet(unsigned hash, Tet3* pTet, int ith, Point3* key0, Point3* key1)
{
	TwoTetStruct*& pSlot = vTwoTetSlots[hash];
	if (pSlot != nullptr && pSlot->key0 == key0 && pSlot->key1 == key1) {
		--numStoredTCS;
		registerTets(pSlot->pTet, pSlot->ith, pTet, ith);
		pSlot = nullptr;
		return;
	}
	if (pSlot != nullptr) {
		if (TwoTetStruct* pHalf = takeCollision(pTet, key0, key1)) {
			registerTets(pHalf->pTet, pHalf->ith, pTet, ith);
			--numStoredTCS;
			return;
		}
	}
	TwoTetStruct* pHalf = twoTetPool.alloc();
	*pHalf = {key0, key1, pTet, ith};
	++numStoredTCS;
	if (pSlot == nullptr) {
		pSlot = pHalf;
	} else {
		storeCollision(pHalf);
	}
}

void Dt3::linkClosedStar()
{
	if (star.linkClosed()) return;
	for (Tet3* pTet : star.vTets) offerInnerFacets(pTet);
	flushHashCollisions();
	if (numStoredTCS != 0) {
		Message() << "numStoredTCS after insertVertex: " << numStoredTCS << std::endl;
	}
	CONDITION_CHECK(numStoredTCS==0);
}

void Dt3::linkOpenStar()
{
	if (star.linkOpen()) return;
	for (Tet3* pTet : star.vTets) offerInnerFacets(pTet);
	// The halves along the border of the visible part of the hull have no partner: they are the new hull.
	flushHashCollisions();
	resetFacetHash();
}

void Dt3::storeCollision(TwoTetStruct* pHalf)
{
	vHashCollisions.push_back(pHalf);
	const std::size_t length = vHashCollisions.size();
	if (collisionIndex.empty() && length < CollisionIndex::kScanLimit) return;
	for (std::size_t i = collisionIndex.empty() ? 0 : length - 1; i < length; ++i) {
		collisionIndex.put(vHashCollisions[i]->key0, vHashCollisions[i]->key1, i);
	}
}

TwoTetStruct* Dt3::takeCollision(const Tet3* pTet, const Point3* key0, const Point3* key1)
{
	const std::size_t length = vHashCollisions.size();
	std::size_t place = 0;
	if (collisionIndex.empty()) {
		while (place < length &&
		    !(vHashCollisions[place]->key0 == key0 && vHashCollisions[place]->key1 == key1 &&
		        vHashCollisions[place]->pTet != pTet)) {
			++place;
		}
	} else {
		place = collisionIndex.find(key0, key1, length);
	}
	if (place == length || vHashCollisions[place]->pTet == pTet)
		return nullptr; // this half itself, which flushHashCollisions offers again

	TwoTetStruct* pHalf = vHashCollisions[place];
	if (collisionIndex.empty()) {
		vHashCollisions.erase(vHashCollisions.begin() + static_cast<std::ptrdiff_t>(place));
		return pHalf;
	}
	// In a long list the last element fills the gap, which takes constant time: which halves are paired
	// does not depend on their order.
	collisionIndex.remove(key0, key1);
	TwoTetStruct* pLast = vHashCollisions.back();
	vHashCollisions.pop_back();
	if (pLast != pHalf) {
		vHashCollisions[place] = pLast;
		collisionIndex.put(pLast->key0, pLast->key1, place);
	}
	return pHalf;
}

void Dt3::flushHashCollisions()
{
	// The first half of a facet found its slot taken and went to the list; then the slot became free and
	// the second half went there. Offered again, the first half now finds it.
	for (std::size_t n = vHashCollisions.size(); n > 0; --n) {
		const TwoTetStruct half = *vHashCollisions[n - 1];
		storeOrLinkFacet(
		    facetHash(half.key0, half.key1), half.pTet, half.ith, half.key0, half.key1);
		--numStoredTCS;
	}
	vHashCollisions.clear();
	collisionIndex.clear();
}

void Dt3::resetFacetHash()
{
	std::fill(vTwoTetSlots.begin(), vTwoTetSlots.end(), nullptr);
	vHashCollisions.clear();
	collisionIndex.clear();
	twoTetPool.reset();
	numStoredTCS = 0;
}

void Dt3::swapDeadAndRecycled()
{
	std::swap(vDeadTets, vRecycledTets);
}

} // namespace TULO3D
