// SPDX-License-Identifier: MIT
// The vertex store: merges duplicate points, sorts a batch, finds starts for walks.
#include "HC3.h"
#include "Tet3.h"
#include "ardo_tools/RadixSort.h"
#include "geometry/vectors.h"
#include "mesh/Prefetch.h"
#include "tools.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

namespace TULO3D {

namespace {

/// A point of a batch and its position on the curve.
struct KeyedInput
{
	std::uint32_t key;
	std::uint32_t position;
};

/// An item and its position on the curve.
struct KeyedItem
{
	std::uint32_t key;
	IdxVtx* pItem;
};

/// The first bits of a number, in the order of the numbers.
std::uint64_t orderedBits(double x, unsigned numBits)
{
	constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
	x += 0.0; // no negative zero
	std::uint64_t bits = 0;
	std::memcpy(&bits, &x, sizeof bits);
	bits ^= (bits & kSign) != 0 ? ~std::uint64_t{0} : kSign;
	return bits >> (64 - numBits);
}

/// Brings positions into the order of the coordinates of their points; equal ones keep their order.
void sortByCoordinates(std::vector<std::uint32_t>& vPositions, const std::vector<Point3>& vPoints)
{
	constexpr std::size_t kMany = 512;
	constexpr unsigned kBits = 36; // four passes
	struct KeyedPosition
	{
		std::uint64_t key;
		std::uint32_t position;
	};
	const auto byCoordinates = [&vPoints](std::uint32_t i, std::uint32_t j) {
		return vPoints[i] < vPoints[j];
	};
	if (vPositions.size() < kMany) {
		if (vPositions.size() > 1) {
			std::stable_sort(vPositions.begin(), vPositions.end(), byCoordinates);
		}
		return;
	}
	std::vector<KeyedPosition> vKeyed;
	vKeyed.reserve(vPositions.size());
	for (const std::uint32_t i : vPositions) {
		vKeyed.push_back({orderedBits(vPoints[i].x(), kBits), i});
	}
	sortByKey(vKeyed, kBits, [&byCoordinates](const KeyedPosition& a, const KeyedPosition& b) {
		return byCoordinates(a.position, b.position);
	});
	for (std::size_t i = 0; i < vKeyed.size(); ++i) vPositions[i] = vKeyed[i].position;
}

/// A probe for the place of `point`; the order never writes to it.
IdxVtx probeFor(std::uint32_t key, const Point3& point)
{
	return {key, const_cast<Point3*>(&point)};
}

/// The margin around the points of a batch: a tenth of the box for the first one that moves a box in
/// this process, its whole size later on. Deliberate: one flag for all stores.
double takeBatchMargin()
{
	static std::atomic<bool> bFirst{true};
	return bFirst.exchange(false) ? 0.1 : 1.0;
}

/// Calls a function, if there is one, each time that so many more points are done.
class Poller
{
public:
	explicit Poller(const std::function<void()>& thePoll) : poll(thePoll) {}
	void reach(std::size_t numDone)
	{
		if (numDone < next) return;
		next = numDone + kInterval;
		if (poll) poll();
	}

private:
	static constexpr std::size_t kInterval = std::size_t{1} << 16U; // some 10 ms
	const std::function<void()>& poll;
	std::size_t next = kInterval;
};

} // namespace

/// A batch on its way in, with room for one cell of the curve at a time.
struct HC3::Batch
{
	const std::vector<Point3>& vPoints;
	std::vector<Point3*>& vUserHandles;
	std::vector<Point3*>& vNewVertices;
	std::int32_t firstNumber;
	VertexOrder newItems;
	std::vector<std::uint32_t> vCell; // positions in vPoints, as are the three below
	std::vector<std::uint32_t> vByCoordinates;
	std::vector<std::uint32_t> vNewByCoordinates;
	std::vector<std::uint32_t> vNewByInput;
};

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

	std::vector<IdxVtx*> vItems;
	items.list(vItems);
	std::vector<KeyedItem> vKeyed;
	vKeyed.reserve(vItems.size());
	for (IdxVtx* pItem : vItems) {
		pItem->key = hilbertIndex(*pItem->pVtx);
		vKeyed.push_back({pItem->key, pItem});
	}
	sortByKey(vKeyed, numBits, [](const KeyedItem& a, const KeyedItem& b) {
		return Func_ltIdxVtxPtr()(a.pItem, b.pItem);
	});
	for (std::size_t i = 0; i < vKeyed.size(); ++i) vItems[i] = vKeyed[i].pItem;
	items.assign(vItems);
}

