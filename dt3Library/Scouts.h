// SPDX-License-Identifier: MIT
// Cavities that are found ahead of their insertion, several at a time.
#pragma once

#include "CavitySearch.h"
#include "InsertionOrder.h"
#include "NeighbourSpheres.h"
#include "Scout.h"

#include <array>
#include <cstddef>

namespace TULO3D {

class ArdoTest3;
class StartFinder;

/// A row of scouts, one for each of the next vertices.
///
/// They go out together and take their steps in turn; meanwhile the mesh rests. Each step asks the memory
/// for what the next one looks at, so that nobody waits: while it answers one, the others step.
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
	const Scout& next();

	/// False when of the last thousand or so hardly any has found its cavity: the points lie on the hull,
	/// or in planes and spheres with one another.
	bool pay() const { return bPays; }

	/// The next vertex is in the mesh; these are the claims to what it has removed.
	void goOn(Scout::Claims disturbed);

private:
	// Enough to fill the waits, and a bit for each.
	static constexpr std::size_t kNumScouts = 15;
	static_assert((Scout::kLoneClaim >> kNumScouts) != 0, "that of the lone one is another");
	static constexpr std::size_t kTrial = 1024;

	/// The way of a scout to the tetrahedron around its vertex.
	struct Way
	{
		std::size_t place = 0;    // in the row
		std::size_t position = 0; // of the vertex in the finder's batch
		const Point3* pVtx = nullptr;
		std::array<const Point3*, 2> near = {}; // in the mesh, on either side along the finer curve
		Tet3* pTet = nullptr;                   // where the walk is
		int numWalked = 0;
	};

	/// Sends a scout to each of the next vertices.
	void sendOut();
	/// Starts the walk; false when there is nowhere to start.
	static bool start(Way& way);
	/// To the next tetrahedron; false when the scout has arrived, or will not.
	bool takeStep(Way& way);

	const StartFinder& finder;
	const BatchTests& tests;
	const ArdoTest3& predicates;
	InsertionOrder ahead;    // where the next row goes
	std::size_t numSent = 0; // in this one
	std::size_t numIn = 0;   // of these: the vertices that are in the mesh
	std::size_t numDone = 0; // in this trial
	std::size_t numFound = 0;
	bool bPays = true;
	Scout scouts[kNumScouts];
	CavitySearch search;
};

} // namespace TULO3D
