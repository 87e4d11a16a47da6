// SPDX-License-Identifier: MIT
// The filter of the in-sphere test, the way to the later stages, and the names of the results.
#include "ArdoTest3.h"
#include "Message.h"
#include "predicates/DoubleDouble.h"
#include "predicates/ShewchukStages.h"
#include "predicates/Underflow.h"

namespace TULO3D {

ArdoTest3::FastStage ArdoTest3::insphereFast(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e) const
{
	return filtered(lifted(filterRow(a, e)), lifted(filterRow(b, e)), lifted(filterRow(c, e)),
	    lifted(filterRow(d, e)));
}

ArdoTest3::FastStage ArdoTest3::filtered(const SphereRow<Entry, WithMagnitude>& a,
    const SphereRow<Entry, WithMagnitude>& b, const SphereRow<Entry, WithMagnitude>& c,
    const SphereRow<Entry, WithMagnitude>& d) const
{
	const WithMagnitude det = sphereDeterminant(a, b, c, d).det;
	return {det.value, isperrboundA * det.magnitude + kLostInInsphere, det.magnitude};
}

SphereInclusion ArdoTest3::sphereInclusionTest(const Tet3* pT, const Point3* pVtx) const
{
	return sphereInclusionTest(
	    *pT->getCorner(0), *pT->getCorner(1), *pT->getCorner(2), *pT->getCorner(3), *pVtx);
}

SphereInclusion ArdoTest3::sphereInclusionTest(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& q) const
{
	const FastStage fast = insphereFast(a, b, c, d, q);
	if (!fast.bCertain()) return inclusionInDoubt(a, b, c, d, q, fast.permanent);
	return fast.det > 0.0 ? SIC_OUTSIDE : SIC_INSIDE;
}

Orientation3 ArdoTest3::orientationInDoubt(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const
{
	// On a lattice nearly all undecided points lie in a plane perpendicular to an axis. All three axes are
	// tested without a branch for each, because which axis it is cannot be predicted. No differences are
	// taken: a host may have them flushed to zero.
	const auto areEqual = [](double p, double q, double r, double s) {
		return (p == s) & (q == s) & (r == s);
	};
	const bool bAcross = areEqual(a.x(), b.x(), c.x(), d.x()) |
	    areEqual(a.y(), b.y(), c.y(), d.y()) | areEqual(a.z(), b.z(), c.z(), d.z());
	return bAcross ? ORIENTATION3_COPLANAR : exactOrientation(a, b, c, d, permanent);
}

Orientation3 ArdoTest3::exactOrientation(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const
{
	const bool bTiny = mayUnderflow(a, b, c, d);
	if (bTiny) {
		ScaledPoints<4> p({&a, &b, &c, &d}, Scales::kPerAxis);
		if (p.areSafe()) return getOrientation3(&p[0], &p[1], &p[2], &p[3]);
	} else if (permanent == 0.0) {
		return ORIENTATION3_COPLANAR; // T3: every product is zero
	}
	const double det = bTiny ? orient3dSignDespiteUnderflow(a, b, c, d)
	                         : orient3dAdapt(*this, a, b, c, d, permanent);
	if (det < 0.0) return ORIENTATION3_POSITIVE;
	return det > 0.0 ? ORIENTATION3_NEGATIVE : ORIENTATION3_COPLANAR;
}

SphereInclusion ArdoTest3::inclusionInDoubt(const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, const Point3& q, double permanent) const
{
	if (mayUnderflow(a, b, c, d, q)) {
		ScaledPoints<5> p({&a, &b, &c, &d, &q}, Scales::kCommon);
		if (p.areSafe()) return sphereInclusionTest(p[0], p[1], p[2], p[3], p[4]);
		// The lift adds the axes, so it needs the common scale; the other columns do not.
		ScaledPoints<5> wide({&a, &b, &c, &d, &q}, Scales::kPerAxis);
		const auto row = [&](std::size_t i) {
			return SphereRow<Entry, WithMagnitude>{
			    filterRow(wide[i], wide[4]), lifted(filterRow(p[i], p[4])).l};
		};
		const FastStage fast = filtered(row(0), row(1), row(2), row(3));
		if (fast.bCertain()) return fast.det > 0.0 ? SIC_OUTSIDE : SIC_INSIDE;
		const auto exact = [&](std::size_t i) {
			return SphereRow<TwoDoubles>{
			    exactRow(wide[i], wide[4]), lifted(exactRow(p[i], p[4])).l};
		};
		const StageResult doubleDouble = insphereDoubleDouble(
		    {exact(0), exact(1), exact(2), exact(3)}, fast.permanent, kLostInDoubleDoubles);
		if (doubleDouble.bDecided) return doubleDouble.det > 0.0 ? SIC_OUTSIDE : SIC_INSIDE;
		const bool bAtCorner = q == a || q == b || q == c || q == d; // S3
		const bool bInside = bAtCorner || insphereSignDespiteUnderflow(a, b, c, d, q) < 0;
		return bInside ? SIC_INSIDE : SIC_OUTSIDE;
	}
	if (permanent == 0.0)
		return SIC_INSIDE; // S3: with the coordinates of a corner every product is zero
	// Deliberate, S2: the code 2 of an exact zero counts as outside.
	return insphereAdapt(*this, a, b, c, d, q, permanent) > 0 ? SIC_OUTSIDE : SIC_INSIDE;
}

std::string ArdoTest3::getOrientationName(Orientation3 orientation)
{
	switch (orientation) {
	case ORIENTATION3_POSITIVE:
		return "ORI3_ORIENTATION3_POSITIVE";
	case ORIENTATION3_NEGATIVE:
		return "ORI3_ORIENTATION3_NEGATIVE";
	case ORIENTATION3_COPLANAR:
		return "ORI3_ZERO";
	}
	CONDITION_CHECK(false);
	return std::string();
}

void ArdoTest3::printOrientation(Orientation3 orientation, const std::string& label)
{
	Message line;
	line << label << ": ";
	switch (orientation) {
	case ORIENTATION3_POSITIVE:
		line << "positive" << std::endl;
		break;
	case ORIENTATION3_NEGATIVE:
		line << "negative" << std::endl;
		break;
	case ORIENTATION3_COPLANAR:
		line << "coplanar" << std::endl;
		break;
	}
}

} // namespace TULO3D
