// SPDX-License-Identifier: MIT
// The vertices of a batch in the order of the curve, and their ranks.
#include "tiles/CurveOrder.h"
#include "Dt3.h"
#include "lookahead/InsertionOrder.h"
#include "predicates/Underflow.h"
#include "store/CoordinateOrder.h"
#include "tools.h"

#include <algorithm>
#include <deque>

namespace TULO3D {

namespace {

/// The margin of the first box in a process.
constexpr double kFirstMargin = 0.1;

} // namespace

std::vector<KeyedInput> listAlongCurve(const std::vector<Point3>& vInput, const Bbox3& around)
{
	HC3 curve;
	curve.bbox = around;
	curve.bbox.enlargeBounds(kFirstMargin);
	curve.rebuildKeys();
	std::vector<KeyedInput> vKeyed;
	vKeyed.reserve(vInput.size());
	for (const Point3& point : vInput) {
		vKeyed.push_back({curve.hilbertIndex(point), static_cast<std::uint32_t>(vKeyed.size())});
	}
	sortByKey(vKeyed, curve.numBits);
	std::vector<std::uint32_t> vCell;
	for (std::size_t i = 0; i < vKeyed.size();) {
		const std::size_t first = i;
		while (++i < vKeyed.size() && vKeyed[i].key == vKeyed[first].key) {}
		if (i == first + 1) continue; // as nearly all are
		vCell.clear();
		for (std::size_t j = first; j < i; ++j) vCell.push_back(vKeyed[j].value);
		sortByCoordinates(vCell, vInput);
		for (std::size_t j = first; j < i; ++j) vKeyed[j].value = vCell[j - first];
	}
	return vKeyed;
}

/// The input without what repeats an earlier point: in the order in which the vertices of a batch are made, and in
/// the order in which a store lists them. Both follow the curve; within a cell, the first is input order, the
/// second that of the coordinates.
struct CurveOrder::Listing
{
	explicit Listing(const std::vector<Point3>& vInput);

	std::vector<std::uint32_t> vMade;
	std::vector<std::uint32_t> vListed;
	/// Of each input point, the first one with these coordinates.
	std::vector<std::uint32_t> vFirst;
};

CurveOrder::Listing::Listing(const std::vector<Point3>& vInput) : vFirst(vInput.size())
{
	Bbox3 around;
	around.add(vInput);
	const std::vector<KeyedInput> vKeyed = listAlongCurve(vInput, around);
	vMade.reserve(vInput.size());
	vListed.reserve(vInput.size());
	for (std::size_t i = 0; i < vKeyed.size();) {
		const std::uint32_t key = vKeyed[i].key;
		const auto numBefore = static_cast<std::ptrdiff_t>(vMade.size());
		for (; i < vKeyed.size() && vKeyed[i].key == key; ++i) {
			const std::uint32_t n = vKeyed[i].value;
			const bool bRepeats =
			    vListed.begin() + numBefore < vListed.end() && vInput[vListed.back()] == vInput[n];
			vFirst[n] = bRepeats ? vListed.back() : n;
			if (!bRepeats) vListed.push_back(n);
		}
		vMade.insert(vMade.end(), vListed.begin() + numBefore, vListed.end());
		std::sort(vMade.begin() + numBefore, vMade.end());
	}
}

CurveOrder::CurveOrder(const double* pCoordinates, std::size_t numPoints)
{
	std::vector<Point3> vInput;
	vInput.reserve(numPoints);
	bool bInRange = true;
	for (std::size_t i = 0; i < numPoints; ++i, pCoordinates += 3) {
		vInput.emplace_back(pCoordinates[0], pCoordinates[1], pCoordinates[2]);
		bInRange &= Dt3::isInRange(vInput.back());
		bTiny |= mayUnderflow(vInput.back());
	}
	CONDITION_CHECK_AS(bInRange, Dt3::kRangeText);
	CONDITION_CHECK_AS(numPoints <= Dt3::kMaxPoints, Dt3::kNumberText);
	if (vInput.empty()) return;

	const Listing listing(vInput);
	// Deliberate: with repeated points in the batch, an engine that has become full-dimensional inserts what its store
	// lists, and otherwise what the batch has made.
	const bool bRepeats = listing.vListed.size() < numPoints;
	const std::vector<std::uint32_t>& vOrder = bRepeats ? listing.vListed : listing.vMade;

	vVertexOfPoint.resize(numPoints);
	std::int32_t next = 0;
	for (std::size_t i = 0; i < numPoints; ++i) {
		const std::uint32_t first = listing.vFirst[i];
		vVertexOfPoint[i] = first == i ? next++ : vVertexOfPoint[first];
	}
	vCoordinates.reserve(3 * vOrder.size());
	vNumbers.reserve(vOrder.size());
	for (const std::uint32_t i : vOrder) {
		vCoordinates.insert(vCoordinates.end(), {vInput[i].x(), vInput[i].y(), vInput[i].z()});
		vNumbers.push_back(vVertexOfPoint[i]);
	}
	vBoxes.resize(CurvePoints::numBoxes(size()));
	CurvePoints::boxesOfBlocks(vCoordinates.data(), size(), vBoxes.data());

	std::vector<std::uint32_t> vPositionOfInput(numPoints);
	for (std::uint32_t n = 0; n < size(); ++n) vPositionOfInput[vOrder[n]] = n;
	std::vector<std::uint32_t> vListed = listing.vListed;
	for (std::uint32_t& i : vListed) i = vPositionOfInput[i];
	rankAll(vListed);
}

void CurveOrder::rankAll(const std::vector<std::uint32_t>& vListed)
{
	std::deque<Point3> vTried; // which stay where they are
	auto it = vListed.begin();
	const auto four = findFirstFour(ArdoTest3(), [&]() -> Point3* {
		if (it == vListed.end()) return nullptr;
		const double* p = vCoordinates.data() + 3 * std::size_t{*it};
		vTried.emplace_back(p[0], p[1], p[2]);
		vTried.back().setCustomIndex(static_cast<int>(*it++));
		return &vTried.back();
	});
	bFlat = four[3] == nullptr;
	if (bFlat) return;

	vRanks.assign(size(), -1);
	std::int32_t next = 0;
	const auto add = [this, &next](std::uint32_t position) {
		if (vRanks[position] >= 0) return;
		vRanks[position] = next++;
		if (vLowest.size() < kNumSpread) vLowest.push_back(position);
	};
	for (const Point3* pVtx : four) add(static_cast<std::uint32_t>(pVtx->getCustomIndex()));
	for (InsertionOrder order(size()); !order.isAtEnd(); ++order) add(*order);
}

CurvePoints CurveOrder::points() const
{
	return {{{vCoordinates.data(), vRanks.data(), vBoxes.data(), size()}}, vLowest, bTiny};
}

} // namespace TULO3D