Point3* HC3::findVertex(std::uint32_t key, const Point3& point) const
{
	const IdxVtx probe = probeFor(key, point);
	const VertexOrder::Position at = items.lowerBound(probe);
	if (items.isEnd(at) || Func_ltIdxVtxPtr()(&probe, items[at])) return nullptr;
	return items[at]->pVtx;
}

Point3* HC3::insertPoint(const Point3& point, Tet3*& pStartTet)
{
	if (bbox.add(point)) {
		bbox.enlargeBounds(1.0);
		rebuildKeys();
	}
	const IdxVtx probe = probeFor(hilbertIndex(point), point);
	VertexOrder::Position at = items.lowerBound(probe);
	if (items.isEnd(at) || Func_ltIdxVtxPtr()(&probe, items[at])) {
		at = items.insertAt(
		    at, createItem(probe.key, createVertex(point, static_cast<std::int32_t>(size()))));
	}

	Point3* pVtx = items[at]->pVtx;
	pStartTet = pVtx->getOneTet();
	if (pStartTet != nullptr) return pVtx;
	if (!items.isBegin(at)) {
		pStartTet = items[items.previous(at)]->pVtx->getOneTet();
	} else if (!items.isEnd(items.next(at))) {
		pStartTet = items[items.next(at)]->pVtx->getOneTet();
	}
	return pVtx;
}

void HC3::insertPoints(const std::vector<Point3>& vPoints, std::vector<Point3*>& vUserHandles,
    std::vector<Point3*>& vNewVertices, const std::function<void()>& poll)
{
	CONDITION_CHECK(vUserHandles.empty());
	const std::size_t siz = vPoints.size();
	if (bbox.add(vPoints)) {
		bbox.enlargeBounds(takeBatchMargin());
		rebuildKeys();
	}

	std::vector<KeyedInput> vHIndexIndexPair;
	vHIndexIndexPair.reserve(siz);
	Poller keyed(poll);
	for (const Point3& point : vPoints) {
		const auto position = static_cast<std::uint32_t>(vHIndexIndexPair.size());
		vHIndexIndexPair.push_back({hilbertIndex(point), position});
		keyed.reach(position);
	}
	sortByKey(vHIndexIndexPair, numBits);
	assert(vHIndexIndexPair.size()==siz);

	vUserHandles.resize(siz);
	vNewVertices.reserve(vNewVertices.size() + siz);
	const auto firstNumber = static_cast<std::int32_t>(size());
	Batch batch{vPoints, vUserHandles, vNewVertices, firstNumber, {}, {}, {}, {}, {}};
	Poller stored(poll);
	for (std::size_t i = 0; i < siz;) {
		const std::uint32_t key = vHIndexIndexPair[i].key;
		batch.vCell.clear();
		for (; i < siz && vHIndexIndexPair[i].key == key; ++i) {
			// In curve order the input is read at scattered addresses.
			const std::uint32_t later = vHIndexIndexPair[placeAhead(i, siz)].position;
			prefetchVertex(&vPoints[later]);
			prefetch(&vUserHandles[later]);
			batch.vCell.push_back(vHIndexIndexPair[i].position);
		}
		insertCell(key, batch);
		stored.reach(i);
	}
	if (batch.newItems.size() < siz) closeNumberGaps(vUserHandles, firstNumber);
	items.merge(std::move(batch.newItems));
}

void HC3::closeNumberGaps(const std::vector<Point3*>& vUserHandles, std::int32_t firstNumber)
{
	// So far a vertex has the number of its first point, as if no point were a duplicate.
	std::int32_t place = firstNumber;
	std::int32_t next = firstNumber;
	for (Point3* pVtx : vUserHandles) {
		if (pVtx->number == place++) pVtx->number = next++;
	}
}

