// SPDX-License-Identifier: MIT
// Where a point lies: walks from one start or from two.
#include "Dt3.h"

namespace TULO3D {

namespace {

constexpr int kMaxFurtherWalks = 1000;
constexpr std::size_t kFacetTestsOfAShortWalk = 64;

/// The result as locateConflictTet has it: inner facets and edges count as inside.
int publicResult(int end)
{
	return end == Walk::kOnInnerFacetOrEdge ? Walk::kInside : end;
}

} // namespace

int Dt3::locateConflictTet(Point3* pVtx, Tet3*& pStartTet)
{
	if (pStartTet == nullptr) goToHell("locateConflictTet");
	return publicResult(walk.run(*pVtx, pStartTet));
}

int Dt3::locatePersistently(const Point3& p, Tet3*& pStartTet)
{
	// Thin and long meshes make walks of more steps than the watchdog allows; and where more than four vertices
	// are cospherical, a visibility walk may run in a cycle, which the watchdog's random step leaves.
	int end = walk.run(p, pStartTet);
	for (int n = 0; n < kMaxFurtherWalks && end == Walk::kByWatchdog; ++n) {
		end = walk.run(p, pStartTet);
	}
	return publicResult(end);
}

int Dt3::locateByCurve(const Point3& p, Tet3*& pStartTet)
{
	Tet3* pNearer = hc3.nearerTet(p, pStartTet);
	if (pNearer == pStartTet) return locatePersistently(p, pStartTet);

	// The result is that of a walk from pStartTet, or of one from pNearer where that walk is longer than 64 facet
	// tests. Only one tetrahedron has a point strictly inside, whatever the start; so the walk from pNearer,
	// which saves cache misses, comes first. Only where it ends otherwise does the start decide what is found.
	Tet3* pTet = pNearer;
	if (walk.run(p, pTet, kFacetTestsOfAShortWalk) == Walk::kInside) {
		pStartTet = pTet;
		return Walk::kInside;
	}
	pTet = pStartTet;
	const int end = walk.run(p, pTet, kFacetTestsOfAShortWalk);
	pStartTet = end == Walk::kTooLong ? pNearer : pTet;
	return end == Walk::kTooLong ? locatePersistently(p, pStartTet) : publicResult(end);
}

Tet3* Dt3::locate(const Point3& p)
{
	expectFinished();
	if (!hc3.bValid || !isInRange(p)) return nullptr;
	Tet3* pTet = hc3.findNearbyTet(p);
	if (pTet == nullptr) return nullptr;
	const int result = locateByCurve(p, pTet);
	return result == Walk::kInside || result == Walk::kAtCorner ? pTet : nullptr;
}

} // namespace TULO3D
