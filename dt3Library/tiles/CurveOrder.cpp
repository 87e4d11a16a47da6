// SPDX-License-Identifier: MIT
// The vertices of a batch in the order of the curve, and their ranks.
#include "tiles/CurveOrder.h"
#include "Dt3.h"
#include "ardo_tools/prefetch.h"
#include "lookahead/InsertionOrder.h"
#include "predicates/Underflow.h"
#include "store/CoordinateOrder.h"
#include "tiles/parallel.h"
#include "tools.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <numeric>

namespace TULO3D {

namespace {

/// The margin of the first box in a process.
constexpr double kFirstMargin = 0.1;

Point3 pointAt(const double* pCoordinates, std::size_t i)
{
	const double* p = pCoordinates + 3 * i;
	return {p[0], p[1], p[2]};
}

/// The curve that a store has.
struct Curve : HC3
{
	explicit Curve(const Bbox3& around)
	{
		bbox = around;
		bbox.enlargeBounds(kFirstMargin);
		rebuildKeys();
	}
};

/// Sorts by keys, and within a cell by coordinates.
void sortAlongCurve(std::vector<KeyedInput>& vKeyed, const double* pCoordinates, unsigned numBits)
{
	sortByKey(vKeyed, numBits);
	std::vector<KeyedInput> vCell;
	std::vector<Point3> vPoints;
	std::vector<std::uint32_t> vSorted;
	for (auto first = vKeyed.begin(); first != vKeyed.end();) {
		const auto last = std::find_if(first, vKeyed.end(),
		    [key = first->key](const KeyedInput& keyed) { return keyed.key != key; });
		if (last - first > 1) { // as few are
			vCell.assign(first, last);
			vPoints.clear();
			for (const KeyedInput& keyed : vCell) {
				vPoints.push_back(pointAt(pCoordinates, keyed.value));
			}
			vSorted.resize(vCell.size());
			std::iota(vSorted.begin(), vSorted.end(), 0);
			sortByCoordinates(vSorted, vPoints);
			for (const std::uint32_t i : vSorted) *first++ = vCell[i];
		}
		first = last;
	}
}

/// Calls task(first, last, i) with equal ranges of n, in several threads.
template <typename Task>
void inRanges(std::size_t n, unsigned numThreads, Task task)
{
	const std::size_t num = std::clamp<std::size_t>(n, 1, numThreads);
	inParallel(num, numThreads, [&](std::size_t i) { task(i * n / num, (i + 1) * n / num, i); });
}

/// Cuts the keys into so many ranges, as even in count as their first bits tell. Returns where each begins, and behind
/// the last.
std::vector<std::uint32_t> cutKeys(
    const std::vector<std::uint32_t>& vKeys, unsigned numBits, unsigned numRanges)
{
	constexpr unsigned kBits = 12;
	const unsigned shift = numBits - kBits;
	std::vector<std::size_t> vCounts(1U << kBits, 0);
	for (const std::uint32_t key : vKeys) ++vCounts[key >> shift];
	std::vector<std::uint32_t> vLimits{0};
	std::size_t numBefore = 0;
	for (std::uint32_t i = 0; i < vCounts.size(); ++i) {
		if (numBefore * numRanges >= vLimits.size() * vKeys.size() && numBefore > 0) {
			vLimits.push_back(i << shift);
		}
		numBefore += vCounts[i];
	}
	vLimits.push_back(1U << numBits);
	return vLimits;
}

std::vector<std::uint32_t> joined(
    const std::vector<const std::vector<std::uint32_t>*>& lists, std::size_t numAll)
{
	std::vector<std::uint32_t> vAll;
	vAll.reserve(numAll);
	for (const auto& pList : lists) vAll.insert(vAll.end(), pList->begin(), pList->end());
	return vAll;
}

} // namespace

std::vector<KeyedInput> listAlongCurve(
    const double* pCoordinates, std::size_t numPoints, const Bbox3& around)
{
	const Curve curve(around);
	std::vector<KeyedInput> vKeyed;
	vKeyed.reserve(numPoints);
	for (std::size_t i = 0; i < numPoints; ++i) {
		vKeyed.push_back(
		    {curve.hilbertIndex(pointAt(pCoordinates, i)), static_cast<std::uint32_t>(i)});
	}
	sortAlongCurve(vKeyed, pCoordinates, curve.numBits);
	return vKeyed;
}

/// The input in a section of the curve without what repeats an earlier point: in the order in which the vertices of
/// a batch are made, and in the order in which a store lists them. Both follow the curve; within a cell, the first is
/// input order, the second that of the coordinates.
struct CurveOrder::Section
{
	/// Of the input whose keys are from `firstKey` on, up to `lastKey`. The first input point with the
	/// coordinates of each one is noted in vFirst.
	Section(const double* pCoordinates, const std::vector<std::uint32_t>& vKeys,
	    std::uint32_t firstKey, std::uint32_t lastKey, unsigned numBits,
	    std::vector<std::uint32_t>& vFirst);

