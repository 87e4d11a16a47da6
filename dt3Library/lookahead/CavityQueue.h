// SPDX-License-Identifier: MIT
// The cavities of the next few vertices, searched together.
#pragma once

#include "lookahead/CavitySearch.h"
#include "lookahead/InsertionOrder.h"
#include "lookahead/Reservation.h"
#include "predicates/BatchTests.h"

#include <array>
#include <cstddef>

namespace TULO3D {

class ArdoTest3;
class WalkStart;

/// Searches up to 15 cavities ahead of their insertion.
///
/// The walks to the vertices are interleaved, and so are the searches; the mesh does not change
/// meanwhile. Each step prefetches for the next one, so that the cache misses of one vertex overlap with
/// the work on the others.
class CavityQueue
{
public:
	/// The vertices come in the order of `next`. All others must outlive the queue.
	CavityQueue(const InsertionOrder& next, const WalkStart& walkStart,
	    const BatchTests& batchTests, const ArdoTest3& adaptiveTests);
	CavityQueue(const CavityQueue&) = delete;
	CavityQueue& operator=(const CavityQueue&) = delete;
	~CavityQueue();

	/// The cavity of the next vertex, complete or aborted.
	const Reservation& next();

	/// The next vertex has been inserted; `disturbed` are the reservations of what it has removed.
	void afterInsertion(Reservation::Bits disturbed);

	/// False when fewer than one in eight of the last 256 cavities were complete: the points lie on the
	/// hull, in planes and on spheres with one another, or in one another's cavities.
	bool isWorthwhile() const { return bWorthwhile; }

private:
	// Enough loads in flight to hide their latency, and a bit for each.
	static constexpr std::size_t kSize = 15;
	static_assert((Reservation::kSingle >> kSize) != 0, "the single reservation has another bit");
	static constexpr std::size_t kTrial = 256;

	/// A walk to the tetrahedron that contains a vertex.
	struct QueuedWalk
	{
		std::size_t place = 0;    // in the queue
		std::size_t position = 0; // of the vertex in the batch
		const Point3* pVtx = nullptr;
		std::array<const Point3*, 2> near =
		    {}; // vertices of the mesh on either side in Morton order
		Tet3* pTet = nullptr;
		int numSteps = 0;
	};

	void fill();
	/// False when there is nowhere to start.
	static bool start(QueuedWalk& walk);
	/// To the next tetrahedron; false when the walk has ended, at its vertex or not.
	bool takeStep(QueuedWalk& walk);

	const WalkStart& starts;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	InsertionOrder ahead;         // of the vertices that are not in the queue yet
	std::size_t numQueued = 0;    // vertices
	std::size_t numInserted = 0;  // of these
	std::size_t numTried = 0;     // in this trial
	std::size_t numSucceeded = 0; // of these
	bool bWorthwhile = true;
	Reservation reservations[kSize];
	CavitySearch search;
};

} // namespace TULO3D