void HC3::insertCell(std::uint32_t key, Batch& batch)
{
	const std::vector<Point3>& vPoints = batch.vPoints;
	std::vector<Point3*>& vUserHandles = batch.vUserHandles;
	const auto numberOf = [&batch](std::uint32_t position) {
		return batch.firstNumber + static_cast<std::int32_t>(position);
	};
	if (batch.vCell.size() == 1) { // as nearly all are
		const std::uint32_t position = batch.vCell.front();
		Point3*& pVtx = vUserHandles[position];
		pVtx = findVertex(key, vPoints[position]);
		if (pVtx != nullptr) return;
		pVtx = createVertex(vPoints[position], numberOf(position));
		batch.vNewVertices.push_back(pVtx);
		batch.newItems.append(createItem(key, pVtx));
		return;
	}
	std::vector<std::uint32_t>& vSorted = batch.vByCoordinates;
	const auto isEqualToPrevious = [&](std::size_t i) {
		return i > 0 && vPoints[vSorted[i - 1]] == vPoints[vSorted[i]];
	};

	// Sorted by coordinates, equal points in input order: the first of equal points becomes the vertex.
	vSorted = batch.vCell;
	sortByCoordinates(vSorted, vPoints);
	batch.vNewByCoordinates.clear();
	std::size_t numDistinct = 0;
	for (std::size_t i = 0; i < vSorted.size(); ++i) {
		const std::uint32_t later = vSorted[placeAhead(i, vSorted.size())];
		prefetchVertex(&vPoints[later]);
		prefetch(&vUserHandles[later]);
		if (isEqualToPrevious(i)) continue;
		++numDistinct;
		const std::uint32_t position = vSorted[i];
		vUserHandles[position] = findVertex(key, vPoints[position]);
		if (vUserHandles[position] == nullptr) batch.vNewByCoordinates.push_back(position);
	}

	// Deliberate: within a cell, new vertices are made and inserted in input order, while their items are
	// sorted by coordinates. Both orders determine the mesh and its listing.
	if (batch.vNewByCoordinates.size() == batch.vCell.size()) {
		batch.vNewByInput = batch.vCell;
	} else {
		batch.vNewByInput = batch.vNewByCoordinates;
		std::sort(batch.vNewByInput.begin(), batch.vNewByInput.end());
	}
	for (const std::uint32_t position : batch.vNewByInput) {
		vUserHandles[position] = createVertex(vPoints[position], numberOf(position));
		batch.vNewVertices.push_back(vUserHandles[position]);
	}
	for (const std::uint32_t position : batch.vNewByCoordinates) {
		batch.newItems.append(createItem(key, vUserHandles[position]));
	}
	if (numDistinct == vSorted.size()) return;
	for (std::size_t i = 1; i < vSorted.size(); ++i) {
		if (isEqualToPrevious(i)) vUserHandles[vSorted[i]] = vUserHandles[vSorted[i - 1]];
	}
}

Tet3* HC3::findNearbyTet(const Point3& point) const
{
	const VertexOrder::Position found = items.lowerBound({hilbertIndex(point), nullptr});
	for (VertexOrder::Position at = found; !items.isEnd(at); at = items.next(at)) {
		const Point3* pVtx = items[at]->pVtx;
		CONDITION_CHECK(pVtx!=0);
		if (pVtx->getOneTet() != nullptr) return pVtx->getOneTet();
	}
	for (VertexOrder::Position at = found; !items.isBegin(at);) {
		at = items.previous(at);
		if (items[at]->pVtx->getOneTet() != nullptr) return items[at]->pVtx->getOneTet();
	}
	return nullptr;
}

Tet3* HC3::nearerTet(const Point3& point, Tet3* pTet) const
{
	constexpr int kWindow = 4; // on either side
	double least = squaredDistance(point, *pTet->getCorner(0));
	const auto consider = [&](const Point3& vtx) {
		const double distance = squaredDistance(point, vtx);
		if (distance >= least || vtx.getOneTet() == nullptr) return;
		if (vtx.getOneTet()->hasBeenVisited) return;
		least = distance;
		pTet = vtx.getOneTet();
	};
	const VertexOrder::Position found = items.lowerBound(probeFor(hilbertIndex(point), point));
	VertexOrder::Position at = found;
	for (int n = 0; n < kWindow && !items.isEnd(at); ++n, at = items.next(at)) {
		consider(*items[at]->pVtx);
	}
	at = found;
	for (int n = 0; n < kWindow && !items.isBegin(at); ++n) {
		at = items.previous(at);
		consider(*items[at]->pVtx);
	}
	return pTet;
}

void HC3::getVertices(std::vector<Point3*>& out) const
{
	out.reserve(out.size() + items.size());
	for (VertexOrder::Position at = items.begin(); !items.isEnd(at); at = items.next(at)) {
		out.push_back(items[at]->pVtx);
	}
}

} // namespace TULO3D