	std::vector<std::uint32_t> vMade;
	std::vector<std::uint32_t> vListed;
};

CurveOrder::Section::Section(const double* pCoordinates, const std::vector<std::uint32_t>& vKeys,
    std::uint32_t firstKey, std::uint32_t lastKey, unsigned numBits,
    std::vector<std::uint32_t>& vFirst)
{
	std::vector<KeyedInput> vKeyed;
	for (std::uint32_t i = 0; i < vKeys.size(); ++i) {
		if (vKeys[i] - firstKey < lastKey - firstKey) vKeyed.push_back({vKeys[i], i});
	}
	sortAlongCurve(vKeyed, pCoordinates, numBits);
	vMade.reserve(vKeyed.size());
	vListed.reserve(vKeyed.size());
	for (std::size_t i = 0; i < vKeyed.size();) {
		const std::uint32_t key = vKeyed[i].key;
		const std::size_t numBefore = vListed.size();
		for (; i < vKeyed.size() && vKeyed[i].key == key; ++i) {
			const std::uint32_t n = vKeyed[i].value;
			const bool bRepeats = vListed.size() > numBefore &&
			    pointAt(pCoordinates, vListed.back()) == pointAt(pCoordinates, n);
			vFirst[n] = bRepeats ? vListed.back() : n;
			if (!bRepeats) vListed.push_back(n);
		}
		vMade.insert(vMade.end(), vListed.begin() + std::ptrdiff_t(numBefore), vListed.end());
		if (vListed.size() - numBefore > 1)
			std::sort(vMade.begin() + std::ptrdiff_t(numBefore), vMade.end());
	}
}

Bbox3 CurveOrder::examine(const double* pCoordinates, std::size_t numPoints, unsigned numThreads)
{
	struct Seen
	{
		Bbox3 box;
		bool bInRange = true;
		bool bTiny = false;
	};
	std::vector<Seen> vSeen(numThreads);
	inRanges(numPoints, numThreads, [&](std::size_t first, std::size_t last, std::size_t range) {
		Seen seen;
		for (std::size_t i = first; i < last; ++i) {
			const Point3 point = pointAt(pCoordinates, i);
			seen.box.add(point);
			seen.bInRange &= Dt3::isInRange(point);
			seen.bTiny |= mayUnderflow(point);
		}
		vSeen[range] = seen;
	});
	Bbox3 around;
	bool bInRange = true;
	for (const Seen& seen : vSeen) {
		bInRange &= seen.bInRange;
		bTiny |= seen.bTiny;
		if (!seen.box.isValid()) continue;
		around.add(seen.box.getMinPoint());
		around.add(seen.box.getMaxPoint());
	}
	CONDITION_CHECK_AS(bInRange, Dt3::kRangeText);
	CONDITION_CHECK_AS(numPoints <= Dt3::kMaxPoints, Dt3::kNumberText);
	return around;
}

CurveOrder::CurveOrder(const double* pCoordinates, std::size_t numPoints, unsigned numThreads)
{
	const Bbox3 around = examine(pCoordinates, numPoints, numThreads);
	if (numPoints == 0) return;

	const Curve curve(around);
	std::vector<std::uint32_t> vKeys(numPoints);
	inRanges(numPoints, numThreads, [&](std::size_t first, std::size_t last, std::size_t) {
		for (std::size_t i = first; i < last; ++i) {
			vKeys[i] = curve.hilbertIndex(pointAt(pCoordinates, i));
		}
	});
	const std::vector<std::uint32_t> vLimits = cutKeys(vKeys, curve.numBits, numThreads);
	std::vector<std::uint32_t> vFirst(numPoints);
	std::vector<std::unique_ptr<Section>> vSections(vLimits.size() - 1);
	inParallel(vSections.size(), numThreads, [&](std::size_t i) {
		vSections[i] = std::make_unique<Section>(
		    pCoordinates, vKeys, vLimits[i], vLimits[i + 1], curve.numBits, vFirst);
	});

	std::vector<const std::vector<std::uint32_t>*> vListed, vMade;
	std::size_t numDistinct = 0;
	for (const auto& pSection : vSections) {
		vListed.push_back(&pSection->vListed);
		vMade.push_back(&pSection->vMade);
		numDistinct += pSection->vListed.size();
	}
	// Deliberate: with duplicate points in the batch, an engine that has become full-dimensional inserts what its store
	// lists, and otherwise what the batch has made.
	const bool bRepeats = numDistinct < numPoints;
	const std::vector<std::uint32_t> vOrder = joined(bRepeats ? vListed : vMade, numDistinct);

	vVertexOfPoint.resize(numPoints);
	std::int32_t next = 0;
	for (std::size_t i = 0; i < numPoints; ++i) {
		vVertexOfPoint[i] = vFirst[i] == i ? next++ : vVertexOfPoint[vFirst[i]];
	}
	takeOver(pCoordinates, vOrder, numThreads);

	std::deque<Point3> vTried; // which stay where they are
	auto section = vSections.begin();
	std::size_t place = 0;
	const auto four = findFirstFour(ArdoTest3(), [&]() -> Point3* {
		while (section != vSections.end() && place == (*section)->vListed.size()) {
			++section;
			place = 0;
		}
		if (section == vSections.end()) return nullptr;
		const std::uint32_t i = (*section)->vListed[place++];
		vTried.push_back(pointAt(pCoordinates, i));
		vTried.back().setCustomIndex(static_cast<int>(i));
		return &vTried.back();
	});
	bFlat = four[3] == nullptr;
	if (bFlat) return;
	std::array<std::uint32_t, 4> firstFour{};
	for (std::size_t i = 0; i < 4; ++i) {
		const auto input = static_cast<std::uint32_t>(four[i]->getCustomIndex());
		const auto found = std::find(vOrder.begin(), vOrder.end(), input);
		firstFour[i] = static_cast<std::uint32_t>(found - vOrder.begin());
	}
	rankAll(firstFour);
}

void CurveOrder::takeOver(
    const double* pCoordinates, const std::vector<std::uint32_t>& vOrder, unsigned numThreads)
{
	const std::size_t num = vOrder.size();
	vCoordinates.resize(3 * num);
	vNumbers.resize(num);
	vBoxes.resize(CurvePoints::numBoxes(num));
	inRanges(CurvePoints::numBlocksOf(num), numThreads,
	    [&](std::size_t firstBlock, std::size_t lastBlock, std::size_t) {
		    const std::size_t last = std::min(num, lastBlock * CurvePoints::kBlock);
		    for (std::size_t i = firstBlock * CurvePoints::kBlock; i < last; ++i) {
			    // In curve order the input is read at scattered addresses.
			    const std::uint32_t later = vOrder[placeAhead(i, last)];
			    prefetchBytes<Cache::kFirst>(
			        pCoordinates + 3 * std::size_t{later}, 3 * sizeof(double));
			    prefetch(&vVertexOfPoint[later]);
			    pointAt(pCoordinates, vOrder[i])
			        .xyz(vCoordinates[3 * i], vCoordinates[3 * i + 1], vCoordinates[3 * i + 2]);
			    vNumbers[i] = vVertexOfPoint[vOrder[i]];
		    }
		    CurvePoints::boxBlocks(vCoordinates.data(), num, firstBlock, lastBlock, vBoxes.data());
	    });
}

void CurveOrder::rankAll(const std::array<std::uint32_t, 4>& firstFour)
{
	vRanks.assign(size(), -1);
	std::int32_t next = 0;
	const auto add = [this, &next](std::uint32_t position) {
		if (vRanks[position] >= 0) return;
		vRanks[position] = next++;
		if (vLowest.size() < kNumLowest) vLowest.push_back(position);
	};
	for (const std::uint32_t position : firstFour) add(position);
	for (InsertionOrder order(size()); !order.isAtEnd(); ++order) add(*order);
}

CurvePoints CurveOrder::points() const
{
	return {{{vCoordinates.data(), vRanks.data(), vBoxes.data(), size()}}, vLowest, bTiny};
}

} // namespace TULO3D
