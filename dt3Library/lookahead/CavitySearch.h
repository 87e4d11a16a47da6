// SPDX-License-Identifier: MIT
// The interleaved breadth-first search of several cavities.
#pragma once

#include "ardo_tools/ScratchArray.h"
#include "predicates/BatchTests.h"

#include <cstddef>

namespace TULO3D {

class ArdoTest3;
class Reservation;
class Tet3;

/// A breadth-first search of several cavities, interleaved.
///
/// Each round prefetches the neighbours of the new tetrahedra of all cavities, then reads these neighbours
/// to prefetch their opposite corners, and only then tests. So the latencies of the loads overlap. All
/// cavities share the same loops: a short loop for each of them would mispredict its exit.
class CavitySearch
{
public:
	/// Completes reservations that have begun. One that meets the hull is aborted.
	void run(Reservation* pFirst, std::size_t count, const BatchTests& tests,
	    const ArdoTest3& predicates);

private:
	/// A tetrahedron of a cavity, whose neighbours have not been tested yet.
	struct Member
	{
		Reservation* pReservation;
		Tet3* pTet;
	};

	template <typename Variant>
	void testNeighbours(const BatchTests& tests, const ArdoTest3& predicates);

	ScratchArray<Member> vNew;
	ScratchArray<Member> vJoining; // the new ones of the next round
};

} // namespace TULO3D
