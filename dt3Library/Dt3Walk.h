// SPDX-License-Identifier: MIT
// Point location by a visibility walk.
#pragma once

#include "Point3.h"
#include "Tet3.h"
#include "predicates/BatchTests.h"
#include "tools.h"

#include <cstddef>

namespace TULO3D {

class ArdoTest3;

/// A visibility walk: from tetrahedron to tetrahedron, across a facet that has the target strictly beyond it.
///
/// O. Devillers, S. Pion, M. Teillaud: Walking in a Triangulation, Symposium on Computational Geometry, 2001.
class Walk
{
public:
	// How a walk ends, unless with the number of a hull facet, 0 to 3, on or beyond which the target lies.
	static constexpr int kInside =
	    -1; ///< strictly inside, beyond no facet and in the plane of none
	static constexpr int kAtCorner = -2;
	static constexpr int kOnInnerFacetOrEdge = -3;
	static constexpr int kTooLong = -98; ///< a limit below the watchdog's was reached
	static constexpr int kByWatchdog = -99;

	/// After so many facet tests the watchdog stops a walk.
	static constexpr std::size_t kMaxFacetTests = 10000;

	/// The tests must outlive it.
	Walk(const BatchTests& batchTests, const ArdoTest3& adaptiveTests)
	    : tests(batchTests), predicates(adaptiveTests)
	{
	}

	/// Walks from pTet, where the walk has ended afterwards.
	int run(const Point3& target, Tet3*& pTet, std::size_t maxFacetTests = kMaxFacetTests);

	/// Facet tests so far, counted as if made one by one.
	std::size_t numFacetTests = 0;

private:
	/// The end of a walk that has made more tests than it may.
	int stopEarly(Tet3*& pTet, std::size_t maxFacetTests);
	/// The end of a walk strictly inside pStartTet.
	int stopInside(const Tet3* pStartTet, const FacetSides& sides, const Point3* pVtx) const;
	/// The end of a walk in the plane of facet f, beyond no facet.
	int stopInPlane(Tet3*& pTet, int f, const FacetSides& sides, const Point3& target) const;
	/// Circulates around the edge that avoids f and opp2ICI: an inner edge, or one on the hull; then the result is
	/// the hull facet at the end, and pTet becomes the tetrahedron of that facet.
	int stopAtEdge(Tet3*& pTet, int f, int opp2ICI) const;
	/// On which sides of the facets the target lies, exactly: in the plane where both are clear. In cyclic order
	/// from f, the facets after the first numToTest are known to have it on their inner side; after one that has the
	/// target beyond it, both bits may be clear, because nothing depends on them.
	FacetSides sidesOf(const Tet3& tet, const Point3& target, int f, int numToTest) const;

	const BatchTests& tests;
	const ArdoTest3& predicates;
	Rand15 watchdogRandom;
};

} // namespace TULO3D
