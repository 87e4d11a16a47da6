// SPDX-License-Identifier: MIT
// The two geometric predicates: on which side of a plane (orientation), and inside the sphere or not.
//
// J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric
// Predicates, Discrete & Computational Geometry 18, 1997. Each predicate is the sign of a determinant, found
// by a filtered cascade: a determinant in doubles with an error bound, and only when the bound leaves
// the sign undecided, stages of growing precision, the last of them exact. The same predicates for four facets at once
// are in predicates/BatchTests.h. These are their laws; tests name them by their numbers.
//
// Orientation of a, b, c, d, with D = ((b - a) x (c - a)) . (d - a) of the coordinates as they are
//   O1  POSITIVE if and only if D > 0: a, b, c run counter-clockwise seen from d. NEGATIVE if and only if D < 0.
//   O2  COPLANAR if and only if D is exactly zero.
//   O3  Swapping two of the points exchanges POSITIVE and NEGATIVE; an even permutation changes nothing.
//   O4  Of facet i of a positive tetrahedron, corner i is on the POSITIVE side and neighbour i on the NEGATIVE one.
//
// In-sphere test of q, with the sphere through the corners of a positive tetrahedron
//   S1  Strictly inside is INSIDE, strictly outside is OUTSIDE.
//   S2  Exactly on the sphere is OUTSIDE: cospherical points are never in conflict, so that a search for
//       tetrahedra in conflict ends at them, whatever the order of insertion.
//   S3  With exactly the coordinates of a corner, however, q is INSIDE: so a duplicate is in conflict with
//       every tetrahedron at its vertex.
//   S4  The order of the corners does not matter while it is positive; where it is negative, inside and
//       outside are exchanged.
//
// Stages
//   T1  A stage answers with the exact sign or leaves the test undecided. Which stages there are, which CPU runs
//       them and in what order they come is therefore not to be seen in any mesh.
//   T2  A filter decides where the determinant is beyond its bound. Bounds are positive, so that no filter decides
//       a zero.
//   T3  Only a computation without any rounding error decides a zero: differences without tails in stage B,
//       batches of doubles that are proved to be exact, stage D, big integers. Two cases need no
//       computation: all points have one coordinate in common, or every product is zero.
//   T4  The last stage decides everything. It is D; where a nonzero coordinate is below kLeastSafe at any scale
//       of the test, it is the one in big integers.
//   T5  A filter that may meet products that underflow has an allowance for that in its bound. The other stages
//       have none; when a nonzero coordinate of the test is below kLeastSafe, they are entered at another
//       scale, a power of two, that lifts all above it, or not at all.
//   T6  For coordinates of at most kMaxCoordinate in magnitude nothing overflows.
//   T7  Variants of the batched tests never differ in a sign, and those for SSE2 and AVX2 decide the same facets.
//
// Bounds and limits: predicates/Bounds.h, one table with derivations.
#pragma once

#include "Point3.h"
#include "Tet3.h"
#include "geometry/TetIndices.h"
#include "predicates/Bounds.h"
#include "predicates/Determinants.h"
#include "predicates/Tracked.h"
#include "predicates/Underflow.h"
#include "tools.h"

#include <string>

namespace TULO3D {

// The numeric values matter: the engine and its messages use them.
enum Orientation3 {
	ORIENTATION3_POSITIVE = 0,
	ORIENTATION3_NEGATIVE = 1,
	ORIENTATION3_COPLANAR = 2
};

/// SIC_VERTEX is reserved and never returned: a corner counts as inside (S3).
enum SphereInclusion { SIC_INSIDE = 0, SIC_OUTSIDE = 1, SIC_VERTEX = 2 };

/// Exact orientation and in-sphere tests, by the laws above. The object carries the machine constants.
class ArdoTest3 : public MachineConstants
{
public:
	/// POSITIVE when ((b - a) x (c - a)) . (d - a) > 0: a, b, c run counter-clockwise seen from d.
	Orientation3 getOrientation3(
	    const Point3* a, const Point3* b, const Point3* c, const Point3* d) const;

