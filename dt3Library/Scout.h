// SPDX-License-Identifier: MIT
// A cavity that is found before its insertion.
#pragma once

#include "CavityBorder.h"
#include "NeighbourSpheres.h"
#include "Point3.h"
#include "ScratchArray.h"
#include "Tet3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace TULO3D {

class ArdoTest3;
class StartFinder;

/// The way of one vertex to its place in the mesh, and its cavity there.
///
/// Each step only looks at what the step before has asked the memory for: all that surrounds the new
/// part of the cavity at once. Where other scouts step in between, nobody waits, and the cavity is found
/// some insertions ahead.
///
/// What a scout has seen on its walk may be dead or elsewhere at the next step; that costs time, no
/// more. The cavity, however, has to be right: the scout claims every tetrahedron of it and every one
/// around it, and gives up when an insertion removes one of these, or where the hull is near. While
/// all of them are there, the tetrahedra in conflict with the vertex stay the same: a new one would
/// hang together with them across a facet of one that has been removed, and which was claimed; or
/// across a facet of the hull, and with one of these the scout had given up.
class Scout
{
public:
	/// The scouts that claim a tetrahedron, one bit each.
	using Claims = std::uint16_t;
	/// That of a scout who is not in a row.
	static constexpr Claims kLoneClaim = 1U << 15U;

	/// Sets out towards vertex `i` of the finder's batch. `claim` is the scout's own bit.
	void setOut(Claims claim, std::size_t i, const StartFinder& startFinder);
	/// Starts alone, where the walk to `vtx` has ended.
	void startFrom(Tet3* pEnd, const Point3& vtx);

	/// Takes the next step, if there is one left.
	void advance(const BatchTests& tests, const ArdoTest3& predicates);

	bool isOnItsWay() const { return step != Step::kFound && step != Step::kGivenUp; }
	bool hasFound() const { return step == Step::kFound; }

	/// Gives up when its bit is among these.
	void giveUpIfAmong(Claims claims)
	{
		if ((claims & myClaim) != 0) giveUp();
	}
	/// Nothing is claimed any more.
	void giveUp();

	/// The vertex is in the mesh. When the scout has found its cavity, all claims have been released.
	void rest()
	{
		vCavity.clear();
		step = Step::kGivenUp;
	}

	// Once the scout has found its cavity:

	/// What is in conflict with the vertex, first the tetrahedron around it.
	const ScratchArray<CavityTet>& cavity() const { return vCavity; }
	/// The vertex is known to lie strictly on the cavity's side of all its facets.
	bool seesPositive() const { return bPositive; }
	/// Claims this tetrahedron no more; true when it did.
	bool release(Tet3& tet) const
	{
		const bool bClaimed = (tet.claims & myClaim) != 0;
		tet.claims &= static_cast<Claims>(~myClaim);
		return bClaimed;
	}

	/// All claims to a tetrahedron that has been removed.
	static Claims takeClaims(Tet3& tet) { return std::exchange(tet.claims, Claims{0}); }

private:
	enum class Step {
		kLookUp,         // the vertices on either side along the finer curve
		kChooseVertex,   // the nearer one
		kLookAtTet,      // for its corners
		kWalk,           // to the next tetrahedron
		kMeetNeighbours, // of what is new in the cavity, for the corners beyond the facets
		kTestNeighbours, // which ones join the cavity
		kFound,
		kGivenUp
	};

	void chooseVertex();
	void walk(FacetTest facetTest);
	void enterCavity();
	void meetNeighbours();
	template <typename Lanes>
	void testNeighbours(const BatchTests& tests, const ArdoTest3& predicates);
	void testNeighboursPortable(const BatchTests& tests, const ArdoTest3& predicates);
	void testNeighboursAvx2(const BatchTests& tests, const ArdoTest3& predicates);
	void prefetchNew();

	Step step = Step::kGivenUp;
	bool bPositive = true;
	Claims myClaim = 0;
	int numWalked = 0;
	const StartFinder* pFinder = nullptr;
	std::size_t position = 0; // in the finder's batch
	const Point3* pVtx = nullptr;
	std::array<const Point3*, 2> near = {};
	Tet3* pTet = nullptr;      // where the walk is
	std::size_t numTested = 0; // of the cavity: their neighbours are known
	ScratchArray<CavityTet> vCavity;
};

} // namespace TULO3D
