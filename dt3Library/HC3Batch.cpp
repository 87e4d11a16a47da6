// SPDX-License-Identifier: MIT
// The vertex store takes a batch: along the curve, cell by cell, each cell in the order of the coordinates.
#include "HC3.h"
#include "ardo_tools/RadixSort.h"
#include "ardo_tools/prefetch.h"
#include "store/CoordinateOrder.h"
#include "tools.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace TULO3D {

namespace {

/// The position of a point in a batch, by that on the curve.
using KeyedInput = Keyed<std::uint32_t, std::uint32_t>;

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
	std::vector<std::uint32_t> vCell; // positions in vPoints, as are the two below
	std::vector<std::uint32_t> vByCoordinates;
	std::vector<std::uint32_t> vNewByCoordinates;

	/// Makes the vertex of the point at a position.
	Point3* create(HC3& store, std::uint32_t position);
	/// The i-th point of the cell, by coordinates, equals the one before.
	bool isRepeated(std::size_t i) const
	{
		return i > 0 && vPoints[vByCoordinates[i - 1]] == vPoints[vByCoordinates[i]];
	}
};

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
	Batch batch{vPoints, vUserHandles, vNewVertices, firstNumber, {}, {}, {}, {}};
	Poller stored(poll);
	for (std::size_t i = 0; i < siz;) {
		const std::uint32_t key = vHIndexIndexPair[i].key;
		batch.vCell.clear();
		for (; i < siz && vHIndexIndexPair[i].key == key; ++i) {
			// In curve order the input is read at scattered addresses.
			const std::uint32_t later = vHIndexIndexPair[placeAhead(i, siz)].value;
			prefetchObject(&vPoints[later]);
			prefetch(&vUserHandles[later]);
			batch.vCell.push_back(vHIndexIndexPair[i].value);
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

Point3* HC3::Batch::create(HC3& store, std::uint32_t position)
{
	Point3* pVtx =
	    store.createVertex(vPoints[position], firstNumber + static_cast<std::int32_t>(position));
	vUserHandles[position] = pVtx;
	vNewVertices.push_back(pVtx);
	return pVtx;
}

void HC3::insertCell(std::uint32_t key, Batch& batch)
{
	if (batch.vCell.size() == 1) { // as nearly all are
		const std::uint32_t position = batch.vCell.front();
		batch.vUserHandles[position] = findVertex(key, batch.vPoints[position]);
		if (batch.vUserHandles[position] != nullptr) return;
		batch.newItems.append(createItem(key, batch.create(*this, position)));
		return;
	}
	// Sorted by coordinates, equal points in input order: the first of equal points becomes the vertex.
	batch.vByCoordinates = batch.vCell;
	sortByCoordinates(batch.vByCoordinates, batch.vPoints);
	findNewPoints(key, batch);

	// Deliberate: within a cell, new vertices are made and inserted in input order, while their items are
	// sorted by coordinates. Both orders determine the mesh and its listing.
	if (batch.vNewByCoordinates.size() <
	    batch.vCell.size()) { // the new ones alone, in input order again
		batch.vCell.assign(batch.vNewByCoordinates.begin(), batch.vNewByCoordinates.end());
		std::sort(batch.vCell.begin(), batch.vCell.end());
	}
	for (const std::uint32_t position : batch.vCell) batch.create(*this, position);
	for (const std::uint32_t position : batch.vNewByCoordinates) {
		batch.newItems.append(createItem(key, batch.vUserHandles[position]));
	}
	for (std::size_t i = 1; i < batch.vByCoordinates.size(); ++i) {
		if (!batch.isRepeated(i)) continue;
		batch.vUserHandles[batch.vByCoordinates[i]] =
		    batch.vUserHandles[batch.vByCoordinates[i - 1]];
	}
}

void HC3::findNewPoints(std::uint32_t key, Batch& batch) const
{
	const std::vector<std::uint32_t>& vSorted = batch.vByCoordinates;
	batch.vNewByCoordinates.clear();
	for (std::size_t i = 0; i < vSorted.size(); ++i) {
		const std::uint32_t later = vSorted[placeAhead(i, vSorted.size())];
		prefetchObject(&batch.vPoints[later]);
		prefetch(&batch.vUserHandles[later]);
		if (batch.isRepeated(i)) continue;
		const std::uint32_t position = vSorted[i];
		Point3*& pVtx = batch.vUserHandles[position];
		pVtx = findVertex(key, batch.vPoints[position]);
		if (pVtx == nullptr) batch.vNewByCoordinates.push_back(position);
	}
}

} // namespace TULO3D
