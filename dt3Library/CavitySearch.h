// SPDX-License-Identifier: MIT
// Several cavities are found at once.
#pragma once

#include "NeighbourSpheres.h"
#include "ScratchArray.h"

#include <cstddef>

namespace TULO3D {

class ArdoTest3;
class Scout;
class Tet3;

/// Finds the cavities of scouts that have entered theirs, of all at once and breadth first.
///
/// In each round the memory is asked for all that surrounds the new tetrahedra; then that is read once,
/// to ask for the corners beyond; only then is anything tested. So nobody waits for one cache line after
/// the other. And all go through the same loops, which thereby are long: a short one of each scout's own
/// would end where the CPU does not expect it.
class CavitySearch
{
public:
	/// Scouts that meet the hull give up; the others have then found their cavities.
	void run(
	    Scout* pFirst, std::size_t count, const BatchTests& tests, const ArdoTest3& predicates);

private:
	/// A tetrahedron of a cavity, whose neighbours have not been tested yet.
	struct Member
	{
		Scout* pScout;
		Tet3* pTet;
	};

	template <typename Lanes>
	void testNeighbours(const BatchTests& tests, const ArdoTest3& predicates);
	void testNeighboursPortable(const BatchTests& tests, const ArdoTest3& predicates);
	void testNeighboursAvx2(const BatchTests& tests, const ArdoTest3& predicates);

	ScratchArray<Member> vNew;
	ScratchArray<Member> vJoining; // the new ones of the next round
};

} // namespace TULO3D
