// SPDX-License-Identifier: MIT
// The two geometric predicates: on which side of a plane (orientation), and inside the sphere or not.
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

/// SIC_VERTEX is reserved: a query that is a corner makes all products zero, so the fast stage is certain.
enum SphereInclusion { SIC_INSIDE = 0, SIC_OUTSIDE = 1, SIC_VERTEX = 2 };

/// Exact orientation and in-sphere tests.
///
/// J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric
/// Predicates, Discrete & Computational Geometry 18, 1997. The first stage is a floating-point filter: a
/// determinant in doubles with an error bound. Only when the bound leaves the sign undecided do stages of
/// growing precision follow, the last of them exact. The results are the signs of the exact determinants.
///
/// Exact for all coordinates up to 1e60, however small: the filters allow for products that underflow, and
/// the later stages give way to exact integers where products may (see Underflow.h).
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
	///
	/// Deliberate: a point exactly on the sphere is SIC_OUTSIDE, so cospherical points are never in
	/// conflict; a point with exactly the coordinates of a corner is SIC_INSIDE.
	SphereInclusion sphereInclusionTest(const Tet3* pT, const Point3* pVtx) const;

	/// The name of an orientation as the tetrahedron's print has it.
	static std::string getOrientationName(Orientation3 orientation);

	/// Prints "label: positive", "negative" or "coplanar" on a line of standard output.
	static void printOrientation(Orientation3 orientation, const std::string& label);

	/// The result of the filter of each test: the determinant, its error bound, and the permanent, from
	/// which the later stages compute their bounds.
	struct FastStage
	{
		double det;
		double permanent;
		double errbound;
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
	Orientation3 orientationInDoubt(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const;
	Orientation3 exactOrientation(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const;
	SphereInclusion inclusionInDoubt(const Tet3& tet, const Point3& q, double permanent) const;
};

inline ArdoTest3::FastStage ArdoTest3::orient3dFast(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d) const
{
	const WithMagnitude det =
	    orientationDeterminant(filterRow(a, d), filterRow(b, d), filterRow(c, d));
	return {det.value, det.magnitude, o3derrboundA * det.magnitude + kLostInOrient3d};
}

inline Orientation3 ArdoTest3::getOrientation3(
    const Point3* a, const Point3* b, const Point3* c, const Point3* d) const
{
	const FastStage fast = orient3dFast(*a, *b, *c, *d);
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
