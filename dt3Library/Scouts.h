// SPDX-License-Identifier: MIT
// Cavities that are found ahead of their insertion, several at a time.
#pragma once

#include "InsertionOrder.h"
#include "NeighbourSpheres.h"
#include "Scout.h"

#include <cstddef>

namespace TULO3D {

class ArdoTest3;
class StartFinder;

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
	// Enough to fill the waits; with twice as many, the steps of the first come too late.
	static constexpr std::size_t kNumScouts = 8;
	static_assert((Scout::kLoneClaim >> kNumScouts) != 0, "a bit for each");
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
