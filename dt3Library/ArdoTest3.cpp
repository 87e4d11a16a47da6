// SPDX-License-Identifier: MIT
// The filter of the in-sphere test, the way to the later stages, and the names of the results.
#include "ArdoTest3.h"
#include "Message.h"
#include "predicates/ShewchukStages.h"
#include "predicates/Underflow.h"

namespace TULO3D {

ArdoTest3::FastStage ArdoTest3::insphereFast(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e) const
{
	const WithMagnitude det = sphereDeterminant(lifted(filterRow(a, e)), lifted(filterRow(b, e)),
	    lifted(filterRow(c, e)), lifted(filterRow(d, e)))
	                              .det;
	return {det.value, isperrboundA * det.magnitude + kLostInInsphere, det.magnitude};
}

SphereInclusion ArdoTest3::sphereInclusionTest(const Tet3* pT, const Point3* pVtx) const
{
	const FastStage fast = insphereFast(
	    *pT->getCorner(0), *pT->getCorner(1), *pT->getCorner(2), *pT->getCorner(3), *pVtx);
	if (!fast.bCertain()) return inclusionInDoubt(*pT, *pVtx, fast.permanent);
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
	if (!bTiny && permanent == 0.0) return ORIENTATION3_COPLANAR; // T3: every product is zero
	const double det = bTiny ? orient3dSignDespiteUnderflow(a, b, c, d)
	                         : orient3dAdapt(*this, a, b, c, d, permanent);
	if (det < 0.0) return ORIENTATION3_POSITIVE;
	return det > 0.0 ? ORIENTATION3_NEGATIVE : ORIENTATION3_COPLANAR;
}

SphereInclusion ArdoTest3::inclusionInDoubt(
    const Tet3& tet, const Point3& q, double permanent) const
{
	const Point3 &a = *tet.getCorner(0), &b = *tet.getCorner(1), &c = *tet.getCorner(2),
	             &d = *tet.getCorner(3);
	const bool bTiny = mayUnderflow(a, b, c, d, q);
	// S3: with the coordinates of a corner every product is zero.
	if (bTiny ? tet.hasVertex(q) : permanent == 0.0) return SIC_INSIDE;
	if (bTiny) return insphereSignDespiteUnderflow(a, b, c, d, q) < 0 ? SIC_INSIDE : SIC_OUTSIDE;
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
