// SPDX-License-Identifier: MIT
// The insertion order of a batch, with the starts and cavities that are computed ahead.
#pragma once

#include "lookahead/CavityQueue.h"
#include "lookahead/InsertionOrder.h"
#include "lookahead/WalkStart.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace TULO3D {

/// Gives the vertices of a batch in insertion order, and for each of them the best start known for its
/// walk, or its whole cavity.
///
/// In most batches consecutive vertices are close, each walk is short, and nothing more is needed. Where the
/// curve does not tell the vertices apart (a few points far out, a thin box), walks are long. Once that is
/// measured, walks start at neighbours in Morton order; and if consecutive vertices are also far apart in
/// Morton order, so that every insertion would run with a cold cache, the cavities of the next vertices are searched
/// together, ahead of their insertion. The tetrahedra are the same with and without.
class LookAhead
{
public:
	/// `insertionOrder` is one of `vBatch`, which must outlive this object, as must the tests. Without `bOn` it
	/// only gives the order.
	LookAhead(const std::vector<Point3*>& vBatch, const InsertionOrder& insertionOrder,
	    const BatchTests& batchTests, const ArdoTest3& adaptiveTests, bool bOn);

	bool isAtEnd() const { return order.isAtEnd(); }
	Point3* vertex() const { return vVertices[*order]; }

	/// The cavity of this vertex if it has been found, else null. To be called once for each vertex.
	const Reservation* cavity();

	/// Where the walk to this vertex should start: pLastTet, or a tetrahedron that is nearer.
	Tet3* start(Tet3* pLastTet) const;

	/// This vertex is in the mesh. `disturbed` are the reservations of what it has removed, numFacetTests
	/// the facet tests of its walk.
	void advance(Reservation::Bits disturbed, std::size_t numFacetTests);

private:
	// A walk from the last vertex takes some ten facet tests where the curve preserves locality. An average
	// of several times as many over an interval means that the curve does not.
	static constexpr std::size_t kReviewInterval = 256;
	static constexpr std::size_t kFacetTestsPerLongWalk = 40;
	// Where the order does not jump, consecutive cavities overlap, and hardly one survives the insertion of the one
	// before: the queue is given up for so many intervals. With points at many scales such stretches alternate with
	// jumps.
	static constexpr unsigned kPauses = 16;

	void review();

	const std::vector<Point3*>& vVertices;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	const bool bEnabled;
	InsertionOrder order;
	std::optional<WalkStart> starts;
	std::optional<CavityQueue> queue;
	unsigned numPauses = 0; // intervals until the queue is tried again
	std::size_t numInserted = 0;
	std::size_t numTestsInInterval = 0;
};

} // namespace TULO3D
