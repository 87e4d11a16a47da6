// SPDX-License-Identifier: MIT
// The cavity of a single vertex, searched ahead where the mesh is not in the cache.
#pragma once

#include "lookahead/CavitySearch.h"
#include "lookahead/Reservation.h"

namespace TULO3D {

/// Finds the cavity of one vertex by a breadth-first search that prefetches, before anything is changed. The
/// usual search goes depth first and would wait for each cache miss.
class ColdCavity
{
public:
	/// The age, in labels, of tetrahedra made some three hundred insertions ago. If a walk starts in an older
	/// one, no insertion since has touched the neighbourhood: it is cold, that is, not in the cache.
	static constexpr unsigned kAge = 1U << 13U;

	/// The cavity of `vtx`, which lies in `pTet`; null at the hull. To be cleared when it has been replaced.
	const Reservation* find(
	    const Point3& vtx, Tet3* pTet, const BatchTests& tests, const ArdoTest3& predicates)
	{
		reservation.begin(Reservation::kSingle, vtx, pTet);
		search.run(&reservation, 1, tests, predicates);
		return reservation.isComplete() ? &reservation : nullptr;
	}

	void clear() { reservation.clear(); }

private:
	Reservation reservation;
	CavitySearch search;
};

} // namespace TULO3D