	/// The side of facet ith on which `pVtx` lies: POSITIVE is the side of corner ith, NEGATIVE is
	/// beyond the facet, towards neighbour ith.
	Orientation3 getOrientation3(const Tet3* pC, int ith, const Point3* pVtx) const;

	/// Where `pVtx` lies with respect to the sphere through the corners of the positive `pT`.
	/// Deliberate: on the sphere is SIC_OUTSIDE (S2), the coordinates of a corner are SIC_INSIDE (S3).
	SphereInclusion sphereInclusionTest(const Tet3* pT, const Point3* pVtx) const;

	/// The same for the sphere through a, b, c, d, which are in positive order.
	SphereInclusion sphereInclusionTest(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& q) const;

	/// The name of an orientation as the tetrahedron's print has it.
	static std::string getOrientationName(Orientation3 orientation);

	/// Prints "label: positive", "negative" or "coplanar" on a line of standard output.
	static void printOrientation(Orientation3 orientation, const std::string& label);

	/// The result of the filter of each test: the determinant, its error bound, and the permanent, from
	/// which the later stages compute their bounds.
	struct FastStage
	{
		// Deliberate order: gcc 12 computes det and permanent side by side when they are stored side by side,
		// and for such a pair fuses products even where that is switched off.
		double det;
		double errbound;
		double permanent;
		bool bCertain() const { return !(errbound > det && errbound > -det); }
	};
	FastStage orient3dFast(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d) const;
	FastStage insphereFast(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e) const;

private:
	/// p seen from the origin.
	static Row<Entry> filterRow(const Point3& p, const Point3& origin)
	{
		return {{p.x() - origin.x()}, {p.y() - origin.y()}, {p.z() - origin.z()}};
	}
	/// The filter of the in-sphere test, from its rows.
	FastStage filtered(const SphereRow<Entry, WithMagnitude>& a,
	    const SphereRow<Entry, WithMagnitude>& b, const SphereRow<Entry, WithMagnitude>& c,
	    const SphereRow<Entry, WithMagnitude>& d) const;
	Orientation3 orientationInDoubt(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const;
	Orientation3 exactOrientation(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const;
	SphereInclusion inclusionInDoubt(const Point3& a, const Point3& b, const Point3& c,
	    const Point3& d, const Point3& q, double permanent) const;
};

inline ArdoTest3::FastStage ArdoTest3::orient3dFast(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d) const
{
	const WithMagnitude det =
	    orientationDeterminant(filterRow(a, d), filterRow(b, d), filterRow(c, d));
	return {det.value, o3derrboundA * det.magnitude + kLostInOrient3d, det.magnitude};
}

inline Orientation3 ArdoTest3::getOrientation3(
    const Point3* a, const Point3* b, const Point3* c, const Point3* d) const
{
	const FastStage fast = orient3dFast(*a, *b, *c, *d); // of the rows as seen from d: -D of law O1
	if (!fast.bCertain()) return orientationInDoubt(*a, *b, *c, *d, fast.permanent);
	if (fast.det < 0.0) return ORIENTATION3_POSITIVE;
	return fast.det > 0.0 ? ORIENTATION3_NEGATIVE : ORIENTATION3_COPLANAR;
}

inline Orientation3 ArdoTest3::getOrientation3(const Tet3* pC, int ith, const Point3* pVtx) const
{
	assert(range03(ith));
	if (!range03(ith)) hardStop(StopReason::kWrongUse, "range03(ith)");
	if (pC == nullptr) goToHell("getOrientation3, pC==NULL");
	const auto [i, j, k] = insideFacet(ith);
	return getOrientation3(pC->getCorner(i), pC->getCorner(j), pC->getCorner(k), pVtx);
}

} // namespace TULO3D
