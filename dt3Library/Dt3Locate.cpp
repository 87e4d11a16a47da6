// SPDX-License-Identifier: MIT
// Where a point lies: walks from one start or from two.
#include "Dt3.h"
#include "geometry/vectors.h"

#include <algorithm>

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

Tet3* Dt3::tetAtLastPoint(const Point3& p) const
{
	// Not compared with the start from the curve: that would wait for a cache miss where points are scattered.
	Tet3* pTet = pLastVtx != nullptr ? pLastVtx->getOneTet() : nullptr;
	if (pTet == nullptr || pTet->hasBeenVisited) return nullptr;
	double longest = 0;
	for (int i = 0; i < 4; ++i) {
		longest = std::max(longest, squaredDistance(*pLastVtx, *pTet->getCorner(i)));
	}
	return squaredDistance(*pLastVtx, p) <= longest ? pTet : nullptr;
}

int Dt3::locateByCurve(const Point3& p, Tet3*& pStartTet, Tet3* pTetAtLast)
{
	Tet3* pFirstTry = pTetAtLast != nullptr ? pTetAtLast : hc3.nearerTet(p, pStartTet);
	if (pTetAtLast == nullptr && pFirstTry == pStartTet) return locatePersistently(p, pStartTet);

	// The result is that of a walk from pStartTet, or of one from a nearer vertex around the point on the curve where
	// that walk is longer than 64 facet tests. Only one tetrahedron has a point strictly inside, whatever the start;
	// so a walk that is probably shorter, which saves cache misses, comes first. Only where it ends otherwise does the
	// start decide what is found.
	Tet3* pTet = pFirstTry;
	if (pTet != pStartTet && walk.run(p, pTet, kFacetTestsOfAShortWalk) == Walk::kInside) {
		pStartTet = pTet;
		return Walk::kInside;
	}
	pTet = pStartTet;
	const int end = walk.run(p, pTet, kFacetTestsOfAShortWalk);
	if (end != Walk::kTooLong) {
		pStartTet = pTet;
		return publicResult(end);
	}
	pStartTet = pTetAtLast != nullptr ? hc3.nearerTet(p, pStartTet) : pFirstTry;
	return locatePersistently(p, pStartTet);
}

Tet3* Dt3::locate(const Point3& p)
{
	expectFinished();
	if (!hc3.bValid || !isInRange(p)) return nullptr;
	Tet3* pTet = hc3.findNearbyTet(p);
	if (pTet == nullptr) return nullptr;
	const int result = locateByCurve(p, pTet, nullptr);
	return result == Walk::kInside || result == Walk::kAtCorner ? pTet : nullptr;
}

} // namespace TULO3D
