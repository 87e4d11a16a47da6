// SPDX-License-Identifier: MIT
// The cavity of the insertion under way.
#pragma once

#include "Point3.h"
#include "Tet3.h"
#include "ardo_tools/ScratchArray.h"
#include "lookahead/Reservation.h"
#include "mesh/StarLinker.h"
#include "mesh/Surroundings.h"
#include "predicates/BatchTests.h"

#include <utility>

namespace TULO3D {

class ArdoTest3;

/// A facet of the cavity boundary: between the cavity and the tetrahedra that stay, or on the hull.
struct CavityFacet
{
	Tet3* pTet;        ///< in the cavity
	unsigned ith;      ///< the index of the facet
	unsigned positive; ///< Surroundings::positive of pTet, of which bit ith counts
};

/// The tetrahedra in conflict with the vertex being inserted, found by one search from those that have joined.
///
/// It retires the records, and fills the list of dead ones and the vertices of the star that will replace them.
class Cavity
{
public:
	/// All must outlive it.
	Cavity(ScratchArray<Tet3*>& vDead, StarLinker& newStar, const BatchTests& batchTests,
	    const ArdoTest3& adaptiveTests)
	    : vDeadTets(vDead), star(newStar), tests(batchTests), predicates(adaptiveTests)
	{
	}

	/// Empties the cavity and its star.
	void begin();

	/// A tetrahedron in conflict joins; its neighbours are still to be classified.
	void join(Tet3* pTet);

	/// The order in which the facets of a tetrahedron of the cavity are visited: descending inside the hull,
	/// ascending at it. The set of tetrahedra does not depend on it. Labels and the reuse of records do, and hosts
	/// may have recorded them: this alone is why there are two orders.
	enum class FacetOrder { kAscending, kDescending };

	/// Finds the tetrahedra in conflict with vtx, which are connected with those that have joined.
	template <FacetOrder order>
	void carve(const Point3& vtx);

	/// Takes over a cavity that is known already, without in-sphere tests: the tetrahedra die in the order in which
	/// a search in descending order from the first of them would find them.
	void carve(const Reservation& reservation);

	/// The cavity boundary, complete when the search is.
	const ScratchArray<CavityFacet>& facets() const { return vFacets; }

	/// Marks a record that is in the list of dead ones: visited, custom index -1, no reservations.
	void retire(Tet3* pTet)
	{
		pTet->hasBeenVisited =
		    true; // until the record is reused: a walk that starts in it is refused
		pTet->setCustomIndex(-1);
		disturbed |= Reservation::takeBits(*pTet);
	}

	/// The reservations of the tetrahedra that have been removed since the last call.
	Reservation::Bits takeDisturbed() { return std::exchange(disturbed, Reservation::Bits{0}); }

private:
	/// The search itself. `classify` maps a CavityTet to its Surroundings.
	template <FacetOrder order, typename Classify>
	void grow(Classify classify);

	ScratchArray<Tet3*>& vDeadTets;
	StarLinker& star;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	ScratchArray<CavityTet> vStack;
	ScratchArray<CavityFacet> vFacets;
	Reservation::Bits disturbed = 0;
};

} // namespace TULO3D
