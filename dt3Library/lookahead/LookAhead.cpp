// SPDX-License-Identifier: MIT
// The insertion order of a batch, with the starts and cavities that are computed ahead.
#include "lookahead/LookAhead.h"

#include <cstdint>
#include <utility>

namespace TULO3D {

LookAhead::LookAhead(const std::vector<Point3*>& vBatch, const InsertionOrder& insertionOrder,
    const BatchTests& batchTests, const ArdoTest3& adaptiveTests, bool bOn)
    : vVertices(vBatch),
      tests(batchTests),
      predicates(adaptiveTests),
      bEnabled(bOn),
      order(insertionOrder)
{
}

const Reservation* LookAhead::cavity()
{
	if (!queue) return nullptr;
	const Reservation& next = queue->next();
	return next.isComplete() ? &next : nullptr;
}

Tet3* LookAhead::start(Tet3* pLastTet) const
{
	return starts ? starts->nearest(*order, pLastTet) : pLastTet;
}

void LookAhead::advance(Reservation::Bits disturbed, std::size_t numFacetTests)
{
	if (starts) starts->add(*order);
	if (queue) queue->afterInsertion(disturbed);
	++order;
	numTestsInInterval += numFacetTests;
	if (++numInserted % kReviewInterval == 0 && bEnabled) review();
}

void LookAhead::review()
{
	const std::size_t numTests = std::exchange(numTestsInInterval, 0);
	if (queue) {
		if (queue->isWorthwhile()) return;
		queue.reset();
		numPauses = kPauses;
	} else if (starts) {
		// Never back to starts along the curve: that the vertices share cells of the curve will not change.
		if (numPauses > 0 && --numPauses == 0) queue.emplace(order, *starts, tests, predicates);
	} else if (numTests > kReviewInterval * kFacetTestsPerLongWalk) {
		starts.emplace(vVertices);
		if (starts->orderJumps()) queue.emplace(order, *starts, tests, predicates);
	}
}

} // namespace TULO3D
