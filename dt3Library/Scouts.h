// SPDX-License-Identifier: MIT
// Cavities that are found ahead of their insertion, several at a time.
#pragma once

#include "CavityBorder.h"
#include "InsertionOrder.h"
#include "NeighbourSpheres.h"
#include "Point3.h"
#include "ScratchArray.h"
#include "StartFinder.h"
#include "Tet3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TULO3D {

class ArdoTest3;

/// The way of one vertex to its place in the mesh, and its cavity there, some insertions ahead.
///
/// Each step only looks at what the step before has asked the memory for, and the other scouts step
/// in between: so nobody waits.
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

	/// Sets out towards vertex `i` of the finder's batch. `claim` is the scout's own bit.
	void setOut(Claims claim, std::size_t i, const StartFinder& finder);

	/// Takes the next step, if there is one left.
	void advance(const StartFinder& finder, const BatchTests& tests, const ArdoTest3& predicates);

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
		vAround.clear();
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
	std::size_t position = 0; // in the batch
	const Point3* pVtx = nullptr;
	std::array<const Point3*, 2> near = {};
	Tet3* pTet = nullptr;      // where the walk is
	std::size_t numTested = 0; // of the cavity: their neighbours are known
	ScratchArray<CavityTet> vCavity;
	ScratchArray<Tet3*> vAround;
};

/// A row of scouts, one for each of the next vertices.
class Scouts
{
public:
	/// The vertices come in the order of `next`. The others must outlive the scouts.
	Scouts(const InsertionOrder& next, const StartFinder& startFinder, const BatchTests& batchTests,
	    const ArdoTest3& adaptiveTests);
	Scouts(const Scouts&) = delete;
	Scouts& operator=(const Scouts&) = delete;
	~Scouts();

	/// The scout of the next vertex, which has found its cavity or given up.
	const Scout& await();

	/// False when of the last thousand or so hardly any has found its cavity: the points lie on the hull,
	/// or in planes and spheres with one another.
	bool pay() const { return bPays; }

	/// The next vertex is in the mesh; these are the claims to what it has removed.
	void goOn(Scout::Claims disturbed);

private:
	// Enough to fill the waits; with more, the steps of the first come too late.
	static constexpr std::size_t kNumScouts = 8;
	static_assert(kNumScouts <= 8 * sizeof(Scout::Claims), "a bit for each");
	static constexpr std::size_t kTrial = 1024;

	/// Sends the scout in this place of the row to the vertex behind those of all the others, if there is
	/// one.
	void send(std::size_t place);

	const StartFinder& finder;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	InsertionOrder ahead;       // where the next scout goes
	std::size_t firstPlace = 0; // in the row: the scout of the next vertex
	std::size_t numBack = 0;    // in this trial
	std::size_t numFound = 0;
	bool bPays = true;
	Scout scouts[kNumScouts];
};

} // namespace TULO3D
