// SPDX-License-Identifier: MIT
// The vertex store: its keys, single points, and where a walk may start.
#include "HC3.h"
#include "Tet3.h"
#include "ardo_tools/RadixSort.h"
#include "store/NearestStart.h"
#include "tools.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>

namespace TULO3D {

namespace {

/// An item by its position on the curve.
using KeyedItem = Keyed<std::uint32_t, IdxVtx*>;

/// A probe for the place of `point`; the order never writes to it.
IdxVtx probeFor(std::uint32_t key, const Point3& point)
{
	return {key, const_cast<Point3*>(&point)};
}

} // namespace

HC3::HC3(unsigned bits) : numBits(bits)
{
	vertexPool.init(4, -1, SimplePool<Point3>::kMaxBlock);
	itemPool.init(4, -1, SimplePool<IdxVtx>::kMaxBlock);
	if (numBits >= 33 || numBits % 3 != 0) {
		printAndStop(StopReason::kWrongUse, "HC3::HC3(..): invalid bitlength");
	}
}

Point3* HC3::createVertex(const Point3& point, std::int32_t number)
{
	pNewest = new (vertexPool.alloc()) Point3(point.x(), point.y(), point.z());
	pNewest->number = number;
	return pNewest;
}

IdxVtx* HC3::createItem(std::uint32_t key, Point3* pVtx)
{
	return new (itemPool.alloc()) IdxVtx{key, pVtx};
}

void HC3::rebuildKeys()
{
	extentX = bbox.getRangeX();
	extentY = bbox.getRangeY();
	extentZ = bbox.getRangeZ();
	bValid = true;

	std::vector<IdxVtx*> vItems(items.begin(), items.end());
	std::vector<KeyedItem> vKeyed;
	vKeyed.reserve(vItems.size());
	for (IdxVtx* pItem : vItems) {
		pItem->key = hilbertIndex(*pItem->pVtx);
		vKeyed.push_back({pItem->key, pItem});
	}
	sortByKey(vKeyed, numBits, [](const KeyedItem& a, const KeyedItem& b) {
		return Func_ltIdxVtxPtr()(a.value, b.value);
	});
	for (std::size_t i = 0; i < vKeyed.size(); ++i) vItems[i] = vKeyed[i].value;
	items.assign(vItems);
}

bool HC3::isNew(const IdxVtx& probe, const VertexOrder::Iterator& at) const
{
	return at == items.end() || Func_ltIdxVtxPtr()(&probe, *at);
}

Point3* HC3::findVertex(std::uint32_t key, const Point3& point) const
{
	const IdxVtx probe = probeFor(key, point);
	const auto at = items.lowerBound(probe);
	return isNew(probe, at) ? nullptr : (*at)->pVtx;
}

Point3* HC3::insertPoint(const Point3& point, Tet3*& pStartTet)
{
	if (bbox.add(point)) {
		bbox.enlargeBounds(1.0);
		rebuildKeys();
	}
	const IdxVtx probe = probeFor(hilbertIndex(point), point);
	auto at = items.lowerBound(probe);
	if (isNew(probe, at)) {
		at = items.insertAt(
		    at, createItem(probe.key, createVertex(point, static_cast<std::int32_t>(size()))));
	}

	Point3* pVtx = (*at)->pVtx;
	pStartTet = pVtx->getOneTet();
	if (pStartTet != nullptr) return pVtx;
	// Deliberate: the vertex before it, where findNearbyTet takes the one after it. The start decides in which of
	// several tetrahedra a walk ends, and so the order in which new ones are made.
	if (at != items.begin()) {
		pStartTet = (*std::prev(at))->pVtx->getOneTet();
	} else if (std::next(at) != items.end()) {
		pStartTet = (*std::next(at))->pVtx->getOneTet();
	}
	return pVtx;
}

Tet3* HC3::findNearbyTet(const Point3& point) const
{
	const auto isInMesh = [](const IdxVtx* pItem) {
		CONDITION_CHECK_AS(pItem->pVtx != nullptr, "pVtx!=0");
		return pItem->pVtx->getOneTet() != nullptr;
	};
	const auto found = items.lowerBound({hilbertIndex(point), nullptr});
	const auto after = std::find_if(found, items.end(), isInMesh);
	if (after != items.end()) return (*after)->pVtx->getOneTet();
	for (auto at = found; at != items.begin();) {
		if (isInMesh(*--at)) return (*at)->pVtx->getOneTet();
	}
	return nullptr;
}

Tet3* HC3::nearerTet(const Point3& point, Tet3* pTet) const
{
	constexpr int kWindow = 4; // on either side
	NearestStart nearest(point, pTet);
	const auto found = items.lowerBound(probeFor(hilbertIndex(point), point));
	auto at = found;
	for (int n = 0; n < kWindow && at != items.end(); ++n, ++at) nearest.consider(*(*at)->pVtx);
	at = found;
	for (int n = 0; n < kWindow && at != items.begin(); ++n) nearest.consider(*(*--at)->pVtx);
	return nearest.tet();
}

void HC3::getVertices(std::vector<Point3*>& out) const
{
	out.reserve(out.size() + items.size());
	for (const IdxVtx* pItem : items) out.push_back(pItem->pVtx);
}

} // namespace TULO3D
