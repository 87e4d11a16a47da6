// SPDX-License-Identifier: MIT
// The vertices of a batch in the order of their insertion, and what is known of each beforehand.
#pragma once

#include "lookahead/CavityQueue.h"
#include "lookahead/InsertionOrder.h"
#include "lookahead/WalkStart.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace TULO3D {

/// Leads a batch into the mesh.
///
/// In most batches the curve leads from vertex to vertex, each walk is short, and nothing more is needed.
/// Where it does not (a few points far out, a thin box), walks turn out to be long. From then on they
/// start near their vertices; and where the order jumps about, so that every insertion would run with a
/// cold cache, the cavities of the next vertices are searched together. The mesh is the same with and
/// without.
class LookAhead
{
public:
	/// `vBatch`, in the order of the store, and the tests must outlive it. Unless `bOn`, all that it does
	/// is to give the order.
	LookAhead(const std::vector<Point3*>& vBatch, const BatchTests& batchTests,
	    const ArdoTest3& adaptiveTests, bool bOn);

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
	// A walk from the last vertex of the curve takes some ten facet tests. Several times as many, on the
	// average of an interval, and the curve does not lead from vertex to vertex.
	static constexpr std::size_t kReviewInterval = 256;
	static constexpr std::size_t kFacetTestsPerLongWalk = 40;

	void review();

	const std::vector<Point3*>& vVertices;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	const bool bEnabled;
	InsertionOrder order;
	std::optional<WalkStart> starts;
	std::optional<CavityQueue> queue;
	std::size_t numInserted = 0;
	std::size_t numTestsInInterval = 0;
};

} // namespace TULO3D
